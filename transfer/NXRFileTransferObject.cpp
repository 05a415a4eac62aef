#include "transfer/NXRFileTransferObject.h"

#include "frame/ClassRegistry.h"
#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/PageTrust.h"
#include "frame/SyncCall.h"
#include "frame/Trace.h"
#include "transfer/ConnectionPool.h"
#include "transfer/ControllerPaths.h"
#include "transfer/ListingParser.h"
#include "transfer/TransferCache.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using nxr::ControllerClient;
using nxr::Failure;
using nxr::TransferError;

NXR_REGISTER_CLASS(NXRFileTransferObject)

namespace {

const QString kExternal = QStringLiteral("External");

// A failure whose whole text is fixed ("Could not connect to host ..."), reported as it is.
struct FixedTextFailure
{
    QString text;
};

int checkedPort(int value)
{
    if (value < 0 || value > 65535)
        throw Failure(QStringLiteral("Overflow"));
    return value;
}

} // namespace

NXRFileTransferObject::NXRFileTransferObject(QObject* parent) : nxr::ScriptableObject(parent)
{
    trace(QStringLiteral("Class_Initialize"), QStringLiteral("Entered"));
    properties()
        .add(
            QStringLiteral("VersionID"), [this](const QString& v) { setVersionID(v); },
            [this] { return VersionID(); })
        .addReadOnly(QStringLiteral("StorageFolder"), [this] { return StorageFolder(); })
        .addReadOnly(QStringLiteral("NXRBuildID"), [this] { return NXRBuildID(); })
        .add(
            QStringLiteral("HTTPPortNo"),
            [this](const QString& v) { setHTTPPortNo(checkedPort(nxr::toLong(v))); },
            [this] { return QString::number(m_httpPort); })
        .add(
            QStringLiteral("FTPPortNo"),
            [this](const QString& v) { setFTPPortNo(checkedPort(nxr::toLong(v))); },
            [this] { return QString::number(m_ftpPort); });
    msub_SetOverwriteFlag();
    core().guard(QStringLiteral("Class_Initialize"), [] { nxr::Globals::storageFolder(); });
    trace(QStringLiteral("Class_Initialize"), QStringLiteral("Done"));
}

NXRFileTransferObject::~NXRFileTransferObject()
{
    trace(QStringLiteral("Class_Terminate"), QStringLiteral("Entered, host=") + m_server);
    if (m_client) {
        if (connected()) {
            trace(QStringLiteral("Class_Terminate"), QStringLiteral("Closing connection"));
            DisconnectRobot(false);
        }
        if (m_client) {
            releaseSlot();
        }
    }
}

void NXRFileTransferObject::trace(const QString& routine, const QString& message) const
{
    NXR_TRACE(QStringLiteral("NXRFileTransferObject"), routine, message);
    Q_UNUSED(routine);
    Q_UNUSED(message);
}

bool NXRFileTransferObject::connected() const
{
    return m_client && (m_client->FtpState() > 0 || m_client->HttpState() > 0);
}

void NXRFileTransferObject::takeClient(const QString& poolKey, const QString& server)
{
    m_client =
        nxr::ConnectionPool::instance().getClient(poolKey, server, quint16(m_ftpPort), quint16(m_httpPort));
    m_slotServer = m_client ? server : QString();
    m_slotName =
        m_client ? nxr::ConnectionPool::slotName(server, quint16(m_ftpPort), quint16(m_httpPort)) : QString();
}

void NXRFileTransferObject::releaseSlot(bool force)
{
    if (!m_slotName.isEmpty())
        nxr::gsub_FreeFTPObject(m_poolKey, m_slotName, force);
    m_client.reset();
    m_slotServer.clear();
    m_slotName.clear();
}

void NXRFileTransferObject::dropRetiredClient()
{
    if (!m_client || !m_client->isRetired())
        return;
    // Someone closed the shared connection for everybody: continue on the one that replaced it.
    auto& pool = nxr::ConnectionPool::instance();
    if (pool.usersOf(m_slotName).contains(m_poolKey))
        m_client = pool.clientOf(m_slotName);
    else
        m_client.reset();
}

// ---------------------------------------------------------------- properties

QString NXRFileTransferObject::VersionID() const
{
    return nxr::TransferCache::versionId();
}

void NXRFileTransferObject::setVersionID(const QString& value)
{
    nxr::TransferCache::setVersionId(value);
    msub_SetOverwriteFlag();
    trace(QStringLiteral("VersionID"), QStringLiteral("new ID=") + value);
}

QString NXRFileTransferObject::StorageFolder() const
{
    return nxr::Globals::storageFolder() + QLatin1Char('/');
}

QString NXRFileTransferObject::NXRBuildID() const
{
    return QStringLiteral(NXR_BUILD_ID);
}

bool NXRFileTransferObject::CheckVNUM(int vlng_VNUMtoCheck)
{
    return vlng_VNUMtoCheck <= 64;
}

void NXRFileTransferObject::setHTTPPortNo(int value)
{
    nxr::CallEntry::run(this, [&] {
        const QString routine = QStringLiteral("HTTPPortNo");
        trace(routine, QStringLiteral("entered, port=") + QString::number(value));
        core().guard(routine, [&] {
            checkedPort(value);
            if (value == m_httpPort)
                return;
            m_httpPort = value;
            reconnectForPorts();
        });
        trace(routine, QStringLiteral("done"));
    });
}

void NXRFileTransferObject::setFTPPortNo(int value)
{
    nxr::CallEntry::run(this, [&] {
        const QString routine = QStringLiteral("FTPPortNo");
        trace(routine, QStringLiteral("port=") + QString::number(value));
        core().guard(routine, [&] {
            checkedPort(value);
            if (value == m_ftpPort)
                return;
            m_ftpPort = value;
            trace(routine, QStringLiteral("Set port number ") + QString::number(value));
            reconnectForPorts();
        });
        trace(routine, QStringLiteral("done"));
    });
}

// The ports name the controller as much as its address does: a connection is given back to the
// pool (others on the old ports keep theirs) and the one kept for the new ports is taken and, if
// this object was connected, connected.
void NXRFileTransferObject::reconnectForPorts()
{
    dropRetiredClient();
    if (!m_client)
        return;
    const bool wasConnected = connected();
    const QString server = m_slotServer;
    releaseSlot();
    takeClient(m_poolKey, server);
    if (!wasConnected || !m_client || connected())
        return;
    const QString host = nxr::HostFromServer(server);
    m_client->setProbePorts(quint16(m_ftpPort), quint16(m_httpPort));
    m_client->FtpConnect(host, m_user, m_password, quint16(m_ftpPort), -1);
    m_client->HttpConnect(host, m_user, m_password, quint16(m_httpPort));
}

void NXRFileTransferObject::msub_SetOverwriteFlag()
{
    m_overwrite = true;
    core().guard(QStringLiteral("msub_SetOverwriteFlag"),
                 [&] { m_overwrite = nxr::TransferCache::overwriteForCurrentVersion(); });
}

// ---------------------------------------------------------------- cache

QString NXRFileTransferObject::localPathFor(const QString& filePath, const QString& newFilename) const
{
    const QString name = newFilename.isEmpty() ? nxr::FileNameOfPath(filePath) : newFilename;
    const QString problem = nxr::checkLocalName(name);
    if (!problem.isEmpty())
        throw Failure(problem);
    return nxr::TransferCache::currentFolder() + name;
}

bool NXRFileTransferObject::FileExists(const QString& vstr_Filename, const QString& vstr_VersionID)
{
    const QString routine = QStringLiteral("FileExists");
    trace(routine,
          QStringLiteral("Entered, file=") + vstr_Filename + QStringLiteral(", version=") + vstr_VersionID);
    return core().guardValue(routine, false, [&] {
        const QString problem = nxr::checkLocalName(vstr_Filename);
        if (!problem.isEmpty())
            throw Failure(problem);
        const QFileInfo info(nxr::TransferCache::folderFor(vstr_VersionID) + vstr_Filename);
        return info.isFile();
    });
}

// ---------------------------------------------------------------- copy

bool NXRFileTransferObject::CopyFile(const QString& vstr_FileServer, const QString& vstr_FilePath,
                                     const QString& vstr_FTPUserName, const QString& vstr_FTPPassword,
                                     const QString& vstr_NewFilename)
{
    return nxr::CallEntry::run(this, false, [&]() -> bool {
        const QString routine = QStringLiteral("CopyFile");
        trace(routine, QStringLiteral("Entered"));
        trace(routine, QStringLiteral("From: ") + vstr_FilePath + QStringLiteral(", to: ") +
                           vstr_NewFilename + QStringLiteral(", server:") + vstr_FileServer);
        bool ok = false;
        try {
            core().guard(routine, [&] {
                ok = copyFileBody(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword,
                                  vstr_NewFilename);
            });
        } catch (const FixedTextFailure& f) {
            core().reportError(routine, f.text);
        }
        if (m_poolKey == kExternal) {
            releaseSlot();
            m_poolKey.clear();
        }
        trace(routine, QStringLiteral("Done"));
        return ok;
    });
}

bool NXRFileTransferObject::copyFileBody(const QString& server, const QString& filePath, const QString& user,
                                         const QString& password, const QString& newFilename)
{
    const QString routine = QStringLiteral("CopyFile");
    nxr::PageTrust::requireServer(server);
    ControllerClient::checkLine(filePath, "controller path");
    const QString local = localPathFor(filePath, newFilename);
    m_lastLocalPath = local;
    if (!m_overwrite && QFileInfo::exists(local)) {
        trace(routine, local + QStringLiteral(" already exists"));
        return true;
    }
    nxr::TransferCache::requireRoom();
    const QString host = nxr::HostFromServer(server);
    dropRetiredClient();
    if (!m_client) {
        if (m_poolKey.isEmpty())
            m_poolKey = kExternal;
        takeClient(m_poolKey, server);
    }
    if (!m_client)
        throw Failure(QStringLiteral("No free connection for ") + server);
    m_server = server;
    if (!connected()) {
        QString ignored;
        connectRobotImpl(m_poolKey, host, user, password, &ignored);
    }
    if (!connected())
        throw FixedTextFailure{QStringLiteral("Could not connect to host ") + host};

    if (m_client->HttpState() > 0) {
        const QString remote = nxr::RemoteUrlPath(filePath);
        QFile::remove(local);
        QString why;
        if (httpDownload(remote, local, &why))
            return true;
        QFile::remove(local);
        if (m_client->FtpState() <= 0)
            throw Failure(why);
        trace(routine, QStringLiteral("try FTP get(1)"));
        m_client->FtpGetFile(filePath, local, -1, 0);
        trace(routine, QStringLiteral("FTP get okay(1)"));
        return true;
    }
    m_client->FtpGetFile(filePath, local, -1, 0);
    return true;
}

bool NXRFileTransferObject::httpDownload(const QString& remote, const QString& localPath, QString* why)
{
    try {
        m_client->HttpGetFile(remote, localPath, -1);
    } catch (const TransferError& e) {
        *why = e.description();
        trace(QStringLiteral("CopyFile"), QStringLiteral("HTTP get failed: ") + e.description());
        return false;
    }
    QFile file(localPath);
    if (!file.exists()) {
        *why = QStringLiteral("HTTP download left no file");
        return false;
    }
    if (file.open(QIODevice::ReadOnly)) {
        // The web server answers a missing file with an error page; its first line holds the tag.
        const QByteArray firstLine = file.readLine(64 * 1024);
        if (firstLine.contains("<HTML>")) {
            trace(QStringLiteral("CopyFile"), QStringLiteral("got HTML tag, failed"));
            *why = QStringLiteral("The web server answered with an error page");
            return false;
        }
    }
    return true;
}

// ---------------------------------------------------------------- connections

bool NXRFileTransferObject::ConnectRobot(const QString& poolKey, const QString& server, const QString& user,
                                         const QString& password)
{
    return nxr::CallEntry::run(this, false, [&]() -> bool {
        const QString routine = QStringLiteral("ConnectRobot");
        bool result = false;
        QString error;
        core().guard(routine, [&] { result = connectRobotImpl(poolKey, server, user, password, &error); });
        if (!result && !error.isEmpty())
            core().reportError(routine, error);
        return result;
    });
}

bool NXRFileTransferObject::connectRobotImpl(const QString& poolKey, const QString& server,
                                             const QString& user, const QString& password, QString* error)
{
    const QString routine = QStringLiteral("ConnectRobot");
    trace(routine, QStringLiteral("Connecting robot..."));
    if (!nxr::PageTrust::mayReachServer(server)) {
        *error = server + QStringLiteral(" is not a trusted controller of this page");
        return false;
    }
    m_poolKey = poolKey;
    dropRetiredClient();
    bool fresh = false;
    if (!m_client) {
        takeClient(poolKey, server);
        fresh = true;
    }
    if (!m_client) {
        *error = QStringLiteral("No free connection for ") + server;
        return false;
    }
    const QString host = nxr::HostFromServer(server);
    m_client->setProbePorts(quint16(m_ftpPort), quint16(m_httpPort));
    if (!m_client->Ping(host)) {
        *error = QStringLiteral("Could not ping host ") + host;
        return false;
    }
    m_server = server;
    m_user = user;
    m_password = password;
    bool already = fresh && connected();
    if (!already) {
        DisconnectRobot(false);
        if (!m_client) {
            takeClient(poolKey, server);
            if (!m_client) {
                *error = QStringLiteral("No free connection for ") + server;
                return false;
            }
            already = connected();
        }
    }
    if (!already) {
        m_client->Disconnect();
        m_client->setProbePorts(quint16(m_ftpPort), quint16(m_httpPort));
        try {
            m_client->FtpConnect(host, user, password, quint16(m_ftpPort), -1);
        } catch (const TransferError& e) {
            nxr::errorTrace(QStringLiteral("NXRFileTransferObject"), routine,
                            QStringLiteral("FTP connect to ") + host + QStringLiteral(" failed: ") +
                                e.description());
        }
        try {
            m_client->HttpConnect(host, user, password, quint16(m_httpPort));
        } catch (const TransferError& e) {
            nxr::errorTrace(QStringLiteral("NXRFileTransferObject"), routine,
                            QStringLiteral("HTTP connect to ") + host + QStringLiteral(" failed: ") +
                                e.description());
        }
    }
    m_connectedServer = server;
    m_currentDirectory = QStringLiteral("\\");
    const bool result = connected();
    trace(routine, QStringLiteral("Connect done, result = ") + nxr::fromBool(result));
    if (!result)
        *error = QStringLiteral("Could not connect to host ") + host;
    return result;
}

void NXRFileTransferObject::DisconnectRobot(bool force)
{
    trace(QStringLiteral("DisconnectRobot"), QStringLiteral("Entered, force=") + nxr::fromBool(force));
    if (m_client && connected()) {
        releaseSlot(force);
    }
}

// ---------------------------------------------------------------- FTP operations with retries

bool NXRFileTransferObject::ensureFtpConnection(const QString& routine, const QString& server,
                                                const QString& user, const QString& password)
{
    dropRetiredClient();
    if (!m_client)
        takeClient(m_poolKey, server);
    if (!m_client) {
        nxr::errorTrace(QStringLiteral("NXRFileTransferObject"), routine, QStringLiteral("No FTP Object!"));
    } else if (m_client->FtpState() <= 0) {
        QString ignored;
        connectRobotImpl(m_poolKey, server, user, password, &ignored);
    }
    if (!m_client || m_client->FtpState() <= 0) {
        core().reportError(routine, QStringLiteral("Could not connect to host ") + server);
        return false;
    }
    return true;
}

template <typename Operation>
bool NXRFileTransferObject::withRetry(const QString& routine, const QString& errorPrefix, int retries,
                                      const QString& server, const QString& user, const QString& password,
                                      bool raise501AtOnce, Operation&& operation)
{
    for (;;) {
        if (!ensureFtpConnection(routine, server, user, password))
            return false;
        try {
            operation();
            return true;
        } catch (const TransferError& e) {
            nxr::errorTrace(QStringLiteral("NXRFileTransferObject"), routine,
                            errorPrefix + QString::number(e.number()) + QStringLiteral(", ") +
                                e.description() + QStringLiteral(", retry=") + QString::number(retries));
            if (raise501AtOnce && e.description().contains(QStringLiteral("501")))
                throw;
            // -1 stands for the default of two retries: three attempts in all.
            const int left = retries == -1 ? 2 : retries;
            if (left > 0) {
                const int next = left - 1;
                DisconnectRobot(true);
                retries = next;
                continue;
            }
            throw;
        }
    }
}

QString NXRFileTransferObject::poolServer() const
{
    return m_slotServer.isEmpty() ? m_server : m_slotServer;
}

bool NXRFileTransferObject::UploadFile(const QString& poolKey, const QString& pathA, const QString& server,
                                       const QString& pathB, const QString& user, const QString& password,
                                       int retries)
{
    return nxr::CallEntry::run(this, false, [&]() -> bool {
        const QString routine = QStringLiteral("UploadFile");
        trace(routine, QStringLiteral("Entered, from: ") + pathA + QStringLiteral(", to: ") + pathB +
                           QStringLiteral(", server:") + server + QStringLiteral(", retries=") +
                           QString::number(retries));
        ControllerClient::checkLine(pathA, "local path");
        ControllerClient::checkLine(pathB, "controller path");
        nxr::PageTrust::requireServer(server);
        if (!m_client || m_poolKey.isEmpty())
            m_poolKey = poolKey;
        m_server = server;
        m_user = user;
        m_password = password;
        const bool done = withRetry(routine, QStringLiteral("Error on Put: "), retries, server, user,
                                    password, false, [&] { m_client->FtpPutFile(pathA, pathB, 2); });
        trace(routine, QStringLiteral("Done"));
        return done;
    });
}

QString NXRFileTransferObject::mfstr_GetDirectoryList(const QString& path, bool longForm, int retries)
{
    const QString routine = QStringLiteral("mfstr_GetDirectoryList");
    trace(routine, QStringLiteral("Entered, path=") + path);
    ControllerClient::checkLine(path, "path");
    const QString verb = longForm ? QStringLiteral("LIST") : QStringLiteral("NLST");
    const QString command = path.trimmed().isEmpty()
                                ? verb + QStringLiteral("\r\n")
                                : verb + QLatin1Char(' ') + path + QStringLiteral("\r\n");
    const QString server = poolServer();
    dropRetiredClient();
    if (!m_client)
        takeClient(m_poolKey, server);
    if (!m_client) {
        nxr::errorTrace(QStringLiteral("NXRFileTransferObject"), routine, QStringLiteral("No FTP Object!"));
        return QString();
    }
    QString response;
    withRetry(routine, QStringLiteral("Error on Command: "), retries, server, m_user, m_password, false,
              [&] { m_client->FtpCommand(command, 2, -1, response); });
    return response;
}

void NXRFileTransferObject::ChangeDirectory(const QString& path, int retries)
{
    const QString routine = QStringLiteral("ChangeDirectory");
    trace(routine, QStringLiteral("Entered, path=") + path);
    ControllerClient::checkLine(path, "path");
    const QString command = QStringLiteral("cwd ") + path + QStringLiteral("\r\n");
    QString response;
    if (withRetry(routine, QStringLiteral("Error on Command: "), retries, poolServer(), m_user, m_password,
                  true, [&] { m_client->FtpCommand(command, 2, 0, response); }))
        m_currentDirectory = path;
}

QString NXRFileTransferObject::DriveList()
{
    const QString routine = QStringLiteral("DriveList");
    dropRetiredClient();
    if (!m_client || m_client->FtpState() <= 0)
        return QString();
    ChangeDirectory(QStringLiteral("\\"), -1);
    if (!m_client)
        return QString();
    QString response;
    m_client->FtpCommand(QStringLiteral("NLST"), 2, -1, response);
    trace(routine, QStringLiteral("strResponse=") + response);
    return response;
}

QStringList NXRFileTransferObject::FileListing(const QString& path)
{
    trace(QStringLiteral("FileListing"), QStringLiteral("entered, path=") + path);
    return listing(path, true);
}

QStringList NXRFileTransferObject::FolderListing(const QString& path)
{
    trace(QStringLiteral("FolderListing"), QStringLiteral("entered, path=") + path);
    return listing(path, false);
}

QStringList NXRFileTransferObject::listing(const QString& path, bool files)
{
    const QStringList& cached = files ? m_fileNames : m_folderNames;
    // Only big listings are kept: a folder of that many files is not re-read for every call.
    if (path == m_listingPath && cached.size() - 1 > 200)
        return cached;
    m_listingPath = path;
    const nxr::DirectoryListing parsed = nxr::parseLongListing(mfstr_GetDirectoryList(path, true, -1));
    m_fileNames = parsed.files;
    m_folderNames = parsed.folders;
    return files ? m_fileNames : m_folderNames;
}

// ---------------------------------------------------------------- page script members

namespace {
const QString kScriptKey = QStringLiteral("Page");
} // namespace

template <typename Body>
void NXRFileTransferObject::forScript(const QString& routine, const QString& server, const QString& user,
                                      const QString& password, Body&& body)
{
    const bool ownConnection = !m_client;
    core().guard(routine, [&] {
        ControllerClient::checkLine(server, "server");
        if (ownConnection) {
            QString error;
            if (!connectRobotImpl(kScriptKey, server, user, password, &error))
                throw FixedTextFailure{error};
        }
        body();
    });
    if (ownConnection && m_client) {
        releaseSlot();
        m_poolKey.clear();
    }
}

QStringList NXRFileTransferObject::ListFiles(const QString& vstr_FileServer, const QString& vstr_Path,
                                             const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    return nxr::CallEntry::run(this, QStringList(), [&]() -> QStringList {
        QStringList result;
        try {
            forScript(QStringLiteral("ListFiles"), vstr_FileServer, vstr_FTPUserName, vstr_FTPPassword,
                      [&] { result = FileListing(vstr_Path); });
        } catch (const FixedTextFailure& f) {
            core().reportError(QStringLiteral("ListFiles"), f.text);
        }
        return result;
    });
}

QStringList NXRFileTransferObject::ListFolders(const QString& vstr_FileServer, const QString& vstr_Path,
                                               const QString& vstr_FTPUserName,
                                               const QString& vstr_FTPPassword)
{
    return nxr::CallEntry::run(this, QStringList(), [&]() -> QStringList {
        QStringList result;
        try {
            forScript(QStringLiteral("ListFolders"), vstr_FileServer, vstr_FTPUserName, vstr_FTPPassword,
                      [&] { result = FolderListing(vstr_Path); });
        } catch (const FixedTextFailure& f) {
            core().reportError(QStringLiteral("ListFolders"), f.text);
        }
        return result;
    });
}

QString NXRFileTransferObject::ListDrives(const QString& vstr_FileServer, const QString& vstr_FTPUserName,
                                          const QString& vstr_FTPPassword)
{
    return nxr::CallEntry::run(this, QString(), [&]() -> QString {
        QString result;
        try {
            forScript(QStringLiteral("ListDrives"), vstr_FileServer, vstr_FTPUserName, vstr_FTPPassword,
                      [&] { result = DriveList(); });
        } catch (const FixedTextFailure& f) {
            core().reportError(QStringLiteral("ListDrives"), f.text);
        }
        return result;
    });
}

bool NXRFileTransferObject::UploadCachedFile(const QString& vstr_FileServer,
                                             const QString& vstr_CachedFilename, const QString& vstr_FilePath,
                                             const QString& vstr_FTPUserName, const QString& vstr_FTPPassword)
{
    return nxr::CallEntry::run(this, false, [&]() -> bool {
        bool done = false;
        try {
            forScript(QStringLiteral("UploadCachedFile"), vstr_FileServer, vstr_FTPUserName, vstr_FTPPassword,
                      [&] {
                          const QString local = localPathFor(QString(), vstr_CachedFilename);
                          if (!QFileInfo(local).isFile())
                              throw Failure(QStringLiteral("The cache holds no file ") + vstr_CachedFilename);
                          done = UploadFile(m_poolKey, local, vstr_FileServer, vstr_FilePath,
                                            vstr_FTPUserName, vstr_FTPPassword, -1);
                      });
        } catch (const FixedTextFailure& f) {
            core().reportError(QStringLiteral("UploadCachedFile"), f.text);
        }
        return done;
    });
}

bool NXRFileTransferObject::WriteCachedTextFile(const QString& vstr_CachedFilename, const QString& vstr_Text)
{
    const QString routine = QStringLiteral("WriteCachedTextFile");
    trace(routine, QStringLiteral("Entered, file=") + vstr_CachedFilename);
    return core().guardValue(routine, false, [&] {
        const QByteArray bytes = vstr_Text.toUtf8();
        if (bytes.size() > kMaxCachedText)
            throw Failure(QStringLiteral("text longer than %1 bytes").arg(kMaxCachedText));
        const QString local = localPathFor(QString(), vstr_CachedFilename);
        nxr::TransferCache::requireRoom(); // the cache's quota holds for a page's texts too
        QDir().mkpath(QFileInfo(local).absolutePath());
        QSaveFile file(local);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
            throw Failure(QStringLiteral("cannot write ") + vstr_CachedFilename);
        return true;
    });
}
