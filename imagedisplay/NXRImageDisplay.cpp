#include "imagedisplay/NXRImageDisplay.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/PageTrust.h"
#include "frame/Trace.h"
#include "imagedisplay/DisplayLayout.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRStatusBar.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/loading/DisplayLoading.h"

#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QImageReader>
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

NXRImageDisplay::NXRImageDisplay(QWidget* parent) : ScriptableWidget(parent)
{
    UserControl_Initialize();
    InitDisplay();
}

NXRImageDisplay::~NXRImageDisplay()
{
    UserControl_Terminate();
}

// ---- lifecycle ----

void NXRImageDisplay::UserControl_Initialize()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Initialize"), QStringLiteral("entered"));
    core().guard(QStringLiteral("UserControl_Initialize"), [&] {
        m_state = nxr::DisplayState();

        m_lblOverride = new QLabel(this);
        m_lblOverride->setObjectName(QStringLiteral("lbl_OverrideImage"));
        m_lblOverride->hide();

        m_viewButtons = new NXRViewButtons(this);
        m_viewButtons->setObjectName(QStringLiteral("ctl_NXRViewButtons"));

        m_fraImage = new QFrame(this);
        m_fraImage->setObjectName(QStringLiteral("fra_Image"));
        m_viewport = new nxr::ImageViewport(m_fraImage);
        m_lead = makeView(m_viewport, QStringLiteral("ctl_LEAD"), true);
        m_maskLead = makeView(m_viewport, QStringLiteral("ctl_MaskLEAD"), false);
        m_viewport->setPrimaryView(m_lead);
        m_viewport->addFollowerView(m_maskLead);
        m_originalMaskLead = makeView(this, QStringLiteral("ctl_OriginalMaskLEAD"), false);
        m_tempLead = makeView(this, QStringLiteral("ctl_TempLEAD"), false);
        m_overlayLead = makeView(this, QStringLiteral("ctl_OverlayLEAD"), false);

        m_fraOKCancel = new QFrame(this);
        m_fraOKCancel->setObjectName(QStringLiteral("fra_OKCancel"));
        m_fraOKCancel->setAutoFillBackground(true);
        auto* bar = new QHBoxLayout(m_fraOKCancel);
        bar->setContentsMargins(4, 2, 4, 2);
        m_lblOKCancel = new QLabel(m_fraOKCancel);
        m_lblOKCancel->setObjectName(QStringLiteral("lbl_OKCancel"));
        m_cmdOK = new QPushButton(m_fraOKCancel);
        m_cmdOK->setObjectName(QStringLiteral("cmd_OK"));
        m_cmdCancel = new QPushButton(m_fraOKCancel);
        m_cmdCancel->setObjectName(QStringLiteral("cmd_Cancel"));
        bar->addWidget(m_lblOKCancel, 1);
        bar->addWidget(m_cmdOK);
        bar->addWidget(m_cmdCancel);
        m_fraOKCancel->hide();
        m_cmdDebug = new QPushButton(QStringLiteral("Debug"), this);
        m_cmdDebug->setObjectName(QStringLiteral("cmd_Debug"));
        m_cmdDebug->hide();

        m_statusBar = new NXRStatusBar(this);
        m_statusBar->setObjectName(QStringLiteral("ctl_NXRStatusBar"));

        m_tmrLiveMode = makeTimer(this, QStringLiteral("tmr_LiveMode"), 40, false);
        m_tmrImageRefresh = makeTimer(this, QStringLiteral("tmr_ImageRefresh"), 0, true);
        m_tmrFlashOKCancel = makeTimer(this, QStringLiteral("tmr_FlashOKCancel"), 150, false);
        m_tmrResize = makeTimer(this, QStringLiteral("tmr_Resize"), 0, true);
        m_tmrLEADDblClick = makeTimer(this, QStringLiteral("tmr_LEADDblClick"), 250, true);

        m_mouse = new nxr::MouseDispatcher(*m_viewport, this);
        m_mouse->attach(m_lead, m_maskLead);
        m_clicks = new nxr::ToolbarClickHandler(m_state, this);
        setupToolbarActions();
        m_loading = std::make_unique<nxr::DisplayLoading>(*this);

        connect(m_viewButtons, &NXRViewButtons::OnButtonClicked, this,
                &NXRImageDisplay::ctl_NXRViewButtons_OnButtonClicked);
        connect(m_clicks, &nxr::ToolbarClickHandler::passToPage, this,
                [this](const QString& name) { Q_EMIT OnButtonClicked(name); });
        connect(m_cmdOK, &QPushButton::clicked, this, &NXRImageDisplay::cmd_OK_Click);
        connect(m_cmdCancel, &QPushButton::clicked, this, &NXRImageDisplay::cmd_Cancel_Click);
        connect(m_cmdDebug, &QPushButton::clicked, this, &NXRImageDisplay::msub_OutputLEADDims);
        connect(m_mouse, &nxr::MouseDispatcher::userZoomed, this, [this] { raiseZoomChanged(); });
        connect(m_mouse, &nxr::MouseDispatcher::hovering, this, &NXRImageDisplay::showPixelUnderMouse);
        connect(m_viewport, &nxr::ImageViewport::viewChanged, this,
                [this] { m_statusBar->UpdateStatusBar(activeView()->zoom()); });
        connect(m_tmrResize, &QTimer::timeout, this, &NXRImageDisplay::UserControl_Resize);
        connect(m_tmrFlashOKCancel, &QTimer::timeout, this, [this] {
            const bool highlight = (--m_flashesLeft % 2) == 1;
            m_fraOKCancel->setBackgroundRole(highlight ? QPalette::Highlight : QPalette::Window);
            if (m_flashesLeft <= 0)
                m_tmrFlashOKCancel->stop();
        });

        addKeys();
        msub_Localize();
    });
    NXR_TRACE(kClass, QStringLiteral("UserControl_Initialize"), QStringLiteral("done"));
}

void NXRImageDisplay::InitDisplay()
{
    m_mouse->setMouseMode(nxr::MouseDispatcher::Pointer);
    for (nxr::RasterView* view : {m_lead, m_maskLead}) {
        view->setAutoRepaint(true);
        view->setBackgroundColor(QColor(96, 96, 96));
    }
    m_statusBar->UpdateStatusBar(m_viewport->zoom());
    UserControl_Resize();
}

void NXRImageDisplay::showEvent(QShowEvent* event)
{
    ScriptableWidget::showEvent(event);
    if (m_shown)
        return;
    m_shown = true;
    core().guard(QStringLiteral("UserControl_Show"), [&] { UserControl_Resize(); });
}

void NXRImageDisplay::resizeEvent(QResizeEvent* event)
{
    ScriptableWidget::resizeEvent(event);
    UserControl_Resize();
}

int NXRImageDisplay::frameMarginPixels() const
{
    return m_showFrame ? std::max(1, nxr::Globals::twipsToPixels(15)) : 0;
}

void NXRImageDisplay::UserControl_Resize()
{
    if (m_inResize || !m_viewport)
        return;
    m_inResize = true;
    core().guard(QStringLiteral("UserControl_Resize"), [&] {
        const QFontMetrics fm = fontMetrics();
        nxr::DisplayLayout::Input in;
        in.size = size();
        in.margin = std::max(1, nxr::Globals::twipsToPixels(15));
        in.minimumImageWidth = nxr::Globals::twipsToPixels(4400);
        in.labelHeight = m_lblOverride->text().isEmpty() ? 0 : m_lblOverride->fontMetrics().height() + 4;
        in.toolbarHeight = std::max(26, m_viewButtons->fontMetrics().height() + 10);
        in.okCancelVisible = m_state.editing();
        in.okCancelHeight = std::max(30, m_fraOKCancel->sizeHint().height());
        in.statusHeight = m_statusBar->fontMetrics().height() + 6;

        // A control smaller than the minimum is enlarged to it.
        const QSize minimum = nxr::DisplayLayout::minimumSize(in);
        setMinimumSize(minimum);
        if (width() < minimum.width() || height() < minimum.height())
            resize(size().expandedTo(minimum));
        in.size = size();

        const nxr::DisplayLayout layout = nxr::DisplayLayout::compute(in);
        m_lblOverride->setGeometry(layout.label);
        m_lblOverride->setVisible(in.labelHeight > 0);
        m_viewButtons->setGeometry(layout.toolbar);
        m_fraImage->setGeometry(layout.imageFrame);
        m_fraImage->setFrameShape(m_showFrame ? QFrame::Box : QFrame::NoFrame);
        m_viewport->setGeometry(m_fraImage->contentsRect());
        m_viewport->setFrameMargin(frameMarginPixels());
        m_fraOKCancel->setGeometry(layout.okCancel);
        m_fraOKCancel->setVisible(in.okCancelVisible);
        m_statusBar->setGeometry(layout.status);
        m_viewport->setSafeZoom(m_viewport->zoom());
    });
    m_inResize = false;
}

void NXRImageDisplay::UserControl_Terminate()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Terminate"), QStringLiteral("entered"));
    if (m_clicks && m_state.editing()) {
        core().guard(QStringLiteral("UserControl_Terminate"), [&] { m_clicks->handle(vvb_Cancel); });
        Q_EMIT OnButtonClicked(QStringLiteral("Cancel"));
    }
    NXR_TRACE(kClass, QStringLiteral("UserControl_Terminate"), QStringLiteral("done"));
}

void NXRImageDisplay::msub_Localize()
{
    m_lblOKCancel->setText(
        nxr::Globals::Caption{QStringLiteral("Finish editing:"), QStringLiteral("編集の終了:")}.pick());
    m_cmdOK->setText(nxr::Globals::Caption{QStringLiteral("OK"), QStringLiteral("OK")}.pick());
    m_cmdCancel->setText(
        nxr::Globals::Caption{QStringLiteral("Cancel"), QStringLiteral("キャンセル")}.pick());
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
    properties()
        .add(QStringLiteral("AutoZoom"), ignore, [] { return QString(); })
        .add(
            QStringLiteral("Zoom"),
            [this, positiveNumber](const QString& v) { m_viewport->setZoomDirect(float(positiveNumber(v))); },
            [this] { return fromSingle(activeView()->zoom()); })
        .addWriteOnly(QStringLiteral("OpenButtonEnabled"),
                      [this](const QString& v) { EnableOMIViewButton(vvb_Open, nxr::toBool(v)); })
        .addWriteOnly(QStringLiteral("FTPPortNo"),
                      [this](const QString& v) {
                          const qint32 port = nxr::toLong(v);
                          NXR_TRACE(kClass, QStringLiteral("SetProperty"),
                                    QStringLiteral("Setting FTPPortNo to ") + QString::number(port));
                          m_ftpPortNo = port;
                          m_loading->setFtpPort(port);
                      })
        .addWriteOnly(QStringLiteral("HTTPPortNo"),
                      [this](const QString& v) {
                          const qint32 port = nxr::toLong(v);
                          NXR_TRACE(kClass, QStringLiteral("SetProperty"),
                                    QStringLiteral("Setting HTTPPortNo to ") + QString::number(port));
                          m_httpPortNo = port;
                          m_loading->setHttpPort(port);
                      })
        .addWriteOnly(QStringLiteral("FontName"),
                      [this](const QString& v) {
                          m_fontSetByPage = true;
                          msub_SetFontName(v);
                      })
        .addWriteOnly(QStringLiteral("FontSize"),
                      [this, positiveNumber](const QString& v) {
                          const double size = positiveNumber(v);
                          m_fontSetByPage = true;
                          msub_SetFontSize(size);
                      })
        .addWriteOnly(QStringLiteral("EnableLogImageLoad"),
                      [this](const QString& v) { m_enableLogImageLoad = nxr::toBool(v); })
        .add(
            QStringLiteral("LiveMode"), [this](const QString& v) { m_loading->setLiveMode(nxr::toBool(v)); },
            [this] { return fromBool(m_state.liveModeOn); })
        .add(
            QStringLiteral("LaserButtonEnabled"),
            [this](const QString& v) {
                const bool on = nxr::toBool(v);
                m_state.laserButtonEnabled = on;
                m_viewButtons->SetProperty(QStringLiteral("ButtonEnabled"),
                                           nxr::joinItemValue(vvb_LaserOn, fromBool(on)));
            },
            [this] { return m_viewButtons->GetProperty(QStringLiteral("LaserOnOffButtonEnabled")); })
        .add(
            QStringLiteral("LaserOn"),
            [this](const QString& v) { m_viewButtons->SetProperty(QStringLiteral("LaserOn"), v); },
            [this] { return m_viewButtons->GetProperty(QStringLiteral("LaserOn")); })
        .addWriteOnly(QStringLiteral("RefreshDisplay"), [this](const QString&) { RefreshDisplay(); })
        .add(
            QStringLiteral("ColorMode"),
            [this](const QString& v) {
                const bool on = nxr::toBool(v);
                m_state.colorMode = on;
                if (!on) {
                    m_lead->convertToGrey();
                    RefreshDisplay();
                }
            },
            [this] { return fromBool(m_state.colorMode); })
        .addWriteOnly(QStringLiteral("MinPairWidth"),
                      [this](const QString& v) { m_minPairWidth = nxr::toDouble(v); })
        .addWriteOnly(QStringLiteral("MaxPairWidth"),
                      [this](const QString& v) { m_maxPairWidth = nxr::toDouble(v); })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); })
        .addReadOnly(QStringLiteral("Height"), [this] { return QString::number(height()); })
        .addReadOnly(QStringLiteral("Width"), [this] { return QString::number(width()); })
        .addReadOnly(QStringLiteral("EditingMask"), [this] { return fromBool(m_state.editingMask()); })
        .addReadOnly(QStringLiteral("EditingWindow"), [this] { return fromBool(m_state.editingWindow); })
        .addReadOnly(QStringLiteral("EditingCursor"), [this] { return fromBool(m_state.editingCursor); })
        .addReadOnly(QStringLiteral("EditingLine"), [this] { return fromBool(m_state.editingLine); })
        .addReadOnly(QStringLiteral("EditingLinePair"), [this] { return fromBool(m_state.editingLinePair); })
        .addReadOnly(QStringLiteral("OriginalFilename"), [this] { return m_originalFilename; });
}

// ---- typed properties ----

void NXRImageDisplay::setCaption(const QString& value)
{
    m_caption = value;
    msub_UpdateImageCaption();
    Q_EMIT CaptionChanged();
}

float NXRImageDisplay::Zoom() const
{
    return m_lead->zoom();
}

void NXRImageDisplay::setZoom(float value)
{
    core().guard(QStringLiteral("Zoom"), [&] { m_viewport->setSafeZoom(double(value)); });
}

int NXRImageDisplay::ImageHeight() const
{
    return m_lead->bitmapHeight();
}

int NXRImageDisplay::ImageWidth() const
{
    return m_lead->bitmapWidth();
}

bool NXRImageDisplay::toolbarFlag(const QString& key)
{
    return m_viewButtons->GetProperty(key) == QLatin1String("True");
}

void NXRImageDisplay::setButtonsVisible(std::initializer_list<int> buttons, bool visible)
{
    for (int button : buttons)
        m_viewButtons->SetProperty(QStringLiteral("ButtonVisible"),
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
    m_overrideCaption = value;
    msub_UpdateImageCaption();
}

void NXRImageDisplay::setOverrideImageLabelColor(int value)
{
    m_overrideColor = value;
    QPalette p = m_lblOverride->palette();
    p.setColor(QPalette::WindowText, colorFromLong(value));
    m_lblOverride->setPalette(p);
}

void NXRImageDisplay::forwardToButtonControls(const QString& key, bool value)
{
    // The mask tool palette joins here when it exists.
    m_viewButtons->SetProperty(key, fromBool(value));
}

void NXRImageDisplay::setHourglassCursor(bool value)
{
    m_hourglass = value;
    forwardToButtonControls(QStringLiteral("HourglassCursor"), value);
}

void NXRImageDisplay::setProgressCursor(bool value)
{
    m_progress = value;
    forwardToButtonControls(QStringLiteral("ProgressCursor"), value);
}

void NXRImageDisplay::setHostName(const QString& value)
{
    m_hostName = value;
}

void NXRImageDisplay::setForeColor(int value)
{
    m_foreColor = value;
    QPalette p = palette();
    p.setColor(QPalette::WindowText, colorFromLong(value));
    setPalette(p);
    Q_EMIT ForeColorChanged();
}

void NXRImageDisplay::setShowFrame(bool value)
{
    m_showFrame = value;
    UserControl_Resize();
}

bool NXRImageDisplay::AcquireEnabled()
{
    return toolbarFlag(QStringLiteral("AcquireEnabled"));
}

void NXRImageDisplay::setAcquireEnabled(bool value)
{
    m_viewButtons->SetProperty(QStringLiteral("AcquireEnabled"), fromBool(value));
}

bool NXRImageDisplay::LiveEnabled()
{
    return toolbarFlag(QStringLiteral("LiveEnabled"));
}

void NXRImageDisplay::setLiveEnabled(bool value)
{
    m_viewButtons->SetProperty(QStringLiteral("LiveEnabled"), fromBool(value));
}

// ---- methods ----

void NXRImageDisplay::msub_SetFontName(const QString& name)
{
    if (name.trimmed().isEmpty())
        throw Failure(QStringLiteral("Invalid property value"));
    m_fontName = name.trimmed();
    applyChildFont();
}

void NXRImageDisplay::msub_SetFontSize(double size)
{
    m_fontSize = size;
    applyChildFont();
}

void NXRImageDisplay::applyChildFont()
{
    QFont f = font();
    if (!m_fontName.isEmpty())
        f.setFamily(m_fontName);
    if (m_fontSize > 0)
        f.setPointSizeF(m_fontSize);
    for (QWidget* w : {static_cast<QWidget*>(m_viewButtons), static_cast<QWidget*>(m_statusBar),
                       static_cast<QWidget*>(m_lblOverride), static_cast<QWidget*>(m_fraOKCancel)})
        w->setFont(f);
    m_tmrResize->start();
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
        const float zoom = m_viewport->optimalZoom(vlng_Height, vlng_Width, true, false);
        [[maybe_unused]] const float set =
            m_viewport->focusedZoom(zoom, VLng_Left + vlng_Width / 2.0, VLng_Top + vlng_Height / 2.0);
        NXR_TRACE(kClass, QStringLiteral("ZoomTo"), QStringLiteral("new zoom=") + fromSingle(set));
        raiseZoomChanged();
    });
}

void NXRImageDisplay::LoadImage(const QString& vstr_FileServer, const QString& vstr_FilePath,
                                const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    m_loading->LoadImage(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword);
}

void NXRImageDisplay::SaveCurrentImage(const QString& vstr_RemoteHost, const QString& vstr_FilePath,
                                       const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    m_loading->SaveCurrentImage(vstr_RemoteHost, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword);
}

void NXRImageDisplay::AbortLiveMode()
{
    m_loading->AbortLiveMode();
}

QString NXRImageDisplay::CurrentImageFilename() const
{
    return m_loading->loader().currentImageFilename();
}

bool NXRImageDisplay::WaitOnDisplay() const
{
    return m_loading->loader().waitOnDisplay();
}

void NXRImageDisplay::setWaitOnDisplay(bool value)
{
    m_loading->loader().setWaitOnDisplay(value);
}

void NXRImageDisplay::LoadLocalImage(const QString& vstr_FilePath)
{
    core().guard(QStringLiteral("LoadLocalImage"), [&] {
        NXR_TRACE(kClass, QStringLiteral("LoadLocalImage"),
                  QStringLiteral("Entered, vstr_FilePath = ") + vstr_FilePath);
        const QFileInfo info(vstr_FilePath);
        if (!nxr::PageTrust::mayReadLocalFile(vstr_FilePath) || !info.isFile())
            throw Failure(QStringLiteral("file ") + vstr_FilePath + QStringLiteral(" does not exist"));
        QImageReader reader(vstr_FilePath);
        const QImage image = reader.read();
        if (image.isNull())
            throw Failure(QStringLiteral("file ") + vstr_FilePath +
                          QStringLiteral(" does not contain image"));
        m_tempLead->setBitmap(image);
        m_originalFilename = info.fileName();
        m_loading->loader().images().insert(nxr::ImageList::kCurrent, image);
        showImage(image, true);
    });
}

void NXRImageDisplay::showImage(const QImage& image, bool keepViewIfSameSize)
{
    const QSize oldSize = m_lead->hasBitmap() ? m_lead->bitmap().size() : QSize();
    const float oldZoom = m_viewport->zoom();
    const QPoint oldScroll = m_viewport->maths().scrollPosition();
    const bool repaint = m_lead->autoRepaint();
    m_lead->setAutoRepaint(false);

    QImage shown = image;
    if (!m_state.colorMode && !shown.isNull() && shown.format() != QImage::Format_Grayscale8)
        shown = shown.convertToFormat(QImage::Format_Grayscale8);
    m_lead->setBitmap(shown);
    m_viewport->imageSizeChanged();

    if (!shown.isNull() && (!keepViewIfSameSize || oldSize != shown.size())) {
        NXR_TRACE(kClass, QStringLiteral("msub_ResetAndShowListImage"), QStringLiteral("reset zoom etc."));
        const float zoom = m_viewport->fitImage();
        NXR_TRACE(kClass, QStringLiteral("msub_ResetAndShowListImage"),
                  QStringLiteral("raising event OnZoomChanged(") + fromSingle(zoom) +
                      QStringLiteral("), old zoom=") + fromSingle(oldZoom));
        m_statusBar->UpdateStatusBar(zoom);
        Q_EMIT OnZoomChanged(zoom);
    } else if (!shown.isNull()) {
        NXR_TRACE(kClass, QStringLiteral("msub_ResetAndShowListImage"), QStringLiteral("restore zoom/pan"));
        m_viewport->setZoomDirect(oldZoom);
        m_viewport->setScrollPosition(oldScroll);
    }
    m_lead->setAutoRepaint(repaint);
    m_lead->repaintView();
}

void NXRImageDisplay::clearImage()
{
    m_lead->clearBitmap();
    m_viewport->imageSizeChanged();
    m_originalFilename.clear();
    m_statusBar->showPixel(QString());
}

nxr::RasterView* NXRImageDisplay::activeView() const
{
    return m_state.editingMask() ? m_maskLead : m_lead;
}

void NXRImageDisplay::editModeChanged()
{
    m_maskLead->setVisible(m_state.editingMask());
    m_mouse->setMouseMode(m_mouse->mouseMode());
    UserControl_Resize();
}

bool NXRImageDisplay::busy() const
{
    return m_mouse->busy();
}

int NXRImageDisplay::mouseMode() const
{
    return m_mouse->mouseMode();
}

void NXRImageDisplay::raiseZoomChanged()
{
    const float zoom = activeView()->zoom();
    m_statusBar->UpdateStatusBar(zoom);
    NXR_TRACE(kClass, QStringLiteral("raiseZoomChanged"),
              QStringLiteral("raising event OnZoomChanged(") + fromSingle(zoom) + QLatin1Char(')'));
    Q_EMIT OnZoomChanged(zoom);
}

void NXRImageDisplay::EnableOMIViewButton(int button, bool enable)
{
    NXR_TRACE(kClass, QStringLiteral("EnableOMIViewButton"),
              QStringLiteral("entered, button=") + QString::number(button) + QStringLiteral(", enable=") +
                  fromBool(enable));
    m_viewButtons->SetProperty(QStringLiteral("ButtonEnabled"), nxr::joinItemValue(button, fromBool(enable)));
}

void NXRImageDisplay::RefreshDisplay()
{
    m_viewport->repaintViews();
}

void NXRImageDisplay::msub_OutputLEADDims()
{
    for ([[maybe_unused]] const QString& line : m_viewport->dimensionLines())
        NXR_TRACE(kClass, QStringLiteral("msub_OutputLEADDims"), line);
}

void NXRImageDisplay::flashOKCancel()
{
    if (!m_fraOKCancel->isVisible())
        return;
    m_flashesLeft = 6;
    m_tmrFlashOKCancel->start();
}

void NXRImageDisplay::msub_UpdateImageCaption()
{
    QString text = m_caption;
    if (!m_caption.isEmpty() && !m_overrideCaption.isEmpty())
        text += QStringLiteral(" - ");
    text += m_overrideCaption;
    const bool relayout = text.isEmpty() != m_lblOverride->text().isEmpty();
    m_lblOverride->setText(text);
    if (relayout)
        UserControl_Resize();
}

// ---- tool bar ----

void NXRImageDisplay::setupToolbarActions()
{
    for (int button = vvb_MouseModePointer; button <= vvb_MouseModeZoomOut; ++button)
        m_clicks->setAction(button, [this, button] { m_mouse->setMouseMode(button - 1); });
    m_clicks->setAction(vvb_FitImage, [this] { m_viewport->fitImage(); });
    m_clicks->setAction(vvb_DefaultZoom, [this] {
        const QSize image = m_viewport->maths().effectiveImageSize();
        m_viewport->focusedZoom(m_defaultZoom, image.width() / 2.0, image.height() / 2.0);
    });
    m_clicks->setAfterAction([this] { raiseZoomChanged(); });
}

void NXRImageDisplay::ctl_NXRViewButtons_OnButtonClicked(int button)
{
    const QString name = m_clicks->click(button, [this](int b) {
        core().guard(QStringLiteral("msub_HandleNXRViewButtonClick"), [&] { m_clicks->handle(b); });
    });
    if (!name.isEmpty())
        Q_EMIT OnButtonClicked(name);
}

void NXRImageDisplay::cmd_OK_Click()
{
    core().guard(QStringLiteral("cmd_OK_Click"), [&] { m_clicks->handle(vvb_Accept); });
    m_clicks->passLater(QStringLiteral("Accept"));
}

void NXRImageDisplay::cmd_Cancel_Click()
{
    core().guard(QStringLiteral("cmd_Cancel_Click"), [&] { m_clicks->handle(vvb_Cancel); });
    m_clicks->passLater(QStringLiteral("Cancel"));
}

void NXRImageDisplay::showPixelUnderMouse(bool inside, const QPointF& image)
{
    const QImage& bitmap = activeView() == m_lead ? m_lead->bitmap() : m_maskLead->bitmap();
    if (!inside || bitmap.isNull()) {
        m_statusBar->showPixel(QString());
        return;
    }
    const int x = int(std::floor(image.x()));
    const int y = int(std::floor(image.y()));
    if (!bitmap.valid(x, y)) {
        m_statusBar->showPixel(QString());
        return;
    }
    const QRgb p = bitmap.pixel(x, y);
    QString value;
    if (bitmap.format() == QImage::Format_Grayscale8 ||
        (bitmap.format() == QImage::Format_Indexed8 && bitmap.isGrayscale()))
        value = QString::number(qGray(p));
    else
        value = QStringLiteral("R %1 G %2 B %3").arg(qRed(p)).arg(qGreen(p)).arg(qBlue(p));
    m_statusBar->showPixel(QStringLiteral("x=%1, y=%2: %3").arg(x).arg(y).arg(value));
}
