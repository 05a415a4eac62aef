// The undo list: points of strokes, collections, operation codes.

#include "mask/MaskModel.h"
#include "mask/MaskTypes.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace nxr;

namespace {

std::vector<std::pair<double, double>> pointsOf(const clsMaskPixelBlocks& s)
{
    std::vector<std::pair<double, double>> out;
    for (int i = 1; i <= s.Count(); ++i)
        out.emplace_back(s.Item(i)->X, s.Item(i)->Y);
    return out;
}

} // namespace

TEST(MaskStroke, PointsAreFlooredAndConsecutiveRepeatsDropped)
{
    using Points = std::vector<std::pair<double, double>>;
    const struct
    {
        Points added;
        Points stored;
    } cases[] = {
        {{{10.9, 5.2}, {10.1, 5.8}}, {{10, 5}}},
        {{{-0.5, 0}}, {{-1, 0}}},
        {{{0, -1.0}, {0.99, -0.01}}, {{0, -1}}},              // -0.01 floors to -1: the same pixel
        {{{1, 1}, {2, 1}, {1, 1}}, {{1, 1}, {2, 1}, {1, 1}}}, // only consecutive repeats go
        {{{3.5, 3.5}, {3.2, 4.0}, {3.9, 3.1}}, {{3, 3}, {3, 4}, {3, 3}}},
    };
    for (const auto& c : cases) {
        clsMaskPixelBlocks stroke;
        for (const auto& [x, y] : c.added)
            stroke.AddPoint(x, y);
        EXPECT_EQ(pointsOf(stroke), c.stored);
    }
}

TEST(MaskCollections, OutOfRangeIndexesGiveNullOrAreIgnored)
{
    clsMaskPixelBlocks stroke;
    EXPECT_EQ(stroke.Item(1), nullptr);
    stroke.Remove(1);
    stroke.AddPoint(1, 1);
    stroke.AddPoint(2, 2);
    for (int index : {0, -1, 3})
        EXPECT_EQ(stroke.Item(index), nullptr) << index;
    stroke.Remove(0);
    stroke.Remove(3);
    EXPECT_EQ(stroke.Count(), 2);
    stroke.Remove(1);
    ASSERT_EQ(stroke.Count(), 1);
    EXPECT_EQ(stroke.Item(1)->X, 2);

    clsMaskOperations ops;
    ops.Add(nullptr);
    EXPECT_EQ(ops.Count(), 0);

    clsMaskJoinedLine line;
    line.AddPoint(1.5, 2.5);
    line.AddPoint(1.5, 2.5); // kept as given, repeats included
    EXPECT_EQ(line.Points().Count(), 2);
    EXPECT_EQ(line.Points().Item(1)->X, 1.5);
}

TEST(MaskRecording, CodesPayloadsAndUndo)
{
    clsMask mask;
    EXPECT_EQ(mask.EditMode, -1);
    mask.Undo(); // empty: nothing, no failure
    EXPECT_EQ(mask.Operations().Count(), 0);

    auto stroke = std::make_shared<clsMaskPixelBlocks>();
    stroke->AddPoint(1, 1);
    mask.RecordFreehand(stroke, true);
    mask.RecordFreehand(nullptr, false);
    mask.RecordJoinedLine(std::make_shared<clsMaskJoinedLine>(), false);
    mask.RecordJoinedLine(nullptr, false);
    mask.RecordRectangle(1, 2, 3, 4, false);
    mask.RecordEllipse(10, 20, -3, -4, true);
    mask.RecordFill(7, 8, true);
    mask.RecordMaskAll();
    mask.RecordMaskNone();

    const auto& ops = mask.Operations();
    ASSERT_EQ(ops.Count(), 7);
    const int codes[] = {0, 1, 2, 3, 4, 5, 6};
    for (int i = 1; i <= 7; ++i)
        EXPECT_EQ(ops.Item(i)->OperationType, codes[i - 1]) << i;
    EXPECT_EQ(ops.Item(1)->PixelBlocks, stroke);
    EXPECT_TRUE(ops.Item(1)->EraseMode);
    EXPECT_EQ(ops.Item(3)->X2, 3);
    EXPECT_EQ(ops.Item(4)->X2, 3); // radii are stored as absolute values
    EXPECT_EQ(ops.Item(4)->Y2, 4);
    EXPECT_EQ(ops.Item(5)->X1, 7);

    mask.Undo();
    EXPECT_EQ(ops.Count(), 6);
    EXPECT_EQ(ops.Item(6)->OperationType, MaskOp_MaskAll);
    mask.ClearOperations();
    EXPECT_EQ(ops.Count(), 0);
}

TEST(MaskRecording, ShapesAreNumberedTheOtherWayRoundFromTheTools)
{
    const struct
    {
        int tool;
        int code;
    } pairs[] = {
        {KSEMaskTool_Freehand, 0}, {KSEMaskTool_JoinedLine, 1}, {KSEMaskTool_Rectangle, 2},
        {KSEMaskTool_Ellipse, 3},  {KSEMaskTool_Fill, 4},
    };
    EXPECT_EQ(KSEMaskTool_Ellipse, 2);
    EXPECT_EQ(KSEMaskTool_Rectangle, 3);
    for (const auto& p : pairs) {
        EXPECT_EQ(operationCodeForTool(p.tool), p.code) << p.tool;
        EXPECT_EQ(toolForOperationCode(p.code), p.tool) << p.code;
    }
    EXPECT_EQ(operationCodeForTool(KSEMaskTool_None), -1);
    EXPECT_EQ(toolForOperationCode(MaskOp_MaskAll), -1);
}
