#pragma once
// The movable shapes a page places on the image and the operator edits by hand: a window (a
// rectangle, rotatable or not), a cursor point, a line and a line pair. This class holds their
// geometry and answers the editing questions in image pixels: what lies under a point, which
// mouse pointer it shows, and where a drag that started at one point and is now at another
// leaves the shape. Screen-free; the editor (MovableShapeEditor) turns events into these calls.
//
// The class name is spelled with "Moveable"; its error traces use "clsMovableGraphics." as
// their prefix. Both spellings are kept on purpose.

#include "frame/Export.h"
#include "graphics/Geometry.h"
#include "graphics/OverlayItems.h"

#include <array>

namespace nxr {

enum class MovableShape { None, Window, Cursor, Line, LinePair };

// Standard mouse pointer numbers the editing shows.
enum MovablePointer : int {
    kPointerDefault = 0,
    kPointerSizeAll = 5,
    kPointerSizeNESW = 6,
    kPointerSizeNS = 7,
    kPointerSizeNWSE = 8,
    kPointerSizeWE = 9,
    kPointerRotate = 99, // the control's own picture
};

// Which part of a line or line pair lies under a point.
enum class LinePart { None, End1, End2, Whole, Side };

class NXR_EXPORT clsMoveableGraphics
{
public:
    // Handle colours (0x00BBGGRR).
    static constexpr qint32 kHandleRed = 0x0000FF;
    static constexpr qint32 kHandleOrange = 0x007FFF; // RGB(255, 127, 0)
    static constexpr qint32 kHandleGreen = 0x00EF00;  // RGB(0, 239, 0)
    static constexpr qint32 kHandleViolet = 0xFF007F; // RGB(127, 0, 255)
    // The shortest line an end-point move leaves, and the least window side an edge drag leaves.
    static constexpr double kLeastLength = 1.0;
    // The grab distance in screen pixels, whatever the zoom.
    static constexpr double kScreenTolerance = 5.0;
    // Style bits of the movable line when its arrow flag is set: a head at the second end.
    static constexpr qint16 kArrowStyle = 8;

    clsVector Cursor;
    clsWindow Window;
    clsLineItem Line;
    // The window as a rectangle while it is edited; BeginWindowEdit builds it from Window.
    clsRectangle Rect;
    // Grab distance in image pixels; the editor sets it to 5 screen pixels on every press.
    double HitTolerance = kScreenTolerance;
    std::array<qint32, 5> HandleColors{kHandleRed, kHandleRed, kHandleRed, kHandleRed, kHandleRed};
    // Which shape is being edited.
    MovableShape Editing = MovableShape::None;

    // Flags of the last window hit test.
    bool HitLeft = false, HitRight = false, HitTop = false, HitBottom = false;
    bool HitInside = false, HitRotate = false;

    void BeginWindowEdit() { Rect.SetFromWindow(Window); }
    void ResetHandleColors() { HandleColors.fill(kHandleRed); }
    void ClearHits() { HitLeft = HitRight = HitTop = HitBottom = HitInside = HitRotate = false; }

    // Runs the window hit test on the working rectangle at HitTolerance: sets the hit flags and
    // HandleColors and returns the pointer number; *hit says whether anything was hit.
    int HitTestWindow(const clsVector& p, bool* hit = nullptr);
    // The pointer number for the current hit flags.
    int WindowPointer() const;

    // Moves the window for a drag that grabbed what the hit flags say at `pressPoint` on the
    // rectangle `atPress`, and is now at `p`. Absolute: the result depends on the press state and
    // p only. Rect and Window are updated.
    void DragWindow(const clsRectangle& atPress, const clsVector& pressPoint, const clsVector& p);
    // Shifts the whole window (Rect and Window) by (dx, dy).
    void ShiftWindow(double dx, double dy);

    // The part of the line (or of the line pair, when `pair`) under p at HitTolerance; the
    // nearer end wins when both are in reach.
    LinePart HitTestLine(const clsVector& p, bool pair) const;
    int LinePointer(LinePart part) const;
    // idx 1 moves end point 1 to (x, y), idx 2 end point 2; idx 3 shifts the whole line by
    // (x, y). An end point never comes closer than kLeastLength to the other end: a point
    // closer is put at that distance in its direction (along the line when it is on the other
    // end). With keepDirection the new point is first projected onto the line through both ends.
    void MoveLine(int idx, double x, double y, bool keepDirection = false);
    // Sets the pair width so that a side line passes through p, within the line's limits.
    void SetPairWidthThrough(const clsVector& p);
    // w kept within MinPairWidth and MaxPairWidth (no upper limit when that is -1).
    double ClampPairWidth(double w) const;

    // A window along the line from (x1, y1) to (x2, y2), as long as the line, `width` across it,
    // centred on it, turned to the line's direction; rotatable.
    static clsWindow DefineMoveableWindowByLineAndWidth(double x1, double y1, double x2, double y2,
                                                        double width);
    // Corners 0 to 3 of the current window (top left, top right, bottom right, bottom left
    // before rotation).
    std::array<clsVector, 4> GetMoveableWindowCornerPoints() const;

    // The sizing pointer for a direction (image pixels, Y down): 9 west-east, 8 north-west to
    // south-east, 7 north-south, 6 north-east to south-west.
    static int SizingPointer(double dx, double dy);
};

} // namespace nxr
