// NXRFileTransferObject, NXRFileTransferCtl and the pool against the simulator.

#include "TransferTestSupport.h"
#include "frame/Globals.h"
#include "transfer/ConnectionPool.h"
#include "transfer/NXRFileTransferCtl.h"
#include "transfer/NXRFileTransferObject.h"
#include "transfer/TransferCache.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTimer>

#include <functional>
#include <vector>

using nxr::ConnectionPool;
using nxr::TransferError;
using namespace nxr::test;

namespace {

// Error-trace lines written while the test runs.
QStringList g_errorTrace;
QtMessageHandler g_previous = nullptr;
void captureTrace(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (context.category && qstrcmp(context.category, "nexaro.error") == 0)
        g_errorTrace << message;
    else if (g_previous)
        g_previous(type, context, message);
}

class FileTransferObjectTest : public SimulatorTest
{
protected:
    static void SetUpTestSuite()
    {
        static QTemporaryDir temp;
        qputenv("TMPDIR", temp.path().toUtf8());
        SimulatorTest::SetUpTestSuite();
        nxr::ControllerClient::setDefaultTimeouts({3000, 1000, 1000});
    }
    static void TearDownTestSuite()
    {
        ConnectionPool::instance().clear();
        SimulatorTest::TearDownTestSuite();
    }
    void SetUp() override
    {
        SimulatorTest::SetUp();
        nxr::TransferCache::setVersionId(QString());
        QDir(nxr::Globals::storageFolder()).removeRecursively();
        QDir().mkpath(nxr::Globals::storageFolder());
        g_errorTrace.clear();
        g_previous = qInstallMessageHandler(captureTrace);
        usePorts(o);
    }
    void TearDown() override
    {
        qInstallMessageHandler(g_previous);
        nxr::TransferCache::setVersionId(QString());
        EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0) << "every object gave its connection back";
        ConnectionPool::instance().clear();
    }
    static void usePorts(NXRFileTransferObject& object)
    {
        object.setFTPPortNo(sim->ftpPort());
        object.setHTTPPortNo(sim->httpPort());
    }
    static bool copy(NXRFileTransferObject& object, const QString& path, const QString& newName = {})
    {
        return object.CopyFile(sim->host(), path, sim->user(), sim->password(), newName);
    }
    bool copy(const QString& path, const QString& newName = {}) { return copy(o, path, newName); }
    bool connectRobot(NXRFileTransferObject& object, const QString& key, const QString& server = sim->host())
    {
        return object.ConnectRobot(key, server, sim->user(), sim->password());
    }
    static QString cached(const QString& name) { return nxr::Globals::storageFolder() + "/" + name; }

    NXRFileTransferObject o;
};

TEST_F(FileTransferObjectTest, CopyTakesHttpFirstAndFtpOnlyForAnErrorPage)
{
    // Only an error page ("<HTML>" in capitals) sends the copy to FTP; a lower-case page is the file.
    ASSERT_TRUE(
        sim->writeFile("MC:\\WEB\\PAGE.HTM", "<html><body>a page that is the file</body></html>\r\n"));
    const struct
    {
        const char* path;
        const char* newName;
        const char* local;
        bool errorPage;
    } cases[] = {{"MC:\\VISION\\GREY640.PNG", "", "GREY640.PNG", false},
                 {"MC:\\VISION\\TOOLS.TXT", "renamed.txt", "renamed.txt", false},
                 {"MC:\\VISION\\TOOLS.TXT", "", "TOOLS.TXT", true},
                 {"MC:\\WEB\\PAGE.HTM", "", "PAGE.HTM", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        ASSERT_TRUE(sim->resetFaults() && sim->clearLog() &&
                    (!c.errorPage || sim->setFault("html_error", 1)));
        ASSERT_TRUE(copy(c.path, c.newName)) << o.LastErrorString().toStdString();
        EXPECT_EQ(o.lastLocalPath(), cached(c.local));
        EXPECT_EQ(readAll(cached(c.local)), sim->readFile(c.path));
        EXPECT_EQ(countOf(sim->logLines("HTTP> "), "GET " + urlOf(c.path)), 1);
        EXPECT_EQ(countStarting(ftpCommands(), "RETR"), c.errorPage ? 1 : 0);
        EXPECT_EQ(countOf(ftpCommands(), QString("RETR ") + c.path), c.errorPage ? 1 : 0);
    }
}

TEST_F(FileTransferObjectTest, FailedCopiesReportOnceLeaveNoFileAndNoCredentials)
{
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\DATA.BIN", QByteArray(300000, 'd')));
    const struct
    {
        const char* path;
        std::vector<std::pair<QString, int>> faults;
        bool deadPorts;
        bool foreignLogin;
        QString error;
    } cases[] = {
        {"MC:\\VISION\\NOPE.PNG", {}, false, false, "Error in CopyFile: 550"},
        {"MC:\\BIG\\DATA.BIN", {{"drop_after", 20000}}, false, false, "Error in CopyFile: "},
        {"MC:\\VISION\\TOOLS.TXT", {{"refuse_login", 1}, {"http_down", 1}}, false, true, "Error in "},
        {"MC:\\VISION\\TOOLS.TXT", {}, true, true, "Could not connect to host " + sim->host()}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        ASSERT_TRUE(sim->resetFaults());
        for (const auto& [name, value] : c.faults)
            ASSERT_TRUE(sim->setFault(name, value));
        NXRFileTransferObject failing;
        failing.setFTPPortNo(c.deadPorts ? 1 : sim->ftpPort());
        failing.setHTTPPortNo(c.deadPorts ? 1 : sim->httpPort());
        QSignalSpy errors(&failing, &NXRFileTransferObject::OnError);
        g_errorTrace.clear();
        QElapsedTimer clock;
        clock.start();
        EXPECT_FALSE(c.foreignLogin ? failing.CopyFile(sim->host(), c.path, "operator7", "Secr3tPw", "")
                                    : copy(failing, c.path));
        EXPECT_LT(clock.elapsed(), 5000);
        EXPECT_TRUE(failing.LastErrorString().startsWith(c.error)) << failing.LastErrorString().toStdString();
        EXPECT_EQ(errors.count(), 1);
        EXPECT_TRUE(filesIn(nxr::Globals::storageFolder()).isEmpty())
            << filesIn(nxr::Globals::storageFolder()).join(',').toStdString();
        const QString all = failing.LastErrorString() + g_errorTrace.join("");
        EXPECT_FALSE(all.contains("Secr3tPw") || all.contains("operator7")) << all.toStdString();
        EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0) << "External gave its slot back";
    }
}

TEST_F(FileTransferObjectTest, VersionCacheIsReusedWithoutNetwork)
{
    o.SetProperty("VersionID", " x1.23/b ");
    EXPECT_EQ(o.VersionID(), "X1.23/B");
    EXPECT_TRUE(o.overwriteFlag()) << "an empty version cache is filled";
    ASSERT_TRUE(copy("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_TRUE(QFile::exists(cached("X123B/TOOLS.TXT")));
    EXPECT_TRUE(o.FileExists("TOOLS.TXT", "x1.23/b"));
    EXPECT_FALSE(o.FileExists("TOOLS.TXT", ""));

    // A later object finds the version's cache filled: no network at all, not even to a dead host.
    ASSERT_TRUE(sim->clearLog());
    NXRFileTransferObject second;
    EXPECT_FALSE(second.overwriteFlag());
    EXPECT_TRUE(second.CopyFile("127.0.0.1:1", "MC:\\VISION\\TOOLS.TXT", "u", "p", ""));
    EXPECT_TRUE(ftpCommands().isEmpty());
    EXPECT_TRUE(sim->logLines("HTTP> GET /MC").isEmpty());
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);
}

TEST_F(FileTransferObjectTest, LocalNamesStayInsideTheCacheAndTheControlForwards)
{
    NXRFileTransferCtl ctl;
    QSignalSpy errors(&ctl, &NXRFileTransferCtl::OnError);
    // Which names are refused is checkLocalName's (ControllerPathsTest); here that each member asks it.
    EXPECT_FALSE(copy(o, "MC:\\VISION\\TOOLS.TXT", "../evil.txt"));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in CopyFile: Invalid local file name"));
    EXPECT_FALSE(ctl.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ".."));
    EXPECT_TRUE(ctl.LastErrorString().startsWith("Error in CopyFile: Invalid local file name"));
    ASSERT_NE(ctl.transferObject(), nullptr);
    usePorts(*ctl.transferObject());
    EXPECT_FALSE(copy("MC:\\../../evil.txt"));
    EXPECT_TRUE(ftpCommands().isEmpty());
    EXPECT_FALSE(QFile::exists(QFileInfo(nxr::Globals::storageFolder()).absolutePath() + "/evil.txt"));
    EXPECT_FALSE(o.FileExists("../TORVIK/x", ""));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in FileExists: Invalid local file name"));

    EXPECT_TRUE(ctl.CopyFile(sim->host(), "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ""));
    EXPECT_TRUE(QFile::exists(cached("TOOLS.TXT")));
    EXPECT_EQ(errors.count(), 1);
}

TEST_F(FileTransferObjectTest, PortChangesReconnect)
{
    ASSERT_TRUE(connectRobot(o, "Display"));
    EXPECT_EQ(o.client()->FtpState(), 1);
    EXPECT_EQ(o.client()->HttpState(), 1);
    EXPECT_EQ(o.currentDirectory(), "\\");
    const int logins = countStarting(ftpCommands(), "USER");
    o.setHTTPPortNo(sim->httpPort()); // same value: nothing happens
    EXPECT_EQ(countStarting(ftpCommands(), "USER"), logins);

    QSignalSpy errors(&o, &NXRFileTransferObject::OnError);
    o.setHTTPPortNo(1); // nothing listens there
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
    NXRFileTransferObject b;
    usePorts(b);
    const auto slotOf = [](const QString& server) {
        return ConnectionPool::slotName(server, sim->ftpPort(), sim->httpPort());
    };
    ASSERT_TRUE(connectRobot(o, "A"));
    ASSERT_TRUE(connectRobot(b, "B"));
    EXPECT_EQ(o.client(), b.client());
    EXPECT_EQ(ConnectionPool::instance().usersOf(slotOf(sim->host())), QStringList({"A", "B"}));
    EXPECT_EQ(countStarting(ftpCommands(), "USER"), 1) << "the second user found the session open";

    const auto shared = o.client();
    o.DisconnectRobot(true);
    EXPECT_EQ(o.client(), nullptr);
    EXPECT_TRUE(shared->isRetired());
    EXPECT_EQ(shared->FtpState(), 0);
    const auto fresh = ConnectionPool::instance().clientOf(slotOf(sim->host()));
    ASSERT_NE(fresh, nullptr);
    EXPECT_NE(fresh, shared);
    EXPECT_EQ(ConnectionPool::instance().usersOf(slotOf(sim->host())), QStringList({"B"}));
    // B goes on over the fresh client, reconnecting on its own.
    EXPECT_TRUE(b.FileListing("MC:\\VISION").contains("TOOLS.TXT"));
    EXPECT_EQ(b.client(), fresh);
    b.DisconnectRobot(false);
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 0);

    // A server with a port keys the pool but connects to the host.
    const QString server = sim->host() + ":8080";
    ASSERT_TRUE(connectRobot(o, "Display", server));
    EXPECT_NE(ConnectionPool::instance().clientOf(slotOf(server)), nullptr);
    EXPECT_EQ(ConnectionPool::instance().clientOf(slotOf(sim->host())), nullptr);
    ASSERT_TRUE(o.CopyFile(server, "MC:\\VISION\\TOOLS.TXT", sim->user(), sim->password(), ""));
    o.DisconnectRobot(false);

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

// Two controllers on one address (two simulators, or a gateway forwarding ports) are two pool
// slots: neither object's connection is taken over by the other, and changing an object's ports
// moves it to the other controller's slot without disturbing the connection it leaves.
TEST_F(FileTransferObjectTest, ControllersOnOneAddressKeepTheirOwnConnections)
{
    ControllerSimulator other;
    ASSERT_TRUE(other.start()) << other.errorText().toStdString();
    ASSERT_EQ(other.host(), sim->host());
    ASSERT_TRUE(sim->writeFile("MC:\\WHO.TXT", "first"));
    ASSERT_TRUE(other.writeFile("MC:\\WHO.TXT", "second"));
    NXRFileTransferObject b;
    b.setFTPPortNo(other.ftpPort());
    b.setHTTPPortNo(other.httpPort());
    ASSERT_TRUE(connectRobot(o, "A"));
    ASSERT_TRUE(b.ConnectRobot("B", other.host(), other.user(), other.password()));
    EXPECT_NE(o.client(), b.client());
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 2);
    ASSERT_TRUE(copy(o, "MC:\\WHO.TXT", "A.TXT"));
    ASSERT_TRUE(b.CopyFile(other.host(), "MC:\\WHO.TXT", other.user(), other.password(), "B.TXT"));
    EXPECT_EQ(readAll(cached("A.TXT")), "first");
    EXPECT_EQ(readAll(cached("B.TXT")), "second");

    const auto first = o.client();
    b.setFTPPortNo(sim->ftpPort());
    b.setHTTPPortNo(sim->httpPort());
    EXPECT_EQ(b.client(), first) << "b joined the first controller's connection";
    EXPECT_EQ(first->FtpState(), 1);
    EXPECT_EQ(ConnectionPool::instance().usedSlots(), 1) << "the second controller's slot was given back";
    ASSERT_TRUE(b.CopyFile(sim->host(), "MC:\\WHO.TXT", sim->user(), sim->password(), "B.TXT"));
    EXPECT_EQ(readAll(cached("B.TXT")), "first");
    b.DisconnectRobot(false);
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, ListingsAndTheirCache)
{
    ASSERT_TRUE(connectRobot(o, "Dialog"));
    ASSERT_TRUE(sim->writeFile("MC:\\VISION\\SUB\\X.TXT", "x"));
    const QStringList vision{"COLOR800.JPG", "GREY640.PNG", "TOOLS.TXT"};
    EXPECT_EQ(o.FileListing("MC:\\VISION"), vision);
    EXPECT_EQ(o.FolderListing("MC:\\VISION"), QStringList({"SUB"}));

    // A listing of 202 names is reused; one of 201 names is fetched again.
    for (int i = 0; i < 202; ++i) {
        const QString name = QString("\\F%1.TXT").arg(i, 3, 10, QChar('0'));
        ASSERT_TRUE(sim->writeFile("UD1:\\MANY202" + name, "m"));
        ASSERT_TRUE(i == 201 || sim->writeFile("UD1:\\MANY201" + name, "m"));
    }
    ASSERT_TRUE(sim->clearLog());
    for (const int size : {202, 201}) {
        const QString folder = QString("UD1:\\MANY%1").arg(size);
        EXPECT_EQ(o.FileListing(folder).size(), size);
        EXPECT_EQ(o.FileListing(folder).size(), size);
        EXPECT_EQ(countOf(ftpCommands(), "LIST " + folder), size == 202 ? 1 : 2);
    }
    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, RetryRulesAndSessionMembers)
{
    QTemporaryDir local;
    const QString file = local.filePath("up.txt");
    ASSERT_TRUE(writeLocal(file, "payload"));
    const auto upload = [&](const QString& target, int retries) {
        return o.UploadFile("Masks", file, sim->host(), target, sim->user(), sim->password(), retries);
    };
    EXPECT_EQ(o.DriveList(), QString()) << "no open session, no listing";
    EXPECT_TRUE(o.CheckVNUM(64) && o.CheckVNUM(-1) && !o.CheckVNUM(65)) << "the object's own version rule";
    // -1 means three attempts, n means n + 1; a "501" answer is not retried.
    const struct
    {
        std::function<void()> call;
        QString sent;
        int times;
        int number;
        QString text;
    } cases[] = {{[&] { upload("MC:\\NOFOLDER\\UP.TXT", -1); }, "STOR MC:\\NOFOLDER\\UP.TXT", 3, 550, ""},
                 {[&] { upload("MC:\\NOFOLDER\\UP.TXT", 1); }, "STOR MC:\\NOFOLDER\\UP.TXT", 2, 550, ""},
                 {[&] { o.ChangeDirectory("MC:\\NO_SUCH", -1); }, "cwd MC:\\NO_SUCH", 3, 550, ""},
                 {[&] { o.ChangeDirectory("MC:\\*BAD", -1); }, "cwd MC:\\*BAD", 1, 0, "501"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sent.toStdString());
        ASSERT_TRUE(sim->clearLog());
        try {
            c.call();
            ADD_FAILURE() << "the command succeeded";
        } catch (const TransferError& e) {
            EXPECT_TRUE(c.number ? e.number() == c.number : e.description().contains(c.text))
                << e.number() << " " << e.description().toStdString();
        }
        EXPECT_EQ(countOf(ftpCommands(), c.sent), c.times);
    }
    EXPECT_TRUE(upload("TD:\\UP.TXT", -1));
    EXPECT_EQ(sim->readFile("TD:\\UP.TXT"), QByteArray("payload"));

    o.ChangeDirectory("MC:\\VISION", -1);
    EXPECT_EQ(o.currentDirectory(), "MC:\\VISION");
    EXPECT_TRUE(o.mfstr_GetDirectoryList("", false, -1).split("\r\n").contains("TOOLS.TXT"));
    const QStringList drives = o.DriveList().split("\r\n");
    for (const char* device : {"MC:", "UD1:", "MCV:", "UT1:", "TD:", "MD:", "MDB:", "FR:"})
        EXPECT_TRUE(drives.contains(device)) << drives.join(' ').toStdString();

    o.DisconnectRobot(false);
}

TEST_F(FileTransferObjectTest, ReentrantCopiesShareTheConnectionSafely)
{
    // A timer (live mode, say) starts a second copy while the first one waits; both use the
    // "External" key of the same server, and the inner one gives it back first.
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\LARGE.BIN", QByteArray(200 * 1024, 'L')));
    ASSERT_TRUE(sim->setFault("rate", 1024 * 1024)); // the outer copy takes about 0.2 s
    NXRFileTransferObject inner;
    usePorts(inner);
    bool innerOk = false;
    bool innerRan = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (innerRan || !o.client() || !o.client()->isBusy() || o.client()->HttpState() <= 0)
            return;
        innerRan = true; // while the outer download is running
        innerOk = copy(inner, "MC:\\VISION\\TOOLS.TXT");
    });
    poll.start(0);
    EXPECT_TRUE(copy("MC:\\BIG\\LARGE.BIN")) << o.LastErrorString().toStdString();
    EXPECT_TRUE(innerRan);
    EXPECT_TRUE(innerOk) << inner.LastErrorString().toStdString();
    EXPECT_EQ(QFileInfo(o.lastLocalPath()).size(), 200 * 1024);
    EXPECT_EQ(readAll(inner.lastLocalPath()), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
}

TEST_F(FileTransferObjectTest, ScriptMembersReportInsteadOfThrowing)
{
    QSignalSpy errors(&o, &NXRFileTransferObject::OnError);
    EXPECT_EQ(o.ListFiles(sim->host(), "MC:\\VISION", sim->user(), sim->password()),
              QStringList({"COLOR800.JPG", "GREY640.PNG", "TOOLS.TXT"}));
    EXPECT_TRUE(o.ListDrives(sim->host(), sim->user(), sim->password()).contains("MDB:"));
    ASSERT_TRUE(copy("MC:\\VISION\\TOOLS.TXT", "mine.txt"));
    EXPECT_TRUE(o.UploadCachedFile(sim->host(), "mine.txt", "TD:\\MINE.TXT", sim->user(), sim->password()));
    EXPECT_EQ(sim->readFile("TD:\\MINE.TXT"), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_EQ(errors.count(), 0);

    // Only files of the cache go up; failures become LastErrorString and one OnError each.
    const auto uploadCached = [&](const QString& name, const QString& target) {
        return o.UploadCachedFile(sim->host(), name, target, sim->user(), sim->password());
    };
    EXPECT_FALSE(uploadCached("../../etc/passwd", "TD:\\X.TXT"));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in UploadCachedFile: Invalid local file name"));
    EXPECT_FALSE(uploadCached("mine.txt", "TD:\\NOFOLDER\\X.TXT"));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in UploadCachedFile: 550"))
        << o.LastErrorString().toStdString();
    EXPECT_TRUE(o.ListFolders(sim->host(), "MC:\\NO_SUCH", sim->user(), sim->password()).isEmpty());
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in ListFolders: 550"))
        << o.LastErrorString().toStdString();
    EXPECT_EQ(errors.count(), 3);
    EXPECT_TRUE(sim->readFile("TD:\\X.TXT").isEmpty());

    // A page's own text goes into the cache under a plain name only, and at most 64 KiB of it.
    EXPECT_TRUE(
        o.WriteCachedTextFile("settings.txt", QString::fromUtf8("{\"angle\": 12.5, \"name\": \"\u00e9\"}")));
    EXPECT_TRUE(uploadCached("settings.txt", "TD:\\SETTINGS.TXT"));
    EXPECT_EQ(QString::fromUtf8(sim->readFile("TD:\\SETTINGS.TXT")),
              QString::fromUtf8("{\"angle\": 12.5, \"name\": \"\u00e9\"}"));
    EXPECT_FALSE(o.WriteCachedTextFile("../escape.txt", "x"));
    EXPECT_TRUE(o.LastErrorString().startsWith("Error in WriteCachedTextFile: Invalid local file name"));
    EXPECT_FALSE(o.WriteCachedTextFile("big.txt", QString(NXRFileTransferObject::kMaxCachedText + 1, 'x')));
    EXPECT_FALSE(QFileInfo::exists(o.localPathFor(QString(), "big.txt")));
    EXPECT_EQ(errors.count(), 5);
}

TEST_F(FileTransferObjectTest, PoolSurvivesAControllerRestart)
{
    ASSERT_TRUE(connectRobot(o, "Display"));
    ASSERT_TRUE(copy("MC:\\VISION\\TOOLS.TXT"));
    const auto client = o.client();
    ASSERT_TRUE(sim->restart(0.5));
    EXPECT_EQ(client->FtpState(), 0) << "the old control connection is dead";
    EXPECT_EQ(client->HttpState(), 0);
    ASSERT_TRUE(copy("MC:\\VISION\\GREY640.PNG")) << o.LastErrorString().toStdString();
    EXPECT_EQ(readAll(cached("GREY640.PNG")), sim->readFile("MC:\\VISION\\GREY640.PNG"));
    EXPECT_EQ(o.client(), client) << "the same pooled client reconnected";
    EXPECT_TRUE(o.FileListing("MC:\\VISION").contains("TOOLS.TXT"));
    o.DisconnectRobot(false);
}

} // namespace

TEST_F(FileTransferObjectTest, CacheQuotaStopsFetchingOnceTheFolderIsFull)
{
    const qint64 before = nxr::TransferCache::quotaBytes();
    ASSERT_TRUE(copy("MC:\\VISION\\TOOLS.TXT"));
    const qint64 used = QFileInfo(cached("TOOLS.TXT")).size();
    ASSERT_GT(used, 0);
    nxr::TransferCache::setQuotaBytes(used + 1);
    EXPECT_TRUE(copy("MC:\\VISION\\TOOLS.TXT", "SECOND.TXT")) << "room left below the quota";
    EXPECT_FALSE(copy("MC:\\VISION\\TOOLS.TXT", "THIRD.TXT"));
    EXPECT_EQ(o.LastErrorString().left(40), QString("Error in CopyFile: The local cache is fu"));
    EXPECT_FALSE(QFile::exists(cached("THIRD.TXT")));
    nxr::TransferCache::setQuotaBytes(before);
    EXPECT_TRUE(copy("MC:\\VISION\\TOOLS.TXT", "THIRD.TXT"));
}
