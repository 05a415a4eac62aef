// Mask editing in the real display, driven by synthesized mouse and keys on the mask view, with
// the display's own file transfer against the controller simulator: what the operator paints at
// several zooms is what the controller receives on accept (PNG and JPEG masks), cancel keeps the
// mask, the keys undo and redo, the mouse paints instead of zooming or panning, and a stroke
// repaints only what it touched. Runs at scale 1 and, as imagedisplay_mask_hidpi_test, at 1.5.

#include "ControllerSimulator.h"

#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/EditSession.h"
#include "imagedisplay/edit/PaintLayer.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageList.h"
#include "imagedisplay/parts/MaskInteraction.h"
#include "imagedisplay/parts/MaskPart.h"
#include "mask/NXRMaskToolButtons.h"

#include <QAbstractButton>
#include <QApplication>
#include <QBuffer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using nxr::test::ControllerSimulator;

QByteArray encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// Masked (red) and not masked (black), loosely enough for a JPEG mask.
bool isRed(QRgb p)
{
    return qRed(p) > 160 && qGreen(p) < 90 && qBlue(p) < 90;
}
bool isBlack(QRgb p)
{
    return qRed(p) < 80 && qGreen(p) < 80 && qBlue(p) < 80;
}

// Notes the areas of the mask view that were repainted.
class DirtyLog : public nxr::PaintLayer
{
public:
    void paint(QPainter&, const nxr::ViewMaths&, const QRect& dirty) override { rects.push_back(dirty); }
    std::vector<QRect> rects;
};

class MaskDisplay : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        sim = new ControllerSimulator;
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
    }
    static void TearDownTestSuite()
    {
        delete sim;
        sim = nullptr;
    }

    void SetUp() override
    {
        display = std::make_unique<NXRImageDisplay>();
        display->resize(900, 700);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        display->SetProperty("FTPPortNo", QString::number(sim->ftpPort()));
        display->SetProperty("HTTPPortNo", QString::number(sim->httpPort()));
        QImage camera(640, 480, QImage::Format_Grayscale8);
        camera.fill(100);
        display->showImage(camera);
        exits = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnExitMaskEditMode);
        pageClicks = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnButtonClicked);
        errors = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnError);
    }
    void TearDown() override { display.reset(); }

    nxr::MaskPart& part() { return display->part<nxr::MaskPart>(); }
    nxr::RasterView* view() { return display->maskLeadView(); }
    const nxr::ViewMaths& maths() { return display->viewport().maths(); }
    double ratio() { return view()->deviceRatio(); }

    // A black mask on the controller, loaded and opened for editing as a don't-care mask.
    void startEdit(const QString& path, const char* format = "PNG")
    {
        QImage black(640, 480, QImage::Format_RGB32);
        black.fill(qRgb(0, 0, 0));
        ASSERT_TRUE(sim->writeFile(path, encoded(black, format)));
        display->LoadMask(sim->host(), path, sim->user(), sim->password(), 0);
        ASSERT_EQ(errors->count(), 0) << display->GetProperty("LastErrorString").toStdString();
        display->EditDontCareMask();
        ASSERT_EQ(display->GetProperty("EditingMask"), "True");
        ASSERT_TRUE(view()->isVisible());
        QApplication::processEvents();
    }
    void zoomTo(float zoom)
    {
        display->viewport().focusedZoom(zoom, 320, 240);
        QApplication::processEvents();
    }
    void tool(int tool, int size = KSEMaskToolSize_Large)
    {
        part().palette()->toolButton(tool)->click();
        part().palette()->sizeButton(size)->click();
    }

    // The widget point over an image point (the pixel's centre).
    QPoint at(QPointF image) { return (maths().toScreen(image + QPointF(0.5, 0.5)) / ratio()).toPoint(); }
    void mouse(QEvent::Type type, QPointF image, Qt::MouseButton b = Qt::LeftButton,
               Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        const QPoint p = at(image);
        const bool moving = type == QEvent::MouseMove;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(b);
        QMouseEvent e(type, p, view()->mapToGlobal(p), moving ? Qt::NoButton : b, held, mods);
        QApplication::sendEvent(view(), &e);
    }
    void drag(std::initializer_list<QPointF> points, Qt::MouseButton b = Qt::LeftButton,
              Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        const QPointF* p = points.begin();
        mouse(QEvent::MouseButtonPress, *p, b, mods);
        for (++p; p != points.end(); ++p)
            mouse(QEvent::MouseMove, *p, b, mods);
        mouse(QEvent::MouseButtonRelease, *(points.end() - 1), b, mods);
    }
    void key(int key, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        QTest::keyClick(view(), Qt::Key(key), mods);
    }
    QPushButton* okButton() { return display->findChild<QPushButton*>("cmd_OK"); }
    QImage onController(const QString& path) { return QImage::fromData(sim->readFile(path)); }
    QImage working() { return part().session().editor().working(); }

    static ControllerSimulator* sim;
    std::unique_ptr<NXRImageDisplay> display;
    std::unique_ptr<QSignalSpy> exits, pageClicks, errors;
};

ControllerSimulator* MaskDisplay::sim = nullptr;

// Pen, shapes, erasing and fill at three zooms and in both mask formats: the controller's file
// holds exactly what was painted.
TEST_F(MaskDisplay, WhatIsPaintedAtAnyZoomIsWhatTheControllerReceives)
{
    struct Case
    {
        float zoom;
        const char* path;
        const char* format;
    };
    for (const Case& c :
         {Case{50, "MC:\\VISION\\DC50.PNG", "PNG"}, Case{100, "MC:\\VISION\\DC100.JPG", "JPG"},
          Case{200, "MC:\\VISION\\DC200.PNG", "PNG"}}) {
        SCOPED_TRACE(c.path);
        startEdit(c.path, c.format);
        zoomTo(c.zoom);
        ASSERT_FLOAT_EQ(display->Zoom(), c.zoom);
        // A Large freehand stroke (26 pixels wide).
        tool(KSEMaskTool_Freehand);
        drag({{220, 170}, {250, 170}, {280, 172}});
        // A rectangle, and a Medium right-button stroke erasing a notch inside it.
        tool(KSEMaskTool_Rectangle);
        drag({{340, 200}, {370, 220}, {400, 250}});
        tool(KSEMaskTool_Freehand, KSEMaskToolSize_Medium);
        drag({{360, 225}, {372, 225}}, Qt::RightButton);
        // An ellipse around (260, 290) with radii 40 and 20.
        tool(KSEMaskTool_Ellipse);
        drag({{260, 290}, {280, 300}, {300, 310}});
        // Fill the open black background; the enclosed notch stays black.
        tool(KSEMaskTool_Fill);
        drag({{600, 20}});
        // The fill painted everything connected to the corner, so check the notch and shapes
        // on the working mask before accepting, then the file.
        EXPECT_TRUE(isRed(working().pixel(600, 20)));
        EXPECT_TRUE(isBlack(working().pixel(366, 225)));
        // The view shows the red mask blended half and half with the grey 100 camera image, and
        // the grey image in the notch.
        QApplication::processEvents();
        const QImage shot = view()->grab().toImage();
        const QRgb masked = shot.pixel(maths().toScreen(QPointF(320.5, 150.5)).toPoint());
        const QRgb notch = shot.pixel(maths().toScreen(QPointF(366.5, 225.5)).toPoint());
        EXPECT_NEAR(qRed(masked), 177, 3);
        EXPECT_NEAR(qGreen(masked), 50, 3);
        EXPECT_NEAR(qBlue(masked), 50, 3);
        EXPECT_NEAR(qRed(notch), 100, 3);
        EXPECT_NEAR(qBlue(notch), 100, 3);

        QSignalSpy accepted(display.get(), &NXRImageDisplay::OnExitMaskEditMode);
        okButton()->click();
        ASSERT_EQ(accepted.count(), 1);
        EXPECT_EQ(accepted.at(0).at(0).toInt(), -1);
        EXPECT_EQ(display->GetProperty("EditingMask"), "False");
        EXPECT_FALSE(part().palette()->isVisible());

        const QImage saved = onController(c.path);
        ASSERT_EQ(saved.size(), QSize(640, 480));
        EXPECT_EQ(QString(c.format) == "JPG", sim->readFile(c.path).startsWith("\xFF\xD8"));
        for (QPoint p :
             {QPoint(220, 170), QPoint(250, 182), QPoint(350, 210), QPoint(395, 245), QPoint(260, 290),
              QPoint(296, 290), QPoint(260, 307), QPoint(600, 20), QPoint(10, 470)})
            EXPECT_TRUE(isRed(saved.pixel(p))) << p.x() << "," << p.y();
        // Only the erased notch inside the rectangle stays unmasked.
        for (QPoint p : {QPoint(360, 225), QPoint(372, 225), QPoint(366, 223)})
            EXPECT_TRUE(isBlack(saved.pixel(p))) << p.x() << "," << p.y();
        // The image list holds the accepted mask.
        EXPECT_TRUE(isBlack(
            display->loading().loader().images().image(nxr::ImageList::kDontCareMask).pixel(366, 225)));
    }
    EXPECT_EQ(errors->count(), 0) << display->GetProperty("LastErrorString").toStdString();
}

TEST_F(MaskDisplay, StrokeWidthsFollowTheSizeAndShiftAloneDoublesIt)
{
    startEdit("MC:\\VISION\\WIDTH.PNG");
    zoomTo(100);
    struct Case
    {
        int size;
        Qt::KeyboardModifiers mods;
        int y;
        int width;
    };
    // Widths per size are the mask editor's; here the palette's size and the keys reach it.
    for (const Case& c : {Case{KSEMaskToolSize_Medium, Qt::NoModifier, 100, 10},
                          Case{KSEMaskToolSize_Large, Qt::ShiftModifier, 240, 52},
                          Case{KSEMaskToolSize_Large, Qt::ShiftModifier | Qt::ControlModifier, 330, 26}}) {
        tool(KSEMaskTool_Freehand, c.size);
        drag({{200, double(c.y)}, {300, double(c.y)}}, Qt::LeftButton, c.mods);
        int painted = 0;
        for (int y = c.y - 40; y <= c.y + 40; ++y)
            painted += isRed(working().pixel(250, y)) ? 1 : 0;
        EXPECT_NEAR(painted, c.width, 1) << "size " << c.size << " mods " << int(c.mods);
    }
}

// A joined line: a point per click, ended by a double click, recorded as one operation.
TEST_F(MaskDisplay, AJoinedLineTakesAPointPerClickAndEndsWithADoubleClick)
{
    startEdit("MC:\\VISION\\JOINED.PNG");
    zoomTo(100);
    tool(KSEMaskTool_JoinedLine, KSEMaskToolSize_Medium);
    for (QPointF p : {QPointF(100, 100), QPointF(300, 100), QPointF(300, 300)}) {
        mouse(QEvent::MouseButtonPress, p);
        mouse(QEvent::MouseButtonRelease, p);
    }
    EXPECT_EQ(part().session().editor().model().Operations().Count(), 0); // still open
    mouse(QEvent::MouseButtonDblClick, {300, 300});
    mouse(QEvent::MouseButtonRelease, {300, 300});
    EXPECT_EQ(part().session().editor().model().Operations().Count(), 1);
    for (QPoint p : {QPoint(200, 100), QPoint(300, 200), QPoint(104, 103)})
        EXPECT_TRUE(isRed(working().pixel(p))) << p.x() << "," << p.y();
    for (QPoint p : {QPoint(200, 200), QPoint(200, 115), QPoint(90, 100)})
        EXPECT_TRUE(isBlack(working().pixel(p))) << p.x() << "," << p.y();
    // The next click starts a new line instead of extending the finished one.
    mouse(QEvent::MouseButtonPress, {500, 400});
    mouse(QEvent::MouseButtonRelease, {500, 400});
    QTest::qWait(400); // past the double-click time
    EXPECT_TRUE(isBlack(working().pixel(400, 350)));
}

TEST_F(MaskDisplay, CancelAndEscapeKeepTheMaskAndExitOnce)
{
    const QString path = "MC:\\VISION\\KEEP.PNG";
    startEdit(path);
    const QByteArray before = sim->readFile(path);
    tool(KSEMaskTool_Freehand);
    drag({{100, 100}, {200, 100}});
    ASSERT_TRUE(isRed(working().pixel(150, 100)));
    key(Qt::Key_Escape);
    ASSERT_EQ(exits->count(), 1);
    EXPECT_EQ(exits->at(0).at(0).toInt(), 0);
    EXPECT_EQ(sim->readFile(path), before);
    EXPECT_TRUE(
        isBlack(display->loading().loader().images().image(nxr::ImageList::kDontCareMask).pixel(150, 100)));
    EXPECT_FALSE(part().palette()->isVisible());
    EXPECT_FALSE(view()->isVisible());
    QTest::qWait(50);
    EXPECT_TRUE(pageClicks->count() >= 1 && pageClicks->last().at(0).toString() == "Cancel");

    // Again with the Cancel button, and the display ending during an edit.
    display->EditDontCareMask();
    drag({{100, 100}, {200, 100}});
    display->findChild<QPushButton*>("cmd_Cancel")->click();
    EXPECT_EQ(exits->count(), 2);
    EXPECT_EQ(exits->at(1).at(0).toInt(), 0);
    display->EditDontCareMask();
    QSignalSpy exitsAtEnd(display.get(), &NXRImageDisplay::OnExitMaskEditMode);
    display.reset();
    ASSERT_EQ(exitsAtEnd.count(), 1);
    EXPECT_EQ(exitsAtEnd.at(0).at(0).toInt(), 0);
    EXPECT_EQ(sim->readFile(path), before);
}

TEST_F(MaskDisplay, KeysUndoAndRedoAndEnterAccepts)
{
    const QString path = "MC:\\VISION\\UNDO.PNG";
    startEdit(path);
    tool(KSEMaskTool_Rectangle);
    drag({{100, 100}, {150, 150}});
    drag({{300, 300}, {350, 350}});
    EXPECT_EQ(part().palette()->commandButton(KSEMaskCommand_Undo)->isEnabled(), true);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(isRed(working().pixel(120, 120)));
    EXPECT_TRUE(isBlack(working().pixel(320, 320)));
    key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_TRUE(isRed(working().pixel(320, 320)));
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(isBlack(working().pixel(120, 120)));
    EXPECT_FALSE(part().palette()->commandButton(KSEMaskCommand_Undo)->isEnabled());
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(isRed(working().pixel(120, 120)));
    EXPECT_TRUE(isBlack(working().pixel(320, 320)));
    // The palette's undo button does the same as Ctrl+Z.
    part().palette()->commandButton(KSEMaskCommand_Undo)->click();
    EXPECT_TRUE(isBlack(working().pixel(120, 120)));
    key(Qt::Key_Y, Qt::ControlModifier);
    key(Qt::Key_Return);
    ASSERT_EQ(exits->count(), 1);
    EXPECT_EQ(exits->at(0).at(0).toInt(), -1);
    const QImage saved = onController(path);
    EXPECT_TRUE(isRed(saved.pixel(120, 120)));
    EXPECT_TRUE(isBlack(saved.pixel(320, 320)));
}

TEST_F(MaskDisplay, TheMousePaintsInsteadOfZoomingOrPanning)
{
    startEdit("MC:\\VISION\\MODES.PNG");
    zoomTo(200);
    tool(KSEMaskTool_Freehand, KSEMaskToolSize_Medium);
    const QPoint scroll = maths().scrollPosition();
    for (int mode :
         {nxr::MouseDispatcher::ZoomIn, nxr::MouseDispatcher::ZoomOut, nxr::MouseDispatcher::Pan}) {
        display->mouse().setMouseMode(mode);
        const double y = 180 + 20 * mode;
        drag({{250, y}, {300, y}});
        EXPECT_EQ(display->Zoom(), 200.0f) << mode;
        EXPECT_EQ(maths().scrollPosition(), scroll) << mode;
        EXPECT_TRUE(isRed(working().pixel(275, int(y)))) << mode;
    }
    // The rubber band of a dragged rectangle paints nothing until the release.
    tool(KSEMaskTool_Rectangle);
    mouse(QEvent::MouseButtonPress, {330, 260});
    mouse(QEvent::MouseMove, {380, 300});
    ASSERT_TRUE(part().session().editor().rubberBand().has_value());
    EXPECT_TRUE(isBlack(working().pixel(350, 280)));
    // The outline is drawn over the view: dark and light dashes on the left edge, which the grey
    // picture under a black mask does not have.
    QApplication::processEvents();
    const QImage shot = view()->grab().toImage();
    const QPointF edge = maths().toScreen(QPointF(330, 280));
    int marked = 0;
    for (int dy = -6; dy <= 6; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
            const QRgb p = shot.pixel(int(edge.x()) + dx, int(edge.y()) + dy);
            marked += std::abs(qGray(p) - 100) > 40 ? 1 : 0;
        }
    EXPECT_GE(marked, 4);
    const QRgb inside = shot.pixel(maths().toScreen(QPointF(355, 280)).toPoint());
    EXPECT_LE(std::abs(qGray(inside) - 100), 2);
    mouse(QEvent::MouseButtonRelease, {380, 300});
    EXPECT_FALSE(part().session().editor().rubberBand().has_value());
    EXPECT_TRUE(isRed(working().pixel(350, 280)));
    // After the edit the mouse zooms again.
    display->findChild<QPushButton*>("cmd_Cancel")->click();
    display->mouse().setMouseMode(nxr::MouseDispatcher::ZoomIn);
    QTest::mouseClick(display->leadView(), Qt::LeftButton, {}, QPoint(100, 100));
    EXPECT_EQ(display->Zoom(), 400.0f);
}

TEST_F(MaskDisplay, AStrokeRepaintsOnlyWhatItTouchedAndThePenOutlineHasItsTrueSize)
{
    startEdit("MC:\\VISION\\DIRTY.PNG");
    display->viewport().fitImage();
    QApplication::processEvents();
    DirtyLog log;
    view()->addLayer(&log, 2000);
    QTest::qWait(30);
    tool(KSEMaskTool_Freehand, KSEMaskToolSize_Large);
    mouse(QEvent::MouseButtonPress, {300, 200});
    QTest::qWait(30);
    log.rects.clear();
    mouse(QEvent::MouseMove, {310, 205});
    QTest::qWait(30);
    ASSERT_FALSE(log.rects.empty());
    const QRect whole(QPoint(0, 0), view()->deviceSize());
    for (const QRect& r : log.rects) {
        // The stroke's pixels with the pen's reach, and the pen outline: far below the view.
        EXPECT_LT(r.width() * r.height(), whole.width() * whole.height() / 8)
            << r.width() << "x" << r.height();
        EXPECT_TRUE(r.intersects(maths().toScreen(QRectF(300, 190, 20, 20)).toAlignedRect()));
    }
    mouse(QEvent::MouseButtonRelease, {310, 205});
    view()->removeLayer(&log);

    // The outline around the pointer: the pen's width in image pixels, doubled by Shift alone,
    // none for the shape tools.
    QPointF sent;
    auto hover = [&](QPointF p, Qt::KeyboardModifiers mods) {
        const QPoint w = at(p);
        sent = maths().toImage(QPointF(w) * ratio());
        QMouseEvent e(QEvent::MouseMove, w, view()->mapToGlobal(w), Qt::NoButton, Qt::NoButton, mods);
        QApplication::sendEvent(view(), &e);
        return part().pointer().penOutline();
    };
    auto outline = hover({100, 100}, Qt::NoModifier);
    ASSERT_TRUE(outline.has_value());
    EXPECT_EQ(outline->size(), QSizeF(26, 26));
    EXPECT_EQ(outline->center(), QPointF(std::floor(sent.x()) + 0.5, std::floor(sent.y()) + 0.5));
    outline = hover({100, 100}, Qt::ShiftModifier);
    ASSERT_TRUE(outline.has_value());
    EXPECT_EQ(outline->size(), QSizeF(52, 52));
    tool(KSEMaskTool_Ellipse);
    EXPECT_FALSE(hover({100, 100}, Qt::NoModifier).has_value());
    EXPECT_EQ(view()->cursor().shape(), Qt::CrossCursor);
}

// The failures' texts are the mask session's; here each forwarding call reports through the display.
TEST_F(MaskDisplay, ErrorsAreReportedWithTheirTexts)
{
    sim->writeFile("MC:\\VISION\\NOTANIMAGE.PNG", "this is text");
    const std::pair<std::function<void()>, QString> cases[] = {
        {[&] { display->EditDontCareMask(); }, "Error in EditDontCareMask: no mask image loaded."},
        {[&] { display->EditEmphasisMask(); }, "Error in EditEmphasisMask: no mask image loaded."},
        {[&] {
             display->LoadMask(sim->host(), "MC:\\VISION\\NOTANIMAGE.PNG", sim->user(), sim->password(), 2);
         },
         "Error in LoadMask: file MC:\\VISION\\NOTANIMAGE.PNG does not contain mask image"},
    };
    for (const auto& [call, text] : cases) {
        const int before = errors->count();
        call();
        EXPECT_EQ(errors->count(), before + 1) << text.toStdString();
        EXPECT_EQ(display->GetProperty("LastErrorString"), text);
        EXPECT_EQ(display->GetProperty("EditingMask"), "False");
    }
    // A missing file fails in the transfer, its local name kept; type 3 changes nothing.
    display->LoadMask(sim->host(), "MC:\\VISION\\MISSING.PNG", sim->user(), sim->password(), 0);
    EXPECT_TRUE(display->GetProperty("LastErrorString").startsWith("Error in LoadMask: "));
    const int before = errors->count();
    display->LoadMask(sim->host(), "MC:\\VISION\\OTHER.PNG", sim->user(), sim->password(), 3);
    EXPECT_EQ(errors->count(), before);
    EXPECT_EQ(display->MaskImageFilename(3), "");
    EXPECT_TRUE(display->MaskImageFilename(0).endsWith("/MC/VISION/dontcare_mask.PNG"));
}

TEST_F(MaskDisplay, ShowMaskTintsTheImageOutsideAnEdit)
{
    const QString path = "MC:\\VISION\\SHOWN.PNG";
    startEdit(path);
    zoomTo(100);
    tool(KSEMaskTool_Rectangle);
    drag({{100, 100}, {200, 200}});
    okButton()->click();
    ASSERT_EQ(exits->count(), 1);
    QImage emphasis(640, 480, QImage::Format_RGB32);
    emphasis.fill(qRgb(0, 0, 0));
    for (int y = 150; y < 250; ++y)
        for (int x = 150; x < 250; ++x)
            emphasis.setPixel(x, y, qRgb(0, 0, 255));
    sim->writeFile("MC:\\VISION\\EMPH.PNG", encoded(emphasis, "PNG"));
    display->LoadMask(sim->host(), "MC:\\VISION\\EMPH.PNG", sim->user(), sim->password(), 2);
    struct Case
    {
        int which;
        QRgb red, blue, both, none;
    };
    // Grey 100 under half-and-half tints; both: the emphasis over the don't-care tint.
    for (const Case& c :
         {Case{0, qRgb(100, 100, 100), qRgb(100, 100, 100), qRgb(100, 100, 100), qRgb(100, 100, 100)},
          Case{1, qRgb(177, 50, 50), qRgb(100, 100, 100), qRgb(177, 50, 50), qRgb(100, 100, 100)},
          Case{2, qRgb(100, 100, 100), qRgb(50, 50, 177), qRgb(50, 50, 177), qRgb(100, 100, 100)},
          Case{3, qRgb(177, 50, 50), qRgb(50, 50, 177), qRgb(89, 25, 153), qRgb(100, 100, 100)}}) {
        display->setShowMask(c.which);
        QTest::qWait(30);
        const QImage shot = display->leadView()->grab().toImage();
        auto px = [&](int x, int y) {
            return shot.pixel(maths().toScreen(QPointF(x + 0.5, y + 0.5)).toPoint()); // device pixels
        };
        auto near = [](QRgb a, QRgb b) {
            return std::abs(qRed(a) - qRed(b)) <= 3 && std::abs(qGreen(a) - qGreen(b)) <= 3 &&
                   std::abs(qBlue(a) - qBlue(b)) <= 3;
        };
        EXPECT_TRUE(near(px(120, 120), c.red)) << c.which << " " << std::hex << px(120, 120);
        EXPECT_TRUE(near(px(230, 230), c.blue)) << c.which << " " << std::hex << px(230, 230);
        EXPECT_TRUE(near(px(170, 170), c.both)) << c.which << " " << std::hex << px(170, 170);
        EXPECT_TRUE(near(px(400, 400), c.none)) << c.which << " " << std::hex << px(400, 400);
    }
}

} // namespace
