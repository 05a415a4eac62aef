#pragma once
// NXRTimeLogger: measures durations for pages and for the library's own timing traces, on the
// system's monotonic high-resolution clock.
//
//     var t = createObject("NXRTimeLogger");
//     t.StartTime();
//     ... work ...
//     console.log("took " + t.ElapsedTime() + " s");
//
// On creation it calibrates the cost of reading the clock (100 pairs of back-to-back reads,
// averaged); ElapsedTime subtracts that overhead. StopTime does nothing: elapsed time always
// runs from the last StartTime, so a page may read it as often as it likes.

#include "frame/Export.h"
#include "frame/ScriptableObject.h"

#include <cstdint>

class NXR_EXPORT NXRTimeLogger : public nxr::ScriptableObject
{
    Q_OBJECT

public:
    explicit NXRTimeLogger(QObject* parent = nullptr);

    // Stores the current count as the start and returns it in seconds.
    Q_INVOKABLE double StartTime();
    // Seconds since the last StartTime (since creation before the first), less the overhead of
    // reading the clock.
    Q_INVOKABLE double ElapsedTime();
    // Does nothing (kept for pages that pair it with StartTime).
    Q_INVOKABLE void StopTime();

    // Counts per second, the start count, the last count read and the calibrated overhead.
    std::int64_t frequency() const { return m_frequency; }
    std::int64_t startCount() const { return m_start; }
    std::int64_t latestCount() const { return m_latest; }
    std::int64_t overhead() const { return m_overhead; }

    // The clock in counts.
    static std::int64_t counter();

private:
    std::int64_t m_frequency = 1;
    std::int64_t m_start = 0;
    std::int64_t m_latest = 0;
    std::int64_t m_overhead = 0;
};
