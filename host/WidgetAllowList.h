#pragma once
// The members of Qt's own widgets that a page from a controller may script. Qt's widgets can do
// far more than a page needs (a text browser reads local files, a label opens links with the
// desktop's programs), so such a page sees each form widget through a stand-in that offers only
// the members listed here: texts, values, states and the signals a page reacts to. A class that
// is not listed is not given to the page at all.

#include <QString>
#include <QStringList>
#include <QVariantMap>

class QObject;

namespace nxr::WidgetAllowList {

struct Members
{
    QStringList readOnly;  // properties the page reads
    QStringList readWrite; // properties the page reads and sets
    QStringList methods;
    QStringList signals_;
};

// The class listed for `object` (its own class name), or "" when it is not listed.
QString listedClass(const QObject* object);
// The members of a listed class; empty for one that is not.
Members membersOf(const QString& className);
// The same as a map for the host's JavaScript: {className, readOnly, readWrite, methods, signals}.
QVariantMap describe(const QString& className);

} // namespace nxr::WidgetAllowList
