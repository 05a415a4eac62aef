#include "host/FormLoader.h"

#include "frame/ClassRegistry.h"

#include <QWidget>

namespace nxr {

FormLoader::FormLoader(QObject* parent) : QUiLoader(parent) {}

QWidget* FormLoader::createWidget(const QString& className, QWidget* parent, const QString& name)
{
    const ClassRegistry& registry = ClassRegistry::instance();
    if (registry.contains(className)) {
        if (!registry.isWidget(className)) {
            m_messages << QStringLiteral("%1 (%2) is not a control and cannot be placed on a form; "
                                         "create it from the script with createObject(\"%2\")")
                              .arg(name, className);
            return nullptr;
        }
        auto* widget = qobject_cast<QWidget*>(registry.create(className, parent));
        if (!widget) {
            m_messages << QStringLiteral("%1 (%2) could not be created").arg(name, className);
            return nullptr;
        }
        widget->setObjectName(name);
        m_created << Created{widget, className, true};
        return widget;
    }
    if (!availableWidgets().contains(className))
        m_messages
            << QStringLiteral("%1: unknown class %2, a plain widget stands in for it").arg(name, className);
    QWidget* widget = QUiLoader::createWidget(className, parent, name);
    if (widget)
        m_created << Created{widget, className, false};
    return widget;
}

} // namespace nxr
