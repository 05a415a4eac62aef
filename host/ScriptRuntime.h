#pragma once
// What a page script reaches besides its controls: createObject(), the timer functions,
// XMLHttpRequest and console (the globals of those names are thin JavaScript wrappers around
// this object), and the rule that decides which objects the script may see at all.

#include "host/ScriptXmlHttpRequest.h"

#include <QJSValue>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QWidget>

class QJSEngine;
class QNetworkAccessManager;

namespace nxr {

class ScriptTimers;
class ScriptXmlHttpRequest;

class ScriptRuntime : public QObject
{
    Q_OBJECT

public:
    ScriptRuntime(QJSEngine* engine, ScriptTimers* timers, QObject* parent = nullptr);

    // The page window: parent of created controls (unless the script names one) and owner of
    // created objects.
    void setPageWindow(QWidget* window) { m_window = window; }
    // Where the script's requests go and what they may do (see RequestPolicy).
    void setNetwork(QNetworkAccessManager* network, const RequestPolicy& policy);
    // A controller's page sees Qt's own widgets only through the allow-list's stand-ins.
    void setRestricted(bool on) { m_restricted = on; }
    bool restricted() const { return m_restricted; }
    // The helpers the bootstrap script returned: wrap(raw, members) and host(raw, automation).
    void setHelpers(const QJSValue& helpers) { m_helpers = helpers; }
    // What the script gets for `object`: the object itself, or for a Qt widget of a restricted
    // page the allow-list's stand-in; undefined when the widget's class is not listed.
    QJSValue scriptValue(QObject* object);
    // The script's `host`: the automation object with the input, screenshot and exit functions
    // only when `automation` is on, and `window` as the script sees it.
    QJSValue hostValue(QObject* automationObject, bool automation, const QJSValue& window);

    // The library's classes answer for themselves whether they are safe for scripting; Qt's own
    // widgets of the form belong to the host and are always shown to the script.
    static bool mayExpose(QObject* object, bool fromRegistry);
    // The message printed for an object that is kept from the script.
    static QString refusalMessage(const QString& name, const QString& className);

    // Adds `object` as the global `name`, kept alive by C++ (the script never deletes it); a Qt
    // widget of a restricted page through its stand-in. False when it is not given to the script.
    bool exposeGlobal(const QString& name, QObject* object);

    // What the script gets for a widget the host found for it (a control's child, a window): as
    // scriptValue(), and for a widget a controller's page may not script, a stand-in without
    // members that the host's functions still accept as their target.
    Q_INVOKABLE QJSValue handle(QObject* object);

    // For console output: {className, name, properties: [[name, value], ...]} of a QObject (its
    // own classes' properties, values as numbers, texts or type names); undefined for anything else.
    Q_INVOKABLE QJSValue describeObject(const QJSValue& value);

    // Drops every request under way without calling back into the script.
    void cancelRequests();

    Q_INVOKABLE QJSValue createObject(const QString& className, QObject* parent);
    Q_INVOKABLE int setTimer(const QJSValue& callback, const QJSValue& delay, bool repeat,
                             const QJSValue& arguments);
    Q_INVOKABLE void clearTimer(const QJSValue& id);
    Q_INVOKABLE QJSValue createRequest();
    // console output: level 0 to standard output, 1 to standard error.
    Q_INVOKABLE void print(int level, const QString& text);

    // JavaScript that defines createObject, setTimeout, setInterval, clearTimeout, clearInterval,
    // XMLHttpRequest and console over the runtime object found in the global `runtimeName`, and
    // evaluates to the helpers object (see setHelpers).
    static QString bootstrapScript(const QString& runtimeName);

Q_SIGNALS:
    void message(const QString& text);
    void consoleOutput(int level, const QString& text);
    // A callback of the script (an XMLHttpRequest handler) threw.
    void callbackFailed(const QJSValue& error);

private:
    QJSEngine* m_engine;
    ScriptTimers* m_timers;
    QPointer<QWidget> m_window;
    QNetworkAccessManager* m_network = nullptr;
    RequestPolicy m_policy;
    bool m_restricted = false;
    QJSValue m_helpers;
    QList<QPointer<ScriptXmlHttpRequest>> m_requests;
};

} // namespace nxr
