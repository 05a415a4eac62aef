#pragma once
// The fixed list of keys a class answers in SetProperty/GetProperty, in table order.

#include "frame/Export.h"

#include <QString>

#include <functional>
#include <vector>

namespace nxr {

class NXR_EXPORT PropertyTable
{
public:
    using Setter = std::function<void(const QString& value)>;
    using Getter = std::function<QString()>;

    struct Entry
    {
        QString key;
        Setter set; // empty: the key is not known to SetProperty
        Getter get; // empty: the key is not known to GetProperty
    };

    // Appends a key; the first entry with a given key wins on lookup.
    PropertyTable& add(const QString& key, Setter set, Getter get);
    PropertyTable& addWriteOnly(const QString& key, Setter set) { return add(key, std::move(set), {}); }
    PropertyTable& addReadOnly(const QString& key, Getter get) { return add(key, {}, std::move(get)); }
    // Gives an existing key new sides, keeping its place in the table (a subsystem taking over a
    // key its host accepted before it existed); a new key is appended.
    PropertyTable& replace(const QString& key, Setter set, Getter get);

    // Exact, case-sensitive lookup in table order; null when no entry has the key with that side.
    const Setter* findSetter(const QString& key) const;
    const Getter* findGetter(const QString& key) const;

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    std::vector<Entry> m_entries;
};

} // namespace nxr
