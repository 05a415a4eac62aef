#pragma once
// What a page script reaches besides its controls: createObject(), the timer functions,
// XMLHttpRequest and console (the globals of those names are thin JavaScript wrappers around
// this object), and the rule that decides which objects the script may see at all.

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
    // Where the script's requests go: relative URLs resolve against `pageUrl`; a page read from
    // disk may also read local files.
    void setNetwork(QNetworkAccessManager* network, const QUrl& pageUrl);

    // The library's classes answer for themselves whether they are safe for scripting; Qt's own
    // widgets of the form belong to the host and are always shown to the script.
    static bool mayExpose(QObject* object, bool fromRegistry);
    // The message printed for an object that is kept from the script.
    static QString refusalMessage(const QString& name, const QString& className);

    // Adds `object` as the global `name`, kept alive by C++ (the script never deletes it).
    void exposeGlobal(const QString& name, QObject* object);

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
    // XMLHttpRequest and console over the runtime object found in the global `runtimeName`.
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
    QUrl m_pageUrl;
    QList<QPointer<ScriptXmlHttpRequest>> m_requests;
};

} // namespace nxr
