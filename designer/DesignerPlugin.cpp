#include "designer/DesignerPlugin.h"

#include "designer/ControlCatalog.h"
#include "frame/ClassRegistry.h"

#include <QWidget>

#include <memory>

namespace nxr::designer {
namespace {

// The build lists the headers named like their class ("imagedisplay/NXRImageDisplay.h").
const QMap<QString, QString>& headers()
{
    static const QMap<QString, QString> map{
#include "ControlHeaders.inc"
    };
    return map;
}

} // namespace

ControlPlugin::ControlPlugin(const QString& className, QObject* parent)
    : QObject(parent), m_className(className)
{}

QString ControlPlugin::group() const
{
    return QStringLiteral("NexaroControls");
}

QString ControlPlugin::toolTip() const
{
    return description(ClassRegistry::instance().metaObject(m_className));
}

QString ControlPlugin::whatsThis() const
{
    return toolTip() + QStringLiteral(". Run `nexaro-page --describe %1` for its properties, methods and "
                                      "events.")
                           .arg(m_className);
}

QString ControlPlugin::includeFile() const
{
    return headers().value(m_className, m_className + QStringLiteral(".h"));
}

QIcon ControlPlugin::icon() const
{
    return designer::icon(m_className);
}

QWidget* ControlPlugin::createWidget(QWidget* parent)
{
    return qobject_cast<QWidget*>(ClassRegistry::instance().create(m_className, parent));
}

void ControlPlugin::initialize(QDesignerFormEditorInterface*)
{
    m_initialized = true;
}

QString ControlPlugin::domXml() const
{
    if (m_domXml.isEmpty()) {
        // The size hint needs an instance; it is made once, when Designer first asks.
        std::unique_ptr<QObject> probe(ClassRegistry::instance().create(m_className, nullptr));
        m_domXml =
            designer::domXml(m_className, defaultSize(ClassRegistry::instance().metaObject(m_className),
                                                      qobject_cast<QWidget*>(probe.get())));
    }
    return m_domXml;
}

DesignerPlugin::DesignerPlugin(QObject* parent) : QObject(parent)
{
    for (const QString& className : controlClasses())
        m_widgets << new ControlPlugin(className, this);
}

} // namespace nxr::designer
