// Objects destroyed, and runs ended, while a synchronous call waits for a slow controller; and a
// headless run that must wait for such a call.

#include "ControllerSimulator.h"
#include "PageRunner.h"
#include "frame/Globals.h"
#include "frame/UserSettings.h"
#include "transfer/ConnectionPool.h"
#include "transfer/NXRFileTransferObject.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using nxr::test::ControllerSimulator;

namespace {

class TeardownTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // The user settings of this process live in a folder of its own.
        static QTemporaryDir config;
        qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    }
    void SetUp() override
    {
        qputenv("TMPDIR", temp.path().toUtf8());
        ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    }
    void TearDown() override { nxr::ConnectionPool::instance().clear(); }

    QStringList pageArgs() const
    {
        return {"--script-arg", "server=" + sim.host(),
                "--script-arg", "ftpPort=" + QString::number(sim.ftpPort()),
                "--script-arg", "httpPort=" + QString::number(sim.httpPort())};
    }

    QTemporaryDir temp;
    ControllerSimulator sim;
};

const QByteArray kCopyScript = R"(
var t = createObject("NXRFileTransferObject");
t.FTPPortNo = Number(host.args.ftpPort);
t.HTTPPortNo = Number(host.args.httpPort);
var ok = t.CopyFile(host.args.server, "MC:\\VISION\\GREY640.PNG", "robot", "robot", "");
console.log("copied " + ok);
)";

const QByteArray kLoadScript = R"(
display.SetProperty("FTPPortNo", host.args.ftpPort);
display.SetProperty("HTTPPortNo", host.args.httpPort);
display.LoadImage(host.args.server, "MC:\\VISION\\GREY640.PNG", "robot", "robot");
console.log("loaded");
)";

} // namespace

// Destroying the object whose call waits ends the call at once, with an error and without a crash.
TEST_F(TeardownTest, DestroyingTheCallerEndsItsWaitingCall)
{
    ASSERT_TRUE(sim.setFault("stall_after", 0));
    auto* object = new NXRFileTransferObject;
    object->setFTPPortNo(sim.ftpPort());
    object->setHTTPPortNo(sim.httpPort());
    QTimer::singleShot(500, [object] { delete object; });
    QElapsedTimer clock;
    clock.start();
    const bool copied =
        object->CopyFile(sim.host(), "MC:\\VISION\\GREY640.PNG", sim.user(), sim.password(), "");
    EXPECT_FALSE(copied);
    EXPECT_LT(clock.elapsed(), 3000);
    // The pooled connection it used is still sound for the next caller.
    ASSERT_TRUE(sim.resetFaults());
    NXRFileTransferObject next;
    next.setFTPPortNo(sim.ftpPort());
    next.setHTTPPortNo(sim.httpPort());
    EXPECT_TRUE(next.CopyFile(sim.host(), "MC:\\VISION\\GREY640.PNG", sim.user(), sim.password(), ""))
        << next.LastErrorString().toStdString();
}

// The page host ends the run (here after a fixed time) while a call waits for a stalled
// controller: the process ends cleanly, and the call comes back with an error.
TEST_F(TeardownTest, EndingTheRunDuringACallEndsCleanly)
{
    ASSERT_TRUE(sim.setFault("stall_after", 0));
    PageRunner pages;
    const QByteArray form = PageRunner::form(320, 240, PageRunner::item("NXRImageDisplay", "display"));
    struct Case
    {
        const char* name;
        QByteArray script;
        QStringList options;
        int exitCode;
    } cases[] = {
        {"copy, host.exit()", "setTimeout(function () { host.exit(); }, 500);" + kCopyScript, {}, 0},
        {"load, host.exit()", "setTimeout(function () { host.exit(); }, 500);" + kLoadScript, {}, 0},
        {"copy, time limit", kCopyScript, {"--timeout", "1500"}, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QElapsedTimer clock;
        clock.start();
        const QString name = QString::number(&c - cases);
        pages.write(name + "/page.ui", form);
        pages.write(name + "/page.js", c.script);
        const QStringList timeLimit{"--timeout", c.options.isEmpty() ? "20000" : c.options.last()};
        const PageRun run =
            pages.run(QStringList{"--headless"} + timeLimit + pageArgs() + QStringList{pages.path(name)});
        EXPECT_FALSE(run.crashed) << run.err.toStdString();
        EXPECT_FALSE(run.timedOut);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.toStdString();
        EXPECT_LT(clock.elapsed(), 8000);
        // The script's next line never claims success for a transfer that was cut off.
        EXPECT_FALSE(run.out.contains("copied true"));
    }
}

// A headless run waits for a call that is still moving data, however long it takes.
TEST_F(TeardownTest, HeadlessRunWaitsForACallInProgress)
{
    ASSERT_TRUE(sim.setFault("rate", 100000)); // the 640x480 image takes well over a second
    PageRunner pages;
    const QByteArray form = PageRunner::form(320, 240, "");
    // The call starts from a timer, after the page's scripts have run.
    const PageRun run =
        pages.runPage("slow", form, "setTimeout(function () {" + kCopyScript + "}, 0);", pageArgs());
    EXPECT_FALSE(run.crashed) << run.err.toStdString();
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("copied true")) << run.out.toStdString() << run.err.toStdString();
}

// A controller that goes silent holds a call up for bounded times: with the defaults one copy
// (HTTP, then the FTP fallback) ends well under 20 s; users shorten or lengthen the limits in
// their settings.
TEST_F(TeardownTest, StalledControllerHoldsACallForBoundedTimes)
{
    ASSERT_TRUE(sim.setFault("stall_after", 0));
    const struct
    {
        const char* stallSetting;
        qint64 lowestMs;
        qint64 highestMs;
    } cases[] = {{"", 4000, 20000}, {"1000", 1000, 5000}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stallSetting);
        nxr::UserSettings::set("Transfer", "StallTimeoutMs", c.stallSetting);
        nxr::ConnectionPool::instance().clear();
        NXRFileTransferObject object;
        object.setFTPPortNo(sim.ftpPort());
        object.setHTTPPortNo(sim.httpPort());
        QElapsedTimer clock;
        clock.start();
        EXPECT_FALSE(object.CopyFile(sim.host(), "MC:\\VISION\\GREY640.PNG", sim.user(), sim.password(), ""));
        EXPECT_GE(clock.elapsed(), c.lowestMs);
        EXPECT_LT(clock.elapsed(), c.highestMs);
    }
    nxr::UserSettings::set("Transfer", "StallTimeoutMs", "");
}
