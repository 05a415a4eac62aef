#include "imagedisplay/NXRImageDisplay.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/PageTrust.h"
#include "frame/Trace.h"
#include "imagedisplay/DisplayEditHost.h"
#include "imagedisplay/DisplayLayout.h"
#include "imagedisplay/DisplayState.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRStatusBar.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/dialog/DisplayDialogs.h"
#include "imagedisplay/dialog/DisplayOpenSaveHost.h"
#include "imagedisplay/edit/DisplayParts.h"
#include "imagedisplay/edit/EditSession.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/parts/MaskPart.h"

#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <cmath>

using nxr::Failure;
using nxr::fromBool;
using nxr::fromSingle;

NXR_REGISTER_CLASS(NXRImageDisplay)

namespace {

const QString kClass = QStringLiteral("NXRImageDisplay");

QColor colorFromLong(int value)
{
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

nxr::RasterView* makeView(QWidget* parent, const QString& name, bool visible)
{
    auto* view = new nxr::RasterView(parent);
    view->setObjectName(name);
    view->setVisible(visible);
    return view;
}

QTimer* makeTimer(QObject* parent, const QString& name, int interval, bool singleShot)
{
    auto* timer = new QTimer(parent);
    timer->setObjectName(name);
    timer->setInterval(interval);
    timer->setSingleShot(singleShot);
    return timer;
}

} // namespace

struct NXRImageDisplay::Private
{
    nxr::DisplayState state;
    std::unique_ptr<nxr::DisplayLoading> loading;
    std::unique_ptr<nxr::DisplayOpenSaveHost> dialogHost;
    std::unique_ptr<nxr::DisplayDialogs> dialogs;
    std::unique_ptr<nxr::DisplayEditHost> editHost;
    std::unique_ptr<nxr::DisplayParts> parts;
    nxr::ImageViewport* viewport = nullptr;
    nxr::MouseDispatcher* mouse = nullptr;
    nxr::ToolbarClickHandler* clicks = nullptr;
    nxr::EditSession* session = nullptr;
    nxr::RasterView* lead = nullptr;
    nxr::RasterView* tempLead = nullptr;
    nxr::RasterView* maskLead = nullptr;
    nxr::RasterView* originalMaskLead = nullptr;
    nxr::RasterView* overlayLead = nullptr;
    NXRViewButtons* viewButtons = nullptr;
    NXRStatusBar* statusBar = nullptr;
    QFrame* fraImage = nullptr;
    QLabel* lblOverride = nullptr;
    QPushButton* cmdDebug = nullptr;
    QTimer* tmrLiveMode = nullptr;
    QTimer* tmrImageRefresh = nullptr;
    QTimer* tmrResize = nullptr;
    QTimer* tmrLEADDblClick = nullptr;

    QString caption;
    QString overrideCaption;
    int overrideColor = 0x0000FF; // red, 0x00BBGGRR
    QString hostName;
    int foreColor = 0;
    bool showFrame = false;
    bool hourglass = false;
    bool progress = false;
    float defaultZoom = 100.0f;
    QString fontName;
    double fontSize = 0;
    QString originalFilename;
    bool inResize = false;
    bool shown = false;
};

NXRImageDisplay::NXRImageDisplay(QWidget* parent) : DisplayPartsFace(parent), d(std::make_unique<Private>())
{
    UserControl_Initialize();
    InitDisplay();
}

NXRImageDisplay::~NXRImageDisplay()
{
    UserControl_Terminate();
    // The plugged-in parts go first: they hold layers in the views and the host.
    d->parts.reset();
}

// ---- lifecycle ----

void NXRImageDisplay::UserControl_Initialize()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Initialize"), QStringLiteral("entered"));
    core().guard(QStringLiteral("UserControl_Initialize"), [&] {
        d->state = nxr::DisplayState();

        d->lblOverride = new QLabel(this);
        d->lblOverride->setObjectName(QStringLiteral("lbl_OverrideImage"));
        d->lblOverride->hide();

        d->viewButtons = new NXRViewButtons(this);
        d->viewButtons->setObjectName(QStringLiteral("ctl_NXRViewButtons"));

        d->fraImage = new QFrame(this);
        d->fraImage->setObjectName(QStringLiteral("fra_Image"));
        d->viewport = new nxr::ImageViewport(d->fraImage);
        d->lead = makeView(d->viewport, QStringLiteral("ctl_LEAD"), true);
        d->maskLead = makeView(d->viewport, QStringLiteral("ctl_MaskLEAD"), false);
        d->viewport->setPrimaryView(d->lead);
        d->viewport->addFollowerView(d->maskLead);
        d->originalMaskLead = makeView(this, QStringLiteral("ctl_OriginalMaskLEAD"), false);
        d->tempLead = makeView(this, QStringLiteral("ctl_TempLEAD"), false);
        d->overlayLead = makeView(this, QStringLiteral("ctl_OverlayLEAD"), false);

        d->cmdDebug = new QPushButton(QStringLiteral("Debug"), this);
        d->cmdDebug->setObjectName(QStringLiteral("cmd_Debug"));
        d->cmdDebug->hide();

        d->statusBar = new NXRStatusBar(this);
        d->statusBar->setObjectName(QStringLiteral("ctl_NXRStatusBar"));

        d->tmrLiveMode = makeTimer(this, QStringLiteral("tmr_LiveMode"), 40, false);
        d->tmrImageRefresh = makeTimer(this, QStringLiteral("tmr_ImageRefresh"), 0, true);
        d->tmrResize = makeTimer(this, QStringLiteral("tmr_Resize"), 0, true);
        d->tmrLEADDblClick = makeTimer(this, QStringLiteral("tmr_LEADDblClick"), 250, true);

        d->mouse = new nxr::MouseDispatcher(*d->viewport, d->tmrLEADDblClick, this);
        d->mouse->attach(d->lead);
        d->mouse->attach(d->maskLead);
        d->clicks = new nxr::ToolbarClickHandler(d->state, this);
        d->session = new nxr::EditSession(
            this, {core(), d->state, *d->clicks, *d->mouse, [this](const QString& key, const QString& value) {
                       d->viewButtons->SetProperty(key, value);
                   }});
        setupToolbarActions();
        d->loading = std::make_unique<nxr::DisplayLoading>(*this);

        connect(d->viewButtons, &NXRViewButtons::OnButtonClicked, this,
                &NXRImageDisplay::ctl_NXRViewButtons_OnButtonClicked);
        connect(d->clicks, &nxr::ToolbarClickHandler::passToPage, this,
                [this](const QString& name) { Q_EMIT OnButtonClicked(name); });
        connect(d->session, &nxr::EditSession::changed, this, &NXRImageDisplay::editChanged);
        connect(d->cmdDebug, &QPushButton::clicked, this, &NXRImageDisplay::msub_OutputLEADDims);
        connect(d->mouse, &nxr::MouseDispatcher::userZoomed, this, [this] { raiseZoomChanged(); });
        connect(d->mouse, &nxr::MouseDispatcher::hovering, this, &NXRImageDisplay::showPixelUnderMouse);
        connect(d->viewport, &nxr::ImageViewport::viewChanged, this,
                [this] { d->statusBar->UpdateStatusBar(activeView()->zoom()); });
        connect(d->tmrResize, &QTimer::timeout, this, &NXRImageDisplay::UserControl_Resize);

        addKeys();
        // The open/save dialog and the image log (Open and Save buttons, "EnableLogImageLoad").
        d->dialogHost = std::make_unique<nxr::DisplayOpenSaveHost>(*this);
        d->dialogs = std::make_unique<nxr::DisplayDialogs>(*d->dialogHost);
        d->editHost = std::make_unique<nxr::DisplayEditHost>(*this);
        d->parts = std::make_unique<nxr::DisplayParts>(*d->editHost);
    });
    NXR_TRACE(kClass, QStringLiteral("UserControl_Initialize"), QStringLiteral("done"));
}

void NXRImageDisplay::InitDisplay()
{
    d->mouse->setMouseMode(nxr::MouseDispatcher::Pointer);
    for (nxr::RasterView* view : {d->lead, d->maskLead}) {
        view->setAutoRepaint(true);
        view->setBackgroundColor(QColor(96, 96, 96));
    }
    d->statusBar->UpdateStatusBar(d->viewport->zoom());
    UserControl_Resize();
}

void NXRImageDisplay::showEvent(QShowEvent* event)
{
    DisplayPartsFace::showEvent(event);
    if (d->shown)
        return;
    d->shown = true;
    core().guard(QStringLiteral("UserControl_Show"), [&] { UserControl_Resize(); });
}

void NXRImageDisplay::resizeEvent(QResizeEvent* event)
{
    DisplayPartsFace::resizeEvent(event);
    UserControl_Resize();
}

int NXRImageDisplay::frameMarginPixels() const
{
    return d->showFrame ? std::max(1, nxr::Globals::twipsToPixels(15)) : 0;
}

void NXRImageDisplay::UserControl_Resize()
{
    if (d->inResize || !d->viewport)
        return;
    d->inResize = true;
    core().guard(QStringLiteral("UserControl_Resize"), [&] {
        const QFontMetrics fm = fontMetrics();
        nxr::DisplayLayout::Input in;
        in.size = size();
        in.margin = std::max(1, nxr::Globals::twipsToPixels(15));
        in.minimumImageWidth = nxr::Globals::twipsToPixels(4400);
        in.labelHeight = d->lblOverride->text().isEmpty() ? 0 : d->lblOverride->fontMetrics().height() + 4;
        in.toolbarHeight = std::max(26, d->viewButtons->fontMetrics().height() + 10);
        in.okCancelVisible = d->state.editing();
        in.okCancelHeight = std::max(30, d->session->bar()->sizeHint().height());
        in.statusHeight = d->statusBar->fontMetrics().height() + 6;

        // A control smaller than the minimum is enlarged to it.
        const QSize minimum = nxr::DisplayLayout::minimumSize(in);
        setMinimumSize(minimum);
        if (width() < minimum.width() || height() < minimum.height())
            resize(size().expandedTo(minimum));
        in.size = size();

        const nxr::DisplayLayout layout = nxr::DisplayLayout::compute(in);
        d->lblOverride->setGeometry(layout.label);
        d->lblOverride->setVisible(in.labelHeight > 0);
        d->viewButtons->setGeometry(layout.toolbar);
        d->fraImage->setGeometry(layout.imageFrame);
        d->fraImage->setFrameShape(d->showFrame ? QFrame::Box : QFrame::NoFrame);
        d->viewport->setGeometry(d->fraImage->contentsRect());
        d->viewport->setFrameMargin(frameMarginPixels());
        d->session->bar()->setGeometry(layout.okCancel);
        d->session->bar()->setVisible(in.okCancelVisible);
        d->statusBar->setGeometry(layout.status);
        d->viewport->setSafeZoom(d->viewport->zoom());
    });
    d->inResize = false;
}

void NXRImageDisplay::UserControl_Terminate()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Terminate"), QStringLiteral("entered"));
    if (d->session)
        d->session->cancelBeforeClose([this](const QString& name) { Q_EMIT OnButtonClicked(name); });
    NXR_TRACE(kClass, QStringLiteral("UserControl_Terminate"), QStringLiteral("done"));
}

// ---- string property keys ----

void NXRImageDisplay::addKeys()
{
    auto ignore = [](const QString&) {};
    auto positiveNumber = [](const QString& v) {
        const double d = nxr::toDouble(v);
        if (!(d > 0.0))
            throw Failure(QStringLiteral("Invalid property value"));
        return d;
    };
    auto editing = [this](nxr::EditKind kind) {
        return [this, kind] { return fromBool(d->state.edit == kind); };
    };
    properties()
        .add(QStringLiteral("AutoZoom"), ignore, [] { return QString(); })
        .add(
            QStringLiteral("Zoom"),
            [this, positiveNumber](const QString& v) {
                d->viewport->setZoomDirect(float(positiveNumber(v)));
            },
            [this] { return fromSingle(activeView()->zoom()); })
        .addWriteOnly(QStringLiteral("OpenButtonEnabled"),
                      [this](const QString& v) { EnableOMIViewButton(vvb_Open, nxr::toBool(v)); })
        .addWriteOnly(QStringLiteral("FTPPortNo"),
                      [this](const QString& v) {
                          const qint32 port = nxr::toLong(v);
                          NXR_TRACE(kClass, QStringLiteral("SetProperty"),
                                    QStringLiteral("Setting FTPPortNo to ") + QString::number(port));
                          d->loading->setFtpPort(port);
                      })
        .addWriteOnly(QStringLiteral("HTTPPortNo"),
                      [this](const QString& v) {
                          const qint32 port = nxr::toLong(v);
                          NXR_TRACE(kClass, QStringLiteral("SetProperty"),
                                    QStringLiteral("Setting HTTPPortNo to ") + QString::number(port));
                          d->loading->setHttpPort(port);
                      })
        .addWriteOnly(QStringLiteral("FontName"), [this](const QString& v) { msub_SetFontName(v); })
        .addWriteOnly(QStringLiteral("FontSize"),
                      [this, positiveNumber](const QString& v) { msub_SetFontSize(positiveNumber(v)); })
        // Accepted (and checked) for the open/save dialog, which takes the key over.
        .addWriteOnly(QStringLiteral("EnableLogImageLoad"), [](const QString& v) { nxr::toBool(v); })
        .add(
            QStringLiteral("LiveMode"), [this](const QString& v) { d->loading->setLiveMode(nxr::toBool(v)); },
            [this] { return fromBool(d->state.liveModeOn); })
        .add(
            QStringLiteral("LaserButtonEnabled"),
            [this](const QString& v) {
                const bool on = nxr::toBool(v);
                d->state.laserButtonEnabled = on;
                d->viewButtons->SetProperty(QStringLiteral("ButtonEnabled"),
                                            nxr::joinItemValue(vvb_LaserOn, fromBool(on)));
            },
            [this] { return d->viewButtons->GetProperty(QStringLiteral("LaserOnOffButtonEnabled")); })
        .add(
            QStringLiteral("LaserOn"),
            [this](const QString& v) { d->viewButtons->SetProperty(QStringLiteral("LaserOn"), v); },
            [this] { return d->viewButtons->GetProperty(QStringLiteral("LaserOn")); })
        .addWriteOnly(QStringLiteral("RefreshDisplay"), [this](const QString&) { RefreshDisplay(); })
        .add(
            QStringLiteral("ColorMode"),
            [this](const QString& v) {
                const bool on = nxr::toBool(v);
                d->state.colorMode = on;
                if (!on) {
                    d->lead->convertToGrey();
                    RefreshDisplay();
                }
            },
            [this] { return fromBool(d->state.colorMode); })
        // Accepted (and checked) for the movable line pair, which takes the keys over.
        .addWriteOnly(QStringLiteral("MinPairWidth"), [](const QString& v) { nxr::toDouble(v); })
        .addWriteOnly(QStringLiteral("MaxPairWidth"), [](const QString& v) { nxr::toDouble(v); })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); })
        .addReadOnly(QStringLiteral("Height"), [this] { return QString::number(height()); })
        .addReadOnly(QStringLiteral("Width"), [this] { return QString::number(width()); })
        .addReadOnly(QStringLiteral("EditingMask"), editing(nxr::EditKind::Mask))
        .addReadOnly(QStringLiteral("EditingWindow"), editing(nxr::EditKind::Window))
        .addReadOnly(QStringLiteral("EditingCursor"), editing(nxr::EditKind::Cursor))
        .addReadOnly(QStringLiteral("EditingLine"), editing(nxr::EditKind::Line))
        .addReadOnly(QStringLiteral("EditingLinePair"), editing(nxr::EditKind::LinePair))
        .addReadOnly(QStringLiteral("OriginalFilename"), [this] { return d->originalFilename; });
}

// ---- one-line forwards (kept on one line each) ----

// clang-format off

QString NXRImageDisplay::Caption() const { return d->caption; }
QString NXRImageDisplay::OverrideImageLabelCaption() const { return d->overrideCaption; }
int NXRImageDisplay::OverrideImageLabelColor() const { return d->overrideColor; }
bool NXRImageDisplay::HourglassCursor() const { return d->hourglass; }
bool NXRImageDisplay::ProgressCursor() const { return d->progress; }
QString NXRImageDisplay::HostName() const { return d->hostName; }
int NXRImageDisplay::ForeColor() const { return d->foreColor; }
bool NXRImageDisplay::ShowFrame() const { return d->showFrame; }
void NXRImageDisplay::setOriginalFilename(const QString& name) { d->originalFilename = name; }
nxr::DisplayLoading& NXRImageDisplay::loading() const { return *d->loading; }
nxr::RasterView* NXRImageDisplay::leadView() const { return d->lead; }
nxr::RasterView* NXRImageDisplay::tempLeadView() const { return d->tempLead; }
nxr::RasterView* NXRImageDisplay::maskLeadView() const { return d->maskLead; }
nxr::RasterView* NXRImageDisplay::originalMaskLeadView() const { return d->originalMaskLead; }
nxr::RasterView* NXRImageDisplay::overlayLeadView() const { return d->overlayLead; }
nxr::ImageViewport& NXRImageDisplay::viewport() const { return *d->viewport; }
nxr::MouseDispatcher& NXRImageDisplay::mouse() const { return *d->mouse; }
nxr::ToolbarClickHandler& NXRImageDisplay::toolbarClicks() const { return *d->clicks; }
NXRViewButtons* NXRImageDisplay::viewButtons() const { return d->viewButtons; }
NXRStatusBar* NXRImageDisplay::statusBar() const { return d->statusBar; }
nxr::DisplayState& NXRImageDisplay::state() { return d->state; }
const nxr::DisplayState& NXRImageDisplay::state() const { return d->state; }
nxr::EditSession& NXRImageDisplay::editSession() const { return *d->session; }
nxr::EditHost& NXRImageDisplay::editHost() const { return *d->editHost; }
nxr::DisplayPart& NXRImageDisplay::partOf(const std::type_info& type) const { return d->parts->get(type); }
float NXRImageDisplay::defaultZoom() const { return d->defaultZoom; }
nxr::DisplayDialogs& NXRImageDisplay::dialogs() const { return *d->dialogs; }
void NXRImageDisplay::AddLogImage(const QString& vstr_Date, const QString& vstr_Process, const QString& vstr_TimeStamp, const QString& vstr_ImageID) { d->dialogs->AddLogImage(vstr_Date, vstr_Process, vstr_TimeStamp, vstr_ImageID); }
void NXRImageDisplay::ClearLogDataList() { d->dialogs->ClearLogDataList(); }
void NXRImageDisplay::UpdateLogImageLoad() { d->dialogs->UpdateLogImageLoad(); }
QTimer* NXRImageDisplay::liveModeTimer() const { return d->tmrLiveMode; }
QTimer* NXRImageDisplay::imageRefreshTimer() const { return d->tmrImageRefresh; }
QTimer* NXRImageDisplay::leadDoubleClickTimer() const { return d->tmrLEADDblClick; }
// clang-format on

// ---- typed properties ----

void NXRImageDisplay::setCaption(const QString& value)
{
    d->caption = value;
    msub_UpdateImageCaption();
    Q_EMIT CaptionChanged();
}

float NXRImageDisplay::Zoom() const
{
    return d->lead->zoom();
}

void NXRImageDisplay::setZoom(float value)
{
    core().guard(QStringLiteral("Zoom"), [&] { d->viewport->setSafeZoom(double(value)); });
}

int NXRImageDisplay::ImageHeight() const
{
    return d->lead->bitmapHeight();
}

int NXRImageDisplay::ImageWidth() const
{
    return d->lead->bitmapWidth();
}

bool NXRImageDisplay::toolbarFlag(const QString& key)
{
    return d->viewButtons->GetProperty(key) == QLatin1String("True");
}

void NXRImageDisplay::setButtonsVisible(std::initializer_list<int> buttons, bool visible)
{
    for (int button : buttons)
        d->viewButtons->SetProperty(QStringLiteral("ButtonVisible"),
                                    nxr::joinItemValue(button, fromBool(visible)));
}

bool NXRImageDisplay::ImageCaptureButtonsVisible()
{
    return toolbarFlag(QStringLiteral("ImageCaptureButtonsVisible"));
}

void NXRImageDisplay::setImageCaptureButtonsVisible(bool value)
{
    setButtonsVisible({vvb_ContinuousAcquire, vvb_Acquire}, value);
}

bool NXRImageDisplay::WindowResetButtonVisible()
{
    return toolbarFlag(QStringLiteral("WindowResetButtonVisible"));
}

void NXRImageDisplay::setWindowResetButtonVisible(bool value)
{
    setButtonsVisible({vvb_WindowReset}, value);
}

bool NXRImageDisplay::OpenSaveButtonsVisible()
{
    return toolbarFlag(QStringLiteral("OpenSaveButtonsVisible"));
}

void NXRImageDisplay::setOpenSaveButtonsVisible(bool value)
{
    setButtonsVisible({vvb_Open, vvb_Save}, value);
}

void NXRImageDisplay::setOverrideImageLabelCaption(const QString& value)
{
    d->overrideCaption = value;
    msub_UpdateImageCaption();
}

void NXRImageDisplay::setOverrideImageLabelColor(int value)
{
    d->overrideColor = value;
    QPalette p = d->lblOverride->palette();
    p.setColor(QPalette::WindowText, colorFromLong(value));
    d->lblOverride->setPalette(p);
}

void NXRImageDisplay::forwardToButtonControls(const QString& key, bool value)
{
    d->viewButtons->SetProperty(key, fromBool(value));
    part<nxr::MaskPart>().setPaletteFlag(key, value);
}

void NXRImageDisplay::setHourglassCursor(bool value)
{
    d->hourglass = value;
    forwardToButtonControls(QStringLiteral("HourglassCursor"), value);
}

void NXRImageDisplay::setProgressCursor(bool value)
{
    d->progress = value;
    forwardToButtonControls(QStringLiteral("ProgressCursor"), value);
}

void NXRImageDisplay::setHostName(const QString& value)
{
    d->hostName = value;
}

void NXRImageDisplay::setForeColor(int value)
{
    d->foreColor = value;
    QPalette p = palette();
    p.setColor(QPalette::WindowText, colorFromLong(value));
    setPalette(p);
    Q_EMIT ForeColorChanged();
}

void NXRImageDisplay::setShowFrame(bool value)
{
    d->showFrame = value;
    UserControl_Resize();
}

bool NXRImageDisplay::AcquireEnabled()
{
    return toolbarFlag(QStringLiteral("AcquireEnabled"));
}

void NXRImageDisplay::setAcquireEnabled(bool value)
{
    d->viewButtons->SetProperty(QStringLiteral("AcquireEnabled"), fromBool(value));
}

bool NXRImageDisplay::LiveEnabled()
{
    return toolbarFlag(QStringLiteral("LiveEnabled"));
}

void NXRImageDisplay::setLiveEnabled(bool value)
{
    d->viewButtons->SetProperty(QStringLiteral("LiveEnabled"), fromBool(value));
}

// ---- methods ----

void NXRImageDisplay::msub_SetFontName(const QString& name)
{
    if (name.trimmed().isEmpty())
        throw Failure(QStringLiteral("Invalid property value"));
    d->fontName = name.trimmed();
    applyChildFont();
}

void NXRImageDisplay::msub_SetFontSize(double size)
{
    d->fontSize = size;
    applyChildFont();
}

void NXRImageDisplay::applyChildFont()
{
    QFont f = font();
    if (!d->fontName.isEmpty())
        f.setFamily(d->fontName);
    if (d->fontSize > 0)
        f.setPointSizeF(d->fontSize);
    for (QWidget* w : {static_cast<QWidget*>(d->viewButtons), static_cast<QWidget*>(d->statusBar),
                       static_cast<QWidget*>(d->lblOverride), static_cast<QWidget*>(d->session->bar())})
        w->setFont(f);
    d->tmrResize->start();
}

void NXRImageDisplay::SetFont(const QString& vstr_FontName, int vlng_FontSize)
{
    core().guard(QStringLiteral("SetFont"), [&] {
        if (vlng_FontSize <= 0)
            throw Failure(QStringLiteral("Invalid procedure call or argument"));
        msub_SetFontName(vstr_FontName);
        msub_SetFontSize(vlng_FontSize);
    });
}

void NXRImageDisplay::Resize(int vlng_Width, int vlng_Height)
{
    try {
        if (vlng_Width < 0 || vlng_Height < 0)
            throw Failure(QStringLiteral("Invalid procedure call or argument"));
        resize(vlng_Width, vlng_Height);
        UserControl_Resize();
    } catch (const Failure& f) {
        core().reportError(QStringLiteral("Resize"), QStringLiteral("Error in Resize(") +
                                                         QString::number(vlng_Width) + QStringLiteral(", ") +
                                                         QString::number(vlng_Height) +
                                                         QStringLiteral("): ") + f.description());
    }
}

void NXRImageDisplay::ZoomTo(int VLng_Top, int VLng_Left, int vlng_Height, int vlng_Width)
{
    core().guard(QStringLiteral("ZoomTo"), [&] {
        const float zoom = d->viewport->optimalZoom(vlng_Height, vlng_Width, true, false);
        [[maybe_unused]] const float set =
            d->viewport->focusedZoom(zoom, VLng_Left + vlng_Width / 2.0, VLng_Top + vlng_Height / 2.0);
        NXR_TRACE(kClass, QStringLiteral("ZoomTo"), QStringLiteral("new zoom=") + fromSingle(set));
        raiseZoomChanged();
    });
}

void NXRImageDisplay::LoadImage(const QString& vstr_FileServer, const QString& vstr_FilePath,
                                const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    d->loading->LoadImage(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword);
}

void NXRImageDisplay::SaveCurrentImage(const QString& vstr_RemoteHost, const QString& vstr_FilePath,
                                       const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    d->loading->SaveCurrentImage(vstr_RemoteHost, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword);
}

void NXRImageDisplay::AbortLiveMode()
{
    d->loading->AbortLiveMode();
}

QString NXRImageDisplay::CurrentImageFilename() const
{
    return d->loading->loader().currentImageFilename();
}

bool NXRImageDisplay::WaitOnDisplay() const
{
    return d->loading->loader().waitOnDisplay();
}

void NXRImageDisplay::setWaitOnDisplay(bool value)
{
    d->loading->loader().setWaitOnDisplay(value);
}

void NXRImageDisplay::LoadLocalImage(const QString& vstr_FilePath)
{
    core().guard(QStringLiteral("LoadLocalImage"), [&] {
        NXR_TRACE(kClass, QStringLiteral("LoadLocalImage"),
                  QStringLiteral("Entered, vstr_FilePath = ") + vstr_FilePath);
        const QFileInfo info(vstr_FilePath);
        if (!nxr::PageTrust::mayReadLocalFile(vstr_FilePath) || !info.isFile())
            throw Failure(QStringLiteral("file ") + vstr_FilePath + QStringLiteral(" does not exist"));
        QImage image;
        try {
            image = nxr::ImageFile::read(vstr_FilePath);
        } catch (const Failure& f) {
            nxr::errorTrace(kClass, QStringLiteral("LoadLocalImage"), f.description());
            throw Failure(QStringLiteral("file ") + vstr_FilePath +
                          QStringLiteral(" does not contain image"));
        }
        d->tempLead->setBitmap(image);
        d->originalFilename = info.fileName();
        showImage(image, true);
    });
}

void NXRImageDisplay::showImage(const QImage& image, bool keepViewIfSameSize)
{
    d->loading->loader().showImage(image, keepViewIfSameSize);
}

void NXRImageDisplay::clearImage()
{
    d->lead->clearBitmap();
    d->viewport->imageSizeChanged();
    d->originalFilename.clear();
    d->statusBar->showPixel(QString());
}

nxr::RasterView* NXRImageDisplay::activeView() const
{
    return d->state.editingMask() ? d->maskLead : d->lead;
}

void NXRImageDisplay::editChanged()
{
    d->maskLead->setVisible(d->state.editingMask());
    UserControl_Resize();
}

bool NXRImageDisplay::busy() const
{
    return d->mouse->busy();
}

int NXRImageDisplay::mouseMode() const
{
    return d->mouse->mouseMode();
}

void NXRImageDisplay::raiseZoomChanged()
{
    const float zoom = activeView()->zoom();
    d->statusBar->UpdateStatusBar(zoom);
    NXR_TRACE(kClass, QStringLiteral("raiseZoomChanged"),
              QStringLiteral("raising event OnZoomChanged(") + fromSingle(zoom) + QLatin1Char(')'));
    Q_EMIT OnZoomChanged(zoom);
}

void NXRImageDisplay::EnableOMIViewButton(int button, bool enable)
{
    NXR_TRACE(kClass, QStringLiteral("EnableOMIViewButton"),
              QStringLiteral("entered, button=") + QString::number(button) + QStringLiteral(", enable=") +
                  fromBool(enable));
    d->viewButtons->SetProperty(QStringLiteral("ButtonEnabled"),
                                nxr::joinItemValue(button, fromBool(enable)));
}

void NXRImageDisplay::RefreshDisplay()
{
    d->viewport->repaintViews();
}

void NXRImageDisplay::msub_OutputLEADDims()
{
    for ([[maybe_unused]] const QString& line : d->viewport->dimensionLines())
        NXR_TRACE(kClass, QStringLiteral("msub_OutputLEADDims"), line);
}

void NXRImageDisplay::msub_UpdateImageCaption()
{
    QString text = d->caption;
    if (!d->caption.isEmpty() && !d->overrideCaption.isEmpty())
        text += QStringLiteral(" - ");
    text += d->overrideCaption;
    const bool relayout = text.isEmpty() != d->lblOverride->text().isEmpty();
    d->lblOverride->setText(text);
    if (relayout)
        UserControl_Resize();
}

// ---- tool bar ----

void NXRImageDisplay::setupToolbarActions()
{
    for (int button = vvb_MouseModePointer; button <= vvb_MouseModeZoomOut; ++button)
        d->clicks->setAction(button, [this, button] { d->mouse->setMouseMode(button - 1); });
    d->clicks->setAction(vvb_FitImage, [this] { d->viewport->fitImage(); });
    d->clicks->setAction(vvb_DefaultZoom, [this] {
        const QSize image = d->viewport->maths().effectiveImageSize();
        d->viewport->focusedZoom(d->defaultZoom, image.width() / 2.0, image.height() / 2.0);
    });
    d->clicks->setAfterAction([this] { raiseZoomChanged(); });
}

void NXRImageDisplay::ctl_NXRViewButtons_OnButtonClicked(int button)
{
    const QString name = d->clicks->click(button, [this](int b) {
        core().guard(QStringLiteral("msub_HandleNXRViewButtonClick"), [&] { d->clicks->handle(b); });
    });
    if (!name.isEmpty())
        Q_EMIT OnButtonClicked(name);
}

void NXRImageDisplay::showPixelUnderMouse(bool inside, const QPointF& image)
{
    const QImage& bitmap = activeView() == d->lead ? d->lead->bitmap() : d->maskLead->bitmap();
    if (!inside || bitmap.isNull()) {
        d->statusBar->showPixel(QString());
        return;
    }
    const int x = int(std::floor(image.x()));
    const int y = int(std::floor(image.y()));
    if (!bitmap.valid(x, y)) {
        d->statusBar->showPixel(QString());
        return;
    }
    const QRgb p = bitmap.pixel(x, y);
    QString value;
    if (bitmap.format() == QImage::Format_Grayscale8 ||
        (bitmap.format() == QImage::Format_Indexed8 && bitmap.isGrayscale()))
        value = QString::number(qGray(p));
    else
        value = QStringLiteral("R %1 G %2 B %3").arg(qRed(p)).arg(qGreen(p)).arg(qBlue(p));
    d->statusBar->showPixel(QStringLiteral("x=%1, y=%2: %3").arg(x).arg(y).arg(value));
}
