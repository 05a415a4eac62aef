#include "imagedisplay/loading/LiveMode.h"

#include "frame/Conversions.h"
#include "frame/ScriptableCore.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/loading/ImageSurface.h"

#include <algorithm>

namespace nxr {
namespace {

const QString kTrue = QStringLiteral("True");
const QString kFalse = QStringLiteral("False");
const QString kLiveEnabled = QStringLiteral("LiveEnabled");
const QString kButtonEnabled = QStringLiteral("ButtonEnabled");

} // namespace

LiveMode::LiveMode(ImageSurface& surface, ScriptableCore& core, QTimer* timer, QObject* parent)
    : QObject(parent), m_surface(surface), m_core(core), m_timer(timer ? timer : new QTimer(this))
{
    if (!timer)
        m_timer->setObjectName(QStringLiteral("tmr_LiveMode"));
    m_timer->stop();
    m_timer->setSingleShot(false);
    m_timer->setTimerType(Qt::PreciseTimer); // 40 ms is the pace of live mode, not a rough wait
    m_timer->setInterval(kInterval);
    connect(m_timer, &QTimer::timeout, this, &LiveMode::tick);
}

void LiveMode::bindFlags(bool* on, bool* busy, bool* abortRequested)
{
    *on = *m_on;
    *busy = *m_busy;
    *abortRequested = *m_abortRequested;
    m_on = on;
    m_busy = busy;
    m_abortRequested = abortRequested;
}

void LiveMode::turnOn()
{
    const QString routine = QStringLiteral("msub_TurnOnLiveMode");
    m_core.trace(routine, QStringLiteral("Entered, caption=") + m_surface.caption());
    if (!isOn()) {
        m_surface.setViewButtonProperty(kLiveEnabled, kFalse);
        m_surface.setViewButtonProperty(kButtonEnabled, joinItemValue(vvb_Open, kFalse));
        m_surface.setViewButtonProperty(kButtonEnabled, joinItemValue(vvb_Save, kFalse));
        m_surface.setBusyPointer(true);
        *m_on = true;
        *m_abortRequested = false;
        m_timer->setInterval(kInterval);
        m_clock.start();
        m_requestDue = -1;
        emit liveModeToggled(true);
    }
    m_core.trace(routine, QStringLiteral("Done, caption=") + m_surface.caption());
}

void LiveMode::doAbort()
{
    const QString routine = QStringLiteral("msub_DoAbortLiveMode");
    m_core.trace(routine, QStringLiteral("Entered, caption=") + m_surface.caption());
    if (isOn()) {
        *m_on = false;
        m_timer->stop();
        m_timer->setInterval(kInterval);
        m_surface.setBusyPointer(false);
        m_surface.setViewButtonProperty(kLiveEnabled, kTrue);
        m_surface.setViewButtonProperty(kButtonEnabled, joinItemValue(vvb_Open, kTrue));
        m_surface.setViewButtonProperty(kButtonEnabled, joinItemValue(vvb_Save, kTrue));
        *m_abortRequested = false;
        emit liveModeToggled(false);
    }
    m_core.trace(routine, QStringLiteral("Done, caption=") + m_surface.caption());
}

void LiveMode::requestAbort()
{
    if (!isOn())
        return;
    m_timer->stop();
    *m_abortRequested = true;
    m_timer->setInterval(kAbortInterval);
    m_timer->start();
}

void LiveMode::loadFinished()
{
    if (!isOn() || m_timer->isActive())
        return;
    // Requests are paced at one per interval: the time the load took since the last request
    // counts towards the wait, so a load shorter than the interval still gives 25 images a second.
    // Each request is due one interval after the previous one was due, not after it was made: a
    // late tick (the event loop was busy, another display's load waited) is made up by a shorter
    // wait, never shorter than kMinGap, instead of slowing the pace for good.
    int wait = kInterval;
    if (m_requestDue >= 0) {
        const qint64 now = m_clock.elapsed();
        const qint64 earliest = m_requestMade + kMinGap - now;
        wait = int(std::clamp<qint64>(std::max(m_requestDue + kInterval - now, earliest), 0, kInterval));
    }
    m_timer->start(wait);
}

void LiveMode::tick()
{
    if (!isOn()) {
        m_timer->stop();
        return;
    }
    if (isBusy()) {
        m_timer->setInterval(kInterval); // a load is still running; ask again on the next tick
        return;
    }
    if (abortRequested()) {
        doAbort();
        m_timer->setInterval(kInterval);
        return;
    }
    m_timer->stop();
    m_timer->setInterval(kInterval);
    m_core.trace(QStringLiteral("tmr_LiveMode_Timer"), QStringLiteral("raising event OnButtonClicked(Snap)"));
    // A request more than an interval behind its due time starts the pace afresh.
    const qint64 now = m_clock.elapsed();
    const qint64 due = m_requestDue + kInterval;
    m_requestDue = m_requestDue >= 0 && now - due < kInterval ? due : now;
    m_requestMade = now;
    emit snapRequested();
}

bool LiveMode::deferMouseDown(int button, int shift, double x, double y)
{
    if (!isBusy())
        return false;
    enqueueMouseDown(button, shift, x, y);
    return true;
}

void LiveMode::enqueueMouseDown(int button, int shift, double x, double y)
{
    m_queue.append(QStringList{kMouseDownHandler, QString::number(button), QString::number(shift),
                               fromDouble(x), fromDouble(y)});
}

void LiveMode::processQueue()
{
    m_core.trace(QStringLiteral("msub_ProcessLiveModeQueue"),
                 QStringLiteral("Entered, entries=") + QString::number(m_queue.size()));
    // Taken out first: a replayed click may itself end up here again.
    const QList<QStringList> entries = std::exchange(m_queue, {});
    for (const QStringList& entry : entries) {
        if (entry.size() == 5 && entry[0] == kMouseDownHandler)
            m_surface.replayMouseDown(toLong(entry[1]), toLong(entry[2]), toDouble(entry[3]),
                                      toDouble(entry[4]));
    }
}

void LiveMode::clearQueue()
{
    while (!m_queue.isEmpty())
        m_queue.removeFirst();
}

} // namespace nxr
