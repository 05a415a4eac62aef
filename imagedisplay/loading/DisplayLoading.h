#pragma once
// Image loading, saving and live mode of the image display: the display's public members
// LoadImage, SaveCurrentImage, AbortLiveMode, CurrentImageFilename, WaitOnDisplay and the
// "LiveMode" key forward here. Wires the loader and live mode to the display's timers, state
// flags, tool bar (live and snap buttons), mouse dispatcher (zoom clicks queued while an image
// loads) and events (OnLiveModeToggled, OnButtonClicked("Snap"), OnZoomChanged).

#include "frame/Export.h"
#include "imagedisplay/loading/ControllerFiles.h"
#include "imagedisplay/loading/DisplaySurface.h"
#include "imagedisplay/loading/ImageLoader.h"
#include "imagedisplay/loading/LiveMode.h"

#include <memory>

class NXRImageDisplay;

namespace nxr {

class TransferFiles;

class NXR_EXPORT DisplayLoading
{
public:
    explicit DisplayLoading(NXRImageDisplay& display);
    ~DisplayLoading();
    DisplayLoading(const DisplayLoading&) = delete;
    DisplayLoading& operator=(const DisplayLoading&) = delete;

    void LoadImage(const QString& server, const QString& path, const QString& userName,
                   const QString& password);
    void SaveCurrentImage(const QString& server, const QString& path, const QString& userName,
                          const QString& password);
    void AbortLiveMode();
    // The "LiveMode" key.
    void setLiveMode(bool on);

    // The keys "FTPPortNo" and "HTTPPortNo": ports of the file transfer.
    void setFtpPort(int port);
    void setHttpPort(int port);
    int ftpPort() const { return m_ftpPort; }
    int httpPort() const { return m_httpPort; }

    // The controller's files: the display's own file transfer object, created on first use;
    // setFiles() puts something else in its place (tests), nullptr goes back to the default.
    ControllerFiles* files();
    void setFiles(ControllerFiles* files) { m_filesOverride = files; }

    ImageLoader& loader() { return m_loader; }
    LiveMode& live() { return m_live; }

private:
    NXRImageDisplay& m_display;
    DisplaySurface m_surface;
    std::unique_ptr<TransferFiles> m_transferFiles;
    ControllerFiles* m_filesOverride = nullptr;
    int m_ftpPort = 21;
    int m_httpPort = 80;
    LiveMode m_live;
    ImageLoader m_loader;
};

} // namespace nxr
