// The overlay collection (order, keys, removal), the pair-width guards and the crosshair.

#include "graphics/OverlayItems.h"
#include "frame/Conversions.h"
#include "graphics/Crosshair.h"

#include <QLineF>
#include <QPointF>

#include <gtest/gtest.h>

using namespace nxr;

namespace {

TEST(LineItem, PairWidthGuards)
{
    // Each run: (set min?, value, min after, max after) from a fresh line (min 1, max -1).
    struct Step
    {
        bool min;
        double value, minAfter, maxAfter;
    };
    const std::vector<std::vector<Step>> runs = {
        {{true, 0.5, 1, -1}, {true, 1000, 1000, -1}},
        {{false, 10, 1, 10}, {true, 5, 5, 10}, {true, 12, 5, 10}, {true, 10, 5, 10}},
        {{true, 5, 5, -1}, {false, 3, 5, -1}, {false, 5, 5, -1}, {false, 5.5, 5, 5.5}, {false, -1, 5, -1}},
        {{false, -2, 1, -1}, {false, 2, 1, 2}, {true, 0.2, 1, 2}}};
    for (const auto& run : runs) {
        clsLineItem line;
        for (const Step& s : run) {
            s.min ? line.SetMinPairWidth(s.value) : line.SetMaxPairWidth(s.value);
            EXPECT_EQ(line.MinPairWidth(), s.minAfter) << s.value;
            EXPECT_EQ(line.MaxPairWidth(), s.maxAfter) << s.value;
        }
    }
    clsLineItem pair;
    pair.X2 = 10;
    pair.PairWidth = 4;
    const auto c = pair.PairCorners();
    EXPECT_EQ(c[0], clsVector(0, 2));
    EXPECT_EQ(c[2], clsVector(10, -2));
}

TEST(OverlayCollection, KeysOrderAndRemoval)
{
    clsOverlayCollection c;
    c.AddLine(1, 1, 2, 2, 0x30, "");
    c.AddArrowLine(3, 3, 4, 4, 0x40, 12, "arrow");
    c.AddLinePair(5, 5, 6, 6, 7.5, 0x50, "pair");
    c.AddText(9, 10, "hello", 0x60, "");
    const auto& plain = std::get<clsLineItem>(c.Item(1));
    const auto& arrow = std::get<clsLineItem>(c.Item("arrow"));
    const auto& pair = std::get<clsLineItem>(c.Item("pair"));
    EXPECT_EQ(plain.Arrowed + plain.IsPair, 0);
    EXPECT_EQ(arrow.Arrowed, 12);
    EXPECT_FALSE(arrow.IsPair);
    EXPECT_TRUE(pair.IsPair);
    EXPECT_EQ(pair.PairWidth, 7.5);
    EXPECT_EQ(pair.Arrowed, 0);
    // A present key refuses the new item; unkeyed items never clash; positions count from 1.
    EXPECT_THROW(c.AddCircle(0, 0, 1, 0, "arrow"), Failure);
    c.AddCircle(0, 0, 1, 0, "");
    EXPECT_EQ(c.Count(), 5);
    for (int bad : {0, 6})
        EXPECT_THROW(c.Item(bad), Failure);
    EXPECT_THROW(c.Item(""), Failure);

    c.Remove(1);
    c.RemoveKey("pair");
    c.RemoveKey("missing");
    std::vector<QString> keys;
    for (const auto& e : c)
        keys.push_back(e.key);
    EXPECT_EQ(keys, (std::vector<QString>{"arrow", "", ""}));
    EXPECT_EQ(std::get<clsTextItem>(c.Item(2)).Text, "hello");
    c.Clear();
    EXPECT_EQ(c.Count(), 0);
    c.AddCross(1, 1, 0, 0, "arrow"); // a removed key is free again
    EXPECT_TRUE(c.Contains("arrow"));
}

TEST(Crosshair, WithAndWithoutAnImage)
{
    struct Case
    {
        QSize image;
        double cx, cy, right, bottom;
    };
    const Case cases[] = {{QSize(), 319.5, 239.5, 639.5, 479.5},
                          {QSize(1000, 800), 500, 400, 1000, 800},
                          {QSize(7, 5), 3.5, 2.5, 7, 5}};
    clsOverlayCollection c;
    c.AddText(0, 0, "left over", 0, "key");
    for (const auto& k : cases) {
        DefineCrosshairOverlays(c, k.image);
        ASSERT_EQ(c.Count(), 5);
        const auto& circle = std::get<clsCircleItem>(c.Item(1));
        EXPECT_EQ(QPointF(circle.X, circle.Y), QPointF(k.cx, k.cy));
        const double lines[4][4] = {{0, k.cy, k.cx - 2.5, k.cy},
                                    {k.cx + 2.5, k.cy, k.right, k.cy},
                                    {k.cx, 0, k.cx, k.cy - 2.5},
                                    {k.cx, k.cy + 2.5, k.cx, k.bottom}};
        for (int i = 0; i < 4; ++i) {
            const auto& l = std::get<clsLineItem>(c.Item(i + 2));
            EXPECT_EQ(QLineF(l.X1, l.Y1, l.X2, l.Y2),
                      QLineF(lines[i][0], lines[i][1], lines[i][2], lines[i][3]));
            EXPECT_EQ(c.KeyAt(i + 2), "");
        }
    }
}

} // namespace
