// The order of a list sorted by a column, without a screen: reading values by kind, the kind of a
// column, direction, stability, empty values, and the same order as picking the extreme record
// again and again.

#include "views/ListSorting.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <random>

using namespace nxr::views;

namespace {

std::vector<QString> strings(const QStringList& list)
{
    return std::vector<QString>(list.begin(), list.end());
}

QStringList ordered(const std::vector<QString>& values, ColumnKind kind, bool descending)
{
    QStringList out;
    for (int i : sortedOrder(values, kind, descending))
        out << values[size_t(i)];
    return out;
}

// The order by repeated selection, written out as plainly as it is defined: over the records not
// yet placed, find the first record with the smallest value (largest when descending), never
// choosing an empty one, and place it next; when only empty records are left they follow.
std::vector<int> selectionOrder(const std::vector<QString>& values, ColumnKind kind, bool descending)
{
    std::vector<int> remaining;
    for (int i = 0; i < int(values.size()); ++i)
        remaining.push_back(i);
    std::vector<int> order;
    while (!remaining.empty()) {
        int found = -1;
        for (int i = 0; i < int(remaining.size()); ++i) {
            const QString& v = values[size_t(remaining[size_t(i)])];
            if (isEmptyValue(v))
                continue;
            if (found < 0) {
                found = i;
                continue;
            }
            const QString& best = values[size_t(remaining[size_t(found)])];
            if (descending ? lessThan(best, v, kind) : lessThan(v, best, kind))
                found = i;
        }
        if (found < 0)
            break;
        order.push_back(remaining[size_t(found)]);
        remaining.erase(remaining.begin() + found);
    }
    order.insert(order.end(), remaining.begin(), remaining.end());
    return order;
}

} // namespace

TEST(ListSorting, ValuesReadAsNumbersWithUnitsAndSigns)
{
    struct Case
    {
        const char* text;
        bool number;
        double value;
    };
    const Case cases[] = {
        {"2", true, 2},      {"-2.5", true, -2.5},  {"+3", true, 3},       {" 10 ms", true, 10},
        {"75 %", true, 75},  {"3.2mm", true, 3.2},  {"1e3", true, 1000},   {"2.5E-1 s", true, 0.25},
        {".5", true, 0.5},   {"7.", true, 7},       {"12 px/s", true, 12}, {"1,234", false, 0},
        {"5x5", false, 0},   {"LOG0001", false, 0}, {"-", false, 0},       {"nan", false, 0},
        {"12:30", false, 0}, {"1-2", false, 0},     {"", false, 0},        {"e5", false, 0},
    };
    for (const Case& c : cases) {
        const auto v = numberValue(QString::fromUtf8(c.text));
        ASSERT_EQ(v.has_value(), c.number) << c.text;
        if (c.number)
            EXPECT_DOUBLE_EQ(*v, c.value) << c.text;
    }
}

TEST(ListSorting, DatesInTheControllersFormatsCompareByTime)
{
    // Each row is later than the one before; the formats are mixed on purpose.
    const char* const later[] = {
        "01-jan-70",           "31-DEC-70 23:59",     "1999-12-31 23:59:59", "2000/01/01",
        "05.03.2026 08:00",    "2026-03-05 08:00:01", "22-Nov-26 18:48",     "22-NOV-2026 18:48:03",
        "2026-11-22T18:48:04", "2069.12.31",
    };
    for (size_t i = 0; i + 1 < std::size(later); ++i) {
        const auto a = dateValue(QString::fromLatin1(later[i]));
        const auto b = dateValue(QString::fromLatin1(later[i + 1]));
        ASSERT_TRUE(a && b) << later[i] << " / " << later[i + 1];
        EXPECT_LT(*a, *b) << later[i] << " / " << later[i + 1];
    }
    for (const char* bad : {"31-FOO-26", "2026-13-01", "2026-02-30", "30.02.2026", "2026-01-01 24:00",
                            "22-NOV-26 18:61", "Nov 22 18:48", "2026-11", "12"})
        EXPECT_FALSE(dateValue(QString::fromLatin1(bad))) << bad;
}

TEST(ListSorting, ColumnKindFollowsAllNonEmptyValues)
{
    struct Case
    {
        QStringList values;
        ColumnKind kind;
    };
    const Case cases[] = {
        {{"10", "2", "", "-1.5 ms"}, ColumnKind::Number},
        {{"10", "2", "n/a"}, ColumnKind::Text},
        {{"2026-11-22", "", "01-JAN-26 10:00"}, ColumnKind::Date},
        {{"2026-11-22", "yesterday"}, ColumnKind::Text},
        {{"2026", "2025"}, ColumnKind::Number},
        {{"", "  "}, ColumnKind::Text},
        {{}, ColumnKind::Text},
    };
    for (const Case& c : cases)
        EXPECT_EQ(columnKind(strings(c.values)), c.kind) << c.values.join('|').toStdString();
}

TEST(ListSorting, EachKindSortsBothWaysWithEmptiesLastAndTiesInOrder)
{
    struct Case
    {
        QStringList values;
        QStringList ascending;
        QStringList descending;
    };
    const Case cases[] = {
        // numbers: 2 before 10, units and signs read, empties last both ways
        {{"10", "", "2", "-2.5", "10 ms", " ", "1e1"},
         {"-2.5", "2", "10", "10 ms", "1e1", "", " "},
         {"10", "10 ms", "1e1", "2", "-2.5", "", " "}},
        // text: binary comparison (capitals first), ties keep their order
        {{"b", "B", "a", "", "b"}, {"B", "a", "b", "b", ""}, {"b", "b", "a", "B", ""}},
        // dates in two formats
        {{"22-NOV-26 18:48", "2026-01-02", "", "01-JAN-26"},
         {"01-JAN-26", "2026-01-02", "22-NOV-26 18:48", ""},
         {"22-NOV-26 18:48", "2026-01-02", "01-JAN-26", ""}},
    };
    for (const Case& c : cases) {
        const auto values = strings(c.values);
        const ColumnKind kind = columnKind(values);
        EXPECT_EQ(ordered(values, kind, false), c.ascending) << c.values.join('|').toStdString();
        EXPECT_EQ(ordered(values, kind, true), c.descending) << c.values.join('|').toStdString();
    }
}

TEST(ListSorting, SameOrderAsRepeatedSelectionOnRandomData)
{
    std::mt19937 random(20261122);
    auto pick = [&](int n) { return int(random() % unsigned(n)); };
    const char* const units[] = {"", " ms", "%", " mm", "px"};
    const char* const months[] = {"JAN", "feb", "Mar", "NOV", "DEC"};
    auto value = [&](int kind) -> QString {
        if (pick(6) == 0)
            return pick(2) ? QString() : QStringLiteral("  ");
        switch (kind) {
        case 0: // few distinct numbers, so ties are frequent
            return QString::number((pick(21) - 10) * 0.5) + QLatin1String(units[pick(5)]);
        case 1:
            return pick(2) ? QStringLiteral("%1-%2-%3 %4:00")
                                 .arg(2020 + pick(3))
                                 .arg(1 + pick(2), 2, 10, QLatin1Char('0'))
                                 .arg(1 + pick(3), 2, 10, QLatin1Char('0'))
                                 .arg(pick(3), 2, 10, QLatin1Char('0'))
                           : QStringLiteral("%1-%2-2%3")
                                 .arg(1 + pick(3))
                                 .arg(QLatin1String(months[pick(5)]))
                                 .arg(pick(3));
        default:
            return QString(QChar(u"aAbB_"[pick(5)])) + QString(QChar(u"xyz"[pick(3)]));
        }
    };
    for (int kindIndex = 0; kindIndex < 3; ++kindIndex) {
        for (int trial = 0; trial < 40; ++trial) {
            std::vector<QString> values;
            const int n = 1 + pick(300);
            for (int i = 0; i < n; ++i)
                values.push_back(value(kindIndex));
            const ColumnKind kind = columnKind(values);
            ASSERT_EQ(int(kind), kindIndex == 0   ? int(ColumnKind::Number)
                                 : kindIndex == 1 ? int(ColumnKind::Date)
                                                  : int(ColumnKind::Text));
            for (bool descending : {false, true})
                ASSERT_EQ(sortedOrder(values, kind, descending), selectionOrder(values, kind, descending))
                    << "kind " << kindIndex << ", trial " << trial << (descending ? ", descending" : "");
        }
    }
}
