#pragma once
// One place for the mouse and key events of the image display's raster views.
//
// Every event of the image view (and of the mask view while it is shown) goes first to the
// active Interaction (edit/Interaction.h), which an editor installs through the edit session.
// What the interaction does not take gets the display's own handling by mouse mode: pan mode
// drags the image, the zoom modes zoom by a factor of two at the clicked point. The wheel zooms
// in any mode, keeping the point under the cursor in place. Releases become single clicks only
// after the double-click timer (tmr_LEADDblClick) ran out without a second press.

#include "frame/Export.h"

#include <QObject>
#include <QPoint>
#include <QPointF>

#include <functional>
#include <memory>

class QTimer;

namespace nxr {

class ImageViewport;
class Interaction;
class RasterView;
struct PointerEvent;

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
    // Hit tolerance of the editors, in screen pixels.
    static constexpr double kHitTolerancePixels = 5.0;

    // doubleClickTimer: single shot; its interval is the double-click time.
    MouseDispatcher(ImageViewport& viewport, QTimer* doubleClickTimer, QObject* parent = nullptr);
    ~MouseDispatcher() override;

    // Connects a raster view (the image view first, then the mask view).
    void attach(RasterView* view);

    int mouseMode() const { return m_mode; }
    void setMouseMode(int mode);
    bool busy() const { return m_busy; }
    bool panning() const { return m_panning; }

    // The interaction that sees the events first; null for none. The one replaced is cancelled.
    void setInteraction(Interaction* interaction);
    Interaction* interaction() const { return m_interaction; }

    // Asked before a zoom click is applied; returning true means the click was kept for later
    // (live mode queues clicks that arrive while an image is loading) and is not applied now.
    void setZoomClickDeferral(std::function<bool(const MouseArgs&)> defer) { m_defer = std::move(defer); }

    // A mouse-down on the image view, as if it arrived now (replays a kept zoom click).
    void leadMouseDown(const MouseArgs& args);
    void wheel(double steps, const QPointF& devicePoint);

Q_SIGNALS:
    // A zoom the user made with the mouse (click or wheel).
    void userZoomed(float zoom);
    // The image point under the mouse; hovering(false, ...) when the mouse left the image.
    void hovering(bool inside, const QPointF& image);
    // A key on an image view that the interaction did not take; a receiver that uses it sets
    // *taken.
    void keyNotTaken(int key, Qt::KeyboardModifiers modifiers, bool* taken);

private:
    PointerEvent event(RasterView* view, Qt::MouseButton changed, Qt::MouseButtons held,
                       Qt::KeyboardModifiers modifiers, const QPointF& device) const;
    void press(const PointerEvent& e, bool doubleClick);
    void move(const PointerEvent& e);
    void release(const PointerEvent& e);
    void fallbackPress(const PointerEvent& e);
    void updateCursor(const PointerEvent& e);
    void singleClickTimedOut();

    ImageViewport& m_viewport;
    QTimer* m_doubleClickTimer;
    RasterView* m_lead = nullptr;
    Interaction* m_interaction = nullptr;
    int m_mode = Pointer;
    bool m_busy = false;
    bool m_panning = false;
    QPointF m_panStart;
    QPoint m_panStartScroll;
    // The release waiting to become a single click, and whether the press in progress is the
    // second of a double click.
    struct Pending;
    std::unique_ptr<Pending> m_pending;
    bool m_inDoubleClick = false;
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
    std::function<bool(const MouseArgs&)> m_defer;
};

} // namespace nxr
