// The vision setup page's operator round, headless through the page host against the simulator:
// snap, live mode with zoom and pan while images stream, live mode ended, save.

#include "ControllerSimulator.h"

#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(PageRoundTest, VisionSetupPageRunsTheOperatorsRoundAgainstTheSimulator)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    QTemporaryDir shots;
    QProcess page;
    page.setProcessChannelMode(QProcess::MergedChannels);
    page.start(QStringLiteral(NXR_PAGE_HOST),
               {"--headless", "--timeout", "60000", "--screenshot-dir", shots.path(), "--script-arg",
                "server=" + sim.host(), "--script-arg", "httpPort=" + QString::number(sim.httpPort()),
                "--script-arg", "ftpPort=" + QString::number(sim.ftpPort()), "--script-arg",
                "user=" + sim.user(), "--script-arg", "password=" + sim.password(), "--script-arg",
                "shots=" + shots.path(), QStringLiteral(NXR_VISION_SETUP_PAGE)});
    ASSERT_TRUE(page.waitForFinished(90000));
    const QString output = QString::fromLocal8Bit(page.readAll());
    EXPECT_EQ(page.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains("vision-setup demo done")) << output.toStdString();
    EXPECT_FALSE(output.contains(sim.password() + "@"));
    for (const char* name : {"1-snap", "2-live-zoomed", "3-live-panned", "4-saved"})
        EXPECT_FALSE(QImage(shots.filePath(QString("vision-setup-%1.png").arg(name))).isNull()) << name;
    // The image went back to the controller.
    EXPECT_FALSE(QImage::fromData(sim.readFile("MC:\\CAMERA\\SAVED.PNG")).isNull());
    EXPECT_TRUE(sim.logLines("CAMERA snap").size() > 3);
}
