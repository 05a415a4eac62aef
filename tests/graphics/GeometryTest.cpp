// Vectors, rotated rectangles, windows, the angle helpers and the contrast colour.

#include "graphics/Geometry.h"
#include "frame/Conversions.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace nxr;

namespace {

constexpr double kPi = 3.1415926536;

TEST(AngleHelpers, TableOfQuirks)
{
    struct Case
    {
        double y, x, expected;
    };
    const Case atan2Cases[] = {
        {0, 0, 0},
        {1, 0, kPi / 2},
        {-1, 0, -kPi / 2},
        {0, -1, -kPi},
        {-0.0, -1, -kPi},
        {1, -1, 3 * kPi / 4 + 0},
        {-1, -1, -3 * kPi / 4 + 0},
        {1, 1, std::atan(1.0)},
        {-1, 1, -std::atan(1.0)},
    };
    for (const auto& c : atan2Cases)
        EXPECT_NEAR(ArcTan2(c.y, c.x), c.expected, 1e-9) << c.y << ", " << c.x;
    // The literal pi, not the library's M_PI.
    EXPECT_EQ(ArcTan2(0, -1), std::atan(0.0) - 3.1415926536);

    const std::pair<double, double> acosCases[] = {
        {1, 0}, {-1, 0}, {0, kPi / 2}, {0.5, std::acos(0.5)}, {-0.5, std::acos(-0.5)}, {2, 0}, {-3, 0}};
    for (const auto& [x, expected] : acosCases)
        EXPECT_NEAR(ArcCos(x), expected, 1e-9) << x;

    EXPECT_DOUBLE_EQ(RadiansToDegrees(3.1415926536), 180.0);
    EXPECT_DOUBLE_EQ(RadiansToDegrees(-kPi / 2), -90.0);
}

TEST(AngleHelpers, ContrastColourUsesThe65281Divisor)
{
    const std::pair<qint32, qint32> cases[] = {
        {0x000000, 0xFFFFFF}, {0x7F7F7F, 0xFFFFFF}, {0x800000, 0}, {0x7F0000, 0xFFFFFF},
        {0x000080, 0},        {0x00007F, 0xFFFFFF}, {0x008000, 0}, {0x007F00, 0xFFFFFF},
        {0xFFFFFF, 0},        {0x0000FF, 0},        {0x7F7F80, 0}, {0x400000, 0xFFFFFF},
    };
    for (const auto& [color, expected] : cases)
        EXPECT_EQ(GetContrastColor(color), expected) << std::hex << color;
    const std::pair<qint32, long> blues[] = {{0x000000, 0},   {0x7F0000, 127}, {0x800000, 128},
                                             {0x810000, 130}, {0xFE0000, 255}, {0xFF0000, 256},
                                             {0xFF12FF, 256}};
    for (const auto& [color, blue] : blues)
        EXPECT_EQ(ContrastColorBlue(color), blue) << std::hex << color;
}

TEST(Vector, ComponentsLengthsAndOwnOperands)
{
    clsVector v(1, 2, 3);
    EXPECT_EQ(v.Component(0), 0.0);
    EXPECT_EQ(v.Component(4), 0.0);
    v.setComponent(0, 9);
    v.setComponent(4, 9);
    EXPECT_EQ(v, clsVector(1, 2, 3));
    v.setComponent(2, 7);
    EXPECT_EQ(v.Y(), 7.0);

    EXPECT_DOUBLE_EQ(clsVector(3, 4, 0).Length(), 5.0);
    EXPECT_DOUBLE_EQ(clsVector(1, 2, 2).DistanceTo(clsVector(1, 2, 2)), 0.0);
    EXPECT_DOUBLE_EQ(clsVector(1, 1, 1).DistanceTo(clsVector(2, 3, 3)), 3.0);

    clsVector a(1, 2, 3), b(4, 5, 6);
    a.Add(a, a);
    EXPECT_EQ(a, clsVector(2, 4, 6));
    a.Subtract(a, b);
    EXPECT_EQ(a, clsVector(-2, -1, 0));
    clsVector x(1, 0, 0), y(0, 1, 0);
    x.CrossProduct(x, y); // the target is also an operand
    EXPECT_EQ(x, clsVector(0, 0, 1));
    EXPECT_EQ(b.DotProduct(clsVector(1, -1, 2)), 11.0);
    b.Negate(b);
    EXPECT_EQ(b, clsVector(-4, -5, -6));

    clsVector n(7, 7, 7);
    n.Normalize(clsVector());
    EXPECT_EQ(n, clsVector(7, 7, 7));
    n.Normalize(clsVector(0, 3, 4));
    EXPECT_EQ(n, clsVector(0, 0.6, 0.8));
}

TEST(Vector, ProjectOntoLine)
{
    struct Case
    {
        clsVector p, a, b;
        double t;
        clsVector onLine;
    };
    const Case cases[] = {
        {{5, 5}, {0, 0}, {10, 0}, 0.5, {5, 0}},    {{10, 3}, {0, 0}, {10, 0}, 0.0, {10, 0}},
        {{0, -3}, {0, 0}, {10, 0}, 1.0, {0, 0}},   {{0, 10}, {0, 0}, {10, 10}, 0.5, {5, 5}},
        {{20, 0}, {0, 0}, {10, 0}, -1.0, {20, 0}},
    };
    for (const auto& c : cases) {
        clsVector p = c.p;
        EXPECT_NEAR(p.ProjectOntoLine(c.a, c.b), c.t, 1e-12);
        EXPECT_NEAR(p.X(), c.onLine.X(), 1e-12);
        EXPECT_NEAR(p.Y(), c.onLine.Y(), 1e-12);
    }
    clsVector p(1, 1);
    EXPECT_THROW(p.ProjectOntoLine(clsVector(2, 2), clsVector(2, 2)), Failure);
}

void expectCorners(const clsRectangle& r, const std::array<clsVector, 4>& expected)
{
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(r.Corner(i).X(), expected[std::size_t(i)].X(), 1e-9) << "corner " << i;
        EXPECT_NEAR(r.Corner(i).Y(), expected[std::size_t(i)].Y(), 1e-9) << "corner " << i;
    }
}

TEST(Rectangle, BoxesTurnCounterClockwiseAboutTheirCentre)
{
    clsRectangle r;
    r.SetFromBox(0, 0, 10, 20, 0);
    expectCorners(r, {clsVector(0, 0), clsVector(10, 0), clsVector(10, 20), clsVector(0, 20)});
    EXPECT_DOUBLE_EQ(r.UStart(), 0.0);
    EXPECT_DOUBLE_EQ(r.UEnd(), 10.0);
    EXPECT_DOUBLE_EQ(r.VStart(), 0.0);
    EXPECT_DOUBLE_EQ(r.VEnd(), 20.0);

    r.SetFromBox(0, 0, 10, 20, 90);
    // U points up the screen: the top edge of the box now runs from (-5, 15) to (-5, 5).
    expectCorners(r, {clsVector(-5, 15), clsVector(-5, 5), clsVector(15, 5), clsVector(15, 15)});
    EXPECT_TRUE(r.Contains(clsVector(5, 10)));
    EXPECT_TRUE(r.Contains(clsVector(14, 6)));
    EXPECT_FALSE(r.Contains(clsVector(5, 1)));
    const clsWindow w = r.ToWindow();
    EXPECT_NEAR(w.Left, 0, 1e-9);
    EXPECT_NEAR(w.Top, 0, 1e-9);
    EXPECT_NEAR(w.Width, 10, 1e-9);
    EXPECT_NEAR(w.Height, 20, 1e-9);
    EXPECT_NEAR(w.Angle, 90, 1e-9);

    EXPECT_THROW(r.Corner(4), Failure);
    EXPECT_THROW(r.Corner(-1), Failure);
}

TEST(Rectangle, WindowRoundTrip)
{
    const clsWindow windows[] = {
        {10, 20, 30, 40, 0, false}, {0, 0, 10, 20, 30, false},     {-5, 7.5, 3, 100, -45, false},
        {50, 50, 1, 1, 135, false}, {12, 34, 56, 78, -170, false}, {0, 0, 200, 5, 89.5, false},
    };
    for (const auto& w : windows) {
        clsRectangle r;
        r.SetFromWindow(w);
        clsRectangle again;
        again.SetFromWindow(r.ToWindow());
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(again.Corner(i).X(), r.Corner(i).X(), 1e-9) << w.Angle;
            EXPECT_NEAR(again.Corner(i).Y(), r.Corner(i).Y(), 1e-9) << w.Angle;
        }
        const clsWindow back = r.ToWindow();
        EXPECT_NEAR(back.Width, w.Width, 1e-9);
        EXPECT_NEAR(back.Height, w.Height, 1e-9);
        EXPECT_NEAR(back.Left, w.Left, 1e-9);
        EXPECT_NEAR(back.Top, w.Top, 1e-9);
    }
}

TEST(Rectangle, OrthogonalizeRebuildsAxesFromEditedCorners)
{
    // A window lying along the negative X axis reads -180 degrees.
    clsRectangle r;
    r.Corner(0) = clsVector(10, 0);
    r.Corner(1) = clsVector(0, 0);
    r.Corner(2) = clsVector(0, -5);
    r.Corner(3) = clsVector(10, -5);
    r.Orthogonalize();
    EXPECT_EQ(r.AxisU(), clsVector(-1, 0));
    // The literal pi of ArcTan2 over the derived pi of the rectangle: a hair past -180.
    EXPECT_EQ(r.ToWindow().Angle, -3.1415926536 * 180.0 / (4.0 * std::atan(1.0)));
    EXPECT_NEAR(r.ToWindow().Angle, -180.0, 1e-8);

    // The longer edge keeps its direction; the other axis follows at right angles.
    r.SetFromBox(0, 0, 10, 20, 0);
    r.Corner(1).setY(1); // U edge now (10, 1), shorter than the V edge (0, 20)
    r.Orthogonalize();
    EXPECT_NEAR(r.AxisV().X(), 0, 1e-12);
    EXPECT_NEAR(r.AxisV().Y(), 1, 1e-12);
    EXPECT_NEAR(r.AxisU().X(), 1, 1e-12);
    EXPECT_NEAR(r.AxisU().Y(), 0, 1e-12);

    // Corners closer than 1e-6 are merged before the axes are built; 2e-6 apart they are not.
    r.SetFromBox(0, 0, 10, 20, 0);
    r.Corner(1) = clsVector(5e-7, 0);
    r.Orthogonalize();
    EXPECT_EQ(r.Corner(1), r.Corner(0));
    EXPECT_EQ(r.AxisU(), clsVector(1, -0.0));
    r.SetFromBox(0, 0, 10, 20, 0);
    r.Corner(1) = clsVector(2e-6, 0);
    r.Orthogonalize();
    EXPECT_NE(r.Corner(1), r.Corner(0));

    // All corners on one point: the axes keep their directions.
    r.SetFromBox(0, 0, 10, 20, 30);
    const clsVector u = r.AxisU(), v = r.AxisV();
    for (int i = 1; i < 4; ++i)
        r.Corner(i) = r.Corner(0);
    r.Orthogonalize();
    EXPECT_EQ(r.AxisU(), u);
    EXPECT_EQ(r.AxisV(), v);
    EXPECT_EQ(r.UStart(), r.UEnd());
}

} // namespace
