#include "frame/ClassRegistry.h"

namespace nxr {

ClassRegistry& ClassRegistry::instance()
{
    static ClassRegistry registry;
    return registry;
}

void ClassRegistry::add(const QString& name, const QMetaObject* meta, bool isWidget, Factory factory)
{
    m_entries[name] = Entry{meta, isWidget, std::move(factory)};
}

const ClassRegistry::Entry* ClassRegistry::find(const QString& name) const
{
    const QString plain = name.startsWith(kPrefix) ? name.mid(kPrefix.size()) : name;
    const auto it = m_entries.find(plain);
    return it == m_entries.end() ? nullptr : &it->second;
}

QObject* ClassRegistry::create(const QString& name, QWidget* parent) const
{
    const Entry* entry = find(name);
    return entry ? entry->factory(parent) : nullptr;
}

bool ClassRegistry::contains(const QString& name) const
{
    return find(name) != nullptr;
}

bool ClassRegistry::isWidget(const QString& name) const
{
    const Entry* entry = find(name);
    return entry && entry->isWidget;
}

const QMetaObject* ClassRegistry::metaObject(const QString& name) const
{
    const Entry* entry = find(name);
    return entry ? entry->meta : nullptr;
}

QStringList ClassRegistry::names() const
{
    QStringList result;
    for (const auto& [name, entry] : m_entries)
        result << name;
    return result;
}

} // namespace nxr
