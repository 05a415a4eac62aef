// The page host as a page author's tool, end to end: the automation a page's own tests need
// (modifier keys, touch, named children, dialogs, OpenGL in screenshots) and the help it gives
// while a page is written (reload on change, errors in the window, readable console output,
// clear messages for a controller's folder, a controller form's own pictures).

#include "PageRunner.h"
#include "TestClasses.h"
#include "TestHttpServer.h"

#include <QImage>
#include <QSet>

#include <gtest/gtest.h>

namespace {

#define EXPECT_RUN(run, code)                                                                                \
    ASSERT_FALSE((run).timedOut);                                                                            \
    ASSERT_FALSE((run).crashed) << qPrintable((run).err);                                                    \
    EXPECT_EQ((run).exitCode, (code)) << "stdout:\n"                                                         \
                                      << qPrintable((run).out) << "stderr:\n"                                \
                                      << qPrintable((run).err)

QString lineStartingWith(const PageRun& run, const QString& prefix)
{
    for (const QString& line : run.outLines())
        if (line.startsWith(prefix))
            return line;
    return QString();
}

// The distinct colours in a rectangle of an image.
int coloursIn(const QImage& image, const QRect& area)
{
    QSet<QRgb> colours;
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            colours.insert(image.pixel(x, y) | 0xff000000);
    return int(colours.size());
}

} // namespace

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
host.press(ctl_Pad, 12, 12, "right", "shift+control");
console.log("held while pressed: " + ctl_Pad.HeldModifiers);
host.move(ctl_Pad, 13, 13, "Shift+Ctrl");
host.release(ctl_Pad, 14, 14, "right", "Ctrl+Shift");
console.log("held after release: " + ctl_Pad.HeldModifiers);
host.drag(ctl_Pad, 20, 20, 28, 28, "left", "Alt");
host.wheel(ctl_Pad, 5, 5, 1, "Meta");
host.key(ctl_Pad, "Ctrl+Shift+A");
console.log("held after key: " + ctl_Pad.HeldModifiers);
host.click(ctl_Pad, 16, 16);
attempt(function () { host.click(ctl_Pad, 1, 1, "left", "Hyper"); });
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
    EXPECT_EQ(lineStartingWith(run, "host.click"),
              "host.click: unknown modifier in \"Hyper\" (Shift, Ctrl, Alt or Meta, joined by +)");
    const QStringList pad = lineStartingWith(run, "pad ").mid(4).split(';');
    const QStringList expected{
        "press left 10,10 shift",
        "release left 10,10 shift",
        "press left 11,11 ctrl alt",
        "release left 11,11 ctrl alt",
        "double left 11,11 ctrl alt",
        "release left 11,11 ctrl alt",
        "press right 12,12 shift ctrl",
        "drag 13,13 shift ctrl",
        "drag 14,14 shift ctrl", // the window system's move to where the button is let go
        "release right 14,14 shift ctrl",
        "press left 20,20 alt",
        "drag 21,21 alt",
        "drag 22,22 alt",
        "drag 23,23 alt",
        "drag 24,24 alt",
        "drag 25,25 alt",
        "drag 26,26 alt",
        "drag 27,27 alt",
        "drag 28,28 alt",
        "release left 28,28 alt",
        "wheel 120 5,5 meta",
        "key A '' shift ctrl",
        "press left 16,16",
        "release left 16,16",
    };
    EXPECT_EQ(pad, expected) << qPrintable(pad.join('\n'));

    // A tap on a plain button is a click; a touch control gets the fingers themselves.
    EXPECT_EQ(lineStartingWith(run, "taps "), "taps 1");
    for (const char* message : {"host.touch: finger 1 is already down", "host.touch: finger 1 is not down",
                                "host.touch: unknown action \"wiggle\" (press, move or release)",
                                "host.touchDrag: as many end points as start points, one per finger"})
        EXPECT_TRUE(run.outLines().contains(message)) << message << "\n" << qPrintable(run.out);
    const QStringList touch = lineStartingWith(run, "touch ").mid(6).split(';');
    ASSERT_GE(touch.size(), 14) << qPrintable(touch.join('\n'));
    EXPECT_EQ(touch.mid(0, 3), (QStringList{"touch begin 10,10", "touch end 10,10", "touch begin 40,40|60,40"}));
    EXPECT_EQ(touch.at(3), "touch update 39,40|61,40");
    EXPECT_TRUE(touch.contains("touch end 30,40|70,40")) << qPrintable(touch.join('\n'));
    // The two fingers moved apart to twice their distance: Qt's pinch recogniser sees a widening
    // pinch (measured from its first update, so a little under 2).
    const QString pinch = touch.value(touch.indexOf("touch end 30,40|70,40") - 1);
    ASSERT_TRUE(pinch.startsWith("pinch ")) << qPrintable(touch.join('\n'));
    EXPECT_GT(pinch.mid(6).toDouble(), 1.5);
    const QStringList last = touch.mid(touch.lastIndexOf("touch begin 5,5")).filter("touch ");
    EXPECT_EQ(last,
              (QStringList{"touch begin 5,5", "touch update 5,5|50,50", "touch update 6,6|50,50",
                           "touch end 7,7|50,50"}));
}
