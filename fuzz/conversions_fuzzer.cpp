// Property value conversions over arbitrary text: no input may crash them or slip out of range,
// the readers agree with each other, and what the writers produce reads back.

#include "FuzzCheck.h"
#include "frame/Conversions.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace {

template <typename F> auto attempt(F f) -> std::optional<decltype(f())>
{
    try {
        return f();
    } catch (const nxr::Failure& failure) {
        const QString why = failure.description();
        FUZZ_CHECK(why == QLatin1String("Type mismatch") || why == QLatin1String("Overflow"), why);
        return std::nullopt;
    }
}

bool close(double a, double b)
{
    return std::fabs(a - b) <= 1e-13 * std::fmax(std::fabs(a), std::fabs(b)) || a == b;
}

void checkText(const QString& text)
{
    const auto number = attempt([&] { return nxr::toDouble(text); });
    FUZZ_CHECK(number.has_value() == nxr::isNumeric(text), text);
    if (number)
        FUZZ_CHECK(std::isfinite(*number), text);

    const auto flag = attempt([&] { return nxr::toBool(text); });
    const QString t = text.trimmed().toLower();
    FUZZ_CHECK(flag.has_value() == (number || t == QLatin1String("true") || t == QLatin1String("false")),
               text);
    if (number)
        FUZZ_CHECK(*flag == (*number != 0.0), text);

    const auto whole = attempt([&] { return nxr::toLong(text); });
    if (whole) {
        FUZZ_CHECK(number && std::fabs(double(*whole) - *number) <= 0.5, text);
        FUZZ_CHECK(nxr::toLong(QString::number(*whole)) == *whole, text);
    } else if (number) {
        FUZZ_CHECK(std::fabs(*number) >= 2147483647.5, text);
    }
    const auto small = attempt([&] { return nxr::toInteger(text); });
    if (small)
        FUZZ_CHECK(whole && *whole == *small, text);
    else if (whole)
        FUZZ_CHECK(*number < -32768.5 || *number >= 32767.5, text);

    const auto item = attempt([&] { return nxr::splitItemValue(text); });
    if (item) {
        const QString joined = nxr::joinItemValue(item->item, item->value);
        const nxr::ItemValue again = nxr::splitItemValue(joined);
        FUZZ_CHECK(again.item == item->item && again.value == item->value, text);
    }
}

void checkNumber(double d)
{
    if (!std::isfinite(d))
        return;
    const QString text = nxr::fromDouble(d);
    FUZZ_CHECK(nxr::isNumeric(text) && close(nxr::toDouble(text), d), text);
    const float f = float(d);
    if (std::isfinite(f)) {
        const QString single = nxr::fromSingle(f);
        FUZZ_CHECK(nxr::isNumeric(single), single);
        FUZZ_CHECK(float(nxr::toDouble(single)) == f ||
                       std::fabs(nxr::toDouble(single) - f) <= 1e-6 * std::fabs(f),
                   single);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    checkText(QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)));
    if (size >= sizeof(double)) {
        double d = 0;
        std::memcpy(&d, data, sizeof d);
        checkNumber(d);
    }
    return 0;
}
