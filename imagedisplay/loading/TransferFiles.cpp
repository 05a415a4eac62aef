#include "imagedisplay/loading/TransferFiles.h"

#include "frame/Conversions.h"
#include "transfer/ControllerClient.h"
#include "transfer/NXRFileTransferObject.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace nxr {
namespace {

const QString kPoolKey = QStringLiteral("NXRImageDisplay");

} // namespace

TransferFiles::TransferFiles() = default;
TransferFiles::~TransferFiles() = default;

NXRFileTransferObject& TransferFiles::transfer()
{
    if (!m_transfer) {
        m_transfer = std::make_unique<NXRFileTransferObject>();
        m_transfer->setFTPPortNo(m_ftpPort);
        m_transfer->setHTTPPortNo(m_httpPort);
    }
    return *m_transfer;
}

void TransferFiles::setFtpPort(int port)
{
    m_ftpPort = port;
    if (m_transfer)
        m_transfer->setFTPPortNo(port);
}

void TransferFiles::setHttpPort(int port)
{
    m_httpPort = port;
    if (m_transfer)
        m_transfer->setHTTPPortNo(port);
}

bool TransferFiles::connect(const QString& server, const QString& userName, const QString& password,
                            QString* error)
{
    NXRFileTransferObject& t = transfer();
    // One connection for the display's whole life, kept in the pool under the display's key; the
    // transfer object reconnects it by itself when it went down.
    if (t.poolKey() == kPoolKey && t.client() && m_connectedServer == server && m_connectedUser == userName)
        return true;
    if (!t.ConnectRobot(kPoolKey, server, userName, password)) {
        *error = t.LastErrorString();
        return false;
    }
    m_connectedServer = server;
    m_connectedUser = userName;
    return true;
}

bool TransferFiles::copyFromController(const QString& server, const QString& controllerPath,
                                       const QString& userName, const QString& password,
                                       const QString& localPath, QString* error)
{
    if (!connect(server, userName, password, error))
        return false;
    NXRFileTransferObject& t = transfer();
    // Named for this process and object: several displays (and page hosts) share the storage folder.
    const QString name = QStringLiteral("display-download-%1-%2.tmp")
                             .arg(QCoreApplication::applicationPid())
                             .arg(quintptr(this), 0, 16);
    if (!t.CopyFile(server, controllerPath, userName, password, name)) {
        *error = t.LastErrorString();
        return false;
    }
    const QString downloaded = t.lastLocalPath();
    if (!QFileInfo::exists(downloaded)) {
        *error = QStringLiteral("the copy of ") + controllerPath + QStringLiteral(" did not arrive");
        return false;
    }
    // Replace in one step, so another process writing the same file never sees it missing.
    if (std::rename(QFile::encodeName(downloaded).constData(), QFile::encodeName(localPath).constData()) == 0)
        return true;
    QFile::remove(localPath);
    // Another file system: copy, then drop the download.
    const bool copied = QFile::copy(downloaded, localPath);
    QFile::remove(downloaded);
    if (!copied)
        *error = QStringLiteral("cannot write ") + localPath;
    return copied;
}

bool TransferFiles::copyToController(const QString& localPath, const QString& server,
                                     const QString& controllerPath, const QString& userName,
                                     const QString& password, QString* error)
{
    if (!connect(server, userName, password, error))
        return false;
    NXRFileTransferObject& t = transfer();
    try {
        if (t.UploadFile(kPoolKey, localPath, server, controllerPath, userName, password, -1))
            return true;
        *error = t.LastErrorString();
    } catch (const Failure& f) {
        *error = f.description();
    }
    return false;
}

} // namespace nxr
