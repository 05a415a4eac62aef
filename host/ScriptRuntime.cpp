#include "host/ScriptRuntime.h"

#include "frame/ClassRegistry.h"
#include "frame/ObjectSafety.h"
#include "host/ScriptTimers.h"
#include "host/ScriptXmlHttpRequest.h"
#include "host/WidgetAllowList.h"

#include <QJSEngine>
#include <QLayout>
#include <QMetaProperty>

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
    return m_helpers.property(QStringLiteral("wrap"))
        .call({m_engine->newQObject(object), m_engine->toScriptValue(opaque)});
}

QJSValue ScriptRuntime::describeObject(const QJSValue& value)
{
    QObject* object = value.toQObject();
    if (!object)
        return QJSValue(QJSValue::UndefinedValue);
    // The object's own properties: those of its classes past Qt's QObject or QWidget.
    const QMetaObject* meta = object->metaObject();
    const int first = object->isWidgetType() ? QWidget::staticMetaObject.propertyCount()
                                             : QObject::staticMetaObject.propertyCount();
    QVariantList properties;
    for (int i = first; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isReadable())
            continue;
        const QVariant v = property.read(object);
        QVariant shown;
        switch (v.metaType().id()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
        case QMetaType::Float:
        case QMetaType::QString:
        case QMetaType::QStringList:
            shown = v;
            break;
        default:
            if (!v.isValid())
                break;
            if (v.canConvert<QString>() && !v.toString().isEmpty())
                shown = v.toString();
            else
                shown = QStringLiteral("<%1>").arg(QLatin1String(v.metaType().name()));
        }
        properties << QVariant(QVariantList{QString::fromLatin1(property.name()), shown});
    }
    QJSValue result = m_engine->newObject();
    result.setProperty(QStringLiteral("className"), QString::fromLatin1(meta->className()));
    result.setProperty(QStringLiteral("name"), object->objectName());
    result.setProperty(QStringLiteral("properties"), m_engine->toScriptValue(properties));
    return result;
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
  // themselves never reach the page. Plain maps: the engine's weak maps are not reliable once the
  // widgets behind their entries are gone. One stand-in a widget keeps them from growing per call.
  var behind = new Map();
  var standIns = new Map();
  function unwrap(value) {
    return (value !== null && typeof value === "object" && behind.has(value)) ? behind.get(value) : value;
  }
  function wrap(raw, members) {
    if (standIns.has(raw)) return standIns.get(raw);
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
    standIns.set(raw, standIn);
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
      h.find = function (name) { return rt.handle(raw.find(String(name))); };
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

  // console output: texts as they are, everything else in a short readable form (nested values
  // to a few levels, long lists cut, cycles marked).
  var kDepth = 3, kItems = 30;
  function keyText(k) { return /^[A-Za-z_$][A-Za-z0-9_$]*$/.test(k) ? k : JSON.stringify(k); }
  function inspect(v, depth, seen) {
    if (typeof v === "string") return depth === 0 ? v : JSON.stringify(v);
    if (typeof v === "function") return "[Function" + (v.name ? ": " + v.name : "") + "]";
    if (v === null || typeof v !== "object") return String(v);
    if (v instanceof Error || v instanceof RegExp || behind.has(v)) return String(v);
    if (v instanceof Date) return isNaN(v.getTime()) ? "Invalid Date" : v.toISOString();
    if (seen.indexOf(v) >= 0) return "[Circular]";
    var described = rt.describeObject(v);
    if (described) {
      var head = described.className + (described.name ? " \"" + described.name + "\"" : "");
      if (depth >= kDepth) return head;
      return head + " {" + described.properties.map(function (p) {
        return keyText(p[0]) + ": " + inspect(p[1], depth + 1, seen.concat([v]));
      }).join(", ") + "}";
    }
    if (!Array.isArray(v) && typeof v.toString === "function" && v.toString !== Object.prototype.toString)
      return String(v);
    if (depth >= kDepth) return Array.isArray(v) ? "[Array]" : "[Object]";
    seen = seen.concat([v]);
    function value(get) { try { return inspect(get(), depth + 1, seen); } catch (e) { return "[" + e + "]"; } }
    var items, more;
    if (Array.isArray(v)) {
      items = v.slice(0, kItems).map(function (x, i) { return value(function () { return v[i]; }); });
      more = v.length - items.length;
    } else {
      var keys = Object.keys(v);
      items = keys.slice(0, kItems).map(function (k) { return keyText(k) + ": " + value(function () { return v[k]; }); });
      more = keys.length - items.length;
    }
    if (more > 0) items.push("... " + more + " more");
    if (Array.isArray(v)) return "[" + items.join(", ") + "]";
    var name = (v.constructor && v.constructor !== Object && v.constructor.name) ? v.constructor.name + " " : "";
    return name + "{" + items.join(", ") + "}";
  }
  function text(args) {
    return slice.call(args).map(function (a) {
      try { return inspect(a, 0, []); } catch (e) { return String(a); }
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
