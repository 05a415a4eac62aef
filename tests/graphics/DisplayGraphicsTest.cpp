// Result graphics through the real display: where items land on screen at several zooms and
// scrolls (positions computed here from zoom and scroll alone), the tool bar's crosshair with
// and without an image, graphics kept through new images and live mode, and the raster overlay
// loaded from the controller simulator. Runs at scale 1 and, as graphics_display_hidpi_test, 1.5.

#include "ControllerSimulator.h"
#include "graphics/OverlayGraphics.h"
#include "imagedisplay/ImageViewport.h"
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
constexpr qint32 kGreen = 0x00FF00;
constexpr QRgb kBackground = 0xFF282828;

QImage flat(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(kBackground);
    return img;
}

QRgb rgbOf(qint32 color)
{
    return qRgb(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

class DisplayGraphics : public ::testing::Test
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

    std::unique_ptr<NXRImageDisplay> display;
};

// ---- positions ----

TEST_F(DisplayGraphics, ItemsLandOnTheirImagePointsAtEveryZoomAndScroll)
{
    display->showImage(flat(3000, 2400));
    display->DrawBox(1000, 800, 150, 100, 0, kRed, "box");
    display->DrawLine(1000, 960, 1150, 960, kGreen);
    display->DrawCircle(1250, 850, 30, kRed);
    display->DrawText("Found", 1000, 1000, kGreen);
    for (const float zoom : {50.0f, 100.0f, 200.0f, 137.0f}) {
        // The items' corner near the view's top left corner.
        const double scale = zoom / 100.0;
        const QPoint scroll(int(970 * scale), int(770 * scale));
        SCOPED_TRACE(testing::Message() << "zoom " << zoom);
        display->setZoom(zoom);
        display->viewport().setScrollPosition(scroll);
        const QImage image = shot();
        // Scrolled as far as asked, or as far as the image allows.
        ASSERT_TRUE(QRectF(image.rect()).contains(expected(1280, 1015)));
        // The box's four edges at their midpoints, and nothing inside.
        for (const QPointF p :
             {QPointF(1075, 800), QPointF(1075, 900), QPointF(1000, 850), QPointF(1150, 850)})
            EXPECT_TRUE(near(image, expected(p.x(), p.y()), rgbOf(kRed))) << p.x() << "," << p.y();
        EXPECT_EQ(image.pixel(expected(1075, 850).toPoint()), kBackground);
        EXPECT_TRUE(near(image, expected(1075, 960), rgbOf(kGreen)));
        EXPECT_FALSE(near(image, expected(1075, 960) + QPointF(0, 6 * ratio()), rgbOf(kGreen)));
        // The circle's rightmost and lowest points.
        EXPECT_TRUE(near(image, expected(1280, 850), rgbOf(kRed)));
        EXPECT_TRUE(near(image, expected(1250, 880), rgbOf(kRed)));
        // The text starts 3 screen pixels right of its point, its top there, in a 9-point font.
        const QPoint text = (expected(1000, 1000) + QPointF(3 * ratio(), 0)).toPoint();
        int green = 0;
        for (int y = 0; y < int(14 * ratio()); ++y)
            for (int x = 0; x < int(40 * ratio()); ++x)
                green += image.pixel(text + QPoint(x, y)) == rgbOf(kGreen);
        EXPECT_GT(green, 20);
        for (int x = -int(8 * ratio()); x < -int(2 * ratio()); ++x)
            EXPECT_NE(image.pixel(text + QPoint(x, int(5 * ratio()))), rgbOf(kGreen));
    }
    // A keyed item is replaced, RemoveGraphic takes it away, ClearGraphics empties the list.
    display->DrawBox(1000, 800, 150, 100, 0, kGreen, "box");
    EXPECT_TRUE(near(shot(), expected(1075, 800), rgbOf(kGreen)));
    display->RemoveGraphic("box");
    EXPECT_FALSE(near(shot(), expected(1075, 800), rgbOf(kGreen)));
    display->ClearGraphics();
    EXPECT_FALSE(near(shot(), expected(1075, 960), rgbOf(kGreen)));
}

// ---- crosshair ----

TEST_F(DisplayGraphics, CrosshairButtonMarksTheImageCentreOrA640By480Default)
{
    const QRgb blue = qRgb(0, 0, 255);
    QAbstractButton* button = toolButton("chk_Crosshair");
    ASSERT_NE(button, nullptr);
    // Without an image: the default centre (319.5, 239.5), drawn at the display's view.
    button->click();
    {
        const nxr::ViewMaths& maths = display->viewport().maths();
        const QImage image = shot();
        EXPECT_TRUE(near(image, maths.toScreen(QPointF(319.5, 100)), blue));
        EXPECT_TRUE(near(image, maths.toScreen(QPointF(100, 239.5)), blue));
    }
    button->click();
    EXPECT_FALSE(near(shot(), display->viewport().maths().toScreen(QPointF(319.5, 100)), blue));

    // With an image: its centre; a new image of another size moves it there.
    display->showImage(flat(3000, 2400));
    display->setZoom(50);
    display->viewport().setScrollPosition({100, 100});
    button->click();
    EXPECT_TRUE(near(shot(), expected(1500, 400), blue));
    EXPECT_TRUE(near(shot(), expected(700, 1200), blue));
    display->showImage(flat(2800, 2000), false);
    display->setZoom(50);
    display->viewport().setScrollPosition({100, 100});
    const QImage image = shot();
    EXPECT_TRUE(near(image, expected(1400, 400), blue));
    EXPECT_FALSE(near(image, expected(1500, 400), blue, 1));
    button->click();
    EXPECT_FALSE(near(shot(), expected(1400, 400), blue));
}

// ---- lifetime ----

TEST_F(DisplayGraphics, GraphicsStayThroughNewImagesAndLiveMode)
{
    nxr::testing::FakeFiles files(nxr::testing::usePrivateTempFolder() + "/controller");
    display->loading().setFiles(&files);
    files.put("MC:\\CAMERA\\A.PNG", nxr::ImageFile::encode(flat(2000, 1600), nxr::ImageFileFormat::Png));
    display->LoadImage("ctrl", "MC:\\CAMERA\\A.PNG", "u", "p");
    display->setZoom(100);
    display->viewport().setScrollPosition({500, 500});
    display->DrawBox(700, 700, 100, 100, 0, kRed);
    ASSERT_TRUE(waitFor([&] { return near(shot(), expected(750, 700), rgbOf(kRed)); }));

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
            if (frames > seen && near(shot(), expected(750, 700), rgbOf(kRed)))
                seen = frames;
            return seen >= 4;
        },
        10000))
        << frames;
    display->AbortLiveMode();
    ASSERT_TRUE(waitFor([&] { return display->GetProperty("LiveMode") == "False"; }));
    EXPECT_TRUE(near(shot(), expected(750, 700), rgbOf(kRed)));
    display->loading().setFiles(nullptr);
}

// ---- raster overlay from the controller ----

TEST_F(DisplayGraphics, LoadOverlayFromTheSimulatorLaysItOverAndReportsACopyFailure)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    display->SetProperty("FTPPortNo", QString::number(sim.ftpPort()));
    display->SetProperty("HTTPPortNo", QString::number(sim.httpPort()));
    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    ASSERT_TRUE(sim.writeFile("MC:\\OVL\\CAM.PNG",
                              nxr::ImageFile::encode(flat(640, 480), nxr::ImageFileFormat::Png)));
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
    EXPECT_EQ(display->leadView()->bitmap().pixel(210, 210), qRgb(255, 0, 0));
    EXPECT_EQ(display->leadView()->bitmap().pixel(190, 190), kBackground);
    EXPECT_TRUE(QFileInfo::exists(nxr::OverlayGraphics::localOverlayPath("MC:\\OVL\\RESULT")));

    // A new camera image gets the overlay again; ShowOverlay False brings the plain image back.
    ASSERT_TRUE(sim.writeFile("MC:\\OVL\\CAM.PNG",
                              nxr::ImageFile::encode(flat(640, 480), nxr::ImageFileFormat::Png)));
    display->LoadImage(sim.host(), "MC:\\OVL\\CAM.PNG", sim.user(), sim.password());
    EXPECT_EQ(display->leadView()->bitmap().pixel(210, 210), qRgb(255, 0, 0));
    display->setShowOverlay(false);
    EXPECT_EQ(display->leadView()->bitmap().pixel(210, 210), kBackground);
    display->setShowOverlay(true);
    EXPECT_EQ(display->leadView()->bitmap().pixel(210, 210), qRgb(255, 0, 0));

    // A missing file: the fixed message, one OnError, the shown overlay unchanged.
    display->LoadOverlay(sim.host(), "MC:\\OVL\\MISSING.PNG", sim.user(), sim.password());
    EXPECT_EQ(display->LastErrorString(), QString::fromLatin1(nxr::OverlayGraphics::kCopyFailed));
    EXPECT_EQ(errors.count(), 1);
    EXPECT_EQ(display->leadView()->bitmap().pixel(210, 210), qRgb(255, 0, 0));
}

} // namespace
