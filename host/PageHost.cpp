#include "host/PageHost.h"

#include "frame/SyncCall.h"
#include "host/FormLoader.h"
#include "host/HostAutomation.h"
#include "host/PageSource.h"
#include "host/ScriptRuntime.h"
#include "host/ScriptTimers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QJSEngine>
#include <QPixmap>
#include <QTest>
#include <QVariantMap>

#include <cstdio>

namespace nxr {
namespace {

const QString kRuntimeGlobal = QStringLiteral("__nexaroRuntime");
const QString kBootstrapFile = QStringLiteral("nexaro-page-bootstrap.js");
constexpr int kIdlePollMs = 50;
constexpr int kIdleChecksToEnd = 4; // the page must stay idle this many polls in a row
constexpr int kExposeWaitMs = 5000;

PageHost* g_current = nullptr;
QtMessageHandler g_previousHandler = nullptr;

// The name a script is evaluated under: the engine turns any name into a file URL, so a remote
// script gets its URL's path under a made-up folder and is shown by its real URL.
QString evaluationName(const QUrl& url)
{
    if (url.isLocalFile())
        return url.toLocalFile();
    return QStringLiteral("/remote/") + url.host() + url.path();
}

QString engineUrl(const QString& name)
{
    return QUrl::fromLocalFile(name).toString();
}

} // namespace

PageHost::PageHost(const HostOptions& options, QObject* parent) : QObject(parent), m_options(options)
{
    m_engine = std::make_unique<QJSEngine>();
    m_manager = m_network.create(this);
    if (!g_current) {
        g_current = this;
        g_previousHandler = qInstallMessageHandler(&PageHost::messageHandler);
    }

    m_timers = new ScriptTimers(this);
    connect(m_timers, &ScriptTimers::callbackFailed, this,
            [this](const QJSValue& error) { reportError(error, m_firstScript); });
    m_runtime = new ScriptRuntime(m_engine.get(), m_timers, this);
    connect(m_runtime, &ScriptRuntime::message, this, &PageHost::note);
    connect(m_runtime, &ScriptRuntime::callbackFailed, this,
            [this](const QJSValue& error) { reportError(error, m_firstScript); });

    HostAutomation::Callbacks callbacks;
    callbacks.screenshot = [this](const QString& path, QString* error) {
        return writeScreenshot(path, error);
    };
    callbacks.exit = [this](int code) { requestExit(code); };
    callbacks.exiting = [this] { return m_finishing; };
    m_automation = new HostAutomation(m_engine.get(), callbacks, this);
    m_automation->setHeadless(options.headless);
    QVariantMap args;
    for (auto it = options.scriptArgs.cbegin(); it != options.scriptArgs.cend(); ++it)
        args.insert(it.key(), it.value());
    m_automation->setArgs(args);

    m_source = new PageSource(m_manager, this);
    connect(m_source, &PageSource::loaded, this, &PageHost::onLoaded);
    connect(m_source, &PageSource::failed, this, &PageHost::loadFailed);

    m_idleTimer.setInterval(kIdlePollMs);
    connect(&m_idleTimer, &QTimer::timeout, this, &PageHost::checkIdle);
}

PageHost::~PageHost()
{
    // Script values die before their engine, the engine before the widgets it refers to.
    m_timers->stopAll();
    m_runtime->cancelRequests();
    if (g_current == this) {
        qInstallMessageHandler(g_previousHandler);
        g_current = nullptr;
    }
    m_engine.reset();
    m_window.reset();
}

void PageHost::messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg && g_current && g_current->takeEngineWarning(context, message))
        return;
    if (g_previousHandler)
        g_previousHandler(type, context, message);
    else
        std::fprintf(stderr, "%s\n", qFormatLogMessage(type, context, message).toLocal8Bit().constData());
}

bool PageHost::takeEngineWarning(const QMessageLogContext& context, const QString& message)
{
    // The engine reports an exception of a connected handler as a warning located in the script:
    // "<script url>:<line>: <error>".
    if (!context.file)
        return false;
    const QString file = QString::fromUtf8(context.file);
    if (!m_scriptNames.contains(file))
        return false;
    const QString prefix = file + QLatin1Char(':') + QString::number(context.line) + QStringLiteral(": ");
    reportError(file, context.line, message.startsWith(prefix) ? message.mid(prefix.size()) : message);
    return true;
}

void PageHost::start()
{
    if (m_options.headless && m_options.timeoutMs > 0) {
        QTimer::singleShot(m_options.timeoutMs, this, [this] {
            if (m_finishing)
                return;
            auto yesNo = [](bool b) { return b ? QStringLiteral("yes") : QStringLiteral("no"); };
            note(QStringLiteral(
                     "timed out after %1 ms: the page is still busy (scripts done: %2, timers pending: "
                     "%3, requests under way: %4); end the run with host.exit() or --exit-after")
                     .arg(m_options.timeoutMs)
                     .arg(yesNo(m_scriptsDone), yesNo(m_timers->hasPending()))
                     .arg(m_network.requestsInFlight()));
            requestExit(ExitTimedOut);
        });
    }
    m_source->load(m_options.page);
}

void PageHost::loadFailed(const QString& message)
{
    note(QStringLiteral("cannot load the page: %1").arg(message));
    requestExit(ExitLoadFailed);
}

void PageHost::onLoaded(const PageFiles& files)
{
    if (m_finishing)
        return;
    FormLoader loader;
    if (!files.workingDirectory.isEmpty())
        loader.setWorkingDirectory(QDir(files.workingDirectory));
    QWidget* root = loader.loadForm(files.form);
    for (const QString& message : loader.messages())
        note(message);
    if (!root) {
        loadFailed(QStringLiteral("%1 is not a usable form: %2")
                       .arg(PageSource::displayUrl(files.formUrl), loader.errorString()));
        return;
    }
    m_window.reset(root);
    if (!files.title.isEmpty())
        root->setWindowTitle(files.title);
    else if (root->windowTitle().isEmpty())
        root->setWindowTitle(QFileInfo(files.formUrl.path()).completeBaseName());
    m_runtime->setPageWindow(root);
    m_runtime->setNetwork(m_manager, files.pageUrl);
    m_automation->setPageWindow(root);
    m_automation->setPageUrl(files.pageUrl.toString(QUrl::RemoveUserInfo));

    root->show();
    if (root->windowHandle() && !QTest::qWaitForWindowExposed(root->windowHandle(), kExposeWaitMs))
        note(QStringLiteral("the page window was not shown on the screen within %1 ms").arg(kExposeWaitMs));
    if (m_finishing)
        return;

    m_runtime->exposeGlobal(kRuntimeGlobal, m_runtime);
    m_runtime->exposeGlobal(QStringLiteral("host"), m_automation);
    m_scriptNames.insert(engineUrl(kBootstrapFile), kBootstrapFile);
    const QJSValue boot = m_engine->evaluate(ScriptRuntime::bootstrapScript(kRuntimeGlobal), kBootstrapFile);
    if (boot.isError())
        reportError(boot, QString());
    exposeForm(loader);
    runScripts(files);
}

void PageHost::exposeForm(const FormLoader& loader)
{
    QList<QWidget*> seen;
    for (const FormLoader::Created& created : loader.created()) {
        QWidget* widget = created.widget;
        if (!widget || seen.contains(widget))
            continue;
        seen << widget;
        const QString name = widget->objectName();
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_")))
            continue;
        if (!ScriptRuntime::mayExpose(widget, created.fromRegistry)) {
            note(ScriptRuntime::refusalMessage(name, created.className));
            continue;
        }
        if (m_engine->globalObject().hasProperty(name)) {
            note(QStringLiteral("%1: the name is taken by the host, the control is not given to the script")
                     .arg(name));
            continue;
        }
        m_runtime->exposeGlobal(name, widget);
    }
}

void PageHost::runScripts(const PageFiles& files)
{
    for (const PageScript& script : files.scripts)
        m_scriptNames.insert(engineUrl(evaluationName(script.url)), PageSource::displayUrl(script.url));
    if (!files.scripts.isEmpty())
        m_firstScript = engineUrl(evaluationName(files.scripts.first().url));
    for (const PageScript& script : files.scripts) {
        if (m_finishing)
            return;
        const QJSValue result = m_engine->evaluate(script.text, evaluationName(script.url), 1);
        if (result.isError())
            reportError(result, engineUrl(evaluationName(script.url)));
    }
    m_scriptsDone = true;
    if (m_finishing)
        return;
    if (m_options.exitAfterMs >= 0)
        QTimer::singleShot(m_options.exitAfterMs, this, [this] { requestExit(ExitOk); });
    else if (m_options.headless)
        m_idleTimer.start();
}

void PageHost::reportError(const QJSValue& error, const QString& fallbackFile)
{
    QString file = error.property(QStringLiteral("fileName")).toString();
    int line = error.property(QStringLiteral("lineNumber")).toInt();
    if (error.property(QStringLiteral("fileName")).isUndefined())
        file = fallbackFile;
    // An error raised inside the host's own wrappers (setTimeout...) is the page's error at the
    // line that called them: the first stack frame ("function@file:line") outside the wrappers.
    if (file.endsWith(kBootstrapFile)) {
        const QStringList frames =
            error.property(QStringLiteral("stack")).toString().split(QLatin1Char('\n'));
        for (const QString& frame : frames) {
            const int at = frame.indexOf(QLatin1Char('@'));
            const int colon = frame.lastIndexOf(QLatin1Char(':'));
            if (at < 0 || colon <= at)
                continue;
            const QString frameFile = frame.mid(at + 1, colon - at - 1);
            if (frameFile.endsWith(kBootstrapFile))
                continue;
            file = frameFile;
            line = frame.mid(colon + 1).toInt();
            break;
        }
    }
    reportError(file, line, error.toString());
}

void PageHost::reportError(const QString& file, int line, const QString& message)
{
    if (m_finishing)
        return;
    ++m_errorCount;
    const QString where = m_scriptNames.value(file, file);
    const QString text = QStringLiteral("%1:%2: %3")
                             .arg(where.isEmpty() ? QStringLiteral("<script>") : where)
                             .arg(line)
                             .arg(message);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stderr);
    Q_EMIT scriptError(where, line, message);
}

void PageHost::note(const QString& text)
{
    std::fprintf(stderr, "%s: %s\n", QCoreApplication::applicationName().toLocal8Bit().constData(),
                 text.toLocal8Bit().constData());
    std::fflush(stderr);
    Q_EMIT hostMessage(text);
}

bool PageHost::isIdle() const
{
    return m_scriptsDone && !m_timers->hasPending() && m_network.requestsInFlight() == 0 &&
           m_automation->waitDepth() == 0 && NestedWait::depth() == 0; // a call in progress is activity
}

void PageHost::checkIdle()
{
    m_idleChecks = isIdle() ? m_idleChecks + 1 : 0;
    if (m_idleChecks >= kIdleChecksToEnd)
        requestExit(ExitOk);
}

void PageHost::requestExit(int code)
{
    if (m_finishing)
        return;
    m_finishing = true;
    m_exitCode = code;
    m_idleTimer.stop();
    m_timers->stopAll();
    m_runtime->cancelRequests();
    // Whatever script is running stops at its next step; nothing of the page runs any more.
    m_engine->setInterrupted(true);
    QTimer::singleShot(0, this, &PageHost::finishNow);
}

bool PageHost::writeScreenshot(const QString& path, QString* error)
{
    if (!m_window) {
        *error = QStringLiteral("there is no page window");
        return false;
    }
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath())) {
        *error =
            QStringLiteral("cannot create the folder %1").arg(QDir::toNativeSeparators(info.absolutePath()));
        return false;
    }
    const QImage image = m_window->grab().toImage();
    if (image.isNull()) {
        *error = QStringLiteral("the page window could not be drawn");
        return false;
    }
    if (!image.save(info.absoluteFilePath(), "PNG")) {
        *error = QStringLiteral("cannot write %1").arg(QDir::toNativeSeparators(info.absoluteFilePath()));
        return false;
    }
    std::printf("screenshot written to %s (%dx%d)\n",
                QDir::toNativeSeparators(info.absoluteFilePath()).toLocal8Bit().constData(), image.width(),
                image.height());
    std::fflush(stdout);
    return true;
}

void PageHost::finishNow()
{
    int code = m_exitCode;
    if (!m_options.screenshotPath.isEmpty()) {
        QString error;
        if (!writeScreenshot(m_options.screenshotPath, &error)) {
            note(QStringLiteral("screenshot not written: %1").arg(error));
            if (code == ExitOk)
                code = ExitLoadFailed;
        }
    }
    if (m_errorCount > 0 && code == ExitOk)
        code = ExitScriptError;
    Q_EMIT finished(code);
}

} // namespace nxr
