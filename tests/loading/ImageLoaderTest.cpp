// The loader and live mode against stand-ins for the display and the controller.

#include "FakeFiles.h"
#include "FakeSurface.h"

#include "frame/ScriptableCore.h"
#include "frame/SyncCall.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/ImageLoader.h"
#include "imagedisplay/loading/LiveMode.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

using namespace nxr;
using namespace nxr::testing;

namespace {

class ImageLoaderTest : public ::testing::Test
{
protected:
    void SetUp() override { usePrivateTempFolder(); }

    void put(const QString& path, const QImage& img)
    {
        files.put(path, ImageFile::encode(img, ImageFileFormat::Png));
    }
    void load(const QString& path) { loader.loadImage("robot", path, "operator", "s3cret!"); }

    QObject owner;
    int errors = 0;
    ScriptableCore core{&owner, [this] { ++errors; }};
    QTemporaryDir controller;
    FakeFiles files{controller.path()};
    FakeSurface surface;
    LiveMode live{surface, core};
    ImageLoader loader{surface, live, core, [this] { return &files; }};
};

TEST_F(ImageLoaderTest, CorruptImageInLiveModeKeepsTheLastImageAndAsksForTheNext)
{
    const QImage img = pattern(64, 48, 1);
    put("MC:\\V\\a.png", img);
    QByteArray half = ImageFile::encode(pattern(64, 48, 2), ImageFileFormat::Jpeg);
    files.put("MC:\\V\\half.jpg", half.left(half.size() / 2));
    live.turnOn();
    load("MC:\\V\\a.png");
    QSignalSpy snap(&live, &LiveMode::snapRequested);
    load("MC:\\V\\half.jpg");
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(core.lastError(), "Error in mflng_LoadNewImage: file MC:\\V\\half.jpg does not contain image");
    EXPECT_EQ(surface.image, img);
    EXPECT_EQ(loader.images().image("current"), img);
    EXPECT_EQ(surface.reinitializations, 0);
    EXPECT_TRUE(snap.wait(1000));
}

// With colour mode off the worker makes the grey image and its reductions; "current" stays as read.
TEST_F(ImageLoaderTest, GreyViewGetsItsGreyImageAndReductionsMadeAhead)
{
    const QImage colour = pattern(640, 480, 4);
    put("MC:\\V\\c.png", colour);
    surface.grey = true;
    surface.level = 1;
    load("MC:\\V\\c.png");
    EXPECT_EQ(errors, 0);
    EXPECT_EQ(loader.images().image("current"), colour);
    EXPECT_EQ(surface.image, colour.convertToFormat(QImage::Format_Grayscale8));
    ASSERT_EQ(surface.reductions.size(), 1u);
    EXPECT_EQ(surface.reductions[0].format(), QImage::Format_Grayscale8);
    EXPECT_EQ(surface.reductions[0].size(), QSize(320, 240));
}

TEST_F(ImageLoaderTest, FailuresOutsideLiveModeEmptyTheDisplayAndHideThePassword)
{
    put("MC:\\V\\a.png", pattern(64, 48, 1));
    files.put("MC:\\V\\note.jpg", "just some text, no picture\r\n");
    load("MC:\\V\\a.png");
    load("MC:\\V\\note.jpg");
    EXPECT_EQ(core.lastError(), "Error in mflng_LoadNewImage: file MC:\\V\\note.jpg does not contain image");
    EXPECT_TRUE(surface.image.isNull());
    EXPECT_EQ(surface.reinitializations, 1);
    load("MC:\\V\\a.png");
    load("MC:\\V\\missing.png");
    EXPECT_EQ(errors, 2);
    EXPECT_TRUE(core.lastError().startsWith("Error in mfbln_CopyFileFromController: no such file"))
        << core.lastError().toStdString();
    EXPECT_FALSE(core.lastError().contains("s3cret!"));
    EXPECT_EQ(files.lastPassword, "s3cret!");
    EXPECT_TRUE(surface.image.isNull());
}

TEST_F(ImageLoaderTest, WaitOnDisplayDecidesWhetherTheRepaintPrecedesTheReturn)
{
    put("MC:\\V\\a.png", pattern(64, 48, 1));
    loader.setWaitOnDisplay(false);
    surface.repaints = 0;
    load("MC:\\V\\a.png");
    EXPECT_EQ(surface.repaints, 0);
    EXPECT_FALSE(surface.repaintOn);
    EXPECT_TRUE(waitFor([&] { return surface.repaints == 1; }));
    EXPECT_TRUE(surface.repaintOn);

    loader.setWaitOnDisplay(true);
    surface.repaints = 0;
    load("MC:\\V\\a.png");
    EXPECT_EQ(surface.repaints, 1);
    EXPECT_TRUE(surface.repaintOn);
}

TEST_F(ImageLoaderTest, LoadImageCalledDuringATransferRunsAfterItInOrder)
{
    put("MC:\\V\\a.png", pattern(64, 48, 1));
    put("MC:\\V\\b.png", pattern(64, 48, 2));
    put("MC:\\V\\c.png", pattern(64, 48, 3));
    files.transferMs = 60;
    int nested = 0;
    files.duringCopy = [&] {
        if (nested++ == 0) {
            load("MC:\\V\\b.png");
            load("MC:\\V\\c.png");
            // Queued, not run inside the running transfer.
            EXPECT_EQ(files.downloads, 1);
        }
    };
    load("MC:\\V\\a.png");
    EXPECT_EQ(files.downloads, 3);
    EXPECT_EQ(surface.image, pattern(64, 48, 3));
    EXPECT_EQ(errors, 0);
}

QByteArray noiseJpeg(int w, int h)
{
    return ImageFile::encode(noise(w, h), ImageFileFormat::Jpeg);
}

// The shortest of a few reads of `data` from a file, in ms.
qint64 decodeMs(const QByteArray& data)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("big.jpg");
    QFile out(file);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(data);
    out.close();
    qint64 best = std::numeric_limits<qint64>::max();
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer clock;
        clock.start();
        EXPECT_FALSE(ImageFile::read(file).isNull());
        best = qMin(best, clock.elapsed());
    }
    return best;
}

// The largest gap between ticks of a precise 5 ms timer while `work` runs, in ms.
template <typename Work> qint64 largestTickGap(Work&& work)
{
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(5);
    QElapsedTimer clock;
    qint64 last = 0, gap = 0;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        gap = qMax(gap, clock.elapsed() - last);
        last = clock.elapsed();
    });
    ticker.start();
    clock.start();
    work();
    gap = qMax(gap, clock.elapsed() - last);
    return gap;
}

TEST_F(ImageLoaderTest, LargeDecodeLeavesTheEventLoopRunningAndQueuesAReenteredLoad)
{
    const QByteArray big = noiseJpeg(3200, 2400);
    files.put("MC:\\V\\big.jpg", big);
    put("MC:\\V\\small.png", pattern(64, 48, 3));
    const qint64 decode = decodeMs(big);
    surface.level = 2; // the view draws from the quarter-size level
    ASSERT_GE(decode, 20) << "the image decodes too fast to tell a running loop from a blocked one";

    // A blocked loop shows the whole decode as one gap in every load; the best of three loads
    // stays well below half of it unless the decode runs on this thread.
    qint64 bestGap = std::numeric_limits<qint64>::max();
    for (int i = 0; i < 3; ++i) {
        loader.resetDisplay();
        bestGap = qMin(bestGap, largestTickGap([&] { load("MC:\\V\\big.jpg"); }));
        ASSERT_EQ(surface.image.size(), QSize(3200, 2400));
        ASSERT_EQ(surface.reductions.size(), 2u); // made by the worker too
        EXPECT_EQ(surface.reductions[1].size(), QSize(800, 600));
    }
    EXPECT_LT(bestGap, decode / 2) << "decode " << decode << " ms";

    // A load asked for while the decode waits follows it, and its image is the one left shown.
    bool askedDuringDecode = false;
    QTimer::singleShot(0, &owner, [&] {
        askedDuringDecode = NestedWait::depth() > 0 && loader.isLoading();
        load("MC:\\V\\small.png");
    });
    load("MC:\\V\\big.jpg");
    EXPECT_TRUE(askedDuringDecode);
    EXPECT_EQ(surface.image, pattern(64, 48, 3));
    EXPECT_EQ(files.downloads, 5);
    EXPECT_EQ(errors, 0);
}

TEST_F(ImageLoaderTest, LoaderDestroyedDuringTheDecodeEndsTheCallUntouched)
{
    files.put("MC:\\V\\big.jpg", noiseJpeg(3200, 2400));
    auto doomed = std::make_unique<ImageLoader>(surface, live, core, [this] { return &files; });
    bool destroyedDuringDecode = false;
    QTimer::singleShot(0, &owner, [&] {
        destroyedDuringDecode = NestedWait::depth() > 0 && doomed->isLoading();
        doomed.reset();
    });
    doomed->loadImage("robot", "MC:\\V\\big.jpg", "operator", "s3cret!");
    EXPECT_TRUE(destroyedDuringDecode);
    EXPECT_EQ(doomed, nullptr);
    EXPECT_EQ(files.downloads, 1);
    EXPECT_EQ(errors, 0);
    EXPECT_TRUE(surface.image.isNull());
    EXPECT_TRUE(surface.landing.isNull());
    // The worker ends on its own and its image is dropped (a leak shows under the sanitizers).
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(10000));
    spin(10);
    EXPECT_TRUE(surface.image.isNull());
}

class LiveModeTest : public ImageLoaderTest
{
protected:
    void SetUp() override
    {
        ImageLoaderTest::SetUp();
        for (int i = 0; i < 3; ++i) {
            QImage img(160, 120, QImage::Format_Grayscale8);
            img.fill(i * 60);
            put(QString("MC:\\LIVE\\F%1.JPG").arg(i), img);
        }
    }
    void loadFrame(int i) { load(QString("MC:\\LIVE\\F%1.JPG").arg(i % 3)); }

    QSignalSpy toggled{&live, &LiveMode::liveModeToggled};
    QSignalSpy snaps{&live, &LiveMode::snapRequested};
};

TEST_F(LiveModeTest, SnapLoadSnapCycleWithOneToggleEventPerTransition)
{
    // Loads wait 50 and 10 ms in the event loop in turn: requests keep the pace of one an
    // interval on average, not one interval after each load, and the late one after a long load
    // is made up by a shorter wait.
    int frames = 0;
    QElapsedTimer sinceFirst, sinceRequest;
    qint64 shortestGap = 1000;
    QObject::connect(&live, &LiveMode::snapRequested, [&] {
        if (sinceRequest.isValid())
            shortestGap = std::min(shortestGap, sinceRequest.elapsed());
        sinceRequest.start();
        if (frames++ == 0)
            sinceFirst.start();
        files.transferMs = frames % 2 ? 50 : 10;
        if (frames < 11)
            loadFrame(frames);
    });
    live.turnOn(); // the tool bar's buttons during live mode are checked through the display
    EXPECT_TRUE(surface.busyPointer);
    live.turnOn(); // already on: no second event
    loadFrame(0);
    ASSERT_TRUE(waitFor([&] { return frames == 11; }));
    const double period = sinceFirst.elapsed() / 10.0;
    EXPECT_GE(shortestGap, LiveMode::kMinGap * 19 / 20); // coarse timers may fire 5% early
    EXPECT_LT(period, LiveMode::kInterval + 4.0);        // 45 ms when each late request is lost
    // The last request went unanswered: live mode waits, asking nothing more.
    spin(150);
    EXPECT_EQ(snaps.count(), 11);
    EXPECT_FALSE(live.timer().isActive());

    live.doAbort();
    live.doAbort(); // already off: nothing
    ASSERT_EQ(toggled.count(), 2);
    EXPECT_TRUE(toggled[0][0].toBool());
    EXPECT_FALSE(toggled[1][0].toBool());
    EXPECT_FALSE(surface.busyPointer);
    EXPECT_EQ(errors, 0);
}

TEST_F(LiveModeTest, SnapButtonAbortLetsTheRunningLoadFinishThenEndsLiveMode)
{
    files.transferMs = 200;
    QElapsedTimer sinceRequest;
    qint64 abortedAfter = -1;
    QObject::connect(&live, &LiveMode::liveModeToggled, [&](bool on) {
        if (!on)
            abortedAfter = sinceRequest.elapsed();
    });
    QObject::connect(&live, &LiveMode::snapRequested, [&] { loadFrame(snaps.count()); });
    files.duringCopy = [&] {
        if (!sinceRequest.isValid()) {
            live.requestAbort(); // the operator presses snap while an image is on its way
            sinceRequest.start();
            EXPECT_EQ(live.timer().interval(), LiveMode::kAbortInterval);
        }
    };
    live.turnOn();
    loadFrame(0);
    EXPECT_EQ(qGray(surface.image.pixel(0, 0)), 0); // the running load finished and shows
    EXPECT_TRUE(live.isOn());
    ASSERT_TRUE(waitFor([&] { return !live.isOn(); }));
    EXPECT_GE(abortedAfter, LiveMode::kAbortInterval * 9 / 10); // coarse timers may fire 5% early
    EXPECT_EQ(snaps.count(), 0);
    EXPECT_EQ(toggled.count(), 2);
    EXPECT_FALSE(live.abortRequested());
    EXPECT_EQ(live.timer().interval(), LiveMode::kInterval);
    spin(100);
    EXPECT_EQ(toggled.count(), 2);
    EXPECT_EQ(files.downloads, 1);
}

TEST_F(LiveModeTest, AbortLiveModeWhileAnAbortIsPendingRaisesOneEventAndLeavesANormalTimer)
{
    live.turnOn();
    loadFrame(0);
    live.requestAbort();
    live.doAbort(); // AbortLiveMode from the page
    spin(LiveMode::kAbortInterval + 100);
    EXPECT_EQ(toggled.count(), 2);
    EXPECT_EQ(snaps.count(), 0);
    // A new session runs at the normal pace.
    live.turnOn();
    loadFrame(1);
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(snaps.wait(1000));
    EXPECT_LT(clock.elapsed(), LiveMode::kAbortInterval / 2);
    EXPECT_EQ(toggled.count(), 3);
}

TEST_F(LiveModeTest, ZoomClicksDuringALiveLoadAreQueuedAndReplayedInOrderAfterIt)
{
    EXPECT_FALSE(live.deferMouseDown(1, 0, 5, 5)); // not busy: handled at once by the caller
    files.transferMs = 120;
    QImage shownDuringReplay;
    surface.onReplay = [&](const MouseDown&) { shownDuringReplay = surface.image; };
    files.duringCopy = [&] {
        EXPECT_TRUE(live.isBusy());
        EXPECT_TRUE(live.deferMouseDown(1, 0, 10.5, 20.25));
        EXPECT_TRUE(live.deferMouseDown(2, 1, 30, 40));
        EXPECT_TRUE(live.deferMouseDown(1, 4, 0.125, 479));
        EXPECT_TRUE(surface.replayed.empty());
    };
    live.turnOn();
    loadFrame(2);
    EXPECT_FALSE(live.isBusy());
    EXPECT_EQ(surface.replayed,
              (std::vector<MouseDown>{{1, 0, 10.5, 20.25}, {2, 1, 30, 40}, {1, 4, 0.125, 479}}));
    EXPECT_EQ(shownDuringReplay, surface.image); // replayed onto the new image, not the old one
    EXPECT_EQ(live.queuedCount(), 0);
}

TEST_F(LiveModeTest, TickWaitsWhileBusyAndStopsWhenLiveModeIsOff)
{
    live.turnOn();
    live.setBusy(true);
    live.loadFinished(); // timer on
    spin(150);
    EXPECT_EQ(snaps.count(), 0);
    EXPECT_TRUE(live.timer().isActive());
    live.setBusy(false);
    ASSERT_TRUE(snaps.wait(500));
    EXPECT_FALSE(live.timer().isActive());

    // Outside live mode a finished load starts nothing.
    live.doAbort();
    live.loadFinished();
    EXPECT_FALSE(live.timer().isActive());
}

} // namespace
