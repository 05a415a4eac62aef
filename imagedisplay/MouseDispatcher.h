#pragma once
// One place for the mouse events of the image display's raster views.
//
// On the image view: pointer mode hands the events to the movable-graphics editing; pan mode
// drags the image with the mouse; zoom modes zoom by a factor of two at the clicked point; the
// wheel zooms in any mode, keeping the point under the cursor in place. Events on the mask view
// go to the mask editing. Both editings are hooks filled by their subsystems; while a hook is
// empty its events are ignored.

#include "frame/Export.h"

#include <QObject>
#include <QPoint>
#include <QPointF>

#include <functional>

namespace nxr {

class ImageViewport;
class RasterView;

// A mouse event as the scripting world sees it: Button 1 left, 2 right, 4 middle; Shift 1
// shift, 2 control, 4 alt; X and Y in device pixels of the raster view.
struct MouseArgs
{
    int button = 0;
    int shift = 0;
    double x = 0;
    double y = 0;
};

class NXR_EXPORT MouseDispatcher : public QObject
{
    Q_OBJECT

public:
    enum MouseMode { Pointer = 1, Pan = 2, ZoomIn = 3, ZoomOut = 4 };

    // The movable-graphics editing, in image coordinates.
    struct GraphicsHooks
    {
        std::function<void(const MouseArgs&, const QPointF& image)> down;
        std::function<void(const MouseArgs&, const QPointF& image)> move;
        std::function<void(const MouseArgs&, const QPointF& image)> up;
        // Hit tolerance in image pixels (always 5 screen pixels).
        std::function<void(double imagePixels)> setHitTolerance;
        std::function<void()> clearHitState;
        // The cursor over a point in pointer mode.
        std::function<Qt::CursorShape(const QPointF& image)> cursorAt;
    };
    // The mask editing, in image coordinates.
    struct MaskHooks
    {
        std::function<void(const MouseArgs&, const QPointF& image)> down;
        std::function<void(const MouseArgs&, const QPointF& image)> move;
        std::function<void(const MouseArgs&, const QPointF& image)> up;
        std::function<void(const MouseArgs&, const QPointF& image)> doubleClick;
    };

    MouseDispatcher(ImageViewport& viewport, QObject* parent = nullptr);

    // Connects the image view and the mask view.
    void attach(RasterView* lead, RasterView* mask);

    int mouseMode() const { return m_mode; }
    void setMouseMode(int mode);
    bool busy() const { return m_busy; }
    bool panning() const { return m_panning; }

    void setGraphicsHooks(GraphicsHooks hooks) { m_graphics = std::move(hooks); }
    void setMaskHooks(MaskHooks hooks) { m_mask = std::move(hooks); }
    // Asked before a zoom click is applied; returning true means the click was kept for later
    // (live mode queues clicks that arrive while an image is loading) and is not applied now.
    void setZoomClickDeferral(std::function<bool(const MouseArgs&)> defer) { m_defer = std::move(defer); }

    // The handlers, also for replaying a kept click.
    void leadMouseDown(const MouseArgs& args);
    void leadMouseMove(const MouseArgs& args);
    void leadMouseUp(const MouseArgs& args);
    void wheel(double steps, const QPointF& devicePoint);
    void maskMouseDown(const MouseArgs& args);
    void maskMouseMove(const MouseArgs& args);
    void maskMouseUp(const MouseArgs& args);
    void maskDoubleClick(const MouseArgs& args);

    static MouseArgs args(Qt::MouseButton button, Qt::MouseButtons held, Qt::KeyboardModifiers modifiers,
                          const QPointF& position);

Q_SIGNALS:
    // A zoom the user made with the mouse (click or wheel).
    void userZoomed(float zoom);
    // The image point under the mouse; hovering(false, ...) when the mouse left the image.
    void hovering(bool inside, const QPointF& image);

private:
    void updateCursor(const QPointF& image);

    ImageViewport& m_viewport;
    RasterView* m_lead = nullptr;
    int m_mode = Pointer;
    bool m_busy = false;
    bool m_panning = false;
    QPointF m_panStart;
    QPoint m_panStartScroll;
    // The point a run of wheel steps at one cursor position is anchored to, so that the
    // whole-pixel rounding of each step does not add up.
    struct WheelAnchor
    {
        QPointF screen;
        QPointF image;
        QPoint origin;
        float zoom = 0.0f;
    };
    WheelAnchor m_wheelAnchor;
    GraphicsHooks m_graphics;
    MaskHooks m_mask;
    std::function<bool(const MouseArgs&)> m_defer;
};

} // namespace nxr
