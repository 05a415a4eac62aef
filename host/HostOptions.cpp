#include "host/HostOptions.h"

#include <cstring>

namespace nxr {
namespace {

bool readMilliseconds(const QString& option, const QString& text, int* out, QString* error)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 0) {
        *error = QStringLiteral("%1 needs a number of milliseconds (0 or more), got '%2'").arg(option, text);
        return false;
    }
    *out = value;
    return true;
}

} // namespace

bool HostOptions::parse(const QStringList& arguments, HostOptions* options, QString* error)
{
    HostOptions result;
    for (int i = 0; i < arguments.size(); ++i) {
        QString arg = arguments.at(i);
        QString inlineValue;
        bool hasInline = false;
        if (arg.startsWith(QLatin1String("--")) && arg.contains(QLatin1Char('='))) {
            const int eq = arg.indexOf(QLatin1Char('='));
            inlineValue = arg.mid(eq + 1);
            arg = arg.left(eq);
            hasInline = true;
        }
        auto value = [&](QString* out) {
            if (hasInline) {
                *out = inlineValue;
                return true;
            }
            if (i + 1 >= arguments.size()) {
                *error = QStringLiteral("%1 needs a value").arg(arg);
                return false;
            }
            *out = arguments.at(++i);
            return true;
        };
        QString v;
        if (arg == QLatin1String("-h") || arg == QLatin1String("--help")) {
            result.showHelp = true;
        } else if (arg == QLatin1String("--version")) {
            result.showVersion = true;
        } else if (arg == QLatin1String("--list-classes")) {
            result.listClasses = true;
        } else if (arg == QLatin1String("--headless")) {
            result.headless = true;
        } else if (arg == QLatin1String("--screenshot")) {
            if (!value(&v))
                return false;
            if (v.isEmpty()) {
                *error = QStringLiteral("--screenshot needs a file name");
                return false;
            }
            result.screenshotPath = v;
        } else if (arg == QLatin1String("--exit-after")) {
            if (!value(&v) || !readMilliseconds(arg, v, &result.exitAfterMs, error))
                return false;
        } else if (arg == QLatin1String("--timeout")) {
            if (!value(&v) || !readMilliseconds(arg, v, &result.timeoutMs, error))
                return false;
        } else if (arg == QLatin1String("--trust")) {
            if (!value(&v))
                return false;
            if (v.trimmed().isEmpty()) {
                *error = QStringLiteral("--trust needs a controller address (http://HOST[:PORT] or HOST)");
                return false;
            }
            result.trusted << v.trimmed();
        } else if (arg == QLatin1String("--watch")) {
            result.watch = true;
        } else if (arg == QLatin1String("--automation")) {
            result.automation = true;
        } else if (arg == QLatin1String("--screenshot-dir")) {
            if (!value(&v))
                return false;
            if (v.isEmpty()) {
                *error = QStringLiteral("--screenshot-dir needs a folder");
                return false;
            }
            result.screenshotDir = v;
        } else if (arg == QLatin1String("--overwrite-screenshots")) {
            result.overwriteScreenshots = true;
        } else if (arg == QLatin1String("--screenshot-quota")) {
            if (!value(&v))
                return false;
            bool ok = false;
            result.screenshotQuota = v.toInt(&ok);
            if (!ok || result.screenshotQuota < 0) {
                *error = QStringLiteral("--screenshot-quota needs a number of files, got '%1'").arg(v);
                return false;
            }
        } else if (arg == QLatin1String("--script-limit")) {
            if (!value(&v) || !readMilliseconds(arg, v, &result.scriptLimitMs, error))
                return false;
        } else if (arg == QLatin1String("--max-response")) {
            if (!value(&v))
                return false;
            bool ok = false;
            const qint64 mib = v.toLongLong(&ok);
            if (!ok || mib <= 0 || mib > 4096) {
                *error = QStringLiteral("--max-response needs a size in MiB (1 to 4096), got '%1'").arg(v);
                return false;
            }
            result.maxResponseBytes = mib << 20;
        } else if (arg == QLatin1String("--cache-quota")) {
            if (!value(&v))
                return false;
            bool ok = false;
            const qint64 mib = v.toLongLong(&ok);
            if (!ok || mib <= 0 || mib > (qint64(1) << 20)) {
                *error = QStringLiteral("--cache-quota needs a size in MiB (1 or more), got '%1'").arg(v);
                return false;
            }
            result.cacheQuotaBytes = mib << 20;
        } else if (arg == QLatin1String("--script-arg")) {
            if (!value(&v))
                return false;
            const int eq = v.indexOf(QLatin1Char('='));
            if (eq <= 0) {
                *error = QStringLiteral("--script-arg needs KEY=VALUE, got '%1'").arg(v);
                return false;
            }
            result.scriptArgs.insert(v.left(eq), v.mid(eq + 1));
        } else if (arg.startsWith(QLatin1Char('-')) && arg.size() > 1) {
            *error = QStringLiteral("unknown option %1 (see --help)").arg(arg);
            return false;
        } else if (result.page.isEmpty()) {
            result.page = arguments.at(i);
        } else {
            *error = QStringLiteral("only one page can be given (got '%1' and '%2')")
                         .arg(result.page, arguments.at(i));
            return false;
        }
    }
    if (result.page.isEmpty() && !result.showHelp && !result.showVersion && !result.listClasses) {
        *error = QStringLiteral("no page given (see --help)");
        return false;
    }
    if (result.watch && result.headless) {
        *error = QStringLiteral("--watch is for runs on screen; a headless run ends by itself");
        return false;
    }
    if (result.watch && (result.page.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
                         result.page.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))) {
        *error = QStringLiteral("--watch works with pages on disk only");
        return false;
    }
    *options = result;
    return true;
}

bool HostOptions::wantsHeadless(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--headless") == 0)
            return true;
    return false;
}

QString HostOptions::helpText(const QString& programName)
{
    return QStringLiteral(
               "Usage: %1 [options] PAGE\n"
               "\n"
               "Runs a page of NexaroControls: a Qt Designer form (.ui) that places the controls, and a\n"
               "JavaScript file that drives them.\n"
               "\n"
               "PAGE is one of:\n"
               "  FOLDER        a folder holding page.json, or else exactly one .ui file and at most one .js "
               "file\n"
               "  FILE.ui       a form; the script is FILE.js beside it, when there is one\n"
               "  page.json     a page description (below)\n"
               "  URL           an http(s) URL of a page.json, of a .ui (its script is the same URL ending\n"
               "                in .js, which must exist), or of a folder (URL/page.json is fetched).\n"
               "                Remote files go through the library's URL cache and cookie jar. A remote\n"
               "                page runs only when its origin is a trusted controller (--trust).\n"
               "page.json:  {\"form\": \"my.ui\", \"script\": \"my.js\" or [\"a.js\", \"b.js\"], \"title\": "
               "\"Window title\"}\n"
               "            file names are relative to page.json; \"script\" and \"title\" may be left out.\n"
               "\n"
               "Options:\n"
               "  --headless            run without a user: uses the offscreen platform unless a display\n"
               "                        (e.g. Xvfb) is there; the run ends when the page is idle (script "
               "done,\n"
               "                        no timers, no requests), on host.exit(), or at --exit-after\n"
               "  --screenshot FILE     write a PNG of the page window when the run ends\n"
               "  --exit-after MS       end the run MS milliseconds after the page has loaded\n"
               "  --timeout MS          headless: fail (exit code 3) when still busy after MS ms (default "
               "60000)\n"
               "  --script-arg KEY=VAL  pass a value to the script as host.args.KEY (repeatable)\n"
               "  --trust URL           trust the controller at URL (http://HOST[:PORT], HOST[:PORT] or "
               "HOST):\n"
               "                        its pages get the controls (repeatable; also the user setting\n"
               "                        Security/TrustedControllers)\n"
               "  --automation          give the script host's input, screenshot and exit functions in a\n"
               "                        run on screen (headless runs always have them)\n"
               "  --watch               load the page again whenever its form, scripts or page.json change\n"
               "                        (on screen, pages on disk; errors stay in the window meanwhile)\n"
               "  --screenshot-dir DIR  host.screenshot(file) writes only below DIR (without it, not at "
               "all)\n"
               "  --overwrite-screenshots  host.screenshot() may replace existing files\n"
               "  --screenshot-quota N  at most N host.screenshot() files per run (default 100)\n"
               "  --script-limit MS     stop a script that runs MS ms without returning (default 5000, 0: "
               "never)\n"
               "  --max-response MIB    refuse XMLHttpRequest responses larger than MIB MiB (default 64)\n"
               "  --cache-quota MIB     fetch no more controller files once the cache folder holds MIB MiB\n"
               "                        (default 1024)\n"
               "  --list-classes        list the classes a script can create, and exit\n"
               "  --describe CLASS|all  print properties, methods, events and SetProperty keys, and exit\n"
               "                        (--format text|markdown, --output FILE)\n"
               "  --version             show the version, and exit\n"
               "  -h, --help            show this help, and exit\n"
               "\n"
               "The script sees:\n"
               "  every control of the form by its object name (objects not safe for scripting are left "
               "out)\n"
               "  createObject(\"NXRInfo\") or createObject(\"NexaroControls.NXRInfo\"): a new object of a\n"
               "      registered class (null when the class is not safe for scripting); a control class "
               "takes\n"
               "      an optional parent widget: createObject(\"NXRStatusBar\", fra_Bottom)\n"
               "  obj.Property, obj.Method(...), obj.OnEvent.connect(function (...) { ... })\n"
               "  XMLHttpRequest, setTimeout, setInterval, clearTimeout, clearInterval, "
               "console.log/warn/error\n"
               "  host.click(w, x, y[, button[, mods]]), host.doubleClick(w, x, y[, button[, mods]]),\n"
               "  host.press(w, x, y[, button[, mods]]), host.move(w, x, y[, mods]),\n"
               "  host.release(w, x, y[, button[, mods]]), host.drag(w, x1, y1, x2, y2[, button[, mods]]),\n"
               "  host.wheel(w, x, y, steps[, mods]), host.key(w, \"Ctrl+A\"), host.type(w, \"text\"),\n"
               "  host.tap(w, x, y), host.touch(w, \"press\"|\"move\"|\"release\", [[x, y], ...]),\n"
               "  host.touchDrag(w, [[x, y], ...], [[x, y], ...]), host.child(w, \"fra_Bar/cmd_OK\"),\n"
               "  host.windows(), host.findWindow(\"name or title\"), host.screenshot(\"file.png\"[, w]),\n"
               "  host.exit(code), host.wait(ms)  (all but wait only headless or with --automation)\n"
               "  host.args, host.headless, host.pageUrl, host.window\n"
               "      (x, y in the widget's own pixels; button \"left\", \"right\" or \"middle\"; mods the "
               "keys\n"
               "       held, \"Shift\", \"Ctrl\", \"Alt\", \"Meta\" joined by +, none held afterwards;\n"
               "       positive wheel steps turn the wheel away from the user)\n"
               "\n"
               "Script errors are printed as FILE:LINE: MESSAGE, and on screen shown atop the page window.\n"
               "Exit codes: 0 done, 1 page not loadable or bad command line or screenshot not written,\n"
               "  2 script error, 3 headless run timed out, 4 page from an untrusted origin, N from "
               "host.exit(N).\n")
        .arg(programName);
}

} // namespace nxr
