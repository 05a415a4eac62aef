#include "imagedisplay/dialog/OpenSaveDialog.h"

#include "frame/Globals.h"
#include "frame/Trace.h"
#include "views/NXRListView.h"
#include "views/NXRTreeView.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace nxr {
namespace {

const QString kForm = QStringLiteral("dlg_OpenSave");
const QString kFileIcon = QStringLiteral("default.png");
const QString kFolderIcon = QStringLiteral("folder");
constexpr int kFillSlice = 400; // list rows added between two turns of the event loop
constexpr int kSelectorRole = Qt::UserRole + 1;
constexpr QSize kPreviewSize(200, 150);
constexpr int kPreviewDelayMs = 250;

// `english` is marked with QT_TRANSLATE_NOOP("Caption", ...); its Japanese is in translations/.
QString caption(const char* english)
{
    return Globals::Caption{QString::fromUtf8(english)}.pick();
}

// Sizes in one unit, so that sorting by the column orders them by size.
QString sizeText(qint64 bytes)
{
    return QString::number((bytes + 1023) / 1024) + QStringLiteral(" KB");
}

template <typename W> W* named(W* widget, const char* name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

} // namespace

OpenSaveDialog::OpenSaveDialog(RemoteFactory remote, QWidget* parent)
    : QDialog(parent), m_makeRemote(std::move(remote))
{
    setObjectName(kForm);
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    Form_Load();
}

OpenSaveDialog::~OpenSaveDialog() = default;

void OpenSaveDialog::Form_Load()
{
    try {
        auto* top = new QHBoxLayout;
        m_optLocal = named(new QRadioButton(this), "opt_Local");
        m_optRemote = named(new QRadioButton(this), "opt_Remote");
        m_optLog = named(new QRadioButton(this), "opt_Log");
        top->addWidget(m_optLocal);
        top->addWidget(m_optRemote);
        top->addWidget(m_optLog);
        top->addStretch(1);

        m_pages = named(new QStackedWidget(this), "fra_Pages");

        // The local machine: a drive (starting folder), its folders, the files of the type.
        auto* local = named(new QWidget(m_pages), "fra_Local");
        auto* localLayout = new QGridLayout(local);
        m_cmbDrive = named(new QComboBox(local), "cmb_LocalDrive");
        m_lblLocalFolder = named(new QLabel(local), "lbl_LocalFolder");
        m_lstFolders = named(new QListWidget(local), "lst_LocalFolders");
        m_lstFiles = named(new QListWidget(local), "lst_LocalFiles");
        localLayout->addWidget(m_cmbDrive, 0, 0);
        localLayout->addWidget(m_lblLocalFolder, 0, 1);
        localLayout->addWidget(m_lstFolders, 1, 0);
        localLayout->addWidget(m_lstFiles, 1, 1);
        localLayout->setColumnStretch(1, 2);
        localLayout->setColumnStretch(0, 1);
        for (const QString& drive : {Globals::storageFolder(), QDir::homePath(), QDir::rootPath()})
            if (m_cmbDrive->findData(drive) < 0)
                m_cmbDrive->addItem(QDir::toNativeSeparators(drive), drive);

        // The controller: server and login, its device tree and a folder's files.
        auto* remoteSide = named(new QWidget(m_pages), "fra_Remote");
        auto* remoteLayout = new QVBoxLayout(remoteSide);
        auto* login = new QHBoxLayout;
        m_txtServer = named(new QLineEdit(remoteSide), "txt_Server");
        m_txtUser = named(new QLineEdit(remoteSide), "txt_User");
        m_txtPassword = named(new QLineEdit(remoteSide), "txt_Password");
        m_txtPassword->setEchoMode(QLineEdit::Password);
        m_cmdConnect = named(new QPushButton(remoteSide), "cmd_Connect");
        login->addWidget(m_txtServer, 2);
        login->addWidget(m_txtUser, 1);
        login->addWidget(m_txtPassword, 1);
        login->addWidget(m_cmdConnect);
        auto* split = new QSplitter(remoteSide);
        m_tvwFolders = named(new NXRTreeView(split), "tvw_RemoteFolders");
        m_lvwFiles = named(new NXRListView(split), "lvw_RemoteFiles");
        m_lblPreview = named(new QLabel(split), "lbl_Preview");
        m_lblPreview->setAlignment(Qt::AlignCenter);
        m_lblPreview->setMinimumSize(kPreviewSize);
        split->setStretchFactor(1, 2);
        remoteLayout->addLayout(login);
        remoteLayout->addWidget(split, 1);
        m_txtServer->setText(QStringLiteral("localhost"));

        const QIcon fileIcon = style()->standardIcon(QStyle::SP_FileIcon);
        const QIcon folderIcon = style()->standardIcon(QStyle::SP_DirIcon);
        m_lvwFiles->addIcon(fileIcon, kFileIcon);
        m_tvwFolders->addIcon(folderIcon, kFolderIcon);
        m_tvwFolders->addIcon(style()->standardIcon(QStyle::SP_DriveHDIcon), QStringLiteral("device"));

        // The image log.
        m_tvwLog = named(new QTreeWidget(m_pages), "tvw_ImageLog");
        m_tvwLog->setColumnCount(1);
        m_tvwLog->setHeaderHidden(true);

        m_pages->addWidget(local);
        m_pages->addWidget(remoteSide);
        m_pages->addWidget(m_tvwLog);

        auto* bottom = new QGridLayout;
        m_lblFileName = named(new QLabel(this), "lbl_FileName");
        m_txtFileName = named(new QLineEdit(this), "txt_FileName");
        m_lblFileType = named(new QLabel(this), "lbl_FileType");
        m_cmbFileType = named(new QComboBox(this), "cmb_FileType");
        m_cmbFileType->addItem(QStringLiteral("PNG"), QStringLiteral(".PNG"));
        m_cmbFileType->addItem(QStringLiteral("BMP"), QStringLiteral(".BMP"));
        m_lblSaveWhat = named(new QLabel(this), "lbl_SaveWhat");
        m_cmbSaveWhat = named(new QComboBox(this), "cmb_SaveWhat");
        m_cmdOK = named(new QPushButton(this), "cmd_OK");
        m_cmdCancel = named(new QPushButton(this), "cmd_Cancel");
        m_cmdOK->setDefault(true);
        bottom->addWidget(m_lblFileName, 0, 0);
        bottom->addWidget(m_txtFileName, 0, 1);
        bottom->addWidget(m_cmdOK, 0, 2);
        bottom->addWidget(m_lblFileType, 1, 0);
        bottom->addWidget(m_cmbFileType, 1, 1);
        bottom->addWidget(m_cmdCancel, 1, 2);
        bottom->addWidget(m_lblSaveWhat, 2, 0);
        bottom->addWidget(m_cmbSaveWhat, 2, 1);
        m_lblStatus = named(new QLabel(this), "lbl_Status");
        m_lblStatus->setWordWrap(true);

        auto* layout = new QVBoxLayout(this);
        layout->addLayout(top);
        layout->addWidget(m_pages, 1);
        layout->addLayout(bottom);
        layout->addWidget(m_lblStatus);
        resize(760, 500);

        m_tmrFill = new QTimer(this);
        m_tmrFill->setObjectName(QStringLiteral("tmr_FillList"));
        m_tmrFill->setSingleShot(true);
        m_tmrFill->setInterval(0);

        connect(m_optLocal, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                selectSource(Source::Local);
        });
        connect(m_optRemote, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                selectSource(Source::Remote);
        });
        connect(m_optLog, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                selectSource(Source::Log);
        });
        connect(m_cmdConnect, &QPushButton::clicked, this, &OpenSaveDialog::cmd_Connect_Click);
        connect(m_tvwFolders, &NXRTreeView::OnNodeClick, this, &OpenSaveDialog::tvw_RemoteFolders_NodeClick);
        connect(m_lvwFiles, &NXRListView::OnItemSelected, this, &OpenSaveDialog::lvw_RemoteFiles_Click);
        connect(m_lvwFiles, &NXRListView::OnDoubleClick, this, &OpenSaveDialog::cmd_OK_Click);
        connect(m_cmbDrive, &QComboBox::activated, this,
                [this](int index) { setLocalFolder(m_cmbDrive->itemData(index).toString()); });
        connect(m_lstFolders, &QListWidget::itemActivated, this,
                [this](QListWidgetItem* item) { localFolderActivated(item->text()); });
        connect(m_lstFolders, &QListWidget::itemDoubleClicked, this,
                [this](QListWidgetItem* item) { localFolderActivated(item->text()); });
        connect(m_lstFiles, &QListWidget::currentTextChanged, this, [this](const QString& name) {
            if (!name.isEmpty())
                m_txtFileName->setText(name);
        });
        connect(m_lstFiles, &QListWidget::itemDoubleClicked, this, &OpenSaveDialog::cmd_OK_Click);
        connect(m_tvwLog, &QTreeWidget::itemDoubleClicked, this, &OpenSaveDialog::logItemActivated);
        connect(m_cmbFileType, &QComboBox::currentIndexChanged, this, [this] {
            refreshLocal();
            if (!m_remoteFolder.isEmpty() && m_remote && m_remote->isConnected())
                msub_RefreshFoldersAndFiles(m_remoteFolder);
        });
        connect(m_cmdOK, &QPushButton::clicked, this, &OpenSaveDialog::cmd_OK_Click);
        connect(m_cmdCancel, &QPushButton::clicked, this, &OpenSaveDialog::cmd_Cancel_Click);
        connect(m_tmrFill, &QTimer::timeout, this, &OpenSaveDialog::fillSlice);
        m_tmrPreview = new QTimer(this);
        m_tmrPreview->setObjectName(QStringLiteral("tmr_Preview"));
        m_tmrPreview->setSingleShot(true);
        m_tmrPreview->setInterval(kPreviewDelayMs);
        connect(m_tmrPreview, &QTimer::timeout, this, &OpenSaveDialog::showPreview);

        msub_Localize();
        setLocalFolder(Globals::storageFolder());
        m_optRemote->setChecked(true);
    } catch (const std::exception& e) {
        errorTrace(kForm, QStringLiteral("Form_Load"),
                   QStringLiteral("Error in Form_Load: ") + QString::fromLocal8Bit(e.what()));
    }
}

void OpenSaveDialog::msub_Localize()
{
    m_optLocal->setText(caption(QT_TRANSLATE_NOOP("Caption", "This computer")));
    m_optRemote->setText(caption(QT_TRANSLATE_NOOP("Caption", "Robot controller")));
    m_optLog->setText(caption(QT_TRANSLATE_NOOP("Caption", "Image log")));
    m_txtServer->setPlaceholderText(caption(QT_TRANSLATE_NOOP("Caption", "Controller")));
    m_txtUser->setPlaceholderText(caption(QT_TRANSLATE_NOOP("Caption", "User")));
    m_txtPassword->setPlaceholderText(caption(QT_TRANSLATE_NOOP("Caption", "Password")));
    m_cmdConnect->setText(caption(QT_TRANSLATE_NOOP("Caption", "Connect")));
    m_lblFileName->setText(caption(QT_TRANSLATE_NOOP("Caption", "File name:")));
    m_lblFileType->setText(caption(QT_TRANSLATE_NOOP("Caption", "File type:")));
    m_lblSaveWhat->setText(caption(QT_TRANSLATE_NOOP("Caption", "Save:")));
    m_cmdCancel->setText(caption(QT_TRANSLATE_NOOP("Caption", "Cancel")));
    m_lvwFiles->ClearColumns();
    m_lvwFiles->AddColumn(caption(QT_TRANSLATE_NOOP("Caption", "Name")), 1, 220);
    m_lvwFiles->AddColumn(caption(QT_TRANSLATE_NOOP("Caption", "Size")), 2, 80);
    m_lvwFiles->AddColumn(caption(QT_TRANSLATE_NOOP("Caption", "Date modified")), 3, 130);
    showMode();
}

void OpenSaveDialog::showMode()
{
    const bool save = m_mode == Mode::Save;
    setWindowTitle(save ? caption(QT_TRANSLATE_NOOP("Caption", "Save image"))
                        : caption(QT_TRANSLATE_NOOP("Caption", "Open image")));
    m_cmdOK->setText(save ? caption(QT_TRANSLATE_NOOP("Caption", "Save"))
                          : caption(QT_TRANSLATE_NOOP("Caption", "Open")));
    m_lblSaveWhat->setVisible(save);
    m_cmbSaveWhat->setVisible(save);
    m_optLog->setVisible(!save && m_logEnabled);
    m_cmbSaveWhat->clear();
    if (save) {
        // A display in grey shows grey images only; in colour it can save either.
        if (m_colorMode)
            m_cmbSaveWhat->addItem(caption(QT_TRANSLATE_NOOP("Caption", "Image as shown (colour)")),
                                   SaveAsShown);
        m_cmbSaveWhat->addItem(caption(QT_TRANSLATE_NOOP("Caption", "Grey-scale image")), SaveGrey);
    }
}

void OpenSaveDialog::setStatus(const QString& text, bool error)
{
    m_lblStatus->setText(text);
    QPalette p = m_lblStatus->palette();
    p.setColor(QPalette::WindowText, error ? Qt::red : palette().color(QPalette::WindowText));
    m_lblStatus->setPalette(p);
}

QString OpenSaveDialog::statusText() const
{
    return m_lblStatus->text();
}

void OpenSaveDialog::fail(const QString& routine, const QString& description)
{
    const QString text = QStringLiteral("Error: ") + description;
    errorTrace(kForm, routine, text);
    setStatus(description, true);
    Q_EMIT failed(routine, text);
}

QString OpenSaveDialog::typeExtension() const
{
    return m_cmbFileType->currentData().toString();
}

// ---- entry points

void OpenSaveDialog::ShowOpenDialog(bool logEnabled)
{
    NXR_TRACE(kForm, QStringLiteral("ShowOpenDialog"), QStringLiteral("Entered"));
    m_mode = Mode::Open;
    m_logEnabled = logEnabled;
    m_choice = Choice();
    m_txtFileName->clear();
    setStatus(QString());
    showMode();
    refreshLocal();
    if (m_optLog->isChecked() && !logEnabled)
        m_optRemote->setChecked(true);
    open();
    if (m_optLog->isChecked())
        selectSource(Source::Log); // the page is asked for the log again
    else if (m_optRemote->isChecked() && (!m_remote || !m_remote->isConnected()))
        msub_DrawRemoteSelect();
}

void OpenSaveDialog::ShowSaveDialog(bool colorMode)
{
    NXR_TRACE(kForm, QStringLiteral("ShowSaveDialog"),
              QStringLiteral("Entered, ColorMode=") + fromBool(colorMode));
    m_mode = Mode::Save;
    m_colorMode = colorMode;
    m_choice = Choice();
    m_txtFileName->setText(QStringLiteral("image") + typeExtension().toLower());
    setStatus(QString());
    if (m_optLog->isChecked())
        m_optRemote->setChecked(true);
    showMode();
    refreshLocal();
    open();
    if (m_optRemote->isChecked() && (!m_remote || !m_remote->isConnected()))
        msub_DrawRemoteSelect();
}

void OpenSaveDialog::PopulateLogList()
{
    NXR_TRACE(kForm, QStringLiteral("PopulateLogList"), QStringLiteral("Called obsolete method!"));
}

void OpenSaveDialog::setServer(const QString& server, const QString& user, const QString& password)
{
    if (!server.isEmpty())
        m_txtServer->setText(server);
    m_txtUser->setText(user);
    m_txtPassword->setText(password);
}

void OpenSaveDialog::selectSource(Source source)
{
    QRadioButton* button = source == Source::Local    ? m_optLocal
                           : source == Source::Remote ? m_optRemote
                                                      : m_optLog;
    if (!button->isChecked()) {
        button->setChecked(true); // comes back here through toggled()
        return;
    }
    m_pages->setCurrentIndex(int(source));
    if (source == Source::Log) {
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Asking the page for the image log...")));
        Q_EMIT logListRequested();
    }
}

// ---- the controller side

void OpenSaveDialog::msub_DrawRemoteSelect()
{
    // The device tree and the default folder once connected; a prompt to connect otherwise.
    m_tvwFolders->ClearTree();
    m_lvwFiles->ClearList();
    if (!m_remote || !m_remote->isConnected()) {
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Enter the controller and press Connect.")));
        return;
    }
    for (const QString& root : RemotePaths::rootFolders())
        m_tvwFolders->AddNode(QString(), -1, QStringLiteral("device"), root);
    selectRemoteFolder(RemotePaths::kDefaultFolder);
}

void OpenSaveDialog::cmd_Connect_Click()
{
    const QString routine = QStringLiteral("cmd_Connect_Click");
    const QString server = m_txtServer->text().trimmed();
    if (server.isEmpty()) {
        fail(routine, caption(QT_TRANSLATE_NOOP("Caption", "No controller given")));
        return;
    }
    ++m_generation; // whatever was listing belongs to the old connection
    m_wantedFolder.clear();
    if (m_remote) {
        // The old connection goes now, or once the call waiting on it has returned.
        m_remote->disconnect();
        m_retired.push_back(std::move(m_remote));
        dropRetired();
    }
    m_remote = m_makeRemote ? m_makeRemote() : nullptr;
    if (!m_remote) {
        fail(routine, QStringLiteral("no connection to the controller can be made"));
        return;
    }
    setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Connecting to ")) + server + QStringLiteral("..."));
    m_cmdConnect->setEnabled(false);
    QPointer<OpenSaveDialog> self(this);
    RemoteFolders* remote = m_remote.get();
    QString error;
    ++m_waiting;
    const bool ok = remote->connect(server, m_txtUser->text(), m_txtPassword->text(), &error);
    if (!self)
        return;
    --m_waiting;
    if (finishDisposal())
        return;
    dropRetired();
    m_cmdConnect->setEnabled(true);
    if (remote != m_remote.get())
        return; // connected again meanwhile
    if (!ok) {
        m_tvwFolders->ClearTree();
        m_lvwFiles->ClearList();
        fail(routine, error);
        return;
    }
    setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Connected to ")) + server);
    msub_DrawRemoteSelect();
}

void OpenSaveDialog::addFolderNode(const QString& parent, const QString& folder)
{
    if (m_tvwFolders->findNode(folder))
        return;
    m_tvwFolders->AddNode(parent, NXRTreeView::tvwChild, kFolderIcon, folder);
}

void OpenSaveDialog::selectRemoteFolder(const QString& folder)
{
    if (QTreeWidgetItem* node = m_tvwFolders->findNode(folder)) {
        QTreeWidget* tree = m_tvwFolders->treeWidget();
        const QSignalBlocker quiet(tree);
        tree->setCurrentItem(node);
    }
    msub_RefreshFoldersAndFiles(folder);
}

void OpenSaveDialog::tvw_RemoteFolders_NodeClick()
{
    QTreeWidgetItem* node = m_tvwFolders->treeWidget()->currentItem();
    if (node)
        msub_RefreshFoldersAndFiles(node->text(0));
}

void OpenSaveDialog::msub_RefreshFoldersAndFiles(const QString& folder)
{
    const QString routine = QStringLiteral("msub_RefreshFoldersAndFiles");
    NXR_TRACE(kForm, routine, QStringLiteral("node=") + folder);
    m_remoteFolder = folder;
    m_wantedFolder = folder;
    ++m_generation;
    m_tmrFill->stop();
    m_fillPending = false;
    m_lvwFiles->ClearList();
    m_lblPreview->clear();
    ++m_previewGeneration;
    m_tmrPreview->stop();
    if (m_listing || m_previewing)
        return; // the running listing (or preview) sees the new wish when it ends
    if (!m_remote || !m_remote->isConnected()) {
        fail(routine, caption(QT_TRANSLATE_NOOP("Caption", "Not connected")));
        return;
    }
    m_listing = true;
    QPointer<OpenSaveDialog> self(this);
    while (self && !m_wantedFolder.isEmpty()) {
        const QString wanted = std::exchange(m_wantedFolder, QString());
        const int generation = m_generation;
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Listing ")) + wanted + QStringLiteral("..."));
        RemoteFolders* remote = m_remote.get();
        std::vector<RemoteEntry> entries;
        QString error;
        ++m_waiting;
        const bool ok = remote && remote->list(wanted, &entries, &error);
        if (!self)
            return;
        --m_waiting;
        if (finishDisposal())
            return;
        if (generation != m_generation || !isVisible())
            continue; // another folder, another connection or a closed dialog: this answer is stale
        if (!ok) {
            fail(routine, error.isEmpty() ? caption(QT_TRANSLATE_NOOP("Caption", "Not connected")) : error);
            break;
        }
        showEntries(wanted, entries);
    }
    if (self) {
        m_listing = false;
        dropRetired();
    }
}

void OpenSaveDialog::dispose()
{
    m_disposed = true;
    m_makeRemote = nullptr;
    if (isVisible())
        done(QDialog::Rejected);
    if (m_waiting == 0) {
        delete this;
        return;
    }
    // A call is still waiting on the controller further up the stack: this goes once it returns.
    setParent(nullptr);
}

bool OpenSaveDialog::finishDisposal()
{
    if (!m_disposed)
        return false;
    if (m_waiting == 0)
        deleteLater();
    return true;
}

void OpenSaveDialog::dropRetired()
{
    if (m_waiting == 0)
        m_retired.clear();
}

void OpenSaveDialog::showEntries(const QString& folder, const std::vector<RemoteEntry>& entries)
{
    const QString extension = typeExtension();
    std::vector<RemoteEntry> files;
    int folders = 0;
    for (const RemoteEntry& e : entries) {
        if (e.folder) {
            if (m_tvwFolders->findNode(folder))
                addFolderNode(folder, RemotePaths::join(folder, e.name));
            ++folders;
        } else if (e.name.toUpper().endsWith(extension)) {
            files.push_back(e);
        }
    }
    std::sort(files.begin(), files.end(), [](const RemoteEntry& a, const RemoteEntry& b) {
        return QString::compare(a.name, b.name, Qt::CaseInsensitive) < 0;
    });
    if (QTreeWidgetItem* node = m_tvwFolders->findNode(folder))
        node->setExpanded(true);
    m_fill = std::move(files);
    m_fillAt = 0;
    m_fillGeneration = m_generation;
    m_fillPending = true;
    setStatus(folder + QStringLiteral(": ") + QString::number(m_fill.size()) + QLatin1Char(' ') +
              caption(QT_TRANSLATE_NOOP("Caption", "files")) + QStringLiteral(", ") +
              QString::number(folders) + QLatin1Char(' ') + caption(QT_TRANSLATE_NOOP("Caption", "folders")));
    fillSlice();
}

void OpenSaveDialog::fillSlice()
{
    if (!m_fillPending || m_fillGeneration != m_generation) {
        m_fillPending = false;
        return;
    }
    const std::size_t end = std::min(m_fill.size(), m_fillAt + kFillSlice);
    for (; m_fillAt < end; ++m_fillAt) {
        const RemoteEntry& e = m_fill[m_fillAt];
        m_lvwFiles->AddToList(kFileIcon, e.name);
        m_lvwFiles->SetSubItem(e.name, 1, sizeText(e.size));
        m_lvwFiles->SetSubItem(e.name, 2,
                               e.modified.isValid() ? e.modified.toString(QStringLiteral("yyyy-MM-dd HH:mm"))
                                                    : e.date);
    }
    if (m_fillAt < m_fill.size()) {
        m_tmrFill->start();
        return;
    }
    m_fillPending = false;
    m_fill.clear();
}

void OpenSaveDialog::lvw_RemoteFiles_Click()
{
    const QString name = m_lvwFiles->selectedText();
    if (!name.isEmpty())
        selectRemoteFile(name);
}

void OpenSaveDialog::selectRemoteFile(const QString& name)
{
    m_txtFileName->setText(name);
    m_lblPreview->clear();
    ++m_previewGeneration;
    if (m_mode != Mode::Open) {
        m_tmrPreview->stop();
        return;
    }
    // The cache name follows the file's path, size and date: a changed file is fetched again.
    const auto item = m_lvwFiles->item(name);
    m_previewPath = RemotePaths::join(m_remoteFolder, name);
    const QString identity =
        m_previewPath + QLatin1Char('|') + (item ? item->SubItem(1) + item->SubItem(2) : QString());
    m_previewCacheName = QStringLiteral("preview-") + QString::number(qHash(identity.toUpper()), 16) +
                         Globals::imageExtension(name);
    m_tmrPreview->start();
}

QPixmap OpenSaveDialog::preview() const
{
    return m_lblPreview->pixmap();
}

void OpenSaveDialog::showPreview()
{
    if (!isVisible() || !m_remote || !m_remote->isConnected() || m_previewPath.isEmpty())
        return;
    if (m_listing || m_previewing) {
        m_tmrPreview->start(); // once the controller is free
        return;
    }
    const int generation = m_previewGeneration;
    const QString path = m_previewPath;
    m_previewing = true;
    ++m_waiting;
    QPointer<OpenSaveDialog> self(this);
    QString local;
    QString error;
    const bool ok = m_remote->fetch(path, m_previewCacheName, &local, &error);
    if (!self)
        return;
    --m_waiting;
    if (finishDisposal())
        return;
    m_previewing = false;
    if (generation == m_previewGeneration && isVisible()) {
        const QImage image = ok ? QImage(local) : QImage();
        if (image.isNull())
            m_lblPreview->setText(caption(QT_TRANSLATE_NOOP("Caption", "No preview")));
        else
            m_lblPreview->setPixmap(QPixmap::fromImage(
                image.scaled(kPreviewSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    }
    dropRetired();
    // A folder asked for meanwhile is listed now.
    if (!m_wantedFolder.isEmpty() && !m_listing)
        msub_RefreshFoldersAndFiles(m_wantedFolder);
}

void OpenSaveDialog::setFileName(const QString& name)
{
    m_txtFileName->setText(name);
}

// ---- the local side

void OpenSaveDialog::setLocalFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.isDir()) {
        fail(QStringLiteral("setLocalFolder"),
             caption(QT_TRANSLATE_NOOP("Caption", "No such folder: ")) + folder);
        return;
    }
    m_localFolder = info.absoluteFilePath();
    refreshLocal();
}

void OpenSaveDialog::refreshLocal()
{
    if (!m_lstFolders)
        return;
    m_lblLocalFolder->setText(QDir::toNativeSeparators(m_localFolder));
    m_lstFolders->clear();
    m_lstFiles->clear();
    const QDir dir(m_localFolder);
    if (!dir.isRoot())
        m_lstFolders->addItem(QStringLiteral(".."));
    m_lstFolders->addItems(dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase));
    const QString extension = typeExtension();
    for (const QString& name : dir.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase))
        if (name.toUpper().endsWith(extension))
            m_lstFiles->addItem(name);
}

void OpenSaveDialog::localFolderActivated(const QString& name)
{
    setLocalFolder(QDir(m_localFolder).absoluteFilePath(name));
}

// ---- the image log

void OpenSaveDialog::showLog(const clsLogDataList& log)
{
    m_tvwLog->clear();
    for (const clsLogDataList::DateView& day : log.newestFirst()) {
        auto* dayItem = new QTreeWidgetItem(m_tvwLog, QStringList{day.date});
        for (const clsLogDataList::ProcessView& process : day.processes) {
            auto* processItem = new QTreeWidgetItem(dayItem, QStringList{process.process});
            for (const LogEntry& image : process.images) {
                auto* stamp = new QTreeWidgetItem(processItem, QStringList{image.timeStamp});
                stamp->setData(0, kSelectorRole, LogSelector::encode(image));
            }
        }
    }
    // The newest date comes open down to its time stamps.
    if (QTreeWidgetItem* newest = m_tvwLog->topLevelItem(0)) {
        newest->setExpanded(true);
        for (int i = 0; i < newest->childCount(); ++i)
            newest->child(i)->setExpanded(true);
    }
    setStatus(QString::number(log.imageCount()) + QLatin1Char(' ') +
              caption(QT_TRANSLATE_NOOP("Caption", "logged images")));
}

void OpenSaveDialog::logItemActivated()
{
    QTreeWidgetItem* item = m_tvwLog->currentItem();
    if (item && !item->data(0, kSelectorRole).toString().isEmpty())
        cmd_OK_Click();
}

// ---- OK and Cancel

void OpenSaveDialog::cmd_OK_Click()
{
    try {
        m_choice = Choice();
        m_choice.extension = typeExtension();
        m_choice.saveWhat = SaveWhat(m_cmbSaveWhat->currentData().toInt());
        bool ok = false;
        if (m_optLog->isChecked() && m_mode == Mode::Open)
            ok = acceptLog();
        else if (m_optRemote->isChecked())
            ok = acceptRemote();
        else
            ok = acceptLocal();
        if (ok)
            accept();
    } catch (const std::exception& e) {
        fail(QStringLiteral("cmd_OK_Click"), QString::fromLocal8Bit(e.what()));
    }
}

bool OpenSaveDialog::acceptLog()
{
    QTreeWidgetItem* item = m_tvwLog->currentItem();
    const auto entry = item ? LogSelector::decode(item->data(0, kSelectorRole).toString()) : std::nullopt;
    if (!entry) {
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Pick a time stamp in the log.")), true);
        return false;
    }
    m_choice.source = Source::Log;
    m_choice.log = *entry;
    return true;
}

bool OpenSaveDialog::acceptRemote()
{
    const QString routine = QStringLiteral("cmd_OK_Click");
    QString name = m_txtFileName->text().trimmed();
    if (name.isEmpty()) {
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Pick a file.")), true);
        return false;
    }
    // A whole controller path typed in stands for itself; a plain name is in the shown folder.
    QString path = RemotePaths::deviceOf(name).isEmpty() ? RemotePaths::join(m_remoteFolder, name) : name;
    if (m_mode == Mode::Save && Globals::imageExtension(path).isEmpty())
        path += m_choice.extension;
    if (!RemotePaths::isFilePath(path)) {
        fail(routine, caption(QT_TRANSLATE_NOOP("Caption", "Not a controller file path: ")) + path);
        return false;
    }
    if (m_mode == Mode::Save && RemotePaths::isMemoryDevice(path)) {
        fail(routine,
             RemotePaths::deviceOf(path) +
                 caption(QT_TRANSLATE_NOOP(
                     "Caption", " is a memory device of the controller: images cannot be saved there.")));
        return false;
    }
    if (!m_remote || !m_remote->isConnected()) {
        fail(routine, caption(QT_TRANSLATE_NOOP("Caption", "Not connected")));
        return false;
    }
    m_choice.source = Source::Remote;
    m_choice.path = path;
    m_choice.server = m_txtServer->text().trimmed();
    m_choice.user = m_txtUser->text();
    m_choice.password = m_txtPassword->text();
    return true;
}

bool OpenSaveDialog::acceptLocal()
{
    const QString routine = QStringLiteral("cmd_OK_Click");
    const QString name = m_txtFileName->text().trimmed();
    if (name.isEmpty()) {
        setStatus(caption(QT_TRANSLATE_NOOP("Caption", "Pick a file.")), true);
        return false;
    }
    QString path = QDir(m_localFolder).absoluteFilePath(QDir::fromNativeSeparators(name));
    const QFileInfo info(path);
    if (m_mode == Mode::Open) {
        if (!info.isFile()) {
            fail(routine, caption(QT_TRANSLATE_NOOP("Caption", "No such file: ")) + path);
            return false;
        }
    } else {
        if (Globals::imageExtension(info.fileName()).isEmpty())
            path += m_choice.extension.toLower();
        if (!QFileInfo(QFileInfo(path).absolutePath()).isDir()) {
            fail(routine,
                 caption(QT_TRANSLATE_NOOP("Caption", "No such folder: ")) + QFileInfo(path).absolutePath());
            return false;
        }
    }
    m_choice.source = Source::Local;
    m_choice.path = path;
    return true;
}

void OpenSaveDialog::cmd_Cancel_Click()
{
    reject();
}

void OpenSaveDialog::done(int result)
{
    ++m_generation; // a listing under way ends unseen
    ++m_previewGeneration;
    m_tmrPreview->stop();
    m_wantedFolder.clear();
    m_fillPending = false;
    m_tmrFill->stop();
    QDialog::done(result);
}

} // namespace nxr
