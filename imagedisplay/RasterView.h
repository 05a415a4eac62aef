#pragma once
// The raster view: a widget that holds one bitmap and paints it at a zoom and scroll offset.
//
// It works in device pixels throughout: at zoom 100 one bitmap pixel covers one physical
// screen pixel, also on a high-density screen; the origin (the destination rectangle's top
// left corner) and the mouse positions it reports are in device pixels of the view. Whoever
// owns the view decides zoom and origin (see ViewMaths); the view only paints.
//
// Over the image it paints its layers (edit/PaintLayer.h), in device pixels as well.
//
// With auto-repaint off, changes of bitmap, zoom or origin do not repaint until repaintView()
// or until auto-repaint is switched on again.

#include "frame/Export.h"
#include "imagedisplay/RasterRenderer.h"

#include <QImage>
#include <QPointF>
#include <QWidget>

#include <vector>

class QPainter;

namespace nxr {

class PaintLayer;
class ViewMaths;

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
    // The same, with its first reduction levels made ahead (RasterRenderer::reductions).
    void setBitmap(const QImage& image, std::vector<QImage> reductions);
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
    // Whether the last mouse press came from a touch screen (a finger, not a mouse).
    bool pressFromTouch() const { return m_pressFromTouch; }
    // Switching it on repaints at once.
    void setAutoRepaint(bool on);
    // Repaints now, whatever the auto-repaint setting.
    void repaintView();

    void setBackgroundColor(const QColor& color);
    QColor backgroundColor() const { return m_renderer.background(); }

    // Size of the view in device pixels.
    QSize deviceSize() const;
    qreal deviceRatio() const;

    // The bitmap for changing pixels in place, in its own format. Call bitmapChanged() with the
    // changed image rectangle afterwards: only that part of the reductions is rebuilt and only
    // that part of the view repainted.
    QImage& editableBitmap() { return m_renderer.editableImage(); }
    // Whether a grey bitmap may get a paint-ready colour copy (RasterRenderer); on by default.
    void setPaintReadyCopy(bool allowed) { m_renderer.setPaintReadyCopy(allowed); }
    void bitmapChanged(const QRect& imageRect);

    // Layers painted over the image on every repaint, lowest order first (equal orders in the
    // order added). The view does not own them. They are painted only while the view has its
    // view maths (setMaths), which the viewport gives the views it places.
    void addLayer(PaintLayer* layer, int order = 0);
    void removeLayer(PaintLayer* layer);
    std::vector<PaintLayer*> layers() const;
    void setMaths(const ViewMaths* maths) { m_maths = maths; }
    const ViewMaths* maths() const { return m_maths; }
    // Repaints only a rectangle of the view (device pixels), image and layers.
    void repaintDevice(const QRect& deviceRect);
    // Repaints only the part of the view showing an image rectangle (image pixels).
    void repaintImage(const QRectF& imageRect);

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
    // A key while the view has the focus; a receiver that uses it sets *taken, otherwise the
    // key goes on to the parent widgets.
    void keyPressed(int key, Qt::KeyboardModifiers modifiers, bool* taken);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void changed();
    QPointF devicePosition(const QPointF& logical) const;

    RasterRenderer m_renderer;
    float m_zoom = 100.0f;
    QPoint m_origin;
    bool m_autoRepaint = true;
    bool m_pressFromTouch = false;
    const ViewMaths* m_maths = nullptr;
    struct Layer
    {
        PaintLayer* layer;
        int order;
    };
    std::vector<Layer> m_layers;
};

} // namespace nxr
