#include "imagedisplay/dialog/RemoteFolders.h"

#include "frame/Conversions.h"
#include "frame/Trace.h"
#include "transfer/ControllerClient.h"
#include "transfer/NXRFileTransferObject.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace nxr {

namespace RemotePaths {

QString deviceOf(const QString& path)
{
    const QString p = path.trimmed();
    const int colon = p.indexOf(QLatin1Char(':'));
    if (colon <= 0)
        return QString();
    const QString device = p.left(colon);
    for (const QChar c : device)
        if (!c.isLetterOrNumber())
            return QString();
    return device.toUpper() + QLatin1Char(':');
}

bool isMemoryDevice(const QString& path)
{
    const QString device = deviceOf(path);
    if (device.isEmpty())
        return false;
    return kMemoryDevices.split(QLatin1Char(';'), Qt::SkipEmptyParts).contains(device);
}

QStringList rootFolders(const QString& deviceList)
{
    QStringList roots{deviceOf(kDefaultFolder) + QLatin1Char('\\')};
    for (const QString& entry : deviceList.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QString device = deviceOf(entry);
        if (device.isEmpty() || isMemoryDevice(device))
            continue;
        const QString root = device + QLatin1Char('\\');
        if (!roots.contains(root))
            roots << root;
    }
    return roots;
}

QString join(const QString& folder, const QString& name)
{
    if (folder.endsWith(QLatin1Char('\\')))
        return folder + name;
    if (folder.endsWith(QLatin1Char(':')))
        return folder + QLatin1Char('\\') + name;
    return folder + QLatin1Char('\\') + name;
}

bool isFilePath(const QString& path)
{
    if (deviceOf(path).isEmpty() || path.endsWith(QLatin1Char('\\')))
        return false;
    static const QRegularExpression bad(QStringLiteral("[*?\"<>|\\r\\n\\x00/]"));
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('\\')) + 1);
    return !name.isEmpty() && !name.contains(QLatin1Char(':')) && !path.contains(bad);
}

} // namespace RemotePaths

namespace {
// 1 to 12 for "Jan" to "Dec" in any case, 0 otherwise.
int monthNumber(QStringView name)
{
    static const char* const months[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                         "jul", "aug", "sep", "oct", "nov", "dec"};
    for (int i = 0; i < 12; ++i)
        if (name.compare(QLatin1String(months[i]), Qt::CaseInsensitive) == 0)
            return i + 1;
    return 0;
}
} // namespace

std::vector<RemoteEntry> parseRemoteListing(const QString& response, const QDate& today)
{
    std::vector<RemoteEntry> entries;
    static const QRegularExpression line(
        QStringLiteral("^([-dDlL][-rwxsStT]{9})\\s+\\S+\\s+\\S+\\s+\\S+\\s+(\\d+)\\s+"
                       "([A-Za-z]{3})\\s+(\\d{1,2})\\s+(\\d{1,2}:\\d{2}|\\d{4})\\s(.+)$"));
    const QStringList lines = response.split(QRegularExpression(QStringLiteral("\r?\n")));
    entries.reserve(std::size_t(lines.size()));
    for (const QString& raw : lines) {
        const QRegularExpressionMatch m = line.match(raw.trimmed());
        if (!m.hasMatch())
            continue;
        RemoteEntry e;
        e.name = m.captured(6).trimmed();
        if (e.name.isEmpty() || e.name == QLatin1String(".") || e.name == QLatin1String(".."))
            continue;
        e.folder = m.captured(1).at(0).toUpper() == QLatin1Char('D');
        e.size = m.captured(2).toLongLong();
        e.date = m.captured(3) + QLatin1Char(' ') + m.captured(4) + QLatin1Char(' ') + m.captured(5);
        const int month = monthNumber(m.capturedView(3));
        const int day = m.capturedView(4).toInt();
        const QStringView last = m.capturedView(5);
        if (month == 0) {
            // left invalid: the date text still shows
        } else if (last.contains(QLatin1Char(':'))) {
            // Without a year: this year, or last year for a date that would lie in the future.
            const qsizetype colon = last.indexOf(QLatin1Char(':'));
            const QTime time(last.left(colon).toInt(), last.mid(colon + 1).toInt());
            QDate date(today.year(), month, day);
            if (date.isValid() && date > today.addDays(1))
                date = QDate(today.year() - 1, month, day);
            e.modified = QDateTime(date, time, Qt::UTC);
        } else {
            e.modified = QDateTime(QDate(last.toInt(), month, day), QTime(0, 0), Qt::UTC);
        }
        entries.push_back(std::move(e));
    }
    return entries;
}

namespace {
const QString kPoolKey = QStringLiteral("dlg_OpenSave");
} // namespace

TransferFolders::TransferFolders(int ftpPort, int httpPort)
    : m_transfer(std::make_unique<NXRFileTransferObject>())
{
    m_transfer->setFTPPortNo(ftpPort);
    m_transfer->setHTTPPortNo(httpPort);
}

TransferFolders::~TransferFolders() = default;

bool TransferFolders::connect(const QString& server, const QString& user, const QString& password,
                              QString* error)
{
    if (m_connected && server == m_server && user == m_user && password == m_password)
        return true;
    disconnect();
    if (!m_transfer->ConnectRobot(kPoolKey, server, user, password)) {
        *error = scrubCredentials(m_transfer->LastErrorString(), {user, password});
        return false;
    }
    // Listings and uploads need the FTP session; HTTP alone (a refused login) is not enough.
    if (!m_transfer->client() || m_transfer->client()->FtpState() <= 0) {
        m_transfer->DisconnectRobot(false);
        *error = QStringLiteral("Could not log in to ") + server +
                 QStringLiteral(": the controller refused the login or its FTP service does not answer");
        return false;
    }
    m_server = server;
    m_user = user;
    m_password = password;
    m_connected = true;
    return true;
}

bool TransferFolders::list(const QString& folder, std::vector<RemoteEntry>* entries, QString* error)
{
    if (!m_connected) {
        *error = QStringLiteral("Not connected");
        return false;
    }
    try {
        m_transfer->core().setLastError(QString());
        const QString response = m_transfer->mfstr_GetDirectoryList(folder, true, -1);
        if (!m_transfer->LastErrorString().isEmpty()) {
            *error = scrubCredentials(m_transfer->LastErrorString(), {m_user, m_password});
            return false;
        }
        *entries = parseRemoteListing(response);
        return true;
    } catch (const Failure& f) {
        *error = scrubCredentials(f.description(), {m_user, m_password});
    }
    return false;
}

bool TransferFolders::upload(const QString& localPath, const QString& controllerPath, QString* error)
{
    if (!m_connected) {
        *error = QStringLiteral("Not connected");
        return false;
    }
    try {
        if (m_transfer->UploadFile(kPoolKey, localPath, m_server, controllerPath, m_user, m_password, -1))
            return true;
        *error = m_transfer->LastErrorString();
    } catch (const Failure& f) {
        *error = scrubCredentials(f.description(), {m_user, m_password});
    }
    return false;
}

bool TransferFolders::fetch(const QString& controllerPath, const QString& cacheName, QString* localPath,
                            QString* error)
{
    if (!m_connected) {
        *error = QStringLiteral("Not connected");
        return false;
    }
    try {
        const QString cached = m_transfer->localPathFor(controllerPath, cacheName);
        if (QFileInfo(cached).isFile()) {
            *localPath = cached;
            return true;
        }
        if (!m_transfer->CopyFile(m_server, controllerPath, m_user, m_password, cacheName)) {
            *error = scrubCredentials(m_transfer->LastErrorString(), {m_user, m_password});
            return false;
        }
        *localPath = m_transfer->lastLocalPath();
        return true;
    } catch (const Failure& f) {
        *error = f.description();
    }
    return false;
}

void TransferFolders::disconnect()
{
    if (m_connected)
        m_transfer->DisconnectRobot(false);
    m_connected = false;
}

} // namespace nxr
