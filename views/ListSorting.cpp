#include "views/ListSorting.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace nxr::views {
namespace {

bool isUnitChar(QChar c)
{
    return c.isLetter() || c.isMark() || c == QLatin1Char('%') || c == QLatin1Char('/') ||
           c == QChar(0x00B0) /* degree */ || c == QChar(0x00B2) || c == QChar(0x00B3) ||
           c == QLatin1Char(' ');
}

int yearOf(int year, qsizetype digits)
{
    if (digits > 2)
        return year;
    return year < 70 ? 2000 + year : 1900 + year;
}

int monthOfName(const QString& name)
{
    static const char* const names[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                        "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    const QString upper = name.toUpper();
    for (int i = 0; i < 12; ++i)
        if (upper == QLatin1String(names[i]))
            return i + 1;
    return 0;
}

std::optional<qint64> stamp(int year, int month, int day, const QString& h, const QString& m,
                            const QString& s)
{
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    int hour = 0, minute = 0, second = 0;
    if (!h.isEmpty()) {
        hour = h.toInt();
        minute = m.toInt();
        second = s.isEmpty() ? 0 : s.toInt();
        if (hour > 23 || minute > 59 || second > 59)
            return std::nullopt;
    }
    return date.toJulianDay() * 86400000LL + ((hour * 60 + minute) * 60 + second) * 1000LL;
}

} // namespace

bool isEmptyValue(const QString& value)
{
    for (QChar c : value)
        if (!c.isSpace())
            return false;
    return true;
}

std::optional<double> numberValue(const QString& value)
{
    const qsizetype n = value.size();
    qsizetype i = 0;
    while (i < n && value[i].isSpace())
        ++i;
    const qsizetype start = i;
    if (i < n && (value[i] == QLatin1Char('-') || value[i] == QLatin1Char('+')))
        ++i;
    qsizetype digits = 0;
    while (i < n && value[i].isDigit() && value[i].unicode() < 128) {
        ++i;
        ++digits;
    }
    if (i < n && value[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && value[i].isDigit() && value[i].unicode() < 128) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return std::nullopt;
    if (i + 1 < n && (value[i] == QLatin1Char('e') || value[i] == QLatin1Char('E'))) {
        qsizetype j = i + 1;
        if (j < n && (value[j] == QLatin1Char('-') || value[j] == QLatin1Char('+')))
            ++j;
        if (j < n && value[j].isDigit() && value[j].unicode() < 128) {
            while (j < n && value[j].isDigit() && value[j].unicode() < 128)
                ++j;
            i = j;
        }
    }
    const qsizetype end = i;
    for (; i < n; ++i)
        if (!isUnitChar(value[i]))
            return std::nullopt;
    const QByteArray number = value.mid(start, end - start).toLatin1();
    const double result = std::strtod(number.constData(), nullptr);
    if (!std::isfinite(result))
        return std::nullopt;
    return result;
}

std::optional<qint64> dateValue(const QString& value)
{
    static const QRegularExpression controller(QStringLiteral(
        "^\\s*(\\d{1,2})-([A-Za-z]{3})-(\\d{2}|\\d{4})(?:\\s+(\\d{1,2}):(\\d{2})(?::(\\d{2}))?)?\\s*$"));
    static const QRegularExpression yearFirst(QStringLiteral(
        "^\\s*(\\d{4})([-/.])(\\d{1,2})\\2(\\d{1,2})(?:[ T]\\s*(\\d{1,2}):(\\d{2})(?::(\\d{2}))?)?\\s*$"));
    static const QRegularExpression dayFirst(QStringLiteral(
        "^\\s*(\\d{1,2})\\.(\\d{1,2})\\.(\\d{4})(?:\\s+(\\d{1,2}):(\\d{2})(?::(\\d{2}))?)?\\s*$"));
    qsizetype first = 0;
    while (first < value.size() && value[first].isSpace())
        ++first;
    if (first == value.size() || !value[first].isDigit())
        return std::nullopt;
    QRegularExpressionMatch m = controller.match(value);
    if (m.hasMatch()) {
        const int month = monthOfName(m.captured(2));
        if (month == 0)
            return std::nullopt;
        return stamp(yearOf(m.captured(3).toInt(), m.capturedLength(3)), month, m.captured(1).toInt(),
                     m.captured(4), m.captured(5), m.captured(6));
    }
    m = yearFirst.match(value);
    if (m.hasMatch())
        return stamp(m.captured(1).toInt(), m.captured(3).toInt(), m.captured(4).toInt(), m.captured(5),
                     m.captured(6), m.captured(7));
    m = dayFirst.match(value);
    if (m.hasMatch())
        return stamp(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt(), m.captured(4),
                     m.captured(5), m.captured(6));
    return std::nullopt;
}

ColumnKind columnKind(const std::vector<QString>& values)
{
    bool numbers = true;
    bool dates = true;
    bool any = false;
    for (const QString& v : values) {
        if (isEmptyValue(v))
            continue;
        any = true;
        if (numbers && !numberValue(v))
            numbers = false;
        if (!numbers && dates && !dateValue(v))
            dates = false;
        if (!numbers && !dates)
            return ColumnKind::Text;
    }
    if (!any)
        return ColumnKind::Text;
    return numbers ? ColumnKind::Number : ColumnKind::Date;
}

bool lessThan(const QString& a, const QString& b, ColumnKind kind)
{
    switch (kind) {
    case ColumnKind::Number:
        return *numberValue(a) < *numberValue(b);
    case ColumnKind::Date:
        return *dateValue(a) < *dateValue(b);
    case ColumnKind::Text:
        break;
    }
    return QString::compare(a, b, Qt::CaseSensitive) < 0;
}

std::vector<int> sortedOrder(const std::vector<QString>& values, ColumnKind kind, bool descending)
{
    // The values are read once into comparable keys; then one stable sort of the non-empty records
    // and the empty ones after them, in their present order.
    struct Entry
    {
        int position;
        double number;
        qint64 date;
    };
    std::vector<Entry> entries;
    std::vector<int> empties;
    entries.reserve(values.size());
    for (int i = 0; i < int(values.size()); ++i) {
        const QString& v = values[size_t(i)];
        if (isEmptyValue(v)) {
            empties.push_back(i);
            continue;
        }
        Entry e{i, 0.0, 0};
        if (kind == ColumnKind::Number)
            e.number = *numberValue(v);
        else if (kind == ColumnKind::Date)
            e.date = *dateValue(v);
        entries.push_back(e);
    }
    auto sortBy = [&](auto less) {
        if (descending)
            std::stable_sort(entries.begin(), entries.end(),
                             [&](const Entry& x, const Entry& y) { return less(y, x); });
        else
            std::stable_sort(entries.begin(), entries.end(), less);
    };
    switch (kind) {
    case ColumnKind::Number:
        sortBy([](const Entry& x, const Entry& y) { return x.number < y.number; });
        break;
    case ColumnKind::Date:
        sortBy([](const Entry& x, const Entry& y) { return x.date < y.date; });
        break;
    case ColumnKind::Text:
        sortBy([&](const Entry& x, const Entry& y) {
            return QString::compare(values[size_t(x.position)], values[size_t(y.position)],
                                    Qt::CaseSensitive) < 0;
        });
        break;
    }
    std::vector<int> order;
    order.reserve(values.size());
    for (const Entry& e : entries)
        order.push_back(e.position);
    order.insert(order.end(), empties.begin(), empties.end());
    return order;
}

} // namespace nxr::views
