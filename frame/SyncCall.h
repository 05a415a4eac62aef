#pragma once
// Synchronous calls that wait in a nested event loop.
//
// A routine that may wait (a transfer, a load) marks itself with a CallEntry for its object.
// While it waits, timers and events run; one of them may destroy the object whose routine is
// waiting. The waiting side then ends its wait early and throws CallAbandoned: it is no Failure,
// so no error handler on the way reports it into a destroyed object; it passes every routine the
// library called itself and stops at the entry point that the script or the event loop called,
// which returns its fallback value without touching its object.
//
// NestedWait marks the wait itself. Routines entered while it lasts start a new chain of calls,
// and nestedWaits() tells a host that a script is still busy inside a call.

#include "frame/Export.h"

#include <QObject>
#include <QPointer>

#include <functional>

namespace nxr {

struct CallAbandoned
{
};

class NXR_EXPORT CallEntry
{
public:
    explicit CallEntry(QObject* owner);
    ~CallEntry();
    CallEntry(const CallEntry&) = delete;
    CallEntry& operator=(const CallEntry&) = delete;

    // True when this routine was entered from the event loop or a script, not from another
    // routine of the library.
    bool outermost() const { return m_outermost; }

    // Runs body; an abandoned call gives `fallback` at the outermost entry and passes on below.
    template <typename T, typename Body> static T run(QObject* owner, T fallback, Body&& body)
    {
        CallEntry entry(owner);
        try {
            return std::forward<Body>(body)();
        } catch (const CallAbandoned&) {
            if (!entry.outermost())
                throw;
        }
        return fallback;
    }
    template <typename Body> static void run(QObject* owner, Body&& body)
    {
        run(owner, 0, [&] {
            std::forward<Body>(body)();
            return 0;
        });
    }

    // The objects whose routines make up the current chain of calls (since the last wait began);
    // destroyed ones are null.
    static QList<QPointer<QObject>> chain();
    // True when an object of the current chain was destroyed.
    static bool chainBroken();

private:
    bool m_outermost = true;
};

class NXR_EXPORT NestedWait
{
public:
    NestedWait();
    ~NestedWait();
    NestedWait(const NestedWait&) = delete;
    NestedWait& operator=(const NestedWait&) = delete;

    // How many waits are in progress in this thread.
    static int depth();
};

} // namespace nxr
