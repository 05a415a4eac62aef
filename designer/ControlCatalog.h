#pragma once
// What Designer shows for each control of the library's class registry: the name a new instance
// gets on a form, its default size, its tool tip and its icon. Everything is read from the class
// itself (its meta-object, its class infos, an instance's size hint), so a control registered
// later appears without a change here.
//
// A control may set its own texts and size with class infos:
//     Q_CLASSINFO("Description", "Shows a camera image with zoom, scroll and live mode")
//     Q_CLASSINFO("DefaultSize", "480,360")

#include <QIcon>
#include <QSize>
#include <QString>
#include <QStringList>

struct QMetaObject;
class QWidget;

namespace nxr::designer {

// The widget classes of the registry, sorted.
QStringList controlClasses();

// "ctl_" + the class name without its "NXR" prefix: "ctl_ImageDisplay".
QString defaultObjectName(const QString& className);

// The class info "Description", or a sentence naming the class.
QString description(const QMetaObject* meta);

// The class info "DefaultSize" ("w,h") when there is one, else the instance's size hint kept
// within 60x20 .. 800x600, else 200x100; always within the instance's minimum and maximum size.
QSize defaultSize(const QMetaObject* meta, const QWidget* instance);

// The form fragment Designer drops: the class, the default object name and geometry.
QString domXml(const QString& className, const QSize& size);

// A small generated icon: the class's initials on a colour picked from its name.
QIcon icon(const QString& className);

} // namespace nxr::designer
