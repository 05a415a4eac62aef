#include "imagedisplay/MouseDispatcher.h"

#include "frame/Conversions.h"
#include "frame/Trace.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"

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
} // namespace

MouseDispatcher::MouseDispatcher(ImageViewport& viewport, QObject* parent)
    : QObject(parent), m_viewport(viewport)
{}

MouseArgs MouseDispatcher::args(Qt::MouseButton button, Qt::MouseButtons held,
                                Qt::KeyboardModifiers modifiers, const QPointF& position)
{
    MouseArgs a;
    a.button = buttonNumber(button != Qt::NoButton ? Qt::MouseButtons(button) : held);
    a.shift = shiftNumber(modifiers);
    a.x = position.x();
    a.y = position.y();
    return a;
}

void MouseDispatcher::attach(RasterView* lead, RasterView* mask)
{
    m_lead = lead;
    connect(lead, &RasterView::mousePressed, this,
            [this](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                leadMouseDown(args(b, {}, m, p));
            });
    connect(lead, &RasterView::mouseMoved, this,
            [this](Qt::MouseButtons b, Qt::KeyboardModifiers m, const QPointF& p) {
                leadMouseMove(args(Qt::NoButton, b, m, p));
            });
    connect(lead, &RasterView::mouseReleased, this,
            [this](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                leadMouseUp(args(b, {}, m, p));
            });
    connect(lead, &RasterView::wheelTurned, this,
            [this](double steps, Qt::KeyboardModifiers, const QPointF& p) { wheel(steps, p); });
    connect(lead, &RasterView::mouseLeft, this, [this] { Q_EMIT hovering(false, QPointF()); });
    if (!mask)
        return;
    connect(mask, &RasterView::mousePressed, this,
            [this](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                maskMouseDown(args(b, {}, m, p));
            });
    connect(mask, &RasterView::mouseMoved, this,
            [this](Qt::MouseButtons b, Qt::KeyboardModifiers m, const QPointF& p) {
                maskMouseMove(args(Qt::NoButton, b, m, p));
            });
    connect(mask, &RasterView::mouseReleased, this,
            [this](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                maskMouseUp(args(b, {}, m, p));
            });
    connect(mask, &RasterView::mouseDoubleClicked, this,
            [this](Qt::MouseButton b, Qt::KeyboardModifiers m, const QPointF& p) {
                maskDoubleClick(args(b, {}, m, p));
            });
    connect(mask, &RasterView::wheelTurned, this,
            [this](double steps, Qt::KeyboardModifiers, const QPointF& p) { wheel(steps, p); });
}

void MouseDispatcher::setMouseMode(int mode)
{
    if (mode < Pointer || mode > ZoomOut)
        return;
    m_mode = mode;
    m_panning = false;
    updateCursor(QPointF());
}

void MouseDispatcher::updateCursor(const QPointF& image)
{
    if (!m_lead)
        return;
    switch (m_mode) {
    case Pan:
        m_lead->setCursor(m_panning ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case ZoomIn:
    case ZoomOut:
        m_lead->setCursor(Qt::CrossCursor);
        break;
    default:
        m_lead->setCursor(m_graphics.cursorAt ? m_graphics.cursorAt(image) : Qt::ArrowCursor);
        break;
    }
}

void MouseDispatcher::leadMouseDown(const MouseArgs& a)
{
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"), QStringLiteral("Entered"));
    const ViewMaths& maths = m_viewport.maths();
    const QPointF image = maths.toImage(QPointF(a.x, a.y));
    const double scale = maths.scale();
    if (m_graphics.setHitTolerance)
        m_graphics.setHitTolerance(5.0 / scale);

    switch (m_mode) {
    case Pointer:
        if (m_graphics.down)
            m_graphics.down(a, image);
        break;
    case Pan:
        if (m_graphics.clearHitState)
            m_graphics.clearHitState();
        m_panning = true;
        m_panStart = QPointF(a.x, a.y);
        m_panStartScroll = maths.scrollPosition();
        updateCursor(image);
        break;
    case ZoomIn:
    case ZoomOut: {
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
            const float zoom = m_viewport.focusedZoom(wanted, image.x(), image.y());
            NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"),
                      QStringLiteral("new zoom=") + fromSingle(zoom));
            Q_EMIT userZoomed(zoom);
        }
        break;
    }
    default:
        break;
    }
    m_busy = false;
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseDown"), QStringLiteral("Done"));
}

void MouseDispatcher::leadMouseMove(const MouseArgs& a)
{
    const QPointF position(a.x, a.y);
    if (m_mode == Pan && m_panning && (a.button & 1)) {
        const QPointF moved = position - m_panStart;
        m_viewport.setScrollPosition(m_panStartScroll -
                                     QPoint(int(std::lround(moved.x())), int(std::lround(moved.y()))));
    }
    const QPointF image = m_viewport.maths().toImage(position);
    if (m_mode == Pointer) {
        if (m_graphics.move)
            m_graphics.move(a, image);
        updateCursor(image);
    }
    const QSize size = m_viewport.maths().imageSize();
    const bool inside =
        image.x() >= 0 && image.y() >= 0 && image.x() < size.width() && image.y() < size.height();
    Q_EMIT hovering(inside, image);
}

void MouseDispatcher::leadMouseUp(const MouseArgs& a)
{
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseUp"), QStringLiteral("Entered"));
    if (m_panning) {
        m_panning = false;
        updateCursor(QPointF());
    } else if (m_mode == Pointer && m_graphics.up) {
        m_graphics.up(a, m_viewport.maths().toImage(QPointF(a.x, a.y)));
    }
    NXR_TRACE(kClass, QStringLiteral("ctl_LEAD_MouseUp"), QStringLiteral("Done"));
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

void MouseDispatcher::maskMouseDown(const MouseArgs& a)
{
    if (m_mask.down)
        m_mask.down(a, m_viewport.maths().toImage(QPointF(a.x, a.y)));
}

void MouseDispatcher::maskMouseMove(const MouseArgs& a)
{
    const QPointF image = m_viewport.maths().toImage(QPointF(a.x, a.y));
    if (m_mask.move)
        m_mask.move(a, image);
    const QSize size = m_viewport.maths().imageSize();
    Q_EMIT hovering(image.x() >= 0 && image.y() >= 0 && image.x() < size.width() && image.y() < size.height(),
                    image);
}

void MouseDispatcher::maskMouseUp(const MouseArgs& a)
{
    if (m_mask.up)
        m_mask.up(a, m_viewport.maths().toImage(QPointF(a.x, a.y)));
}

void MouseDispatcher::maskDoubleClick(const MouseArgs& a)
{
    if (m_mask.doubleClick)
        m_mask.doubleClick(a, m_viewport.maths().toImage(QPointF(a.x, a.y)));
}

} // namespace nxr
