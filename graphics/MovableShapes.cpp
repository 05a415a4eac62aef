#include "graphics/MovableShapes.h"

#include "frame/Conversions.h"
#include "graphics/MovableHost.h"
#include "graphics/OverlayItems.h"

#include <cmath>
#include <initializer_list>

namespace nxr {

namespace {

void checkValues(std::initializer_list<double> values)
{
    for (double v : values)
        if (!std::isfinite(v) || std::abs(v) > MovableShapes::kLargest)
            throw Failure(QStringLiteral("Invalid procedure call or argument"));
}

} // namespace

QString MovableShapes::keyOf(MovableShape shape)
{
    switch (shape) {
    case MovableShape::Window:
        return QString::fromLatin1(kWindowKey);
    case MovableShape::Cursor:
        return QString::fromLatin1(kCursorKey);
    case MovableShape::Line:
        return QString::fromLatin1(kLineKey);
    case MovableShape::LinePair:
        return QString::fromLatin1(kLinePairKey);
    case MovableShape::None:
        break;
    }
    return {};
}

MovableShapes::MovableShapes(MovableHost& host, clsOverlayCollection& graphics)
    : m_host(host), m_graphics(graphics), m_editor(m_model, *this)
{}

MovableShapes::~MovableShapes() = default;

template <typename Body> void MovableShapes::run(const QString& routine, Body&& body)
{
    m_host.trace(routine, QStringLiteral("Entered"));
    try {
        std::forward<Body>(body)();
    } catch (const Failure& f) {
        m_host.fail(routine, f.description());
    } catch (const std::exception& e) {
        m_host.fail(routine, QString::fromLocal8Bit(e.what()));
    }
    m_host.trace(routine, QStringLiteral("Done"));
}

qint32 MovableShapes::colorOf(MovableShape shape) const
{
    switch (shape) {
    case MovableShape::Window:
        return m_windowColor;
    case MovableShape::Cursor:
        return m_cursorColor;
    default:
        return m_lineColor;
    }
}

bool MovableShapes::visible(MovableShape shape) const
{
    return m_graphics.Contains(keyOf(shape));
}

void MovableShapes::addItem(MovableShape shape)
{
    const QString key = keyOf(shape);
    const qint32 color = colorOf(shape);
    const clsLineItem& l = m_model.Line;
    switch (shape) {
    case MovableShape::Window: {
        const clsWindow& w = m_model.Window;
        m_graphics.AddBox(w.Left, w.Top, w.Width, w.Height, w.Angle, color, key);
        break;
    }
    case MovableShape::Cursor:
        m_graphics.AddCross(m_model.Cursor.X(), m_model.Cursor.Y(), 0.0, color, key);
        break;
    case MovableShape::Line:
        m_graphics.AddArrowLine(l.X1, l.Y1, l.X2, l.Y2, color, l.Arrowed, key);
        break;
    case MovableShape::LinePair:
        m_graphics.AddLinePair(l.X1, l.Y1, l.X2, l.Y2, l.PairWidth, color, key);
        break;
    case MovableShape::None:
        break;
    }
}

void MovableShapes::setVisible(MovableShape shape, bool show)
{
    m_graphics.RemoveKey(keyOf(shape));
    if (show)
        addItem(shape);
    m_host.requestRepaint({});
}

void MovableShapes::syncItem(MovableShape shape)
{
    if (!visible(shape))
        return;
    m_graphics.RemoveKey(keyOf(shape));
    addItem(shape);
}

// ---- window ----------------------------------------------------------------------------------

void MovableShapes::SetMovableWindow(double top, double left, double height, double width, double angle,
                                     bool rotatable)
{
    run(QStringLiteral("SetMovableWindow"), [&] {
        checkValues({top, left, height, width, angle});
        if (height < 0.0 || width < 0.0)
            throw Failure(QStringLiteral("Invalid procedure call or argument"));
        m_model.Window = clsWindow{top, left, height, width, angle, rotatable};
        m_editor.shapeSetFromOutside();
        syncItem(MovableShape::Window);
        m_host.requestRepaint({});
    });
}

void MovableShapes::beginEdit(const QString& routine, MovableShape shape, qint32 color)
{
    run(routine, [&] {
        if (m_editor.shape() == shape)
            return;
        if (m_editor.active())
            throw Failure(QStringLiteral("the %1 is being edited").arg(keyOf(m_editor.shape())));
        if (m_host.otherEditActive())
            throw Failure(QStringLiteral("a mask is being edited"));
        m_visibleBefore = visible(shape);
        m_modeBefore = m_host.mouseMode();
        m_host.setMouseMode(kPointerMouseMode);
        m_host.setViewButtonsProperty(QStringLiteral("ActiveMouseCursor"),
                                      QString::number(kPointerMouseMode));
        // The shape shows while it is edited.
        syncItem(shape);
        if (!m_visibleBefore)
            addItem(shape);
        m_editor.begin(shape, color);
        m_host.enterEditMode(shape, m_editor);
    });
}

void MovableShapes::EditMovableWindow()
{
    beginEdit(QStringLiteral("EditMovableWindow"), MovableShape::Window, m_windowColor);
}

void MovableShapes::ShowMovableWindow(qint32 color)
{
    run(QStringLiteral("ShowMovableWindow"), [&] {
        m_windowColor = color;
        if (m_editor.shape() == MovableShape::Window)
            m_editor.setColor(color);
        setVisible(MovableShape::Window, true);
    });
}

bool MovableShapes::MovableWindowVisible() const
{
    return visible(MovableShape::Window);
}

void MovableShapes::setMovableWindowVisible(bool show)
{
    run(QStringLiteral("MovableWindowVisible.Let"), [&] { setVisible(MovableShape::Window, show); });
}

// ---- cursor ----------------------------------------------------------------------------------

void MovableShapes::SetMovableCursor(double x, double y)
{
    run(QStringLiteral("SetMovableCursor"), [&] {
        checkValues({x, y});
        m_model.Cursor = clsVector(x, y);
        m_editor.shapeSetFromOutside();
        syncItem(MovableShape::Cursor);
        m_host.requestRepaint({});
    });
}

void MovableShapes::EditMovableCursor()
{
    beginEdit(QStringLiteral("EditMovableCursor"), MovableShape::Cursor, m_cursorColor);
}

void MovableShapes::ShowMovableCursor(bool show)
{
    run(QStringLiteral("ShowMovableCursor"), [&] { setVisible(MovableShape::Cursor, show); });
}

bool MovableShapes::MovableCursorVisible() const
{
    return visible(MovableShape::Cursor);
}

void MovableShapes::setMovableCursorVisible(bool show)
{
    run(QStringLiteral("MovableCursorVisible.Let"), [&] { setVisible(MovableShape::Cursor, show); });
}

void MovableShapes::setMovableCursorColor(qint32 color)
{
    run(QStringLiteral("MovableCursorColor.Let"), [&] {
        m_cursorColor = color;
        if (m_editor.shape() == MovableShape::Cursor)
            m_editor.setColor(color);
        syncItem(MovableShape::Cursor);
        m_host.requestRepaint({});
    });
}

void MovableShapes::setMoveableCursor(bool movable)
{
    run(QStringLiteral("MoveableCursor.Let"), [&] {
        if (!movable && m_editor.shape() == MovableShape::Cursor)
            m_editor.cancel();
        m_editor.setCursorMovable(movable);
    });
}

// ---- line and line pair ----------------------------------------------------------------------

void MovableShapes::SetMovableLine(double x1, double y1, double x2, double y2, bool arrowed)
{
    run(QStringLiteral("SetMovableLine"), [&] {
        checkValues({x1, y1, x2, y2});
        clsLineItem& l = m_model.Line;
        l.X1 = x1;
        l.Y1 = y1;
        l.X2 = x2;
        l.Y2 = y2;
        l.Arrowed = arrowed ? clsMoveableGraphics::kArrowStyle : qint16(0);
        l.IsPair = false;
        m_editor.shapeSetFromOutside();
        syncItem(MovableShape::Line);
        syncItem(MovableShape::LinePair);
        m_host.requestRepaint({});
    });
}

void MovableShapes::EditMovableLine()
{
    beginEdit(QStringLiteral("EditMovableLine"), MovableShape::Line, m_lineColor);
}

void MovableShapes::ShowMovableLine(bool show)
{
    run(QStringLiteral("ShowMovableLine"), [&] { setVisible(MovableShape::Line, show); });
}

bool MovableShapes::MovableLineVisible() const
{
    return visible(MovableShape::Line);
}

void MovableShapes::setMovableLineVisible(bool show)
{
    run(QStringLiteral("MovableLineVisible.Let"), [&] { setVisible(MovableShape::Line, show); });
}

double MovableShapes::endpoint(const QString& routine, int endpoint, const QString& xOrY)
{
    const clsLineItem& l = m_model.Line;
    if (endpoint == 1 && xOrY == QLatin1String("X"))
        return l.X1;
    if (endpoint == 1 && xOrY == QLatin1String("Y"))
        return l.Y1;
    if (endpoint == 2 && xOrY == QLatin1String("X"))
        return l.X2;
    if (endpoint == 2 && xOrY == QLatin1String("Y"))
        return l.Y2;
    m_host.fail(routine, QStringLiteral("invalid parameters"));
    return 0.0;
}

double MovableShapes::MovableLineEndpoint(int endpoint, const QString& xOrY)
{
    return this->endpoint(QStringLiteral("MovableLineEndpoint"), endpoint, xOrY);
}

void MovableShapes::SetMovableLinePair(double x1, double y1, double x2, double y2, double startingWidth)
{
    run(QStringLiteral("SetMovableLinePair"), [&] {
        checkValues({x1, y1, x2, y2, startingWidth});
        clsLineItem& l = m_model.Line;
        l.X1 = x1;
        l.Y1 = y1;
        l.X2 = x2;
        l.Y2 = y2;
        l.Arrowed = 0;
        l.IsPair = true;
        l.PairWidth = m_model.ClampPairWidth(startingWidth);
        m_editor.shapeSetFromOutside();
        syncItem(MovableShape::Line);
        syncItem(MovableShape::LinePair);
        m_host.requestRepaint({});
    });
}

void MovableShapes::EditMovableLinePair()
{
    beginEdit(QStringLiteral("EditMovableLinePair"), MovableShape::LinePair, m_lineColor);
}

void MovableShapes::ShowMovableLinePair(bool show)
{
    run(QStringLiteral("ShowMovableLinePair"), [&] { setVisible(MovableShape::LinePair, show); });
}

bool MovableShapes::MovableLinePairVisible() const
{
    return visible(MovableShape::LinePair);
}

void MovableShapes::setMovableLinePairVisible(bool show)
{
    run(QStringLiteral("MovableLinePairVisible.Let"), [&] { setVisible(MovableShape::LinePair, show); });
}

double MovableShapes::MovableLinePairEndpoint(int endpoint, const QString& xOrY)
{
    return this->endpoint(QStringLiteral("MovableLinePairEndpoint"), endpoint, xOrY);
}

void MovableShapes::setMinPairWidth(double value)
{
    run(QStringLiteral("MinPairWidth"), [&] {
        checkValues({value});
        m_model.Line.SetMinPairWidth(value);
        m_model.Line.PairWidth = m_model.ClampPairWidth(m_model.Line.PairWidth);
        syncItem(MovableShape::LinePair);
        m_host.requestRepaint({});
    });
}

void MovableShapes::setMaxPairWidth(double value)
{
    run(QStringLiteral("MaxPairWidth"), [&] {
        checkValues({value});
        m_model.Line.SetMaxPairWidth(value);
        m_model.Line.PairWidth = m_model.ClampPairWidth(m_model.Line.PairWidth);
        syncItem(MovableShape::LinePair);
        m_host.requestRepaint({});
    });
}

// ---- enabling and the edit -------------------------------------------------------------------

void MovableShapes::setEnabled(int index, const QString& routine, bool enabled)
{
    run(routine + QStringLiteral(".Let"), [&] {
        m_enabled[index] = enabled;
        const bool any = m_enabled[0] || m_enabled[1] || m_enabled[2] || m_enabled[3];
        m_host.setViewButtonsProperty(QStringLiteral("ButtonEnabled"),
                                      QStringLiteral("%1, %2").arg(kWindowResetButton).arg(fromBool(any)));
    });
}

void MovableShapes::resetEdited()
{
    run(QStringLiteral("ResetMovableWindow"), [&] { m_editor.reset(); });
}

void MovableShapes::finishEdit(bool accepted)
{
    m_editor.finish(accepted);
}

void MovableShapes::paintEdited(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty) const
{
    m_editor.paint(painter, mapping, dirty);
}

void MovableShapes::shapeChanged(MovableShape shape, const QRectF& imageArea)
{
    syncItem(shape);
    // The line and the pair share their geometry.
    if (shape == MovableShape::Line)
        syncItem(MovableShape::LinePair);
    else if (shape == MovableShape::LinePair)
        syncItem(MovableShape::Line);
    m_host.requestRepaint(imageArea);
}

void MovableShapes::repaintArea(const QRectF& imageArea)
{
    m_host.requestRepaint(imageArea);
}

void MovableShapes::editFinished(MovableShape shape, bool accepted)
{
    static const char* const routines[] = {"", "msub_FinishMovableWindow", "msub_FinishMovableCursor",
                                           "msub_FinishMovableLine", "msub_FinishMovableLinePair"};
    const QString routine = QString::fromLatin1(routines[int(shape)]);
    m_host.trace(routine, QStringLiteral("Entered, accepted=%1").arg(fromBool(accepted)));
    if (!accepted && !m_visibleBefore)
        m_graphics.RemoveKey(keyOf(shape));
    m_host.setMouseMode(m_modeBefore);
    m_host.setViewButtonsProperty(QStringLiteral("ActiveMouseCursor"), QString::number(m_modeBefore));
    m_host.requestRepaint({});
    m_host.leaveEditMode(shape, accepted);
    m_host.trace(routine, QStringLiteral("Done"));
}

} // namespace nxr
