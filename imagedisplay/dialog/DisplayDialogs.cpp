#include "imagedisplay/dialog/DisplayDialogs.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/PropertyTable.h"
#include "frame/Trace.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/dialog/OpenSaveHost.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/LocalImagePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace nxr {
namespace {

const QString kDisplay = QStringLiteral("NXRImageDisplay");
const QString kLoadByDialog = QStringLiteral("msub_LoadImageByDialog");
const QString kSaveByDialog = QStringLiteral("msub_SaveImageByDialog");
const QString kRasterImage = QStringLiteral("LEAD_image");

QString errorIn(const QString& routine, const QString& description)
{
    return QStringLiteral("Error in ") + routine + QStringLiteral(": ") + description;
}

// The local folder of the display's temporary controller folder ("TD:\").
QString temporaryFolder()
{
    return QFileInfo(LocalImagePath::forControllerPath(
                         Globals::storageFolder(), RemotePaths::kTemporaryFolder + QStringLiteral("x.PNG")))
        .absolutePath();
}

bool replaceFile(const QString& from, const QString& to, QString* error)
{
    // Written beside the target first, so a failed copy leaves the old file as it was.
    const QString partial = to + QStringLiteral(".part");
    QFile::remove(partial);
    if (!QFile::copy(from, partial)) {
        *error = QStringLiteral("cannot write ") + QDir::toNativeSeparators(to);
        return false;
    }
    QFile::remove(to);
    if (!QFile::rename(partial, to)) {
        QFile::remove(partial);
        *error = QStringLiteral("cannot write ") + QDir::toNativeSeparators(to);
        return false;
    }
    return true;
}

} // namespace

DisplayDialogs::DisplayDialogs(OpenSaveHost& host, QObject* parent) : QObject(parent), m_host(host)
{
    m_remoteFactory = [this]() -> std::unique_ptr<RemoteFolders> {
        return std::make_unique<TransferFolders>(m_host.ftpPort(), m_host.httpPort());
    };
    m_host.keys().replace(
        QStringLiteral("EnableLogImageLoad"), [this](const QString& v) { m_logEnabled = toBool(v); },
        [this] { return fromBool(m_logEnabled); });
    m_host.setButtonAction(vvb_Open, [this] { msub_LoadImageByDialog(); });
    m_host.setButtonAction(vvb_Save, [this] { msub_SaveImageByDialog(); });
}

DisplayDialogs::~DisplayDialogs()
{
    if (m_dialog) {
        disconnect(m_dialog, nullptr, this, nullptr);
        m_dialog->dispose();
    }
}

OpenSaveDialog& DisplayDialogs::dialog()
{
    if (!m_dialog) {
        m_dialog = new OpenSaveDialog([this] { return m_remoteFactory ? m_remoteFactory() : nullptr; },
                                      m_host.dialogParent());
        m_dialog->setFont(m_host.displayFont());
        m_dialog->setServer(m_host.hostName().isEmpty() ? QStringLiteral("localhost") : m_host.hostName(),
                            QString(), QString());
        connect(m_dialog, &QDialog::finished, this, &DisplayDialogs::finished);
        connect(m_dialog, &OpenSaveDialog::logListRequested, this,
                [this] { m_host.raiseLogListRequested(); });
        connect(m_dialog, &OpenSaveDialog::failed, this,
                [this](const QString& routine, const QString& text) { m_host.reportError(routine, text); });
    }
    return *m_dialog;
}

// ---- the image log

void DisplayDialogs::AddLogImage(const QString& date, const QString& process, const QString& timeStamp,
                                 const QString& imageId)
{
    NXR_TRACE(kDisplay, QStringLiteral("AddLogImage"),
              QStringLiteral("Entered, date=") + date + QStringLiteral(", process=") + process +
                  QStringLiteral(", time=") + timeStamp);
    m_log.AddLogImage(date, process, timeStamp, imageId);
}

void DisplayDialogs::ClearLogDataList()
{
    m_log.Clear();
}

void DisplayDialogs::UpdateLogImageLoad()
{
    if (m_dialog && m_dialog->isVisible())
        m_dialog->showLog(m_log);
}

// ---- open and save

QString DisplayDialogs::mfstr_GetSubfolderFromPath(const QString& path)
{
    return LocalImagePath::subfolder(path);
}

void DisplayDialogs::msub_LoadImageByDialog()
{
    NXR_TRACE(kDisplay, kLoadByDialog, QStringLiteral("Entered"));
    OpenSaveDialog& d = dialog();
    if (d.isVisible())
        return;
    d.setFont(m_host.displayFont());
    d.ShowOpenDialog(m_logEnabled);
}

void DisplayDialogs::msub_SaveImageByDialog()
{
    NXR_TRACE(kDisplay, kSaveByDialog, QStringLiteral("Entered"));
    if (m_host.shownImage().isNull()) {
        m_host.reportError(kSaveByDialog, errorIn(kSaveByDialog, QStringLiteral("No image to save")));
        return;
    }
    OpenSaveDialog& d = dialog();
    if (d.isVisible())
        return;
    d.setFont(m_host.displayFont());
    d.ShowSaveDialog(m_host.colorMode());
}

void DisplayDialogs::finished(int result)
{
    if (result == QDialog::Accepted && m_dialog) {
        const OpenSaveDialog::Choice choice = m_dialog->choice();
        if (m_dialog->mode() == OpenSaveDialog::Mode::Open)
            openChosen(choice);
        else
            saveChosen(choice);
    }
    Q_EMIT dialogDone();
}

void DisplayDialogs::openChosen(const OpenSaveDialog::Choice& choice)
{
    switch (choice.source) {
    case OpenSaveDialog::Source::Log:
        m_host.raiseLogImageSelected(LogSelector::encode(choice.log));
        return;
    case OpenSaveDialog::Source::Remote:
        NXR_TRACE(kDisplay, kLoadByDialog,
                  QStringLiteral("got subfolder= ") + mfstr_GetSubfolderFromPath(choice.path));
        if (m_host.loadImage(choice.server, choice.path, choice.user, choice.password)) {
            const QSize size = m_host.shownImageSize();
            m_host.raiseUserLoadedImage(choice.path, size.width(), size.height());
        }
        return;
    case OpenSaveDialog::Source::Local:
        if (openLocal(choice.path)) {
            const QSize size = m_host.shownImageSize();
            m_host.raiseUserLoadedImage(choice.path, size.width(), size.height());
        }
        return;
    }
}

bool DisplayDialogs::openLocal(const QString& localPath)
{
    // The display reads every image from its storage folder: the file goes where a temporary
    // controller image "TD:\image<ext>" is kept and is loaded from there as LoadImage does.
    QString extension = Globals::imageExtension(QFileInfo(localPath).fileName());
    if (extension.isEmpty())
        extension = QStringLiteral(".PNG");
    const QString controllerPath = RemotePaths::kTemporaryFolder + QStringLiteral("image") + extension;
    const QString cached = LocalImagePath::forControllerPath(Globals::storageFolder(), controllerPath);
    QString error;
    if (!QDir().mkpath(QFileInfo(cached).absolutePath()) || !replaceFile(localPath, cached, &error)) {
        m_host.reportError(
            kLoadByDialog,
            errorIn(kLoadByDialog, error.isEmpty() ? QStringLiteral("cannot create folder") : error));
        return false;
    }
    return m_host.loadImage(QString(), controllerPath, QString(), QString());
}

void DisplayDialogs::saveChosen(const OpenSaveDialog::Choice& choice)
{
    NXR_TRACE(kDisplay, kSaveByDialog, QStringLiteral("Entered, path=") + choice.path);
    QImage image = m_host.shownImage();
    if (image.isNull()) {
        m_host.reportError(kSaveByDialog, errorIn(kSaveByDialog, QStringLiteral("No image to save")));
        return;
    }
    if (choice.saveWhat == OpenSaveDialog::SaveGrey && image.format() != QImage::Format_Grayscale8)
        image = image.convertToFormat(QImage::Format_Grayscale8);
    const ImageFileFormat format =
        choice.extension == QLatin1String(".BMP") ? ImageFileFormat::Bmp : ImageFileFormat::Png;
    const QString local =
        temporaryFolder() + QLatin1Char('/') + kRasterImage + ImageFile::extensionOf(format);
    try {
        if (!QDir().mkpath(temporaryFolder()))
            throw Failure(QStringLiteral("cannot create folder ") + temporaryFolder());
        ImageFile::write(image, local, format);
    } catch (const Failure& f) {
        m_host.reportError(kSaveByDialog, errorIn(kSaveByDialog, f.description()));
        return;
    }

    QString error;
    bool done = false;
    if (choice.source == OpenSaveDialog::Source::Local) {
        done = replaceFile(local, choice.path, &error);
    } else if (m_dialog && m_dialog->remote()) {
        // The dialog's own connection, on which the user browsed to the target.
        done = m_dialog->remote()->upload(local, choice.path, &error);
    } else {
        error = QStringLiteral("not connected");
    }
    if (!done) {
        m_host.reportError(kSaveByDialog,
                           errorIn(kSaveByDialog, scrubCredentials(error, {choice.user, choice.password})));
        return;
    }
    NXR_TRACE(kDisplay, kSaveByDialog, QStringLiteral("Done"));
}

} // namespace nxr
