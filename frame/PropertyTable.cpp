#include "frame/PropertyTable.h"

namespace nxr {

PropertyTable& PropertyTable::add(const QString& key, Setter set, Getter get)
{
    m_entries.push_back(Entry{key, std::move(set), std::move(get)});
    return *this;
}

PropertyTable& PropertyTable::replace(const QString& key, Setter set, Getter get)
{
    for (Entry& e : m_entries) {
        if (e.key == key) {
            e.set = std::move(set);
            e.get = std::move(get);
            return *this;
        }
    }
    return add(key, std::move(set), std::move(get));
}

const PropertyTable::Setter* PropertyTable::findSetter(const QString& key) const
{
    for (const Entry& e : m_entries) {
        if (e.set && e.key == key)
            return &e.set;
    }
    return nullptr;
}

const PropertyTable::Getter* PropertyTable::findGetter(const QString& key) const
{
    for (const Entry& e : m_entries) {
        if (e.get && e.key == key)
            return &e.get;
    }
    return nullptr;
}

} // namespace nxr
