#include "host/PageHostMain.h"

#include "frame/ClassRegistry.h"
#include "host/HostOptions.h"
#include "host/PageHost.h"
#include "host/PageWatcher.h"
#include "reference/DescribeCommand.h"

#include <QApplication>
#include <QFileInfo>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#ifndef NXR_HOST_VERSION
#define NXR_HOST_VERSION "0"
#endif
#ifndef NXR_BUILD_ID
#define NXR_BUILD_ID ""
#endif

namespace nxr {
namespace {

constexpr int kReloadRetryMs = 200;

bool hasFlag(int argc, char** argv, const char* flag)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], flag) == 0)
            return true;
    return false;
}

} // namespace

int runPageHost(int argc, char** argv)
{
    const QString program = QFileInfo(QString::fromLocal8Bit(argc > 0 ? argv[0] : "nexaro-page")).fileName();
    // These need no screen, so they are answered before one is opened.
    if (hasFlag(argc, argv, "-h") || hasFlag(argc, argv, "--help")) {
        std::fputs(HostOptions::helpText(program).toLocal8Bit().constData(), stdout);
        return ExitOk;
    }
    if (hasFlag(argc, argv, "--version")) {
        std::printf("%s %s (controller software %s)\n", program.toLocal8Bit().constData(), NXR_HOST_VERSION,
                    NXR_BUILD_ID);
        return ExitOk;
    }
    if (const int code = reference::describeFromCommandLine(argc, argv); code >= 0)
        return code;
    if (hasFlag(argc, argv, "--list-classes")) {
        for (const QString& name : ClassRegistry::instance().names())
            std::printf("%s\n", name.toLocal8Bit().constData());
        return ExitOk;
    }
    // A bad command line is told before a screen is needed, unless Qt's own options (single dash,
    // such as -platform) are among the arguments; those are known only to the application object.
    QStringList raw;
    bool qtOptions = false;
    for (int i = 1; i < argc; ++i) {
        raw << QString::fromLocal8Bit(argv[i]);
        qtOptions = qtOptions || (raw.last().size() > 1 && raw.last().startsWith(QLatin1Char('-')) &&
                                  !raw.last().startsWith(QLatin1String("--")));
    }
    HostOptions early;
    QString error;
    if (!qtOptions && !HostOptions::parse(raw, &early, &error)) {
        std::fprintf(stderr, "%s: %s\n", program.toLocal8Bit().constData(), error.toLocal8Bit().constData());
        return ExitLoadFailed;
    }
    // Headless without a display: the offscreen platform. Under Xvfb (DISPLAY set) the usual one.
    const bool noDisplay = qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
                           qEnvironmentVariableIsEmpty("DISPLAY") &&
                           qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (noDisplay && HostOptions::wantsHeadless(argc, argv)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (noDisplay && !qtOptions) {
        std::fprintf(stderr,
                     "%s: there is no display to show the page on; use --headless (or run under Xvfb)\n",
                     program.toLocal8Bit().constData());
        return ExitLoadFailed;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(program);
    QApplication::setApplicationVersion(QStringLiteral(NXR_HOST_VERSION));

    HostOptions options;
    if (!HostOptions::parse(QApplication::arguments().mid(1), &options, &error)) {
        std::fprintf(stderr, "%s: %s\n", program.toLocal8Bit().constData(), error.toLocal8Bit().constData());
        return ExitLoadFailed;
    }

    int exitCode = ExitOk;
    {
        std::unique_ptr<PageHost> host;
        std::unique_ptr<PageWatcher> watcher;
        bool replacing = false;
        QApplication::setQuitOnLastWindowClosed(false);
        QObject::connect(&app, &QGuiApplication::lastWindowClosed, &app, [&] {
            if (host && !replacing)
                host->requestExit(ExitOk);
        });
        auto startHost = [&] {
            host = std::make_unique<PageHost>(options);
            QObject::connect(host.get(), &PageHost::finished, &app,
                             [](int code) { QCoreApplication::exit(code); });
            if (watcher)
                QObject::connect(host.get(), &PageHost::pageFilesRead, watcher.get(), &PageWatcher::setFiles);
            // Started from the event loop, so that host.exit() and host.wait() in the page's first
            // lines work on the real loop.
            QTimer::singleShot(0, host.get(), &PageHost::start);
        };
        std::function<void()> reload = [&] {
            if (!host || host->isFinishing())
                return;
            // A dialog of the page, or host.wait(), holds the event loop: the page is replaced
            // once they have returned.
            if (QThread::currentThread()->loopLevel() > 1) {
                QTimer::singleShot(kReloadRetryMs, &app, reload);
                return;
            }
            std::fprintf(stderr, "%s: the page's files changed; loading it again\n",
                         program.toLocal8Bit().constData());
            std::fflush(stderr);
            replacing = true;
            host.reset();
            replacing = false;
            startHost();
        };
        if (options.watch) {
            watcher = std::make_unique<PageWatcher>(options.page);
            QObject::connect(watcher.get(), &PageWatcher::changed, &app, reload);
        }
        startHost();
        exitCode = QApplication::exec();
    }
    return exitCode;
}

} // namespace nxr
