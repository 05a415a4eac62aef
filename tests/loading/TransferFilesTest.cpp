// The display's road to the controller through the file transfer object, against the simulator:
// a version cache that is already filled (where the transfer object keeps files it has) must not
// make the display show an old picture again.

#include "ControllerSimulator.h"
#include "FakeFiles.h"

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/loading/ImageFile.h"
#include "transfer/NXRFileTransferObject.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace nxr;

TEST(TransferFilesTest, FilledVersionCacheStillGivesTheNewPicture)
{
    nxr::testing::usePrivateTempFolder();
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();

    // The page works with a controller version whose cache already holds files.
    NXRFileTransferObject versionSetter;
    versionSetter.setVersionID("V9.40P/01");
    QDir().mkpath(versionSetter.StorageFolder() + "V940P01");
    QFile seed(versionSetter.StorageFolder() + "V940P01/OVERLAY.TXT");
    ASSERT_TRUE(seed.open(QIODevice::WriteOnly));
    seed.write("cached");
    seed.close();

    NXRImageDisplay display;
    display.SetProperty("FTPPortNo", QString::number(sim.ftpPort()));
    display.SetProperty("HTTPPortNo", QString::number(sim.httpPort()));
    int errors = 0;
    QObject::connect(&display, &NXRImageDisplay::OnError, [&] { ++errors; });
    for (int frame = 0; frame < 3; ++frame) {
        QImage img(96, 64, QImage::Format_Grayscale8);
        img.fill(frame * 80);
        ASSERT_TRUE(sim.writeFile("MC:\\CAMERA\\SNAP.PNG", ImageFile::encode(img, ImageFileFormat::Png)));
        display.LoadImage(sim.host(), "MC:\\CAMERA\\SNAP.PNG", sim.user(), sim.password());
        ASSERT_EQ(errors, 0) << display.LastErrorString().toStdString();
        EXPECT_EQ(display.leadView()->bitmap(), img) << frame;
    }
    // The downloads did not pile up in the version cache.
    EXPECT_EQ(QDir(versionSetter.StorageFolder() + "V940P01").entryList(QDir::Files),
              QStringList{"OVERLAY.TXT"});
    versionSetter.setVersionID("");
}
