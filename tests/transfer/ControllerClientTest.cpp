// The controller client against the simulator, over real FTP and HTTP.

#include "transfer/ControllerClient.h"
#include "TransferTestSupport.h"

#include <QTimer>

#include <curl/curl.h>

#include <functional>
#include <vector>

using nxr::ControllerClient;
using nxr::TransferError;
using namespace nxr::test;

namespace {

class ControllerClientTest : public SimulatorTest
{
protected:
    void SetUp() override
    {
        SimulatorTest::SetUp();
        ASSERT_TRUE(local.isValid());
        client = ControllerClient::create();
        client->setTimeouts({3000, 1000, 1000});
    }
    void connectBoth()
    {
        client->FtpConnect(sim->host(), sim->user(), sim->password(), sim->ftpPort());
        client->HttpConnect(sim->host(), sim->user(), sim->password(), sim->httpPort());
    }
    QString localFile(const QString& name) const { return local.filePath(name); }
    // The same file fetched over each protocol.
    std::vector<std::function<void()>> fetchesOf(const QString& path, const QString& name)
    {
        return {[=, this] { client->HttpGetFile(nxr::test::urlOf(path), localFile(name)); },
                [=, this] { client->FtpGetFile(path, localFile(name)); }};
    }

    QTemporaryDir local;
    std::shared_ptr<ControllerClient> client;
};

TEST_F(ControllerClientTest, SessionsStayOpenAndPathsGoUnchanged)
{
    connectBoth();
    client->FtpGetFile("MC:\\VISION\\TOOLS.TXT", localFile("a.txt"));
    client->FtpGetFile("mc:\\vision\\GREY640.PNG", localFile("b.png"));
    client->HttpGetFile("/MC/VISION/TOOLS.TXT", localFile("c.txt"));
    client->HttpGetFile("/MC/VISION/TOOLS.TXT", localFile("d.txt"));
    EXPECT_EQ(readAll(localFile("a.txt")), sim->readFile("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_EQ(readAll(localFile("b.png")), sim->readFile("MC:\\VISION\\GREY640.PNG"));
    EXPECT_EQ(readAll(localFile("d.txt")), readAll(localFile("a.txt")));

    ASSERT_TRUE(writeLocal(localFile("up.txt"), "uploaded data\r\n"));
    client->FtpPutFile(localFile("up.txt"), "UD1:\\IMAGES\\UP.TXT");
    EXPECT_EQ(sim->readFile("UD1:\\IMAGES\\UP.TXT"), QByteArray("uploaded data\r\n"));
    EXPECT_THROW(client->FtpPutFile(localFile("missing.txt"), "UD1:\\IMAGES\\X.TXT"), TransferError);

    const QStringList ftp = ftpCommands();
    EXPECT_EQ(countOf(ftp, "RETR MC:\\VISION\\TOOLS.TXT"), 1);
    EXPECT_EQ(countOf(ftp, "RETR mc:\\vision\\GREY640.PNG"), 1);
    EXPECT_EQ(countOf(ftp, "STOR UD1:\\IMAGES\\UP.TXT"), 1);
    EXPECT_EQ(countStarting(ftp, "CWD"), 0) << ftp.join('\n').toStdString();
    EXPECT_EQ(countStarting(ftp, "USER"), 1) << "one FTP login for all transfers";
    EXPECT_EQ(countStarting(sim->logLines("HTTP> "), "GET /MC/VISION/TOOLS.TXT"), 2);
    EXPECT_EQ(client->FtpState(), 1);
    EXPECT_EQ(client->HttpState(), 1);
}

// A refused folder change (550) and its retries: FileTransferObjectTest.RetryRulesAndSessionMembers.
TEST_F(ControllerClientTest, CommandsListingsAndFolderChange)
{
    connectBoth();
    QString response;
    client->FtpCommand("LIST MC:\\VISION\r\n", 2, -1, response);
    EXPECT_TRUE(response.contains("TOOLS.TXT")) << response.toStdString();
    EXPECT_EQ(response.split("\r\n", Qt::SkipEmptyParts).first().split(' ', Qt::SkipEmptyParts).size(), 9);

    client->FtpCommand("cwd MC:\\VISION\r\n", 2, 0, response);
    EXPECT_TRUE(response.startsWith("250")) << response.toStdString();
    client->FtpCommand("NLST\r\n", 2, -1, response);
    EXPECT_TRUE(response.contains("GREY640.PNG")) << "the folder change holds on the open session";
}

TEST_F(ControllerClientTest, LineBreaksAndNulAreRefusedBeforeAnythingIsSent)
{
    connectBoth();
    ASSERT_TRUE(sim->clearLog());
    QString response;
    const QString bad[] = {"NOOP\r\nDELE MC:\\SUMMARY.DG", "cwd MC:\\A\nDELE X",
                           QString("cwd MC:\\A") + QChar(0) + "X", "LIST MC:\\A\r\n\r\n"};
    for (const QString& command : bad)
        EXPECT_THROW(client->FtpCommand(command, 2, 0, response), TransferError);
    EXPECT_THROW(client->FtpGetFile("MC:\\A\rB.TXT", localFile("x")), TransferError);
    EXPECT_THROW(client->HttpGetFile("/MC/A\n.TXT", localFile("x")), TransferError);
    EXPECT_THROW(client->FtpPutFile(localFile("x"), "MC:\\X\r\nDELE Y"), TransferError);
    EXPECT_THROW(client->FtpConnect(sim->host(), "robot\r\nDELE X", "pw", sim->ftpPort()), TransferError);
    EXPECT_TRUE(ftpCommands().isEmpty()) << sim->logLines().join('\n').toStdString();
    EXPECT_TRUE(sim->readFile("MC:\\SUMMARY.DG").size() > 0);
}

TEST_F(ControllerClientTest, DroppedDownloadsLeaveNoFile)
{
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\DATA.BIN", QByteArray(200000, 'x')));
    for (const auto& fetch : fetchesOf("MC:\\BIG\\DATA.BIN", "data.bin")) {
        ASSERT_TRUE(sim->setFault("drop_after", 5000));
        connectBoth();
        EXPECT_THROW(fetch(), TransferError);
        EXPECT_TRUE(filesIn(local.path()).isEmpty()) << filesIn(local.path()).join(',').toStdString();
        // An earlier complete copy under the final name survives a failed fetch of a newer one.
        ASSERT_TRUE(sim->resetFaults());
        connectBoth();
        fetch();
        ASSERT_TRUE(sim->setFault("drop_after", 10));
        EXPECT_THROW(fetch(), TransferError);
        EXPECT_EQ(readAll(localFile("data.bin")).size(), 200000);
        EXPECT_EQ(filesIn(local.path()), QStringList{"data.bin"});
        ASSERT_TRUE(QFile::remove(localFile("data.bin")));
    }
}

TEST_F(ControllerClientTest, StalledOrClosedTransfersEndWhileTheEventLoopRuns)
{
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\STALL.BIN", QByteArray(100000, 'y')));
    ASSERT_TRUE(sim->setFault("stall_after", 1000));
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
    ticker.start(20);
    // Each way twice: ended by the stall timeout, and by CloseConnections long before it.
    for (const bool close : {false, true}) {
        client->setTimeouts({3000, close ? 20000 : 1000, 1000});
        const auto fetches = fetchesOf("MC:\\BIG\\STALL.BIN", "s.bin");
        for (size_t i = 0; i < fetches.size(); ++i) {
            connectBoth();
            if (close)
                QTimer::singleShot(200, [this] { client->CloseConnections(); });
            ticks = 0;
            QElapsedTimer clock;
            clock.start();
            EXPECT_THROW(fetches[i](), TransferError);
            EXPECT_LT(clock.elapsed(), close ? 5000 : 8000);
            EXPECT_GT(ticks, close ? 5 : 10) << "timers fire while a transfer waits";
            EXPECT_TRUE(filesIn(local.path()).isEmpty());
            if (close || i == 1) {
                EXPECT_EQ(client->FtpState(), 0) << "the stalled FTP session is given up";
            }
        }
    }
}

TEST_F(ControllerClientTest, PingProbesTheHost)
{
    client->setProbePorts(sim->ftpPort(), sim->httpPort());
    EXPECT_TRUE(client->Ping(sim->host()));
    // A port nobody listens on still answers (refuses): the host is there.
    client->setProbePorts(1, 1);
    EXPECT_TRUE(client->Ping(sim->host()));
    EXPECT_FALSE(client->Ping("bad host"));
    EXPECT_THROW(client->FtpConnect("bad/host", "u", "p", 21), TransferError);
}

} // namespace

// Errors say what happened: the server's own reply when there is one, not the transfer
// library's reading of it.
TEST_F(ControllerClientTest, ErrorsSayWhatHappened)
{
    const QString longPath = "MC:\\" + QString(100000, 'A');
    QString response;
    const struct
    {
        const char* name;
        std::function<void()> call;
        int number;
        const char* text; // the error text starts with this
    } cases[] = {
        {"421 on a download",
         [&] {
             ASSERT_TRUE(sim->setFault("reply421", 1));
             client->FtpGetFile("MC:\\VISION\\TOOLS.TXT", localFile("t.txt"));
         },
         421, "421 Service not available"},
        {"100,000-character listing path", [&] { client->FtpCommand("LIST " + longPath, 2, -1, response); },
         CURLE_URL_MALFORMAT, "Refused: the command is too long"},
        {"100,000-character download path", [&] { client->FtpGetFile(longPath, localFile("t.txt")); },
         CURLE_URL_MALFORMAT, "Refused: the controller path is too long"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        connectBoth();
        try {
            c.call();
            ADD_FAILURE() << "no error";
        } catch (const TransferError& e) {
            EXPECT_EQ(e.number(), c.number) << e.description().toStdString();
            EXPECT_TRUE(e.description().startsWith(c.text)) << e.description().toStdString();
        }
        EXPECT_TRUE(filesIn(local.path()).isEmpty());
    }
}

// Transfers are driven by their sockets' events and the library's timer alone: waiting on a
// silent server, they are never run otherwise (its time limit still ends the call); moving data,
// only the moment the library leaves an FTP data connection unopened costs an extra run.
TEST_F(ControllerClientTest, TransfersAreNotPolled)
{
    connectBoth();
    ASSERT_TRUE(sim->writeFile("MC:\\BIG\\ONE.BIN", QByteArray(4 << 20, 'b')));
    const long before = client->extraRuns();
    for (int i = 0; i < 10; ++i)
        client->FtpGetFile("MC:\\BIG\\ONE.BIN", localFile("one.bin"));
    EXPECT_LE(client->extraRuns() - before, 10 * 2);
    EXPECT_EQ(QFileInfo(localFile("one.bin")).size(), 4 << 20);

    ASSERT_TRUE(sim->setFault("stall_after", 0)); // RETR gets no answer: the call waits
    client->setTimeouts({3000, 2000, 1000});
    const long waiting = client->extraRuns();
    const long deadlines = client->deadlineRuns();
    EXPECT_THROW(client->FtpGetFile("MC:\\BIG\\ONE.BIN", localFile("two.bin")), TransferError);
    // At most the one run that may start its data connection, and one at the reply's deadline.
    EXPECT_LE(client->extraRuns() - waiting, 1) << "polled while waiting on a watched socket";
    EXPECT_EQ(client->deadlineRuns() - deadlines, 1);

    ASSERT_TRUE(sim->setFault("stall_after", 1 << 20)); // the web server stops after 1 MiB
    const long moving = client->extraRuns();
    EXPECT_THROW(client->HttpGetFile(urlOf("MC:\\BIG\\ONE.BIN"), localFile("three.bin"), -1), TransferError);
    EXPECT_EQ(client->extraRuns() - moving, 0) << "polled while a body stalled";
    EXPECT_EQ(client->deadlineRuns() - deadlines, 1);
}
