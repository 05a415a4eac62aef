#include "host/ScriptRuntime.h"

#include "frame/ClassRegistry.h"
#include "frame/ObjectSafety.h"
#include "host/ScriptTimers.h"
#include "host/ScriptXmlHttpRequest.h"
#include "host/WidgetAllowList.h"

#include <QJSEngine>
#include <QLayout>

#include <cstdio>

namespace nxr {

ScriptRuntime::ScriptRuntime(QJSEngine* engine, ScriptTimers* timers, QObject* parent)
    : QObject(parent), m_engine(engine), m_timers(timers)
{}

void ScriptRuntime::setNetwork(QNetworkAccessManager* network, const RequestPolicy& policy)
{
    m_network = network;
    m_policy = policy;
}

QJSValue ScriptRuntime::createRequest()
{
    auto* request = new ScriptXmlHttpRequest(m_engine, m_network, m_policy);
    connect(request, &ScriptXmlHttpRequest::callbackFailed, this, &ScriptRuntime::callbackFailed);
    connect(request, &ScriptXmlHttpRequest::refused, this, &ScriptRuntime::message);
    QJSEngine::setObjectOwnership(request, QJSEngine::JavaScriptOwnership);
    m_requests.removeAll(nullptr);
    m_requests << request;
    return m_engine->newQObject(request);
}

void ScriptRuntime::cancelRequests()
{
    for (const QPointer<ScriptXmlHttpRequest>& request : std::as_const(m_requests))
        if (request)
            request->cancelQuietly();
    m_requests.clear();
}

void ScriptRuntime::print(int level, const QString& text)
{
    FILE* out = level == 0 ? stdout : stderr;
    std::fprintf(out, "%s\n", text.toLocal8Bit().constData());
    std::fflush(out);
    Q_EMIT consoleOutput(level, text);
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

QJSValue ScriptRuntime::scriptValue(QObject* object)
{
    if (!object)
        return QJSValue(QJSValue::NullValue);
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    const QJSValue raw = m_engine->newQObject(object);
    if (!m_restricted || qobject_cast<IObjectSafety*>(object) || !object->isWidgetType())
        return raw;
    const QString listed = WidgetAllowList::listedClass(object);
    if (listed.isEmpty())
        return QJSValue();
    return m_helpers.property(QStringLiteral("wrap"))
        .call({raw, m_engine->toScriptValue(WidgetAllowList::describe(listed))});
}

QJSValue ScriptRuntime::handle(QObject* object)
{
    if (!object)
        return QJSValue(QJSValue::NullValue);
    if (!m_restricted)
        return scriptValue(object);
    const bool library = qobject_cast<IObjectSafety*>(object) != nullptr;
    if (library ? mayExpose(object, true) : !WidgetAllowList::listedClass(object).isEmpty())
        return scriptValue(object);
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    QVariantMap opaque = WidgetAllowList::describe(QString());
    opaque.insert(QStringLiteral("className"), QString::fromLatin1(object->metaObject()->className()));
    return m_helpers.property(QStringLiteral("wrap")).call({m_engine->newQObject(object), m_engine->toScriptValue(opaque)});
}

QJSValue ScriptRuntime::hostValue(QObject* automationObject, bool automation, const QJSValue& window)
{
    QJSEngine::setObjectOwnership(automationObject, QJSEngine::CppOwnership);
    return m_helpers.property(QStringLiteral("host"))
        .call({m_engine->newQObject(automationObject), QJSValue(automation), window});
}

bool ScriptRuntime::exposeGlobal(const QString& name, QObject* object)
{
    const QJSValue value = scriptValue(object);
    if (value.isUndefined())
        return false;
    m_engine->globalObject().setProperty(name, value);
    return true;
}

QJSValue ScriptRuntime::createObject(const QString& className, QObject* parent)
{
    const ClassRegistry& registry = ClassRegistry::instance();
    if (!registry.contains(className)) {
        m_engine->throwError(
            QJSValue::TypeError,
            QStringLiteral("createObject: no class named \"%1\" (see --list-classes)").arg(className));
        return QJSValue();
    }
    QWidget* parentWidget = nullptr;
    if (parent) {
        parentWidget = qobject_cast<QWidget*>(parent);
        if (!parentWidget) {
            m_engine->throwError(
                QJSValue::TypeError,
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

int ScriptRuntime::setTimer(const QJSValue& callback, const QJSValue& delay, bool repeat,
                            const QJSValue& arguments)
{
    if (!callback.isCallable()) {
        m_engine->throwError(QJSValue::TypeError,
                             QStringLiteral("%1: the first argument must be a function")
                                 .arg(repeat ? QLatin1String("setInterval") : QLatin1String("setTimeout")));
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
    return QStringLiteral(R"JS((function (rt) {
  var slice = Array.prototype.slice;
  // Stand-ins of Qt's widgets for a controller's page, and the widgets behind them; the widgets
  // themselves never reach the page.
  var behind = new WeakMap();
  function unwrap(value) {
    return (value !== null && typeof value === "object" && behind.has(value)) ? behind.get(value) : value;
  }
  function wrap(raw, members) {
    var standIn = {};
    members.readOnly.forEach(function (name) {
      Object.defineProperty(standIn, name, { enumerable: true, get: function () { return raw[name]; } });
    });
    members.readWrite.forEach(function (name) {
      Object.defineProperty(standIn, name, { enumerable: true, get: function () { return raw[name]; },
                                             set: function (v) { raw[name] = v; } });
    });
    members.methods.forEach(function (name) {
      standIn[name] = function () { return raw[name].apply(raw, slice.call(arguments).map(unwrap)); };
    });
    members.signals.forEach(function (name) {
      Object.defineProperty(standIn, name, { enumerable: true, get: function () { return raw[name]; } });
    });
    standIn.toString = function () { return members.className + "(name = \"" + raw.objectName + "\")"; };
    Object.freeze(standIn);
    behind.set(standIn, raw);
    return standIn;
  }
  function makeHost(raw, automation, window) {
    var h = {};
    ["args", "headless", "pageUrl"].forEach(function (name) {
      Object.defineProperty(h, name, { enumerable: true, get: function () { return raw[name]; } });
    });
    h.window = window;
    h.wait = function (ms) { return raw.wait(ms); };
    if (automation) {
      ["click", "doubleClick", "press", "release", "move", "drag", "wheel", "key", "type"].forEach(
        function (name) {
          h[name] = function () { return raw[name].apply(raw, slice.call(arguments).map(unwrap)); };
        });
      ["tap", "touch", "touchDrag"].forEach(function (name) {
        h[name] = function () { return raw[name].apply(raw, slice.call(arguments).map(unwrap)); };
      });
      h.child = function (w, path) { return rt.handle(raw.child(unwrap(w), String(path))); };
      h.windows = function () { return raw.windows().map(function (w) { return rt.handle(w); }); };
      h.findWindow = function (name) { return rt.handle(raw.findWindow(String(name))); };
      h.screenshot = function () { return raw.screenshot.apply(raw, slice.call(arguments).map(unwrap)); };
      h.exit = function () { return raw.exit.apply(raw, arguments); };
    }
    return Object.freeze(h);
  }

  createObject = function (className, parent) {
    return rt.createObject(String(className), parent === undefined ? null : unwrap(parent));
  };
  setTimeout = function (fn, ms) { return rt.setTimer(fn, ms, false, slice.call(arguments, 2)); };
  setInterval = function (fn, ms) { return rt.setTimer(fn, ms, true, slice.call(arguments, 2)); };
  clearTimeout = function (id) { rt.clearTimer(id); };
  clearInterval = function (id) { rt.clearTimer(id); };

  function addEventListener(type, fn) {
    if (typeof fn !== "function") return;
    var all = this.__listeners || (this.__listeners = {});
    var list = all[type] || (all[type] = []);
    if (list.indexOf(fn) < 0) list.push(fn);
  }
  function removeEventListener(type, fn) {
    var list = this.__listeners && this.__listeners[type];
    var at = list ? list.indexOf(fn) : -1;
    if (at >= 0) list.splice(at, 1);
  }
  XMLHttpRequest = function () {
    var request = rt.createRequest();
    request.addEventListener = addEventListener;
    request.removeEventListener = removeEventListener;
    return request;
  };
  XMLHttpRequest.UNSENT = 0; XMLHttpRequest.OPENED = 1; XMLHttpRequest.HEADERS_RECEIVED = 2;
  XMLHttpRequest.LOADING = 3; XMLHttpRequest.DONE = 4;

  function text(args) {
    return slice.call(args).map(function (a) {
      if (typeof a === "string") return a;
      if (a === null || typeof a !== "object") return String(a);
      if (a instanceof Error || (!Array.isArray(a) && a.toString !== Object.prototype.toString)) return String(a);
      try { var json = JSON.stringify(a); return json === undefined ? String(a) : json; } catch (e) { return String(a); }
    }).join(" ");
  }
  console = {
    log: function () { rt.print(0, text(arguments)); },
    info: function () { rt.print(0, text(arguments)); },
    debug: function () { rt.print(0, text(arguments)); },
    warn: function () { rt.print(1, text(arguments)); },
    error: function () { rt.print(1, text(arguments)); }
  };
  return { wrap: wrap, host: makeHost };
})(%1);
)JS")
        .arg(runtimeName);
}

} // namespace nxr
