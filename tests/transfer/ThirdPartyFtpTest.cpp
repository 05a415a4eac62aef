// One download and one listing against a real third-party FTP daemon (vsftpd) with plain Unix
// paths, so that the client is not tuned to the simulator only.

#include "TransferTestSupport.h"
#include "frame/Globals.h"
#include "transfer/ConnectionPool.h"
#include "transfer/ControllerClient.h"
#include "transfer/NXRFileTransferObject.h"

using namespace nxr::test;

namespace {

const char* kDaemon = "/usr/sbin/vsftpd";

class ThirdPartyFtpTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFile::exists(kDaemon))
            GTEST_SKIP() << "vsftpd is not installed";
        qputenv("TMPDIR", temp.path().toUtf8());
        root = temp.filePath("root");
        ASSERT_TRUE(QDir().mkpath(root + "/pub/sub"));
        ASSERT_TRUE(QDir().mkpath(temp.filePath("empty")));
        ASSERT_TRUE(writeLocal(root + "/pub/hello.txt", "hello from a real daemon\n"));
        ASSERT_TRUE(writeLocal(root + "/pub/Picture.PNG", QByteArray(70000, '\x42')));

        port = freePort();
        // Runs as the launching user, without chroot or privilege separation: fine for a test.
        const QString config =
            QStringLiteral("listen=YES\nlisten_ipv6=NO\nlisten_address=127.0.0.1\nlisten_port=%1\n"
                           "background=NO\nrun_as_launching_user=YES\nanonymous_enable=YES\n"
                           "anon_root=%2\nno_anon_password=YES\nlocal_enable=NO\nwrite_enable=NO\n"
                           "seccomp_sandbox=NO\nsecure_chroot_dir=%3\nxferlog_enable=NO\n"
                           "pasv_enable=YES\npasv_address=127.0.0.1\ncheck_shell=NO\n")
                .arg(port)
                .arg(root, temp.filePath("empty"));
        ASSERT_TRUE(writeLocal(temp.filePath("vsftpd.conf"), config.toUtf8()));
        daemon.setProcessChannelMode(QProcess::ForwardedChannels);
        daemon.start(kDaemon, {temp.filePath("vsftpd.conf")});
        ASSERT_TRUE(daemon.waitForStarted(5000));
        ASSERT_TRUE(listensSoon(port)) << "vsftpd did not start listening";
    }
    void TearDown() override
    {
        nxr::ConnectionPool::instance().clear();
        stopDaemon(daemon);
    }

    QTemporaryDir temp;
    QString root;
    quint16 port = 0;
    QProcess daemon;
};

TEST_F(ThirdPartyFtpTest, DownloadAndListingWithUnixPaths)
{
    NXRFileTransferObject o;
    o.setFTPPortNo(port);
    o.setHTTPPortNo(freePort()); // no web server there: the copy goes by FTP alone
    const QString file = root + "/pub/hello.txt";
    ASSERT_TRUE(o.CopyFile("127.0.0.1", file, "anonymous", "guest", "hello.txt"))
        << o.LastErrorString().toStdString();
    EXPECT_EQ(readAll(o.lastLocalPath()), QByteArray("hello from a real daemon\n"));
    EXPECT_EQ(o.lastLocalPath(), nxr::Globals::storageFolder() + "/hello.txt");

    ASSERT_TRUE(o.ConnectRobot("Dialog", "127.0.0.1", "anonymous", "guest"));
    EXPECT_EQ(o.client()->HttpState(), 0);
    EXPECT_EQ(o.FileListing(root + "/pub"), QStringList({"PICTURE.PNG", "HELLO.TXT"}));
    EXPECT_EQ(o.FolderListing(root + "/pub"), QStringList({"SUB"}));
    o.DisconnectRobot(false);
}

} // namespace
