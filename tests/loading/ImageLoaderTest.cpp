#include "FakeFiles.h"
#include "FakeSurface.h"

#include "frame/Globals.h"
#include "frame/ScriptableCore.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/ImageLoader.h"
#include "imagedisplay/loading/LiveMode.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace nxr;
using namespace nxr::testing;

namespace {

QImage pattern(int w, int h, int seed, bool grey = false)
{
    QImage img(w, h, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (grey)
                img.scanLine(y)[x] = uchar(x * 3 + y * 5 + seed);
            else
                img.setPixel(x, y, qRgb((x + seed) & 255, (y * 2 + seed) & 255, (x ^ y) & 255));
        }
    return img;
}

class ImageLoaderTest : public ::testing::Test
{
protected:
    void SetUp() override { usePrivateTempFolder(); }

    void put(const QString& path, const QImage& img, ImageFileFormat format = ImageFileFormat::Png)
    {
        files.put(path, ImageFile::encode(img, format));
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

TEST_F(ImageLoaderTest, FailedCopyReportsTheTransferReasonWithoutThePassword)
{
    load("MC:\\V\\missing.png");
    EXPECT_EQ(errors, 1);
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

} // namespace
