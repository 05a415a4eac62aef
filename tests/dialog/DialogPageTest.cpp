// The vision setup page's dialog round, headless through the page host against the simulator:
// the operator opens a reference image from UD1:, a logged image from the image log, and saves
// the shown image to MC:, each by clicks and keys in the display's dialog.

#include "ControllerSimulator.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(DialogPageTest, TheOperatorOpensAndSavesThroughTheDialogInAHeadlessRun)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    QTemporaryDir shots;
    QProcess page;
    page.setProcessChannelMode(QProcess::MergedChannels);
    QStringList args{"--headless", "--timeout", "60000", "--screenshot-dir", shots.path()};
    for (const QString& arg :
         {"server=" + sim.host(), "httpPort=" + QString::number(sim.httpPort()),
          "ftpPort=" + QString::number(sim.ftpPort()), "user=" + sim.user(), "password=" + sim.password(),
          QStringLiteral("dialog=1"), "shots=" + shots.path()})
        args << "--script-arg" << arg;
    page.start(QStringLiteral(NXR_PAGE_HOST), args << QStringLiteral(NXR_VISION_SETUP_PAGE));
    ASSERT_TRUE(page.waitForFinished(90000));
    const QString output = QString::fromLocal8Bit(page.readAll());
    EXPECT_EQ(page.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains("vision-setup dialog round done")) << output.toStdString();
    EXPECT_TRUE(output.contains("image log: 8 images")) << output.toStdString();
    for (const char* name : {"1-open-remote", "2-log", "3-save"}) {
        const QImage shot(shots.filePath(QString("vision-setup-dialog-%1.png").arg(name)));
        EXPECT_FALSE(shot.isNull()) << name;
        EXPECT_GE(shot.width(), 500) << name; // the dialog's own window, not the page
    }
    // The image saved through the dialog is the logged image the operator opened last.
    const QImage saved = QImage::fromData(sim.readFile("MC:\\DIALOG.PNG"));
    const QImage logged = QImage::fromData(sim.readFile("MCV:\\LOG\\20261121\\GLUE\\081611.PNG"));
    ASSERT_FALSE(saved.isNull());
    ASSERT_FALSE(logged.isNull());
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32), logged.convertToFormat(QImage::Format_RGB32));
    // The login went over FTP and never into the output.
    EXPECT_TRUE(sim.logLines("FTP> ").contains("STOR MC:\\DIALOG.PNG"));
    EXPECT_FALSE(output.contains("PASS " + sim.password()));
}
