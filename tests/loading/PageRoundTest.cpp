// The vision setup page's operator round, headless through the page host against the simulator:
// snap, live mode with zoom and pan while images stream, live mode ended, the found part drawn,
// the search window taught and stored on the controller (and brought back by the next run), save.

#include "ControllerSimulator.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(PageRoundTest, VisionSetupPageRunsTheOperatorsRoundAgainstTheSimulator)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    QTemporaryDir shots;
    auto run = [&] {
        QProcess page;
        page.setProcessChannelMode(QProcess::MergedChannels);
        page.start(QStringLiteral(NXR_PAGE_HOST),
                   {"--headless", "--timeout", "60000", "--overwrite-screenshots", "--screenshot-dir",
                    shots.path(), "--script-arg", "server=" + sim.host(), "--script-arg",
                    "httpPort=" + QString::number(sim.httpPort()), "--script-arg",
                    "ftpPort=" + QString::number(sim.ftpPort()), "--script-arg", "user=" + sim.user(),
                    "--script-arg", "password=" + sim.password(), "--script-arg", "shots=" + shots.path(),
                    QStringLiteral(NXR_VISION_SETUP_PAGE)});
        EXPECT_TRUE(page.waitForFinished(90000));
        const QString output = QString::fromLocal8Bit(page.readAll());
        EXPECT_EQ(page.exitCode(), 0) << output.toStdString();
        return output;
    };
    const QString output = run();
    EXPECT_TRUE(output.contains("vision-setup demo done")) << output.toStdString();
    EXPECT_TRUE(output.contains("search window stored")) << output.toStdString();
    EXPECT_FALSE(output.contains(sim.password() + "@"));
    for (const char* name :
         {"1-snap", "2-live-zoomed", "3-live-panned", "4-results", "5-search-window", "6-saved"})
        EXPECT_FALSE(QImage(shots.filePath(QString("vision-setup-%1.png").arg(name))).isNull()) << name;
    // The search window is kept on the controller, and the next run starts with it.
    const QJsonObject stored = QJsonDocument::fromJson(sim.readFile("MC:\\VISION\\SEARCHWIN.TXT")).object();
    ASSERT_TRUE(stored.contains("left") && stored.contains("angle"))
        << sim.readFile("MC:\\VISION\\SEARCHWIN.TXT").toStdString();
    const QString second = run();
    const QString restored = QString("search window restored: left %1, top %2")
                                 .arg(stored["left"].toDouble(), 0, 'f', 1)
                                 .arg(stored["top"].toDouble(), 0, 'f', 1);
    EXPECT_TRUE(second.contains(restored)) << restored.toStdString() << "\n" << second.toStdString();
    // The image went back to the controller.
    EXPECT_FALSE(QImage::fromData(sim.readFile("MC:\\CAMERA\\SAVED.PNG")).isNull());
    EXPECT_TRUE(sim.logLines("CAMERA snap").size() > 3);
}
