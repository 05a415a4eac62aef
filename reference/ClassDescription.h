#pragma once
// What a page can do with a class, read from the class itself: its meta-object (properties,
// methods, events) and an instance's SetProperty/GetProperty table. Nothing here is written by
// hand, so the reference made from it cannot fall behind the code.

#include <QList>
#include <QString>
#include <QStringList>

struct QMetaObject;
class QObject;

namespace nxr::reference {

struct PropertyInfo
{
    QString name;
    QString type;
    bool writable = false;
    bool designable = false; // shown in Designer's property editor (writable and not DESIGNABLE false)
};

struct Parameter
{
    QString type;
    QString name;
};

struct MethodInfo
{
    QString name;
    QString returnType; // "void" when there is none
    QList<Parameter> parameters;
    QString signature() const; // "ZoomTo(int VLng_Top, int VLng_Left)"
};

struct KeyInfo
{
    QString key;
    bool set = false; // known to SetProperty
    bool get = false; // known to GetProperty
};

struct ClassDescription
{
    QString name;
    QString description; // Q_CLASSINFO("Description"), when the class has one
    bool isControl = false;
    QList<PropertyInfo> properties;
    QList<MethodInfo> methods; // public invokables and slots
    QList<MethodInfo> events;  // signals
    QList<KeyInfo> keys;       // in table order, each key once
    bool hasKeyTable = false;  // the instance speaks the string property protocol
};

// The members the class and its library bases declare; Qt's own (objectName, deleteLater,
// destroyed...) are left out. `instance` (may be null) supplies the key table.
ClassDescription describe(const QMetaObject* meta, QObject* instance);

} // namespace nxr::reference
