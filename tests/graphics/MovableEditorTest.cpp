// The movable-shape editor: what each drag stores at several zooms for rotated and unrotated
// windows, grab distances for mouse and finger, keys, cancel and the single exit report, the
// cursor and line drags, and the handles as painted.

#include "graphics/MovablePointers.h"
#include "graphics/MovableShapeEditor.h"
#include "graphics/OverlayPainter.h"

#include <QImage>
#include <QLineF>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

using namespace nxr;

namespace {

struct RecordingSink : MovableEditorSink
{
    int changes = 0;
    int repaints = 0;
    QRectF lastArea;
    std::vector<std::pair<MovableShape, bool>> finished;

    void shapeChanged(MovableShape, const QRectF& area) override
    {
        ++changes;
        lastArea = area;
    }
    void repaintArea(const QRectF&) override { ++repaints; }
    void editFinished(MovableShape shape, bool accepted) override { finished.emplace_back(shape, accepted); }
};

class MovableEditorTest : public ::testing::Test
{
protected:
    clsMoveableGraphics model;
    RecordingSink sink;
    MovableShapeEditor editor{model, sink};

    void editWindow(double angle, bool rotatable, double scale = 1.0)
    {
        model.Window = clsWindow{50, 100, 40, 80, angle, rotatable}; // top, left, height, width
        editor.setView(EditorView{scale, 1.0, 96.0});
        editor.begin(MovableShape::Window, 0x00FF00);
    }
    void drag(QPointF from, const std::vector<QPointF>& through, Qt::KeyboardModifiers mods = {})
    {
        ASSERT_TRUE(editor.press({from, Qt::LeftButton, mods, false})) << from.x() << "," << from.y();
        QPointF last = from;
        for (const QPointF& p : through) {
            editor.move({p, Qt::NoButton, mods, false});
            last = p;
        }
        editor.release({last, Qt::LeftButton, mods, false});
    }
    // A point on the edited window at fractions of its own axes.
    QPointF on(double fu, double fv) const
    {
        const auto c = model.GetMoveableWindowCornerPoints();
        return {c[0].X() + fu * (c[1].X() - c[0].X()) + fv * (c[3].X() - c[0].X()),
                c[0].Y() + fu * (c[1].Y() - c[0].Y()) + fv * (c[3].Y() - c[0].Y())};
    }
    void expectWindow(double left, double top, double width, double height, double angle, const char* what)
    {
        EXPECT_NEAR(model.Window.Left, left, 1e-9) << what;
        EXPECT_NEAR(model.Window.Top, top, 1e-9) << what;
        EXPECT_NEAR(model.Window.Width, width, 1e-9) << what;
        EXPECT_NEAR(model.Window.Height, height, 1e-9) << what;
        EXPECT_NEAR(model.Window.Angle, angle, 1e-9) << what;
    }
};

const double kScales[] = {0.5, 1.0, 2.0, 3.7};

} // namespace

TEST_F(MovableEditorTest, WindowDragsStoreTheSameAtEveryZoom)
{
    struct Drag
    {
        const char* what;
        QPointF from;
        std::vector<QPointF> through;
        double left, top, width, height;
    };
    // The 80 x 40 window at (100, 50). Intermediate positions must not matter.
    const Drag drags[] = {
        {"move keeps the grab offset", {140, 70}, {{10, 10}, {150.5, 63}}, 110.5, 43, 80, 40},
        {"left edge", {100, 70}, {{90, 72}}, 90, 50, 90, 40},
        {"right edge", {180, 60}, {{400, 0}, {200, 0}}, 100, 50, 100, 40},
        {"top edge", {140, 50}, {{141, 45}}, 100, 45, 80, 45},
        {"bottom edge", {140, 90}, {{0, 100}}, 100, 50, 80, 50},
        {"bottom right corner", {180, 90}, {{190, 95}}, 100, 50, 90, 45},
        {"left edge past the right one", {100, 70}, {{300, 70}}, 179, 50, 1, 40},
        {"top edge past the bottom one", {140, 50}, {{140, 400}}, 100, 89, 80, 1}};
    for (double scale : kScales) {
        SCOPED_TRACE(scale);
        for (const Drag& d : drags) {
            editWindow(0, false, scale);
            drag(d.from, d.through);
            expectWindow(d.left, d.top, d.width, d.height, 0, d.what);
            EXPECT_FALSE(model.Window.Rotatable);
            editor.finish(true);
        }

        // Turned a quarter: the U edge (corners 1, 2) is the top line y = 30 from x 120 to 160. It
        // goes up 10 (along U only; the sideways part of the move is dropped).
        editWindow(90, false, scale);
        drag({150, 30}, {{170, 20}});
        expectWindow(95, 45, 90, 40, 90, "U edge of a quarter-turned window");
        editor.finish(true);
        // Turned 30 degrees: dragging its left edge out by 6 along -U grows it by 6 and moves the
        // centre 3 along -U, the angle exactly unchanged: only a turn changes it.
        editWindow(30, false, scale);
        const QPointF start = on(0.0, 0.5);
        const double ux = std::cos(kMathPi / 6), uy = -std::sin(kMathPi / 6);
        drag(start, {{start.x() - 6 * ux + 4 * uy, start.y() - 6 * uy - 4 * ux}});
        expectWindow(140 - 3 * ux - 43, 70 - 3 * uy - 20, 86, 40, 30,
                     "left edge of a window turned 30 degrees");
        EXPECT_EQ(model.Window.Angle, 30);
        editor.finish(true);

        // The handle grabbed a little below its centre (within every zoom's reach): no jump. Taken
        // straight above the centre, offset by the same small angle: a quarter turn
        // counter-clockwise on the screen about the centre.
        editWindow(0, true, scale);
        const double below = std::min(1.0, 0.5 * editor.hitTolerance()), off = std::atan2(below, 40.0);
        ASSERT_TRUE(editor.press({{180, 70 + below}, Qt::LeftButton, {}, false}));
        EXPECT_EQ(editor.pointerAt({0, 0}), kPointerRotate); // what is held
        editor.move({{180, 70 + below}, Qt::NoButton, {}, false});
        expectWindow(100, 50, 80, 40, 0, "no jump");
        const QPointF end(140 + 40 * std::sin(off), 70 - 40 * std::cos(off));
        editor.move({end, Qt::NoButton, {}, false});
        editor.release({end, Qt::LeftButton, {}, false});
        EXPECT_NEAR(model.Window.Angle, 90, 1e-7);
        expectWindow(100, 50, 80, 40, model.Window.Angle, "turned");
        EXPECT_TRUE(model.Window.Rotatable);
        editor.finish(true);
    }
    // A window that may not turn: the handle's place is its right edge.
    editWindow(0, false);
    drag({180, 70}, {{140, 30}});
    expectWindow(100, 50, 40, 40, 0, "non-rotatable: right edge");
}

TEST_F(MovableEditorTest, GrabDistanceIsFiveScreenPixels)
{
    const double views[][3] = {// scale, pixel ratio, reach in image pixels
                               {1.0, 1.0, 5.0},
                               {2.0, 1.0, 2.5},
                               {0.5, 1.0, 10.0},
                               {2.0, 2.0, 5.0},
                               {3.7, 1.0, 5.0 / 3.7}};
    for (const auto& [scale, ratio, tolerance] : views) {
        editor.setView({scale, ratio, 96.0});
        EXPECT_NEAR(editor.hitTolerance(), tolerance, 1e-12) << scale << " " << ratio;
    }
    editor.setView({2.0, 1.0, 96.0, 8.0}); // a tolerance of the adapter's own
    EXPECT_NEAR(editor.hitTolerance(), 4.0, 1e-12);
    // At 200 % a press 2.4 image pixels off the edge grabs it, 2.6 does not.
    editWindow(0, false, 2.0);
    EXPECT_FALSE(editor.press({{97.4, 70}, Qt::LeftButton, {}, false}));
    EXPECT_DOUBLE_EQ(model.HitTolerance, 2.5);
    EXPECT_TRUE(editor.press({{97.6, 70}, Qt::LeftButton, {}, false}));
    editor.release({{97.6, 70}, Qt::LeftButton, {}, false});
    // Only the left button grabs.
    EXPECT_FALSE(editor.press({{140, 70}, Qt::RightButton, {}, false}));
}

TEST_F(MovableEditorTest, FingerReachesFourMillimetres)
{
    editWindow(0, false, 1.0);
    editor.setView({1.0, 1.0, 254.0}); // 10 device pixels per millimetre
    EXPECT_NEAR(editor.hitTolerance(true), 40.0, 1e-9);
    EXPECT_NEAR(editor.hitTolerance(false), 5.0, 1e-9);
    EXPECT_FALSE(editor.press({{70, 70}, Qt::LeftButton, {}, false}));
    ASSERT_TRUE(editor.press({{70, 70}, Qt::LeftButton, {}, true}));
    EXPECT_TRUE(model.HitLeft);
    editor.release({{60, 70}, Qt::LeftButton, {}, true});
    EXPECT_NEAR(model.Window.Left, 60, 1e-9);
    EXPECT_EQ(model.HandleColors[0], clsMoveableGraphics::kHandleRed); // no hover after a finger
    // On a coarse screen a finger still reaches at least as far as the mouse.
    editor.setView({2.0, 1.0, 20.0});
    EXPECT_NEAR(editor.hitTolerance(true), 2.5, 1e-9);
}

TEST_F(MovableEditorTest, PointerShownAtPointsAndHoverLightsTheHandles)
{
    editWindow(0, true, 2.0);
    // The pointer shows what a press would take: 2.5 image pixels reach at 200 %.
    EXPECT_EQ(editor.pointerAt({101.5, 70}), kPointerSizeWE);
    EXPECT_EQ(editor.pointerAt({103, 70}), kPointerSizeAll);
    EXPECT_EQ(editor.pointerAt({97, 70}), kPointerDefault);
    EXPECT_EQ(model.HandleColors[0], clsMoveableGraphics::kHandleRed); // asking changes nothing
    const int before = sink.repaints;
    editor.hover({140, 70});
    EXPECT_EQ(model.HandleColors[2], clsMoveableGraphics::kHandleOrange);
    EXPECT_EQ(sink.repaints, before + 1);
    editor.hover({141, 70});
    EXPECT_EQ(sink.repaints, before + 1); // same colours, no repaint
    editor.leave();
    EXPECT_EQ(model.HandleColors[2], clsMoveableGraphics::kHandleRed);
    EXPECT_EQ(sink.repaints, before + 2);
}

TEST_F(MovableEditorTest, CancelRestoresExactlyAndTheOutcomeIsReportedOnce)
{
    editWindow(33.3, true, 3.7);
    const clsWindow original = model.Window;
    drag(on(0.5, 0.5), {{10, 20}, {151.25, 60.5}});
    drag(on(1.0, 0.5), {{120, 10}});
    drag(on(0.0, 0.5), {{60, 50}});
    editor.key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_NE(model.Window, original);
    editor.finish(false);
    EXPECT_EQ(model.Window, original); // to the last bit
    ASSERT_EQ(sink.finished.size(), 1u);
    EXPECT_EQ(sink.finished[0], std::pair(MovableShape::Window, false));
    EXPECT_FALSE(editor.active());
    editor.finish(true);
    editor.finish(false);
    EXPECT_EQ(sink.finished.size(), 1u);
    // Events after the end change nothing.
    EXPECT_FALSE(editor.press({{140, 70}, Qt::LeftButton, {}, false}));
    EXPECT_FALSE(editor.key(Qt::Key_Left, {}));

    // Accepted keeps the shape; a lost grab puts it back to where the press found it.
    editWindow(0, false);
    drag({140, 70}, {{150, 70}});
    ASSERT_TRUE(editor.press({{150, 70}, Qt::LeftButton, {}, false}));
    editor.move({{170, 90}, Qt::NoButton, {}, false});
    editor.cancel();
    EXPECT_FALSE(editor.dragging());
    EXPECT_NEAR(model.Window.Left, 110, 1e-9);
    editor.reset();
    EXPECT_EQ(model.Window.Left, 100);
    EXPECT_TRUE(editor.active());
    drag({140, 70}, {{141, 70}});
    editor.finish(true);
    EXPECT_NEAR(model.Window.Left, 101, 1e-9);
    EXPECT_EQ(sink.finished.back(), std::pair(MovableShape::Window, true));
}

TEST_F(MovableEditorTest, ArrowKeysNudgeEveryShape)
{
    const std::tuple<int, Qt::KeyboardModifiers, double, double> keys[] = {
        {Qt::Key_Left, {}, -1, 0},
        {Qt::Key_Right, Qt::ShiftModifier, 10, 0},
        {Qt::Key_Up, {}, 0, -1},
        {Qt::Key_Down, Qt::ShiftModifier, 0, 10}};
    for (const auto& [key, mods, dx, dy] : keys) {
        editWindow(20, true);
        EXPECT_TRUE(editor.key(key, mods));
        expectWindow(100 + dx, 50 + dy, 80, 40, 20, "window");
        editor.finish(true);

        model.Line = clsLineItem{};
        model.Line.X2 = 10;
        editor.begin(MovableShape::Line, 0);
        editor.key(key, mods);
        EXPECT_EQ(QLineF(model.Line.X1, model.Line.Y1, model.Line.X2, model.Line.Y2),
                  QLineF(dx, dy, 10 + dx, dy));
        editor.finish(true);

        model.Cursor = clsVector(5, 5);
        editor.begin(MovableShape::Cursor, 0);
        editor.key(key, mods);
        EXPECT_EQ(model.Cursor, clsVector(5 + dx, 5 + dy));
        editor.finish(true);
    }
    editWindow(0, false);
    EXPECT_FALSE(editor.key(Qt::Key_Escape, {}));
}

TEST_F(MovableEditorTest, WholeShapesStayWithinReachOfTheImage)
{
    editor.setImageBounds(QRectF(0, 0, 200, 150));
    editWindow(0, false);
    drag({140, 70}, {{400, -50}}); // the centre stops at the corner (200, 0)
    EXPECT_EQ(model.Window.Left, 160);
    EXPECT_EQ(model.Window.Top, -20);
    EXPECT_TRUE(editor.key(Qt::Key_Right, {}));
    EXPECT_EQ(model.Window.Left, 160);
    editor.key(Qt::Key_Left, {});
    EXPECT_EQ(model.Window.Left, 159);
    drag({239, 0}, {{400, 0}}); // an edge may reach past the image
    EXPECT_EQ(model.Window.Width, 241);
    // Escape during a drag puts the shape back where the press found it.
    ASSERT_TRUE(editor.press({{200, 0}, Qt::LeftButton, {}, false}));
    editor.move({{100, 10}, Qt::NoButton, {}, false});
    EXPECT_TRUE(editor.key(Qt::Key_Escape, {}));
    EXPECT_FALSE(editor.dragging());
    EXPECT_EQ(model.Window.Left, 159);
    editor.finish(true);

    // A shape the page put outside does not go further out, but comes back.
    model.Window = clsWindow{50, 260, 40, 80, 0, false};
    editor.begin(MovableShape::Window, 0);
    drag({300, 70}, {{310, 70}});
    EXPECT_EQ(model.Window.Left, 260);
    drag({300, 70}, {{290, 70}});
    EXPECT_EQ(model.Window.Left, 250);
    editor.finish(true);

    model.Cursor = clsVector(50, 50);
    editor.begin(MovableShape::Cursor, 0);
    drag({50, 50}, {{-30, 60}});
    EXPECT_EQ(model.Cursor, clsVector(0, 60));
    editor.finish(true);
}

TEST_F(MovableEditorTest, CursorAndLineDrags)
{
    editor.setView({2.0, 1.0, 96.0});
    model.Cursor = clsVector(50, 50);
    editor.begin(MovableShape::Cursor, 0x0000FF);
    // On the mark: keeps the offset. Off it: the cursor comes to the press.
    drag({51, 52}, {{61, 62}});
    EXPECT_EQ(model.Cursor, clsVector(60, 60));
    drag({10, 20}, {{12, 20}});
    EXPECT_EQ(model.Cursor, clsVector(12, 20));
    editor.finish(false);
    EXPECT_EQ(model.Cursor, clsVector(50, 50));
    // A fixed cursor is not taken.
    editor.setCursorMovable(false);
    editor.begin(MovableShape::Cursor, 0x0000FF);
    EXPECT_FALSE(editor.press({{50, 50}, Qt::LeftButton, {}, false}));
    EXPECT_EQ(editor.pointerAt({50, 50}), kPointerDefault);
    editor.finish(true);
    editor.setCursorMovable(true);

    model.Line = clsLineItem{};
    std::tie(model.Line.X1, model.Line.Y1, model.Line.X2, model.Line.Y2) = std::tuple(10, 10, 50, 10);
    editor.setView({1.0, 1.0, 96.0});
    editor.begin(MovableShape::Line, 0);
    drag({11, 12}, {{21, 32}}); // end 1, keeping its offset
    EXPECT_EQ(QPointF(model.Line.X1, model.Line.Y1), QPointF(20, 30));
    editor.reset();
    drag({30, 12}, {{35, 2}}, {}); // the middle: the whole line
    EXPECT_EQ(model.Line.X1, 15);
    EXPECT_EQ(model.Line.Y2, 0);
    drag({55, 0}, {{80, 20}}, Qt::ShiftModifier); // Shift: along the line
    EXPECT_NEAR(model.Line.X2, 80, 1e-9);
    EXPECT_NEAR(model.Line.Y2, 0, 1e-9);
    editor.finish(true);

    // A pair's side sets the width.
    model.Line.IsPair = true;
    model.Line.PairWidth = 10;
    editor.begin(MovableShape::LinePair, 0);
    drag({40, 5}, {{40, 9}});
    EXPECT_NEAR(model.Line.PairWidth, 18, 1e-9);
    editor.finish(true);
}

TEST_F(MovableEditorTest, HandlesAsPainted)
{
    const std::tuple<bool, double, double> views[] = {// rotatable, scale, pixel ratio
                                                      {true, 2.0, 1.0},
                                                      {false, 2.0, 1.0},
                                                      {true, 0.5, 1.0},
                                                      {true, 1.0, 2.0}};
    for (const auto& [rotatable, scale, ratio] : views) {
        SCOPED_TRACE(testing::Message() << rotatable << " " << scale << " " << ratio);
        model.Window = clsWindow{20, 20, 60, 80, 0, rotatable};
        editor.setView({scale, ratio, 96.0});
        editor.begin(MovableShape::Window, 0x00FF00);
        QImage img(400, 300, QImage::Format_ARGB32);
        img.fill(Qt::black);
        {
            QPainter p(&img);
            editor.paint(p, ScreenMapping{scale, QPointF(10, 10), ratio, QRectF()}, img.rect());
        }
        // The device pixel `d` device pixels right of and below image point (x, y).
        const auto px = [&](double x, double y, double d) {
            return img.pixelColor(int(std::floor(10 + x * scale + d * ratio)),
                                  int(std::floor(10 + y * scale + d * ratio)));
        };
        // Corner squares in the handle colour, the edge in the window's, the rotation handle
        // only on a rotatable window.
        EXPECT_EQ(px(20, 20, -2), QColor(255, 0, 0));
        EXPECT_EQ(px(100, 80, 2), QColor(255, 0, 0));
        EXPECT_EQ(px(60, 20, 0), QColor(0, 255, 0));
        EXPECT_EQ(px(100, 50, 2), rotatable ? QColor(255, 0, 0) : QColor(Qt::black));
        editor.finish(true);
    }
}
