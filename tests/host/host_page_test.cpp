// End to end: pages run headless in a page host process (nexaro-page with the test classes
// registered), checked through their output, exit code and screenshots.

#include "PageRunner.h"
#include "TestClasses.h"
#include "TestHttpServer.h"

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

const QByteArray kPad = PageRunner::item("TestClickPad", "ctl_Pad");

QString lineStartingWith(const PageRun& run, const QString& prefix)
{
    for (const QString& line : run.outLines())
        if (line.startsWith(prefix))
            return line;
    return QString();
}

#define EXPECT_RUN(run, code)                                                                                \
    ASSERT_FALSE((run).timedOut);                                                                            \
    ASSERT_FALSE((run).crashed) << qPrintable((run).err);                                                    \
    EXPECT_EQ((run).exitCode, (code)) << "stdout:\n"                                                         \
                                      << qPrintable((run).out) << "stderr:\n"                                \
                                      << qPrintable((run).err)

} // namespace

TEST(HostPage, ObjectsAreCreatedByClassNameAndScripted)
{
    PageRunner runner;
    const PageRun run = runner.runPage(QStringLiteral("objects"), PageRunner::form(300, 200, {}), R"JS(
var a = createObject("TestCounter");
var b = createObject("NexaroControls.TestCounter");
console.log("distinct " + (a !== b) + " " + typeof a.Add);
a.Count = 5;
console.log("count " + a.Count);
a.SetProperty("Count", "12");
console.log("keyed " + a.GetProperty("Count") + " " + a.Count);
var errors = 0;
a.OnError.connect(function () { errors++; });
a.SetProperty("Count", "abc");
console.log("bad " + a.Count + " " + errors + " " + a.LastErrorString);
a.GetProperty("Nope");
console.log("unknown " + errors + " " + a.GetProperty("LastErrorString"));
a.OnChanged.connect(function (n) { console.log("changed " + n); });
a.Add(3);
b.Count = 1;
console.log("b " + b.Count + " a " + a.Count);
var pad = createObject("TestClickPad");
pad.Caption = "cap";
pad.OnButtonClicked.connect(function (name) { console.log("event " + name); });
pad.Fire("Snap");
console.log("pad " + pad.GetProperty("Caption") + " " + pad.visible);
try { createObject("NoSuchClass"); } catch (e) { console.log("no class: " + e.message); }
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(),
              (QStringList{
                  "distinct true function",
                  "count 5",
                  "keyed 12 12",
                  "bad 12 1 Error in SetProperty(Count): Type mismatch",
                  "unknown 2 Error: unknown property (Nope)",
                  "changed 15",
                  "b 1 a 15",
                  "event Snap",
                  "pad cap true",
                  "no class: createObject: no class named \"NoSuchClass\" (see --list-classes)",
              }));
}

TEST(HostPage, SynthesizedInputReachesTheControlUnderThePoint)
{
    PageRunner runner;
    const QByteArray items =
        PageRunner::item("QLineEdit", "txt_Name") + PageRunner::item("QPushButton", "cmd_Ok") + kPad;
    const PageRun run = runner.runPage(QStringLiteral("input"), PageRunner::form(400, 300, items), R"JS(
var okClicks = 0;
cmd_Ok.clicked.connect(function () { okClicks++; });
var padEvents = [];
ctl_Pad.OnButtonClicked.connect(function (name) { padEvents.push(name); });
host.click(cmd_Ok, 5, 5);
host.click(cmd_Ok, 6, 6);
host.click(ctl_Pad, 10, 20, "right");
host.doubleClick(ctl_Pad, 30, 30);
host.drag(ctl_Pad, 40, 10, 80, 50);
host.wheel(ctl_Pad, 15, 25, -2);
host.key(ctl_Pad, "Ctrl+S");
host.key(txt_Name, "A");
host.type(txt_Name, "bc");
host.key(txt_Name, "Backspace");
console.log("ok " + okClicks);
console.log("pad " + ctl_Pad.Log);
console.log("events " + padEvents.join(","));
console.log("text " + txt_Name.text);
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(lineStartingWith(run, "ok "), "ok 2");
    EXPECT_EQ(lineStartingWith(run, "events "), "events pad,pad,pad,pad");
    EXPECT_EQ(lineStartingWith(run, "text "), "text Ab");
    // Positions arrive in the pad's own coordinates although it sits below two other widgets.
    const QStringList pad = lineStartingWith(run, "pad ").mid(4).split(';');
    const QStringList expected{
        "press right 10,20", "release right 10,20", "press left 30,30", "release left 30,30",
        "double left 30,30", "release left 30,30",  "press left 40,10", "drag 45,15",
        "drag 50,20",        "drag 55,25",          "drag 60,30",       "drag 65,35",
        "drag 70,40",        "drag 75,45",          "drag 80,50",       "release left 80,50",
        "wheel -120 15,25",  "wheel -120 15,25",
    };
    ASSERT_GE(pad.size(), expected.size()) << qPrintable(pad.join('\n'));
    EXPECT_EQ(pad.mid(0, expected.size()), expected);
    EXPECT_TRUE(pad.mid(expected.size()).contains("key S '' ctrl")) << qPrintable(pad.join('\n'));
}

TEST(HostPage, ObjectsNotSafeForScriptingAreKeptFromTheScript)
{
    PageRunner runner;
    const QByteArray items = PageRunner::item("TestUnsafeWidget", "ctl_Unsafe") + kPad;
    const PageRun run = runner.runPage(QStringLiteral("unsafe"), PageRunner::form(300, 200, items), R"JS(
console.log("unsafe " + typeof ctl_Unsafe + " pad " + typeof ctl_Pad);
console.log("object " + createObject("TestUnsafeObject"));
console.log("control " + createObject("NexaroControls.TestUnsafeWidget"));
console.log("safe " + (createObject("TestCounter") !== null));
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(),
              (QStringList{"unsafe undefined pad object", "object null", "control null", "safe true"}));
    EXPECT_TRUE(run.err.contains("ctl_Unsafe (TestUnsafeWidget) is not safe for scripting"))
        << qPrintable(run.err);
    EXPECT_TRUE(run.err.contains("(TestUnsafeObject) is not safe for scripting")) << qPrintable(run.err);
    EXPECT_TRUE(run.err.contains("(NexaroControls.TestUnsafeWidget) is not safe for scripting"))
        << qPrintable(run.err);
}

TEST(HostPage, ScriptErrorsNameFileAndLineAndFailTheRun)
{
    PageRunner runner;
    const QByteArray ui = PageRunner::form(300, 200, kPad);

    const PageRun top =
        runner.runPage(QStringLiteral("top"), ui,
                       "console.log(\"before\");\nvar x = 1;\nmissingFunction();\nconsole.log(\"after\");\n");
    EXPECT_RUN(top, 2);
    EXPECT_TRUE(
        top.err.contains(runner.path("top/page.js") + ":3: ReferenceError: missingFunction is not defined"))
        << qPrintable(top.err);
    EXPECT_EQ(top.outLines(), QStringList{"before"});

    const PageRun later =
        runner.runPage(QStringLiteral("later"), ui, R"JS(ctl_Pad.OnButtonClicked.connect(function (name) {
  throw new Error("handler failed " + name);
});
setTimeout(function () {
  null.property;
}, 10);
ctl_Pad.Fire("Snap");
console.log("still running");
)JS");
    EXPECT_RUN(later, 2);
    EXPECT_TRUE(later.err.contains(runner.path("later/page.js") + ":2: Error: handler failed Snap"))
        << qPrintable(later.err);
    EXPECT_TRUE(later.err.contains(runner.path("later/page.js") + ":5: TypeError")) << qPrintable(later.err);
    EXPECT_EQ(later.outLines(), QStringList{"still running"});

    const PageRun syntax = runner.runPage(QStringLiteral("syntax"), ui, "var ok = 1;\nvar broken = ;\n");
    EXPECT_RUN(syntax, 2);
    EXPECT_TRUE(syntax.err.contains(runner.path("syntax/page.js") + ":2: SyntaxError"))
        << qPrintable(syntax.err);

    const PageRun wrapped =
        runner.runPage(QStringLiteral("wrapped"), ui, "var a = 1;\nsetTimeout(\"code\", 5);\n");
    EXPECT_RUN(wrapped, 2);
    EXPECT_TRUE(wrapped.err.contains(runner.path("wrapped/page.js") + ":2: TypeError: setTimeout"))
        << qPrintable(wrapped.err);
}

TEST(HostPage, ScreenshotIsAPngOfThePageWindow)
{
    PageRunner runner;
    const QString shot = runner.path("out/shot.png");
    const PageRun run = runner.runPage(QStringLiteral("shot"), PageRunner::form(300, 220, kPad),
                                       "host.screenshot(\"mid.png\");\n", {"--screenshot", shot});
    EXPECT_RUN(run, 0);
    EXPECT_TRUE(run.out.contains("screenshot written to " + shot + " (300x220)")) << qPrintable(run.out);

    for (const QString& file : {shot, runner.path("mid.png")}) {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << qPrintable(file);
        EXPECT_TRUE(f.read(8) == QByteArray("\x89PNG\r\n\x1a\n", 8)) << qPrintable(file);
        const QImage image(file);
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), QSize(300, 220));
        // The pad fills the layout: its colour away from its white diagonal, the window's own
        // background at the very edge.
        EXPECT_EQ(image.pixel(60, 150) | 0xff000000, TestClickPad::kColor);
        EXPECT_NE(image.pixel(1, 1) | 0xff000000, TestClickPad::kColor);
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                colours.insert(image.pixel(x, y));
        EXPECT_GE(colours.size(), 3);
    }
}

TEST(HostPage, XmlHttpRequestTalksToAServer)
{
    TestHttpServer server;
    server.set("/data", {200, "text/plain", "hello data"});
    server.set("/json", {200, "application/json", R"({"n": 5})"});
    PageRunner runner;
    const PageRun run = runner.runPage(QStringLiteral("xhr"), PageRunner::form(300, 200, {}), R"JS(
var base = host.args.base;
function get(path, done) {
  var x = new XMLHttpRequest();
  x.onreadystatechange = function () { if (x.readyState === 4) done(x); };
  x.open("GET", base + path);
  x.send();
}
get("/data", function (x) {
  console.log("data " + x.status + " " + x.responseText);
  get("/missing", function (y) {
    console.log("missing " + y.status);
    var p = new XMLHttpRequest();
    p.open("POST", base + "/echo");
    p.setRequestHeader("X-Test", "yes");
    p.onload = function () {
      console.log("echo " + p.status + " " + p.responseText);
      get("/json", function (z) { console.log("json " + JSON.parse(z.responseText).n); });
    };
    p.send("payload");
  });
});
)JS",
                                       {"--script-arg", "base=" + server.url("")});
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(),
              (QStringList{"data 200 hello data", "missing 404", "echo 200 POST yes payload", "json 5"}));
    EXPECT_EQ(server.requests().size(), 4);
}

TEST(HostPage, RemotePageIsFetchedWithItsScript)
{
    TestHttpServer server;
    server.set("/site/page.json",
               {200, "application/json", R"({"form": "p.ui", "script": ["p.js"], "title": "Remote"})"});
    server.set("/site/p.ui",
               {200, "text/xml", PageRunner::form(200, 120, PageRunner::item("QLabel", "lbl_Text"))});
    server.set("/site/p.js", {200, "text/javascript", R"JS(
lbl_Text.text = "from the server";
var x = new XMLHttpRequest();
x.onload = function () { console.log(host.window.windowTitle + ": " + lbl_Text.text + ", " + x.responseText); };
x.open("GET", "data.txt");
x.send();
)JS"});
    server.set("/site/data.txt", {200, "text/plain", "relative data"});
    PageRunner runner;
    for (const QString& page : {server.url("/site/"), server.url("/site/page.json")}) {
        const PageRun run = runner.run({"--headless", "--timeout", "20000", page});
        EXPECT_RUN(run, 0);
        EXPECT_EQ(run.outLines(), QStringList{"Remote: from the server, relative data"}) << qPrintable(page);
    }
    // A form URL brings the script of the same name; the title then comes from the form.
    const PageRun byForm = runner.run({"--headless", "--timeout", "20000", server.url("/site/p.ui")});
    EXPECT_RUN(byForm, 0);
    EXPECT_EQ(byForm.outLines(), QStringList{"p: from the server, relative data"});

    // The page's files went through the library's URL cache (in the runs' own cache folder).
    QByteArray cached;
    QDirIterator it(runner.path("cache/NexaroControls/urlcache"), {"*.d"}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile f(it.next());
        if (f.open(QIODevice::ReadOnly))
            cached += f.readAll();
    }
    EXPECT_TRUE(cached.contains(server.url("/site/p.ui").toLatin1())) << cached.size();
    EXPECT_TRUE(cached.contains(server.url("/site/data.txt").toLatin1())) << cached.size();

    const PageRun missing = runner.run({"--headless", server.url("/nowhere/")});
    EXPECT_RUN(missing, 1);
    EXPECT_TRUE(missing.err.contains("cannot fetch " + server.url("/nowhere/page.json") + ": HTTP 404"))
        << qPrintable(missing.err);
}

TEST(HostPage, TimersRunInDueOrderAndWaitKeepsTheLoopRunning)
{
    PageRunner runner;
    const QByteArray ui = PageRunner::form(200, 100, {});
    const PageRun order = runner.runPage(QStringLiteral("order"), ui, R"JS(
var log = [];
setTimeout(function (a, b) { log.push("t30:" + a + b); }, 30, "x", "y");
setTimeout(function () { log.push("t10a"); }, 10);
var cancelled = setTimeout(function () { log.push("never"); }, 5);
setTimeout(function () { log.push("t10b"); }, 10);
setTimeout(function () { log.push("t0"); setTimeout(function () { log.push("t0-inner"); }, 0); }, 0);
clearTimeout(cancelled);
var n = 0;
var iv = setInterval(function () { n++; log.push("iv" + n); if (n === 3) clearInterval(iv); }, 40);
log.push("sync");
setTimeout(function () { console.log(log.join(" ")); }, 400);
)JS");
    EXPECT_RUN(order, 0);
    EXPECT_EQ(order.out.trimmed(), "sync t0 t0-inner t10a t10b t30:xy iv1 iv2 iv3");

    const PageRun waiting = runner.runPage(QStringLiteral("wait"), ui, R"JS(
var log = [];
setTimeout(function () { log.push("timer"); }, 20);
log.push("before");
host.wait(150);
log.push("after");
console.log(log.join(" "));
)JS");
    EXPECT_RUN(waiting, 0);
    EXPECT_EQ(waiting.out.trimmed(), "before timer after");

    // Timers that fall due together (the script kept the loop busy) still run by due time.
    const PageRun blocked = runner.runPage(QStringLiteral("blocked"), ui, R"JS(
var log = [];
setTimeout(function () { log.push("set-first-due-later"); }, 30);
setTimeout(function () { log.push("set-second-due-sooner"); }, 10);
setTimeout(function () { log.push("set-third-due-soonest"); }, 0);
var until = Date.now() + 80;
while (Date.now() < until) {}
setTimeout(function () { console.log(log.join(" ")); }, 0);
)JS");
    EXPECT_RUN(blocked, 0);
    EXPECT_EQ(blocked.out.trimmed(), "set-third-due-soonest set-second-due-sooner set-first-due-later");
}

TEST(HostPage, RunEndsByExitIdleTimeLimitOrTimeout)
{
    PageRunner runner;
    const QByteArray ui = PageRunner::form(200, 100, {});

    const PageRun exited =
        runner.runPage(QStringLiteral("exit"), ui,
                       "console.log(\"a\");\nsetTimeout(function () { console.log(\"t\"); }, 0);\n"
                       "host.exit(7);\nconsole.log(\"b\");\n");
    EXPECT_RUN(exited, 7);
    EXPECT_EQ(exited.outLines(), QStringList{"a"});

    // Idle: the run waits for the pending timer, then ends by itself.
    const PageRun idle = runner.runPage(QStringLiteral("idle"), ui,
                                        "setTimeout(function () { console.log(\"late\"); }, 300);\n");
    EXPECT_RUN(idle, 0);
    EXPECT_EQ(idle.outLines(), QStringList{"late"});

    const QByteArray endless = "var n = 0;\nsetInterval(function () { n++; }, 10);\n";
    const PageRun limited = runner.runPage(QStringLiteral("limited"), ui, endless, {"--exit-after", "300"});
    EXPECT_RUN(limited, 0);

    const PageRun timedOut = runner.runPage(QStringLiteral("endless"), ui, endless, {"--timeout", "500"});
    EXPECT_RUN(timedOut, 3);
    EXPECT_TRUE(timedOut.err.contains("timed out after 500 ms")) << qPrintable(timedOut.err);

    const PageRun absent = runner.run({"--headless", runner.path("no-such-page")});
    EXPECT_RUN(absent, 1);
    EXPECT_TRUE(absent.err.contains("cannot load the page: no page at")) << qPrintable(absent.err);

    const PageRun badOption = runner.run({"--headless", "--exit-after", "soon", runner.path("exit")});
    EXPECT_RUN(badOption, 1);
    EXPECT_TRUE(badOption.err.contains("--exit-after needs a number")) << qPrintable(badOption.err);
}

TEST(HostPage, XmlHttpRequestFailuresTimeoutsAndVariants)
{
    TestHttpServer server;
    server.set("/json", {200, "application/json", R"({"list": [1, 2]})"});
    PageRunner runner;
    runner.write("variants/local.txt", "beside the page");
    const PageRun run = runner.runPage(QStringLiteral("variants"), PageRunner::form(300, 200, {}), R"JS(
var base = host.args.base;
var log = [];
function step(name, fn) { steps.push([name, fn]); }
var steps = [];
function next() {
  if (steps.length === 0) { console.log(log.join("\n")); return; }
  var s = steps.shift();
  s[1](function (line) { log.push(s[0] + ": " + line); next(); });
}
step("refused", function (done) {
  var x = new XMLHttpRequest();
  x.onerror = function () { done("error status " + x.status + " state " + x.readyState); };
  x.onload = function () { done("loaded?"); };
  x.open("GET", "http://127.0.0.1:1/");
  console.log("before send " + x.readyState + " " + x.status);
  x.send();
});
step("timeout", function (done) {
  var x = new XMLHttpRequest();
  x.timeout = 200;
  x.ontimeout = function () { done("timed out, status " + x.status); };
  x.open("GET", base + "/hang");
  x.send();
});
step("abort", function (done) {
  var x = new XMLHttpRequest();
  var events = [];
  x.addEventListener("abort", function (e) { events.push(e.type + " " + x.readyState); });
  x.onloadend = function () { events.push("loadend"); };
  x.open("GET", base + "/hang");
  x.send();
  x.abort();
  done(events.join(",") + " then state " + x.readyState);
});
step("json", function (done) {
  var x = new XMLHttpRequest();
  x.responseType = "json";
  x.addEventListener("load", function () {
    done(x.response.list.length + " " + x.getResponseHeader("content-type") + " " + x.getResponseHeader("nope"));
  });
  x.open("GET", base + "/json");
  x.send();
});
step("sync", function (done) {
  var x = new XMLHttpRequest();
  x.open("GET", base + "/json", false);
  x.send();
  done(x.readyState + " " + x.status + " " + x.responseText);
});
step("local", function (done) {
  var x = new XMLHttpRequest();
  x.onload = function () { done(x.status + " " + x.responseText); };
  x.open("GET", "local.txt");
  x.send();
});
step("misuse", function (done) {
  var x = new XMLHttpRequest();
  try { x.send(); } catch (e) { done(String(e)); }
});
next();
)JS",
                                       {"--script-arg", "base=" + server.url("")});
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(), (QStringList{
                                  "before send 1 0",
                                  "refused: error status 0 state 4",
                                  "timeout: timed out, status 0",
                                  "abort: abort 4,loadend then state 0",
                                  "json: 2 application/json null",
                                  "sync: 4 200 {\"list\": [1, 2]}",
                                  "local: 200 beside the page",
                                  "misuse: Error: InvalidStateError: send() needs open() first",
                              }));

    // Cookies a server sets are sent back, in the same run and in the next one (the host's jar
    // is kept on disk).
    TestHttpServer::Answer login{200, "text/plain", "welcome"};
    login.extraHeaders = "Set-Cookie: session=abc123; Max-Age=3600; Path=/\r\n";
    server.set("/login", login);
    const QByteArray cookieScript = R"JS(
function get(path, done) {
  var x = new XMLHttpRequest();
  x.onload = function () { done(x.responseText); };
  x.open("GET", host.args.base + path);
  x.send();
}
if (host.args.login === "yes")
  get("/login", function () { get("/cookie", function (t) { console.log(t); }); });
else
  get("/cookie", function (t) { console.log(t); });
)JS";
    const PageRun first =
        runner.runPage(QStringLiteral("cookies"), PageRunner::form(200, 100, {}), cookieScript,
                       {"--script-arg", "base=" + server.url(""), "--script-arg", "login=yes"});
    EXPECT_RUN(first, 0);
    EXPECT_EQ(first.out.trimmed(), "cookie: session=abc123");
    const PageRun second = runner.runPage(QStringLiteral("cookies"), PageRunner::form(200, 100, {}),
                                          cookieScript, {"--script-arg", "base=" + server.url("")});
    EXPECT_RUN(second, 0);
    EXPECT_EQ(second.out.trimmed(), "cookie: session=abc123");

    // A run that ends with requests under way drops them cleanly.
    const PageRun pending = runner.runPage(QStringLiteral("pending"), PageRunner::form(200, 100, {}), R"JS(
for (var i = 0; i < 3; ++i) {
  var x = new XMLHttpRequest();
  x.onloadend = function () { console.log("must not be called"); };
  x.open("GET", host.args.base + "/hang");
  x.send();
}
setTimeout(function () { host.exit(5); }, 100);
)JS",
                                           {"--script-arg", "base=" + server.url("")});
    EXPECT_RUN(pending, 5);
    EXPECT_EQ(pending.out, QString());
}

TEST(HostPage, FirstPageShowsTheHelperObjectsFindings)
{
    PageRunner runner;
    runner.setEnv(QStringLiteral("TORVIK_LANG"), QStringLiteral("kn"));
    const QString shot = runner.path("first.png");
    const PageRun run =
        runner.run({"--headless", "--screenshot", shot, QStringLiteral(PAGES_DIR "/first-page")}, 60000,
                   QStringLiteral(NEXARO_PAGE));
    EXPECT_RUN(run, 0);
    EXPECT_TRUE(run.outLines().contains("version 64 served: true, version 65 served: false"))
        << qPrintable(run.out);
    EXPECT_TRUE(run.outLines().contains("TORVIK_LANG: kn")) << qPrintable(run.out);
    const QString buildLine = lineStartingWith(run, "controller software: ");
    EXPECT_TRUE(
        QRegularExpression("^controller software: V\\d\\.\\d\\d[A-Z]/\\d\\d$").match(buildLine).hasMatch())
        << qPrintable(buildLine);
    EXPECT_EQ(QImage(shot).size(), QSize(560, 300));

    // Driven like a user: another script on the same page types a version number, clicks Check
    // and picks a language with the keyboard.
    runner.write("drive/drive.js", R"JS(
host.key(spn_VNUM, "Ctrl+A");
host.type(spn_VNUM, "65");
host.click(cmd_Check, 4, 4);
console.log(spn_VNUM.value + ": " + lbl_VNUMResult.text);
host.key(spn_VNUM, "Down");
console.log(spn_VNUM.value + ": " + lbl_VNUMResult.text);
host.key(cmb_Language, "Down");
console.log("language: " + lbl_Language.text);
)JS");
    runner.write("drive/page.json", QStringLiteral(R"({"form": "%1/first-page/first-page.ui",
        "script": ["%1/first-page/first-page.js", "drive.js"]})")
                                        .arg(QStringLiteral(PAGES_DIR))
                                        .toUtf8());
    const PageRun driven =
        runner.run({"--headless", runner.path("drive")}, 60000, QStringLiteral(NEXARO_PAGE));
    EXPECT_RUN(driven, 0);
    EXPECT_TRUE(driven.outLines().contains("65: not served by this library")) << qPrintable(driven.out);
    EXPECT_TRUE(driven.outLines().contains("64: served by this library")) << qPrintable(driven.out);
    EXPECT_TRUE(driven.outLines().contains("language: \"default\"")) << qPrintable(driven.out);
}
