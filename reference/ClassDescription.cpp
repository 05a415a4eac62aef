#include "reference/ClassDescription.h"

#include "frame/ScriptableObject.h"
#include "frame/ScriptableWidget.h"

#include <QMetaClassInfo>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSet>
#include <QWidget>

namespace nxr::reference {
namespace {

// The nearest base that is one of Qt's classes: its members are Qt's, not the library's.
const QMetaObject* qtBase(const QMetaObject* meta)
{
    const QMetaObject* base = meta;
    while (base && !(base->className()[0] == 'Q' && base->className()[1] != '\0'))
        base = base->superClass();
    return base;
}

// The library's classes from `meta` up to Qt's: the scripting base every class shares first, then
// the class itself, then the bases between (whose members a page sees on the class too).
QList<const QMetaObject*> libraryClasses(const QMetaObject* meta)
{
    QList<const QMetaObject*> chain;
    for (const QMetaObject* cls = meta; cls && cls != qtBase(meta); cls = cls->superClass())
        chain << cls;
    if (chain.size() > 1)
        chain.move(chain.size() - 1, 0);
    return chain;
}

MethodInfo methodInfo(const QMetaMethod& m)
{
    MethodInfo info;
    info.name = QString::fromLatin1(m.name());
    info.returnType = QString::fromLatin1(m.typeName());
    if (info.returnType.isEmpty())
        info.returnType = QStringLiteral("void");
    const QList<QByteArray> types = m.parameterTypes();
    const QList<QByteArray> names = m.parameterNames();
    for (qsizetype i = 0; i < types.size(); ++i)
        info.parameters << Parameter{QString::fromLatin1(types.at(i)),
                                     i < names.size() ? QString::fromLatin1(names.at(i)) : QString()};
    return info;
}

const PropertyTable* keyTable(QObject* instance)
{
    if (auto* object = qobject_cast<ScriptableObject*>(instance))
        return &object->core().properties();
    if (auto* widget = qobject_cast<ScriptableWidget*>(instance))
        return &widget->core().properties();
    return nullptr;
}

} // namespace

QString MethodInfo::signature() const
{
    QStringList list;
    for (const Parameter& p : parameters)
        list << (p.name.isEmpty() ? p.type : p.type + QLatin1Char(' ') + p.name);
    return name + QLatin1Char('(') + list.join(QStringLiteral(", ")) + QLatin1Char(')');
}

ClassDescription describe(const QMetaObject* meta, QObject* instance)
{
    ClassDescription d;
    if (!meta)
        return d;
    d.name = QString::fromLatin1(meta->className());
    const int info = meta->indexOfClassInfo("Description");
    if (info >= 0)
        d.description = QString::fromUtf8(meta->classInfo(info).value());
    d.isControl = meta->inherits(&QWidget::staticMetaObject);

    for (const QMetaObject* cls : libraryClasses(meta)) {
        const QMetaObject* super = cls->superClass();
        for (int i = super ? super->propertyCount() : 0; i < cls->propertyCount(); ++i) {
            const QMetaProperty p = meta->property(i);
            d.properties << PropertyInfo{QString::fromLatin1(p.name()), QString::fromLatin1(p.typeName()),
                                         p.isWritable(), d.isControl && p.isWritable() && p.isDesignable()};
        }
        for (int i = super ? super->methodCount() : 0; i < cls->methodCount(); ++i) {
            const QMetaMethod m = meta->method(i);
            // A method with default arguments has one clone per left-out argument; the full one is enough.
            if (m.attributes() & QMetaMethod::Cloned)
                continue;
            if (m.methodType() == QMetaMethod::Signal)
                d.events << methodInfo(m);
            else if (m.access() == QMetaMethod::Public && m.methodType() != QMetaMethod::Constructor)
                d.methods << methodInfo(m);
        }
    }

    if (const PropertyTable* table = keyTable(instance)) {
        d.hasKeyTable = true;
        QSet<QString> seen;
        for (const PropertyTable::Entry& e : table->entries()) {
            if (seen.contains(e.key))
                continue;
            seen.insert(e.key);
            d.keys << KeyInfo{e.key, table->findSetter(e.key) != nullptr,
                              table->findGetter(e.key) != nullptr};
        }
    }
    return d;
}

} // namespace nxr::reference
