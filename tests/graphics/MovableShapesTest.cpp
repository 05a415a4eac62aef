// The display's movable shapes against a stand-in display: items under their keys, the edit
// mode with its mouse mode and exit report, read-back, enabling, pair limits and refused input.

#include "FakeHosts.h"

#include "graphics/MovableShapes.h"
#include "graphics/OverlayItems.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

using namespace nxr;
using namespace nxr::testing;

namespace {

class MovableShapesTest : public ::testing::Test
{
protected:
    FakeMovableHost host;
    clsOverlayCollection graphics;
    MovableShapes shapes{host, graphics};

    const clsBoxItem& windowItem() const { return std::get<clsBoxItem>(graphics.Item("MovableWindow")); }
    void dragWith(MovableShapeEditor& editor, QPointF from, QPointF to)
    {
        ASSERT_TRUE(editor.press({from, Qt::LeftButton, {}, false}));
        editor.move({to, Qt::NoButton, {}, false});
        editor.release({to, Qt::LeftButton, {}, false});
    }
};

} // namespace

TEST_F(MovableShapesTest, WindowShownEditedAndRefused)
{
    shapes.SetMovableWindow(50, 100, 40, 80, 0, false);
    EXPECT_FALSE(shapes.MovableWindowVisible());
    EXPECT_EQ(graphics.Count(), 0);
    shapes.ShowMovableWindow(0x123456);
    ASSERT_TRUE(shapes.MovableWindowVisible());
    EXPECT_EQ(windowItem().Left, 100);
    EXPECT_EQ(windowItem().Top, 50);
    EXPECT_EQ(windowItem().Width, 80);
    EXPECT_EQ(windowItem().Height, 40);
    EXPECT_EQ(windowItem().Color, 0x123456);

    graphics.AddText(0, 0, "page text", 0); // the window's item goes last when replaced
    host.mode = 3;
    shapes.EditMovableWindow();
    ASSERT_EQ(host.entered, QVector<MovableShape>{MovableShape::Window});
    ASSERT_EQ(host.activeEditor, &shapes.editor());
    EXPECT_EQ(host.mode, 1);
    EXPECT_EQ(host.buttonProperties.last(), "ActiveMouseCursor=1");
    EXPECT_EQ(shapes.editedKey(), "MovableWindow");
    EXPECT_TRUE(shapes.isEditing(MovableShape::Window));

    const int repaintsBefore = host.repaints;
    dragWith(*host.activeEditor, {140, 70}, {150, 80});
    EXPECT_EQ(shapes.MovableWindowLeft(), 110);
    EXPECT_EQ(windowItem().Left, 110); // replaced under its key
    EXPECT_EQ(graphics.KeyAt(graphics.Count()), "MovableWindow");
    EXPECT_GT(host.repaints, repaintsBefore);
    // The repaint covers the old and the new place.
    EXPECT_TRUE(host.repaintAreas.last().contains(QRectF(100, 50, 90, 50)));

    // A second shape cannot start meanwhile; the window edit goes on.
    shapes.EditMovableCursor();
    ASSERT_EQ(host.errors.size(), 1);
    EXPECT_EQ(host.errors[0], "Error in EditMovableCursor: the MovableWindow is being edited");
    EXPECT_TRUE(shapes.isEditing(MovableShape::Window));

    shapes.finishEdit(false);
    EXPECT_EQ(shapes.MovableWindowLeft(), 100);
    EXPECT_EQ(windowItem().Left, 100);
    EXPECT_FALSE(shapes.isEditing());
    EXPECT_EQ(shapes.editedKey(), "");
    EXPECT_EQ(host.mode, 3);
    EXPECT_EQ(host.buttonProperties.last(), "ActiveMouseCursor=3");
    ASSERT_EQ(host.left.size(), 1);
    EXPECT_EQ(host.left[0], std::pair(MovableShape::Window, false));
    shapes.finishEdit(true);
    EXPECT_EQ(host.left.size(), 1);

    shapes.setMovableWindowVisible(false);
    EXPECT_FALSE(graphics.Contains("MovableWindow"));
    EXPECT_EQ(graphics.Count(), 1);
}

TEST_F(MovableShapesTest, EditingShowsTheShapeAndARefusalHidesItAgain)
{
    shapes.SetMovableCursor(30, 40);
    shapes.EditMovableCursor();
    ASSERT_TRUE(shapes.MovableCursorVisible());
    const auto& cross = std::get<clsCrossItem>(graphics.Item("MovableCursor"));
    EXPECT_EQ(cross.X, 30);
    EXPECT_EQ(cross.Angle, 0);
    EXPECT_EQ(cross.Color, shapes.MovableCursorColor());
    dragWith(*host.activeEditor, {30, 40}, {35, 41});
    EXPECT_EQ(shapes.MovableCursorX(), 35);
    shapes.finishEdit(false);
    EXPECT_FALSE(shapes.MovableCursorVisible());
    EXPECT_EQ(shapes.MovableCursorX(), 30);
    EXPECT_EQ(host.left.last(), std::pair(MovableShape::Cursor, false));

    shapes.EditMovableCursor();
    host.activeEditor->key(Qt::Key_Down, {});
    shapes.finishEdit(true);
    EXPECT_TRUE(shapes.MovableCursorVisible());
    EXPECT_EQ(std::get<clsCrossItem>(graphics.Item("MovableCursor")).Y, 41);
    shapes.setMovableCursorColor(0xFF);
    EXPECT_EQ(std::get<clsCrossItem>(graphics.Item("MovableCursor")).Color, 0xFF);

    // Starting an edit while a mask is edited is refused.
    host.maskEditing = true;
    shapes.EditMovableLine();
    EXPECT_EQ(host.errors.last(), "Error in EditMovableLine: a mask is being edited");
    EXPECT_FALSE(shapes.isEditing());
}

TEST_F(MovableShapesTest, WindowResetPutsTheEditedShapeBack)
{
    shapes.SetMovableWindow(10, 10, 20, 20, 15, true);
    shapes.EditMovableWindow();
    host.activeEditor->key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(shapes.MovableWindowLeft(), 20);
    shapes.resetEdited();
    EXPECT_EQ(shapes.MovableWindowLeft(), 10);
    EXPECT_EQ(shapes.MovableWindowAngle(), 15);
    EXPECT_TRUE(shapes.isEditing());
    // The page moves the window while it is edited: the editor works on the new place, a
    // refusal still goes back to where the edit began.
    shapes.SetMovableWindow(100, 100, 20, 20, 0, true);
    dragWith(*host.activeEditor, {110, 110}, {111, 110});
    EXPECT_EQ(shapes.MovableWindowLeft(), 101);
    shapes.finishEdit(false);
    EXPECT_EQ(shapes.MovableWindowLeft(), 10);
}

TEST_F(MovableShapesTest, LineAndPairReadBack)
{
    shapes.SetMovableLine(1, 2, 3, 4, true);
    shapes.ShowMovableLine(true);
    const auto& line = std::get<clsLineItem>(graphics.Item("MovableLine"));
    EXPECT_EQ(line.Arrowed, 8);
    EXPECT_FALSE(line.IsPair);
    // End point, coordinate, value; 0 with an error for anything else.
    const std::tuple<int, const char*, double> reads[] = {{1, "X", 1}, {1, "Y", 2}, {2, "X", 3}, {2, "Y", 4},
                                                          {3, "X", 0}, {0, "Y", 0}, {1, "Z", 0}, {1, "x", 0}};
    for (const auto& [endpoint, xy, value] : reads) {
        host.errors.clear();
        EXPECT_EQ(shapes.MovableLineEndpoint(endpoint, xy), value) << endpoint << xy;
        EXPECT_EQ(host.errors,
                  value ? QStringList{} : QStringList{"Error in MovableLineEndpoint: invalid parameters"});
    }
    host.errors.clear();
    EXPECT_EQ(shapes.MovableLinePairEndpoint(5, "X"), 0);
    EXPECT_EQ(host.errors, QStringList{"Error in MovableLinePairEndpoint: invalid parameters"});

    shapes.SetMovableLinePair(0, 0, 100, 0, 12);
    shapes.ShowMovableLinePair(true);
    const auto& pair = std::get<clsLineItem>(graphics.Item("MovableLinePair"));
    EXPECT_TRUE(pair.IsPair);
    EXPECT_EQ(pair.PairWidth, 12);
    EXPECT_EQ(shapes.MovableLinePairEndpoint(2, "X"), 100);
    // The line and the pair share one line: the line item follows.
    EXPECT_EQ(std::get<clsLineItem>(graphics.Item("MovableLine")).X2, 100);
    shapes.ShowMovableLine(false);
    EXPECT_FALSE(shapes.MovableLineVisible());
    EXPECT_TRUE(shapes.MovableLinePairVisible());
}

TEST_F(MovableShapesTest, PairWidthFollowsItsLimits)
{
    struct Step
    {
        const char* what;
        double minimum, maximum; // NaN: not set in this step
        double startingWidth;    // NaN: no new pair
        double width, minAfter, maxAfter;
    };
    const double none = std::numeric_limits<double>::quiet_NaN();
    const Step steps[] = {{"narrower than a pixel", none, none, 0.5, 1, 1, -1},
                          {"a minimum widens it", 5, none, none, 5, 5, -1},
                          {"a maximum below the minimum is ignored", none, 3, none, 5, 5, -1},
                          {"a maximum caps a new pair", none, 20, 100, 20, 5, 20},
                          {"a smaller maximum narrows it", none, 8, none, 8, 5, 8},
                          {"no maximum again", none, -1, 50, 50, 5, -1}};
    for (const Step& s : steps) {
        if (!std::isnan(s.minimum))
            shapes.setMinPairWidth(s.minimum);
        if (!std::isnan(s.maximum))
            shapes.setMaxPairWidth(s.maximum);
        if (!std::isnan(s.startingWidth))
            shapes.SetMovableLinePair(0, 0, 50, 0, s.startingWidth);
        EXPECT_EQ(shapes.MovableLinePairWidth(), s.width) << s.what;
        EXPECT_EQ(shapes.model().Line.MinPairWidth(), s.minAfter) << s.what;
        EXPECT_EQ(shapes.model().Line.MaxPairWidth(), s.maxAfter) << s.what;
    }
    EXPECT_TRUE(host.errors.isEmpty());
}

TEST_F(MovableShapesTest, EnablingSwitchesTheWindowResetButton)
{
    // The reset button is on while the window or the pair may move.
    void (MovableShapes::*const set[])(bool) = {
        &MovableShapes::setMoveWindowEnabled, &MovableShapes::setMoveCursorEnabled,
        &MovableShapes::setMoveLineEnabled, &MovableShapes::setMoveLinePairEnabled};
    const std::tuple<int, bool, const char*> steps[] = {{0, true, "True"},   {1, false, "True"},
                                                        {3, true, "True"},   {0, false, "True"},
                                                        {3, false, "False"}, {2, true, "True"}};
    for (const auto& [which, enabled, sent] : steps) {
        (shapes.*set[which])(enabled);
        EXPECT_EQ(host.buttonProperties.last(), QString("ButtonEnabled=13, ") + sent) << which << enabled;
    }
    EXPECT_TRUE(shapes.MoveLineEnabled());
    EXPECT_FALSE(shapes.MoveWindowEnabled());
}

TEST_F(MovableShapesTest, RefusedInputChangesNothing)
{
    shapes.SetMovableWindow(1, 2, 3, 4, 5, true);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    shapes.SetMovableWindow(nan, 0, 10, 10, 0, false);
    shapes.SetMovableWindow(0, 0, -1, 10, 0, false);
    shapes.SetMovableWindow(0, 0, 10, 1e300, 0, false);
    shapes.SetMovableCursor(inf, 0);
    shapes.SetMovableLine(0, 0, nan, 0, false);
    shapes.SetMovableLinePair(0, 0, 1, 1, inf);
    shapes.setMinPairWidth(nan);
    EXPECT_EQ(host.errors.size(), 7);
    for (const QString& e : host.errors)
        EXPECT_TRUE(e.endsWith(": Invalid procedure call or argument")) << e.toStdString();
    EXPECT_EQ(shapes.model().Window, (clsWindow{1, 2, 3, 4, 5, true}));
    EXPECT_EQ(shapes.MovableCursorX(), 0);
    EXPECT_EQ(shapes.model().Line.MinPairWidth(), 1);
}
