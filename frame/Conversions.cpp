#include "frame/Conversions.h"

#include <cmath>
#include <limits>

namespace nxr {
namespace {

const QString kTypeMismatch = QStringLiteral("Type mismatch");
const QString kOverflow = QStringLiteral("Overflow");

bool parseNumber(const QString& value, double* out)
{
    const QString t = value.trimmed();
    if (t.isEmpty())
        return false;
    bool ok = false;
    const double d = t.toDouble(&ok);
    if (ok && std::isfinite(d)) {
        *out = d;
        return true;
    }
    return false;
}

qint64 roundHalfEven(double d)
{
    return qint64(std::nearbyint(d)); // default rounding mode: to nearest, ties to even
}

} // namespace

bool toBool(const QString& value)
{
    const QString t = value.trimmed();
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    double d = 0;
    if (parseNumber(t, &d))
        return d != 0.0;
    throw Failure(kTypeMismatch);
}

double toDouble(const QString& value)
{
    double d = 0;
    if (!parseNumber(value, &d))
        throw Failure(kTypeMismatch);
    return d;
}

qint32 toLong(const QString& value)
{
    const double d = toDouble(value);
    if (d < double(std::numeric_limits<qint32>::min()) - 0.5 ||
        d >= double(std::numeric_limits<qint32>::max()) + 0.5)
        throw Failure(kOverflow);
    return qint32(roundHalfEven(d));
}

qint16 toInteger(const QString& value)
{
    const double d = toDouble(value);
    if (d < -32768.5 || d >= 32767.5)
        throw Failure(kOverflow);
    return qint16(roundHalfEven(d));
}

bool isNumeric(const QString& value)
{
    double d = 0;
    return parseNumber(value, &d);
}

QString fromBool(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString fromSingle(float value)
{
    return QString::number(double(value), 'g', 7);
}

QString fromDouble(double value)
{
    const QString text = QString::number(value, 'g', 15);
    // Next to the largest doubles, 15 digits can round up past the largest one; such a text would
    // read back as an overflow. 17 digits always read back as the same value.
    if (std::isfinite(value) && !isNumeric(text))
        return QString::number(value, 'g', 17);
    return text;
}

ItemValue splitItemValue(const QString& text)
{
    const qsizetype comma = text.indexOf(QLatin1Char(','));
    ItemValue result;
    result.item = toLong(comma < 0 ? text : text.left(comma));
    result.value = comma < 0 ? QString() : text.mid(comma + 1).trimmed();
    return result;
}

QString joinItemValue(int item, const QString& value)
{
    return QString::number(item) + QStringLiteral(", ") + value;
}

} // namespace nxr
