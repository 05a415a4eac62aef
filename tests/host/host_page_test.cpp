// End to end: pages run headless in a page host process (nexaro-page with the test classes
// registered), checked through their output, exit code and screenshots.

#include "PageRunner.h"
#include "TestClasses.h"
#include "TestHttpServer.h"

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

const QByteArray kPad = PageRunner::item("TestClickPad", "ctl_Pad");
const QByteArray kEmptyForm = PageRunner::form(200, 100, {});

QString lineStartingWith(const PageRun& run, const QString& prefix)
{
    for (const QString& line : run.outLines())
        if (line.startsWith(prefix))
            return line;
    return QString();
}

QStringList baseArg(const TestHttpServer& server)
{
    return {"--script-arg", "base=" + server.url("")};
}

#define EXPECT_RUN(run, code)                                                                                \
    ASSERT_FALSE((run).timedOut);                                                                            \
    ASSERT_FALSE((run).crashed) << qPrintable((run).err);                                                    \
    EXPECT_EQ((run).exitCode, (code)) << "stdout:\n"                                                         \
                                      << qPrintable((run).out) << "stderr:\n"                                \
                                      << qPrintable((run).err)

// One page run of a table: its script, extra arguments, exit code, whole output, a text of stderr.
struct PageCase
{
    const char* name;
    QByteArray js;
    QStringList extra;
    int code;
    QString out;
    QString err;
};

void runCases(const PageRunner& runner, const QByteArray& ui, const QList<PageCase>& cases)
{
    for (const PageCase& c : cases) {
        SCOPED_TRACE(c.name);
        const PageRun run = runner.runPage(QString::fromLatin1(c.name), ui, c.js, c.extra);
        EXPECT_RUN(run, c.code);
        EXPECT_EQ(run.out.trimmed(), c.out);
        EXPECT_TRUE(run.err.contains(QString(c.err).replace("$DIR", runner.dir()))) << qPrintable(run.err);
    }
}

} // namespace

TEST(HostPage, ObjectsAreCreatedByClassNameAndScripted)
{
    PageRunner runner;
    const PageRun run = runner.runPage(QStringLiteral("objects"), kEmptyForm, R"JS(
var a = createObject("TestCounter");
var b = createObject("NexaroControls.TestCounter");
a.Count = 5;
console.log("count " + a.Count);
a.SetProperty("Count", "12");
console.log("keyed " + a.GetProperty("Count") + " " + a.Count);
a.OnChanged.connect(function (n) { console.log("changed " + n); });
a.Add(3);
b.Count = 1;
console.log("b " + b.Count + " a " + a.Count);
var pad = createObject("TestClickPad");
pad.OnButtonClicked.connect(function (name) { console.log("event " + name); });
pad.Fire("Snap");
console.log("pad " + pad.visible);
try { createObject("NoSuchClass"); } catch (e) { console.log("no class: " + e.message); }
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(), (QStringList{
                                  "count 5",
                                  "keyed 12 12",
                                  "changed 15",
                                  "b 1 a 15",
                                  "event Snap",
                                  "pad true",
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
var padEvents = 0;
ctl_Pad.OnButtonClicked.connect(function (name) { padEvents++; });
host.click(cmd_Ok, 5, 5);
host.click(ctl_Pad, 10, 20, "right");
host.doubleClick(ctl_Pad, 30, 30);
host.drag(ctl_Pad, 40, 10, 80, 50);
host.wheel(ctl_Pad, 15, 25, -2);
host.key(ctl_Pad, "Ctrl+S");
host.key(txt_Name, "A");
host.type(txt_Name, "bc");
host.key(txt_Name, "Backspace");
console.log("ok " + okClicks + " pad events " + padEvents + " text " + txt_Name.text);
console.log("pad " + ctl_Pad.Log);
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(lineStartingWith(run, "ok "), "ok 1 pad events 4 text Ab");
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

TEST(HostPage, ObjectsAreAskedWhetherTheyAreSafeToScriptAndToInitialise)
{
    PageRunner runner;
    const QByteArray props = R"(<property name="Caption"><string>from the form</string></property>
<property name="toolTip"><string>tip</string></property>)";
    const QByteArray items = PageRunner::item("TestUnsafeWidget", "ctl_Unsafe") +
                             PageRunner::item("TestClickPad", "ctl_Pad", props) +
                             PageRunner::item("TestNoInitPad", "ctl_NoInit", props);
    const PageRun run = runner.runPage(QStringLiteral("safety"), PageRunner::form(300, 300, items), R"JS(
console.log("unsafe " + typeof ctl_Unsafe + ", created " + createObject("NexaroControls.TestUnsafeWidget"));
console.log("pad " + ctl_Pad.Caption + ", " + ctl_Pad.toolTip);
console.log("no init [" + ctl_NoInit.Caption + "], [" + ctl_NoInit.toolTip + "], " + ctl_NoInit.visible);
ctl_NoInit.Caption = "from the script";
console.log("scripted " + ctl_NoInit.GetProperty("Caption"));
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(), (QStringList{"unsafe undefined, created null", "pad from the form, tip",
                                           "no init [], [], true", "scripted from the script"}));
    for (const char* text : {"ctl_Unsafe (TestUnsafeWidget) is not safe for scripting",
                             "(NexaroControls.TestUnsafeWidget) is not safe for scripting",
                             "ctl_NoInit (TestNoInitPad) is not safe for initialising; it is created without "
                             "the form's property values"})
        EXPECT_TRUE(run.err.contains(text)) << text << "\n" << qPrintable(run.err);
    EXPECT_FALSE(run.err.contains("ctl_Pad")) << qPrintable(run.err);
}

TEST(HostPage, ScriptErrorsNameFileAndLineAndFailTheRun)
{
    PageRunner runner;
    runCases(runner, PageRunner::form(300, 200, kPad),
             {
                 {"main", "console.log(\"before\");\nvar x = 1;\nmissingFunction();\nconsole.log(\"after\");\n",
                  {}, 2, "before", "$DIR/main/page.js:3: ReferenceError: missingFunction is not defined"},
                 {"handler", R"JS(ctl_Pad.OnButtonClicked.connect(function (name) {
  throw new Error("handler failed " + name);
});
ctl_Pad.Fire("Snap");
console.log("still running");
)JS",
                  {}, 2, "still running", "$DIR/handler/page.js:2: Error: handler failed Snap"},
                 {"timer", "var a = 1;\nsetTimeout(function () {\n  null.property;\n}, 10);\n", {}, 2, "",
                  "$DIR/timer/page.js:3: TypeError"},
                 {"syntax", "var ok = 1;\nvar broken = ;\n", {}, 2, "", "$DIR/syntax/page.js:2: SyntaxError"},
                 // Raised inside the host's own wrapper, reported at the page's line that called it.
                 {"wrapped", "var a = 1;\nsetTimeout(\"code\", 5);\n", {}, 2, "",
                  "$DIR/wrapped/page.js:2: TypeError: setTimeout"},
             });
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
        EXPECT_EQ(image.size(), QSize(300, 220));
        // The pad fills the layout: its colour away from its diagonal, the window's own at the edge.
        EXPECT_EQ(image.pixel(60, 150) | 0xff000000, TestClickPad::kColor);
        EXPECT_NE(image.pixel(1, 1) | 0xff000000, TestClickPad::kColor);
    }
}

TEST(HostPage, XmlHttpRequestTalksToAServer)
{
    TestHttpServer server;
    server.set("/data", {200, "text/plain", "hello data"});
    server.set("/json", {200, "application/json", R"({"list": [1, 2]})"});
    PageRunner runner;
    runner.write("xhr/local.txt", "beside the page");
    const PageRun run = runner.runPage(QStringLiteral("xhr"), kEmptyForm, R"JS(
var base = host.args.base;
var log = [];
var steps = [];
function step(name, fn) { steps.push([name, fn]); }
function next() {
  if (steps.length === 0) { console.log(log.join("\n")); return; }
  var s = steps.shift();
  s[1](function (line) { log.push(s[0] + ": " + line); next(); });
}
function request(method, url) { var x = new XMLHttpRequest(); x.open(method, url); return x; }
step("get", function (done) {
  var x = request("GET", base + "/data");
  x.onreadystatechange = function () { if (x.readyState === 4) done(x.status + " " + x.responseText); };
  x.send();
});
step("missing", function (done) {
  var x = request("GET", base + "/missing");
  x.onload = function () { done(x.status); };
  x.send();
});
step("post", function (done) {
  var x = request("POST", base + "/echo");
  x.setRequestHeader("X-Test", "yes");
  x.onload = function () { done(x.status + " " + x.responseText); };
  x.send("payload");
});
step("refused", function (done) {
  var x = new XMLHttpRequest();
  x.onerror = function () { done("error status " + x.status + " state " + x.readyState); };
  x.onload = function () { done("loaded?"); };
  x.open("GET", "http://127.0.0.1:1/");
  console.log("before send " + x.readyState + " " + x.status);
  x.send();
});
step("timeout", function (done) {
  var x = request("GET", base + "/hang");
  x.timeout = 200;
  x.ontimeout = function () { done("timed out, status " + x.status); };
  x.send();
});
step("abort", function (done) {
  var x = request("GET", base + "/hang");
  var events = [];
  x.addEventListener("abort", function (e) { events.push(e.type + " " + x.readyState); });
  x.onloadend = function () { events.push("loadend"); };
  x.send();
  x.abort();
  done(events.join(",") + " then state " + x.readyState);
});
step("json", function (done) {
  var x = request("GET", base + "/json");
  x.responseType = "json";
  x.addEventListener("load", function () {
    done(x.response.list.length + " " + x.getResponseHeader("content-type") + " " + x.getResponseHeader("nope"));
  });
  x.send();
});
step("sync", function (done) {
  var x = new XMLHttpRequest();
  x.open("GET", base + "/json", false);
  x.send();
  done(x.readyState + " " + x.status + " " + x.responseText);
});
step("local", function (done) {
  var x = request("GET", "local.txt");
  x.onload = function () { done(x.status + " " + x.responseText); };
  x.send();
});
step("misuse", function (done) {
  try { new XMLHttpRequest().send(); } catch (e) { done(String(e)); }
});
next();
)JS",
                                       baseArg(server));
    EXPECT_RUN(run, 0);
    EXPECT_EQ(run.outLines(), (QStringList{
                                  "before send 1 0",
                                  "get: 200 hello data",
                                  "missing: 404",
                                  "post: 200 POST yes payload",
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
    server.set("/login", {200, "text/plain", "welcome", "Set-Cookie: session=abc123; Max-Age=3600; Path=/\r\n"});
    const QByteArray cookieScript = R"JS(
function get(path, done) {
  var x = new XMLHttpRequest();
  x.onload = function () { done(x.responseText); };
  x.open("GET", host.args.base + path);
  x.send();
}
var show = function () { get("/cookie", function (t) { console.log(t); }); };
if (host.args.login === "yes") get("/login", show); else show();
)JS";
    for (const QStringList& login : {QStringList{"--script-arg", "login=yes"}, QStringList{}}) {
        const PageRun again =
            runner.runPage(QStringLiteral("cookies"), kEmptyForm, cookieScript, baseArg(server) + login);
        EXPECT_RUN(again, 0);
        EXPECT_EQ(again.out.trimmed(), "cookie: session=abc123");
    }

    // A run that ends with requests under way drops them cleanly.
    const PageRun pending = runner.runPage(QStringLiteral("pending"), kEmptyForm, R"JS(
for (var i = 0; i < 3; ++i) {
  var x = new XMLHttpRequest();
  x.onloadend = function () { console.log("must not be called"); };
  x.open("GET", host.args.base + "/hang");
  x.send();
}
setTimeout(function () { host.exit(5); }, 100);
)JS",
                                           baseArg(server));
    EXPECT_RUN(pending, 5);
    EXPECT_EQ(pending.out, QString());
}

TEST(HostPage, RemotePageIsFetchedWithItsScriptThroughTheUrlCache)
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
    // A form URL brings the script of the same name; the title then comes from the form.
    for (const auto& [page, title] : {std::pair{server.url("/site/"), "Remote"}, {server.url("/site/p.ui"), "p"}}) {
        const PageRun run = runner.run({"--headless", "--timeout", "20000", page});
        EXPECT_RUN(run, 0);
        EXPECT_EQ(run.outLines(), QStringList{QString(title) + ": from the server, relative data"});
    }

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
}

TEST(HostPage, TimersRunInDueOrderAndWaitKeepsTheLoopRunning)
{
    PageRunner runner;
    runCases(runner, kEmptyForm,
             {
                 {"order", R"JS(
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
)JS",
                  {}, 0, "sync t0 t0-inner t10a t10b t30:xy iv1 iv2 iv3", ""},
                 {"wait", R"JS(
var log = [];
setTimeout(function () { log.push("timer"); }, 20);
log.push("before");
host.wait(150);
log.push("after");
console.log(log.join(" "));
)JS",
                  {}, 0, "before timer after", ""},
                 // Timers that fall due together (the script kept the loop busy) still run by due time.
                 {"blocked", R"JS(
var log = [];
setTimeout(function () { log.push("c"); }, 30);
setTimeout(function () { log.push("b"); }, 10);
setTimeout(function () { log.push("a"); }, 0);
var until = Date.now() + 80;
while (Date.now() < until) {}
setTimeout(function () { console.log(log.join(" ")); }, 0);
)JS",
                  {}, 0, "a b c", ""},
             });
}

TEST(HostPage, RunEndsByExitIdleTimeLimitOrTimeout)
{
    PageRunner runner;
    const QByteArray endless = "var n = 0;\nsetInterval(function () { n++; }, 10);\n";
    runCases(runner, kEmptyForm,
             {
                 {"exit",
                  "console.log(\"a\");\nsetTimeout(function () { console.log(\"t\"); }, 0);\n"
                  "host.exit(7);\nconsole.log(\"b\");\n",
                  {}, 7, "a", ""},
                 // Idle: the run waits for the pending timer, then ends by itself.
                 {"idle", "setTimeout(function () { console.log(\"late\"); }, 300);\n", {}, 0, "late", ""},
                 {"limited", endless, {"--exit-after", "300"}, 0, "", ""},
                 {"endless", endless, {"--timeout", "500"}, 3, "", "timed out after 500 ms"},
             });

    const PageRun absent = runner.run({"--headless", runner.path("no-such-page")});
    EXPECT_RUN(absent, 1);
    EXPECT_TRUE(absent.err.contains("cannot load the page: no page at")) << qPrintable(absent.err);
    const PageRun badOption = runner.run({"--headless", "--exit-after", "soon", runner.path("exit")});
    EXPECT_RUN(badOption, 1);
    EXPECT_TRUE(badOption.err.contains("--exit-after needs a number")) << qPrintable(badOption.err);
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
    const QStringList lines = run.outLines();
    EXPECT_TRUE(lines.contains("version 64 served: true, version 65 served: false")) << qPrintable(run.out);
    EXPECT_TRUE(lines.contains("TORVIK_LANG: kn")) << qPrintable(run.out);
    EXPECT_TRUE(QRegularExpression("^controller software: V\\d\\.\\d\\d[A-Z]/\\d\\d$")
                    .match(lineStartingWith(run, "controller software: "))
                    .hasMatch())
        << qPrintable(run.out);
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
    EXPECT_EQ(driven.outLines().mid(driven.outLines().size() - 3),
              (QStringList{"65: not served by this library", "64: served by this library", "language: \"default\""}));
}
