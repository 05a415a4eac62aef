#include "imagedisplay/dialog/NXRTimeLogger.h"

#include "frame/ClassRegistry.h"
#include "frame/Trace.h"

#include <chrono>

NXR_REGISTER_CLASS(NXRTimeLogger)

namespace {
using Clock = std::chrono::steady_clock;
static_assert(Clock::is_steady);
constexpr int kCalibrationRounds = 100;
} // namespace

std::int64_t NXRTimeLogger::counter()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count();
}

NXRTimeLogger::NXRTimeLogger(QObject* parent) : ScriptableObject(parent)
{
    core().guard(QStringLiteral("Class_Initialize"), [&] {
        m_frequency = 1'000'000'000; // the counter counts nanoseconds
        std::int64_t sum = 0;
        for (int i = 0; i < kCalibrationRounds; ++i) {
            const std::int64_t a = counter();
            const std::int64_t b = counter();
            sum += b - a;
        }
        m_overhead = sum / kCalibrationRounds;
        m_start = counter();
        m_latest = m_start;
        core().trace(QStringLiteral("Class_Initialize"),
                     QStringLiteral("overhead=") + QString::number(m_overhead) + QStringLiteral(" ns"));
    });
}

double NXRTimeLogger::StartTime()
{
    return core().guardValue(QStringLiteral("StartTime"), 0.0, [&] {
        m_start = counter();
        m_latest = m_start;
        return double(m_start) / double(m_frequency);
    });
}

double NXRTimeLogger::ElapsedTime()
{
    return core().guardValue(QStringLiteral("ElapsedTime"), 0.0, [&] {
        m_latest = counter();
        const std::int64_t counts = m_latest - m_start - m_overhead;
        return double(counts > 0 ? counts : 0) / double(m_frequency);
    });
}

void NXRTimeLogger::StopTime()
{
    core().trace(QStringLiteral("StopTime"), QStringLiteral("Done"));
}
