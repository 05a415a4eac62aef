#include "host/ScriptRuntime.h"

#include "frame/ClassRegistry.h"
#include "frame/ObjectSafety.h"
#include "host/ScriptTimers.h"

#include <QJSEngine>
#include <QLayout>

namespace nxr {

ScriptRuntime::ScriptRuntime(QJSEngine* engine, ScriptTimers* timers, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_timers(timers)
{
}

bool ScriptRuntime::mayExpose(QObject* object, bool fromRegistry)
{
    if (!object)
        return false;
    if (fromRegistry || qobject_cast<IObjectSafety*>(object))
        return isSafeForScripting(object);
    return true;
}

QString ScriptRuntime::refusalMessage(const QString& name, const QString& className)
{
    return QStringLiteral("%1 (%2) is not safe for scripting; it is not given to the script")
        .arg(name.isEmpty() ? QStringLiteral("an object") : name, className);
}

void ScriptRuntime::exposeGlobal(const QString& name, QObject* object)
{
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    m_engine->globalObject().setProperty(name, m_engine->newQObject(object));
}

QJSValue ScriptRuntime::createObject(const QString& className, QObject* parent)
{
    const ClassRegistry& registry = ClassRegistry::instance();
    if (!registry.contains(className)) {
        m_engine->throwError(QJSValue::TypeError,
                             QStringLiteral("createObject: no class named \"%1\" (see --list-classes)").arg(className));
        return QJSValue();
    }
    QWidget* parentWidget = nullptr;
    if (parent) {
        parentWidget = qobject_cast<QWidget*>(parent);
        if (!parentWidget) {
            m_engine->throwError(QJSValue::TypeError,
                                 QStringLiteral("createObject: the parent of %1 must be a widget").arg(className));
            return QJSValue();
        }
    }
    const bool widget = registry.isWidget(className);
    QObject* object = registry.create(className, parentWidget ? parentWidget : m_window.data());
    if (!object) {
        m_engine->throwError(QStringLiteral("createObject: %1 could not be created").arg(className));
        return QJSValue();
    }
    if (!mayExpose(object, true)) {
        Q_EMIT message(refusalMessage(QString(), className));
        delete object;
        return QJSValue(QJSValue::NullValue);
    }
    if (widget) {
        auto* w = static_cast<QWidget*>(object);
        if (QWidget* into = w->parentWidget(); into && into->layout())
            into->layout()->addWidget(w);
        w->show();
    }
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    return m_engine->newQObject(object);
}

int ScriptRuntime::setTimer(const QJSValue& callback, const QJSValue& delay, bool repeat, const QJSValue& arguments)
{
    if (!callback.isCallable()) {
        m_engine->throwError(QJSValue::TypeError, QStringLiteral("%1: the first argument must be a function")
                                                      .arg(repeat ? QLatin1String("setInterval")
                                                                  : QLatin1String("setTimeout")));
        return 0;
    }
    QJSValueList list;
    const int count = arguments.property(QStringLiteral("length")).toInt();
    for (int i = 0; i < count; ++i)
        list << arguments.property(quint32(i));
    const double ms = delay.isUndefined() ? 0.0 : delay.toNumber();
    return m_timers->add(callback, ms, repeat, list);
}

void ScriptRuntime::clearTimer(const QJSValue& id)
{
    if (id.isNumber())
        m_timers->clear(id.toInt());
}

QString ScriptRuntime::bootstrapScript(const QString& runtimeName)
{
    return QStringLiteral(
               "(function (rt) {\n"
               "  var slice = Array.prototype.slice;\n"
               "  createObject = function (className, parent) {\n"
               "    return rt.createObject(String(className), parent === undefined ? null : parent);\n"
               "  };\n"
               "  setTimeout = function (fn, ms) { return rt.setTimer(fn, ms, false, slice.call(arguments, 2)); };\n"
               "  setInterval = function (fn, ms) { return rt.setTimer(fn, ms, true, slice.call(arguments, 2)); };\n"
               "  clearTimeout = function (id) { rt.clearTimer(id); };\n"
               "  clearInterval = function (id) { rt.clearTimer(id); };\n"
               "})(%1);\n")
        .arg(runtimeName);
}

} // namespace nxr
