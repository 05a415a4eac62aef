#pragma once
// Live mode of the image display: while it is on, every finished image load starts tmr_LiveMode,
// whose tick asks the page for the next image (the "Snap" the display raises). Zoom clicks that
// arrive while a live image is being loaded wait in a queue and are replayed in order afterwards.

#include "frame/Export.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace nxr {

class ImageSurface;
class ScriptableCore;

class NXR_EXPORT LiveMode : public QObject
{
    Q_OBJECT

public:
    static constexpr int kInterval = 40;          // ms between two requests for an image, on average
    static constexpr int kAbortInterval = 500;    // ms granted to a running load before an abort
    static constexpr int kMinGap = kInterval / 2; // ms at least between two requests
    static inline const QString kMouseDownHandler = QStringLiteral("ctl_LEAD_MouseDown");

    // `timer` is the display's tmr_LiveMode when it has one; otherwise the object makes its own.
    LiveMode(ImageSurface& surface, ScriptableCore& core, QTimer* timer = nullptr, QObject* parent = nullptr);

    // Keeps the three flags in the display's own state from now on (values carried over), so that
    // its other parts read them where they always do.
    void bindFlags(bool* on, bool* busy, bool* abortRequested);

    bool isOn() const { return *m_on; }
    // True while an image is being loaded in live mode.
    bool isBusy() const { return *m_busy; }
    void setBusy(bool busy) { *m_busy = busy; }
    bool abortRequested() const { return *m_abortRequested; }

    // msub_TurnOnLiveMode: disables the live, open and save buttons, shows the busy pointer and
    // raises liveModeToggled(true). Nothing happens when live mode is already on.
    void turnOn();
    // msub_DoAbortLiveMode: the reverse, raising liveModeToggled(false); nothing when already off.
    // The queue is kept.
    void doAbort();
    // The snap button while live mode is on: the abort waits for the running load, then happens on
    // the next tick of the timer (at kAbortInterval).
    void requestAbort();
    // An image load has finished: in live mode, the timer starts unless it runs already. It fires
    // when the next request is due, one interval after the previous request was due (at once
    // when the load took longer), so the page is asked 25 times a second on average, loads do
    // not add to the interval, and a late request is made up, never less than kMinGap apart.
    void loadFinished();

    // A zoom click on the main raster view. While live mode is busy it is queued (true returned)
    // and must not be handled now.
    bool deferMouseDown(int button, int shift, double x, double y);
    // Queues a zoom click unconditionally (the display also holds clicks back while a load
    // outside live mode runs).
    void enqueueMouseDown(int button, int shift, double x, double y);
    int queuedCount() const { return int(m_queue.size()); }
    // msub_ProcessLiveModeQueue: replays the queued clicks in arrival order and empties the queue.
    void processQueue();
    // msub_ClearLiveModeQueue.
    void clearQueue();

    const QTimer& timer() const { return *m_timer; }

Q_SIGNALS:
    void liveModeToggled(bool on);
    // The page is to acquire and load the next image.
    void snapRequested();

private:
    void tick();

    ImageSurface& m_surface;
    ScriptableCore& m_core;
    QTimer* m_timer; // tmr_LiveMode
    bool m_ownFlags[3] = {false, false, false};
    bool* m_on = &m_ownFlags[0];
    bool* m_busy = &m_ownFlags[1];
    bool* m_abortRequested = &m_ownFlags[2];
    QList<QStringList> m_queue; // handler name, Button, Shift, X, Y
    QElapsedTimer m_clock;      // runs from the moment live mode was turned on
    qint64 m_requestDue = -1;   // when the last request for an image was due on m_clock; -1 none yet
    qint64 m_requestMade = 0;   // when it was made
};

} // namespace nxr
