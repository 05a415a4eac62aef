#pragma once
// Runs one page: fetches its files, builds the form's widgets, gives the safe ones to a
// JavaScript engine together with the host's globals, runs the scripts and decides when and
// how the run ends. Start it with the event loop running; it emits finished(exitCode) once.

#include "host/HostOptions.h"
#include "host/NetworkAccess.h"

#include <QJSValue>
#include <QMap>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <memory>

class QJSEngine;
class QMessageLogContext;

namespace nxr {

class ErrorBanner;
class FormLoader;
class HostAutomation;
class PageSource;
class ScriptRuntime;
class ScriptTimers;
class ScriptWatchdog;
struct PageFiles;

class PageHost : public QObject
{
    Q_OBJECT

public:
    explicit PageHost(const HostOptions& options, QObject* parent = nullptr);
    ~PageHost() override;

    void start();
    // Ends the run (once): timers stop, no more script runs, the screenshot is written, then
    // finished() is emitted from the event loop.
    void requestExit(int code);

    QWidget* pageWindow() const { return m_window.get(); }
    QJSEngine* engine() const { return m_engine.get(); }
    int scriptErrorCount() const { return m_errorCount; }
    bool isFinishing() const { return m_finishing; }
    // A PNG of `widget` (the page window when null), OpenGL content included.
    bool writeScreenshot(const QString& path, QWidget* widget, QString* error);
    // host.screenshot(): only below --screenshot-dir, never over an existing file unless the
    // command line allows it, and at most --screenshot-quota files per run.
    bool writeScriptScreenshot(const QString& path, QWidget* widget, QString* error);

    // The desktop's programs are never started for a link of a page; the host says so instead.
    Q_INVOKABLE void refuseUrl(const QUrl& url);

Q_SIGNALS:
    void finished(int exitCode);
    void scriptError(const QString& file, int line, const QString& message);
    // The files on disk a page's load has read (page.json, form, scripts), before its scripts run.
    void pageFilesRead(const QStringList& files);
    // Notes of the host for the user (refused objects, form problems, load failures).
    void hostMessage(const QString& text);

private:
    void onLoaded(const PageFiles& files);
    void loadFailed(const QString& message);
    void refuseUntrusted(const QUrl& url);
    void installUrlHandlers();
    void removeUrlHandlers();
    void exposeForm(const FormLoader& loader);
    void runScripts(const PageFiles& files);
    void reportError(const QJSValue& error, const QString& fallbackFile);
    void reportError(const QString& file, int line, const QString& message);
    void note(const QString& text);
    void checkIdle();
    void finishNow();
    bool isIdle() const;
    // Errors thrown by event handlers of the script reach the host as warnings of the engine.
    static void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);
    bool takeEngineWarning(const QMessageLogContext& context, const QString& message);

    HostOptions m_options;
    NetworkAccess m_network; // outlives the managers it counts
    QNetworkAccessManager* m_manager = nullptr;
    std::unique_ptr<QJSEngine> m_engine;
    std::unique_ptr<QWidget> m_window;
    ScriptTimers* m_timers = nullptr;
    ScriptRuntime* m_runtime = nullptr;
    HostAutomation* m_automation = nullptr;
    PageSource* m_source = nullptr;
    ScriptWatchdog* m_watchdog = nullptr;
    QStringList m_urlSchemes;
    QTemporaryDir m_resourceDir;    // a controller's form's pictures
    QPointer<ErrorBanner> m_banner; // on screen: the script errors in the window
    int m_screenshotsTaken = 0;
    QString m_firstScript;
    // The names the engine gives the page's scripts, and the names to show for them.
    QMap<QString, QString> m_scriptNames;
    QTimer m_idleTimer;
    int m_idleChecks = 0;
    int m_errorCount = 0;
    int m_exitCode = 0;
    bool m_scriptsDone = false;
    bool m_finishing = false;
};

} // namespace nxr
