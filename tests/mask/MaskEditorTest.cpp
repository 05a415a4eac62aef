// The editor core: pens, shapes and commands on mask pixels, undo by replay, redo, the changed
// rectangles, and the view over the camera image.

#include "mask/MaskEditor.h"
#include "PixelChecks.h"
#include "mask/MaskCompositor.h"
#include "mask/MaskPainter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

using namespace nxr;
using nxr::testing::covers;

namespace {

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kBlue = qRgb(0, 0, 255);
const QRgb kBlack = qRgb(0, 0, 0);
constexpr int L = MaskEditor::LeftButton;
constexpr int R = MaskEditor::RightButton;

QImage blankMask(int w = 200, int h = 150, QRgb color = kBlack)
{
    QImage m(w, h, QImage::Format_RGB32);
    m.fill(color);
    return m;
}

// Pixels of `color` in row y.
int runIn(const QImage& img, int y, QRgb color)
{
    int n = 0;
    for (int x = 0; x < img.width(); ++x)
        n += img.pixel(x, y) == color;
    return n;
}

struct Editor
{
    explicit Editor(int mode = KSEEditMask_DontCare, const QImage& mask = blankMask())
    {
        e.begin(mask, mode);
        e.setToolSize(KSEMaskToolSize_Medium);
    }
    QRect click(QPointF at, int button = L, int shift = 0)
    {
        return e.press(at, button, shift).united(e.release(at, button, shift));
    }
    QRect drag(QPointF from, QPointF to, int button = L, int shift = 0)
    {
        QRect r = e.press(from, button, shift);
        for (int i = 1; i <= 10; ++i)
            r = r.united(e.move(from + (to - from) * (i / 10.0)));
        return r.united(e.release(to, button, shift));
    }
    MaskEditor e;
};

} // namespace

TEST(MaskPen, ColourByModeAndButtonWidthBySizeDoubledByShiftAlone)
{
    const struct
    {
        int mode, button;
        QImage start;
        QRgb painted;
    } colours[] = {{KSEEditMask_DontCare, L, blankMask(), kRed},
                   {KSEEditMask_ExtraCare, L, blankMask(), kBlue},
                   {KSEEditMask_DontCare, R, blankMask(200, 150, kRed), kBlack},
                   {KSEEditMask_ExtraCare, R, blankMask(200, 150, kBlue), kBlack}};
    for (const auto& c : colours) {
        Editor ed(c.mode, c.start);
        ed.e.setTool(KSEMaskTool_Freehand);
        ed.drag({20, 50}, {120, 50}, c.button);
        EXPECT_EQ(ed.e.working().pixel(70, 50), c.painted) << c.mode << "/" << c.button;
        EXPECT_EQ(ed.e.working().pixel(70, 80), c.start.pixel(70, 80));
        ASSERT_EQ(ed.e.model().Operations().Count(), 1);
        EXPECT_EQ(ed.e.model().Operations().Item(1)->EraseMode, c.button == R);
    }
    const int widths[][3] = {// size, shift, width
                             {KSEMaskToolSize_Small, 0, 1},   {KSEMaskToolSize_Medium, 0, 10},
                             {KSEMaskToolSize_Large, 0, 26},  {KSEMaskToolSize_Large, 1, 52},
                             {KSEMaskToolSize_Large, 3, 26},  {KSEMaskToolSize_Large, 5, 26},
                             {KSEMaskToolSize_Medium, 1, 20}, {KSEMaskToolSize_None, 0, 0}};
    for (const auto& [size, shift, width] : widths) {
        Editor ed;
        ed.e.setTool(KSEMaskTool_Freehand);
        ed.e.setToolSize(size);
        ed.click({100, 75}, L, shift);
        EXPECT_EQ(ed.e.penWidth(), width) << size << "/" << shift;
        // A dot as wide as the pen (a single pixel below two).
        EXPECT_NEAR(runIn(ed.e.working(), 75, kRed), std::max(1, width), 1) << size << "/" << shift;
        EXPECT_EQ(ed.e.model().Operations().Item(1)->PixelBlocks->BlockWidth, width);
    }
}

TEST(MaskPen, StrokesJoinDistantPointsWithRoundEnds)
{
    Editor ed;
    ed.e.setTool(KSEMaskTool_Freehand);
    ed.e.press({20, 20}, L, 0);
    ed.e.move({150, 20}); // far apart: joined by a line
    ed.e.move({150, 120});
    ed.e.release({150, 120}, L, 0);
    const QImage& m = ed.e.working();
    for (QPoint p : {QPoint(20, 20), QPoint(85, 20), QPoint(150, 70), QPoint(150, 120), QPoint(85, 24)})
        EXPECT_EQ(m.pixel(p), kRed) << p.x() << "," << p.y();
    // Round end: a pen of 10 reaches 4 to 5 pixels beyond the end point, not the square corner.
    EXPECT_EQ(m.pixel(16, 20), kRed);
    EXPECT_EQ(m.pixel(14, 20), kBlack);
    EXPECT_EQ(m.pixel(16, 16), kBlack);
    EXPECT_EQ(m.pixel(85, 30), kBlack);
    EXPECT_EQ(ed.e.model().Operations().Item(1)->PixelBlocks->Count(), 3);
}

TEST(MaskShapes, RectangleEllipseJoinedLineAndFillOnMaskPixels)
{
    {
        Editor ed;
        ed.e.setTool(KSEMaskTool_Rectangle);
        ed.drag({120, 100}, {40, 30}); // dragged up and left
        const QImage& m = ed.e.working();
        EXPECT_EQ(m.pixel(40, 30), kRed);
        EXPECT_EQ(m.pixel(120, 100), kRed);
        EXPECT_EQ(m.pixel(39, 30), kBlack);
        EXPECT_EQ(m.pixel(121, 100), kBlack);
        EXPECT_EQ(runIn(m, 60, kRed), 81);
        EXPECT_EQ(ed.e.model().Operations().Item(1)->OperationType, MaskOp_Rectangle);
    }
    {
        Editor ed;
        ed.e.setTool(KSEMaskTool_Ellipse);
        ed.e.press({100, 75}, L, 0);
        ed.e.move({140, 95});
        ASSERT_TRUE(ed.e.rubberBand());
        EXPECT_EQ(ed.e.rubberBand()->outline, QRectF(60, 55, 80, 40));
        EXPECT_EQ(ed.e.working().pixel(100, 75), kBlack); // nothing painted while dragging
        ed.e.release({140, 95}, L, 0);
        EXPECT_FALSE(ed.e.rubberBand());
        const QImage& m = ed.e.working();
        EXPECT_EQ(m.pixel(100, 75), kRed);
        EXPECT_EQ(m.pixel(62, 75), kRed);
        EXPECT_EQ(m.pixel(100, 57), kRed);
        EXPECT_EQ(m.pixel(63, 58), kBlack); // corner of the box lies outside the ellipse
        EXPECT_NEAR(runIn(m, 75, kRed), 80, 2);
        const auto op = ed.e.model().Operations().Item(1);
        EXPECT_EQ(op->OperationType, MaskOp_Ellipse);
        EXPECT_EQ(op->X2, 40);
        EXPECT_EQ(op->Y2, 20);
    }
    {
        Editor ed;
        ed.e.setTool(KSEMaskTool_JoinedLine);
        ed.e.setToolSize(KSEMaskToolSize_Small);
        ed.click({10, 10});
        ed.click({100, 10});
        ed.click({100, 90}, R); // another button: ignored
        ed.e.press({100, 100}, L, 0);
        ed.e.release({100, 100}, L, 0);
        ed.e.doubleClick({100, 100}, L);
        ed.e.release({100, 100}, L, 0); // the release after the double click
        const QImage& m = ed.e.working();
        EXPECT_EQ(runIn(m, 10, kRed), 91);
        EXPECT_EQ(m.pixel(100, 50), kRed);
        EXPECT_EQ(m.pixel(100, 90 + 15), kBlack);
        ASSERT_EQ(ed.e.model().Operations().Count(), 1);
        EXPECT_EQ(ed.e.model().Operations().Item(1)->JoinedLine->Points().Count(), 3);
    }
    {
        Editor ed;
        ed.e.setTool(KSEMaskTool_Rectangle);
        ed.drag({50, 0}, {52, 149}); // a wall from top to bottom
        ed.e.setTool(KSEMaskTool_Fill);
        ed.click({10, 10});
        const QImage& m = ed.e.working();
        EXPECT_EQ(runIn(m, 70, kRed), 53);
        EXPECT_EQ(m.pixel(53, 70), kBlack);
        ed.click({10, 10}, R); // erases the filled area and the wall that touches it
        EXPECT_EQ(runIn(ed.e.working(), 70, kRed), 0);
        EXPECT_TRUE(ed.e.model().Operations().Item(3)->EraseMode);
    }
}

TEST(MaskCommands, PositionsFarOutsideAreClippedHelpIsNoOperationNoModePaintsBlack)
{
    Editor ed;
    ed.e.undo(); // empty: nothing
    ed.e.setTool(KSEMaskTool_Rectangle);
    EXPECT_EQ(ed.drag({-1e12, -1e12}, {1e12, 1e12}), ed.e.working().rect());
    EXPECT_EQ(runIn(ed.e.working(), 149, kRed), 200);
    ed.e.setTool(KSEMaskTool_Fill);
    EXPECT_TRUE(ed.click({std::nan(""), 1e300}, R).isEmpty());
    const int operations = ed.e.model().Operations().Count();
    EXPECT_TRUE(ed.e.command(KSEMaskCommand_Help).isEmpty());
    EXPECT_EQ(ed.e.model().Operations().Count(), operations);

    Editor none(KSEEditMask_None, blankMask(200, 150, kRed));
    QStringList messages;
    none.e.onPenColorError = [&](const QString& m) { messages << m; };
    none.e.setTool(KSEMaskTool_Rectangle);
    none.drag({10, 10}, {20, 20});
    EXPECT_EQ(none.e.working().pixel(15, 15), kBlack);
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_EQ(messages.first(), "mflng_GetMaskPenColor error: No edit mask mode!");
}

// Random editing with undos and redos: the working mask always equals the mask painted directly
// with the operations that remain, and every step's rectangle covers what it changed.
TEST(MaskUndo, ReplayEqualsDirectPaintingOnRandomSequences)
{
    using Action = std::function<QRect(Editor&)>;
    std::mt19937 rng(99);
    auto uni = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(rng); };
    // The start mask already has some of both colours.
    QImage plain = blankMask(160, 120);
    for (int y = 40; y < 80; ++y)
        for (int x = 0; x < 160; x += 3)
            plain.setPixel(x, y, kRed);

    // ... and one with more colours than the editor packs its original into.
    QImage colourful = plain.copy();
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 160; ++x)
            colourful.setPixel(x, y, qRgb(x, y, 7));

    for (int round = 0; round < 12; ++round) {
        const int mode = round % 2 ? KSEEditMask_ExtraCare : KSEEditMask_DontCare;
        const QImage& start = round % 3 == 2 ? colourful : plain;
        Editor live(mode, start);
        std::vector<Action> kept, undone;
        for (int step = 0; step < 40; ++step) {
            const QImage before = live.e.working().copy();
            QRect changed;
            const int choice = uni(0, 11);
            if (choice <= 1 && live.e.canUndo()) {
                changed = live.e.command(KSEMaskCommand_Undo);
                undone.push_back(kept.back());
                kept.pop_back();
            } else if (choice == 2 && !undone.empty()) {
                ASSERT_TRUE(live.e.canRedo());
                changed = live.e.redo();
                kept.push_back(undone.back());
                undone.pop_back();
            } else {
                const int tool = uni(-2, 4), size = uni(-1, 2), button = uni(0, 3) == 0 ? R : L;
                const int shift = uni(0, 3) == 0 ? 1 : 0;
                const QPointF a(uni(-10, 170), uni(-10, 130)), b(uni(-10, 170), uni(-10, 130)),
                    c(uni(0, 159), uni(0, 119));
                Action act = [=](Editor& ed) {
                    ed.e.setToolSize(size);
                    if (tool == -2)
                        return ed.e.command(button == R ? KSEMaskCommand_MaskNone : KSEMaskCommand_MaskAll);
                    ed.e.setTool(tool == -1 ? KSEMaskTool_Freehand : tool);
                    if (tool == KSEMaskTool_JoinedLine) {
                        QRect r = ed.click(a, button, shift);
                        r = r.united(ed.click(b, button, shift));
                        r = r.united(ed.click(c, button, shift));
                        return r.united(ed.e.doubleClick(c, button));
                    }
                    if (tool == KSEMaskTool_Fill)
                        return ed.click(c, button, shift);
                    return ed.drag(a, b, button, shift);
                };
                changed = act(live);
                kept.push_back(act);
                undone.clear();
            }
            ASSERT_TRUE(covers(before, live.e.working(), changed)) << "round " << round << " step " << step;
            ASSERT_EQ(live.e.model().Operations().Count(), int(kept.size()));
            ASSERT_EQ(live.e.canRedo(), !undone.empty()); // a new operation ends redo

            Editor direct(mode, start);
            for (const Action& act : kept)
                act(direct);
            ASSERT_EQ(live.e.working(), direct.e.working()) << "round " << round << " step " << step;
        }
        EXPECT_EQ(live.e.original(), start);
    }
}

TEST(MaskView, BlendsColouredMaskPixelsAndRecomposesOnlyTheRectangle)
{
    QImage camera(8, 4, QImage::Format_Grayscale8);
    camera.fill(100);
    QImage mask = blankMask(8, 4);
    mask.setPixel(1, 1, kRed);
    mask.setPixel(2, 1, kBlue);
    QImage emphasis = blankMask(8, 4);
    emphasis.setPixel(2, 1, kBlue);
    QImage view;
    MaskCompositor::compose(camera, {mask}, QRect(), &view); // a new view is composed whole
    ASSERT_EQ(view.size(), camera.size());
    EXPECT_EQ(view.pixel(0, 0), qRgb(100, 100, 100));
    EXPECT_EQ(view.pixel(1, 1), qRgb(177, 50, 50));
    EXPECT_EQ(view.pixel(2, 1), qRgb(50, 50, 177));

    view.fill(qRgb(1, 2, 3));
    MaskCompositor::compose(camera, {mask, emphasis}, QRect(1, 1, 2, 1), &view);
    EXPECT_EQ(view.pixel(1, 1), qRgb(177, 50, 50));
    EXPECT_EQ(view.pixel(2, 1), qRgb(25, 25, 215)); // the second mask over the first
    EXPECT_EQ(view.pixel(0, 1), qRgb(1, 2, 3));     // outside the rectangle: untouched
    EXPECT_EQ(view.pixel(3, 1), qRgb(1, 2, 3));
}
