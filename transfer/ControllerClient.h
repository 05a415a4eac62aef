#pragma once
// The connection to one controller: an FTP session and an HTTP session that stay open between
// transfers, on libcurl driven by the Qt event loop.
//
// Every operation looks synchronous to its caller: it returns when the transfer is over, and
// throws TransferError when it failed. While it waits, a local event loop runs, so the UI keeps
// painting, timers fire and other operations may start from inside it (re-entry); each operation
// holds a reference to the client so that it cannot be destroyed under its own feet.
//
// Controller paths ("MC:\A\B.PNG") go to the FTP server exactly as given (no change of folder, no
// splitting at "\" or "/"); in URLs they are percent-encoded. CR, LF and NUL in any path, command,
// host or credential are refused before anything is sent. Credentials never appear in an error
// text.
//
// Connecting and stalled transfers end with an error after bounded times (Timeouts).

#include "frame/Conversions.h"
#include "frame/Export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <set>
#include <unordered_map>

class QSocketNotifier;

namespace nxr {

// A failed controller operation. number(): the FTP or HTTP reply code when the server refused,
// otherwise the transfer library's error code; description(): a text without credentials.
class NXR_EXPORT TransferError : public Failure
{
public:
    TransferError(int number, const QString& description) : Failure(description), m_number(number) {}
    int number() const { return m_number; }

private:
    int m_number;
};

class NXR_EXPORT ControllerClient : public QObject, public std::enable_shared_from_this<ControllerClient>
{
    Q_OBJECT

public:
    // The time limits of a transfer. The defaults keep one call against a controller that went
    // silent (HTTP first, then the FTP fallback) well under 20 s; users change them in the
    // user settings, section "Transfer": "ConnectTimeoutMs" (100 to 600000) and
    // "StallTimeoutMs" (1000 to 600000, counted in whole seconds).
    struct Timeouts
    {
        int connectMs = 4000; // TCP connect (and name lookup) of a session
        int stallMs = 6000;   // no byte moving, or no reply to a command, for this long
        int pingMs = 2000;    // reachability probe
    };
    // Used by clients created afterwards: those set here, else the user settings.
    static Timeouts defaultTimeouts();
    static void setDefaultTimeouts(const Timeouts& timeouts);

    static std::shared_ptr<ControllerClient> create();
    ~ControllerClient() override;

    Timeouts timeouts() const { return m_timeouts; }
    void setTimeouts(const Timeouts& timeouts) { m_timeouts = timeouts; }

    // Opens (logs in) the FTP session. flag is accepted for the callers' sake and not used.
    void FtpConnect(const QString& host, const QString& user, const QString& password, quint16 port,
                    int flag = -1);
    // Closes both sessions (they can be opened again).
    void Disconnect();
    // A short TCP probe of the host on the FTP port, then the HTTP port (the ports of the last
    // connect, or those given to setProbePorts; 21 and 80 by default). A host that answers, even
    // by refusing the connection, is reachable.
    bool Ping(const QString& host);
    // Downloads a file by FTP. The local file appears complete or not at all. overwrite = 0
    // refuses to replace an existing local file.
    void FtpGetFile(const QString& remotePath, const QString& localPath, int overwrite = -1,
                    int reserved = 0);
    // Sends one command line (a trailing CR LF is allowed and removed). flag != 0: the command
    // answers over a data connection (LIST, NLST) and `response` receives that data; flag = 0:
    // `response` receives the server's reply line.
    void FtpCommand(const QString& commandLine, int type, int flag, QString& response);
    // Uploads the local file `localPath` to the controller path `remotePath`.
    void FtpPutFile(const QString& localPath, const QString& remotePath, int type = 2);
    // Closes both sessions for good (the pool gives the client up); later calls reconnect.
    // Transfers still running are ended with an error.
    void CloseConnections();
    // As CloseConnections, but transfers still running (re-entrant callers further up the
    // stack) are let finish first; the sessions close when the last of them ends.
    void closeWhenIdle();
    bool isBusy() const { return !m_active.empty(); }
    // 1 while the session is really up (the connection is checked, not just remembered), 0 else.
    long FtpState();
    long HttpState();
    // Opens the HTTP session (one HEAD request; any HTTP answer counts).
    void HttpConnect(const QString& host, const QString& user, const QString& password, quint16 port);
    // Downloads a URL path ("/MC/A/B.PNG") by HTTP. Any answer but a success (2xx) is an error,
    // redirects included (they are not followed), and so is a body shorter than its announced
    // length. The local file appears complete or not at all.
    void HttpGetFile(const QString& remoteUrlPath, const QString& localPath, int overwrite = -1);

    void setProbePorts(quint16 ftpPort, quint16 httpPort);

    // How often transfers were run other than by a socket event or the transfer library's timer:
    // to start an FTP data connection the library left unopened (see kick()), and at the
    // deadline of an FTP reply (see updateReplyDeadline()). For tests and benchmarks.
    long extraRuns() const { return m_extraRuns; }
    long deadlineRuns() const { return m_deadlineRuns; }

    // Set by the pool when it replaced this client by a fresh one.
    bool isRetired() const { return m_retired; }
    void setRetired(bool retired) { m_retired = retired; }

    // Refuses text holding CR, LF or NUL (what = "path", "command", ...).
    static void checkLine(const QString& text, const char* what);
    // Command lines and the paths in them are refused past this length (in UTF-8 bytes), before
    // anything is sent: no controller takes longer lines.
    static constexpr int kMaxLineBytes = 4096;
    static void checkLength(const QString& text, const char* what);

private:
    struct Transfer;
    struct Session
    {
        QString host;
        QString user;
        QString password;
        quint16 port = 0;
        bool configured = false;
        bool up = false;
        long long socket = -1;
    };

    ControllerClient();

    static void configure(Session& session, const QString& host, const QString& user, const QString& password,
                          quint16 port);
    void ensureMulti();
    void resetMulti();
    void abortAll();
    void* newEasy(Transfer& t, const Session& session, bool ftp, const QString& url);
    void run(Transfer& t, int& busy);
    void cancel(Transfer& t, const char* why);
    [[noreturn]] void fail(const Transfer& t, const Session& session, bool ftp) const;
    void finish(Transfer& t, Session& session, bool ftp);
    void download(Session& session, bool ftp, const QString& url, const QString& localPath, int overwrite);
    bool socketAlive(long long socket) const;
    QString ftpUrl(const Session& s, const QString& path) const;

    void socketAction(long long s, int events);
    void processDone();
    void runAll();
    void kick();
    void updateKick();
    void updateReplyDeadline();
    bool hasUnwatchedTransfer() const;

    friend struct ControllerClientCallbacks;

    void* m_multi = nullptr;
    QTimer m_timer;
    QTimer m_kick;
    int m_kickDelayMs = 0;
    long m_extraRuns = 0;
    QTimer m_replyDeadline;
    QElapsedTimer m_clock;
    long m_deadlineRuns = 0;
    struct Watch
    {
        QSocketNotifier* read = nullptr;
        QSocketNotifier* write = nullptr;
        void* easy = nullptr; // the transfer the socket was last asked for
    };
    std::unordered_map<long long, Watch> m_watches;
    std::set<Transfer*> m_active;
    std::set<long long> m_openSockets;
    Session m_ftp;
    Session m_http;
    Timeouts m_timeouts;
    quint16 m_probeFtpPort = 21;
    quint16 m_probeHttpPort = 80;
    int m_busyFtp = 0;
    int m_busyHttp = 0;
    bool m_retired = false;
    bool m_closeWhenIdle = false;
};

} // namespace nxr
