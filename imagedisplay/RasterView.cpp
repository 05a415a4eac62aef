#include "imagedisplay/RasterView.h"

#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
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

void RasterView::setBitmap(const QImage& image, std::vector<QImage> reductions)
{
    m_renderer.setImage(image, std::move(reductions));
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

void RasterView::bitmapChanged(const QRect& imageRect)
{
    const QRect changed = imageRect.intersected(m_renderer.image().rect());
    if (changed.isEmpty())
        return;
    m_renderer.imageChanged(changed);
    repaintImage(QRectF(changed));
}

void RasterView::addLayer(PaintLayer* layer, int order)
{
    if (!layer)
        return;
    removeLayer(layer);
    auto at = std::upper_bound(m_layers.begin(), m_layers.end(), order,
                               [](int o, const Layer& l) { return o < l.order; });
    m_layers.insert(at, Layer{layer, order});
    changed();
}

void RasterView::removeLayer(PaintLayer* layer)
{
    const auto gone = std::remove_if(m_layers.begin(), m_layers.end(),
                                     [layer](const Layer& l) { return l.layer == layer; });
    if (gone == m_layers.end())
        return;
    m_layers.erase(gone, m_layers.end());
    changed();
}

std::vector<PaintLayer*> RasterView::layers() const
{
    std::vector<PaintLayer*> out;
    for (const Layer& l : m_layers)
        out.push_back(l.layer);
    return out;
}

void RasterView::repaintDevice(const QRect& deviceRect)
{
    if (!m_autoRepaint || deviceRect.isEmpty())
        return;
    // Widget coordinates are logical pixels; grow to whole pixels so nothing is left stale.
    const qreal ratio = deviceRatio();
    const QRectF logical(QPointF(deviceRect.topLeft()) / ratio, QSizeF(deviceRect.size()) / ratio);
    update(logical.toAlignedRect().adjusted(-1, -1, 1, 1));
}

void RasterView::repaintImage(const QRectF& imageRect)
{
    if (!m_maths) {
        changed();
        return;
    }
    repaintDevice(m_maths->toScreen(imageRect).toAlignedRect());
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
    if (!m_maths)
        return;
    for (const Layer& l : m_layers) {
        painter.save();
        l.layer->paint(painter, *m_maths, area);
        painter.restore();
    }
}

void RasterView::mousePressEvent(QMouseEvent* event)
{
    // Qt turns an unhandled touch into mouse events; the device tells where the press came from.
    m_pressFromTouch =
        event->pointingDevice() && event->pointingDevice()->type() == QInputDevice::DeviceType::TouchScreen;
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

void RasterView::keyPressEvent(QKeyEvent* event)
{
    bool taken = false;
    Q_EMIT keyPressed(event->key(), event->modifiers(), &taken);
    event->setAccepted(taken);
}

void RasterView::leaveEvent(QEvent* event)
{
    Q_EMIT mouseLeft();
    QWidget::leaveEvent(event);
}

} // namespace nxr
