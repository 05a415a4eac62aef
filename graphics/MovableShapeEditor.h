#pragma once
// Editing one movable shape with the mouse, touch or keys, without any widget: events arrive in
// image pixels with their button and modifiers, the editor answers with hit tests, pointer
// shapes and drags on the shapes of a clsMoveableGraphics, and reports every change to a sink
// (which replaces the shape's item and repaints the changed area). One edit runs from begin()
// to finish(accepted); a refused edit puts the shape back exactly as it was at begin().
//
// Grab distances are given in screen pixels and converted with the view's scale: 5 screen
// pixels for the mouse at every zoom, about 4 mm for a finger.

#include "frame/Export.h"
#include "graphics/MoveableGraphics.h"

#include <QCursor>
#include <QPointF>
#include <QRect>
#include <QRectF>

#include <array>

class QPainter;

namespace nxr {

struct ScreenMapping;

// How the view shows the image when the events arrive.
struct NXR_EXPORT EditorView
{
    // Device pixels per image pixel (zoom / 100).
    double scale = 1.0;
    // Device pixels per screen (device-independent) pixel.
    double devicePixelRatio = 1.0;
    // Device pixels per inch of the screen, for the finger's grab distance.
    double dotsPerInch = 96.0;
    // The mouse's grab distance in screen pixels.
    double tolerancePixels = clsMoveableGraphics::kScreenTolerance;
};

// A press, move, release or double click in image pixels.
struct NXR_EXPORT EditorPointer
{
    QPointF image;
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers;
    // From a touch screen: the grab distance grows to a finger's width.
    bool touch = false;
};

class NXR_EXPORT MovableEditorSink
{
public:
    virtual ~MovableEditorSink() = default;
    // The shape's geometry changed: its item is to be replaced, `imageArea` repainted.
    virtual void shapeChanged(MovableShape shape, const QRectF& imageArea) = 0;
    // Only the handles' colours changed.
    virtual void repaintArea(const QRectF& imageArea) = 0;
    // The edit ended; reported once per begin().
    virtual void editFinished(MovableShape shape, bool accepted) = 0;
};

class NXR_EXPORT MovableShapeEditor
{
public:
    static constexpr double kFingerMillimetres = 4.0;
    // Room round a shape that a repaint covers, screen pixels: handles, pen, arrow heads, the
    // cursor's mark.
    static constexpr double kRepaintMargin = 20.0;
    static constexpr double kHandleSide = 7.0;
    static constexpr double kCursorSize = 11.0;

    MovableShapeEditor(clsMoveableGraphics& model, MovableEditorSink& sink);

    // Starts editing `shape` drawn in `color`; the shape as it is now is kept for a refusal.
    void begin(MovableShape shape, qint32 color);
    bool active() const { return m_shape != MovableShape::None; }
    MovableShape shape() const { return m_shape; }
    void setColor(qint32 color) { m_color = color; }
    // Whether the cursor may be moved (a fixed cursor is only shown).
    void setCursorMovable(bool movable) { m_cursorMovable = movable; }
    bool cursorMovable() const { return m_cursorMovable; }

    // The image's area in image pixels. Moves of a whole shape stop when its centre (the
    // cursor's point) would leave it, so a shape cannot be dragged out of reach; a shape already
    // outside may still come back. An empty area switches the rule off.
    void setImageBounds(const QRectF& bounds) { m_bounds = bounds; }
    const QRectF& imageBounds() const { return m_bounds; }

    void setView(const EditorView& view) { m_view = view; }
    const EditorView& view() const { return m_view; }
    // The grab distance in image pixels: tolerancePixels (5) screen pixels, or a finger's width
    // for touch when that is more.
    double hitTolerance(bool touch = false) const;

    // A left press on a part of the shape grabs it (true); anything else is not taken.
    bool press(const EditorPointer& e);
    // Drags what was grabbed; without a grab it is a hover.
    void move(const EditorPointer& e);
    void release(const EditorPointer& e);
    // Not used by the shapes: always false.
    bool doubleClick(const EditorPointer& e);
    // Lights up the handles of what a press here would grab.
    void hover(const QPointF& image);
    // The pointer left the view: no handle stays lit.
    void leave();
    // Arrow keys move the shape one image pixel, ten with Shift; Escape during a drag cancels
    // it. True when taken.
    bool key(int key, Qt::KeyboardModifiers modifiers);
    // The pointer number and cursor over a point (mouse grab distance); changes nothing.
    int pointerAt(const QPointF& image) const;
    QCursor cursorAt(const QPointF& image) const;

    bool dragging() const { return m_dragging; }
    // Ends a drag with the shape where it was at the press (the grab was lost).
    void cancel();
    // Puts the shape back where it was at begin(); the edit goes on.
    void reset();
    // Ends the edit: refused puts the shape back as it was at begin(). Reported once.
    void finish(bool accepted);
    // The page set the shape anew while it is edited: the working rectangle follows.
    void shapeSetFromOutside();

    // The edited shape with its handles, over the graphics.
    void paint(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty) const;

    // Handle colours of a line (ends 1 and 2) or pair (ends, then the middles of both sides).
    const std::array<qint32, 4>& lineHandleColors() const { return m_lineColors; }

private:
    struct Shapes
    {
        clsVector cursor;
        clsWindow window;
        clsLineItem line;
    };
    Shapes current() const { return {m_model.Cursor, m_model.Window, m_model.Line}; }
    void restore(const Shapes& s);
    QRectF shapeArea() const;
    double screenToImage(double screenPixels) const;
    void changed(const QRectF& before);
    void drag(const EditorPointer& e);
    LinePart lineHit(const QPointF& image, double tolerance) const;
    void highlightLine(LinePart part);
    void nudge(double dx, double dy);
    // The centre of the shape (the cursor's point, the line's middle).
    QPointF centre(const Shapes& s) const;
    // (dx, dy) shortened so that a move of the centre from `from` does not leave the bounds.
    QPointF limitMove(const QPointF& from, double dx, double dy) const;

    clsMoveableGraphics& m_model;
    MovableEditorSink& m_sink;
    MovableShape m_shape = MovableShape::None;
    qint32 m_color = 0;
    bool m_cursorMovable = true;
    EditorView m_view;
    QRectF m_bounds;
    Shapes m_backup;

    bool m_dragging = false;
    clsVector m_pressPoint;
    Shapes m_atPress;
    clsRectangle m_pressRect;
    LinePart m_part = LinePart::None;
    std::array<qint32, 4> m_lineColors{clsMoveableGraphics::kHandleRed, clsMoveableGraphics::kHandleRed,
                                       clsMoveableGraphics::kHandleRed, clsMoveableGraphics::kHandleRed};
};

} // namespace nxr
