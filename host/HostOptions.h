#pragma once
// The command line of the page host, and its help text.

#include <QMap>
#include <QString>
#include <QStringList>

namespace nxr {

struct HostOptions
{
    QString page;           // folder, .ui file, page.json or http(s) URL
    bool headless = false;  // no user: ends when the page is idle, on host.exit() or --exit-after
    QString screenshotPath; // written when the run ends
    int exitAfterMs = -1;   // end the run after this many milliseconds (-1: never)
    int timeoutMs = 60000;  // headless only: a run still busy after this long fails
    QMap<QString, QString> scriptArgs;
    QStringList trusted;     // --trust: controllers whose pages get the controls
    bool automation = false; // host's input, screenshot and exit functions outside headless runs
    QString screenshotDir;   // host.screenshot() writes only below this folder
    bool overwriteScreenshots = false;
    int screenshotQuota = 100; // host.screenshot() files per run
    int scriptLimitMs = 5000;  // a script running longer without returning is stopped (0: never)
    qint64 maxResponseBytes = qint64(64) << 20; // XMLHttpRequest response bodies
    qint64 cacheQuotaBytes = qint64(1) << 30;   // the controller files cached for one version
    bool watch = false; // load the page again when its files change (on screen, pages on disk)
    bool showHelp = false;
    bool showVersion = false;
    bool listClasses = false;

    // Parses the arguments after the program name. False with *error set on a bad command line.
    static bool parse(const QStringList& arguments, HostOptions* options, QString* error);
    // True when the arguments ask for headless mode (read before the application object exists).
    static bool wantsHeadless(int argc, char** argv);
    static QString helpText(const QString& programName);
};

// Exit codes of a run.
enum HostExitCode : int {
    ExitOk = 0,
    ExitLoadFailed = 1,  // bad command line, page not found or not loadable, screenshot not written
    ExitScriptError = 2, // at least one script error was reported
    ExitTimedOut = 3,    // headless run still busy at --timeout
    ExitUntrusted = 4,   // the page's origin is not a trusted controller
};

} // namespace nxr
