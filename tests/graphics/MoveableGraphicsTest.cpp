// The movable shapes' model: what the window hit test finds and shows, the thin-window rule, the
// handle highlight, line end-point moves and the pair width limits.

#include "graphics/MoveableGraphics.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace nxr;

namespace {

using G = clsMoveableGraphics;

G windowModel(double left, double top, double width, double height, double angle, bool rotatable)
{
    G g;
    g.Window = clsWindow{top, left, height, width, angle, rotatable};
    g.BeginWindowEdit();
    return g;
}

// The point at fractions (fu, fv) of the window's own axes: (0, 0) corner 0, (1, 1) corner 2.
clsVector at(const G& g, double fu, double fv)
{
    const auto c = g.GetMoveableWindowCornerPoints();
    return clsVector(c[0].X() + fu * (c[1].X() - c[0].X()) + fv * (c[3].X() - c[0].X()),
                     c[0].Y() + fu * (c[1].Y() - c[0].Y()) + fv * (c[3].Y() - c[0].Y()));
}

G lineModel(double x1, double y1, double x2, double y2)
{
    G g;
    g.Line.X1 = x1;
    g.Line.Y1 = y1;
    g.Line.X2 = x2;
    g.Line.Y2 = y2;
    return g;
}

void expectLine(const G& g, double x1, double y1, double x2, double y2)
{
    EXPECT_LT(std::hypot(g.Line.X1 - x1, g.Line.Y1 - y1) + std::hypot(g.Line.X2 - x2, g.Line.Y2 - y2), 1e-9)
        << "line now " << g.Line.X1 << "," << g.Line.Y1 << " to " << g.Line.X2 << "," << g.Line.Y2;
}

} // namespace

TEST(MoveableGraphicsTest, PointerAtEachPartOfUnrotatedAndRotatedWindows)
{
    struct Case
    {
        double angle;
        bool rotatable;
        double fu, fv; // position on the window
        int pointer;
    };
    // An 80 x 40 window: on it, 1/80 of its width is one image pixel.
    const Case cases[] = {{0, true, 0.5, 0.5, kPointerSizeAll},
                          {0, true, 0.0, 0.5, kPointerSizeWE},
                          {0, true, 1.0, 0.5, kPointerRotate},
                          {0, false, 1.0, 0.5, kPointerSizeWE},
                          {0, true, 1.0, 0.25, kPointerSizeWE},
                          {0, true, 0.5, 0.0, kPointerSizeNS},
                          {0, true, 0.5, 1.0, kPointerSizeNS},
                          {0, true, 0.0, 0.0, kPointerSizeNWSE},
                          {0, true, 1.0, 0.0, kPointerSizeNESW},
                          {0, true, 1.0, 1.0, kPointerSizeNWSE},
                          {0, true, 0.0, 1.0, kPointerSizeNESW},
                          {0, true, -6.0 / 80, 0.5, kPointerDefault},
                          {0, true, -4.0 / 80, 0.5, kPointerSizeWE},
                          {0, true, 0.5, -0.5, kPointerDefault},
                          // Turned a quarter: the U edges lie across the screen.
                          {90, true, 1.0, 0.5, kPointerRotate},
                          {90, true, 1.0, 0.2, kPointerSizeNS},
                          {90, true, 0.5, 0.0, kPointerSizeWE},
                          {90, false, 1.0, 0.5, kPointerSizeNS},
                          // Turned 30 degrees counter-clockwise: the U axis points up and right.
                          {30, true, 0.0, 0.5, kPointerSizeNESW},
                          {30, true, 0.5, 0.0, kPointerSizeNWSE},
                          {30, true, 1.0, 0.5, kPointerRotate},
                          {-80, false, 0.0, 0.5, kPointerSizeNS},
                          {170, true, 0.5, 0.5, kPointerSizeAll},
                          {170, true, 0.0, 0.5, kPointerSizeWE}};
    for (const Case& c : cases) {
        G g = windowModel(100, 50, 80, 40, c.angle, c.rotatable);
        bool hit = false;
        EXPECT_EQ(g.HitTestWindow(at(g, c.fu, c.fv), &hit), c.pointer)
            << c.angle << " " << c.rotatable << " at " << c.fu << ", " << c.fv;
        EXPECT_EQ(hit, c.pointer != kPointerDefault);
    }
}

TEST(MoveableGraphicsTest, NonRotatableWindowNeverShowsTheHandle)
{
    for (double angle : {0.0, 30.0, 90.0, -135.0}) {
        G g = windowModel(100, 50, 80, 40, angle, false);
        for (double fu = -0.1; fu <= 1.1; fu += 0.025)
            for (double fv = -0.2; fv <= 1.2; fv += 0.05) {
                EXPECT_NE(g.HitTestWindow(at(g, fu, fv)), kPointerRotate);
                EXPECT_FALSE(g.HitRotate);
                EXPECT_NE(g.HandleColors[4], G::kHandleGreen);
            }
    }
}

TEST(MoveableGraphicsTest, ThinWindowKeepsOnlyTheNearerEdge)
{
    // 6 pixels wide and 6 high at tolerance 5: both edges of a pair are in reach in the middle.
    struct Case
    {
        double width, height; // of a window at (100, 50)
        double x, y;
        bool left, right, top, bottom;
    };
    const Case cases[] = {
        {6, 200, 102, 120, true, false, false, false}, {6, 200, 104.5, 120, false, true, false, false},
        {6, 200, 103, 120, false, true, false, false}, // a tie goes to the right edge
        {200, 6, 120, 52, false, false, true, false},  {200, 6, 120, 54, false, false, false, true},
        {6, 6, 102, 52, true, false, true, false},     {6, 6, 103, 53, false, true, false, true}};
    for (const Case& c : cases) {
        G g = windowModel(100, 50, c.width, c.height, 0, false);
        bool hit = false;
        g.HitTestWindow(clsVector(c.x, c.y), &hit);
        EXPECT_TRUE(hit);
        EXPECT_EQ(g.HitLeft, c.left) << c.x << "," << c.y;
        EXPECT_EQ(g.HitRight, c.right) << c.x << "," << c.y;
        EXPECT_EQ(g.HitTop, c.top) << c.x << "," << c.y;
        EXPECT_EQ(g.HitBottom, c.bottom) << c.x << "," << c.y;
        EXPECT_FALSE(g.HitInside);
    }
    // On a thin rotatable window the handle is there only when the right edge is the nearer.
    G r = windowModel(100, 50, 6, 200, 0, true);
    EXPECT_EQ(r.HitTestWindow(clsVector(102, 150)), kPointerSizeWE);
    EXPECT_TRUE(r.HitLeft);
    EXPECT_EQ(r.HitTestWindow(clsVector(104, 150)), kPointerRotate);
    EXPECT_FALSE(r.HitLeft || r.HitRight);
    // Dragging the kept edge moves that edge alone.
    G g = windowModel(100, 50, 6, 200, 0, false);
    g.HitTestWindow(clsVector(102, 120));
    const clsRectangle atPress = g.Rect;
    g.DragWindow(atPress, clsVector(102, 120), clsVector(90, 120));
    EXPECT_NEAR(g.Window.Left, 90, 1e-9);
    EXPECT_NEAR(g.Window.Width, 16, 1e-9);
}

TEST(MoveableGraphicsTest, HighlightColoursOfWhatIsGrabbed)
{
    const qint32 R = G::kHandleRed, O = G::kHandleOrange, V = G::kHandleViolet, Gr = G::kHandleGreen;
    struct Case
    {
        double fu, fv;
        std::array<qint32, 5> colors;
    };
    const Case cases[] = {{0.5, 0.5, {O, O, O, O, O}}, {1.0, 0.5, {R, R, R, R, Gr}},
                          {0.0, 0.5, {V, R, R, V, R}}, {1.0, 0.2, {R, V, V, R, R}},
                          {0.5, 0.0, {V, V, R, R, R}}, {0.5, 1.0, {R, R, V, V, R}},
                          {0.0, 0.0, {V, V, R, V, R}}, {0.5, 3.0, {R, R, R, R, R}}};
    G g = windowModel(100, 50, 80, 40, 20, true);
    for (const Case& c : cases) {
        g.HitTestWindow(at(g, c.fu, c.fv));
        EXPECT_EQ(g.HandleColors, c.colors) << c.fu << ", " << c.fv;
    }
}

TEST(MoveableGraphicsTest, SizingPointerSectors)
{
    // Direction on the screen in degrees (image coordinates, Y down), pointer.
    const int sectors[][2] = {{0, 9},   {20, 9},  {-20, 9}, {180, 9}, {30, 8}, {60, 8},  {-150, 8},
                              {-30, 6}, {-60, 6}, {150, 6}, {70, 7},  {90, 7}, {-90, 7}, {-110, 7}};
    for (const auto& [degrees, pointer] : sectors) {
        const double r = degrees * kMathPi / 180.0;
        EXPECT_EQ(G::SizingPointer(std::cos(r), std::sin(r)), pointer) << degrees;
    }
}

TEST(MoveableGraphicsTest, LineEndPointMovesKeepOnePixel)
{
    struct Case
    {
        int idx;
        double x, y;
        bool keepDirection;
        double x1, y1, x2, y2;
    };
    const Case cases[] = {
        {1, 20, 30, false, 20, 30, 50, 10},   // free move
        {2, 10.5, 10, false, 10, 10, 11, 10}, // closer than a pixel: one pixel in its direction
        {1, 50, 10, false, 49, 10, 50, 10},   // onto the other end: along the old direction
        {2, 10, 9.2, false, 10, 10, 10, 9},   // straight up, 0.8 away
        {2, 60, 20, true, 10, 10, 60, 10},    // along the line: projected onto it
        {1, 49.5, 30, true, 49, 10, 50, 10},  // projected too close
        {3, 5, -2, false, 15, 8, 55, 8},      // the whole line
        {4, 0, 0, false, 10, 10, 50, 10},     // no such index
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.idx << " to " << c.x << "," << c.y);
        G g = lineModel(10, 10, 50, 10);
        g.MoveLine(c.idx, c.x, c.y, c.keepDirection);
        expectLine(g, c.x1, c.y1, c.x2, c.y2);
        EXPECT_GE(std::hypot(g.Line.X2 - g.Line.X1, g.Line.Y2 - g.Line.Y1), 1.0 - 1e-12);
    }
    // A line collapsed by the page: an end moved onto the other goes one pixel to the right.
    G g = lineModel(5, 5, 5, 5);
    g.MoveLine(2, 5, 5, true);
    expectLine(g, 5, 5, 6, 5);
}

TEST(MoveableGraphicsTest, PairWidthStaysWithinItsLimits)
{
    const double cases[][4] = {// minimum, maximum, distance from the line, width
                               {1, -1, 7, 14}, {4, 10, 1, 4}, {4, 10, 20, 10},
                               {4, 10, 3, 6},  {1, -1, 0, 1}, {0.2, -1, 0.1, 1}};
    for (const auto& [minimum, maximum, distance, width] : cases) {
        G g = lineModel(0, 0, 30, 40); // direction (0.6, 0.8), normal (-0.8, 0.6)
        g.Line.IsPair = true;
        g.Line.SetMinPairWidth(minimum);
        g.Line.SetMaxPairWidth(maximum);
        g.SetPairWidthThrough(clsVector(15 - 0.8 * distance, 20 + 0.6 * distance));
        EXPECT_NEAR(g.Line.PairWidth, width, 1e-9) << minimum << " " << maximum << " " << distance;
    }
}

TEST(MoveableGraphicsTest, LineAndPairHitParts)
{
    G g = lineModel(0, 0, 100, 0);
    g.Line.PairWidth = 20;
    struct Case
    {
        double x, y;
        bool pair;
        LinePart part;
        int pointer;
    };
    const Case cases[] = {
        {2, 1, false, LinePart::End1, kPointerSizeWE},    {97, -2, false, LinePart::End2, kPointerSizeWE},
        {50, 4, false, LinePart::Whole, kPointerSizeAll}, {50, 6, false, LinePart::None, kPointerDefault},
        {50, 9, true, LinePart::Side, kPointerSizeNS},    {50, -12, true, LinePart::Side, kPointerSizeNS},
        {50, 4, true, LinePart::Whole, kPointerSizeAll},  {50, 16, true, LinePart::None, kPointerDefault},
        {-8, 0, true, LinePart::None, kPointerDefault}};
    for (const Case& c : cases) {
        const LinePart part = g.HitTestLine(clsVector(c.x, c.y), c.pair);
        EXPECT_EQ(part, c.part) << c.x << "," << c.y << " pair " << c.pair;
        EXPECT_EQ(g.LinePointer(part), c.pointer) << c.x << "," << c.y;
    }
}

TEST(MoveableGraphicsTest, WindowFromALineAndItsCorners)
{
    // Along the line from (10, 10) to (10, 50): 40 long, 6 across, turned to point down the
    // screen (clockwise, so -90).
    const clsWindow w = G::DefineMoveableWindowByLineAndWidth(10, 10, 10, 50, 6);
    EXPECT_NEAR(w.Width, 40, 1e-9);
    EXPECT_NEAR(w.Height, 6, 1e-9);
    EXPECT_NEAR(w.Angle, -90, 1e-6);
    EXPECT_TRUE(w.Rotatable);
    G g;
    g.Window = w;
    const auto c = g.GetMoveableWindowCornerPoints();
    // Corner 0 and 1 lie at the line's two ends, shifted half the width across it.
    const double expected[4][2] = {{13, 10}, {13, 50}, {7, 50}, {7, 10}};
    for (int i = 0; i < 4; ++i)
        EXPECT_LT(c[i].DistanceTo(clsVector(expected[i][0], expected[i][1])), 1e-6) << i;
}
