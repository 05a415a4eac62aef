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
    const double atan2Cases[][3] = {
        {0, 0, 0},        {1, 0, kPi / 2},      {-1, 0, -kPi / 2},      {0, -1, -kPi},
        {-0.0, -1, -kPi}, {1, -1, 3 * kPi / 4}, {-1, -1, -3 * kPi / 4}, {-1, 1, -std::atan(1.0)}};
    for (const auto& c : atan2Cases)
        EXPECT_NEAR(ArcTan2(c[0], c[1]), c[2], 1e-9) << c[0] << ", " << c[1];
    const double acosCases[][2] = {
        {1, 0}, {-1, 0}, {0, kPi / 2}, {0.5, std::acos(0.5)}, {-0.5, std::acos(-0.5)}, {2, 0}, {-3, 0}};
    for (const auto& c : acosCases)
        EXPECT_NEAR(ArcCos(c[0]), c[1], 1e-9) << c[0];
    EXPECT_DOUBLE_EQ(RadiansToDegrees(kPi), 180.0);

    const qint32 contrast[][2] = {{0x000000, 0xFFFFFF}, {0x7F7F7F, 0xFFFFFF}, {0x800000, 0},
                                  {0x000080, 0},        {0x008000, 0},        {0x7F7F80, 0},
                                  {0xFFFFFF, 0},        {0x400000, 0xFFFFFF}};
    for (const auto& c : contrast)
        EXPECT_EQ(GetContrastColor(c[0]), c[1]) << std::hex << c[0];
    // Blue is divided by 65281: it runs up to 256.
    const qint32 blues[][2] = {
        {0x7F0000, 127}, {0x800000, 128}, {0x810000, 130}, {0xFE0000, 255}, {0xFF12FF, 256}};
    for (const auto& c : blues)
        EXPECT_EQ(ContrastColorBlue(c[0]), c[1]) << std::hex << c[0];
}

TEST(Vector, ComponentBoundsOwnOperandsAndProjection)
{
    clsVector v(1, 2, 3);
    v.setComponent(0, 9);
    v.setComponent(4, 9);
    EXPECT_EQ(v, clsVector(1, 2, 3));
    EXPECT_EQ(v.Component(0) + v.Component(4), 0.0);
    EXPECT_DOUBLE_EQ(clsVector(3, 4, 0).Length(), 5.0);
    EXPECT_DOUBLE_EQ(clsVector(1, 1, 1).DistanceTo(clsVector(2, 3, 3)), 3.0);
    clsVector x(1, 0, 0);
    x.CrossProduct(x, clsVector(0, 1, 0)); // the target is also an operand
    EXPECT_EQ(x, clsVector(0, 0, 1));
    clsVector n(7, 7, 7);
    n.Normalize(clsVector());
    EXPECT_EQ(n, clsVector(7, 7, 7));

    // t is 0 at b and 1 at a; the point lands on the line.
    const double cases[][6] = {// P, a = (0, 0), b, t, P on the line
                               {5, 5, 10, 0, 0.5, 5},
                               {10, 3, 10, 0, 0.0, 10},
                               {20, 0, 10, 0, -1.0, 20},
                               {0, 10, 10, 10, 0.5, 5}};
    for (const auto& c : cases) {
        clsVector p(c[0], c[1]);
        EXPECT_NEAR(p.ProjectOntoLine(clsVector(0, 0), clsVector(c[2], c[3])), c[4], 1e-12);
        EXPECT_NEAR(p.X(), c[5], 1e-12);
    }
    clsVector p(1, 1);
    EXPECT_THROW(p.ProjectOntoLine(clsVector(2, 2), clsVector(2, 2)), Failure);
}

TEST(Rectangle, BoxesTurnCounterClockwiseAboutTheirCentre)
{
    clsRectangle r;
    const double expected[2][4][2] = {{{0, 0}, {10, 0}, {10, 20}, {0, 20}},
                                      {{-5, 15}, {-5, 5}, {15, 5}, {15, 15}}}; // 90: U points up the screen
    for (int a = 0; a < 2; ++a) {
        r.SetFromBox(0, 0, 10, 20, a * 90);
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(r.Corner(i).X(), expected[a][i][0], 1e-9) << a << " " << i;
            EXPECT_NEAR(r.Corner(i).Y(), expected[a][i][1], 1e-9) << a << " " << i;
        }
    }
    EXPECT_TRUE(r.Contains(clsVector(14, 6)));
    EXPECT_FALSE(r.Contains(clsVector(5, 1)));
    const clsWindow w = r.ToWindow();
    EXPECT_NEAR(w.Left + w.Top, 0, 1e-9);
    EXPECT_NEAR(w.Width, 10, 1e-9);
    EXPECT_NEAR(w.Height, 20, 1e-9);
    EXPECT_NEAR(w.Angle, 90, 1e-9);
    EXPECT_THROW(r.Corner(4), Failure);
    EXPECT_THROW(r.Corner(-1), Failure);

    const clsWindow windows[] = {{10, 20, 30, 40, 0, false},
                                 {-5, 7.5, 3, 100, -45, false},
                                 {50, 50, 1, 1, 135, false},
                                 {12, 34, 56, 78, -170, false}};
    for (const auto& win : windows) {
        r.SetFromWindow(win);
        const clsWindow back = r.ToWindow();
        EXPECT_NEAR(back.Left, win.Left, 1e-9);
        EXPECT_NEAR(back.Top, win.Top, 1e-9);
        EXPECT_NEAR(back.Width, win.Width, 1e-9);
        EXPECT_NEAR(back.Height, win.Height, 1e-9);
        EXPECT_NEAR(back.Angle, win.Angle, 1e-6);
    }
}

TEST(Rectangle, OrthogonalizeRebuildsAxesFromEditedCorners)
{
    // A window lying along the negative X axis reads -180 degrees (literal pi over derived pi).
    clsRectangle r;
    r.Corner(0) = clsVector(10, 0);
    r.Corner(2) = clsVector(0, -5);
    r.Corner(3) = clsVector(10, -5);
    r.Orthogonalize();
    EXPECT_EQ(r.AxisU(), clsVector(-1, 0));
    EXPECT_EQ(r.ToWindow().Angle, -3.1415926536 * 180.0 / (4.0 * std::atan(1.0)));

    // The longer edge keeps its direction.
    r.SetFromBox(0, 0, 10, 20, 0);
    r.Corner(1).setY(1);
    r.Orthogonalize();
    EXPECT_NEAR(r.AxisU().X(), 1, 1e-12);
    EXPECT_NEAR(r.AxisU().Y(), 0, 1e-12);

    // Corners closer than 1e-6 are merged first; 2e-6 apart they are not.
    r.Corner(1) = clsVector(5e-7, 0);
    r.Orthogonalize();
    EXPECT_EQ(r.Corner(1), r.Corner(0));
    r.Corner(1) = clsVector(2e-6, 0);
    r.Orthogonalize();
    EXPECT_NE(r.Corner(1), r.Corner(0));

    // All corners on one point: the axes keep their directions.
    r.SetFromBox(0, 0, 10, 20, 30);
    const clsVector u = r.AxisU();
    for (int i = 1; i < 4; ++i)
        r.Corner(i) = r.Corner(0);
    r.Orthogonalize();
    EXPECT_EQ(r.AxisU(), u);
}

} // namespace
