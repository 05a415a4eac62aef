#include "graphics/MovableShapeEditor.h"

#include "graphics/MovablePointers.h"
#include "graphics/OverlayPainter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace nxr {

namespace {

using G = clsMoveableGraphics;

QRectF boundsOf(std::initializer_list<QPointF> points)
{
    double l = points.begin()->x(), r = l, t = points.begin()->y(), b = t;
    for (const QPointF& p : points) {
        l = std::min(l, p.x());
        r = std::max(r, p.x());
        t = std::min(t, p.y());
        b = std::max(b, p.y());
    }
    return QRectF(QPointF(l, t), QPointF(r, b));
}

} // namespace

MovableShapeEditor::MovableShapeEditor(clsMoveableGraphics& model, MovableEditorSink& sink)
    : m_model(model), m_sink(sink)
{}

void MovableShapeEditor::begin(MovableShape shape, qint32 color)
{
    m_shape = shape;
    m_color = color;
    m_backup = current();
    m_dragging = false;
    m_model.Editing = shape;
    m_model.ClearHits();
    m_model.ResetHandleColors();
    m_lineColors.fill(G::kHandleRed);
    if (shape == MovableShape::Window)
        m_model.BeginWindowEdit();
    m_sink.repaintArea(shapeArea());
}

double MovableShapeEditor::screenToImage(double screenPixels) const
{
    const double scale = m_view.scale > 0.0 ? m_view.scale : 1.0;
    return screenPixels * m_view.devicePixelRatio / scale;
}

double MovableShapeEditor::hitTolerance(bool touch) const
{
    const double mouse = screenToImage(m_view.tolerancePixels);
    if (!touch)
        return mouse;
    const double scale = m_view.scale > 0.0 ? m_view.scale : 1.0;
    const double finger = kFingerMillimetres / 25.4 * m_view.dotsPerInch / scale;
    return std::max(mouse, finger);
}

QRectF MovableShapeEditor::shapeArea() const
{
    QRectF box;
    switch (m_shape) {
    case MovableShape::None:
        return {};
    case MovableShape::Window: {
        const auto c = m_model.GetMoveableWindowCornerPoints();
        box = boundsOf({QPointF(c[0].X(), c[0].Y()), QPointF(c[1].X(), c[1].Y()), QPointF(c[2].X(), c[2].Y()),
                        QPointF(c[3].X(), c[3].Y())});
        break;
    }
    case MovableShape::Cursor:
        box = QRectF(m_model.Cursor.X(), m_model.Cursor.Y(), 0.0, 0.0);
        break;
    case MovableShape::Line:
        box =
            boundsOf({QPointF(m_model.Line.X1, m_model.Line.Y1), QPointF(m_model.Line.X2, m_model.Line.Y2)});
        break;
    case MovableShape::LinePair: {
        const auto c = m_model.Line.PairCorners();
        box = boundsOf({QPointF(c[0].X(), c[0].Y()), QPointF(c[1].X(), c[1].Y()), QPointF(c[2].X(), c[2].Y()),
                        QPointF(c[3].X(), c[3].Y())});
        break;
    }
    }
    const double m = screenToImage(kRepaintMargin);
    return box.adjusted(-m, -m, m, m);
}

void MovableShapeEditor::changed(const QRectF& before)
{
    m_sink.shapeChanged(m_shape, before.united(shapeArea()));
}

void MovableShapeEditor::restore(const Shapes& s)
{
    switch (m_shape) {
    case MovableShape::Window:
        m_model.Window = s.window;
        m_model.BeginWindowEdit();
        break;
    case MovableShape::Cursor:
        m_model.Cursor = s.cursor;
        break;
    case MovableShape::Line:
    case MovableShape::LinePair:
        m_model.Line = s.line;
        break;
    case MovableShape::None:
        break;
    }
}

LinePart MovableShapeEditor::lineHit(const QPointF& image, double tolerance) const
{
    clsMoveableGraphics probe = m_model;
    probe.HitTolerance = tolerance;
    return probe.HitTestLine(clsVector(image.x(), image.y()), m_shape == MovableShape::LinePair);
}

void MovableShapeEditor::highlightLine(LinePart part)
{
    m_lineColors.fill(G::kHandleRed);
    switch (part) {
    case LinePart::End1:
        m_lineColors[0] = G::kHandleViolet;
        break;
    case LinePart::End2:
        m_lineColors[1] = G::kHandleViolet;
        break;
    case LinePart::Side:
        m_lineColors[2] = m_lineColors[3] = G::kHandleViolet;
        break;
    case LinePart::Whole:
        m_lineColors.fill(G::kHandleOrange);
        break;
    case LinePart::None:
        break;
    }
}

bool MovableShapeEditor::press(const EditorPointer& e)
{
    if (!active() || e.button != Qt::LeftButton)
        return false;
    const double tol = hitTolerance(e.touch);
    m_model.HitTolerance = tol;
    const clsVector p(e.image.x(), e.image.y());
    const auto colorsBefore = m_model.HandleColors;
    const auto lineColorsBefore = m_lineColors;
    bool hit = false;
    switch (m_shape) {
    case MovableShape::Window:
        m_model.BeginWindowEdit();
        m_model.HitTestWindow(p, &hit);
        m_pressRect = m_model.Rect;
        break;
    case MovableShape::Cursor: {
        if (!m_cursorMovable)
            return false;
        hit = true;
        // Off the cursor's mark the press puts the cursor at the point; on it, the cursor keeps
        // its offset from the pointer.
        const double reach = std::max(tol, screenToImage(kCursorSize / 2.0));
        if (m_model.Cursor.DistanceTo(p) >= reach) {
            const QRectF before = shapeArea();
            m_model.Cursor = clsVector(p.X(), p.Y());
            changed(before);
        }
        break;
    }
    case MovableShape::Line:
    case MovableShape::LinePair:
        m_part = m_model.HitTestLine(p, m_shape == MovableShape::LinePair);
        highlightLine(m_part);
        hit = m_part != LinePart::None;
        break;
    case MovableShape::None:
        return false;
    }
    if (colorsBefore != m_model.HandleColors || lineColorsBefore != m_lineColors)
        m_sink.repaintArea(shapeArea());
    if (!hit)
        return false;
    m_dragging = true;
    m_pressPoint = p;
    m_atPress = current();
    return true;
}

QPointF MovableShapeEditor::centre(const Shapes& s) const
{
    switch (m_shape) {
    case MovableShape::Window:
        return {s.window.Left + s.window.Width / 2.0, s.window.Top + s.window.Height / 2.0};
    case MovableShape::Cursor:
        return {s.cursor.X(), s.cursor.Y()};
    default:
        return {(s.line.X1 + s.line.X2) / 2.0, (s.line.Y1 + s.line.Y2) / 2.0};
    }
}

QPointF MovableShapeEditor::limitMove(const QPointF& from, double dx, double dy) const
{
    if (m_bounds.isEmpty())
        return {dx, dy};
    // Only a move that goes further out is shortened, so nothing jumps.
    auto limit = [](double at, double d, double low, double high) {
        if (d > 0.0 && at + d > high)
            return std::max(0.0, high - at);
        if (d < 0.0 && at + d < low)
            return std::min(0.0, low - at);
        return d;
    };
    return {limit(from.x(), dx, m_bounds.left(), m_bounds.right()),
            limit(from.y(), dy, m_bounds.top(), m_bounds.bottom())};
}

void MovableShapeEditor::drag(const EditorPointer& e)
{
    const QRectF before = shapeArea();
    clsVector p(e.image.x(), e.image.y());
    double dx = p.X() - m_pressPoint.X(), dy = p.Y() - m_pressPoint.Y();
    const bool whole =
        m_shape == MovableShape::Cursor || (m_shape == MovableShape::Window && m_model.HitInside) ||
        ((m_shape == MovableShape::Line || m_shape == MovableShape::LinePair) && m_part == LinePart::Whole);
    if (whole) {
        const QPointF d = limitMove(centre(m_atPress), dx, dy);
        dx = d.x();
        dy = d.y();
        p = clsVector(m_pressPoint.X() + dx, m_pressPoint.Y() + dy);
    }
    switch (m_shape) {
    case MovableShape::Window:
        m_model.Window = m_atPress.window;
        m_model.DragWindow(m_pressRect, m_pressPoint, p);
        break;
    case MovableShape::Cursor:
        m_model.Cursor = clsVector(m_atPress.cursor.X() + dx, m_atPress.cursor.Y() + dy);
        break;
    case MovableShape::Line:
    case MovableShape::LinePair: {
        m_model.Line = m_atPress.line;
        const bool keep = e.modifiers.testFlag(Qt::ShiftModifier);
        const clsLineItem& l = m_atPress.line;
        if (m_part == LinePart::End1)
            m_model.MoveLine(1, l.X1 + dx, l.Y1 + dy, keep);
        else if (m_part == LinePart::End2)
            m_model.MoveLine(2, l.X2 + dx, l.Y2 + dy, keep);
        else if (m_part == LinePart::Whole)
            m_model.MoveLine(3, dx, dy);
        else if (m_part == LinePart::Side)
            m_model.SetPairWidthThrough(p);
        break;
    }
    case MovableShape::None:
        return;
    }
    changed(before);
}

void MovableShapeEditor::move(const EditorPointer& e)
{
    if (!active())
        return;
    if (m_dragging)
        drag(e);
    else if (!e.touch)
        hover(e.image);
}

void MovableShapeEditor::release(const EditorPointer& e)
{
    if (!active() || !m_dragging)
        return;
    drag(e);
    m_dragging = false;
    if (e.touch) {
        // No hover follows a finger: the highlight goes.
        m_model.ClearHits();
        m_model.ResetHandleColors();
        m_lineColors.fill(G::kHandleRed);
        m_sink.repaintArea(shapeArea());
    }
}

bool MovableShapeEditor::doubleClick(const EditorPointer&)
{
    return false;
}

void MovableShapeEditor::hover(const QPointF& image)
{
    if (!active() || m_dragging)
        return;
    const auto colorsBefore = m_model.HandleColors;
    const auto lineColorsBefore = m_lineColors;
    m_model.HitTolerance = hitTolerance(false);
    const clsVector p(image.x(), image.y());
    if (m_shape == MovableShape::Window)
        m_model.HitTestWindow(p);
    else if (m_shape == MovableShape::Line || m_shape == MovableShape::LinePair)
        highlightLine(m_model.HitTestLine(p, m_shape == MovableShape::LinePair));
    if (colorsBefore != m_model.HandleColors || lineColorsBefore != m_lineColors)
        m_sink.repaintArea(shapeArea());
}

void MovableShapeEditor::leave()
{
    if (!active() || m_dragging)
        return;
    const auto colorsBefore = m_model.HandleColors;
    const auto lineColorsBefore = m_lineColors;
    m_model.ClearHits();
    m_model.ResetHandleColors();
    m_lineColors.fill(G::kHandleRed);
    if (colorsBefore != m_model.HandleColors || lineColorsBefore != m_lineColors)
        m_sink.repaintArea(shapeArea());
}

int MovableShapeEditor::pointerAt(const QPointF& image) const
{
    const clsVector p(image.x(), image.y());
    const double tol = hitTolerance(false);
    switch (m_shape) {
    case MovableShape::Window: {
        clsMoveableGraphics probe = m_model;
        probe.HitTolerance = tol;
        if (!m_dragging)
            probe.BeginWindowEdit();
        // During a drag the pointer shows what is held.
        return m_dragging ? probe.WindowPointer() : probe.HitTestWindow(p);
    }
    case MovableShape::Cursor:
        if (!m_cursorMovable)
            return kPointerDefault;
        return m_dragging || m_model.Cursor.DistanceTo(p) < std::max(tol, screenToImage(kCursorSize / 2.0))
                   ? int(kPointerSizeAll)
                   : int(kPointerDefault);
    case MovableShape::Line:
    case MovableShape::LinePair:
        return m_model.LinePointer(m_dragging ? m_part : lineHit(image, tol));
    case MovableShape::None:
        break;
    }
    return kPointerDefault;
}

QCursor MovableShapeEditor::cursorAt(const QPointF& image) const
{
    return cursorForPointer(pointerAt(image));
}

void MovableShapeEditor::nudge(double dx, double dy)
{
    const QRectF before = shapeArea();
    const QPointF d = limitMove(centre(current()), dx, dy);
    dx = d.x();
    dy = d.y();
    switch (m_shape) {
    case MovableShape::Window:
        m_model.ShiftWindow(dx, dy);
        break;
    case MovableShape::Cursor:
        m_model.Cursor = clsVector(m_model.Cursor.X() + dx, m_model.Cursor.Y() + dy);
        break;
    case MovableShape::Line:
    case MovableShape::LinePair:
        m_model.MoveLine(3, dx, dy);
        break;
    case MovableShape::None:
        return;
    }
    changed(before);
}

bool MovableShapeEditor::key(int key, Qt::KeyboardModifiers modifiers)
{
    if (!active())
        return false;
    if (m_dragging) {
        if (key != Qt::Key_Escape)
            return false;
        cancel();
        return true;
    }
    if (m_shape == MovableShape::Cursor && !m_cursorMovable)
        return false;
    const double step = modifiers.testFlag(Qt::ShiftModifier) ? 10.0 : 1.0;
    switch (key) {
    case Qt::Key_Left:
        nudge(-step, 0.0);
        return true;
    case Qt::Key_Right:
        nudge(step, 0.0);
        return true;
    case Qt::Key_Up:
        nudge(0.0, -step);
        return true;
    case Qt::Key_Down:
        nudge(0.0, step);
        return true;
    default:
        return false;
    }
}

void MovableShapeEditor::cancel()
{
    if (!active() || !m_dragging)
        return;
    m_dragging = false;
    const QRectF before = shapeArea();
    restore(m_atPress);
    changed(before);
}

void MovableShapeEditor::reset()
{
    if (!active())
        return;
    m_dragging = false;
    const QRectF before = shapeArea();
    restore(m_backup);
    changed(before);
}

void MovableShapeEditor::finish(bool accepted)
{
    if (!active())
        return;
    const MovableShape shape = m_shape;
    m_dragging = false;
    const QRectF before = shapeArea();
    if (!accepted)
        restore(m_backup);
    const QRectF after = shapeArea();
    m_shape = MovableShape::None;
    m_model.Editing = MovableShape::None;
    m_model.ClearHits();
    m_model.ResetHandleColors();
    m_lineColors.fill(G::kHandleRed);
    m_sink.shapeChanged(shape, before.united(after));
    m_sink.editFinished(shape, accepted);
}

void MovableShapeEditor::shapeSetFromOutside()
{
    if (!active())
        return;
    m_dragging = false;
    if (m_shape == MovableShape::Window)
        m_model.BeginWindowEdit();
}

void MovableShapeEditor::paint(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty) const
{
    if (!active())
        return;
    std::vector<std::pair<QPointF, qint32>> handles;
    {
        OverlayPainter overlay(painter, mapping, dirty);
        const clsLineItem& l = m_model.Line;
        switch (m_shape) {
        case MovableShape::Window: {
            RectangleHandles h;
            h.colors = m_model.HandleColors;
            h.filled = true;
            h.rotatable = m_model.Window.Rotatable;
            const clsWindow& w = m_model.Window;
            overlay.drawRectangle(m_color, true, w.Left, w.Top, w.Width, w.Height, w.Angle, h);
            break;
        }
        case MovableShape::Cursor:
            overlay.drawCross(m_color, true, m_model.Cursor.X(), m_model.Cursor.Y(), 0.0, kCursorSize);
            break;
        case MovableShape::Line:
            overlay.drawLine(m_color, l.X1, l.Y1, l.X2, l.Y2, l.Arrowed);
            handles = {{QPointF(l.X1, l.Y1), m_lineColors[0]}, {QPointF(l.X2, l.Y2), m_lineColors[1]}};
            break;
        case MovableShape::LinePair: {
            clsLineItem drawn = l;
            drawn.Color = m_color;
            overlay.drawLinePair(drawn);
            const auto c = l.PairCorners();
            handles = {{QPointF(l.X1, l.Y1), m_lineColors[0]},
                       {QPointF(l.X2, l.Y2), m_lineColors[1]},
                       {QPointF((c[0].X() + c[1].X()) / 2.0, (c[0].Y() + c[1].Y()) / 2.0), m_lineColors[2]},
                       {QPointF((c[3].X() + c[2].X()) / 2.0, (c[3].Y() + c[2].Y()) / 2.0), m_lineColors[3]}};
            break;
        }
        case MovableShape::None:
            break;
        }
    }
    // Line handles: 7 x 7 screen pixels centred on their points, as the window's corners.
    const double side = kHandleSide * mapping.devicePixelRatio;
    for (const auto& [at, color] : handles) {
        const QPointF s = mapping.toScreen(at.x(), at.y());
        painter.fillRect(QRectF(s.x() - side / 2.0, s.y() - side / 2.0, side, side), colorFromLong(color));
    }
}

} // namespace nxr
