#pragma once
// The controller's files for the image display, through a file transfer object of its own that
// it creates on first use and that takes its pooled connection under the key "NXRImageDisplay".

#include "frame/Export.h"
#include "imagedisplay/loading/ControllerFiles.h"

#include <QString>

#include <memory>

class NXRFileTransferObject;

namespace nxr {

class NXR_EXPORT TransferFiles : public ControllerFiles
{
public:
    TransferFiles();
    ~TransferFiles() override;

    // The transfer object, created on first use with the ports set so far.
    NXRFileTransferObject& transfer();
    bool hasTransfer() const { return m_transfer != nullptr; }
    void setFtpPort(int port);
    void setHttpPort(int port);

    // The file comes down into the transfer object's cache under a name of this object's own and
    // is then moved to `localPath`, so a cached copy is never mistaken for a fresh one.
    bool copyFromController(const QString& server, const QString& controllerPath, const QString& userName,
                            const QString& password, const QString& localPath, QString* error) override;
    // FTP upload with the transfer object's retry rule.
    bool copyToController(const QString& localPath, const QString& server, const QString& controllerPath,
                          const QString& userName, const QString& password, QString* error) override;

private:
    bool connect(const QString& server, const QString& userName, const QString& password, QString* error);

    std::unique_ptr<NXRFileTransferObject> m_transfer;
    QString m_connectedServer;
    QString m_connectedUser;
    int m_ftpPort = 21;
    int m_httpPort = 80;
};

} // namespace nxr
