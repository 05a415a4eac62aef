#pragma once
// Creation of the public classes by name, for C++ programs and page scripts alike.
// Each creatable class registers itself once in its own .cpp:
//
//     NXR_REGISTER_CLASS(NXRInfo)
//
// after which ClassRegistry::instance().create("NXRInfo") and
// create("NexaroControls.NXRInfo") both build one.

#include "frame/Export.h"

#include <QMetaObject>
#include <QObject>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <map>
#include <type_traits>

namespace nxr {

class NXR_EXPORT ClassRegistry
{
public:
    using Factory = std::function<QObject*(QWidget* parent)>;
    static inline const QString kPrefix = QStringLiteral("NexaroControls.");

    static ClassRegistry& instance();

    void add(const QString& name, const QMetaObject* meta, bool isWidget, Factory factory);

    // "NXRInfo" or "NexaroControls.NXRInfo"; null for an unknown name. A widget class is
    // created as a child of `parent`; a non-visual object is parented to it too when given.
    QObject* create(const QString& name, QWidget* parent = nullptr) const;

    bool contains(const QString& name) const;
    bool isWidget(const QString& name) const;
    const QMetaObject* metaObject(const QString& name) const;
    // The plain names, sorted.
    QStringList names() const;

    template <typename T> static bool registerClass(const char* name)
    {
        constexpr bool widget = std::is_base_of_v<QWidget, T>;
        instance().add(QString::fromLatin1(name), &T::staticMetaObject, widget,
                       [](QWidget* parent) -> QObject* { return new T(parent); });
        return true;
    }

private:
    struct Entry
    {
        const QMetaObject* meta = nullptr;
        bool isWidget = false;
        Factory factory;
    };
    const Entry* find(const QString& name) const;
    std::map<QString, Entry> m_entries;
};

} // namespace nxr

#define NXR_REGISTER_CLASS(Class)                                                                            \
    namespace {                                                                                              \
    [[maybe_unused]] const bool nxr_registered_##Class = ::nxr::ClassRegistry::registerClass<Class>(#Class); \
    }
