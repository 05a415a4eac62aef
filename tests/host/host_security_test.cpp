// Pages from the network against the host's trust model, each tried as an attacker would on
// loopback: a page from an untrusted origin gets nothing; a trusted controller's page is bound to
// its controller, the storage folder and the allow-lists; no page hangs the host. And the
// controller's own vision setup page still does its whole round.

#include "ControllerSimulator.h"
#include "PageRunner.h"
#include "TestHttpServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

const QByteArray kEmptyForm = PageRunner::form(200, 100, {});

// A run of the real page host.
PageRun runHost(const PageRunner& runner, const QStringList& arguments, int timeoutMs = 60000)
{
    return runner.run(arguments, timeoutMs, QStringLiteral(NEXARO_PAGE));
}

// Runs the page of `server` headless in the real page host, the server trusted.
PageRun runTrusted(const PageRunner& runner, const TestHttpServer& server, const QStringList& extra = {})
{
    return runHost(runner, QStringList{"--headless", "--timeout", "30000", "--trust", server.url("")} +
                               extra + QStringList{server.url("/p/")});
}

QString copySample(const QString& to)
{
    QDir().mkpath(QFileInfo(to).absolutePath());
    QFile::copy(QStringLiteral(NXR_SAMPLE_IMAGE), to);
    return to;
}

} // namespace

TEST(HostSecurity, OnlyTrustedOriginsRunTheirPages)
{
    TestHttpServer server;
    server.servePage(kEmptyForm, R"JS(console.log("page ran");)JS");
    PageRunner runner;
    runner.setEnv(QStringLiteral("XDG_CONFIG_HOME"), runner.path("config"));
    const QString page = server.url("/p/");
    const QString otherPort = QStringLiteral("http://127.0.0.1:%1").arg(server.port() == 1 ? 2 : 1);

    // Not trusted at all, or only another port of the same machine: nothing is fetched or run.
    for (const QStringList& trust : {QStringList{}, QStringList{"--trust", otherPort}}) {
        const PageRun run = runHost(runner, QStringList{"--headless"} + trust + QStringList{page});
        EXPECT_RUN(run, 4);
        EXPECT_TRUE(run.err.contains(server.url("") + " is not a trusted controller")) << qPrintable(run.err);
        EXPECT_TRUE(run.err.contains("--trust " + server.url(""))) << qPrintable(run.err);
        EXPECT_FALSE(run.out.contains("page ran"));
        EXPECT_TRUE(server.requests().isEmpty()) << qPrintable(server.requests().join('\n'));
    }

    // A trusted page that brings its script from an untrusted origin is not run either.
    TestHttpServer other;
    other.set("/evil.js", "application/javascript", R"JS(console.log("foreign script ran");)JS");
    server.set("/mixed/page.json", "application/json",
               R"({"form": "../p/page.ui", "script": ")" + other.url("/evil.js").toUtf8() + "\"}");
    const PageRun mixed =
        runHost(runner, {"--headless", "--trust", server.url(""), server.url("/mixed/page.json")});
    EXPECT_RUN(mixed, 4);
    EXPECT_TRUE(mixed.err.contains(other.url("") + " is not a trusted controller")) << qPrintable(mixed.err);
    EXPECT_FALSE(mixed.out.contains("ran"));

    // Trusted on the command line by its address or by its host, or in the user settings.
    runner.write("config/NexaroControls/NexaroControls.ini",
                 "[Security]\nTrustedControllers=\"10.9.9.9, " + server.url("").toUtf8() + "\"\n");
    for (const QStringList& trust :
         {QStringList{"--trust", server.url("")}, QStringList{"--trust", "127.0.0.1"}, QStringList{}}) {
        const PageRun run = runHost(runner, QStringList{"--headless"} + trust + QStringList{page});
        EXPECT_RUN(run, 0);
        EXPECT_EQ(run.outLines(), QStringList{"page ran"});
    }
}

TEST(HostSecurity, ControllerPageCannotStartProgramsNorReachQtWidgetsBeyondTheAllowList)
{
    // The attack: a program of the page's choosing as the desktop's browser and as the shell's
    // start-up file, then a click on a label link that the form lets open external links.
    PageRunner runner;
    const QString evil = runner.write("evil.sh", "#!/bin/sh\ntouch \"$(dirname \"$0\")/marker\"\n");
    QFile::setPermissions(evil, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    runner.write("secret.txt", "the operator's secret");
    const QByteArray link =
        R"(<property name="text"><string>&lt;a href="http://127.0.0.1:9/x"&gt;&lt;span style="font-size:40pt"&gt;LINKLINKLINK&lt;/span&gt;&lt;/a&gt;</string></property>
<property name="openExternalLinks"><bool>true</bool></property>
<property name="textInteractionFlags"><set>Qt::LinksAccessibleByMouse</set></property>
<property name="minimumSize"><size><width>380</width><height>100</height></size></property>)";
    const QByteArray browser = "<property name=\"source\"><url><string>" +
                               QUrl::fromLocalFile(runner.path("secret.txt")).toEncoded() +
                               "</string></url></property>";
    const QByteArray ui = PageRunner::form(400, 300,
                                           PageRunner::item("QLabel", "lbl_Link", link) +
                                               PageRunner::item("QTextBrowser", "txt_Browser", browser) +
                                               PageRunner::item("QLineEdit", "txt_Name"));
    TestHttpServer server;
    server.servePage(ui, R"JS(
var env = createObject("NXRClientSetupObject");
["BROWSER", "DEFAULT_BROWSER", "BASH_ENV", "LD_PRELOAD", "PATH", "TMPDIR", "QT_PLUGIN_PATH", "TORVIK_LANG",
 "NXR_BROWSER"].forEach(function (name) { env.Environment(name, name === "TORVIK_LANG" ? "de" : host.args.evil); });
console.log("env [" + ["BROWSER", "BASH_ENV", "PATH", "HOME", "TORVIK_LANG", "NXR_BROWSER"].map(function (name) {
  return env.Environment(name);
}).join("|") + "]");
console.log("browser " + typeof txt_Browser);
console.log("label " + [typeof lbl_Link.openExternalLinks, typeof lbl_Link.setOpenExternalLinks,
                        typeof lbl_Link.textInteractionFlags, typeof lbl_Link.parent, typeof lbl_Link.text].join(","));
lbl_Link.openExternalLinks = true;
host.click(lbl_Link, 60, lbl_Link.height / 2);
host.wait(700);
txt_Name.text = "typed";
console.log("name " + txt_Name.text + " " + typeof txt_Name.setText + " " + typeof host.window.close);
)JS");
    const PageRun run = runTrusted(runner, server, {"--script-arg", "evil=" + evil});
    EXPECT_RUN(run, 0);
    EXPECT_EQ(lineStartingWith(run, "env "), "env [||||de|]") << qPrintable(run.out);
    EXPECT_EQ(lineStartingWith(run, "browser "), "browser undefined");
    EXPECT_EQ(lineStartingWith(run, "label "), "label undefined,undefined,undefined,undefined,string");
    EXPECT_EQ(lineStartingWith(run, "name "), "name typed undefined undefined");
    EXPECT_TRUE(run.err.contains("txt_Browser (QTextBrowser) is not scriptable")) << qPrintable(run.err);
    EXPECT_FALSE(QFile::exists(runner.path("marker"))) << "the page started a program";
}

TEST(HostSecurity, ControllerPageReadsLocalImagesOnlyFromTheStorageFolder)
{
    PageRunner runner;
    runner.setEnv(QStringLiteral("TMPDIR"), runner.path("tmp"));
    const QString storage = runner.path("tmp/TORVIK");
    QDir().mkpath(storage);
    QFile::setPermissions(storage, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString inside = copySample(storage + "/in.png");
    const QString secret = copySample(runner.path("private/secret.png"));
    QFile::link(secret, storage + "/link.png");
    const QString missing = runner.path("private/none.png");

    TestHttpServer server;
    server.servePage(PageRunner::form(300, 200, PageRunner::item("NXRImageDisplay", "ctl_Display")), R"JS(
function load(name) {
  ctl_Display.LoadLocalImage(host.args[name]);
  console.log(name + ": " + ctl_Display.LastErrorString + " " + ctl_Display.CurrentImageFilename);
}
load("inside");
["secret", "link", "missing"].forEach(load);
)JS");
    const PageRun run =
        runTrusted(runner, server,
                   {"--script-arg", "inside=" + inside, "--script-arg", "secret=" + secret, "--script-arg",
                    "link=" + storage + "/link.png", "--script-arg", "missing=" + missing});
    EXPECT_RUN(run, 0);
    EXPECT_TRUE(lineStartingWith(run, "inside: ").startsWith("inside:  ")) << qPrintable(run.out);
    // Refused and absent files give the same answer: a page cannot tell which files exist.
    for (const auto& [name, path] :
         {std::pair{"secret", secret}, {"link", storage + "/link.png"}, {"missing", missing}})
        EXPECT_TRUE(
            lineStartingWith(run, QString(name) + ": ")
                .startsWith(QString(name) + ": Error in LoadLocalImage: file " + path + " does not exist"))
            << qPrintable(run.out);
}

TEST(HostSecurity, ScreenshotsStayInTheirFolderAndAutomationInRunsWithoutAUser)
{
    PageRunner runner;
    const QString shots = runner.path("shots");
    runner.write("shots/old.png", "keep");
    QFile::link(runner.dir(), shots + "/up");
    TestHttpServer server;
    server.servePage(kEmptyForm, R"JS(
function shot(p) { try { host.screenshot(p); return "ok"; } catch (e) { return String(e); } }
["a.png", "sub/b.png", "../escape.png", host.args.abs, "up/c.png", "up/new/d.png", "old.png", "e.png", "f.png"]
  .forEach(function (p) { console.log(p + " -> " + shot(p)); });
)JS");
    const QString abs = runner.path("abs.png");
    const PageRun run = runTrusted(
        runner, server, {"--screenshot-dir", shots, "--screenshot-quota", "3", "--script-arg", "abs=" + abs});
    EXPECT_RUN(run, 0);
    QStringList expected{"a.png -> ok", "sub/b.png -> ok"};
    for (const QString& p : {QString("../escape.png"), abs, QString("up/c.png"), QString("up/new/d.png")})
        expected << p + " -> Error: host.screenshot: " + p + " is outside the screenshot folder";
    expected +=
        {"old.png -> Error: host.screenshot: old.png exists; it is not replaced (--overwrite-screenshots)",
         "e.png -> ok",
         "f.png -> Error: host.screenshot: the run's 3 screenshots are taken (--screenshot-quota)"};
    QStringList got;
    for (const QString& l : run.outLines())
        if (l.contains(" -> "))
            got << l;
    EXPECT_EQ(got, expected);
    for (const char* name : {"escape.png", "abs.png", "c.png", "new"})
        EXPECT_FALSE(QFileInfo::exists(runner.path(name))) << name;
    QFile old(shots + "/old.png");
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), QByteArray("keep"));
    EXPECT_FALSE(QImage(shots + "/sub/b.png").isNull());

    // On screen the host's input, screenshot and exit functions are there only when asked for.
    runner.write("local/page.ui", kEmptyForm);
    runner.write("local/page.js", R"JS(
console.log("host " + [typeof host.click, typeof host.type, typeof host.screenshot, typeof host.exit,
                       typeof host.touch, typeof host.child, typeof host.windows, typeof host.findWindow,
                       typeof host.args, typeof host.pageUrl, typeof host.headless].join(","));
)JS");
    for (const auto& [extra, functions] :
         {std::pair{QStringList{}, QString("undefined,undefined,undefined,undefined,undefined,undefined,"
                                           "undefined,undefined")},
          {QStringList{"--automation"},
           QString("function,function,function,function,function,function,function,function")}}) {
        const PageRun onScreen =
            runHost(runner, QStringList{"--exit-after", "300"} + extra + QStringList{runner.path("local")});
        EXPECT_RUN(onScreen, 0);
        EXPECT_EQ(lineStartingWith(onScreen, "host "), "host " + functions + ",object,string,boolean");
    }
}

TEST(HostSecurity, ControllerPageRequestsFollowTheSameOriginRule)
{
    TestHttpServer server;  // the page's controller
    TestHttpServer other;   // another origin, not trusted: the operator's cookies live there
    TestHttpServer partner; // another trusted controller
    server.set("/data", "text/plain", "own data");
    partner.set("/data", "text/plain", "partner data");
    server.servePage(kEmptyForm, R"JS(
function send(method, url, headers) {
  var x = new XMLHttpRequest();
  try { x.open(method, url, false); } catch (e) { return "refused " + (String(e).indexOf("SecurityError") >= 0); }
  for (var name in headers || {}) x.setRequestHeader(name, headers[name]);
  x.send("body");
  return x.status + " " + x.responseText.trim().split("\n").join(";");
}
var forged = { "Origin": "http://evil", "Referer": "http://evil/", "Cookie": "session=stolen",
               "Authorization": "Basic b3A6cHc=", "X-Test": "1" };
console.log("own " + send("GET", "/data"));
console.log("own headers " + send("GET", "/headers", forged));
["GET", "PUT", "DELETE", "POST"].forEach(function (m) { console.log("other " + m + " " + send(m, host.args.other + "/cookie")); });
console.log("partner " + send("GET", host.args.partner + "/data"));
console.log("partner headers " + send("GET", host.args.partner + "/headers", forged));
)JS");
    PageRunner runner;
    const PageRun run = runTrusted(runner, server,
                                   {"--trust", partner.url(""), "--script-arg", "other=" + other.url(""),
                                    "--script-arg", "partner=" + partner.url("")});
    EXPECT_RUN(run, 0);
    EXPECT_EQ(lineStartingWith(run, "own "), "own 200 own data");
    for (const char* method : {"GET", "PUT", "DELETE", "POST"})
        EXPECT_EQ(lineStartingWith(run, QString("other ") + method),
                  QString("other ") + method + " refused true");
    EXPECT_TRUE(other.requests().isEmpty()) << qPrintable(other.requests().join('\n'));
    EXPECT_EQ(lineStartingWith(run, "partner "), "partner 200 partner data");

    // The page sets none of the headers that speak for the browser; Authorization only to its own
    // origin.
    const QString own = lineStartingWith(run, "own headers ");
    const QString partnerHeaders = lineStartingWith(run, "partner headers ");
    for (const QString& headers : {own, partnerHeaders}) {
        EXPECT_TRUE(headers.contains("x-test: 1")) << qPrintable(headers);
        for (const char* forged : {"evil", "stolen"})
            EXPECT_FALSE(headers.contains(forged)) << qPrintable(headers);
    }
    EXPECT_TRUE(own.contains("authorization: Basic b3A6cHc=")) << qPrintable(own);
    EXPECT_FALSE(partnerHeaders.contains("authorization")) << qPrintable(partnerHeaders);
}

TEST(HostSecurity, OversizedResponsesAndEndlessScriptsAreStopped)
{
    TestHttpServer server;
    server.set("/big", "application/octet-stream", QByteArray(3 << 20, 'x'));
    server.set("/small", "text/plain", QByteArray(1000, 's'));
    server.servePage(kEmptyForm, R"JS(
function get(path, async) {
  var x = new XMLHttpRequest();
  x.onload = function () { console.log(path + " " + async + " loaded " + x.responseText.length); };
  x.onerror = function () { console.log(path + " " + async + " error " + x.status + " " + x.responseText.length); };
  x.open("GET", path, async);
  x.send();
}
get("/small", false);
get("/big", false);
get("/big", true);
)JS");
    PageRunner runner;
    const PageRun run = runTrusted(runner, server, {"--max-response", "1"});
    EXPECT_RUN(run, 0);
    QStringList lines = run.outLines();
    lines.sort();
    EXPECT_EQ(lines,
              (QStringList{"/big false error 0 0", "/big true error 0 0", "/small false loaded 1000"}));
    EXPECT_EQ(run.err.count("is larger than 1048576 bytes; it was refused"), 2) << qPrintable(run.err);

    // A script that never returns, at the top, in a timer and in an event handler: each is stopped,
    // the page goes on, the run ends by itself, with a script error. On screen too.
    runner.write("endless/page.ui", PageRunner::form(200, 100, PageRunner::item("QLineEdit", "txt_Name")));
    runner.write("endless/page.js", R"JS(
setTimeout(function () { for (;;) {} }, 0);
setTimeout(function () { txt_Name.text = "x"; }, 10);
setTimeout(function () { console.log("alive"); }, 50);
txt_Name.textChanged.connect(function () { while (true) {} });
while (true) {}
)JS");
    for (const QStringList& mode : {QStringList{"--headless"}, QStringList{"--exit-after", "6000"}}) {
        QElapsedTimer clock;
        clock.start();
        const PageRun endless =
            runHost(runner, mode + QStringList{"--script-limit", "1000", runner.path("endless")});
        EXPECT_RUN(endless, 2);
        EXPECT_EQ(endless.outLines(), QStringList{"alive"});
        EXPECT_EQ(endless.err.count("without returning and was stopped (limit 1000 ms"), 3)
            << qPrintable(endless.err);
        EXPECT_GE(endless.err.count("Error: stopped, it ran longer than 1000 ms (--script-limit)"), 3)
            << qPrintable(endless.err);
        EXPECT_LT(clock.elapsed(), 20000);
    }
}

TEST(HostSecurity, ControllerPagesTransferOnlyWithTrustedControllersAndTheVisionPageWorks)
{
    nxr::test::ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();
    TestHttpServer elsewhere(QHostAddress(QStringLiteral("127.0.0.2")));
    elsewhere.set("/MC/X.TXT", "text/plain", "not for this page");
    const QString base = QStringLiteral("http://127.0.0.1:%1").arg(sim.httpPort());
    auto readPage = [](const char* name) {
        QFile f(QStringLiteral(PAGES_DIR "/vision-setup/") + name);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    };
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\VISION\\PAGE.JSON",
                              R"({"form": "vision-setup.ui", "script": "vision-setup.js"})"));
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\VISION\\VISION-SETUP.UI", readPage("vision-setup.ui")));
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\VISION\\VISION-SETUP.JS", readPage("vision-setup.js")));
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\COPY\\PAGE.JSON", R"({"form": "copy.ui", "script": "copy.js"})"));
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\COPY\\COPY.UI", kEmptyForm));
    ASSERT_TRUE(sim.writeFile("MC:\\PAGES\\COPY\\COPY.JS", R"JS(
var t = createObject("NXRFileTransferObject");
function copy(server, httpPort, ftpPort, path) {
  t.HTTPPortNo = Number(httpPort);
  t.FTPPortNo = Number(ftpPort);
  return t.CopyFile(server, path, host.args.user, host.args.password, "");
}
console.log("elsewhere " + copy("127.0.0.2", host.args.elsewhere, host.args.elsewhere, "MC:\\X.TXT"));
console.log("own " + copy("127.0.0.1", host.args.httpPort, host.args.ftpPort, "MC:\\VISION\\TOOLS.TXT"));
// Connected to its own controller, the object is not led elsewhere either.
console.log("elsewhere again " + copy("127.0.0.2", host.args.elsewhere, host.args.elsewhere, "MC:\\X.TXT"));
console.log("list elsewhere [" + t.ListDrives("127.0.0.2", host.args.user, host.args.password) + "]");
console.log("upload elsewhere " + t.UploadCachedFile("127.0.0.2", "TOOLS.TXT", "MC:\\X.TXT", "u", "p"));
console.log("told " + (t.LastErrorString.indexOf("127.0.0.2 is not a trusted controller of this page") >= 0));
)JS"));

    PageRunner runner;
    QStringList controllerArgs;
    for (const QString& arg :
         {QStringLiteral("server=127.0.0.1"), "httpPort=" + QString::number(sim.httpPort()),
          "ftpPort=" + QString::number(sim.ftpPort()), "user=" + sim.user(), "password=" + sim.password()})
        controllerArgs << "--script-arg" << arg;
    const PageRun copy = runHost(runner, QStringList{"--headless", "--trust", base, "--script-arg",
                                                     "elsewhere=" + QString::number(elsewhere.port())} +
                                             controllerArgs + QStringList{base + "/MC/PAGES/COPY/PAGE.JSON"});
    EXPECT_RUN(copy, 0);
    EXPECT_EQ(copy.outLines(), (QStringList{"elsewhere false", "own true", "elsewhere again false",
                                            "list elsewhere []", "upload elsewhere false", "told true"}));
    EXPECT_EQ(elsewhere.connections(), 0) << qPrintable(elsewhere.requests().join('\n'));

    // The controller's own page: snap, live mode, save, with every control and request it uses.
    const QString shots = runner.path("shots");
    const PageRun vision = runHost(runner,
                                   QStringList{"--headless", "--trust", base, "--screenshot-dir", shots,
                                               "--script-arg", "shots=" + shots} +
                                       controllerArgs + QStringList{base + "/MC/PAGES/VISION/PAGE.JSON"},
                                   90000);
    EXPECT_RUN(vision, 0);
    EXPECT_TRUE(vision.out.contains("vision-setup demo done")) << qPrintable(vision.out);
    for (const char* name :
         {"1-snap", "2-live-zoomed", "3-live-panned", "4-results", "5-search-window", "6-saved"})
        EXPECT_FALSE(QImage(shots + QString("/vision-setup-%1.png").arg(name)).isNull()) << name;
    EXPECT_FALSE(QImage::fromData(sim.readFile("MC:\\CAMERA\\SAVED.PNG")).isNull());
}
