#include "imagedisplay/RasterView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace nxr {

RasterView::RasterView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
}

RasterView::~RasterView() = default;

void RasterView::setBitmap(const QImage& image)
{
    m_renderer.setImage(image);
    changed();
}

void RasterView::clearBitmap()
{
    setBitmap(QImage());
}

void RasterView::convertToGrey()
{
    const QImage& current = m_renderer.image();
    if (current.isNull() || current.format() == QImage::Format_Grayscale8)
        return;
    setBitmap(current.convertToFormat(QImage::Format_Grayscale8));
}

void RasterView::setZoom(float zoom)
{
    if (!(zoom > 0.0f) || zoom == m_zoom)
        return;
    m_zoom = zoom;
    changed();
}

void RasterView::setOrigin(const QPoint& origin)
{
    if (origin == m_origin)
        return;
    m_origin = origin;
    changed();
}

void RasterView::setView(float zoom, const QPoint& origin)
{
    if ((zoom == m_zoom || !(zoom > 0.0f)) && origin == m_origin)
        return;
    if (zoom > 0.0f)
        m_zoom = zoom;
    m_origin = origin;
    changed();
}

void RasterView::setAutoRepaint(bool on)
{
    if (on == m_autoRepaint)
        return;
    m_autoRepaint = on;
    if (on)
        update();
}

void RasterView::repaintView()
{
    update();
}

void RasterView::setBackgroundColor(const QColor& color)
{
    m_renderer.setBackground(color);
    m_renderer.imageChanged();
    changed();
}

void RasterView::changed()
{
    if (m_autoRepaint)
        update();
}

qreal RasterView::deviceRatio() const
{
    return devicePixelRatioF();
}

QSize RasterView::deviceSize() const
{
    const qreal ratio = deviceRatio();
    return QSize(int(std::lround(width() * ratio)), int(std::lround(height() * ratio)));
}

QPointF RasterView::toImage(const QPointF& device) const
{
    return QPointF((device.x() - m_origin.x()) * 100.0 / double(m_zoom),
                   (device.y() - m_origin.y()) * 100.0 / double(m_zoom));
}

QPointF RasterView::toDevice(const QPointF& image) const
{
    return QPointF(m_origin.x() + image.x() * double(m_zoom) / 100.0,
                   m_origin.y() + image.y() * double(m_zoom) / 100.0);
}

QPointF RasterView::devicePosition(const QPointF& logical) const
{
    return logical * deviceRatio();
}

void RasterView::paintDevice(QPainter& painter, const QRect& deviceArea)
{
    m_renderer.paint(painter, deviceArea, m_zoom, m_origin);
}

void RasterView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const qreal ratio = deviceRatio();
    QRect area = QRect(QPoint(0, 0), deviceSize());
    if (ratio != 1.0) {
        painter.scale(1.0 / ratio, 1.0 / ratio);
        const QRectF exposed = QRectF(event->rect());
        area = area.intersected(QRectF(exposed.topLeft() * ratio, exposed.size() * ratio).toAlignedRect());
    } else {
        area = area.intersected(event->rect());
    }
    painter.setClipRect(area);
    paintDevice(painter, area);
}

void RasterView::mousePressEvent(QMouseEvent* event)
{
    Q_EMIT mousePressed(event->button(), event->modifiers(), devicePosition(event->position()));
}

void RasterView::mouseMoveEvent(QMouseEvent* event)
{
    Q_EMIT mouseMoved(event->buttons(), event->modifiers(), devicePosition(event->position()));
}

void RasterView::mouseReleaseEvent(QMouseEvent* event)
{
    Q_EMIT mouseReleased(event->button(), event->modifiers(), devicePosition(event->position()));
}

void RasterView::mouseDoubleClickEvent(QMouseEvent* event)
{
    Q_EMIT mouseDoubleClicked(event->button(), event->modifiers(), devicePosition(event->position()));
}

void RasterView::wheelEvent(QWheelEvent* event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0.0) {
        event->ignore();
        return;
    }
    Q_EMIT wheelTurned(steps, event->modifiers(), devicePosition(event->position()));
    event->accept();
}

void RasterView::leaveEvent(QEvent* event)
{
    Q_EMIT mouseLeft();
    QWidget::leaveEvent(event);
}

RasterView::BitmapPainter::BitmapPainter(RasterView& view) : m_view(view)
{
    m_image = view.bitmap();
    if (m_image.format() == QImage::Format_Grayscale8 || m_image.format() == QImage::Format_Indexed8)
        m_image = m_image.convertToFormat(QImage::Format_RGB32);
    // Detach from the renderer's copy before drawing.
    m_view.m_renderer.setImage(QImage());
    m_painter = std::make_unique<QPainter>(&m_image);
}

RasterView::BitmapPainter::~BitmapPainter()
{
    m_painter->end();
    m_painter.reset();
    m_view.setBitmap(m_image);
}

} // namespace nxr
