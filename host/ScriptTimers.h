#pragma once
// setTimeout / setInterval for page scripts. One queue ordered by due time, then by the order
// the timers were set, so two timeouts with the same delay run in the order they were set
// and a shorter delay set later still runs first. Callbacks run from the event loop, never
// inside the call that set them.

#include <QElapsedTimer>
#include <QJSValue>
#include <QList>
#include <QObject>
#include <QTimer>

#include <vector>

namespace nxr {

class ScriptTimers : public QObject
{
    Q_OBJECT

public:
    explicit ScriptTimers(QObject* parent = nullptr);

    // Returns the timer's id (1, 2, ...). A negative or non-numeric delay counts as 0; an interval
    // repeats at least every millisecond.
    int add(const QJSValue& callback, double delayMs, bool repeat, const QJSValueList& arguments);
    // Unknown or finished ids are ignored.
    void clear(int id);
    // Drops every timer; nothing fires any more.
    void stopAll();
    // Timers still to fire, or a callback still running (one that waits in a control's call, a
    // transfer or a dialog, with the event loop turning underneath it).
    bool hasPending() const { return !m_entries.empty() || m_running > 0; }

Q_SIGNALS:
    // A callback threw; `error` is the thrown value.
    void callbackFailed(const QJSValue& error);

private:
    struct Entry
    {
        int id = 0;
        qint64 due = 0;
        quint64 order = 0;
        qint64 interval = 0;
        bool repeat = false;
        QJSValue callback;
        QJSValueList arguments;
    };
    void runDue();
    void rearm();

    std::vector<Entry> m_entries;
    QElapsedTimer m_clock;
    QTimer m_timer;
    int m_lastId = 0;
    quint64 m_nextOrder = 0;
    bool m_stopped = false;
    int m_running = 0;
};

} // namespace nxr
