#include "imagedisplay/MouseDispatcher.h"

#include "frame/Conversions.h"
#include "frame/Trace.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/Interaction.h"

#include <QTimer>

#include <cmath>

namespace nxr {
namespace {
const QString kClass = QStringLiteral("NXRImageDisplay");

int buttonNumber(Qt::MouseButtons b)
{
    int n = 0;
    if (b & Qt::LeftButton)
        n |= 1;
    if (b & Qt::RightButton)
        n |= 2;
    if (b & Qt::MiddleButton)
        n |= 4;
    return n;
}

int shiftNumber(Qt::KeyboardModifiers m)
{
    int n = 0;
    if (m & Qt::ShiftModifier)
        n |= 1;
    if (m & Qt::ControlModifier)
        n |= 2;
    if (m & Qt::AltModifier)
        n |= 4;
    return n;
}

Qt::MouseButton buttonOf(int number)
{
    if (number & 1)
        return Qt::LeftButton;
    if (number & 2)
        return Qt::RightButton;
    if (number & 4)
        return Qt::MiddleButton;
    return Qt::NoButton;
}

Qt::KeyboardModifiers modifiersOf(int shift)
{
    Qt::KeyboardModifiers m;
    if (shift & 1)
        m |= Qt::ShiftModifier;
    if (shift & 2)
        m |= Qt::ControlModifier;
    if (shift & 4)
        m |= Qt::AltModifier;
    return m;
}
} // namespace

struct MouseDispatcher::Pending
{
    PointerEvent release;
};

MouseDispatcher::MouseDispatcher(ImageViewport& viewport, QTimer* doubleClickTimer, QObject* parent)
    : QObject(parent), m_viewport(viewport), m_doubleClickTimer(doubleClickTimer)
{
    m_doubleClickTimer->setSingleShot(true);
    connect(m_doubleClickTimer, &QTimer::timeout, this, &MouseDispatcher::singleClickTimedOut);
}

MouseDispatcher::~MouseDispatcher() = default;

PointerEvent MouseDispatcher::event(RasterView* view, Qt::MouseButton changed, Qt::MouseButtons held,
                                    Qt::KeyboardModifiers modifiers, const QPointF& device) const
{
    PointerEvent e;
    e.button = buttonNumber(changed != Qt::NoButton ? Qt::MouseButtons(changed) : held);
    e.shift = shiftNumber(modifiers);
    e.changed = changed;
    e.held = held;
    e.modifiers = modifiers;
    e.device = device;
    e.image = m_viewport.maths().toImage(device);
    e.mouseMode = m_mode;
    e.view = view;
    e.touch = view && view->pressFromTouch();
    return e;
}

void MouseDispatcher::attach(RasterView* view)
{
    if (!m_lead)
        m_lead = view;
    connect(view, &RasterView::mousePressed, this,
            [this, view](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                press(event(view, b, b, m, p), false);
            });
    connect(view, &RasterView::mouseDoubleClicked, this,
            [this, view](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                press(event(view, b, b, m, p), true);
            });
    connect(view, &RasterView::mouseMoved, this,
            [this, view](Qt::MouseButtons b, Qt::KeyboardModifiers m, const QPointF& p) {
                move(event(view, Qt::NoButton, b, m, p));
            });
    connect(view, &RasterView::mouseReleased, this,
            [this, view](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                release(event(view, b, {}, m, p));
            });
    connect(view, &RasterView::wheelTurned, this,
            [this](double steps, Qt::KeyboardModifiers, const QPointF& p) { wheel(steps, p); });
    connect(view, &RasterView::keyPressed, this, [this](int key, Qt::KeyboardModifiers m, bool* taken) {
        *taken = m_interaction && m_interaction->key(key, m);
        if (!*taken)
            Q_EMIT keyNotTaken(key, m, taken);
    });
    connect(view, &RasterView::mouseLeft, this, [this] { Q_EMIT hovering(false, QPointF()); });
}

void MouseDispatcher::setMouseMode(int mode)
{
    if (mode < Pointer || mode > ZoomOut)
        return;
    if (mode != m_mode && m_interaction)
        m_interaction->cancel();
    m_mode = mode;
    m_panning = false;
    if (m_lead)
        updateCursor(event(m_lead, Qt::NoButton, {}, {}, QPointF(-1e9, -1e9)));
}

void MouseDispatcher::setInteraction(Interaction* interaction)
{
    if (interaction == m_interaction)
        return;
    if (m_interaction)
        m_interaction->cancel();
    m_doubleClickTimer->stop();
    m_pending.reset();
    m_inDoubleClick = false;
    m_interaction = interaction;
}

void MouseDispatcher::updateCursor(const PointerEvent& e)
{
    auto* view = const_cast<RasterView*>(e.view);
    if (!view)
        return;
    if (m_interaction) {
        if (const std::optional<QCursor> cursor = m_interaction->pointerAt(e)) {
            view->setCursor(*cursor);
            return;
        }
    }
    switch (m_mode) {
    case Pan:
        view->setCursor(m_panning ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case ZoomIn:
    case ZoomOut:
        view->setCursor(Qt::CrossCursor);
        break;
    default:
        view->setCursor(Qt::ArrowCursor);
        break;
    }
}

void MouseDispatcher::leadMouseDown(const MouseArgs& a)
{
    if (!m_lead)
        return;
    const Qt::MouseButton b = buttonOf(a.button);
    press(event(m_lead, b, b, modifiersOf(a.shift), QPointF(a.x, a.y)), false);
}

void MouseDispatcher::press(const PointerEvent& e, bool doubleClick)
{
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"), QStringLiteral("Entered"));
    bool taken = false;
    if (m_interaction) {
        const double ratio = e.view ? e.view->deviceRatio() : 1.0;
        m_interaction->setHitTolerance(kHitTolerancePixels * ratio / m_viewport.maths().scale());
        if (doubleClick) {
            // The second press of a double click: the first release does not become a click.
            m_doubleClickTimer->stop();
            m_pending.reset();
            m_inDoubleClick = true;
            taken = m_interaction->doubleClick(e);
        } else {
            m_inDoubleClick = false;
            taken = m_interaction->press(e);
        }
    }
    if (!taken)
        fallbackPress(e);
    m_busy = false;
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"), QStringLiteral("Done"));
}

void MouseDispatcher::fallbackPress(const PointerEvent& e)
{
    const ViewMaths& maths = m_viewport.maths();
    switch (m_mode) {
    case Pan:
        if (m_interaction)
            m_interaction->cancel();
        m_panning = true;
        m_panStart = e.device;
        m_panStartScroll = maths.scrollPosition();
        updateCursor(e);
        break;
    case ZoomIn:
    case ZoomOut: {
        if (e.view != m_lead)
            break;
        const MouseArgs a{e.button, e.shift, e.device.x(), e.device.y()};
        if (m_defer && m_defer(a))
            break;
        if (m_busy)
            break;
        m_busy = true;
        const float current = maths.zoom();
        const bool in = (a.button == 1 && m_mode == ZoomIn) || (a.button == 2 && m_mode == ZoomOut);
        const bool out = (a.button == 2 && m_mode == ZoomIn) || (a.button == 1 && m_mode == ZoomOut);
        if (in || out) {
            const float wanted =
                ViewMaths::integerZoom(in ? double(current) * 2.0 : double(current) / 2.0, true);
            const float zoom = m_viewport.focusedZoom(wanted, e.image.x(), e.image.y());
            NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"),
                      QStringLiteral("new zoom=") + fromSingle(zoom));
            Q_EMIT userZoomed(zoom);
        }
        break;
    }
    default:
        break;
    }
}

void MouseDispatcher::move(const PointerEvent& e)
{
    const bool dragging = e.held != Qt::NoButton;
    bool taken = false;
    if (m_interaction)
        taken = dragging ? m_interaction->move(e) : m_interaction->hover(e);
    if (!taken && m_mode == Pan && m_panning && (e.held & Qt::LeftButton)) {
        const QPointF moved = e.device - m_panStart;
        m_viewport.setScrollPosition(m_panStartScroll -
                                     QPoint(int(std::lround(moved.x())), int(std::lround(moved.y()))));
    }
    updateCursor(e);
    const QSize size = m_viewport.maths().imageSize();
    const bool inside =
        e.image.x() >= 0 && e.image.y() >= 0 && e.image.x() < size.width() && e.image.y() < size.height();
    Q_EMIT hovering(inside, e.image);
}

void MouseDispatcher::release(const PointerEvent& e)
{
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseUp"), QStringLiteral("Entered"));
    bool taken = false;
    if (m_interaction) {
        taken = m_interaction->release(e);
        if (m_inDoubleClick) {
            m_inDoubleClick = false;
        } else {
            m_pending = std::make_unique<Pending>(Pending{e});
            m_doubleClickTimer->start();
        }
    }
    if (!taken && m_panning) {
        m_panning = false;
        updateCursor(e);
    }
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseUp"), QStringLiteral("Done"));
}

void MouseDispatcher::singleClickTimedOut()
{
    std::unique_ptr<Pending> pending = std::move(m_pending);
    if (pending && m_interaction)
        m_interaction->click(pending->release);
}

void MouseDispatcher::wheel(double steps, const QPointF& devicePoint)
{
    const int whole = int(std::lround(steps));
    if (whole == 0)
        return;
    const ViewMaths& maths = m_viewport.maths();
    const float before = maths.zoom();
    const bool sameRun = m_wheelAnchor.screen == devicePoint && m_wheelAnchor.origin == maths.origin() &&
                         m_wheelAnchor.zoom == before;
    const QPointF image = sameRun ? m_wheelAnchor.image : maths.toImage(devicePoint);
    const float wanted = ViewMaths::wheelZoom(before, whole);
    const float zoom = m_viewport.anchoredZoom(wanted, devicePoint, image);
    m_wheelAnchor = WheelAnchor{devicePoint, image, maths.origin(), zoom};
    if (zoom != before)
        Q_EMIT userZoomed(zoom);
}

} // namespace nxr
