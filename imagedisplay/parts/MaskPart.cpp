#include "imagedisplay/parts/MaskPart.h"

#include "frame/Conversions.h"
#include "imagedisplay/DisplayEditHost.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/EditSession.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/parts/MaskEditLayer.h"
#include "imagedisplay/parts/MaskInteraction.h"
#include "imagedisplay/parts/MaskTintLayer.h"
#include "mask/NXRMaskToolButtons.h"

#include <QEvent>
#include <QFrame>
#include <QMessageBox>

#include <stdexcept>

namespace nxr {

namespace {

// Space between the image and the palette beside it.
constexpr int kPaletteGap = 4;
// Layer orders: the outlines over everything else on the mask view; the tint right over the image.
constexpr int kPointerLayerOrder = 1000;
constexpr int kTintLayerOrder = -1000;

NXRImageDisplay& displayOf(EditHost& host)
{
    auto* display = dynamic_cast<DisplayEditHost*>(&host);
    if (!display)
        throw std::logic_error("mask editing is part of the image display");
    return display->display();
}

// Calls back when the watched widget is resized.
class ResizeWatch : public QObject
{
public:
    ResizeWatch(QObject* watched, std::function<void()> resized)
        : QObject(watched), m_resized(std::move(resized))
    {
        watched->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Resize)
            m_resized();
        return false;
    }

private:
    std::function<void()> m_resized;
};

QFrame* imageFrameOf(NXRImageDisplay& display)
{
    return qobject_cast<QFrame*>(display.viewport().parentWidget());
}

} // namespace

MaskPart::MaskPart(EditHost& host) : m_host(host), m_display(displayOf(host)), m_session(*this)
{
    QFrame* frame = imageFrameOf(m_display);
    m_palette = new NXRMaskToolButtons(frame ? static_cast<QWidget*>(frame) : &m_display);
    m_palette->setObjectName(QStringLiteral("ctl_NXRMaskToolButtons"));
    m_palette->hide();
    if (frame)
        m_frameWatch = new ResizeWatch(frame, [this] { placePalette(); });
    QObject::connect(m_palette, &NXRMaskToolButtons::OnToolSelected, m_palette, [this](int tool) {
        m_session.onToolSelected(tool);
        m_interaction->toolChanged();
    });
    QObject::connect(m_palette, &NXRMaskToolButtons::OnToolSizeSelected, m_palette, [this](int size) {
        m_session.onToolSizeSelected(size);
        m_interaction->toolChanged();
    });
    QObject::connect(m_palette, &NXRMaskToolButtons::OnCommandClicked, m_palette,
                     [this](int command) { m_session.onCommandClicked(command); });

    m_interaction = std::make_unique<MaskInteraction>(m_session, m_host);
    m_tint = std::make_unique<MaskTintLayer>(
        imageList(), [this] { return m_session.ShowMask(); }, [this] { return m_session.isEditing(); });
    m_editTint = std::make_unique<MaskEditLayer>([this]() -> const QImage* {
        return m_session.isEditing() ? &m_session.editor().working() : nullptr;
    });
    // The mask view shows the camera image during an edit: a grey one stays grey (no colour copy
    // of four bytes a pixel), so the edit holds little beside its masks.
    m_display.maskLeadView()->setPaintReadyCopy(false);
    m_host.addLayer(*m_interaction, kPointerLayerOrder, EditHost::View::Mask);
    m_host.addLayer(*m_editTint, kTintLayerOrder, EditHost::View::Mask);
}

MaskPart::~MaskPart()
{
    m_host.removeLayer(*m_interaction);
    m_host.removeLayer(*m_tint);
    m_host.removeLayer(*m_editTint);
    m_host.session().leave(*this);
    delete m_frameWatch;
    delete m_palette;
}

NXRMaskToolButtons* MaskPart::palette() const
{
    return m_palette;
}

// ---- the page's members ----

void MaskPart::setEditMaskMode(int mode)
{
    m_session.setEditMaskMode(mode);
    if (m_session.isEditing() && mode != KSEEditMask_None)
        m_host.session().begin(EditKind::Mask, *this, mode);
}

void MaskPart::setPaletteFlag(const QString& key, bool on)
{
    m_palette->SetProperty(key, fromBool(on));
}

// ---- MaskHost ----

ImageList& MaskPart::imageList()
{
    return m_display.loading().loader().images();
}

ControllerFiles& MaskPart::controllerFiles()
{
    ControllerFiles* files = m_display.loading().files();
    if (!files)
        throw Failure(QStringLiteral("no file transfer"));
    return *files;
}

bool MaskPart::autoRepaint() const
{
    return m_display.leadView()->autoRepaint();
}

void MaskPart::setAutoRepaint(bool on)
{
    m_display.leadView()->setAutoRepaint(on);
}

void MaskPart::resetAndRedraw()
{
    // The tint is drawn only while ShowMask selects a mask.
    const int which = m_session.ShowMask();
    if (which >= 1 && which <= 3)
        m_host.addLayer(*m_tint, kTintLayerOrder, EditHost::View::Image);
    else
        m_host.removeLayer(*m_tint);
    m_display.RefreshDisplay();
}

void MaskPart::editMaskChanged(const QRect& changed)
{
    RasterView* view = m_display.maskLeadView();
    const QSize size = m_session.editor().working().size();
    QImage camera = imageList().image(ImageList::kCurrent);
    const bool shown =
        view->bitmap().size() == size && (camera.isNull() || view->bitmap().cacheKey() == camera.cacheKey() ||
                                          changed != QRect(QPoint(0, 0), size));
    if (shown) {
        view->repaintImage(QRectF(changed));
        return;
    }
    // The mask view shows the camera image itself (shared, not copied); the edit layer tints the
    // working mask over it when painted.
    if (camera.isNull() || camera.size() != size) {
        camera = QImage(size, QImage::Format_Grayscale8);
        camera.fill(0);
    }
    view->setBitmap(camera);
}

void MaskPart::repaintEditArea(const QRectF& area)
{
    const double margin = 4.0 * m_host.screenPixel();
    m_host.repaintDevice(m_host.maths().toScreen(area).adjusted(-margin, -margin, margin, margin));
}

void MaskPart::placePalette()
{
    QFrame* frame = imageFrameOf(m_display);
    if (!frame || !m_palette || !m_palette->isVisible())
        return;
    const QSize hint = m_palette->sizeHint();
    const QRect inner = frame->rect();
    m_palette->setGeometry(inner.right() + 1 - hint.width(), inner.top(), hint.width(),
                           std::min(hint.height(), inner.height()));
    m_palette->raise();
}

void MaskPart::setPaletteShown(bool show)
{
    QFrame* frame = imageFrameOf(m_display);
    m_palette->setVisible(show);
    // The image keeps the frame's width less the palette's column.
    if (frame)
        frame->setContentsMargins(0, 0, show ? m_palette->sizeHint().width() + kPaletteGap : 0, 0);
    placePalette();
}

void MaskPart::showMaskEditControls(bool show)
{
    EditSession& session = m_host.session();
    if (show) {
        setPaletteShown(true);
        // Opens the edit (OK/Cancel bar, pointer mode, the mouse to the mask); the display lays
        // itself out again with the palette's column taken.
        session.begin(EditKind::Mask, *this, m_session.EditMaskMode());
        m_interaction->toolChanged();
        // Keys given to the display reach the mask view (undo, redo, Enter, Escape).
        m_display.setFocusProxy(m_display.maskLeadView());
        if (m_display.isActiveWindow())
            m_display.maskLeadView()->setFocus();
        return;
    }
    if (m_display.focusProxy() == m_display.maskLeadView())
        m_display.setFocusProxy(nullptr);
    setPaletteShown(false);
    m_interaction->setPointer(std::nullopt, 0);
    m_display.maskLeadView()->clearBitmap();
    if (session.editor() == this)
        session.leave(*this); // lays the display out again
    else
        m_display.Resize(m_display.width(), m_display.height());
}

void MaskPart::setBusyPointer(bool busy)
{
    RasterView* view = m_display.activeView();
    if (busy)
        view->setCursor(Qt::BusyCursor);
    else
        view->setCursor(Qt::CrossCursor);
}

QString MaskPart::maskToolProperty(const QString& key)
{
    return m_palette->GetProperty(key);
}

void MaskPart::setMaskToolProperty(const QString& key, const QString& value)
{
    m_palette->SetProperty(key, value);
}

QString MaskPart::viewButtonProperty(const QString& key)
{
    return m_host.viewButtonProperty(key);
}

void MaskPart::setViewButtonProperty(const QString& key, const QString& value)
{
    m_host.setViewButtonProperty(key, value);
}

void MaskPart::reportError(const QString& routine, const QString& text)
{
    m_host.reportError(routine, text);
}

void MaskPart::showCriticalMessage(const QString& text)
{
    // Not modal: the page and the display go on while it is shown.
    auto* box = new QMessageBox(QMessageBox::Critical, QStringLiteral("NXRImageDisplay"), text,
                                QMessageBox::Ok, &m_display);
    box->setObjectName(QStringLiteral("msg_MaskError"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MaskPart::raiseExitMaskEditMode(bool accepted)
{
    m_host.raiseEvent("OnExitMaskEditMode", accepted ? -1 : 0);
}

// ---- Editor ----

Interaction* MaskPart::interaction()
{
    return m_interaction.get();
}

void MaskPart::finish(bool accepted)
{
    if (accepted)
        m_session.accept();
    else
        m_session.cancel();
    // A mask that could not be saved keeps its edit open (the error is reported).
    if (m_session.isEditing())
        m_host.session().begin(EditKind::Mask, *this, m_session.EditMaskMode());
}

} // namespace nxr

NXR_REGISTER_DISPLAY_PART(nxr::MaskPart)
