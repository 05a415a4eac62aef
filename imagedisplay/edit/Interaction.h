#pragma once
// What an editor does with the mouse and keys over the image (movable shapes, mask painting).
//
// The mouse dispatcher hands every event of the image views to the active interaction first;
// an event the interaction does not take (returns false) gets the display's own handling: pan,
// zoom clicks, the mouse-mode cursor. The wheel always zooms.
//
// Clicks: press and release arrive at once (drags need them). click() follows a release only
// when no second press came within the double-click time (tmr_LEADDblClick); a double click
// instead arrives as doubleClick() and neither of its two releases becomes a click().

#include "frame/Export.h"

#include <QCursor>
#include <QPointF>

#include <optional>

namespace nxr {

class RasterView;

struct PointerEvent
{
    // Button as the scripting world numbers it (1 left, 2 right, 4 middle; for moves the held
    // buttons), Shift likewise (1 shift, 2 control, 4 alt).
    int button = 0;
    int shift = 0;
    Qt::MouseButton changed = Qt::NoButton; // the button pressed or released
    Qt::MouseButtons held;
    Qt::KeyboardModifiers modifiers;
    QPointF device;    // device pixels of the view
    QPointF image;     // image pixels (fractional)
    int mouseMode = 1; // 1 pointer, 2 pan, 3 zoom in, 4 zoom out
    const RasterView* view = nullptr;
    bool touch = false; // the press (or the press of this drag) came from a touch screen
};

class NXR_EXPORT Interaction
{
public:
    virtual ~Interaction() = default;

    virtual bool press(const PointerEvent&) { return false; }
    // A move with a button held.
    virtual bool move(const PointerEvent&) { return false; }
    virtual bool release(const PointerEvent&) { return false; }
    // A release that no double click followed (see above).
    virtual void click(const PointerEvent&) {}
    virtual bool doubleClick(const PointerEvent&) { return false; }
    // A move with no button held.
    virtual bool hover(const PointerEvent&) { return false; }
    // A key pressed while the image has the focus (Qt::Key_...). Enter and Escape that are not
    // taken accept or cancel the edit.
    virtual bool key(int /*key*/, Qt::KeyboardModifiers) { return false; }
    // The pointer shape over a point; nothing for the mouse mode's own shape.
    virtual std::optional<Qt::CursorShape> cursorAt(const PointerEvent&) { return std::nullopt; }
    // The same as a full cursor, for pointers with a picture of their own; by default cursorAt().
    virtual std::optional<QCursor> pointerAt(const PointerEvent& e)
    {
        if (const std::optional<Qt::CursorShape> shape = cursorAt(e))
            return QCursor(*shape);
        return std::nullopt;
    }
    // Before every press: the hit tolerance in image pixels (always 5 screen pixels).
    virtual void setHitTolerance(double /*imagePixels*/) {}
    // Drops a gesture in progress and any hit state: a pan began, the mouse mode changed or the
    // interaction stopped being the active one.
    virtual void cancel() {}
};

} // namespace nxr
