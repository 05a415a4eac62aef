#include "imagedisplay/loading/DisplayLoading.h"

#include "frame/SyncCall.h"
#include "imagedisplay/DisplayState.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/loading/TransferFiles.h"

namespace nxr {

DisplayLoading::DisplayLoading(NXRImageDisplay& display)
    : m_display(display), m_surface(display), m_live(m_surface, display.core(), display.liveModeTimer()),
      m_loader(
          m_surface, m_live, display.core(), [this] { return files(); }, display.imageRefreshTimer())
{
    DisplayState& state = display.state();
    m_live.bindFlags(&state.liveModeOn, &state.liveModeBusy, &state.abortRequested);

    QObject::connect(&m_live, &LiveMode::liveModeToggled, &display,
                     [&display](bool on) { Q_EMIT display.OnLiveModeToggled(on); });
    QObject::connect(&m_live, &LiveMode::snapRequested, &display,
                     [&display] { Q_EMIT display.OnButtonClicked(QStringLiteral("Snap")); });
    QObject::connect(&m_loader, &ImageLoader::zoomChanged, &display,
                     [&display] { display.raiseZoomChanged(); });

    ToolbarClickHandler& clicks = display.toolbarClicks();
    clicks.setAction(vvb_ContinuousAcquire, [this] { m_live.turnOn(); });
    clicks.setAction(vvb_Acquire, [this] { m_live.requestAbort(); }); // nothing outside live mode
    // Zoom clicks that arrive while an image is on its way wait for it, in live mode (the live-mode
    // busy flag) and outside it, so that they apply, in order, to the image that arrives.
    display.mouse().setZoomClickDeferral([this](const MouseArgs& a) {
        if (m_live.deferMouseDown(a.button, a.shift, a.x, a.y))
            return true;
        if (!m_loader.isLoading())
            return false;
        m_live.enqueueMouseDown(a.button, a.shift, a.x, a.y);
        return true;
    });
}

DisplayLoading::~DisplayLoading()
{
    // The display is going: no more ticks, no events into a half-destroyed control.
    m_display.mouse().setZoomClickDeferral({});
    QObject::disconnect(&m_live, nullptr, &m_display, nullptr);
    QObject::disconnect(&m_loader, nullptr, &m_display, nullptr);
}

ControllerFiles* DisplayLoading::files()
{
    if (m_filesOverride)
        return m_filesOverride;
    if (!m_transferFiles) {
        m_transferFiles = std::make_unique<TransferFiles>();
        m_transferFiles->setFtpPort(m_ftpPort);
        m_transferFiles->setHttpPort(m_httpPort);
    }
    return m_transferFiles.get();
}

void DisplayLoading::setFtpPort(int port)
{
    m_ftpPort = port;
    if (m_transferFiles)
        m_transferFiles->setFtpPort(port);
}

void DisplayLoading::setHttpPort(int port)
{
    m_httpPort = port;
    if (m_transferFiles)
        m_transferFiles->setHttpPort(port);
}

void DisplayLoading::LoadImage(const QString& server, const QString& path, const QString& userName,
                               const QString& password)
{
    // The display may be destroyed while the image is on its way (the page closes): the call
    // then ends without touching it.
    CallEntry::run(&m_display, [&] {
        m_display.setHostName(server);
        m_loader.loadImage(server, path, userName, password);
        m_display.setOriginalFilename(m_loader.originalFilename());
    });
}

void DisplayLoading::SaveCurrentImage(const QString& server, const QString& path, const QString& userName,
                                      const QString& password)
{
    CallEntry::run(&m_display,
                   [&] { m_loader.saveImage(server, path, userName, password, ImageList::kCurrent); });
}

void DisplayLoading::AbortLiveMode()
{
    const QString routine = QStringLiteral("AbortLiveMode");
    m_display.core().trace(routine, QStringLiteral("Entered, caption=") + m_display.Caption());
    m_live.doAbort();
    m_display.core().trace(routine, QStringLiteral("Done, caption=") + m_display.Caption());
}

void DisplayLoading::setLiveMode(bool on)
{
    if (on)
        m_live.turnOn();
    else
        m_live.doAbort();
}

} // namespace nxr
