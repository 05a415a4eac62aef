#include "transfer/ControllerClient.h"

#include "frame/SyncCall.h"
#include "frame/Trace.h"
#include "frame/UserSettings.h"

#include <QAbstractSocket>
#include <QByteArray>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QSocketNotifier>
#include <QTcpSocket>
#include <QUrl>

#include <curl/curl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nxr {

namespace {

std::optional<ControllerClient::Timeouts> g_defaultTimeouts;

const QString kSettingsSection = QStringLiteral("Transfer");

// A time limit from the user settings: whole milliseconds within [lowest, highest], else the
// built-in default.
int settingMs(const QString& key, int fallback, int lowest, int highest)
{
    bool ok = false;
    const int value = UserSettings::get(kSettingsSection, key).trimmed().toInt(&ok);
    return ok && value >= lowest && value <= highest ? value : fallback;
}

// Byte buffers for downloads: bigger than the library's default, so a fast link needs fewer
// rounds through the event loop.
constexpr long kBufferSize = 128 * 1024;

void globalInit()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

QString percentEncoded(const QString& text, const QByteArray& keep = {})
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text, keep));
}

void checkHost(const QString& host)
{
    static const QRegularExpression valid(QStringLiteral("^[A-Za-z0-9._-]+$"));
    if (host.isEmpty())
        throw TransferError(CURLE_URL_MALFORMAT, QStringLiteral("No host given"));
    if (!valid.match(host).hasMatch())
        throw TransferError(CURLE_URL_MALFORMAT,
                            QStringLiteral("Invalid host name (") + host + QLatin1Char(')'));
}

int stallSeconds(int ms)
{
    return qMax(1, (ms + 999) / 1000);
}

} // namespace

// A transfer in progress: its easy handle, where its data goes, and how it ended.
struct ControllerClient::Transfer
{
    CURL* easy = nullptr;
    bool ftp = false;
    qint64 lastEventMs = 0; // when one of its sockets last had an event (or it started)
    bool done = false;
    CURLcode code = CURLE_OK;
    char errorBuffer[CURL_ERROR_SIZE] = {};
    QEventLoop* loop = nullptr;
    // Sinks and sources.
    int fd = -1;
    QByteArray body;
    bool collectBody = false;
    // FTP dialogue: the last reply line, and (when tracking a command) the reply to it.
    QByteArray lastReply;
    QByteArray trackedCommand;
    QByteArray trackedReply;
    bool trackedSent = false;
    long responseCode = 0;
    curl_off_t announcedBytes = -1; // the length the server announced, -1 when it announced none
    curl_off_t receivedBytes = 0;
    curl_socket_t activeSocket = CURL_SOCKET_BAD;
    curl_slist* quote = nullptr;

    ~Transfer()
    {
        if (easy)
            curl_easy_cleanup(easy);
        if (quote)
            curl_slist_free_all(quote);
    }
};

// The C callbacks handed to libcurl.
struct ControllerClientCallbacks
{
    static int socket(CURL* easy, curl_socket_t s, int what, void* userp, void*)
    {
        auto* self = static_cast<ControllerClient*>(userp);
        auto& watches = self->m_watches;
        auto it = watches.find(s);
        if (what == CURL_POLL_REMOVE) {
            if (it != watches.end()) {
                for (QSocketNotifier* n : {it->second.read, it->second.write}) {
                    if (n) {
                        n->setEnabled(false);
                        n->deleteLater();
                    }
                }
                watches.erase(it);
            }
            return 0;
        }
        if (it == watches.end())
            it = watches.emplace(s, ControllerClient::Watch{}).first;
        ControllerClient::Watch& w = it->second;
        w.easy = easy;
        const bool wantRead = what == CURL_POLL_IN || what == CURL_POLL_INOUT;
        const bool wantWrite = what == CURL_POLL_OUT || what == CURL_POLL_INOUT;
        if (wantRead && !w.read) {
            w.read = new QSocketNotifier(qintptr(s), QSocketNotifier::Read, self);
            QObject::connect(w.read, &QSocketNotifier::activated, self,
                             [self, s] { self->socketAction(s, CURL_CSELECT_IN); });
        }
        if (wantWrite && !w.write) {
            w.write = new QSocketNotifier(qintptr(s), QSocketNotifier::Write, self);
            QObject::connect(w.write, &QSocketNotifier::activated, self,
                             [self, s] { self->socketAction(s, CURL_CSELECT_OUT); });
        }
        if (w.read)
            w.read->setEnabled(wantRead);
        if (w.write)
            w.write->setEnabled(wantWrite);
        return 0;
    }

    static int timer(CURLM*, long timeoutMs, void* userp)
    {
        auto* self = static_cast<ControllerClient*>(userp);
        if (timeoutMs < 0)
            self->m_timer.stop();
        else
            self->m_timer.start(int(qMin<long>(timeoutMs, 1L << 30)));
        return 0;
    }

    static curl_socket_t openSocket(void* clientp, curlsocktype, curl_sockaddr* address)
    {
        auto* self = static_cast<ControllerClient*>(clientp);
        const int fd = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
        if (fd >= 0)
            self->m_openSockets.insert(fd);
        return fd < 0 ? CURL_SOCKET_BAD : fd;
    }

    static int closeSocket(void* clientp, curl_socket_t s)
    {
        auto* self = static_cast<ControllerClient*>(clientp);
        self->m_openSockets.erase(s);
        return ::close(s);
    }

    static size_t writeToFile(char* data, size_t size, size_t count, void* userp)
    {
        auto* t = static_cast<ControllerClient::Transfer*>(userp);
        const size_t total = size * count;
        size_t done = 0;
        while (done < total) {
            const ssize_t n = ::write(t->fd, data + done, total - done);
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return 0;
            }
            done += size_t(n);
        }
        return total;
    }

    static size_t writeToBody(char* data, size_t size, size_t count, void* userp)
    {
        auto* t = static_cast<ControllerClient::Transfer*>(userp);
        t->body.append(data, qsizetype(size * count));
        return size * count;
    }

    static size_t readFromFile(char* buffer, size_t size, size_t count, void* userp)
    {
        auto* t = static_cast<ControllerClient::Transfer*>(userp);
        for (;;) {
            const ssize_t n = ::read(t->fd, buffer, size * count);
            if (n >= 0)
                return size_t(n);
            if (errno != EINTR)
                return CURL_READFUNC_ABORT;
        }
    }

    static size_t header(char* data, size_t size, size_t count, void* userp)
    {
        auto* t = static_cast<ControllerClient::Transfer*>(userp);
        const QByteArray line = QByteArray(data, qsizetype(size * count)).trimmed();
        // FTP replies: "ddd text" ends a reply ("ddd-" continues it).
        if (line.size() >= 4 && std::isdigit(uchar(line[0])) && std::isdigit(uchar(line[1])) &&
            std::isdigit(uchar(line[2])) && line[3] == ' ') {
            t->lastReply = line;
            if (t->trackedSent && t->trackedReply.isEmpty())
                t->trackedReply = line;
        }
        return size * count;
    }

    // Watches the FTP dialogue to pick out the reply to one command.
    static int debug(CURL*, curl_infotype type, char* data, size_t size, void* userp)
    {
        auto* t = static_cast<ControllerClient::Transfer*>(userp);
        if (type == CURLINFO_HEADER_OUT && !t->trackedCommand.isEmpty()) {
            const QByteArray sent = QByteArray(data, qsizetype(size)).trimmed();
            if (sent == t->trackedCommand) {
                t->trackedSent = true;
                t->trackedReply.clear();
            }
        }
        return 0;
    }
};

ControllerClient::Timeouts ControllerClient::defaultTimeouts()
{
    if (g_defaultTimeouts)
        return *g_defaultTimeouts;
    Timeouts t;
    t.connectMs = settingMs(QStringLiteral("ConnectTimeoutMs"), t.connectMs, 100, 600000);
    t.stallMs = settingMs(QStringLiteral("StallTimeoutMs"), t.stallMs, 1000, 600000);
    return t;
}

void ControllerClient::setDefaultTimeouts(const Timeouts& timeouts)
{
    g_defaultTimeouts = timeouts;
}

std::shared_ptr<ControllerClient> ControllerClient::create()
{
    return std::shared_ptr<ControllerClient>(new ControllerClient());
}

ControllerClient::ControllerClient() : m_timeouts(defaultTimeouts())
{
    globalInit();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // the library's deadlines, not to be rounded
    m_kick.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { socketAction(CURL_SOCKET_TIMEOUT, 0); });
    connect(&m_kick, &QTimer::timeout, this, [this] { kick(); });
    m_clock.start();
    m_replyDeadline.setSingleShot(true);
    m_replyDeadline.setTimerType(Qt::PreciseTimer);
    connect(&m_replyDeadline, &QTimer::timeout, this, [this] {
        if (!m_multi || m_active.empty())
            return;
        ++m_deadlineRuns;
        runAll();
    });
}

// Runs every transfer of this client once (see kick() and updateReplyDeadline()).
void ControllerClient::runAll()
{
    // A run may send a command: the time limit of its reply counts from here.
    for (Transfer* t : m_active)
        t->lastEventMs = m_clock.elapsed();
    int running = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    curl_multi_socket_all(static_cast<CURLM*>(m_multi), &running);
#pragma GCC diagnostic pop
    processDone();
    updateKick();
    updateReplyDeadline();
}

// Transfers are driven by their sockets' events and the transfer library's timer, with one
// exception. The library (7.88) opens an FTP data connection lazily: when the passive-mode reply
// arrives in the same run that sent the request (a fast server on a near network), the transfer
// moves on to connecting its data connection but returns without running that step, so it has no
// socket yet to be watched and no timer but its connect timeout; nothing would run it again
// before that timeout. After every run, a transfer the library left watching no socket is
// therefore run again at once (then after 1, 2, 4 ... ms while it stays so, at most every 100 ms);
// one such run starts the data connection, whose socket is watched from then on. The library's
// own checks of the connect time and of a stalled body are backed by its timer; that of an FTP
// reply is not (see updateReplyDeadline()).
void ControllerClient::kick()
{
    if (!m_multi || m_active.empty()) {
        m_kick.stop();
        return;
    }
    ++m_extraRuns;
    runAll();
}

// The library checks the time limit of an FTP reply only when the transfer runs and sets no
// timer for it (it does for connecting and for a stalled body). A transfer waiting for a reply
// that never comes is watched on its socket, and nothing runs it: so the transfers are run once
// when an FTP transfer's sockets had no event for the whole limit, the earliest moment its reply
// can be late.
void ControllerClient::updateReplyDeadline()
{
    std::optional<qint64> earliest;
    for (const Transfer* t : m_active) {
        if (t->ftp && (!earliest || t->lastEventMs < *earliest))
            earliest = t->lastEventMs;
    }
    if (!m_multi || !earliest) {
        m_replyDeadline.stop();
        return;
    }
    const qint64 limitMs = stallSeconds(m_timeouts.stallMs) * 1000 + 20;
    m_replyDeadline.start(int(qBound<qint64>(0, *earliest + limitMs - m_clock.elapsed(), limitMs)));
}

bool ControllerClient::hasUnwatchedTransfer() const
{
    for (const Transfer* t : m_active) {
        bool watched = false;
        for (const auto& [socket, watch] : m_watches) {
            if (watch.easy == t->easy &&
                ((watch.read && watch.read->isEnabled()) || (watch.write && watch.write->isEnabled()))) {
                watched = true;
                break;
            }
        }
        if (!watched)
            return true;
    }
    return false;
}

void ControllerClient::updateKick()
{
    if (!m_multi || m_active.empty() || !hasUnwatchedTransfer()) {
        m_kick.stop();
        m_kickDelayMs = 0;
        return;
    }
    if (m_kick.isActive())
        return;
    m_kick.start(m_kickDelayMs);
    m_kickDelayMs = qBound(1, m_kickDelayMs * 2, 100);
}

ControllerClient::~ControllerClient()
{
    resetMulti();
}

void ControllerClient::checkLength(const QString& text, const char* what)
{
    const qsizetype bytes = text.toUtf8().size();
    if (bytes > kMaxLineBytes)
        throw TransferError(CURLE_URL_MALFORMAT,
                            QStringLiteral("Refused: the %1 is too long (%2 bytes; at most %3)")
                                .arg(QLatin1String(what))
                                .arg(bytes)
                                .arg(kMaxLineBytes));
}

void ControllerClient::checkLine(const QString& text, const char* what)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n') || c == QChar(0))
            throw TransferError(CURLE_URL_MALFORMAT,
                                QStringLiteral("Refused: the %1 holds a line break or NUL character")
                                    .arg(QLatin1String(what)));
    }
}

void ControllerClient::setProbePorts(quint16 ftpPort, quint16 httpPort)
{
    m_probeFtpPort = ftpPort;
    m_probeHttpPort = httpPort;
}

void ControllerClient::ensureMulti()
{
    if (m_multi)
        return;
    CURLM* multi = curl_multi_init();
    if (!multi)
        throw TransferError(CURLE_OUT_OF_MEMORY, QStringLiteral("Cannot create a transfer handle"));
    curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &ControllerClientCallbacks::socket);
    curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &ControllerClientCallbacks::timer);
    curl_multi_setopt(multi, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, 8L);
    m_multi = multi;
}

void ControllerClient::abortAll()
{
    const std::set<Transfer*> active = m_active;
    for (Transfer* t : active) {
        curl_multi_remove_handle(static_cast<CURLM*>(m_multi), t->easy);
        t->code = CURLE_ABORTED_BY_CALLBACK;
        qstrncpy(t->errorBuffer, "The connection was closed", sizeof t->errorBuffer);
        t->done = true;
        if (t->loop)
            t->loop->quit();
    }
    m_active.clear();
    m_busyFtp = 0;
    m_busyHttp = 0;
}

void ControllerClient::resetMulti()
{
    if (m_multi) {
        abortAll();
        // Cut every connection first: closing the cache would otherwise say goodbye to each
        // server and wait for its answer, which a hung controller never sends.
        for (const long long s : m_openSockets)
            ::shutdown(int(s), SHUT_RDWR);
        curl_multi_cleanup(static_cast<CURLM*>(m_multi));
        m_multi = nullptr;
    }
    for (auto& [s, w] : m_watches) {
        delete w.read;
        delete w.write;
    }
    m_watches.clear();
    m_timer.stop();
    m_kick.stop();
    m_replyDeadline.stop();
    m_ftp.up = false;
    m_ftp.socket = -1;
    m_http.up = false;
    m_http.socket = -1;
}

QString ControllerClient::ftpUrl(const Session& s, const QString& path) const
{
    return QStringLiteral("ftp://") + s.host + QLatin1Char(':') + QString::number(s.port) + QLatin1Char('/') +
           percentEncoded(path);
}

void* ControllerClient::newEasy(Transfer& t, const Session& session, bool ftp, const QString& url)
{
    CURL* easy = curl_easy_init();
    if (!easy)
        throw TransferError(CURLE_OUT_OF_MEMORY, QStringLiteral("Cannot create a transfer handle"));
    t.easy = easy;
    t.ftp = ftp;
    const QByteArray urlBytes = url.toUtf8();
    curl_easy_setopt(easy, CURLOPT_URL, urlBytes.constData());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, &t);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, t.errorBuffer);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, ftp ? "ftp" : "http");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, long(m_timeouts.connectMs));
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, long(stallSeconds(m_timeouts.stallMs)));
    curl_easy_setopt(easy, CURLOPT_MAXAGE_CONN, 24L * 3600L);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kBufferSize);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &ControllerClientCallbacks::openSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &ControllerClientCallbacks::closeSocket);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &ControllerClientCallbacks::header);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &t);
    if (ftp) {
        const QByteArray user = session.user.toUtf8();
        const QByteArray password = session.password.toUtf8();
        if (!user.isEmpty()) {
            curl_easy_setopt(easy, CURLOPT_USERNAME, user.constData());
            curl_easy_setopt(easy, CURLOPT_PASSWORD, password.constData());
        }
        curl_easy_setopt(easy, CURLOPT_FTP_FILEMETHOD, long(CURLFTPMETHOD_NOCWD));
        curl_easy_setopt(easy, CURLOPT_FTP_SKIP_PASV_IP, 1L);
        curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, long(stallSeconds(m_timeouts.stallMs)));
    } else {
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        if (!session.user.isEmpty()) {
            const QByteArray user = session.user.toUtf8();
            const QByteArray password = session.password.toUtf8();
            curl_easy_setopt(easy, CURLOPT_HTTPAUTH, long(CURLAUTH_BASIC));
            curl_easy_setopt(easy, CURLOPT_USERNAME, user.constData());
            curl_easy_setopt(easy, CURLOPT_PASSWORD, password.constData());
        }
    }
    return easy;
}

void ControllerClient::run(Transfer& t, int& busy)
{
    ensureMulti();
    const CURLMcode added = curl_multi_add_handle(static_cast<CURLM*>(m_multi), t.easy);
    if (added != CURLM_OK)
        throw TransferError(CURLE_FAILED_INIT, QString::fromLatin1(curl_multi_strerror(added)));
    // While a session carries a transfer, its state is what the transfer last saw.
    ++busy;
    t.lastEventMs = m_clock.elapsed();
    m_active.insert(&t);
    updateKick();
    updateReplyDeadline();
    if (!t.done) {
        // The objects whose routines wait for this transfer: when one of them is destroyed, the
        // transfer ends at once and the call unwinds without touching it.
        QList<QMetaObject::Connection> watches;
        for (const QPointer<QObject>& owner : CallEntry::chain()) {
            if (owner)
                watches.append(connect(owner, &QObject::destroyed, this,
                                       [this, &t] { cancel(t, "The calling object was destroyed"); }));
        }
        NestedWait wait;
        QEventLoop loop;
        t.loop = &loop;
        loop.exec();
        t.loop = nullptr;
        for (const QMetaObject::Connection& c : watches)
            disconnect(c);
        // The loop was ended from outside (the application is quitting): the transfer ends here,
        // with an error, and leaves nothing behind in the transfer library.
        if (!t.done)
            cancel(t, "The transfer was cancelled");
    }
    busy = qMax(0, busy - 1);
    if (m_closeWhenIdle && m_active.empty())
        QTimer::singleShot(0, this, [keep = shared_from_this()] {
            if (keep->m_closeWhenIdle && keep->m_active.empty())
                keep->CloseConnections();
        });
    if (CallEntry::chainBroken())
        throw CallAbandoned{};
}

void ControllerClient::cancel(Transfer& t, const char* why)
{
    if (t.done)
        return;
    if (m_multi && m_active.count(&t))
        curl_multi_remove_handle(static_cast<CURLM*>(m_multi), t.easy);
    m_active.erase(&t);
    t.code = CURLE_ABORTED_BY_CALLBACK;
    qstrncpy(t.errorBuffer, why, sizeof t.errorBuffer);
    t.done = true;
    if (t.loop)
        t.loop->quit();
    updateKick();
}

void ControllerClient::closeWhenIdle()
{
    if (m_active.empty()) {
        CloseConnections();
        return;
    }
    m_closeWhenIdle = true;
}

void ControllerClient::socketAction(long long s, int events)
{
    if (!m_multi)
        return;
    if (const auto watch = m_watches.find(s); watch != m_watches.end()) {
        for (Transfer* t : m_active) {
            if (t->easy == watch->second.easy)
                t->lastEventMs = m_clock.elapsed();
        }
    }
    int running = 0;
    curl_multi_socket_action(static_cast<CURLM*>(m_multi), curl_socket_t(s), events, &running);
    processDone();
    updateKick();
    updateReplyDeadline();
}

void ControllerClient::processDone()
{
    int queued = 0;
    while (m_multi) {
        CURLMsg* msg = curl_multi_info_read(static_cast<CURLM*>(m_multi), &queued);
        if (!msg)
            break;
        if (msg->msg != CURLMSG_DONE)
            continue;
        Transfer* t = nullptr;
        curl_easy_getinfo(msg->easy_handle, CURLINFO_PRIVATE, reinterpret_cast<char**>(&t));
        const CURLcode code = msg->data.result;
        if (!t || !m_active.count(t)) {
            curl_multi_remove_handle(static_cast<CURLM*>(m_multi), msg->easy_handle);
            continue;
        }
        t->code = code;
        curl_socket_t active = CURL_SOCKET_BAD;
        if (curl_easy_getinfo(t->easy, CURLINFO_ACTIVESOCKET, &active) == CURLE_OK)
            t->activeSocket = active;
        curl_easy_getinfo(t->easy, CURLINFO_RESPONSE_CODE, &t->responseCode);
        curl_easy_getinfo(t->easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &t->announcedBytes);
        curl_easy_getinfo(t->easy, CURLINFO_SIZE_DOWNLOAD_T, &t->receivedBytes);
        curl_multi_remove_handle(static_cast<CURLM*>(m_multi), t->easy);
        m_active.erase(t);
        t->done = true;
        if (t->loop)
            t->loop->quit();
    }
}

bool ControllerClient::socketAlive(long long s) const
{
    if (s < 0 || !m_openSockets.count(s))
        return false;
    pollfd p{};
    p.fd = int(s);
    p.events = POLLIN | POLLPRI | POLLRDHUP;
    const int n = ::poll(&p, 1, 0);
    if (n < 0)
        return false;
    // An idle session has nothing to say: readable means closed, reset or a farewell ("421").
    return n == 0;
}

void ControllerClient::finish(Transfer& t, Session& session, bool ftp)
{
    if (t.code == CURLE_OK) {
        session.up = true;
        session.socket = t.activeSocket;
        return;
    }
    switch (t.code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_LOGIN_DENIED:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_ABORTED_BY_CALLBACK:
    case CURLE_PARTIAL_FILE:
        session.up = false;
        session.socket = -1;
        break;
    default:
        if (t.activeSocket != CURL_SOCKET_BAD)
            session.socket = t.activeSocket;
        break;
    }
    fail(t, session, ftp);
}

void ControllerClient::fail(const Transfer& t, const Session& session, bool ftp) const
{
    int number = int(t.code);
    QString text;
    const QByteArray reply = !t.trackedReply.isEmpty() ? t.trackedReply : t.lastReply;
    const int replyCode = reply.left(3).toInt();
    // The transfer library reports a 421 ("closing the connection") as a timeout; that reply,
    // like any refusal that ended the transfer, is told in the server's own words.
    const bool replyEnded =
        replyCode == 421 || (t.code != CURLE_OPERATION_TIMEDOUT && t.code != CURLE_ABORTED_BY_CALLBACK);
    if (ftp && replyCode >= 400 && replyEnded) {
        number = replyCode;
        text = QString::fromUtf8(reply);
    } else if (!ftp && t.code == CURLE_HTTP_RETURNED_ERROR && t.responseCode > 0) {
        number = int(t.responseCode);
        text = QStringLiteral("HTTP error ") + QString::number(t.responseCode);
    } else {
        text = QString::fromUtf8(t.errorBuffer).trimmed();
        if (text.isEmpty())
            text = QString::fromUtf8(curl_easy_strerror(t.code));
    }
    QStringList secrets;
    if (!session.password.isEmpty())
        secrets << session.password;
    if (session.user.size() >= 2)
        secrets << session.user;
    throw TransferError(number, scrubCredentials(text, secrets));
}

// Checks the connection settings for line breaks and takes them over for one session.
void ControllerClient::configure(Session& session, const QString& host, const QString& user,
                                 const QString& password, quint16 port)
{
    checkHost(host);
    checkLine(user, "user name");
    checkLine(password, "password");
    session.host = host;
    session.user = user;
    session.password = password;
    session.port = port;
    session.configured = true;
}

void ControllerClient::FtpConnect(const QString& host, const QString& user, const QString& password,
                                  quint16 port, int /*flag*/)
{
    auto keep = shared_from_this();
    configure(m_ftp, host, user, password, port);
    m_probeFtpPort = port;
    Transfer t;
    newEasy(t, m_ftp, true, ftpUrl(m_ftp, QString()));
    // One harmless command, so that a session that is already open is checked too (and the
    // library does not measure its reply time from the session's last exchange).
    t.quote = curl_slist_append(nullptr, "NOOP");
    curl_easy_setopt(t.easy, CURLOPT_QUOTE, t.quote);
    curl_easy_setopt(t.easy, CURLOPT_NOBODY, 1L);
    run(t, m_busyFtp);
    finish(t, m_ftp, true);
}

void ControllerClient::HttpConnect(const QString& host, const QString& user, const QString& password,
                                   quint16 port)
{
    auto keep = shared_from_this();
    configure(m_http, host, user, password, port);
    m_probeHttpPort = port;
    Transfer t;
    newEasy(t, m_http, false,
            QStringLiteral("http://") + host + QLatin1Char(':') + QString::number(port) + QLatin1Char('/'));
    curl_easy_setopt(t.easy, CURLOPT_NOBODY, 1L);
    run(t, m_busyHttp);
    finish(t, m_http, false);
}

void ControllerClient::Disconnect()
{
    auto keep = shared_from_this();
    resetMulti();
}

void ControllerClient::CloseConnections()
{
    auto keep = shared_from_this();
    m_closeWhenIdle = false;
    resetMulti();
    m_ftp.configured = false;
    m_http.configured = false;
}

long ControllerClient::FtpState()
{
    if (m_busyFtp > 0)
        return m_ftp.up ? 1 : 0;
    if (m_ftp.up && !socketAlive(m_ftp.socket)) {
        m_ftp.up = false;
        m_ftp.socket = -1;
    }
    return m_ftp.up ? 1 : 0;
}

long ControllerClient::HttpState()
{
    if (m_busyHttp > 0)
        return m_http.up ? 1 : 0;
    if (m_http.up && !socketAlive(m_http.socket)) {
        m_http.up = false;
        m_http.socket = -1;
    }
    return m_http.up ? 1 : 0;
}

bool ControllerClient::Ping(const QString& host)
{
    auto keep = shared_from_this();
    checkLine(host, "host");
    static const QRegularExpression valid(QStringLiteral("^[A-Za-z0-9._-]+$"));
    if (!valid.match(host).hasMatch())
        return false;
    const quint16 ports[] = {m_probeFtpPort, m_probeHttpPort};
    for (const quint16 port : ports) {
        QTcpSocket socket;
        QEventLoop loop;
        QTimer timer;
        timer.setSingleShot(true);
        bool answered = false;
        connect(&socket, &QTcpSocket::connected, &loop, [&] {
            answered = true;
            loop.quit();
        });
        connect(&socket, &QTcpSocket::errorOccurred, &loop, [&](QAbstractSocket::SocketError error) {
            answered = error == QAbstractSocket::ConnectionRefusedError;
            loop.quit();
        });
        connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        timer.start(m_timeouts.pingMs);
        socket.connectToHost(host, port);
        if (socket.state() != QAbstractSocket::UnconnectedState || !answered)
            loop.exec();
        socket.abort();
        if (answered)
            return true;
    }
    return false;
}

void ControllerClient::download(Session& session, bool ftp, const QString& url, const QString& localPath,
                                int overwrite)
{
    if (localPath.isEmpty())
        throw TransferError(CURLE_WRITE_ERROR, QStringLiteral("No local file name given"));
    const QFileInfo target(localPath);
    if (overwrite == 0 && target.exists())
        throw TransferError(CURLE_WRITE_ERROR, QStringLiteral("The local file exists: ") + localPath);
    // Into a fresh name beside the target, renamed over it only when complete.
    QByteArray pattern = QFile::encodeName(target.absolutePath() + QStringLiteral("/.") + target.fileName() +
                                           QStringLiteral(".part-XXXXXX"));
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0)
        throw TransferError(CURLE_WRITE_ERROR, QStringLiteral("Cannot write into ") + target.absolutePath() +
                                                   QStringLiteral(": ") +
                                                   QString::fromLocal8Bit(strerror(errno)));
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    ::fchmod(fd, 0644);
    Transfer t;
    t.fd = fd;
    bool ok = false;
    try {
        newEasy(t, session, ftp, url);
        curl_easy_setopt(t.easy, CURLOPT_WRITEFUNCTION, &ControllerClientCallbacks::writeToFile);
        curl_easy_setopt(t.easy, CURLOPT_WRITEDATA, &t);
        if (!ftp)
            curl_easy_setopt(t.easy, CURLOPT_FAILONERROR, 1L);
        run(t, ftp ? m_busyFtp : m_busyHttp);
        if (!ftp && t.code == CURLE_OK) {
            // Only a success answer carries the file: a redirect or any other answer is a failed
            // download (redirects are not followed, not even on the same controller, whose
            // files are served where their paths say), and so is a body shorter than announced.
            if (t.responseCode < 200 || t.responseCode > 299)
                t.code = CURLE_HTTP_RETURNED_ERROR;
            else if (t.announcedBytes >= 0 && t.receivedBytes != t.announcedBytes)
                t.code = CURLE_PARTIAL_FILE;
        }
        ok = t.code == CURLE_OK;
        if (::close(fd) != 0 && ok) {
            ok = false;
            t.code = CURLE_WRITE_ERROR;
        }
        t.fd = -1;
        if (ok && ::rename(pattern.constData(), QFile::encodeName(localPath).constData()) != 0) {
            const QString why = QString::fromLocal8Bit(strerror(errno));
            ::unlink(pattern.constData());
            throw TransferError(CURLE_WRITE_ERROR,
                                QStringLiteral("Cannot write ") + localPath + QStringLiteral(": ") + why);
        }
    } catch (...) {
        if (t.fd >= 0)
            ::close(t.fd);
        ::unlink(pattern.constData());
        throw;
    }
    if (!ok)
        ::unlink(pattern.constData());
    finish(t, session, ftp);
}

void ControllerClient::FtpGetFile(const QString& remotePath, const QString& localPath, int overwrite,
                                  int /*reserved*/)
{
    auto keep = shared_from_this();
    checkLine(remotePath, "controller path");
    checkLength(remotePath, "controller path");
    checkLine(localPath, "local path");
    if (!m_ftp.configured)
        throw TransferError(CURLE_FAILED_INIT, QStringLiteral("The FTP session is not open"));
    if (remotePath.isEmpty())
        throw TransferError(CURLE_REMOTE_FILE_NOT_FOUND, QStringLiteral("No controller path given"));
    download(m_ftp, true, ftpUrl(m_ftp, remotePath), localPath, overwrite);
}

void ControllerClient::HttpGetFile(const QString& remoteUrlPath, const QString& localPath, int overwrite)
{
    auto keep = shared_from_this();
    checkLine(remoteUrlPath, "URL path");
    checkLength(remoteUrlPath, "URL path");
    checkLine(localPath, "local path");
    if (!m_http.configured)
        throw TransferError(CURLE_FAILED_INIT, QStringLiteral("The HTTP session is not open"));
    QString path = remoteUrlPath;
    if (!path.startsWith(QLatin1Char('/')))
        path.prepend(QLatin1Char('/'));
    const QString url = QStringLiteral("http://") + m_http.host + QLatin1Char(':') +
                        QString::number(m_http.port) + percentEncoded(path, QByteArrayLiteral("/"));
    download(m_http, false, url, localPath, overwrite);
}

void ControllerClient::FtpCommand(const QString& commandLine, int /*type*/, int flag, QString& response)
{
    auto keep = shared_from_this();
    QString command = commandLine;
    if (command.endsWith(QStringLiteral("\r\n")))
        command.chop(2);
    checkLine(command, "command");
    checkLength(command, "command");
    if (command.trimmed().isEmpty())
        throw TransferError(CURLE_URL_MALFORMAT, QStringLiteral("No command given"));
    if (!m_ftp.configured)
        throw TransferError(CURLE_FAILED_INIT, QStringLiteral("The FTP session is not open"));
    Transfer t;
    newEasy(t, m_ftp, true, ftpUrl(m_ftp, QString()));
    const QByteArray bytes = command.toUtf8();
    t.trackedCommand = bytes.trimmed();
    curl_easy_setopt(t.easy, CURLOPT_DEBUGFUNCTION, &ControllerClientCallbacks::debug);
    curl_easy_setopt(t.easy, CURLOPT_DEBUGDATA, &t);
    curl_easy_setopt(t.easy, CURLOPT_VERBOSE, 1L);
    if (flag != 0) {
        curl_easy_setopt(t.easy, CURLOPT_CUSTOMREQUEST, bytes.constData());
        curl_easy_setopt(t.easy, CURLOPT_WRITEFUNCTION, &ControllerClientCallbacks::writeToBody);
        curl_easy_setopt(t.easy, CURLOPT_WRITEDATA, &t);
    } else {
        t.quote = curl_slist_append(nullptr, bytes.constData());
        curl_easy_setopt(t.easy, CURLOPT_QUOTE, t.quote);
        curl_easy_setopt(t.easy, CURLOPT_NOBODY, 1L);
    }
    run(t, m_busyFtp);
    finish(t, m_ftp, true);
    if (flag != 0) {
        // Listings travel as text and the transfer library hands them over with bare LF line
        // ends; give them back the CR LF the controller sent.
        QByteArray body = t.body;
        body.replace("\r\n", "\n");
        body.replace("\n", "\r\n");
        response = QString::fromUtf8(body);
    } else {
        response = QString::fromUtf8(t.trackedReply);
    }
}

void ControllerClient::FtpPutFile(const QString& localPath, const QString& remotePath, int /*type*/)
{
    auto keep = shared_from_this();
    checkLine(localPath, "local path");
    checkLine(remotePath, "controller path");
    checkLength(remotePath, "controller path");
    if (!m_ftp.configured)
        throw TransferError(CURLE_FAILED_INIT, QStringLiteral("The FTP session is not open"));
    if (remotePath.isEmpty())
        throw TransferError(CURLE_URL_MALFORMAT, QStringLiteral("No controller path given"));
    const int fd = ::open(QFile::encodeName(localPath).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw TransferError(CURLE_READ_ERROR, QStringLiteral("Cannot read ") + localPath +
                                                  QStringLiteral(": ") +
                                                  QString::fromLocal8Bit(strerror(errno)));
    struct stat st
    {
    };
    ::fstat(fd, &st);
    Transfer t;
    t.fd = fd;
    try {
        newEasy(t, m_ftp, true, ftpUrl(m_ftp, remotePath));
        curl_easy_setopt(t.easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(t.easy, CURLOPT_READFUNCTION, &ControllerClientCallbacks::readFromFile);
        curl_easy_setopt(t.easy, CURLOPT_READDATA, &t);
        curl_easy_setopt(t.easy, CURLOPT_INFILESIZE_LARGE, curl_off_t(st.st_size));
        run(t, m_busyFtp);
    } catch (...) {
        ::close(fd);
        throw;
    }
    ::close(fd);
    finish(t, m_ftp, true);
}

} // namespace nxr
