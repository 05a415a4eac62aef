#pragma once
// NXRFileTransferObject: copies controller files into the local cache (HTTP first, FTP as the
// fallback), uploads files by FTP, lists controller folders and drives, and shares one pooled
// connection per controller with every other user in the process.
//
// Use from C++ (the image display, the open/save dialog): CopyFile is the entry that fetches a
// controller file into the cache and returns when it is there. It waits in a local event loop,
// so the UI keeps painting and timers fire meanwhile (be ready for re-entry).
//
//     NXRFileTransferObject transfer;
//     transfer.setFTPPortNo(21);                    // only when not the defaults 21 / 80
//     if (transfer.CopyFile(server, "MC:\\VISION\\GREY640.PNG", user, password, "")) {
//         const QString local = transfer.lastLocalPath();   // e.g. /tmp/TORVIK/V940P01/GREY640.PNG
//         ...load it...
//     } else {
//         const QString why = transfer.LastErrorString();  // "Error in CopyFile: ..." etc.
//     }
//
// localPathFor(path, newName) tells the local path beforehand (the same rule CopyFile uses).
// A caller that wants its own pool key calls ConnectRobot(key, server, user, password) first;
// CopyFile then uses that connection and keeps it. Without it CopyFile takes the pool's
// connection under the key "External" and gives it back at the end.
//
// The library-internal operations (ConnectRobot ... DriveList) that end in a transfer or command
// error after their retries throw nxr::TransferError (number and description, no credentials);
// the public members never throw and report through LastErrorString and OnError.

#include "frame/Export.h"
#include "frame/ScriptableObject.h"
#include "transfer/ControllerClient.h"

#include <QString>
#include <QStringList>

#include <memory>

class NXR_EXPORT NXRFileTransferObject : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Copies, uploads and lists controller files (HTTP first, FTP as fallback)")
    Q_PROPERTY(QString VersionID READ VersionID WRITE setVersionID)
    Q_PROPERTY(QString StorageFolder READ StorageFolder)
    Q_PROPERTY(QString NXRBuildID READ NXRBuildID)
    Q_PROPERTY(int HTTPPortNo READ HTTPPortNo WRITE setHTTPPortNo)
    Q_PROPERTY(int FTPPortNo READ FTPPortNo WRITE setFTPPortNo)

public:
    explicit NXRFileTransferObject(QObject* parent = nullptr);
    ~NXRFileTransferObject() override;

    // Copies vstr_FilePath from the controller into the cache folder of the current version, under
    // vstr_NewFilename or (when empty) the file name of the path. True when the file is there.
    Q_INVOKABLE bool CopyFile(const QString& vstr_FileServer, const QString& vstr_FilePath,
                              const QString& vstr_FTPUserName, const QString& vstr_FTPPassword,
                              const QString& vstr_NewFilename);
    // True when the cache of version vstr_VersionID holds vstr_Filename.
    Q_INVOKABLE bool FileExists(const QString& vstr_Filename, const QString& vstr_VersionID);
    // True for version numbers up to 64 (every negative number included).
    Q_INVOKABLE bool CheckVNUM(int vlng_VNUMtoCheck);

    // ---- For page scripts: listings and uploads that report failures through LastErrorString and
    // OnError instead of throwing. Each takes the pooled connection to the server and gives it
    // back at the end, like CopyFile. An upload sends a file of the cache folder (a plain file
    // name, as CopyFile's new name), never an arbitrary local file.
    Q_INVOKABLE QStringList ListFiles(const QString& vstr_FileServer, const QString& vstr_Path,
                                      const QString& vstr_FTPUserName, const QString& vstr_FTPPassword);
    Q_INVOKABLE QStringList ListFolders(const QString& vstr_FileServer, const QString& vstr_Path,
                                        const QString& vstr_FTPUserName, const QString& vstr_FTPPassword);
    Q_INVOKABLE QString ListDrives(const QString& vstr_FileServer, const QString& vstr_FTPUserName,
                                   const QString& vstr_FTPPassword);
    Q_INVOKABLE bool UploadCachedFile(const QString& vstr_FileServer, const QString& vstr_CachedFilename,
                                      const QString& vstr_FilePath, const QString& vstr_FTPUserName,
                                      const QString& vstr_FTPPassword);
    // Writes a small text (UTF-8, at most kMaxCachedText bytes) into the cache folder under a plain
    // file name, replacing a file of that name; the page's way to make what UploadCachedFile sends
    // (settings, results); refused once the cache is at its quota. True when written.
    Q_INVOKABLE bool WriteCachedTextFile(const QString& vstr_CachedFilename, const QString& vstr_Text);
    static constexpr int kMaxCachedText = 64 * 1024;

    QString VersionID() const;
    void setVersionID(const QString& value);
    QString StorageFolder() const;
    QString NXRBuildID() const;
    int HTTPPortNo() const { return m_httpPort; }
    void setHTTPPortNo(int value);
    int FTPPortNo() const { return m_ftpPort; }
    void setFTPPortNo(int value);

    // ---- C++ entry points for the other controls

    // The local path CopyFile writes to for these arguments; throws nxr::Failure for a local name
    // that would leave the cache folder.
    QString localPathFor(const QString& filePath, const QString& newFilename) const;
    // The local path of the last CopyFile ("" before the first).
    QString lastLocalPath() const { return m_lastLocalPath; }

    // Takes a pooled connection under poolKey and connects it (FTP and HTTP). False when the host
    // does not answer or no session came up (LastErrorString tells).
    bool ConnectRobot(const QString& poolKey, const QString& server, const QString& user,
                      const QString& password);
    // Gives the connection back to the pool when it is connected (force: see ConnectionPool).
    void DisconnectRobot(bool force);
    // FTP upload of the local file pathA to the controller path pathB, with the retry rule
    // (retries = -1: three attempts in all). Returns false when no connection could be made;
    // throws nxr::TransferError when the last attempt failed.
    bool UploadFile(const QString& poolKey, const QString& pathA, const QString& server, const QString& pathB,
                    const QString& user, const QString& password, int retries = -1);
    // Names of the files / subfolders of a controller folder, in capitals (see ListingParser).
    QStringList FileListing(const QString& path);
    QStringList FolderListing(const QString& path);
    // The raw answer of "LIST" (longForm) or "NLST" for path, under the retry rule.
    QString mfstr_GetDirectoryList(const QString& path, bool longForm, int retries = -1);
    // "cwd path"; a "501" answer is raised at once, other errors follow the retry rule.
    void ChangeDirectory(const QString& path, int retries = -1);
    // The controller's device names (NLST at "\"), "" without an FTP session.
    QString DriveList();
    void msub_SetOverwriteFlag();

    // For tests and diagnostics.
    std::shared_ptr<nxr::ControllerClient> client() const { return m_client; }
    QString poolKey() const { return m_poolKey; }
    QString currentDirectory() const { return m_currentDirectory; }
    bool overwriteFlag() const { return m_overwrite; }

private:
    bool connected() const;
    void dropRetiredClient();
    // Gives the pooled client back (under this object's pool key) and forgets it.
    void releaseSlot(bool force = false);
    bool copyFileBody(const QString& server, const QString& filePath, const QString& user,
                      const QString& password, const QString& newFilename);
    bool httpDownload(const QString& remote, const QString& localPath, QString* why);
    void reconnectForPorts();
    bool ensureFtpConnection(const QString& routine, const QString& server, const QString& user,
                             const QString& password);
    bool connectRobotImpl(const QString& poolKey, const QString& server, const QString& user,
                          const QString& password, QString* error);
    void takeClient(const QString& poolKey, const QString& server);
    QString poolServer() const;
    template <typename Operation>
    bool withRetry(const QString& routine, const QString& errorPrefix, int retries, const QString& server,
                   const QString& user, const QString& password, bool raise501AtOnce, Operation&& operation);
    QStringList listing(const QString& path, bool files);
    template <typename Body>
    void forScript(const QString& routine, const QString& server, const QString& user,
                   const QString& password, Body&& body);
    void trace(const QString& routine, const QString& message) const;

    std::shared_ptr<nxr::ControllerClient> m_client;
    bool m_overwrite = true;
    QStringList m_fileNames;
    QStringList m_folderNames;
    int m_ftpPort = 21;
    int m_httpPort = 80;
    QString m_server;
    QString m_user;
    QString m_password;
    QString m_currentDirectory;
    QString m_listingPath;
    QString m_poolKey;
    QString m_slotServer; // the server string the pooled client was taken for
    QString m_slotName;   // and the name of its slot (server and ports)
    QString m_connectedServer;
    QString m_lastLocalPath;
};
