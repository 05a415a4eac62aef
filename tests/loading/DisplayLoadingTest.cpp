// The image display loading, saving and running live mode against the controller simulator.

#include "ControllerSimulator.h"
#include "FakeFiles.h"

#include "frame/Globals.h"
#include "frame/SyncCall.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageFile.h"
#include "transfer/NXRFileTransferObject.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <memory>

using namespace nxr;
using nxr::testing::pattern;
using nxr::testing::waitFor;

namespace {

class DisplayLoadingTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        nxr::testing::usePrivateTempFolder();
        sim = std::make_unique<nxr::test::ControllerSimulator>();
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
    }
    static void TearDownTestSuite() { sim.reset(); }

    void SetUp() override
    {
        display = std::make_unique<NXRImageDisplay>();
        display->resize(800, 700);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        display->SetProperty("FTPPortNo", QString::number(sim->ftpPort()));
        display->SetProperty("HTTPPortNo", QString::number(sim->httpPort()));
        QObject::connect(display.get(), &NXRImageDisplay::OnError, [this] { ++errors; });
    }
    void TearDown() override { display.reset(); }

    void put(const QString& path, const QImage& img, ImageFileFormat format = ImageFileFormat::Png)
    {
        ASSERT_TRUE(sim->writeFile(path, ImageFile::encode(img, format)));
    }
    void load(const QString& path) { display->LoadImage(sim->host(), path, sim->user(), sim->password()); }
    void save(const QString& path)
    {
        display->SaveCurrentImage(sim->host(), path, sim->user(), sim->password());
    }
    QImage shown() const { return display->leadView()->bitmap(); }
    QAbstractButton* toolButton(const char* name) const
    {
        return display->viewButtons()->findChild<QAbstractButton*>(QLatin1String(name));
    }
    // Clicks into the image view at a fraction of its size.
    void clickAt(double fraction, Qt::MouseButton button = Qt::LeftButton)
    {
        const QSize lead = display->leadView()->deviceSize();
        QTest::mouseClick(display->leadView(), button, {},
                          QPoint(int(lead.width() * fraction), int(lead.height() * fraction)));
    }

    static std::unique_ptr<nxr::test::ControllerSimulator> sim;
    std::unique_ptr<NXRImageDisplay> display;
    int errors = 0;
};

std::unique_ptr<nxr::test::ControllerSimulator> DisplayLoadingTest::sim;

TEST_F(DisplayLoadingTest, LoadsKeepingTheViewForEqualSizesRefittingOtherwiseAndReportsMissingFiles)
{
    put("MC:\\E2E\\A.PNG", pattern(640, 480, 1));
    put("MC:\\E2E\\B.PNG", pattern(640, 480, 2));
    put("MC:\\E2E\\C.JPG", pattern(1280, 1024, 3, true), ImageFileFormat::Jpeg);
    QSignalSpy zoom(display.get(), &NXRImageDisplay::OnZoomChanged);

    load("MC:\\E2E\\A.PNG");
    ASSERT_EQ(errors, 0) << display->LastErrorString().toStdString();
    EXPECT_EQ(shown(), pattern(640, 480, 1));
    EXPECT_EQ(zoom.count(), 1);
    EXPECT_EQ(display->GetProperty("OriginalFilename"), "A.PNG");
    EXPECT_EQ(display->CurrentImageFilename(), Globals::storageFolder() + "/MC/E2E/image.PNG");
    EXPECT_EQ(display->HostName(), sim->host());

    // The operator zooms in and scrolls; the next image of the same size keeps that view.
    display->viewport().focusedZoom(400, 100, 80);
    const float zoomBefore = display->Zoom();
    const QPoint scrollBefore = display->viewport().maths().scrollPosition();
    ASSERT_NE(scrollBefore, QPoint());
    zoom.clear();
    load("MC:\\E2E\\B.PNG");
    EXPECT_EQ(shown(), pattern(640, 480, 2));
    EXPECT_FLOAT_EQ(display->Zoom(), zoomBefore);
    EXPECT_EQ(display->viewport().maths().scrollPosition(), scrollBefore);
    EXPECT_EQ(zoom.count(), 0);

    load("MC:\\E2E\\C.JPG");
    EXPECT_EQ(shown().size(), QSize(1280, 1024));
    EXPECT_EQ(shown().format(), QImage::Format_Grayscale8);
    ASSERT_EQ(zoom.count(), 1);
    EXPECT_FLOAT_EQ(zoom[0][0].toFloat(), display->Zoom());
    EXPECT_LT(display->Zoom(), 100.0f);

    load(""); // an empty path clears
    EXPECT_TRUE(shown().isNull());
    EXPECT_EQ(display->CurrentImageFilename(), "");
    EXPECT_EQ(errors, 0);

    // A missing file: the transfer's reason, without the password.
    load("MC:\\E2E\\MISSING.PNG");
    EXPECT_EQ(errors, 1);
    EXPECT_TRUE(display->LastErrorString().startsWith("Error in mfbln_CopyFileFromController: "))
        << display->LastErrorString().toStdString();
    EXPECT_FALSE(display->LastErrorString().contains(sim->password() + "@"));
}

TEST_F(DisplayLoadingTest, LiveCycleFromTheLiveButtonUntilTheSnapButtonEndsIt)
{
    QSignalSpy toggled(display.get(), &NXRImageDisplay::OnLiveModeToggled);
    int frames = 0;
    QObject::connect(display.get(), &NXRImageDisplay::OnButtonClicked, [&](const QString& name) {
        if (name != "Snap")
            return;
        ++frames;
        const QString path = sim->snap(640, 480, true, "MC:\\E2E\\LIVE.JPG");
        load(path.isEmpty() ? "MC:\\E2E\\LIVE.JPG" : path);
    });
    // Live, Open and Save are off while live mode runs.
    const auto buttonsEnabled = [&] {
        return QList<bool>{toolButton("cmd_Live")->isEnabled(), toolButton("cmd_Open")->isEnabled(),
                           toolButton("cmd_Save")->isEnabled()};
    };
    toolButton("cmd_Live")->click();
    EXPECT_EQ(display->GetProperty("LiveMode"), "True");
    ASSERT_EQ(toggled.count(), 1);
    EXPECT_TRUE(toggled[0][0].toBool());
    EXPECT_EQ(buttonsEnabled(), QList<bool>({false, false, false}));

    ASSERT_TRUE(waitFor([&] { return frames >= 6; }, 20000)) << frames;
    EXPECT_EQ(errors, 0) << display->LastErrorString().toStdString();
    EXPECT_FALSE(shown().isNull());

    toolButton("cmd_Acquire")->click(); // snap while live: abort after the running load
    ASSERT_TRUE(waitFor([&] { return display->GetProperty("LiveMode") == "False"; }, 5000));
    const int framesAtEnd = frames;
    QTest::qWait(300);
    EXPECT_EQ(frames, framesAtEnd);
    ASSERT_EQ(toggled.count(), 2);
    EXPECT_FALSE(toggled[1][0].toBool());
    EXPECT_EQ(buttonsEnabled(), QList<bool>({true, true, true}));
}

// Zoom clicks during a transfer wait for the new image (here of another size, so refitted) and
// apply to it, instead of zooming the old one and being undone. The live-mode queue
// behind this is tested on its own in the loader tests.
TEST_F(DisplayLoadingTest, ZoomClicksDuringALoadWaitForTheNewImageAndApplyToIt)
{
    put("MC:\\E2E\\BIG.PNG", pattern(2592, 1944, 5));
    put("MC:\\E2E\\SMALL.PNG", pattern(640, 480, 7));
    load("MC:\\E2E\\BIG.PNG");
    display->mouse().setMouseMode(MouseDispatcher::ZoomIn);
    const float before = display->Zoom();
    int queuedDuringLoad = -1;
    float zoomDuringLoad = 0;
    QTimer::singleShot(0, display.get(), [&] {
        // Inside the transfer's wait: two zoom-in clicks and a zoom-out click.
        clickAt(1 / 2.0);
        clickAt(1 / 3.0);
        clickAt(1 / 4.0, Qt::RightButton);
        queuedDuringLoad = display->loading().live().queuedCount();
        zoomDuringLoad = display->Zoom();
    });
    load("MC:\\E2E\\SMALL.PNG");
    EXPECT_EQ(queuedDuringLoad, 3);
    EXPECT_EQ(zoomDuringLoad, before); // nothing applied to the old image
    EXPECT_EQ(display->loading().live().queuedCount(), 0);
    EXPECT_EQ(shown(), pattern(640, 480, 7));
    const float clicked = display->Zoom();
    display->LoadImage("", "", "", ""); // clear, then the same load without a click
    load("MC:\\E2E\\SMALL.PNG");
    const float fitted = display->Zoom();
    // x2, x2 and /2, on the new image (their order is checked in the loader tests).
    EXPECT_NEAR(clicked, ViewMaths::integerZoom(ViewMaths::integerZoom(fitted * 2.0, true) * 2.0, true) / 2.0,
                0.01);
    EXPECT_EQ(errors, 0);
}

TEST_F(DisplayLoadingTest, DisplayDestroyedWhileItsImageDecodesReturnsCleanly)
{
    put("MC:\\E2E\\DECODE\\NOISE.JPG", nxr::testing::noise(2592, 1944), ImageFileFormat::Jpeg);
    // Polls until the image has arrived and a worker decodes it while LoadImage waits.
    bool destroyedDuringDecode = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (display && NestedWait::depth() > 0 && QThreadPool::globalInstance()->activeThreadCount() > 0) {
            destroyedDuringDecode = true;
            display.reset();
        }
    });
    poll.start(1);
    NXRImageDisplay* raw = display.get();
    raw->LoadImage(sim->host(), "MC:\\E2E\\DECODE\\NOISE.JPG", sim->user(), sim->password());
    poll.stop();
    EXPECT_TRUE(destroyedDuringDecode);
    EXPECT_EQ(display, nullptr);
    EXPECT_EQ(errors, 0);
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(10000));
}

TEST_F(DisplayLoadingTest, SaveRoundTripPerFormatAndNoImageToSave)
{
    save("MC:\\E2E\\OUT.PNG");
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(display->LastErrorString(), "Error in msub_SaveImage: No image to save");

    for (bool grey : {true, false}) {
        const QImage img = pattern(200, 150, 7, grey);
        put("MC:\\E2E\\SRC.PNG", img);
        load("MC:\\E2E\\SRC.PNG");
        // Each format's round trip is the image file's; here the name picks it, JPEG without one.
        for (const char* name : {"MC:\\E2E\\OUT.PNG", "MC:\\E2E\\OUT.GIF", "MC:\\E2E\\OUT"}) {
            SCOPED_TRACE(std::string(name) + (grey ? " grey" : " colour"));
            save(name);
            ASSERT_EQ(errors, 1) << display->LastErrorString().toStdString();
            const QString local = sim->localPathOf(name);
            const QImage back = ImageFile::read(local);
            EXPECT_EQ(back.format(), img.format());
            if (QString(name).endsWith("OUT")) { // no extension: written as JPEG
                QFile file(local);
                ASSERT_TRUE(file.open(QIODevice::ReadOnly));
                EXPECT_EQ(file.read(2), QByteArray("\xFF\xD8", 2));
            }
            if (QString(name).endsWith("OUT") || (!grey && QString(name).endsWith(".GIF")))
                EXPECT_EQ(back.size(), img.size());
            else
                EXPECT_EQ(back, img);
        }
    }

    // An image the page showed from a local file is the current one too.
    const QString localFile = nxr::testing::usePrivateTempFolder() + "/page-image.png";
    ImageFile::write(pattern(30, 20, 8), localFile, ImageFileFormat::Png);
    display->LoadLocalImage(localFile);
    save("MC:\\E2E\\LOCAL.PNG");
    EXPECT_EQ(ImageFile::read(sim->localPathOf("MC:\\E2E\\LOCAL.PNG")), pattern(30, 20, 8));
    EXPECT_EQ(errors, 1);
}

// The display's road to the controller through the file transfer object: a version cache that is
// already filled (where the transfer object keeps files it has) must not bring back an old picture.
TEST_F(DisplayLoadingTest, FilledVersionCacheStillGivesTheNewPicture)
{
    NXRFileTransferObject versionSetter;
    versionSetter.setVersionID("V9.40P/01");
    QDir().mkpath(versionSetter.StorageFolder() + "V940P01");
    QFile seed(versionSetter.StorageFolder() + "V940P01/OVERLAY.TXT");
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    seed.write("cached");
    seed.close();
    for (int frame = 0; frame < 3; ++frame) {
        QImage img(96, 64, QImage::Format_Grayscale8);
        img.fill(frame * 80);
        put("MC:\\CAMERA\\SNAP.PNG", img);
        load("MC:\\CAMERA\\SNAP.PNG");
        ASSERT_EQ(errors, 0) << display->LastErrorString().toStdString();
        EXPECT_EQ(shown(), img) << frame;
    }
    // The downloads did not pile up in the version cache.
    EXPECT_EQ(QDir(versionSetter.StorageFolder() + "V940P01").entryList(QDir::Files),
              QStringList{"OVERLAY.TXT"});
    versionSetter.setVersionID("");
}

} // namespace
