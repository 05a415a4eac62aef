#pragma once
// dlg_OpenSave: the image display's modal open/save dialog. The user picks an image file on the
// local machine (drive, folder, file), on the robot controller (a folder tree of its devices and
// a file list with sizes and dates), or, when opening and the page offers it, in the image log
// (date -> process -> time stamp, newest first).
//
// The dialog never blocks: ShowOpenDialog/ShowSaveDialog show it window-modal with open() and
// return at once; finished() tells the outcome and choice() what was picked. Listings wait in the
// event loop, so the dialog paints, can be cancelled and can pick another folder while a large
// folder lists; a folder's files go into the list in slices between events. Failures (controller
// down, login refused) show in the dialog's status line and are reported through failed().
//
// Every part has an object name (dlg_OpenSave, opt_Local, opt_Remote, opt_Log, txt_Server,
// txt_User, txt_Password, cmd_Connect, tvw_RemoteFolders, lvw_RemoteFiles, cmb_LocalDrive,
// lst_LocalFolders, lst_LocalFiles, tvw_ImageLog, txt_FileName, cmb_FileType, cmb_SaveWhat,
// lbl_Status, cmd_OK, cmd_Cancel) so that automation finds it.

#include "frame/Export.h"
#include "imagedisplay/dialog/ImageLog.h"
#include "imagedisplay/dialog/RemoteFolders.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <vector>

class NXRListView;
class NXRTreeView;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QTimer;
class QTreeWidget;

namespace nxr {

class NXR_EXPORT OpenSaveDialog : public QDialog
{
    Q_OBJECT

public:
    enum class Mode { Open, Save };
    enum class Source { Local, Remote, Log };
    // cmb_SaveWhat: the image as shown (colour when the display works in colour), or grey.
    enum SaveWhat { SaveAsShown = 0, SaveGrey = 1 };

    struct Choice
    {
        Source source = Source::Local;
        QString path; // local file path or controller path
        QString server;
        QString user;
        QString password;
        LogEntry log;
        QString extension = QStringLiteral(".PNG"); // ".PNG" or ".BMP"
        SaveWhat saveWhat = SaveAsShown;
    };

    // The controller is reached through what `remote` makes (called on every connect).
    using RemoteFactory = std::function<std::unique_ptr<RemoteFolders>()>;
    OpenSaveDialog(RemoteFactory remote, QWidget* parent = nullptr);
    ~OpenSaveDialog() override;

    // Shows the dialog for opening; the log choice is offered when `logEnabled`.
    void ShowOpenDialog(bool logEnabled);
    // Shows the dialog for saving; `colorMode` decides the save choices.
    void ShowSaveDialog(bool colorMode);
    // Kept for old callers: only traces.
    void PopulateLogList();
    // Shows the image log (after the page answered the dialog's request for it).
    void showLog(const clsLogDataList& log);

    // The server and credentials the remote side starts with.
    void setServer(const QString& server, const QString& user, const QString& password);

    Mode mode() const { return m_mode; }
    Choice choice() const { return m_choice; }
    QString statusText() const;
    bool isListing() const { return m_listing || m_fillPending; }
    QString remoteFolder() const { return m_remoteFolder; }
    // The local folder the local side shows.
    QString localFolder() const { return m_localFolder; }
    void setLocalFolder(const QString& folder);
    RemoteFolders* remote() const { return m_remote.get(); }

    // The parts, for tests and automation.
    NXRTreeView* folderTree() const { return m_tvwFolders; }
    NXRListView* fileList() const { return m_lvwFiles; }
    QTreeWidget* logTree() const { return m_tvwLog; }
    // The picture of the file picked on the controller (opening only); null while none is shown.
    QPixmap preview() const;

    // Actions as the user's clicks do them.
    void selectSource(Source source);
    void cmd_Connect_Click();
    void selectRemoteFolder(const QString& folder);
    void selectRemoteFile(const QString& name);
    void setFileName(const QString& name);
    void cmd_OK_Click();
    void cmd_Cancel_Click();

    // Ends the dialog for its owner that is going away: at once, or, while a call still waits on
    // the controller, as soon as it has returned. Nothing is reported any more.
    void dispose();

    // Every way of closing (Open/Save, Cancel, Escape, the window's close) ends the listing under way.
    void done(int result) override;

Q_SIGNALS:
    // The dialog needs the image log; answered by showLog().
    void logListRequested();
    // A failure the page hears of (OnError), with its complete text.
    void failed(const QString& routine, const QString& text);

private:
    void Form_Load();
    void msub_Localize();
    void msub_DrawRemoteSelect();
    void msub_RefreshFoldersAndFiles(const QString& folder);
    void tvw_RemoteFolders_NodeClick();
    void lvw_RemoteFiles_Click();
    void showEntries(const QString& folder, const std::vector<RemoteEntry>& entries);
    void fillSlice();
    void showPreview();
    void addFolderNode(const QString& parent, const QString& folder);
    void refreshLocal();
    void localFolderActivated(const QString& name);
    void logItemActivated();
    void showMode();
    void setStatus(const QString& text, bool error = false);
    void fail(const QString& routine, const QString& description);
    void dropRetired();
    // After a wait: true when the dialog was disposed of meanwhile (the caller returns at once).
    bool finishDisposal();
    QString typeExtension() const;
    bool acceptLocal();
    bool acceptRemote();
    bool acceptLog();

    RemoteFactory m_makeRemote;
    std::unique_ptr<RemoteFolders> m_remote;
    // Connections replaced while a call on them was still waiting; dropped once nothing waits.
    std::vector<std::unique_ptr<RemoteFolders>> m_retired;
    int m_waiting = 0;
    bool m_disposed = false;
    Mode m_mode = Mode::Open;
    Choice m_choice;
    bool m_logEnabled = false;
    bool m_colorMode = true;

    QRadioButton* m_optLocal = nullptr;
    QRadioButton* m_optRemote = nullptr;
    QRadioButton* m_optLog = nullptr;
    QStackedWidget* m_pages = nullptr;
    QLineEdit* m_txtServer = nullptr;
    QLineEdit* m_txtUser = nullptr;
    QLineEdit* m_txtPassword = nullptr;
    QPushButton* m_cmdConnect = nullptr;
    NXRTreeView* m_tvwFolders = nullptr;
    NXRListView* m_lvwFiles = nullptr;
    QComboBox* m_cmbDrive = nullptr;
    QListWidget* m_lstFolders = nullptr;
    QListWidget* m_lstFiles = nullptr;
    QLabel* m_lblLocalFolder = nullptr;
    QTreeWidget* m_tvwLog = nullptr;
    QLabel* m_lblFileName = nullptr;
    QLineEdit* m_txtFileName = nullptr;
    QLabel* m_lblFileType = nullptr;
    QComboBox* m_cmbFileType = nullptr;
    QLabel* m_lblSaveWhat = nullptr;
    QComboBox* m_cmbSaveWhat = nullptr;
    QLabel* m_lblStatus = nullptr;
    QPushButton* m_cmdOK = nullptr;
    QPushButton* m_cmdCancel = nullptr;

    QString m_remoteFolder;
    QString m_localFolder;
    QString m_wantedFolder; // the folder to list next
    int m_generation = 0;   // grows with every listing asked for; older answers are dropped
    bool m_listing = false;
    // Files of the last listing going into the list in slices.
    std::vector<RemoteEntry> m_fill;
    std::size_t m_fillAt = 0;
    int m_fillGeneration = 0;
    bool m_fillPending = false;
    QTimer* m_tmrFill = nullptr;
    // The preview: fetched a moment after a file is picked (not for every row passed over), one
    // at a time, from the local cache when it holds the file already.
    QLabel* m_lblPreview = nullptr;
    QTimer* m_tmrPreview = nullptr;
    QString m_previewPath;
    QString m_previewCacheName;
    int m_previewGeneration = 0;
    bool m_previewing = false;
};

} // namespace nxr
