#pragma once
// The raster view: a widget that holds one bitmap and paints it at a zoom and scroll offset.
//
// It works in device pixels throughout: at zoom 100 one bitmap pixel covers one physical
// screen pixel, also on a high-density screen; the origin (the destination rectangle's top
// left corner) and the mouse positions it reports are in device pixels of the view. Whoever
// owns the view decides zoom and origin (see ViewMaths); the view only paints.
//
// With auto-repaint off, changes of bitmap, zoom or origin do not repaint until repaintView()
// or until auto-repaint is switched on again.

#include "frame/Export.h"
#include "imagedisplay/RasterRenderer.h"

#include <QImage>
#include <QPointF>
#include <QWidget>

#include <memory>

class QPainter;

namespace nxr {

class NXR_EXPORT RasterView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool AutoRepaint READ autoRepaint WRITE setAutoRepaint)
    Q_PROPERTY(float Zoom READ zoom WRITE setZoom)
    Q_PROPERTY(int BitmapWidth READ bitmapWidth)
    Q_PROPERTY(int BitmapHeight READ bitmapHeight)

public:
    explicit RasterView(QWidget* parent = nullptr);
    ~RasterView() override;

    // The bitmap, kept as given (a grey image stays grey).
    void setBitmap(const QImage& image);
    const QImage& bitmap() const { return m_renderer.image(); }
    bool hasBitmap() const { return !m_renderer.image().isNull(); }
    void clearBitmap();
    int bitmapWidth() const { return m_renderer.image().width(); }
    int bitmapHeight() const { return m_renderer.image().height(); }
    // Converts the bitmap to grey in place (no change when it is grey already).
    void convertToGrey();

    float zoom() const { return m_zoom; }
    void setZoom(float zoom);
    QPoint origin() const { return m_origin; }
    void setOrigin(const QPoint& origin);
    void setView(float zoom, const QPoint& origin);

    bool autoRepaint() const { return m_autoRepaint; }
    // Switching it on repaints at once.
    void setAutoRepaint(bool on);
    // Repaints now, whatever the auto-repaint setting.
    void repaintView();

    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const { return m_renderer.background(); }

    // Size of the view in device pixels.
    QSize deviceSize() const;
    qreal deviceRatio() const;

    // Image point under a device pixel of the view, and back.
    QPointF toImage(const QPointF& device) const;
    QPointF toDevice(const QPointF& image) const;

    // A painter on the bitmap for drawing into it; when the returned object goes, the view
    // knows the bitmap changed (and repaints when auto-repaint is on). A grey bitmap is drawn
    // on after conversion to colour.
    class BitmapPainter
    {
    public:
        explicit BitmapPainter(RasterView& view);
        ~BitmapPainter();
        BitmapPainter(const BitmapPainter&) = delete;
        BitmapPainter& operator=(const BitmapPainter&) = delete;
        QPainter& operator*() { return *m_painter; }
        QPainter* operator->() { return m_painter.get(); }

    private:
        RasterView& m_view;
        QImage m_image;
        std::unique_ptr<QPainter> m_painter;
    };
    BitmapPainter bitmapPainter() { return BitmapPainter(*this); }

    // Paints the view area `deviceArea` through painter (which works in device pixels).
    void paintDevice(QPainter& painter, const QRect& deviceArea);

Q_SIGNALS:
    // Mouse events in device pixels of the view.
    void mousePressed(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QPointF& position);
    void mouseMoved(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, const QPointF& position);
    void mouseReleased(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QPointF& position);
    void mouseDoubleClicked(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, const QPointF& position);
    // Wheel steps (one notch = 1, toward the user negative) at a device position.
    void wheelTurned(double steps, Qt::KeyboardModifiers modifiers, const QPointF& position);
    void mouseLeft();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void changed();
    QPointF devicePosition(const QPointF& logical) const;

    RasterRenderer m_renderer;
    float m_zoom = 100.0f;
    QPoint m_origin;
    bool m_autoRepaint = true;
};

} // namespace nxr
