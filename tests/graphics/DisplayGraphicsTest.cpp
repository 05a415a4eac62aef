// Result graphics and movable shapes through the real display, at scale 1 and, as
// graphics_display_hidpi_test, 1.5: where items land at several zooms and scrolls (positions
// computed here from zoom and scroll alone), the tool bar's crosshair, graphics kept through new
// images and live mode, the raster overlay from the controller simulator; the pointer over a
// movable window with the grab distance in screen pixels at any zoom, for mouse and finger, the
// view buttons and keys the shapes drive, and the end of the display during an edit.

#include "ControllerSimulator.h"
#include "graphics/OverlayGraphics.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageFile.h"
#include "loading/FakeFiles.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using nxr::testing::waitFor;

constexpr qint32 kRed = 0x0000FF; // 0x00BBGGRR
constexpr QRgb kRedRgb = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);
constexpr QRgb kBackground = 0xFF282828;

QImage flat(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(kBackground);
    return img;
}

class DisplayTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        nxr::testing::usePrivateTempFolder();
        display = std::make_unique<NXRImageDisplay>();
        display->resize(900, 700);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
    }
    void TearDown() override { display.reset(); }

    nxr::RasterView* lead() { return display->leadView(); }
    double ratio() { return lead()->deviceRatio(); }
    QImage shot()
    {
        QApplication::processEvents();
        return lead()->grab().toImage();
    }
    void view(float zoom, QPoint scroll)
    {
        display->setZoom(zoom);
        display->viewport().setScrollPosition(scroll);
    }
    // Device position of an image point, from zoom and scroll only (the image is larger than the
    // view in every case here, so its top left corner sits at minus the scroll position).
    QPointF expected(double x, double y)
    {
        const double scale = display->Zoom() / 100.0;
        const QPoint scroll = display->viewport().maths().scrollPosition();
        return {x * scale - scroll.x(), y * scale - scroll.y()};
    }
    // Whether a pixel of `colour` lies within `reach` device pixels of a device point.
    static bool near(const QImage& image, QPointF at, QRgb colour, int reach = 2)
    {
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                const QPoint p(int(std::floor(at.x())) + dx, int(std::floor(at.y())) + dy);
                if (image.valid(p) && image.pixel(p) == colour)
                    return true;
            }
        return false;
    }
    QAbstractButton* toolButton(const char* name)
    {
        return display->viewButtons()->findChild<QAbstractButton*>(QLatin1String(name));
    }
    // The widget point of an image point (rounded to the nearest logical pixel).
    QPoint at(double x, double y)
    {
        const QPointF device = display->viewport().maths().toScreen(QPointF(x, y));
        return QPoint(int(std::lround(device.x() / ratio())), int(std::lround(device.y() / ratio())));
    }
    void mouse(QEvent::Type type, QPoint p, Qt::MouseButtons held = Qt::NoButton,
               const QPointingDevice* device = QPointingDevice::primaryPointingDevice())
    {
        const Qt::MouseButton b = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent e(type, p, lead()->mapToGlobal(p), b, held, Qt::NoModifier, device);
        QApplication::sendEvent(lead(), &e);
    }
    void drag(QPoint from, QPoint to,
              const QPointingDevice* device = QPointingDevice::primaryPointingDevice())
    {
        mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, device);
        mouse(QEvent::MouseMove, (from + to) / 2, Qt::LeftButton, device);
        mouse(QEvent::MouseMove, to, Qt::LeftButton, device);
        mouse(QEvent::MouseButtonRelease, to, Qt::NoButton, device);
    }
    Qt::CursorShape pointerAt(QPoint p)
    {
        mouse(QEvent::MouseMove, p);
        return lead()->cursor().shape();
    }
    // A large image, and exits of the movable window's edit recorded.
    void forShapes()
    {
        display->showImage(flat(2000, 1600));
        windowExits =
            std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnExitMovableWindowEditMode);
    }

    std::unique_ptr<NXRImageDisplay> display;
    std::unique_ptr<QSignalSpy> windowExits;
};

// ---- result graphics ----

TEST_F(DisplayTest, ItemsLandOnTheirImagePointsAtEveryZoomAndScroll)
{
    display->showImage(flat(3000, 2400));
    display->DrawBox(1000, 800, 150, 100, 0, kRed, "box");
    display->DrawCircle(1250, 850, 30, kRed);
    for (const float zoom : {50.0f, 100.0f, 200.0f, 137.0f}) {
        SCOPED_TRACE(testing::Message() << "zoom " << zoom);
        // The items' corner near the view's top left corner.
        view(zoom, QPoint(int(970 * zoom / 100), int(770 * zoom / 100)));
        const QImage image = shot();
        // Scrolled as far as asked, or as far as the image allows.
        ASSERT_TRUE(QRectF(image.rect()).contains(expected(1280, 1015)));
        // The box's four edges at their midpoints, and nothing inside.
        for (const QPointF p :
             {QPointF(1075, 800), QPointF(1075, 900), QPointF(1000, 850), QPointF(1150, 850)})
            EXPECT_TRUE(near(image, expected(p.x(), p.y()), kRedRgb)) << p.x() << "," << p.y();
        EXPECT_EQ(image.pixel(expected(1075, 850).toPoint()), kBackground);
        // The circle's rightmost and lowest points.
        EXPECT_TRUE(near(image, expected(1280, 850), kRedRgb));
        EXPECT_TRUE(near(image, expected(1250, 880), kRedRgb));
    }
}

TEST_F(DisplayTest, CrosshairButtonMarksTheImageCentreOrA640By480Default)
{
    QAbstractButton* button = toolButton("chk_Crosshair");
    ASSERT_NE(button, nullptr);
    // Without an image: the default centre (319.5, 239.5), drawn at the display's view.
    button->click();
    EXPECT_TRUE(near(shot(), display->viewport().maths().toScreen(QPointF(319.5, 100)), kBlue));
    button->click();
    EXPECT_FALSE(near(shot(), display->viewport().maths().toScreen(QPointF(319.5, 100)), kBlue));

    // With an image: its centre; a new image of another size moves it there.
    display->showImage(flat(3000, 2400));
    view(50, {100, 100});
    button->click();
    EXPECT_TRUE(near(shot(), expected(1500, 400), kBlue));
    EXPECT_TRUE(near(shot(), expected(700, 1200), kBlue));
    display->showImage(flat(2800, 2000), false);
    view(50, {100, 100});
    const QImage image = shot();
    EXPECT_TRUE(near(image, expected(1400, 400), kBlue));
    EXPECT_FALSE(near(image, expected(1500, 400), kBlue, 1));
}

TEST_F(DisplayTest, GraphicsStayThroughNewImagesAndLiveMode)
{
    nxr::testing::FakeFiles files(nxr::testing::usePrivateTempFolder() + "/controller");
    display->loading().setFiles(&files);
    files.put("MC:\\CAMERA\\A.PNG", nxr::ImageFile::encode(flat(2000, 1600), nxr::ImageFileFormat::Png));
    display->LoadImage("ctrl", "MC:\\CAMERA\\A.PNG", "u", "p");
    view(100, {500, 500});
    display->DrawBox(700, 700, 100, 100, 0, kRed);
    ASSERT_TRUE(waitFor([&] { return near(shot(), expected(750, 700), kRedRgb); }));

    // Live mode: every snap loads a new picture; the box stays on each.
    int frames = 0;
    QObject::connect(display.get(), &NXRImageDisplay::OnButtonClicked, [&](const QString& name) {
        if (name != "Snap")
            return;
        ++frames;
        QImage next = flat(2000, 1600);
        next.setPixel(frames, 0, qRgb(frames, 0, 0));
        files.put("MC:\\CAMERA\\A.PNG", nxr::ImageFile::encode(next, nxr::ImageFileFormat::Png));
        display->LoadImage("ctrl", "MC:\\CAMERA\\A.PNG", "u", "p");
    });
    toolButton("cmd_Live")->click();
    int seen = 0;
    ASSERT_TRUE(waitFor(
        [&] {
            if (frames > seen && near(shot(), expected(750, 700), kRedRgb))
                seen = frames;
            return seen >= 4;
        },
        10000))
        << frames;
    display->AbortLiveMode();
    ASSERT_TRUE(waitFor([&] { return display->GetProperty("LiveMode") == "False"; }));
    EXPECT_TRUE(near(shot(), expected(750, 700), kRedRgb));
    display->loading().setFiles(nullptr);
}

TEST_F(DisplayTest, LoadOverlayFromTheSimulatorLaysItOverAndReportsACopyFailure)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    display->SetProperty("FTPPortNo", QString::number(sim.ftpPort()));
    display->SetProperty("HTTPPortNo", QString::number(sim.httpPort()));
    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    const QByteArray camera = nxr::ImageFile::encode(flat(640, 480), nxr::ImageFileFormat::Png);
    ASSERT_TRUE(sim.writeFile("MC:\\OVL\\CAM.PNG", camera));
    // The overlay: a red square on transparent, at half the image's size (scaled up when laid over).
    QImage overlay(320, 240, QImage::Format_ARGB32);
    overlay.fill(Qt::transparent);
    QPainter(&overlay).fillRect(QRect(100, 100, 20, 20), Qt::red);
    ASSERT_TRUE(
        sim.writeFile("MC:\\OVL\\RESULT", nxr::ImageFile::encode(overlay, nxr::ImageFileFormat::Png)));

    display->LoadCombinedImageAndOverlay(sim.host(), "MC:\\OVL\\CAM.PNG", "MC:\\OVL\\RESULT", sim.user(),
                                         sim.password());
    ASSERT_EQ(errors.count(), 0) << display->LastErrorString().toStdString();
    EXPECT_TRUE(display->ShowOverlay());
    EXPECT_EQ(lead()->bitmap().pixel(210, 210), kRedRgb);
    EXPECT_EQ(lead()->bitmap().pixel(190, 190), kBackground);
    EXPECT_TRUE(QFileInfo::exists(nxr::OverlayGraphics::localOverlayPath("MC:\\OVL\\RESULT")));
    // A new camera image gets the overlay again.
    display->LoadImage(sim.host(), "MC:\\OVL\\CAM.PNG", sim.user(), sim.password());
    EXPECT_EQ(lead()->bitmap().pixel(210, 210), kRedRgb);

    // A missing file: the fixed message, one OnError, the shown overlay unchanged.
    display->LoadOverlay(sim.host(), "MC:\\OVL\\MISSING.PNG", sim.user(), sim.password());
    EXPECT_EQ(display->LastErrorString(), QString::fromLatin1(nxr::OverlayGraphics::kCopyFailed));
    EXPECT_EQ(errors.count(), 1);
    EXPECT_EQ(lead()->bitmap().pixel(210, 210), kRedRgb);
}

// ---- movable shapes ----

TEST_F(DisplayTest, PointerShowsWhatAPressWouldGrabFiveScreenPixelsOutAtEveryZoom)
{
    forShapes();
    for (const float zoom : {50.0f, 100.0f, 200.0f, 137.0f}) {
        SCOPED_TRACE(testing::Message() << "zoom " << zoom);
        view(zoom, {0, 0});
        // A rotatable window at angle 0: right edge at x = 300, its middle at y = 250.
        display->SetMovableWindow(200, 100, 100, 200, 0, true);
        display->EditMovableWindow();
        const double screen = 1.0 / (zoom / 100.0) * ratio(); // image pixels per screen pixel
        EXPECT_EQ(pointerAt(at(200, 250)), Qt::SizeAllCursor);
        // The turning handle: the control's own picture.
        EXPECT_EQ(pointerAt(at(300, 250)), Qt::BitmapCursor);
        EXPECT_FALSE(lead()->cursor().pixmap().isNull());
        // The left edge, 3 screen pixels outside: a sizing arrow; 8 outside: nothing.
        EXPECT_EQ(pointerAt(at(100 - 3 * screen, 225)), Qt::SizeHorCursor);
        EXPECT_EQ(pointerAt(at(100 - 8 * screen, 225)), Qt::ArrowCursor);
        // A drag from 3 screen pixels outside the left edge takes the edge.
        drag(at(100 - 3 * screen, 225), at(60, 225));
        EXPECT_NEAR(display->MovableWindowLeft(), 60, 1.0 * screen);
        EXPECT_NEAR(display->MovableWindowLeft() + display->MovableWindowWidth(), 300, 1e-9);
        display->SetProperty("RefreshDisplay", "True");
        QTest::keyClick(display.get(), Qt::Key_Escape);
    }
    EXPECT_EQ(windowExits->count(), 4);
}

TEST_F(DisplayTest, ViewButtonsWindowResetAndKeysFollowTheShapes)
{
    forShapes();
    QAbstractButton* reset = toolButton("cmd_WindowReset");
    ASSERT_NE(reset, nullptr);
    display->setMoveWindowEnabled(true);
    EXPECT_TRUE(reset->isEnabled());
    display->setMoveWindowEnabled(false);
    EXPECT_FALSE(reset->isEnabled());

    // Pan mode before the edit: pointer during it, pan again after it.
    display->viewButtons()->SetProperty("ActiveMouseCursor", "2");
    display->mouse().setMouseMode(2);
    view(100, {0, 0});
    display->SetMovableWindow(200, 100, 100, 200, 0, false);
    display->EditMovableWindow();
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "1");
    EXPECT_EQ(display->GetProperty("EditingWindow"), "True");
    drag(at(200, 250), at(260, 290));
    EXPECT_NEAR(display->MovableWindowLeft(), 160, 1.0);
    // The reset button: back to where the edit began, still editing.
    reset->setEnabled(true);
    reset->click();
    EXPECT_EQ(display->MovableWindowLeft(), 100);
    EXPECT_EQ(display->MovableWindowTop(), 200);
    EXPECT_EQ(display->GetProperty("EditingWindow"), "True");
    QTest::keyClick(display.get(), Qt::Key_Return);
    EXPECT_EQ(display->GetProperty("EditingWindow"), "False");
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "2");
    EXPECT_EQ(display->mouseMode(), 2);
    ASSERT_EQ(windowExits->count(), 1);
    EXPECT_EQ(windowExits->at(0).at(0).toInt(), -1); // True (-1) when accepted

    // The pair's limits through the display's keys.
    display->SetProperty("MinPairWidth", "5");
    display->SetMovableLinePair(100, 100, 300, 100, 0.5);
    EXPECT_EQ(display->MovableLinePairWidth(), 5.0);
    display->SetProperty("MaxPairWidth", "20");
    display->SetMovableLinePair(100, 100, 300, 100, 50);
    EXPECT_EQ(display->MovableLinePairWidth(), 20.0);
    EXPECT_EQ(display->LastErrorString(), "");
}

TEST_F(DisplayTest, EndingTheDisplayDuringAnEditCancelsItOnce)
{
    forShapes();
    QSignalSpy clicks(display.get(), &NXRImageDisplay::OnButtonClicked);
    QSignalSpy cursorExits(display.get(), &NXRImageDisplay::OnExitMovableCursorEditMode);
    view(100, {0, 0});
    display->SetMovableCursor(300, 300);
    display->EditMovableCursor();
    drag(at(300, 300), at(340, 320));
    EXPECT_NEAR(display->MovableCursorX(), 340, 1.0);
    // A second edit while one is open is refused.
    display->EditMovableWindow();
    EXPECT_TRUE(display->LastErrorString().startsWith("Error in EditMovableWindow:"));
    display.reset();
    ASSERT_EQ(cursorExits.count(), 1);
    EXPECT_EQ(cursorExits.at(0).at(0).toInt(), 0);
    EXPECT_EQ(windowExits->count(), 0);
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toString(), "Cancel");
}

TEST_F(DisplayTest, AFingerGrabsAnEdgeFartherOutThanTheMouse)
{
    forShapes();
    view(100, {0, 0});
    display->SetMovableWindow(200, 300, 200, 300, 0, false);
    display->EditMovableWindow();
    // Eight screen pixels left of the left edge: past the mouse's five, inside a finger's width.
    const QPoint outside = at(300, 300) - QPoint(8, 0), target = outside - QPoint(40, 0);
    drag(outside, target);
    EXPECT_EQ(display->MovableWindowLeft(), 300.0) << "the mouse grabbed from 8 pixels out";
    // The same drag from a touch screen, as Qt hands an unhandled touch on as mouse events.
    static QPointingDevice* finger = QTest::createTouchDevice();
    drag(outside, target, finger);
    EXPECT_LT(display->MovableWindowLeft(), 290.0) << "the finger did not grab the left edge";
    EXPECT_NEAR(display->MovableWindowLeft() + display->MovableWindowWidth(), 600.0, 1.0);
}

} // namespace
