// NXRFileTransferObject, NXRFileTransferCtl and the pool against the simulator.

#include "ControllerSimulator.h"
#include "TransferTestSupport.h"
#include "frame/Globals.h"
#include "transfer/ConnectionPool.h"
#include "transfer/NXRFileTransferCtl.h"
#include "transfer/NXRFileTransferObject.h"
#include "transfer/TransferCache.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

using nxr::ConnectionPool;
using nxr::TransferError;
using namespace nxr::test;

namespace {

// Error-trace lines written while the test runs.
QStringList g_errorTrace;
QtMessageHandler g_previous = nullptr;
void captureTrace(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (context.category && qstrcmp(context.category, "nexaro.error") == 0) {
        g_errorTrace << message;
        return;
    }
    if (g_previous)
        g_previous(type, context, message);
}

class FileTransferObjectTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static QTemporaryDir temp;
        qputenv("TMPDIR", temp.path().toUtf8());
        sim = new ControllerSimulator();
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
        nxr::ControllerClient::setDefaultTimeouts({3000, 1000, 1000});
    }
    static void TearDownTestSuite()
    {
        ConnectionPool::instance().clear();
        delete sim;
        sim = nullptr;
    }
    void SetUp() override
    {
        ASSERT_TRUE(sim->isRunning());
        ASSERT_TRUE(sim->resetFaults());
        ASSERT_TRUE(sim->clearLog());
        nxr::TransferCache::setVersionId(QString());
        QDir(nxr::Globals::storageFolder()).removeRecursively();
        QDir().mkpath(nxr::Globals::storageFolder());
        g_errorTrace.clear();
        g_previous = qInstallMessageHandler(captureTrace);
    }
    void TearDown() override
    {
        qInstallMessageHandler(g_previous);
        EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0) << "every object gave its connection back";
        ConnectionPool::instance().clear();
    }
    static void usePorts(NXRFileTransferObject& o)
    {
        o.setFTPPortNo(sim->ftpPort());
        o.setHTTPPortNo(sim->httpPort());
    }
    bool copy(NXRFileTransferObject& o, const QString& path, const QString& newName = {})
    {
        return o.CopyFile(sim->host(), path, sim->user(), sim->password(), newName);
    }
    QStringList ftpCommands() const { return sim->logLines("FTP> "); }
    QStringList httpRequests() const { return sim->logLines("HTTP> GET /"); }

    static ControllerSimulator* sim;
};

ControllerSimulator* FileTransferObjectTest::sim = nullptr;

TEST_F(FileTransferObjectTest, CopyFileTakesHttpFirst)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(copy(o, "MC:\\VISION\\GREY640.PNG")) << o.LastErrorString().toStdString();
    const QString local = nxr::Globals::storageFolder() + "/GREY640.PNG";
    EXPECT_EQ(o.lastLocalPath(), local);
    EXPECT_EQ(readAll(local), sim->readFile("MC:\\VISION\\GREY640.PNG"));
    EXPECT_TRUE(httpRequests().contains("MC/VISION/GREY640.PNG"));
    EXPECT_EQ(countStarting(ftpCommands(), "RETR"), 0);

    ASSERT_TRUE(copy(o, "MC:\\VISION\\TOOLS.TXT", "renamed.txt"));
    EXPECT_EQ(readAll(nxr::Globals::storageFolder() + "/renamed.txt"),
              sim->readFile("MC:\\VISION\\TOOLS.TXT"));
}

TEST_F(FileTransferObjectTest, ErrorPageFallsBackToFtpButLowerCaseTagIsAFile)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(sim->setFault("html_error", 1));
    ASSERT_TRUE(copy(o, "MC:\\VISION\\TOOLS.TXT")) << o.LastErrorString().toStdString();
    EXPECT_EQ(readAll(nxr::Globals::storageFolder() + "/TOOLS.TXT"), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_EQ(countOf(ftpCommands(), "RETR MC:\\VISION\\TOOLS.TXT"), 1);

    ASSERT_TRUE(sim->resetFaults());
    ASSERT_TRUE(sim->clearLog());
    const QByteArray page = "<html><body>a page that is the file</body></html>\r\n";
    ASSERT_TRUE(sim->writeFile("MC:\\WEB\\PAGE.HTM", page));
    ASSERT_TRUE(copy(o, "MC:\\WEB\\PAGE.HTM"));
    EXPECT_EQ(readAll(nxr::Globals::storageFolder() + "/PAGE.HTM"), page);
    EXPECT_EQ(countStarting(ftpCommands(), "RETR"), 0);
}

TEST_F(FileTransferObjectTest, MissingFileFailsWithoutLeavingAFile)
{
    NXRFileTransferObject o;
    usePorts(o);
    QSignalSpy errors(&o, &NXRFileTransferObject::OnError);
    EXPECT_FALSE(copy(o, "MC:\\VISION\\NOPE.PNG"));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in CopyFile: 550"))
        << o.LastErrorString().toStdString();
    EXPECT_EQ(errors.count(), 1);
    EXPECT_FALSE(QFile::exists(nxr::Globals::storageFolder() + "/NOPE.PNG"));
    EXPECT_TRUE(filesIn(nxr::Globals::storageFolder()).isEmpty());
}

TEST_F(FileTransferObjectTest, DroppedDownloadLeavesNoFile)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\DATA.BIN", QByteArray(300000, 'd')));
    ASSERT_TRUE(sim->setFault("drop_after", 20000));
    EXPECT_FALSE(copy(o, "MC:\\BIG\\DATA.BIN"));
    EXPECT_TRUE(filesIn(nxr::Globals::storageFolder()).isEmpty())
        << filesIn(nxr::Globals::storageFolder()).join(',').toStdString();
}

TEST_F(FileTransferObjectTest, VersionCacheIsReusedWithoutNetwork)
{
    NXRFileTransferObject first;
    usePorts(first);
    first.setVersionID("x1.23/b");
    EXPECT_EQ(first.VersionID(), "X1.23/B");
    EXPECT_TRUE(first.overwriteFlag()) << "an empty version cache is filled";
    ASSERT_TRUE(copy(first, "MC:\\VISION\\TOOLS.TXT"));
    const QString cached = nxr::Globals::storageFolder() + "/X123B/TOOLS.TXT";
    EXPECT_TRUE(QFile::exists(cached));
    EXPECT_TRUE(first.FileExists("TOOLS.TXT", "x1.23/b"));
    EXPECT_FALSE(first.FileExists("TOOLS.TXT", ""));

    // A later object finds the version's cache filled: no network at all, not even to a dead host.
    ASSERT_TRUE(sim->clearLog());
    NXRFileTransferObject second;
    EXPECT_FALSE(second.overwriteFlag());
    EXPECT_TRUE(second.CopyFile("127.0.0.1:1", "MC:\\VISION\\TOOLS.TXT", "u", "p", ""));
    EXPECT_TRUE(sim->logLines("FTP> ").isEmpty());
    EXPECT_TRUE(sim->logLines("HTTP> GET /MC").isEmpty());
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);
    nxr::TransferCache::setVersionId(QString());
}

TEST_F(FileTransferObjectTest, LocalNamesStayInsideTheCache)
{
    NXRFileTransferObject o;
    usePorts(o);
    for (const QString& name :
         {QString(".."), QString("../evil.txt"), QString("/tmp/evil.txt"), QString("a\\b")}) {
        EXPECT_FALSE(copy(o, "MC:\\VISION\\TOOLS.TXT", name)) << name.toStdString();
        EXPECT_TRUE(o.LastErrorString().startsWith("Error in CopyFile: Invalid local file name"))
            << o.LastErrorString().toStdString();
    }
    EXPECT_FALSE(copy(o, "MC:\\../../evil.txt"));
    EXPECT_FALSE(copy(o, "MC:\\VISION\\TOOLS.TXT\r\nDELE MC:\\SUMMARY.DG"));
    EXPECT_TRUE(sim->logLines("FTP> ").isEmpty());
    EXPECT_FALSE(QFile::exists(QFileInfo(nxr::Globals::storageFolder()).absolutePath() + "/evil.txt"));
    EXPECT_FALSE(o.FileExists("../TORVIK/x", ""));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in FileExists: Invalid local file name"));
}

TEST_F(FileTransferObjectTest, PortChangesReconnect)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(o.ConnectRobot("Display", sim->host(), sim->user(), sim->password()));
    EXPECT_EQ(o.client()->FtpState(), 1);
    EXPECT_EQ(o.client()->HttpState(), 1);
    EXPECT_EQ(o.currentDirectory(), "\\");
    const int logins = countStarting(ftpCommands(), "USER");

    o.setHTTPPortNo(sim->httpPort()); // same value: nothing happens
    EXPECT_EQ(countStarting(ftpCommands(), "USER"), logins);

    QSignalSpy errors(&o, &NXRFileTransferObject::OnError);
    o.setHTTPPortNo(1); // nothing listens there
    EXPECT_EQ(o.HTTPPortNo(), 1);
    EXPECT_EQ(countStarting(ftpCommands(), "USER"), logins + 1) << "both sessions were opened again";
    EXPECT_EQ(errors.count(), 1);
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in HTTPPortNo: ")) << o.LastErrorString().toStdString();
    EXPECT_EQ(o.client()->FtpState(), 1);
    EXPECT_EQ(o.client()->HttpState(), 0);

    o.SetProperty("HTTPPortNo", QString::number(sim->httpPort()));
    EXPECT_EQ(o.client()->HttpState(), 1);
    o.SetProperty("FTPPortNo", "70000");
    EXPECT_EQ(o.FTPPortNo(), sim->ftpPort());
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, PoolSharesForceFreesAndRunsOut)
{
    NXRFileTransferObject a, b;
    usePorts(a);
    usePorts(b);
    ASSERT_TRUE(a.ConnectRobot("A", sim->host(), sim->user(), sim->password()));
    ASSERT_TRUE(b.ConnectRobot("B", sim->host(), sim->user(), sim->password()));
    EXPECT_EQ(a.client(), b.client());
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 1);
    EXPECT_EQ(ConnectionPool::instance().usersOf(sim->host()), QStringList({"A", "B"}));
    EXPECT_EQ(countStarting(ftpCommands(), "USER"), 1) << "the second user found the session open";

    const auto shared = a.client();
    a.DisconnectRobot(true);
    EXPECT_EQ(a.client(), nullptr);
    EXPECT_TRUE(shared->isRetired());
    EXPECT_EQ(shared->FtpState(), 0);
    const auto fresh = ConnectionPool::instance().clientOf(sim->host());
    ASSERT_NE(fresh, nullptr);
    EXPECT_NE(fresh, shared);
    EXPECT_EQ(ConnectionPool::instance().usersOf(sim->host()), QStringList({"B"}));

    // B goes on over the fresh client, reconnecting on its own.
    const QStringList files = b.FileListing("MC:\\VISION");
    EXPECT_TRUE(files.contains("TOOLS.TXT"));
    EXPECT_EQ(b.client(), fresh);
    b.DisconnectRobot(false);
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);

    // Ten servers fill the pool; an eleventh gets nothing until one is given back.
    for (int i = 1; i <= 10; ++i)
        ASSERT_NE(nxr::gfobj_GetFTPObject("T", QString("127.0.0.%1").arg(i)), nullptr);
    EXPECT_EQ(nxr::gfobj_GetFTPObject("T", "127.0.0.11"), nullptr);
    EXPECT_TRUE(g_errorTrace.join("").contains("could not allocate new FTP object for 127.0.0.11"));
    EXPECT_EQ(nxr::gfobj_GetFTPObject("U", "127.0.0.3"), ConnectionPool::instance().clientOf("127.0.0.3"));
    nxr::gsub_FreeFTPObject("T", "127.0.0.3", false);
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 10) << "U still uses it";
    nxr::gsub_FreeFTPObject("U", "127.0.0.3", false);
    EXPECT_NE(nxr::gfobj_GetFTPObject("T", "127.0.0.11"), nullptr);
    ConnectionPool::instance().clear();
}

TEST_F(FileTransferObjectTest, ServerWithPortKeysThePoolButConnectsToTheHost)
{
    NXRFileTransferObject o;
    usePorts(o);
    const QString server = sim->host() + ":8080";
    ASSERT_TRUE(o.ConnectRobot("Display", server, sim->user(), sim->password()));
    EXPECT_NE(ConnectionPool::instance().clientOf(server), nullptr);
    EXPECT_EQ(ConnectionPool::instance().clientOf(sim->host()), nullptr);
    ASSERT_TRUE(o.CopyFile(server, "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ""));
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, ListingsAndTheirCache)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(o.ConnectRobot("Dialog", sim->host(), sim->user(), sim->password()));
    ASSERT_TRUE(sim->writeFile("MC:\\VISION\\SUB\\X.TXT", "x"));
    EXPECT_EQ(o.FileListing("MC:\\VISION"), QStringList({"COLOR800.JPG", "GREY640.PNG", "TOOLS.TXT"}));
    EXPECT_EQ(o.FolderListing("MC:\\VISION"), QStringList({"SUB"}));

    ASSERT_TRUE(sim->setFault("lowercase_list", 1));
    EXPECT_EQ(o.FileListing("MC:\\VISION"), QStringList({"COLOR800.JPG", "GREY640.PNG", "TOOLS.TXT"}));
    ASSERT_TRUE(sim->resetFaults());

    for (int i = 0; i < 202; ++i) {
        ASSERT_TRUE(sim->writeFile(QString("UD1:\\MANY202\\F%1.TXT").arg(i, 3, 10, QChar('0')), "m"));
        if (i < 201) {
            ASSERT_TRUE(sim->writeFile(QString("UD1:\\MANY201\\F%1.TXT").arg(i, 3, 10, QChar('0')), "m"));
        }
    }
    ASSERT_TRUE(sim->clearLog());
    EXPECT_EQ(o.FileListing("UD1:\\MANY202").size(), 202);
    EXPECT_EQ(o.FileListing("UD1:\\MANY202").size(), 202);
    EXPECT_EQ(countOf(ftpCommands(), "LIST UD1:\\MANY202"), 1) << "a listing of 202 names is reused";
    EXPECT_EQ(o.FileListing("UD1:\\MANY201").size(), 201);
    EXPECT_EQ(o.FileListing("UD1:\\MANY201").size(), 201);
    EXPECT_EQ(countOf(ftpCommands(), "LIST UD1:\\MANY201"), 2) << "one of 201 names is fetched again";

    // An empty folder: one empty name per line of the (empty) answer.
    ASSERT_TRUE(QDir().mkpath(sim->localPathOf("TD:\\EMPTY")));
    EXPECT_EQ(o.FileListing("TD:\\EMPTY"), QStringList{QString()});
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, RetryRules)
{
    NXRFileTransferObject o;
    usePorts(o);
    QTemporaryDir local;
    const QString file = local.filePath("up.txt");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("payload");
    f.close();

    try {
        o.UploadFile("Masks", file, sim->host(), "MC:\\NOFOLDER\\UP.TXT", sim->user(), sim->password(), -1);
        FAIL() << "upload into a missing folder succeeded";
    } catch (const TransferError& e) {
        EXPECT_EQ(e.number(), 550) << e.description().toStdString();
    }
    EXPECT_EQ(countOf(ftpCommands(), "STOR MC:\\NOFOLDER\\UP.TXT"), 3) << "-1 means three attempts";
    ASSERT_TRUE(sim->clearLog());
    EXPECT_THROW(
        o.UploadFile("Masks", file, sim->host(), "MC:\\NOFOLDER\\UP.TXT", sim->user(), sim->password(), 1),
        TransferError);
    EXPECT_EQ(countOf(ftpCommands(), "STOR MC:\\NOFOLDER\\UP.TXT"), 2);
    EXPECT_TRUE(o.UploadFile("Masks", file, sim->host(), "TD:\\UP.TXT", sim->user(), sim->password(), -1));
    EXPECT_EQ(sim->readFile("TD:\\UP.TXT"), QByteArray("payload"));

    ASSERT_TRUE(sim->clearLog());
    EXPECT_THROW(o.ChangeDirectory("MC:\\NO_SUCH", -1), TransferError);
    EXPECT_EQ(countOf(ftpCommands(), "cwd MC:\\NO_SUCH"), 3);
    try {
        o.ChangeDirectory("MC:\\*BAD", -1);
        FAIL() << "a refused path was accepted";
    } catch (const TransferError& e) {
        EXPECT_TRUE(e.description().contains("501"));
    }
    EXPECT_EQ(countOf(ftpCommands(), "cwd MC:\\*BAD"), 1) << "a 501 answer is not retried";

    o.ChangeDirectory("MC:\\VISION", -1);
    EXPECT_EQ(o.currentDirectory(), "MC:\\VISION");
    EXPECT_TRUE(o.mfstr_GetDirectoryList("", false, -1).split("\r\n").contains("TOOLS.TXT"));

    const QString drives = o.DriveList();
    for (const char* device : {"MC:", "UD1:", "MCV:", "UT1:", "TD:", "MD:", "MDB:", "FR:"})
        EXPECT_TRUE(drives.split("\r\n").contains(device)) << drives.toStdString();

    ASSERT_TRUE(sim->clearLog());
    EXPECT_THROW(o.ChangeDirectory("MC:\\A\r\nDELE MC:\\SUMMARY.DG", -1), TransferError);
    EXPECT_THROW(o.FileListing("MC:\\A\nDELE X"), TransferError);
    EXPECT_TRUE(ftpCommands().isEmpty()) << ftpCommands().join('\n').toStdString();
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, ReentrantCopiesShareTheConnectionSafely)
{
    // A timer (live mode, say) starts a second copy while the first one waits; both use the
    // "External" key of the same server, and the inner one gives it back first.
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\LARGE.BIN", QByteArray(200 * 1024, 'L')));
    ASSERT_TRUE(sim->setFault("rate", 1024 * 1024)); // the outer copy takes about 0.2 s
    NXRFileTransferObject outer, inner;
    usePorts(outer);
    usePorts(inner);
    bool innerOk = false;
    bool innerRan = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (innerRan || !outer.client() || !outer.client()->isBusy() || outer.client()->HttpState() <= 0)
            return;
        innerRan = true; // while the outer download is running
        innerOk = copy(inner, "MC:\\VISION\\TOOLS.TXT");
    });
    poll.start(0);
    EXPECT_TRUE(copy(outer, "MC:\\BIG\\LARGE.BIN")) << outer.LastErrorString().toStdString();
    EXPECT_TRUE(innerRan);
    EXPECT_TRUE(innerOk) << inner.LastErrorString().toStdString();
    EXPECT_EQ(QFileInfo(outer.lastLocalPath()).size(), 200 * 1024);
    EXPECT_EQ(readAll(inner.lastLocalPath()), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
}

TEST_F(FileTransferObjectTest, ScriptMembersReportInsteadOfThrowing)
{
    NXRFileTransferObject o;
    usePorts(o);
    QSignalSpy errors(&o, &NXRFileTransferObject::OnError);
    EXPECT_EQ(o.ListFiles(sim->host(), "MC:\\VISION", sim->user(), sim->password()),
              QStringList({"COLOR800.JPG", "GREY640.PNG", "TOOLS.TXT"}));
    EXPECT_TRUE(o.ListDrives(sim->host(), sim->user(), sim->password()).contains("MDB:"));
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);

    ASSERT_TRUE(copy(o, "MC:\\VISION\\TOOLS.TXT", "mine.txt"));
    EXPECT_TRUE(o.UploadCachedFile(sim->host(), "mine.txt", "TD:\\MINE.TXT", sim->user(), sim->password()));
    EXPECT_EQ(sim->readFile("TD:\\MINE.TXT"), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_EQ(errors.count(), 0);

    // Only files of the cache go up; failures become LastErrorString and one OnError each.
    EXPECT_FALSE(
        o.UploadCachedFile(sim->host(), "../../etc/passwd", "TD:\\X.TXT", sim->user(), sim->password()));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in UploadCachedFile: Invalid local file name"));
    EXPECT_FALSE(
        o.UploadCachedFile(sim->host(), "mine.txt", "TD:\\NOFOLDER\\X.TXT", sim->user(), sim->password()));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in UploadCachedFile: 550"))
        << o.LastErrorString().toStdString();
    EXPECT_TRUE(o.ListFolders(sim->host(), "MC:\\NO_SUCH", sim->user(), sim->password()).isEmpty());
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in ListFolders: 550"))
        << o.LastErrorString().toStdString();
    EXPECT_EQ(errors.count(), 3);
    EXPECT_FALSE(sim->readFile("TD:\\X.TXT").size() > 0);
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);
}

TEST_F(FileTransferObjectTest, DriveListNeedsAnOpenSession)
{
    NXRFileTransferObject o;
    EXPECT_EQ(o.DriveList(), QString());
    EXPECT_TRUE(sim->logLines("FTP> ").isEmpty());
}

TEST_F(FileTransferObjectTest, PoolSurvivesAControllerRestart)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(o.ConnectRobot("Display", sim->host(), sim->user(), sim->password()));
    ASSERT_TRUE(o.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ""));
    const auto client = o.client();
    ASSERT_TRUE(sim->restart(0.5));
    ASSERT_TRUE(o.CopyFile(sim->host(), "MC:\\VISION\\GREY640.PNG", sim->user(), sim->password(), ""))
        << o.LastErrorString().toStdString();
    EXPECT_EQ(readAll(nxr::Globals::storageFolder() + "/GREY640.PNG"),
              sim->readFile("MC:\\VISION\\GREY640.PNG"));
    EXPECT_EQ(o.client(), client) << "the same pooled client reconnected";
    EXPECT_TRUE(o.FileListing("MC:\\VISION").contains("TOOLS.TXT"));
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, DeadControllerGivesAClearErrorQuickly)
{
    NXRFileTransferObject o;
    o.setFTPPortNo(1);
    o.setHTTPPortNo(1);
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(o.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", "operator7", "Secr3tPw", ""));
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(o.LastErrorString(), "Could not connect to host " + sim->host());
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0) << "External gave its slot back";
}

TEST_F(FileTransferObjectTest, NoCredentialsInErrorsOrTraces)
{
    NXRFileTransferObject o;
    usePorts(o);
    ASSERT_TRUE(sim->setFault("refuse_login", 1));
    ASSERT_TRUE(sim->setFault("http_down", 1));
    EXPECT_FALSE(o.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", "operator7", "Secr3tPw", ""));
    const QString all = o.LastErrorString() + g_errorTrace.join("");
    EXPECT_FALSE(all.isEmpty());
    EXPECT_FALSE(all.contains("Secr3tPw")) << all.toStdString();
    EXPECT_FALSE(all.contains("operator7")) << all.toStdString();
}

TEST_F(FileTransferObjectTest, VersionAndFolderMembers)
{
    NXRFileTransferObject o;
    EXPECT_TRUE(o.CheckVNUM(64));
    EXPECT_FALSE(o.CheckVNUM(65));
    EXPECT_TRUE(o.CheckVNUM(-1));
    EXPECT_EQ(o.StorageFolder(), nxr::Globals::storageFolder() + "/");
    EXPECT_TRUE(QRegularExpression("^V\\d\\.\\d\\d[A-Z]/\\d\\d$").match(o.NXRBuildID()).hasMatch());
    EXPECT_EQ(o.GetProperty("NXRBuildID"), o.NXRBuildID());
    o.SetProperty("VersionID", " v9.40p/01 ");
    EXPECT_EQ(o.VersionID(), "V9.40P/01");
    EXPECT_TRUE(QDir(nxr::Globals::storageFolder() + "/V940P01").exists());
    EXPECT_EQ(o.HTTPPortNo(), 80);
    EXPECT_EQ(o.FTPPortNo(), 21);
    nxr::TransferCache::setVersionId(QString());
}

TEST_F(FileTransferObjectTest, ControlForwardsCopyFile)
{
    NXRFileTransferCtl ctl;
    EXPECT_FALSE(ctl.isVisible());
    QSignalSpy errors(&ctl, &NXRFileTransferCtl::OnError);
    ctl.SetProperty("Anything", "1");
    EXPECT_EQ(ctl.LastErrorString(), "Error: unknown property (Anything)");
    EXPECT_EQ(ctl.GetProperty("Other"), "");
    EXPECT_EQ(ctl.GetProperty("LastErrorString"), "Error: unknown property (Other)");

    EXPECT_FALSE(ctl.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ".."));
    EXPECT_TRUE(ctl.LastErrorString().startsWith("Error in CopyFile: Invalid local file name"))
        << ctl.LastErrorString().toStdString();
    ASSERT_NE(ctl.transferObject(), nullptr);
    usePorts(*ctl.transferObject());
    EXPECT_TRUE(ctl.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ""));
    EXPECT_TRUE(QFile::exists(nxr::Globals::storageFolder() + "/TOOLS.TXT"));
    EXPECT_EQ(errors.count(), 3);
}

} // namespace
