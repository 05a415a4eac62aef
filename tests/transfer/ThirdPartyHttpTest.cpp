// Copies served by a real third-party web server (lighttpd) in front of the simulator's device
// tree, with the simulator's FTP service as the fallback: redirects and other non-success
// answers must fail the HTTP download and fall back to FTP, never leave an empty file.

#include "TransferTestSupport.h"
#include "frame/Globals.h"
#include "transfer/ConnectionPool.h"
#include "transfer/NXRFileTransferObject.h"

#include <QRegularExpression>

using namespace nxr::test;

namespace {

const char* kDaemon = "/usr/sbin/lighttpd";

class ThirdPartyHttpTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFile::exists(kDaemon))
            GTEST_SKIP() << "lighttpd is not installed";
        qputenv("TMPDIR", temp.path().toUtf8());
        ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
        // The moved file exists under its own name for FTP; the web server redirects it.
        ASSERT_TRUE(sim.writeFile("MC:\\VISION\\MOVED.BIN", QByteArray(50000, 'f')));
        ASSERT_TRUE(sim.writeFile("MC:\\VISION\\PLAIN.BIN", QByteArray(70000, 'h')));
        port = freePort();
        const QString config =
            QStringLiteral("server.document-root = \"%1\"\nserver.bind = \"127.0.0.1\"\nserver.port = %2\n"
                           "server.errorlog = \"%3\"\nserver.modules = (\"mod_redirect\")\n"
                           "url.redirect = (\"^/MC/VISION/MOVED\\.BIN$\" => \"/MC/VISION/PLAIN.BIN\",\n"
                           "                \"^/MC/ELSEWHERE/(.*)$\" => \"http://127.0.0.1:9/$1\")\n")
                .arg(sim.root())
                .arg(port)
                .arg(temp.filePath("lighttpd-error.log"));
        ASSERT_TRUE(writeLocal(temp.filePath("lighttpd.conf"), config.toUtf8()));
        daemon.setProcessChannelMode(QProcess::ForwardedChannels);
        daemon.start(kDaemon, {"-D", "-f", temp.filePath("lighttpd.conf")});
        ASSERT_TRUE(daemon.waitForStarted(5000));
        ASSERT_TRUE(listensSoon(port)) << "lighttpd did not start listening";
    }
    void TearDown() override
    {
        nxr::ConnectionPool::instance().clear();
        stopDaemon(daemon);
    }

    QTemporaryDir temp;
    ControllerSimulator sim;
    quint16 port = 0;
    QProcess daemon;
};

TEST_F(ThirdPartyHttpTest, OnlySuccessAnswersCountAsDownloads)
{
    struct Case
    {
        const char* path;
        bool copied;
        QByteArray content; // what the cached file holds when copied
        bool byFtp;         // the copy fell back to FTP (asked for the file there)
    } cases[] = {
        {"MC:\\VISION\\PLAIN.BIN", true, QByteArray(70000, 'h'), false},
        // 301 with an empty body: not the file; FTP brings the real one under its own name.
        {"MC:\\VISION\\MOVED.BIN", true, QByteArray(50000, 'f'), true},
        // A folder without its slash: the server redirects; FTP cannot fetch a folder either.
        {"MC:\\VISION", false, {}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        ASSERT_TRUE(sim.clearLog());
        NXRFileTransferObject o;
        o.setFTPPortNo(sim.ftpPort());
        o.setHTTPPortNo(port);
        const bool copied = o.CopyFile(sim.host(), c.path, sim.user(), sim.password(), "copy.bin");
        EXPECT_EQ(copied, c.copied) << o.LastErrorString().toStdString();
        const QString local = nxr::Globals::storageFolder() + "/copy.bin";
        if (c.copied)
            EXPECT_EQ(readAll(local), c.content);
        else
            EXPECT_FALSE(QFileInfo(local).exists() && QFileInfo(local).size() == 0)
                << "an empty file was left";
        EXPECT_EQ(!sim.logLines("FTP> ").filter(QRegularExpression("^(SIZE|RETR) ")).isEmpty(), c.byFtp)
            << sim.logLines().join('\n').toStdString();
        QFile::remove(local);
        nxr::ConnectionPool::instance().clear();
    }
}

} // namespace
