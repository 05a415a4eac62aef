// The overlay collection (order, keys, removal), the pair-width guards and the crosshair.

#include "graphics/OverlayItems.h"
#include "frame/Conversions.h"
#include "graphics/Crosshair.h"

#include <gtest/gtest.h>

using namespace nxr;

namespace {

TEST(LineItem, PairWidthGuards)
{
    enum Op { Min, Max };
    struct Step
    {
        Op op;
        double value, min, max;
    };
    const std::vector<std::vector<Step>> runs = {
        {{Min, 0.5, 1.0, -1}, {Min, -3, 1.0, -1}, {Min, 1000, 1000, -1}},
        {{Max, 10, 1, 10}, {Min, 5, 5, 10}, {Min, 12, 5, 10}, {Min, 10, 5, 10}, {Min, 9.5, 9.5, 10}},
        {{Min, 5, 5, -1}, {Max, 3, 5, -1}, {Max, 5, 5, -1}, {Max, 5.5, 5, 5.5}, {Max, -1, 5, -1}},
        {{Max, 0.5, 1, -1}, {Max, -2, 1, -1}, {Max, 2, 1, 2}, {Min, 0.2, 1, 2}},
    };
    for (std::size_t r = 0; r < runs.size(); ++r) {
        clsLineItem line;
        EXPECT_EQ(line.MinPairWidth(), 1.0);
        EXPECT_EQ(line.MaxPairWidth(), -1.0);
        for (std::size_t s = 0; s < runs[r].size(); ++s) {
            const Step& step = runs[r][s];
            if (step.op == Min)
                line.SetMinPairWidth(step.value);
            else
                line.SetMaxPairWidth(step.value);
            EXPECT_EQ(line.MinPairWidth(), step.min) << "run " << r << " step " << s;
            EXPECT_EQ(line.MaxPairWidth(), step.max) << "run " << r << " step " << s;
        }
    }
}

TEST(LineItem, PairCornersLieAcrossTheCentreLine)
{
    clsLineItem line;
    line.X1 = 0;
    line.Y1 = 0;
    line.X2 = 10;
    line.Y2 = 0;
    line.PairWidth = 4;
    const auto c = line.PairCorners();
    EXPECT_EQ(c[0], clsVector(0, 2));
    EXPECT_EQ(c[1], clsVector(10, 2));
    EXPECT_EQ(c[2], clsVector(10, -2));
    EXPECT_EQ(c[3], clsVector(0, -2));

    line.X2 = 0;
    line.Y2 = 6;
    line.PairWidth = 2;
    const auto d = line.PairCorners();
    EXPECT_NEAR(d[0].X(), -1, 1e-12);
    EXPECT_NEAR(d[1].Y(), 6, 1e-12);
    EXPECT_NEAR(d[2].X(), 1, 1e-12);
}

TEST(OverlayCollection, AddersKeepOrderFieldsAndKeys)
{
    clsOverlayCollection c;
    c.AddBox(1, 2, 3, 4, 5, 0x10, "box");
    c.AddCross(6, 7, 8, 0x20, "");
    c.AddLine(1, 1, 2, 2, 0x30, "");
    c.AddArrowLine(3, 3, 4, 4, 0x40, 12, "arrow");
    c.AddLinePair(5, 5, 6, 6, 7.5, 0x50, "pair");
    c.AddText(9, 10, "hello", 0x60, "");
    c.AddCircle(11, 12, 13, 0x70, "circle");
    ASSERT_EQ(c.Count(), 7);

    const auto& box = std::get<clsBoxItem>(c.Item(1));
    EXPECT_EQ(box.Left, 1);
    EXPECT_EQ(box.Top, 2);
    EXPECT_EQ(box.Width, 3);
    EXPECT_EQ(box.Height, 4);
    EXPECT_EQ(box.Angle, 5);
    EXPECT_EQ(box.Color, 0x10);
    EXPECT_EQ(std::get<clsCrossItem>(c.Item(2)).Angle, 8);
    const auto& plain = std::get<clsLineItem>(c.Item(3));
    EXPECT_EQ(plain.Arrowed, 0);
    EXPECT_FALSE(plain.IsPair);
    const auto& arrow = std::get<clsLineItem>(c.Item("arrow"));
    EXPECT_EQ(arrow.Arrowed, 12);
    EXPECT_FALSE(arrow.IsPair);
    EXPECT_EQ(arrow.X2, 4);
    const auto& pair = std::get<clsLineItem>(c.Item("pair"));
    EXPECT_TRUE(pair.IsPair);
    EXPECT_EQ(pair.PairWidth, 7.5);
    EXPECT_EQ(pair.Arrowed, 0);
    EXPECT_EQ(pair.Color, 0x50);
    EXPECT_EQ(std::get<clsTextItem>(c.Item(6)).Text, "hello");
    EXPECT_EQ(std::get<clsCircleItem>(c.Item("circle")).Radius, 13);
    EXPECT_EQ(c.KeyAt(1), "box");
    EXPECT_EQ(c.KeyAt(2), "");

    // A present key refuses the new item; unkeyed items never clash.
    EXPECT_THROW(c.AddCircle(0, 0, 1, 0, "box"), Failure);
    c.AddCircle(0, 0, 1, 0, "");
    EXPECT_EQ(c.Count(), 8);
    EXPECT_THROW(c.Item(0), Failure);
    EXPECT_THROW(c.Item(9), Failure);
    EXPECT_THROW(c.Item("nothing"), Failure);
    EXPECT_THROW(c.Item(""), Failure);
}

TEST(OverlayCollection, RemovalByPositionKeyAndClear)
{
    clsOverlayCollection c;
    for (int i = 0; i < 5; ++i)
        c.AddCross(i, 0, 0, 0, i % 2 ? QString("k%1").arg(i) : QString());
    c.Remove(1); // the first item (positions count from 1)
    EXPECT_EQ(std::get<clsCrossItem>(c.Item(1)).X, 1);
    c.RemoveKey("k3");
    c.RemoveKey("missing");
    c.RemoveKey("");
    ASSERT_EQ(c.Count(), 3);
    std::vector<double> xs;
    for (const auto& e : c)
        xs.push_back(std::get<clsCrossItem>(e.item).X);
    EXPECT_EQ(xs, (std::vector<double>{1, 2, 4}));
    EXPECT_THROW(c.Remove(4), Failure);
    // A removed key can be used again; the item goes to the end.
    c.RemoveKey("k1");
    c.AddCross(9, 9, 0, 0, "k1");
    EXPECT_EQ(c.KeyAt(c.Count()), "k1");
    c.Clear();
    EXPECT_EQ(c.Count(), 0);
    EXPECT_FALSE(c.Contains("k1"));
}

TEST(Crosshair, WithAndWithoutAnImage)
{
    struct Case
    {
        QSize image;
        double cx, cy, right, bottom;
    };
    const Case cases[] = {
        {QSize(), 319.5, 239.5, 639.5, 479.5},
        {QSize(1000, 800), 500, 400, 1000, 800},
        {QSize(2592, 1944), 1296, 972, 2592, 1944},
        {QSize(7, 5), 3.5, 2.5, 7, 5},
    };
    clsOverlayCollection c;
    c.AddText(0, 0, "left over", 0);
    for (const auto& k : cases) {
        DefineCrosshairOverlays(c, k.image);
        ASSERT_EQ(c.Count(), 5);
        const auto& circle = std::get<clsCircleItem>(c.Item(1));
        EXPECT_EQ(circle.X, k.cx);
        EXPECT_EQ(circle.Y, k.cy);
        EXPECT_EQ(circle.Radius, 5);
        const double lines[4][4] = {{0, k.cy, k.cx - 2.5, k.cy},
                                    {k.cx + 2.5, k.cy, k.right, k.cy},
                                    {k.cx, 0, k.cx, k.cy - 2.5},
                                    {k.cx, k.cy + 2.5, k.cx, k.bottom}};
        for (int i = 0; i < 4; ++i) {
            const auto& l = std::get<clsLineItem>(c.Item(i + 2));
            EXPECT_EQ(l.X1, lines[i][0]);
            EXPECT_EQ(l.Y1, lines[i][1]);
            EXPECT_EQ(l.X2, lines[i][2]);
            EXPECT_EQ(l.Y2, lines[i][3]);
            EXPECT_EQ(l.Color, 0xFF0000);
            EXPECT_EQ(l.Arrowed, 0);
            EXPECT_FALSE(l.IsPair);
        }
        EXPECT_EQ(circle.Color, 0xFF0000);
        for (int i = 1; i <= 5; ++i)
            EXPECT_EQ(c.KeyAt(i), "");
    }
}

} // namespace
