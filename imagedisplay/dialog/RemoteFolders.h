#pragma once
// The controller side of the open/save dialog: which devices it browses, controller path
// arithmetic, the long listing with sizes and dates, and the connection it lists through.
//
// Devices: the folder tree offers "MC:" (where it starts, "MC:\") and the devices of
// kRemoteDevices, split at ";" with empty entries skipped. MD: and MDB: (kMemoryDevices) are the
// controller's memory devices: their files are made by the controller on request from programs
// and system state, and nothing written there is kept as a file. They are never offered in the
// tree, even when a device list names them; a file path on them typed by the user can be opened
// (it must hold an image like any other), and saving to them is refused with a message.

#include "frame/Export.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class NXRFileTransferObject;

namespace nxr {

namespace RemotePaths {
inline const QString kRemoteDevices = QStringLiteral("UD1:;MCV:;UT1:;");
inline const QString kMemoryDevices = QStringLiteral("MD:;MDB:;");
inline const QString kDefaultFolder = QStringLiteral("MC:\\");
// The folder the display passes its own temporary image files through.
inline const QString kTemporaryFolder = QStringLiteral("TD:\\");

// The device of a path, upper-cased with its colon ("MC:"); "" when the path names none.
NXR_EXPORT QString deviceOf(const QString& path);
// True when the path lies on one of kMemoryDevices.
NXR_EXPORT bool isMemoryDevice(const QString& path);
// The tree's root folders ("MC:\", "UD1:\", ...): the default folder's device first, then each
// device of `deviceList` once, memory devices left out.
NXR_EXPORT QStringList rootFolders(const QString& deviceList = kRemoteDevices);
// A name inside a folder: "MC:\" + "A" gives "MC:\A", "MC:\A" + "B.PNG" gives "MC:\A\B.PNG".
NXR_EXPORT QString join(const QString& folder, const QString& name);
// True for a whole controller file path ("DEV:\...\NAME"), without wildcards or control characters.
NXR_EXPORT bool isFilePath(const QString& path);
} // namespace RemotePaths

// One line of the controller's long listing.
struct NXR_EXPORT RemoteEntry
{
    QString name;
    bool folder = false;
    qint64 size = 0;
    QString date; // as the controller wrote it ("Nov 22 10:05" or "Nov 22 2025")
    // The controller's clock reading as written, kept without any time-zone conversion (held as
    // UTC, so reading it back gives the same day and time; no local-time lookups per line).
    QDateTime modified;
};

// Parses a LIST answer: attributes first ("d" or "D" for folders), size as the fifth field, the
// date in the sixth to eighth, the name after them (names with blanks kept whole). ".", ".." and
// lines that do not have that shape are skipped.
NXR_EXPORT std::vector<RemoteEntry> parseRemoteListing(const QString& response,
                                                       const QDate& today = QDate::currentDate());

// What the dialog needs of the controller. Both calls wait in the event loop (the dialog keeps
// painting and taking clicks meanwhile) and put the reason for a failure into *error.
class NXR_EXPORT RemoteFolders
{
public:
    virtual ~RemoteFolders() = default;
    virtual bool connect(const QString& server, const QString& user, const QString& password,
                         QString* error) = 0;
    virtual bool list(const QString& folder, std::vector<RemoteEntry>* entries, QString* error) = 0;
    virtual bool upload(const QString& localPath, const QString& controllerPath, QString* error) = 0;
    // A controller file in the local cache under `cacheName`: fetched only when the cache does not
    // hold it yet. *localPath tells where it is.
    virtual bool fetch(const QString& controllerPath, const QString& cacheName, QString* localPath,
                       QString* error) = 0;
    virtual bool isConnected() const = 0;
    virtual void disconnect() = 0;
};

// RemoteFolders through a file transfer object of its own, pooled under the key "dlg_OpenSave".
class NXR_EXPORT TransferFolders : public RemoteFolders
{
public:
    TransferFolders(int ftpPort, int httpPort);
    ~TransferFolders() override;

    bool connect(const QString& server, const QString& user, const QString& password,
                 QString* error) override;
    bool list(const QString& folder, std::vector<RemoteEntry>* entries, QString* error) override;
    bool upload(const QString& localPath, const QString& controllerPath, QString* error) override;
    bool fetch(const QString& controllerPath, const QString& cacheName, QString* localPath,
               QString* error) override;
    bool isConnected() const override { return m_connected; }
    void disconnect() override;

private:
    std::unique_ptr<NXRFileTransferObject> m_transfer;
    QString m_server;
    QString m_user;
    QString m_password;
    bool m_connected = false;
};

} // namespace nxr
