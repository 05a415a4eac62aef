#include "host/PageHost.h"

#include "frame/PageTrust.h"
#include "frame/SyncCall.h"
#include "host/ErrorBanner.h"
#include "host/FormLoader.h"
#include "host/FormResources.h"
#include "host/HostAutomation.h"
#include "host/PageSource.h"
#include "host/ScriptRuntime.h"
#include "host/ScriptTimers.h"
#include "host/ScriptWatchdog.h"
#include "transfer/TransferCache.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJSEngine>
#include <QLabel>
#include <QPixmap>
#include <QTest>
#include <QTextBrowser>
#include <QThread>
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

// The URL of a page named on the command line when it is a web address.
QUrl remotePage(const QString& page)
{
    const QUrl url(page);
    const QString scheme = url.scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ? url : QUrl();
}

// Widget properties a controller's form does not set: they read local files or hand links to the
// desktop's programs.
const QStringList kDroppedRemoteProperties{QStringLiteral("source"), QStringLiteral("openExternalLinks"),
                                           QStringLiteral("openLinks"), QStringLiteral("searchPaths")};

// Schemes whose links would otherwise go to the desktop's programs.
const QStringList kLinkSchemes{
    QStringLiteral("http"),   QStringLiteral("https"),  QStringLiteral("file"), QStringLiteral("ftp"),
    QStringLiteral("mailto"), QStringLiteral("data"),   QStringLiteral("smb"),  QStringLiteral("sftp"),
    QStringLiteral("ssh"),    QStringLiteral("telnet"), QStringLiteral("tel"),  QStringLiteral("vnc"),
    QStringLiteral("rdp"),    QStringLiteral("irc"),    QStringLiteral("news"), QStringLiteral("javascript")};

// The first folder of `path` (itself or above) that exists.
QString existingAncestor(QString path)
{
    while (!QFileInfo::exists(path)) {
        const QString up = QFileInfo(path).absolutePath();
        if (up == path)
            break;
        path = up;
    }
    return path;
}

bool isBelow(const QString& path, const QString& root)
{
    return path == root || path.startsWith(root + QLatin1Char('/'));
}

} // namespace

PageHost::PageHost(const HostOptions& options, QObject* parent) : QObject(parent), m_options(options)
{
    m_engine = std::make_unique<QJSEngine>();
    m_manager = m_network.create(this);
    PageTrust::reset();
    PageTrust::addTrustedControllersFromSettings();
    for (const QString& entry : options.trusted)
        if (!PageTrust::addTrustedController(entry))
            note(QStringLiteral(
                     "--trust %1: not a controller address (http://HOST[:PORT], HOST[:PORT] or HOST)")
                     .arg(entry));
    m_watchdog = new ScriptWatchdog(
        m_engine.get(), options.scriptLimitMs, [this] { return !m_finishing; }, this);
    connect(m_watchdog, &ScriptWatchdog::interrupted, this, [this](int ms) {
        note(QStringLiteral(
                 "a script ran %1 ms without returning and was stopped (limit %2 ms, --script-limit)")
                 .arg(ms)
                 .arg(m_watchdog->limitMs()));
    });
    TransferCache::setQuotaBytes(options.cacheQuotaBytes);
    installUrlHandlers();
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
    callbacks.screenshot = [this](const QString& path, QWidget* widget, QString* error) {
        return writeScriptScreenshot(path, widget, error);
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
    m_watchdog->stop();
    removeUrlHandlers();
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
    // Script errors come from the engine on the host's own thread; messages of worker threads (an
    // image decoder's warning) pass on untouched.
    if (type == QtWarningMsg && g_current && QThread::currentThread() == g_current->thread() &&
        g_current->takeEngineWarning(context, message))
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
    const QUrl remote = remotePage(m_options.page);
    if (remote.isValid() && !PageTrust::isTrustedOrigin(remote)) {
        refuseUntrusted(remote);
        return;
    }
    m_source->load(m_options.page);
}

void PageHost::refuseUntrusted(const QUrl& url)
{
    const QString origin = PageTrust::originOf(url);
    note(QStringLiteral("%1 is not a trusted controller: its page is not run. Trust the controller with "
                        "--trust %1, or list it in the user settings (%2/%3)")
             .arg(origin, PageTrust::kSettingsSection, PageTrust::kSettingsKey));
    requestExit(ExitUntrusted);
}

void PageHost::installUrlHandlers()
{
    for (const QString& scheme : kLinkSchemes) {
        QDesktopServices::setUrlHandler(scheme, this, "refuseUrl");
        m_urlSchemes << scheme;
    }
}

void PageHost::removeUrlHandlers()
{
    for (const QString& scheme : std::as_const(m_urlSchemes))
        QDesktopServices::unsetUrlHandler(scheme);
    m_urlSchemes.clear();
}

void PageHost::refuseUrl(const QUrl& url)
{
    note(
        QStringLiteral("the page asked to open %1 with a program of the desktop; pages cannot start programs")
            .arg(url.toString(QUrl::RemoveUserInfo)));
}

void PageHost::loadFailed(const QString& message)
{
    if (m_options.watch && !m_finishing) {
        // The author is at work on the page: say what is wrong, in a window, until it changes.
        note(QStringLiteral("cannot load the page: %1 (waiting for a change to its files, --watch)")
                 .arg(message));
        auto* text =
            new QLabel(QStringLiteral("The page could not be loaded:\n\n%1\n\nIt is loaded again when its "
                                      "files change.")
                           .arg(message));
        text->setObjectName(QStringLiteral("host_LoadError"));
        text->setWindowTitle(
            QStringLiteral("%1: the page could not be loaded").arg(QCoreApplication::applicationName()));
        text->setTextFormat(Qt::PlainText);
        text->setWordWrap(true);
        text->setMargin(16);
        text->setMinimumWidth(420);
        m_window.reset(text);
        text->show();
        return;
    }
    note(QStringLiteral("cannot load the page: %1").arg(message));
    requestExit(ExitLoadFailed);
}

void PageHost::onLoaded(const PageFiles& files)
{
    if (m_finishing)
        return;
    // A redirect may have led the page elsewhere: its final address is the one trusted or not.
    if (!PageTrust::isTrustedOrigin(files.pageUrl)) {
        refuseUntrusted(files.pageUrl);
        return;
    }
    // A controller's page brings its form and scripts from trusted controllers only.
    if (!files.pageUrl.isLocalFile()) {
        QList<QUrl> parts{files.formUrl};
        for (const PageScript& script : files.scripts)
            parts << script.url;
        for (const QUrl& part : std::as_const(parts)) {
            if (part.isLocalFile() || !PageTrust::isTrustedOrigin(part)) {
                refuseUntrusted(part);
                return;
            }
        }
    }
    PageTrust::setPage(files.pageUrl);
    const bool remote = !files.pageUrl.isLocalFile();
    if (!remote) {
        QStringList read{files.pageUrl.toLocalFile(), files.formUrl.toLocalFile()};
        for (const PageScript& script : files.scripts)
            read << script.url.toLocalFile();
        read.removeDuplicates();
        Q_EMIT pageFilesRead(read);
    }
    FormLoader loader;
    if (remote)
        loader.setDroppedProperties(kDroppedRemoteProperties);
    QByteArray form = files.form;
    if (!files.workingDirectory.isEmpty()) {
        loader.setWorkingDirectory(QDir(files.workingDirectory));
    } else if (remote) {
        // A controller's form reads its pictures from a private folder, fetched from beside it;
        // no name in it reaches a file of this machine.
        for (const QString& text : files.notes)
            note(text);
        QMap<QString, QString> local;
        if (!files.resources.isEmpty() && m_resourceDir.isValid()) {
            int n = 0;
            for (auto it = files.resources.cbegin(); it != files.resources.cend(); ++it) {
                const QString path = m_resourceDir.filePath(
                    QStringLiteral("picture%1.%2").arg(++n).arg(QFileInfo(QUrl(it.key()).path()).suffix()));
                QFile out(path);
                if (out.open(QIODevice::WriteOnly) && out.write(it.value()) == it.value().size())
                    local.insert(it.key(), path);
            }
        }
        form = FormResources::rewritten(form, local);
        loader.setWorkingDirectory(QDir(m_resourceDir.path()));
    }
    QWidget* root = loader.loadForm(form);
    for (const QString& message : loader.messages())
        note(message);
    if (!root) {
        loadFailed(QStringLiteral("%1 is not a usable form: %2")
                       .arg(PageSource::displayUrl(files.formUrl), loader.errorString()));
        return;
    }
    m_window.reset(root);
    if (remote) {
        // Links of a controller's page never leave the page.
        QList<QWidget*> widgets = root->findChildren<QWidget*>();
        widgets << root;
        for (QWidget* w : std::as_const(widgets)) {
            if (auto* label = qobject_cast<QLabel*>(w))
                label->setOpenExternalLinks(false);
            if (auto* browser = qobject_cast<QTextBrowser*>(w)) {
                browser->setOpenExternalLinks(false);
                browser->setOpenLinks(false);
            }
        }
    }
    if (!files.title.isEmpty())
        root->setWindowTitle(files.title);
    else if (root->windowTitle().isEmpty())
        root->setWindowTitle(QFileInfo(files.formUrl.path()).completeBaseName());
    m_runtime->setPageWindow(root);
    m_runtime->setRestricted(remote);
    RequestPolicy policy;
    policy.pageUrl = files.pageUrl;
    policy.localPage = !remote;
    policy.maxResponseBytes = m_options.maxResponseBytes;
    m_runtime->setNetwork(m_manager, policy);
    m_automation->setPageWindow(root);
    m_automation->setPageUrl(files.pageUrl.toString(QUrl::RemoveUserInfo));

    root->show();
    if (root->windowHandle() && !QTest::qWaitForWindowExposed(root->windowHandle(), kExposeWaitMs))
        note(QStringLiteral("the page window was not shown on the screen within %1 ms").arg(kExposeWaitMs));
    if (m_finishing)
        return;

    m_runtime->exposeGlobal(kRuntimeGlobal, m_runtime);
    m_scriptNames.insert(engineUrl(kBootstrapFile), kBootstrapFile);
    const QJSValue boot = m_engine->evaluate(ScriptRuntime::bootstrapScript(kRuntimeGlobal), kBootstrapFile);
    m_engine->globalObject().deleteProperty(kRuntimeGlobal);
    if (boot.isError()) {
        reportError(boot, QString());
        loadFailed(QStringLiteral("the host's script did not start"));
        return;
    }
    m_runtime->setHelpers(boot);
    QJSValue window = m_runtime->scriptValue(root);
    if (window.isUndefined())
        window = QJSValue(QJSValue::NullValue);
    // Input, screenshots and the end of the run are for runs without a user, or when asked for.
    const bool automation = m_options.headless || m_options.automation;
    m_engine->globalObject().setProperty(QStringLiteral("host"),
                                         m_runtime->hostValue(m_automation, automation, window));
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
        if (!m_runtime->exposeGlobal(name, widget))
            note(QStringLiteral("%1 (%2) is not scriptable from a controller's page; it is not given to "
                                "the script")
                     .arg(name, created.className));
    }
}

void PageHost::runScripts(const PageFiles& files)
{
    for (const PageScript& script : files.scripts)
        m_scriptNames.insert(engineUrl(evaluationName(script.url)), PageSource::displayUrl(script.url));
    if (!files.scripts.isEmpty())
        m_firstScript = engineUrl(evaluationName(files.scripts.first().url));
    m_watchdog->start();
    for (const PageScript& script : files.scripts) {
        if (m_finishing)
            return;
        const QJSValue result = m_engine->evaluate(script.text, evaluationName(script.url), 1);
        if (result.isError())
            reportError(result, engineUrl(evaluationName(script.url)));
        m_watchdog->resume();
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
    // A stopped script has returned with this error: the next one may run.
    m_watchdog->resume();
    if (message == QLatin1String("Error: Interrupted")) {
        reportError(file, line,
                    QStringLiteral("Error: stopped, it ran longer than %1 ms (--script-limit)")
                        .arg(m_watchdog->limitMs()));
        return;
    }
    ++m_errorCount;
    const QString where = m_scriptNames.value(file, file);
    const QString text = QStringLiteral("%1:%2: %3")
                             .arg(where.isEmpty() ? QStringLiteral("<script>") : where)
                             .arg(line)
                             .arg(message);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stderr);
    // On screen the author sees it in the page's window too; a run without a user has the console.
    if (m_window && !m_options.headless) {
        if (!m_banner)
            m_banner = new ErrorBanner(m_window.get());
        m_banner->showError(text);
    }
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

bool PageHost::writeScreenshot(const QString& path, QWidget* widget, QString* error)
{
    if (!widget)
        widget = m_window.get();
    if (!widget) {
        *error = QStringLiteral("there is no page window");
        return false;
    }
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath())) {
        *error =
            QStringLiteral("cannot create the folder %1").arg(QDir::toNativeSeparators(info.absolutePath()));
        return false;
    }
    const QImage image = widget->grab().toImage();
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

bool PageHost::writeScriptScreenshot(const QString& path, QWidget* widget, QString* error)
{
    if (m_options.screenshotDir.isEmpty()) {
        *error = QStringLiteral("no folder for screenshots was named on the command line (--screenshot-dir)");
        return false;
    }
    if (m_screenshotsTaken >= m_options.screenshotQuota) {
        *error = QStringLiteral("the run's %1 screenshots are taken (--screenshot-quota)")
                     .arg(m_options.screenshotQuota);
        return false;
    }
    if (!QDir().mkpath(m_options.screenshotDir)) {
        *error = QStringLiteral("cannot create the folder %1")
                     .arg(QDir::toNativeSeparators(m_options.screenshotDir));
        return false;
    }
    const QString root = QFileInfo(m_options.screenshotDir).canonicalFilePath();
    const QString target = QDir::cleanPath(QDir(root).absoluteFilePath(path));
    const QString folder = QFileInfo(target).absolutePath();
    // Below the folder by name, and by where its existing part really leads (links included).
    if (!isBelow(folder, root) || target == root ||
        !isBelow(QFileInfo(existingAncestor(folder)).canonicalFilePath(), root)) {
        *error = QStringLiteral("%1 is outside the screenshot folder").arg(path);
        return false;
    }
    const QFileInfo info(target);
    if (info.isSymLink() || (info.exists() && !m_options.overwriteScreenshots)) {
        *error = QStringLiteral("%1 exists; it is not replaced (--overwrite-screenshots)").arg(path);
        return false;
    }
    if (!writeScreenshot(target, widget, error))
        return false;
    ++m_screenshotsTaken;
    return true;
}

void PageHost::finishNow()
{
    int code = m_exitCode;
    if (!m_options.screenshotPath.isEmpty()) {
        QString error;
        if (!writeScreenshot(m_options.screenshotPath, nullptr, &error)) {
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
