// The dialog's controller side: devices, paths, the long listing, and listing through the
// file transfer against the controller simulator.

#include "ControllerSimulator.h"

#include "imagedisplay/dialog/RemoteFolders.h"
#include "transfer/ControllerClient.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>

using namespace nxr;

namespace {

TEST(RemotePaths, DevicesRootsAndMemoryDevices)
{
    EXPECT_EQ(RemotePaths::rootFolders(), (QStringList{"MC:\\", "UD1:\\", "MCV:\\", "UT1:\\"}));
    // Empty entries, repeats and memory devices never become roots; case does not matter.
    EXPECT_EQ(RemotePaths::rootFolders(";ud1:;;MD:;UD1:;mdb:;FR:;MC:"),
              (QStringList{"MC:\\", "UD1:\\", "FR:\\"}));
    EXPECT_EQ(RemotePaths::rootFolders(""), QStringList{"MC:\\"});

    const struct
    {
        const char* path;
        const char* device;
        bool memory;
        bool file;
    } cases[] = {
        {"MD:\\ERRALL.LS", "MD:", true, true},   {"mdb:\\X.PNG", "MDB:", true, true},
        {"MDX:\\X.PNG", "MDX:", false, true},    {"MC:\\VISION\\A.PNG", "MC:", false, true},
        {"MC:\\VISION\\", "MC:", false, false},  {"A.PNG", "", false, false},
        {"MC:\\A*.PNG", "MC:", false, false},    {"MC:\\A/B.PNG", "MC:", false, false},
        {"MC:\\A\r\nQUIT", "MC:", false, false}, {"C:\\X:Y.PNG", "C:", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(RemotePaths::deviceOf(c.path), c.device) << c.path;
        EXPECT_EQ(RemotePaths::isMemoryDevice(c.path), c.memory) << c.path;
        EXPECT_EQ(RemotePaths::isFilePath(c.path), c.file) << c.path;
    }
    EXPECT_EQ(RemotePaths::join("MC:\\", "A"), "MC:\\A");
    EXPECT_EQ(RemotePaths::join("MC:\\A", "B.PNG"), "MC:\\A\\B.PNG");
    EXPECT_EQ(RemotePaths::join("UD1:", "B.PNG"), "UD1:\\B.PNG");
}

TEST(RemoteListing, FilesFoldersSizesDatesAndOddLines)
{
    const QString listing = "drwxrwxrwx   1 root     root              0 Nov 20 08:15 VISION\r\n"
                            "-rw-rw-rw-   1 root     root         123456 Nov 21 10:05 REF 1.PNG\r\n"
                            "-rw-rw-rw-   1 root     root             12 Dec 30  2025 OLD.BMP\r\n"
                            "-rw-rw-rw-   1 root     root             12 Dec 30 23:59 FUTURE.PNG\r\n"
                            "drwxrwxrwx   1 root     root              0 Nov 20 08:15 .\r\n"
                            "drwxrwxrwx   1 root     root              0 Nov 20 08:15 ..\r\n"
                            "total 3\r\n"
                            "\r\n"
                            "garbage line\n";
    const auto entries = parseRemoteListing(listing, QDate(2026, 11, 22));
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_TRUE(entries[0].folder);
    EXPECT_EQ(entries[0].name, "VISION");
    EXPECT_FALSE(entries[1].folder);
    EXPECT_EQ(entries[1].name, "REF 1.PNG"); // a blank inside the name stays
    EXPECT_EQ(entries[1].size, 123456);
    EXPECT_EQ(entries[1].modified, QDateTime(QDate(2026, 11, 21), QTime(10, 5), Qt::UTC));
    EXPECT_EQ(entries[2].modified, QDateTime(QDate(2025, 12, 30), QTime(0, 0), Qt::UTC));
    // A date without a year that would lie ahead is last year's.
    EXPECT_EQ(entries[3].modified, QDateTime(QDate(2025, 12, 30), QTime(23, 59), Qt::UTC));
    EXPECT_TRUE(parseRemoteListing("").empty());
}

class RemoteFoldersSim : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ControllerClient::setDefaultTimeouts({3000, 5000, 1000});
        sim = std::make_unique<nxr::test::ControllerSimulator>();
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
    }
    static void TearDownTestSuite() { sim.reset(); }
    void SetUp() override { ASSERT_TRUE(sim->resetFaults()); }

    static std::unique_ptr<nxr::test::ControllerSimulator> sim;
};
std::unique_ptr<nxr::test::ControllerSimulator> RemoteFoldersSim::sim;

TEST_F(RemoteFoldersSim, ListsEachDeviceAndUploads)
{
    for (const QString& root : RemotePaths::rootFolders())
        ASSERT_TRUE(sim->writeFile(root + "DLGTEST\\PROBE.PNG", "x")) << root.toStdString();
    TransferFolders remote(sim->ftpPort(), sim->httpPort());
    QString error;
    ASSERT_TRUE(remote.connect(sim->host(), sim->user(), sim->password(), &error)) << error.toStdString();
    for (const QString& root : RemotePaths::rootFolders()) {
        std::vector<RemoteEntry> entries;
        ASSERT_TRUE(remote.list(root, &entries, &error)) << error.toStdString();
        const auto folder = std::find_if(entries.begin(), entries.end(),
                                         [](const RemoteEntry& e) { return e.name == "DLGTEST"; });
        ASSERT_NE(folder, entries.end()) << root.toStdString();
        EXPECT_TRUE(folder->folder);
        ASSERT_TRUE(remote.list(root + "DLGTEST", &entries, &error));
        ASSERT_EQ(entries.size(), 1u);
        EXPECT_EQ(entries[0].name, "PROBE.PNG");
        EXPECT_EQ(entries[0].size, 1);
    }
    const QString local = QDir::temp().filePath("dlg-upload-test.bin");
    QFile f(local);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("uploaded bytes");
    f.close();
    ASSERT_TRUE(remote.upload(local, "UD1:\\DLGTEST\\UP.BIN", &error)) << error.toStdString();
    EXPECT_EQ(sim->readFile("UD1:\\DLGTEST\\UP.BIN"), "uploaded bytes");
    QFile::remove(local);
}

TEST_F(RemoteFoldersSim, RefusedLoginAndControllerDownFailWithAReasonAndWithoutCredentials)
{
    ASSERT_TRUE(sim->setFault("refuse_login", 1));
    QString error;
    {
        TransferFolders remote(sim->ftpPort(), sim->httpPort());
        EXPECT_FALSE(remote.connect(sim->host(), sim->user(), "s3cret-pw", &error));
        EXPECT_FALSE(remote.isConnected());
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(error.contains("s3cret-pw"));
        std::vector<RemoteEntry> entries;
        EXPECT_FALSE(remote.list("MC:\\", &entries, &error));
    }
    ASSERT_TRUE(sim->resetFaults());
    // Nothing listening on the port: the connect fails quickly.
    TransferFolders nowhere(1, 1);
    QElapsedTimer clock;
    clock.start();
    error.clear();
    EXPECT_FALSE(nowhere.connect("127.0.0.1", "robot", "robot", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_LT(clock.elapsed(), 8000);
}

TEST_F(RemoteFoldersSim, TenThousandFilesListWhileTheEventLoopKeepsTurning)
{
    const QString folder = sim->localPathOf("MC:\\BIGDIR");
    ASSERT_TRUE(QDir().mkpath(folder));
    for (int i = 0; i < 10000; ++i) {
        QFile f(folder + QStringLiteral("/IMG%1.PNG").arg(i, 5, 10, QLatin1Char('0')));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    TransferFolders remote(sim->ftpPort(), sim->httpPort());
    QString error;
    ASSERT_TRUE(remote.connect(sim->host(), sim->user(), sim->password(), &error)) << error.toStdString();

    // A timer that should tick every 10 ms: the longest gap tells how long the loop was held.
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0;
    qint64 longest = 0;
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, clock.elapsed() - last);
        last = clock.elapsed();
        ++ticks;
    });
    ticker.start(10);
    std::vector<RemoteEntry> entries;
    ASSERT_TRUE(remote.list("MC:\\BIGDIR", &entries, &error)) << error.toStdString();
    ticker.stop();
    longest = std::max(longest, clock.elapsed() - last); // parsing after the last tick counts too
    EXPECT_EQ(entries.size(), 10000u);
    EXPECT_GT(ticks, 0);
    EXPECT_LT(longest, 500) << "event loop held for " << longest << " ms of " << clock.elapsed();
    std::printf("10000-file listing: %lld ms, %d ticks, longest gap %lld ms\n", clock.elapsed(), ticks,
                longest);
    QDir(folder).removeRecursively();
}

} // namespace
