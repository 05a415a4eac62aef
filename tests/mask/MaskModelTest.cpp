// The undo list: points of strokes, collections, operation codes.

#include "mask/MaskModel.h"
#include "mask/MaskTypes.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace nxr;

namespace {

using Points = std::vector<std::pair<double, double>>;

Points pointsOf(const clsMaskPixelBlocks& s)
{
    Points out;
    for (int i = 1; i <= s.Count(); ++i)
        out.emplace_back(s.Item(i)->X, s.Item(i)->Y);
    return out;
}

TEST(MaskStroke, PointsAreFlooredAndConsecutiveRepeatsDroppedIndexesOutOfRangeIgnored)
{
    const std::pair<Points, Points> cases[] = {
        // added, stored
        {{{10.9, 5.2}, {10.1, 5.8}}, {{10, 5}}},
        {{{-0.5, 0}}, {{-1, 0}}},
        {{{0, -1.0}, {0.99, -0.01}}, {{0, -1}}},              // -0.01 floors to -1: the same pixel
        {{{1, 1}, {2, 1}, {1, 1}}, {{1, 1}, {2, 1}, {1, 1}}}, // only consecutive repeats go
        {{{3.5, 3.5}, {3.2, 4.0}, {3.9, 3.1}}, {{3, 3}, {3, 4}, {3, 3}}}};
    for (const auto& [added, stored] : cases) {
        clsMaskPixelBlocks stroke;
        for (const auto& [x, y] : added)
            stroke.AddPoint(x, y);
        EXPECT_EQ(pointsOf(stroke), stored);
    }

    clsMaskPixelBlocks stroke;
    stroke.Remove(1);
    stroke.AddPoint(1, 1);
    stroke.AddPoint(2, 2);
    for (int index : {0, -1, 3}) {
        EXPECT_EQ(stroke.Item(index), nullptr) << index;
        stroke.Remove(index);
    }
    stroke.Remove(1);
    EXPECT_EQ(pointsOf(stroke), (Points{{2, 2}}));
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
    for (int i = 1; i <= 7; ++i)
        EXPECT_EQ(ops.Item(i)->OperationType, i - 1) << i;
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

    // Shapes are numbered the other way round from the tools.
    const std::pair<int, int> toolsAndCodes[] = {{KSEMaskTool_Freehand, 0},
                                                 {KSEMaskTool_JoinedLine, 1},
                                                 {KSEMaskTool_Rectangle, 2},
                                                 {KSEMaskTool_Ellipse, 3},
                                                 {KSEMaskTool_Fill, 4}};
    for (const auto& [tool, code] : toolsAndCodes) {
        EXPECT_EQ(operationCodeForTool(tool), code) << tool;
        EXPECT_EQ(toolForOperationCode(code), tool) << code;
    }
    EXPECT_EQ(operationCodeForTool(KSEMaskTool_None), -1);
    EXPECT_EQ(toolForOperationCode(MaskOp_MaskAll), -1);
}

} // namespace
