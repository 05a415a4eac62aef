#include "host/ScriptTimers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nxr {

ScriptTimers::ScriptTimers(QObject* parent) : QObject(parent)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ScriptTimers::runDue);
}

int ScriptTimers::add(const QJSValue& callback, double delayMs, bool repeat, const QJSValueList& arguments)
{
    if (m_stopped)
        return 0;
    const double clamped =
        std::isfinite(delayMs) ? std::clamp(delayMs, 0.0, double(std::numeric_limits<int>::max())) : 0.0;
    Entry entry;
    entry.id = ++m_lastId;
    entry.interval = qint64(clamped);
    if (repeat)
        entry.interval = std::max<qint64>(entry.interval, 1);
    entry.due = m_clock.elapsed() + entry.interval;
    entry.order = m_nextOrder++;
    entry.repeat = repeat;
    entry.callback = callback;
    entry.arguments = arguments;
    m_entries.push_back(std::move(entry));
    rearm();
    return m_lastId;
}

void ScriptTimers::clear(int id)
{
    const auto it =
        std::find_if(m_entries.begin(), m_entries.end(), [id](const Entry& e) { return e.id == id; });
    if (it == m_entries.end())
        return;
    m_entries.erase(it);
    rearm();
}

void ScriptTimers::stopAll()
{
    m_stopped = true;
    m_entries.clear();
    m_timer.stop();
}

void ScriptTimers::runDue()
{
    // Only timers set before this round take part in it, so a callback that sets a 0 ms timeout
    // lets the event loop run before that one fires.
    const quint64 roundEnd = m_nextOrder;
    for (;;) {
        const qint64 now = m_clock.elapsed();
        auto next = m_entries.end();
        for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
            if (it->due > now || it->order >= roundEnd)
                continue;
            if (next == m_entries.end() || it->due < next->due ||
                (it->due == next->due && it->order < next->order))
                next = it;
        }
        if (next == m_entries.end())
            break;
        QJSValue callback = next->callback;
        const QJSValueList arguments = next->arguments;
        if (next->repeat) {
            next->due = now + next->interval;
            next->order = m_nextOrder++;
        } else {
            m_entries.erase(next);
        }
        // Armed before the call, so timers keep firing while a callback waits in host.wait().
        rearm();
        ++m_running;
        const QJSValue result = callback.call(arguments);
        --m_running;
        if (result.isError())
            Q_EMIT callbackFailed(result);
        if (m_stopped)
            return;
    }
    rearm();
}

void ScriptTimers::rearm()
{
    if (m_entries.empty()) {
        m_timer.stop();
        return;
    }
    qint64 earliest = std::numeric_limits<qint64>::max();
    for (const Entry& e : m_entries)
        earliest = std::min(earliest, e.due);
    const qint64 wait = std::max<qint64>(0, earliest - m_clock.elapsed());
    m_timer.start(int(std::min<qint64>(wait, std::numeric_limits<int>::max())));
}

} // namespace nxr
