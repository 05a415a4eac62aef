#include "host/FormLoader.h"

#include "frame/ClassRegistry.h"
#include "frame/ObjectSafety.h"

#include <QBuffer>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <QWidget>

#include <memory>

namespace nxr {

FormLoader::FormLoader(QObject* parent) : QUiLoader(parent) {}

QWidget* FormLoader::loadForm(const QByteArray& form, QWidget* parentWidget)
{
    QByteArray filtered = withoutUnsafeProperties(form);
    QBuffer buffer(&filtered);
    buffer.open(QIODevice::ReadOnly);
    return load(&buffer, parentWidget);
}

bool FormLoader::isSafeToInitialize(const QString& className)
{
    const ClassRegistry& registry = ClassRegistry::instance();
    if (!registry.contains(className) || !registry.isWidget(className))
        return true; // Qt's own widgets; library objects are refused in createWidget()
    auto it = m_initSafety.find(className);
    if (it == m_initSafety.end()) {
        // The answer is the class's: ask an instance made for the question.
        std::unique_ptr<QObject> probe(registry.create(className, nullptr));
        it = m_initSafety.insert(className, probe && isSafeForInitializing(probe.get()));
    }
    return it.value();
}

QByteArray FormLoader::withoutUnsafeProperties(const QByteArray& form)
{
    // A copy of the form without the <property> elements of unsafe controls; anything the reader
    // cannot follow is left to the form loader to report.
    QXmlStreamReader reader(form);
    QByteArray out;
    QXmlStreamWriter writer(&out);
    QList<bool> unsafeWidgets; // one per open <widget>
    int depth = 0;
    QList<int> widgetDepths;
    bool changed = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.hasError())
            return form;
        if (reader.isStartElement()) {
            ++depth;
            if (reader.name() == QLatin1String("property") && !widgetDepths.isEmpty() &&
                widgetDepths.last() == depth - 1 &&
                (unsafeWidgets.last() ||
                 m_dropped.contains(reader.attributes().value(QLatin1String("name")).toString()))) {
                reader.skipCurrentElement();
                --depth;
                changed = true;
                continue;
            }
            if (reader.name() == QLatin1String("widget")) {
                const QString className = reader.attributes().value(QLatin1String("class")).toString();
                const bool unsafe = !isSafeToInitialize(className);
                if (unsafe)
                    m_messages << QStringLiteral("%1 (%2) is not safe for initialising; it is created "
                                                 "without the form's property values")
                                      .arg(reader.attributes().value(QLatin1String("name")).toString(),
                                           className);
                unsafeWidgets << unsafe;
                widgetDepths << depth;
            }
        } else if (reader.isEndElement()) {
            if (!widgetDepths.isEmpty() && widgetDepths.last() == depth) {
                widgetDepths.removeLast();
                unsafeWidgets.removeLast();
            }
            --depth;
        }
        writer.writeCurrentToken(reader);
    }
    return changed ? out : form;
}

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
