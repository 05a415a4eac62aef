#include "host/ScriptWatchdog.h"

#include <QJSEngine>

#include <algorithm>

namespace nxr {

ScriptWatchdog::ScriptWatchdog(QJSEngine* engine, int limitMs, std::function<bool()> mayResume,
                               QObject* parent)
    : QObject(parent), m_engine(engine), m_limitMs(std::max(0, limitMs)), m_mayResume(std::move(mayResume))
{
    m_beat.setInterval(std::clamp(m_limitMs / 10, 10, 250));
    connect(&m_beat, &QTimer::timeout, this, &ScriptWatchdog::resume);
}

ScriptWatchdog::~ScriptWatchdog()
{
    stop();
}

void ScriptWatchdog::start()
{
    if (m_limitMs <= 0 || m_thread.joinable())
        return;
    m_clock.start();
    m_lastBeat = 0;
    m_beat.start();
    m_stop = false;
    m_thread = std::thread([this] { watch(); });
}

void ScriptWatchdog::stop()
{
    m_beat.stop();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void ScriptWatchdog::resume()
{
    m_lastBeat = m_clock.elapsed();
    if (!m_fired.exchange(false))
        return;
    if (m_mayResume && m_mayResume())
        m_engine->setInterrupted(false);
    Q_EMIT interrupted(int(m_firedAfter.load()));
}

void ScriptWatchdog::watch()
{
    const auto step = std::chrono::milliseconds(std::clamp(m_limitMs / 20, 5, 100));
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop) {
        m_wake.wait_for(lock, step, [this] { return m_stop; });
        if (m_stop)
            break;
        const qint64 silent = m_clock.elapsed() - m_lastBeat.load();
        if (silent >= m_limitMs && !m_fired.load()) {
            m_firedAfter = silent;
            m_fired = true;
            m_engine->setInterrupted(true);
            // Handled by the event loop before any timer of the page falls due.
            QMetaObject::invokeMethod(
                this, [this] { resume(); }, Qt::QueuedConnection);
        }
    }
}

} // namespace nxr
