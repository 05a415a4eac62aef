#pragma once
// The order a list takes when the operator sorts it by a column, without any widget.
//
// A column is compared by its kind, decided from its non-empty values (blank-only counts as
// empty):
//   Number  every value reads as a number, optionally followed by a unit: "-2.5", "1e3", "10 ms",
//           "75 %", "3.2mm" (the unit holds no digits; "1,234" and "5x5" are not numbers)
//   Date    otherwise, every value reads as a date in one of the controller's formats:
//           "22-NOV-26 18:48[:03]" (month names in English, any case), "2026-11-22[ 18:48[:03]]"
//           (also with "/" or "." between the parts and "T" before the time) and
//           "22.11.2026[ 18:48[:03]]"; two-digit years are 1970-2069
//   Text    otherwise; compared by their UTF-16 code units, as given (case-sensitive)
// Records whose value is empty follow all others in both directions and keep their order among
// themselves; equal values keep their order too (the sort is stable).

#include "frame/Export.h"

#include <QString>

#include <optional>
#include <vector>

namespace nxr::views {

enum class ColumnKind { Text, Date, Number };

// The number a value reads as, or nothing (see the rule above).
NXR_EXPORT std::optional<double> numberValue(const QString& value);
// Milliseconds since an arbitrary fixed day, or nothing.
NXR_EXPORT std::optional<qint64> dateValue(const QString& value);
NXR_EXPORT bool isEmptyValue(const QString& value);

NXR_EXPORT ColumnKind columnKind(const std::vector<QString>& values);

// Strictly less under the column's kind; both values must be non-empty and of that kind.
NXR_EXPORT bool lessThan(const QString& a, const QString& b, ColumnKind kind);

// The new order: result[i] is the present position of the record that goes to position i.
NXR_EXPORT std::vector<int> sortedOrder(const std::vector<QString>& values, ColumnKind kind, bool descending);

} // namespace nxr::views
