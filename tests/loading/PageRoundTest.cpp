// The vision setup page's operator round, headless through the page host against the simulator:
// snap, live mode with zoom and pan while images stream, live mode ended, the found part drawn,
// the search window taught and stored on the controller (and brought back by the next run), save,
// and a don't-care mask painted over the picture, partly undone and accepted back to the controller.

#include "ControllerSimulator.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The mask the page painted and accepted: the first stroke (upper) is masked red, the second
// (lower) was undone, the rest is black. The strokes run over 25..45 % of the display's width at
// 40 % and 60 % of its height, which lie on the image's middle part.
void checkPaintedMask(const nxr::test::ControllerSimulator& sim)
{
    const QImage mask = QImage::fromData(sim.readFile("MC:\\CAMERA\\DONTCARE.PNG"));
    ASSERT_FALSE(mask.isNull());
    int red = 0;
    int other = 0;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) {
            const QRgb p = mask.pixel(x, y);
            if (p == qRgb(255, 0, 0))
                ++red;
            else if (p != qRgb(0, 0, 0))
                ++other;
        }
    EXPECT_GT(red, 200);       // one Medium stroke of a few hundred pixels' length
    EXPECT_LT(red, 40 * 1000); // not two of them, nor a filled area
    EXPECT_EQ(other, 0);
    // The masked pixels lie in the upper half of the image only (the lower stroke was undone).
    int lower = 0;
    for (int y = mask.height() / 2; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            lower += mask.pixel(x, y) == qRgb(255, 0, 0) ? 1 : 0;
    EXPECT_EQ(lower, 0);
}

} // namespace

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
    checkPaintedMask(sim);
}

// The page's check with a controller: a picture, then the mask round alone.
TEST(PageRoundTest, VisionSetupPageChecksTheMaskRoundAgainstTheSimulator)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    QProcess page;
    page.setProcessChannelMode(QProcess::MergedChannels);
    page.start(QStringLiteral(NXR_PAGE_HOST),
               {"--headless", "--timeout", "60000", "--script-arg", "check=1", "--script-arg",
                "server=" + sim.host(), "--script-arg", "httpPort=" + QString::number(sim.httpPort()),
                "--script-arg", "ftpPort=" + QString::number(sim.ftpPort()), "--script-arg",
                "user=" + sim.user(), "--script-arg", "password=" + sim.password(),
                QStringLiteral(NXR_VISION_SETUP_PAGE)});
    ASSERT_TRUE(page.waitForFinished(90000));
    const QString output = QString::fromLocal8Bit(page.readAll());
    EXPECT_EQ(page.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains("vision-setup check passed")) << output.toStdString();
    checkPaintedMask(sim);
}
