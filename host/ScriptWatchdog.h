#pragma once
// Stops a page script that keeps the user-interface thread to itself. The event loop beats a
// heart; a thread of the watchdog looks at it, and when no beat came for the limit while the
// page runs, it interrupts the script engine (the only engine call that is safe from another
// thread). The script then ends with an error at its next step. The next beat, back on the
// user-interface thread, lets scripts run again and says what happened.

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class QJSEngine;

namespace nxr {

class ScriptWatchdog : public QObject
{
    Q_OBJECT

public:
    // `mayResume` tells whether scripts may run again after an interruption (false while the host
    // is ending the run and keeps the engine interrupted itself).
    ScriptWatchdog(QJSEngine* engine, int limitMs, std::function<bool()> mayResume,
                   QObject* parent = nullptr);
    ~ScriptWatchdog() override;

    // Starts watching; a limit of 0 never starts.
    void start();
    void stop();
    int limitMs() const { return m_limitMs; }
    // On the user-interface thread, once the interrupted script has returned: scripts may run
    // again. The host calls it where it regains control; the event loop calls it first thing.
    void resume();

Q_SIGNALS:
    // A script was stopped after running about `ms` milliseconds without returning.
    void interrupted(int ms);

private:
    void watch();

    QJSEngine* m_engine;
    const int m_limitMs;
    std::function<bool()> m_mayResume;
    QTimer m_beat;
    QElapsedTimer m_clock;
    std::atomic<qint64> m_lastBeat{0};
    std::atomic<bool> m_fired{false};
    std::atomic<qint64> m_firedAfter{0};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace nxr
