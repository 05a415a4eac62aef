#include "imagedisplay/loading/ImageLoader.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/ScriptableCore.h"
#include "frame/SyncCall.h"
#include "frame/Trace.h"
#include "imagedisplay/loading/BackgroundRead.h"
#include "imagedisplay/loading/ControllerFiles.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/ImageSurface.h"
#include "imagedisplay/loading/LiveMode.h"
#include "imagedisplay/loading/LocalImagePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace nxr {
namespace {

const QString kLoadImage = QStringLiteral("LoadImage");
const QString kLoadNewImage = QStringLiteral("mflng_LoadNewImage");
const QString kCopyFrom = QStringLiteral("mfbln_CopyFileFromController");
const QString kCopyTo = QStringLiteral("mfbln_CopyFileToController");
const QString kSaveImage = QStringLiteral("msub_SaveImage");
const QString kShowListImage = QStringLiteral("msub_ResetAndShowListImage");
const QString kRasterImageKey = QStringLiteral("LEAD_image");

QString errorIn(const QString& routine, const QString& description)
{
    return QStringLiteral("Error in ") + routine + QStringLiteral(": ") + description;
}

bool makeFolderFor(const QString& file)
{
    return QDir().mkpath(QFileInfo(file).absolutePath());
}

} // namespace

ImageLoader::ImageLoader(ImageSurface& surface, LiveMode& live, ScriptableCore& core, FilesProvider files,
                         QTimer* refreshTimer, QObject* parent)
    : QObject(parent), m_surface(surface), m_live(live), m_core(core), m_files(std::move(files)),
      m_refreshTimer(refreshTimer ? refreshTimer : new QTimer(this))
{
    if (!refreshTimer)
        m_refreshTimer->setObjectName(QStringLiteral("tmr_ImageRefresh"));
    m_refreshTimer->stop();
    m_refreshTimer->setSingleShot(true);
    m_refreshTimer->setInterval(0);
    connect(m_refreshTimer, &QTimer::timeout, this, &ImageLoader::refreshTick);
}

void ImageLoader::loadImage(const QString& server, const QString& path, const QString& userName,
                            const QString& password)
{
    // The loader may be destroyed while a transfer or a decode waits: the call then unwinds
    // without touching it.
    CallEntry::run(this, [&] { runQueue(Request{server, path, userName, password}); });
}

void ImageLoader::runQueue(const Request& first)
{
    m_core.trace(kLoadImage, QStringLiteral("Entered, vstr_FilePath = ") + first.path);
    m_pending.push_back(first);
    if (m_loading) {
        // A handler re-entered while the transfer or the decode waited: this image follows the
        // running one.
        m_core.trace(kLoadImage, QStringLiteral("a load is running, this one follows it"));
        return;
    }
    m_loading = true;
    if (m_live.isOn())
        m_live.setBusy(true);
    while (!m_pending.empty()) {
        const Request request = m_pending.front();
        m_pending.pop_front();
        m_core.guard(kLoadImage, [&] { runLoad(request); });
    }
    m_live.setBusy(false);
    m_loading = false;
    m_core.guard(kLoadImage, [&] {
        if (m_live.queuedCount() > 0)
            m_live.processQueue();
        m_live.loadFinished();
    });
    m_core.trace(kLoadImage, QStringLiteral("Done"));
}

void ImageLoader::runLoad(const Request& request)
{
    m_hostName = request.server;
    if (request.path.isEmpty()) {
        m_surface.clearImage();
        m_surface.setLandingImage(QImage());
        reinitializeDisplay();
        return;
    }
    if (!loadNewImage(request, !m_waitOnDisplay) && !m_live.isOn())
        clearAfterFailure();
}

void ImageLoader::clearAfterFailure()
{
    m_surface.clearImage();
    reinitializeDisplay();
}

bool ImageLoader::loadNewImage(const Request& request, bool noWait)
{
    const QStringList secrets{request.userName, request.password};
    m_core.trace(kLoadNewImage, QStringLiteral("Entered, vstr_FilePath = ") + request.path);
    m_core.trace(kLoadNewImage, QStringLiteral("got subfolder= ") + LocalImagePath::subfolder(request.path));
    const QString local = LocalImagePath::forControllerPath(Globals::storageFolder(), request.path);
    m_core.trace(kLoadNewImage, QStringLiteral("   local path = ") + local);
    if (!makeFolderFor(local)) {
        m_core.reportError(kLoadNewImage, errorIn(kLoadNewImage, QStringLiteral("cannot create folder ") +
                                                                     QFileInfo(local).path()));
        return false;
    }

    if (!request.server.isEmpty()) {
        ControllerFiles* transfer = files(kCopyFrom);
        if (!transfer)
            return false;
        QString why;
        if (!transfer->copyFromController(request.server, request.path, request.userName, request.password,
                                          local, &why)) {
            m_core.reportError(kCopyFrom, errorIn(kCopyFrom, scrubCredentials(why, secrets)));
            return false;
        }
    }

    BackgroundRead::Result read;
    try {
        read = BackgroundRead::read(local, m_surface.reductionLevel(), m_surface.showsGrey());
    } catch (const Failure& f) {
        // The reason goes to the trace; the page gets the display's fixed message.
        errorTrace(m_core.className(), kLoadNewImage, f.description());
        m_core.reportError(kLoadNewImage, QStringLiteral("Error in mflng_LoadNewImage: file ") +
                                              request.path + QStringLiteral(" does not contain image"));
        return false;
    }
    m_surface.setLandingImage(read.image);
    m_images.insert(ImageList::kCurrent, read.image);
    m_originalFile = Globals::fileNameOfPath(request.path);
    m_currentFile = local;
    resetAndShowListImage(noWait, false, std::move(read.reductions), read.shown);
    m_core.trace(kLoadNewImage, QStringLiteral("Done"));
    return true;
}

void ImageLoader::showImage(const QImage& image, bool keepViewIfSameSize)
{
    m_images.insert(ImageList::kCurrent, image);
    resetAndShowListImage(false, !keepViewIfSameSize);
}

void ImageLoader::resetAndShowListImage(bool noWait, bool fit, std::vector<QImage> reductions,
                                        const QImage& shown)
{
    const float oldZoom = m_surface.zoom();
    const QSize oldSize = m_surface.shownImage().size();
    const QPointF oldScroll = m_surface.scrollPosition();
    const bool repaint = m_surface.autoRepaint();
    m_surface.setAutoRepaint(false);

    const QImage image = m_images.image(ImageList::kCurrent);
    m_surface.showImage(shown.isNull() ? image : shown, std::move(reductions));
    if (!image.isNull() && (fit || oldSize.isEmpty() || oldSize != image.size())) {
        m_core.trace(kShowListImage, QStringLiteral("reset zoom etc."));
        const float newZoom = m_surface.fitImage();
        m_core.trace(kShowListImage, QStringLiteral("raising event OnZoomChanged(") + fromSingle(newZoom) +
                                         QStringLiteral("), old zoom=") + fromSingle(oldZoom));
        emit zoomChanged(newZoom);
    } else {
        m_core.trace(kShowListImage, QStringLiteral("restore zoom/pan"));
        m_surface.restoreView(oldZoom, oldScroll);
    }
    emit imageShown();

    if (noWait) {
        m_refreshTimer->start(); // repaints and switches repainting back on right after
    } else {
        m_surface.setAutoRepaint(repaint);
        m_surface.repaintActiveView();
    }
}

void ImageLoader::refreshTick()
{
    m_refreshTimer->stop();
    if (m_surface.repaintActiveView())
        m_surface.setAutoRepaint(true);
}

void ImageLoader::saveImage(const QString& server, const QString& path, const QString& userName,
                            const QString& password, const QString& listKey)
{
    m_core.trace(kSaveImage, QStringLiteral("Entered, vstr_FilePath=") + path);
    const QImage image = listKey == kRasterImageKey ? m_surface.shownImage() : m_images.image(listKey);
    if (image.isNull()) {
        m_core.reportError(kSaveImage, errorIn(kSaveImage, QStringLiteral("No image to save")));
        return;
    }
    const QStringList secrets{userName, password};
    QString local;
    const bool written = m_core.guard(kSaveImage, [&] {
        m_surface.setLandingImage(image);
        const ImageFileFormat format = ImageFile::formatForPath(path);
        // Beside the loaded image, under its own name, so that the shown image's file stays.
        local = LocalImagePath::forControllerPath(Globals::storageFolder(), path);
        local = QFileInfo(local).path() + QStringLiteral("/upload") + ImageFile::extensionOf(format);
        if (!makeFolderFor(local))
            throw Failure(QStringLiteral("cannot create folder ") + QFileInfo(local).path());
        ImageFile::write(image, local, format);
    });
    if (!written || server.isEmpty())
        return;

    // mfbln_CopyFileToController
    if (!QFileInfo::exists(local)) {
        m_core.reportError(kCopyTo, QStringLiteral("Local file does not exist."));
        return;
    }
    ControllerFiles* transfer = files(kCopyTo);
    if (!transfer)
        return;
    QString why;
    if (!transfer->copyToController(local, server, path, userName, password, &why)) {
        m_core.reportError(kCopyTo, errorIn(kCopyTo, scrubCredentials(why, secrets)));
        return;
    }
    m_core.trace(kSaveImage, QStringLiteral("Done"));
}

ControllerFiles* ImageLoader::files(const QString& routine)
{
    ControllerFiles* transfer = m_files ? m_files() : nullptr;
    if (!transfer)
        m_core.reportError(routine, errorIn(routine, QStringLiteral("no file transfer object")));
    return transfer;
}

void ImageLoader::resetDisplay()
{
    m_images.remove(ImageList::kCurrent);
    m_currentFile.clear();
    m_surface.clearImage();
}

void ImageLoader::reinitializeDisplay()
{
    m_images.clear();
    m_currentFile.clear();
    m_originalFile.clear();
    m_surface.reinitialize();
}

void ImageLoader::setWaitOnDisplay(bool wait)
{
    m_core.trace(QStringLiteral("WaitOnDisplay"), QStringLiteral("wait = ") + fromBool(wait));
    m_waitOnDisplay = wait;
    m_surface.setAutoRepaint(false);
    m_surface.setAutoRepaint(true);
    m_surface.repaintActiveView();
}

} // namespace nxr
