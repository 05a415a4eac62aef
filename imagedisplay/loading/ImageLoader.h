#pragma once
// The life of an image in the display: LoadImage copies a controller file to the local storage
// folder, reads it into the landing view, files it as "current" and shows it, keeping zoom and
// scroll for an image of the same size and fitting any other; SaveCurrentImage writes it back.
// Screen-free: the display is reached through ImageSurface, the controller through
// ControllerFiles, the page through the display's ScriptableCore (errors) and zoomChanged().

#include "frame/Export.h"
#include "imagedisplay/loading/ImageList.h"

#include <QImage>
#include <QObject>
#include <QString>
#include <QTimer>

#include <deque>
#include <functional>
#include <vector>

namespace nxr {

class ControllerFiles;
class ImageSurface;
class LiveMode;
class ScriptableCore;

class NXR_EXPORT ImageLoader : public QObject
{
    Q_OBJECT

public:
    // The controller's files are reached through what `files` returns; it is asked on the first
    // transfer (and may create the transfer object then). A null answer fails the transfer.
    using FilesProvider = std::function<ControllerFiles*()>;

    // `refreshTimer` is the display's tmr_ImageRefresh when it has one; otherwise the object makes
    // its own.
    ImageLoader(ImageSurface& surface, LiveMode& live, ScriptableCore& core, FilesProvider files,
                QTimer* refreshTimer = nullptr, QObject* parent = nullptr);

    // LoadImage: an empty path clears the display. Failures are reported through the core (one
    // OnError each); a failed load outside live mode leaves an empty display, one in live mode
    // keeps the last image. The file is decoded on a worker thread (BackgroundRead). A LoadImage
    // that arrives while another is running (from a handler re-entered during the transfer or the
    // decode) is run right after it, in order. A loader destroyed meanwhile is not touched again.
    void loadImage(const QString& server, const QString& path, const QString& userName,
                   const QString& password);
    // msub_SaveImage with the key "current" (SaveCurrentImage) or any list key; "LEAD_image" saves
    // the main raster view's own bitmap.
    void saveImage(const QString& server, const QString& path, const QString& userName,
                   const QString& password, const QString& listKey = ImageList::kCurrent);

    // Files an image as "current" and shows it as a loaded one is shown: zoom and scroll stay for
    // an image of the shown size (with keepViewIfSameSize), any other is fitted (zoomChanged).
    void showImage(const QImage& image, bool keepViewIfSameSize);

    // msub_ResetDisplay: drops "current" and empties the display.
    void resetDisplay();
    // msub_ReinitializeDisplay: also drops the masks and returns the display to its first state.
    void reinitializeDisplay();

    // The local file the shown image was read from, and the file name of its controller path.
    QString currentImageFilename() const { return m_currentFile; }
    QString originalFilename() const { return m_originalFile; }
    // The server of the last LoadImage.
    QString hostName() const { return m_hostName; }
    void setHostName(const QString& host) { m_hostName = host; }

    // WaitOnDisplay: True makes LoadImage repaint before it returns; False (the default) leaves
    // the repaint to tmr_ImageRefresh, right after.
    bool waitOnDisplay() const { return m_waitOnDisplay; }
    void setWaitOnDisplay(bool wait);

    bool isLoading() const { return m_loading; }
    ImageList& images() { return m_images; }
    const QTimer& refreshTimer() const { return *m_refreshTimer; }

Q_SIGNALS:
    // The display's zoom changed because a new image of another size was fitted.
    void zoomChanged(float newZoom);
    // A new image is in the main raster view (before its repaint), with its zoom and scroll set.
    void imageShown();

private:
    struct Request
    {
        QString server, path, userName, password;
    };

    void runQueue(const Request& first);
    void runLoad(const Request& request);
    bool loadNewImage(const Request& request, bool noWait); // mflng_LoadNewImage
    // msub_ResetAndShowListImage; `shown` is what the view shows of the current image when that
    // was made ahead (its grey copy), and `reductions` are its reduction levels, or none.
    void resetAndShowListImage(bool noWait, bool fit = false, std::vector<QImage> reductions = {},
                               const QImage& shown = QImage());
    void clearAfterFailure();
    void refreshTick(); // tmr_ImageRefresh
    ControllerFiles* files(const QString& routine);

    ImageSurface& m_surface;
    LiveMode& m_live;
    ScriptableCore& m_core;
    FilesProvider m_files;
    ImageList m_images;
    QTimer* m_refreshTimer; // tmr_ImageRefresh
    QString m_currentFile;
    QString m_originalFile;
    QString m_hostName;
    bool m_waitOnDisplay = false;
    bool m_loading = false;
    std::deque<Request> m_pending;
};

} // namespace nxr
