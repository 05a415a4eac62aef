// The page host as a page author's tool, end to end: the automation a page's own tests need
// (modifier keys, touch, named children, dialogs, OpenGL in screenshots) and the help it gives
// while a page is written (reload on change, errors in the window, readable console output,
// clear messages for a controller's folder, a controller form's own pictures).

#include "PageRunner.h"
#include "TestClasses.h"
#include "TestHttpServer.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QUrl>

#include <gtest/gtest.h>

TEST(HostTools, ModifiersAndTouchReachTheControls)
{
    PageRunner runner;
    const QByteArray items = PageRunner::item("TestClickPad", "ctl_Pad") +
                             PageRunner::item("TestTouchPad", "ctl_Touch") +
                             PageRunner::item("QPushButton", "cmd_Tap");
    const PageRun run = runner.runPage(QStringLiteral("input"), PageRunner::form(300, 400, items), R"JS(
var taps = 0;
cmd_Tap.clicked.connect(function () { taps++; });
function attempt(fn) { try { fn(); } catch (e) { console.log(e.message); } }
host.click(ctl_Pad, 10, 10, "left", "Shift");
host.doubleClick(ctl_Pad, 11, 11, "left", "Ctrl+Alt");
host.press(ctl_Pad, 12, 12, "right", " shift + control ");
console.log("held while pressed: " + ctl_Pad.HeldModifiers);
host.move(ctl_Pad, 13, 13, "Shift+Ctrl");
host.release(ctl_Pad, 14, 14, "right", "Ctrl+Shift");
console.log("held after release: " + ctl_Pad.HeldModifiers);
host.drag(ctl_Pad, 20, 20, 28, 28, "left", "Alt");
host.wheel(ctl_Pad, 5, 5, 1, "Meta");
host.key(ctl_Pad, "Ctrl+Shift+A");
console.log("held after key: " + ctl_Pad.HeldModifiers);
host.click(ctl_Pad, 16, 16);
["Hyper", "Shift+"].forEach(function (m) { attempt(function () { host.click(ctl_Pad, 1, 1, "left", m); }); });
attempt(function () { host.click(ctl_Pad, 1, 1, "fourth"); });
console.log("pad " + ctl_Pad.Log);

host.tap(cmd_Tap, 5, 5);
host.tap(ctl_Touch, 10, 10);
host.touchDrag(ctl_Touch, [[40, 40], [60, 40]], [[30, 40], [70, 40]]);
host.touch(ctl_Touch, "press", [[5, 5]]);
attempt(function () { host.touch(ctl_Touch, "press", [[5, 5]]); });
host.touch(ctl_Touch, "press", [null, {x: 50, y: 50}]);
host.touch(ctl_Touch, "move", [[6, 6]]);
host.touch(ctl_Touch, "release", [[7, 7], [50, 50]]);
attempt(function () { host.touch(ctl_Touch, "move", [[6, 6]]); });
attempt(function () { host.touch(ctl_Touch, "wiggle", [[6, 6]]); });
attempt(function () { host.touchDrag(ctl_Touch, [[1, 1]], [[2, 2], [3, 3]]); });
console.log("taps " + taps);
console.log("touch " + ctl_Touch.Log);
)JS");
    EXPECT_RUN(run, 0);
    EXPECT_EQ(lineStartingWith(run, "held while"), "held while pressed: shift ctrl");
    EXPECT_EQ(lineStartingWith(run, "held after release"), "held after release: none");
    // A key with modifiers leaves none held: the next click comes without them.
    EXPECT_EQ(lineStartingWith(run, "held after key"), "held after key: none");
    for (const char* message :
         {"host.click: unknown modifier in \"Hyper\" (Shift, Ctrl, Alt or Meta, joined by +)",
          "host.click: unknown modifier in \"Shift+\" (Shift, Ctrl, Alt or Meta, joined by +)",
          "host.click: unknown mouse button \"fourth\" (left, right or middle)",
          "host.touch: finger 1 is already down", "host.touch: finger 1 is not down",
          "host.touch: unknown action \"wiggle\" (press, move or release)",
          "host.touchDrag: as many end points as start points, one per finger"})
        EXPECT_TRUE(run.outLines().contains(message)) << message << "\n" << qPrintable(run.out);
    const QStringList pad = lineStartingWith(run, "pad ").mid(4).split(';');
    QStringList expected{"press left 10,10 shift",         "release left 10,10 shift",
                         "press left 11,11 ctrl alt",      "release left 11,11 ctrl alt",
                         "double left 11,11 ctrl alt",     "release left 11,11 ctrl alt",
                         "press right 12,12 shift ctrl",   "drag 13,13 shift ctrl",
                         "drag 14,14 shift ctrl", // the window system's move to where the button is let go
                         "release right 14,14 shift ctrl", "press left 20,20 alt"};
    for (int i = 21; i <= 28; ++i)
        expected << QString("drag %1,%1 alt").arg(i);
    expected += {"release left 28,28 alt", "wheel 120 5,5 meta", "key A '' shift ctrl", "press left 16,16",
                 "release left 16,16"};
    EXPECT_EQ(pad, expected) << qPrintable(pad.join('\n'));

    // A tap on a plain button is a click; a touch control gets the fingers themselves.
    EXPECT_EQ(lineStartingWith(run, "taps "), "taps 1");
    const QStringList touch = lineStartingWith(run, "touch ").mid(6).split(';');
    ASSERT_GE(touch.size(), 14) << qPrintable(touch.join('\n'));
    EXPECT_EQ(touch.mid(0, 3),
              (QStringList{"touch begin 10,10", "touch end 10,10", "touch begin 40,40|60,40"}));
    EXPECT_EQ(touch.at(3), "touch update 39,40|61,40");
    EXPECT_TRUE(touch.contains("touch end 30,40|70,40")) << qPrintable(touch.join('\n'));
    // The two fingers moved apart to twice their distance: Qt's pinch recogniser sees a widening
    // pinch (measured from its first update, so a little under 2).
    const QString pinch = touch.value(touch.indexOf("touch end 30,40|70,40") - 1);
    ASSERT_TRUE(pinch.startsWith("pinch ")) << qPrintable(touch.join('\n'));
    EXPECT_GT(pinch.mid(6).toDouble(), 1.5);
    const QStringList last = touch.mid(touch.lastIndexOf("touch begin 5,5")).filter("touch ");
    EXPECT_EQ(last, (QStringList{"touch begin 5,5", "touch update 5,5|50,50", "touch update 6,6|50,50",
                                 "touch end 7,7|50,50"}));
}

TEST(HostTools, NamedChildrenAndDialogsAreClickedTypedIntoAndCaptured)
{
    // The page, run from disk and from a trusted controller: a dialog a control opens, modeless and
    // modal (the click returns once it is closed, so a timer answers it), and the mask palette's
    // option buttons reached by name.
    const QByteArray ui = PageRunner::form(400, 300,
                                           PageRunner::item("TestDialogOpener", "ctl_Opener") +
                                               PageRunner::item("NXRMaskToolButtons", "ctl_Mask"));
    const QByteArray js = R"JS(
var log = [];
ctl_Opener.OnClosed.connect(function (ok, text) { log.push("closed " + ok + " " + text); });
ctl_Mask.OnToolSelected.connect(function (tool) { log.push("tool " + tool); });
ctl_Mask.OnToolSizeSelected.connect(function (size) { log.push("size " + size); });

var tool = host.child(ctl_Mask, "fra_ToolSelection/opt_Tool2");
host.click(tool, 4, 4);
host.click(host.child(ctl_Mask, "opt_Size1"), 4, 4);
log.push("missing " + host.child(ctl_Mask, "opt_Nothing") + " " + host.child(ctl_Mask, "fra_SizeSelection/opt_Tool2"));
host.screenshot("tool.png", tool);
log.push("tool size " + tool.width + "x" + tool.height);

ctl_Opener.Modal = false;
host.click(ctl_Opener, 5, 5);
var d = host.findWindow("dlg_Test");
log.push("windows " + host.windows().length + ", first is the page " + (String(host.windows()[0]) === String(host.window)));
log.push("by title " + (host.findWindow("Test dialog") !== null) + ", unknown " + host.findWindow("nope"));
log.push("dialog members " + typeof d.show);
host.type(host.child(d, "txt_Answer"), "first");
host.screenshot("dialog.png", d);
host.click(host.child(d, "cmd_Cancel"), 3, 3);
log.push("after cancel " + host.windows().length);

ctl_Opener.Modal = true;
setTimeout(function () {
  var m = host.findWindow("dlg_Test");
  host.type(host.child(m, "txt_Answer"), "42");
  host.click(host.child(m, "cmd_OK"), 3, 3);
}, 50);
host.click(ctl_Opener, 5, 5);
log.push("modal click returned");
console.log(log.join("\n"));
)JS";
    const QStringList expected{"tool 2",
                               "size 1",
                               "missing null null",
                               "tool size 24x24",
                               "windows 2, first is the page true",
                               "by title true, unknown null",
                               "dialog members function",
                               "closed false first",
                               "after cancel 1",
                               "closed true 42",
                               "modal click returned"};

    PageRunner runner;
    const PageRun local =
        runner.runPage(QStringLiteral("local"), ui, js, {"--screenshot-dir", runner.path("local")});
    EXPECT_RUN(local, 0);
    const QStringList lines = local.outLines().filter(QRegularExpression("^(?!screenshot written)"));
    ASSERT_GE(lines.size(), 4) << qPrintable(local.out);
    const QStringList size = lines.at(3).mid(10).split('x');
    EXPECT_EQ(QImage(runner.path("local/tool.png")).size(),
              QSize(size.value(0).toInt(), size.value(1).toInt()));
    EXPECT_EQ(lines.mid(0, 3) + lines.mid(4), expected.mid(0, 3) + expected.mid(4));
    const QImage dialog(runner.path("local/dialog.png"));
    EXPECT_GT(dialog.width(), 50);
    EXPECT_GT(coloursIn(dialog, dialog.rect()), 3);

    // A controller's page gets the dialog only as a target for the host's functions, its Qt
    // widgets through the allow-list's stand-ins.
    TestHttpServer server;
    server.servePage(ui, js);
    const PageRun remote = runner.run({"--headless", "--timeout", "20000", "--trust", server.url(""),
                                       "--screenshot-dir", runner.path("remote"), server.url("/p/")});
    EXPECT_RUN(remote, 0);
    const QStringList remoteLines = remote.outLines().filter(QRegularExpression("^(?!screenshot written)"));
    QStringList remoteExpected = expected;
    remoteExpected.replace(6, "dialog members undefined");
    EXPECT_EQ(remoteLines.mid(0, 3) + remoteLines.mid(4), remoteExpected.mid(0, 3) + remoteExpected.mid(4));
    EXPECT_FALSE(QImage(runner.path("remote/dialog.png")).isNull());
}

TEST(HostTools, ScreenshotsShowOpenGlContent)
{
    // The 3D plot draws its scene with OpenGL: in a screenshot of the page and of the plot's own
    // drawing surface the scene is there (many colours), not an empty area.
    PageRunner runner;
    const QByteArray ui = PageRunner::form(500, 400, PageRunner::item("NXR3DPlot", "plot"));
    const PageRun run =
        runner.runPage(QStringLiteral("gl"), ui, R"JS(
plot.InitializeDrawing();
plot.AddCamera("CAM", 15, 81, 700, -100, 0, 600, 180, 0, 0, 0, 0, 0, 0, 0, 0,
               0, 0, 500, 180, 0, 0, 0, 0, 500, 180, 0, 0, "GF1", "UF1");
for (var i = 0; i < 9; ++i)
  for (var j = 0; j < 9; ++j)
    plot.AddCalibrationPoint((i - 4) * 15, (j - 4) * 15, 0);
plot.FinishCamera();
plot.FinishDrawing();
host.wait(200);
var gl = host.child(plot, "pic_OpenGL");
console.log("gl " + (plot.x + gl.x) + " " + (plot.y + gl.y) + " " + gl.width + " " + gl.height);
host.screenshot("gl.png", gl);
)JS",
                       {"--screenshot", runner.path("page.png"), "--screenshot-dir", runner.dir()});
    if (run.err.contains("ChoosePixelFormat failed"))
        GTEST_SKIP() << "no OpenGL on this platform (the GUI tests use Xvfb when it is installed)";
    EXPECT_RUN(run, 0);
    const QStringList gl = lineStartingWith(run, "gl ").split(' ');
    ASSERT_EQ(gl.size(), 5) << qPrintable(run.out);
    const QRect inPage(gl[1].toInt(), gl[2].toInt(), gl[3].toInt(), gl[4].toInt());
    ASSERT_GT(inPage.width(), 100);
    const QImage own(runner.path("gl.png"));
    EXPECT_EQ(own.size(), inPage.size());
    EXPECT_GT(coloursIn(own, own.rect()), 20);
    const QImage page(runner.path("page.png"));
    EXPECT_GT(coloursIn(page, inPage.adjusted(10, 10, -10, -10)), 20);
}

TEST(HostTools, ScriptErrorsShowInTheWindowAndTheConsoleShowsObjects)
{
    PageRunner runner;
    const QByteArray ui = PageRunner::form(400, 200, PageRunner::item("TestClickPad", "ctl_Pad"));
    const PageRun console = runner.runPage(QStringLiteral("console"), ui, R"JS(
var a = {n: 1, s: "text", "odd key": true, list: [1, "two", null, undefined],
         nested: {deep: {deeper: {deepest: 1}}}, f: function named() {}};
a.self = a;
console.log(a);
console.log("label", [1, [2, [3, [4]]]], new Date(0), undefined, null, {}, []);
var big = [];
for (var i = 0; i < 40; ++i) big.push(i);
console.log(big);
var c = createObject("TestCounter");
c.Count = 4;
console.log(c);
console.log({pad: ctl_Pad}.pad === ctl_Pad, new Error("boom"));
)JS");
    EXPECT_RUN(console, 0);
    QString numbers;
    for (int i = 0; i < 30; ++i)
        numbers += QString::number(i) + ", ";
    EXPECT_EQ(
        console.outLines(),
        (QStringList{"{n: 1, s: \"text\", \"odd key\": true, list: [1, \"two\", null, undefined], nested: "
                     "{deep: {deeper: [Object]}}, f: [Function: named], self: [Circular]}",
                     "label [1, [2, [3, [Array]]]] 1970-01-01T00:00:00.000Z undefined null {} []",
                     "[" + numbers + "... 10 more]", "TestCounter {LastErrorString: \"\", Count: 4}",
                     "true Error: boom"}));

    // On screen, errors show at the top of the page window until dismissed; headless they do not.
    const QByteArray js = R"JS(
setTimeout(function () { null.first; }, 10);
setTimeout(function () { undefined.second; }, 20);
setTimeout(function () {
  var banner = host.child(host.window, "host_ErrorBanner");
  if (banner === null) { console.log("no banner"); host.exit(0); return; }
  console.log("banner " + banner.visible + " at " + banner.y + ", as wide as the window " + (banner.width === host.window.width));
  console.log(host.child(banner, "lbl_Error").text);
  host.screenshot("banner.png");
  host.click(host.child(banner, "cmd_Dismiss"), 5, 5);
  console.log("after dismiss " + banner.visible);
  host.exit(0);
}, 300);
)JS";
    runner.write("banner/page.ui", ui);
    runner.write("banner/page.js", js);
    const PageRun shown =
        runner.run({"--automation", "--screenshot-dir", runner.dir(), runner.path("banner")});
    EXPECT_RUN(shown, 2);
    const QString script = runner.path("banner/page.js");
    EXPECT_EQ(shown.outLines(),
              (QStringList{"banner true at 0, as wide as the window true",
                           script + ":3: TypeError: Cannot read property 'second' of undefined",
                           "(2 script errors; the others are on the console)",
                           "screenshot written to " + runner.path("banner.png") + " (400x200)",
                           "after dismiss false"}));
    EXPECT_TRUE(shown.err.contains(script + ":2: TypeError")) << qPrintable(shown.err);
    const QImage shot(runner.path("banner.png"));
    ASSERT_FALSE(shot.isNull());
    EXPECT_EQ(shot.pixel(shot.width() / 2, 2) | 0xff000000, qRgb(0xb0, 0x1e, 0x1e));

    const PageRun headless = runner.runPage(QStringLiteral("headless"), ui, js);
    EXPECT_RUN(headless, 2);
    EXPECT_EQ(headless.outLines(), QStringList{"no banner"});
}

namespace {

QByteArray solidPng(int size, QRgb colour)
{
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

TEST(HostTools, ControllerFormsBringTheirPicturesAndFoldersWithoutPageJsonAreExplained)
{
    PageRunner runner;
    const QRgb red = qRgb(250, 0, 0);
    const QRgb green = qRgb(0, 250, 0);
    const QString localPicture = runner.write("local.png", solidPng(40, green));
    TestHttpServer server;
    server.set("/site/pics/red.png", "image/png", solidPng(40, red));
    server.set("/green.png", "image/png", solidPng(40, green));
    server.set("/site/huge.png", "image/png", QByteArray(17 << 20, 'x'));
    const QRgb blue = qRgb(0, 0, 250);
    server.set("/site/icons/blue.png", "image/png", solidPng(32, blue));
    const QByteArray button = PageRunner::item(
        "QPushButton", "cmd_Icon",
        "<property "
        "name=\"icon\"><iconset><normaloff>icons/blue.png</normaloff>icons/blue.png</iconset></property>"
        "<property name=\"iconSize\"><size><width>32</width><height>32</height></size></property>");
    auto label = [](const QByteArray& name, const QString& picture) {
        return PageRunner::item(
            "QLabel", name, "<property name=\"pixmap\"><pixmap>" + picture.toUtf8() + "</pixmap></property>");
    };
    // Beside the form; a local file by path (a path on the controller then) and by URL; another origin
    // (the same server under another name); missing; too large; and a button's icon beside the form.
    const QString otherOrigin = QStringLiteral("http://localhost:%1/green.png").arg(server.port());
    server.set("/site/p.ui", "text/xml",
               PageRunner::form(300, 320,
                                label("lbl_Red", "pics/red.png") + label("lbl_Local", localPicture) +
                                    label("lbl_File", QUrl::fromLocalFile(localPicture).toString()) +
                                    label("lbl_Other", otherOrigin) + label("lbl_Missing", "gone.png") +
                                    label("lbl_Huge", "huge.png") + button));
    server.set("/site/p.js", "application/javascript", "console.log('ran');");
    const QString shot = runner.path("remote.png");
    const PageRun run =
        runner.run({"--headless", "--trust", server.url(""), "--screenshot", shot, server.url("/site/p.ui")});
    EXPECT_RUN(run, 0);
    const QImage image(shot);
    EXPECT_GE(pixelsOf(image, red), 40 * 40);
    EXPECT_GE(pixelsOf(image, blue), 32 * 32);
    EXPECT_EQ(pixelsOf(image, green), 0);
    EXPECT_TRUE(server.requests().contains("GET /site/pics/red.png"))
        << qPrintable(server.requests().join('\n'));
    EXPECT_FALSE(server.requests().contains("GET /green.png"));
    for (const QString& text :
         {"the form's picture " + server.url(localPicture) + " could not be fetched: HTTP 404",
          "the form's picture " + QUrl::fromLocalFile(localPicture).toString() +
              " is not beside it on its controller",
          "the form's picture " + otherOrigin + " is not beside it",
          "the form's picture " + server.url("/site/gone.png") + " could not be fetched: HTTP 404"})
        EXPECT_TRUE(run.err.contains(text)) << qPrintable(text) << "\n" << qPrintable(run.err);

    // The same form from disk reads its pictures as they are named.
    runner.write("disk/pics/red.png", solidPng(40, red));
    runner.write(
        "disk/page.ui",
        PageRunner::form(300, 200, label("lbl_Red", "pics/red.png") + label("lbl_Local", localPicture)));
    const PageRun disk =
        runner.run({"--headless", "--screenshot", runner.path("disk.png"), runner.path("disk")});
    EXPECT_RUN(disk, 0);
    EXPECT_GE(pixelsOf(QImage(runner.path("disk.png")), red), 40 * 40);
    EXPECT_GE(pixelsOf(QImage(runner.path("disk.png")), green), 40 * 40);

    // A controller answers a missing page.json with a web page of its own.
    server.set("/ctl/page.json", "text/html", "<!DOCTYPE html><html><body>Not found</body></html>");
    server.set("/untyped/page.json", "application/octet-stream", "  <html><body>Not found</body></html>");
    for (const auto& [page, message] :
         {std::pair{server.url("/ctl/"), server.url("/ctl/page.json") +
                                             ": no page.json there (the controller "
                                             "answered with a web page); name the form: " +
                                             server.url("/ctl/") + "NAME.ui"},
          {server.url("/untyped"), server.url("/untyped/page.json") + ": no page.json there"},
          {server.url("/ctl/page.json"),
           server.url("/ctl/page.json") + " is a web page, not a page description"}}) {
        const PageRun refused = runner.run({"--headless", "--trust", server.url(""), page});
        EXPECT_RUN(refused, 1);
        EXPECT_TRUE(refused.err.contains(message)) << qPrintable(refused.err);
        EXPECT_FALSE(refused.err.contains("not valid JSON")) << qPrintable(refused.err);
    }
}

namespace {

// Runs the test page host in the background; its output is read while the test goes on.
class BackgroundRun
{
public:
    BackgroundRun(const PageRunner& runner, const QStringList& arguments)
    {
        runner.prepare(m_process);
        m_process.start(QStringLiteral(HOST_TEST_PAGE), arguments);
    }
    ~BackgroundRun()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }
    // Waits until `text` is in the output (stdout and stderr) `times` times, or the process ends.
    bool waitFor(const QString& text, int times = 1, int timeoutMs = 20000)
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < timeoutMs) {
            collect();
            if (m_out.count(text) + m_err.count(text) >= times)
                return true;
            if (m_process.state() == QProcess::NotRunning)
                return false;
            m_process.waitForReadyRead(50);
        }
        return false;
    }
    int finish(int timeoutMs = 20000)
    {
        m_process.waitForFinished(timeoutMs);
        collect();
        return m_process.state() == QProcess::NotRunning ? m_process.exitCode() : -1;
    }
    QString out() const { return m_out; }
    QString err() const { return m_err; }

private:
    void collect()
    {
        m_out += QString::fromLocal8Bit(m_process.readAllStandardOutput());
        m_err += QString::fromLocal8Bit(m_process.readAllStandardError());
    }
    QProcess m_process;
    QString m_out;
    QString m_err;
};

} // namespace

TEST(HostTools, WatchLoadsThePageAgainWhenItsFilesChange)
{
    PageRunner runner;
    runner.write("w/page.ui", PageRunner::form(200, 100, PageRunner::item("QLabel", "lbl_Text")));
    runner.write("w/page.js", "console.log('v1 ' + typeof lbl_Text);\n");
    BackgroundRun run(runner, {"--watch", "--automation", runner.path("w")});
    ASSERT_TRUE(run.waitFor("v1 object")) << qPrintable(run.err());

    // A broken script: its error is told, the page stays.
    runner.write("w/page.js", "console.log('v2');\nmissing();\n");
    ASSERT_TRUE(run.waitFor(runner.path("w/page.js") + ":2: ReferenceError")) << qPrintable(run.err());
    // A form that cannot be read: the host says so and waits for the next change.
    runner.write("w/page.ui", "<ui version=\"4.0\"><widget class=\"QWidget\"");
    ASSERT_TRUE(run.waitFor("(waiting for a change to its files, --watch)")) << qPrintable(run.err());
    // Saved as editors do, a new file renamed over the old one.
    runner.write("w/page.ui.new", PageRunner::form(200, 100, PageRunner::item("QLabel", "lbl_Other")));
    QFile::remove(runner.path("w/page.ui"));
    QFile::rename(runner.path("w/page.ui.new"), runner.path("w/page.ui"));
    ASSERT_TRUE(run.waitFor("v2", 2)) << qPrintable(run.err());
    runner.write("w/page.js",
                 "console.log('v3 ' + typeof lbl_Text + ' ' + typeof lbl_Other);\nhost.exit(4);\n");
    EXPECT_EQ(run.finish(), 4) << qPrintable(run.err());
    EXPECT_TRUE(run.out().startsWith("v1 object\n")) << qPrintable(run.out());
    EXPECT_TRUE(run.out().endsWith("v3 undefined object\n")) << qPrintable(run.out());
    EXPECT_GE(run.err().count("the page's files changed; loading it again"), 3) << qPrintable(run.err());

    // Not for runs that end by themselves, nor for pages from the network.
    for (const auto& [args, message] :
         {std::pair{QStringList{"--watch", "--headless", runner.path("w")}, "--watch is for runs on screen"},
          {QStringList{"--watch", "http://127.0.0.1:1/p/"}, "--watch works with pages on disk only"}}) {
        const PageRun refused = runner.run(args);
        EXPECT_RUN(refused, 1);
        EXPECT_TRUE(refused.err.contains(message)) << qPrintable(refused.err);
    }
}
