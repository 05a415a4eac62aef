#pragma once
// Reading and writing values of the string property protocol.

#include "frame/Export.h"

#include <QString>

#include <stdexcept>

namespace nxr {

// A run-time failure inside a public routine. The routine's guard turns it into
// "Error in <routine>: " + what() (see ScriptableCore).
class NXR_EXPORT Failure : public std::runtime_error
{
public:
    explicit Failure(const QString& description) : std::runtime_error(description.toStdString()) {}
    QString description() const { return QString::fromStdString(what()); }
};

// "True"/"False" (any case) or a number, non-zero meaning true. Anything else: "Type mismatch".
NXR_EXPORT bool toBool(const QString& value);
// A decimal number, surrounding blanks allowed. Anything else: "Type mismatch".
NXR_EXPORT double toDouble(const QString& value);
// A whole 32-bit number; fractions round half to even. "Type mismatch" or "Overflow".
NXR_EXPORT qint32 toLong(const QString& value);
// A whole 16-bit number, as toLong.
NXR_EXPORT qint16 toInteger(const QString& value);
// True when the text reads as a number (blanks around it allowed).
NXR_EXPORT bool isNumeric(const QString& value);

NXR_EXPORT QString fromBool(bool value);
// The usual decimal form of a single-precision value: up to 7 significant digits, no exponent
// for ordinary magnitudes, no trailing zeros ("33.33333", "100", "0.5").
NXR_EXPORT QString fromSingle(float value);
// The usual decimal form of a double: up to 15 significant digits.
NXR_EXPORT QString fromDouble(double value);

// A value addressed to one of several items: "<item>, <value>".
struct ItemValue
{
    int item = 0;
    QString value;
};
// Splits at the first comma; the item part must be a whole number ("Type mismatch" otherwise).
NXR_EXPORT ItemValue splitItemValue(const QString& text);
NXR_EXPORT QString joinItemValue(int item, const QString& value);

} // namespace nxr
