// Drags on the movable window and cursor through the page host's mouse, as an operator makes
// them, at 50, 100, 200 and 137 %, for a turned rotatable window and a straight fixed one.
// Expected values are worked out here from the zoom and the points pressed: what each drag
// stores, that Escape (Cancel) after the drags restores the window exactly, that each edit raises
// its exit event once, and that EraseOverlay leaves the graphics alone during an edit.
// Prints "movable drags passed" and exits 0, or lists what failed and exits 1.

var failures = [];
function expect(condition, what) {
    if (!condition)
        failures.push(what);
}
function close(a, b, tolerance) {
    return Math.abs(a - b) <= (tolerance === undefined ? 1e-6 : tolerance);
}

var windowExits = [];
var cursorExits = [];
display.OnExitMovableWindowEditMode.connect(function (accepted) { windowExits.push(accepted); });
display.OnExitMovableCursorEditMode.connect(function (accepted) { cursorExits.push(accepted); });

var folder = String(host.pageUrl).replace(/^file:\/\//, "").replace(/\/[^\/]*$/, "");
display.LoadLocalImage(host.args.image ? String(host.args.image) : folder + "/../../data/sample-part.png");

// Which image point lies under a point of the display: the movable cursor, pressed where it is
// not, jumps to the point pressed. Two presses give image = origin + k * widget.
function calibrate(zoom) {
    display.SetMovableCursor(display.ImageWidth / 2, display.ImageHeight / 2);
    display.EditMovableCursor();
    var a = {x: display.width / 2 - 150, y: display.height / 2 - 100};
    var b = {x: display.width / 2 + 150, y: display.height / 2 + 100};
    host.click(display, a.x, a.y);
    var ax = display.MovableCursorX, ay = display.MovableCursorY;
    host.click(display, b.x, b.y);
    var bx = display.MovableCursorX, by = display.MovableCursorY;
    var exitsBefore = cursorExits.length;
    host.key(display, "Escape");
    host.wait(20);
    expect(cursorExits.length === exitsBefore + 1 && cursorExits[cursorExits.length - 1] === 0,
           "cursor edit cancelled once at " + zoom + "% (" + cursorExits.join(",") + ")");
    expect(display.MovableCursorX === display.ImageWidth / 2, "cursor restored by Cancel at " + zoom + "%");
    var k = (bx - ax) / (b.x - a.x);
    expect(close(k, (by - ay) / (b.y - a.y), 1e-9), "square pixels at " + zoom + "%");
    // On a high-density screen (ratio=, the host's QT_SCALE_FACTOR) a screen pixel is `ratio` device pixels.
    var ratio = host.args.ratio ? Number(host.args.ratio) : 1;
    expect(close(k * zoom / 100, ratio, 1e-6), "image pixels per screen pixel at " + zoom + "%: " + k);
    return {k: k, ox: ax - k * a.x, oy: ay - k * a.y};
}

function toWidget(map, p) { return {x: (p.x - map.ox) / map.k, y: (p.y - map.oy) / map.k}; }
function toImage(map, w) { return {x: map.ox + map.k * Math.round(w.x), y: map.oy + map.k * Math.round(w.y)}; }
function windowNow() {
    return {top: display.MovableWindowTop, left: display.MovableWindowLeft, height: display.MovableWindowHeight,
            width: display.MovableWindowWidth, angle: display.MovableWindowAngle};
}
function sameWindow(a, b, tolerance) {
    return close(a.top, b.top, tolerance) && close(a.left, b.left, tolerance) &&
           close(a.height, b.height, tolerance) && close(a.width, b.width, tolerance) &&
           close(a.angle, b.angle, tolerance);
}
function text(w) {
    return "[" + [w.top, w.left, w.height, w.width, w.angle].map(function (v) { return v.toFixed(4); }).join(", ") + "]";
}
// The window after its U-end (right) edge went through image point p.
function afterRightEdge(w, p) {
    var a = w.angle * Math.PI / 180, u = {x: Math.cos(a), y: -Math.sin(a)};
    var c = {x: w.left + w.width / 2, y: w.top + w.height / 2};
    var e = (p.x - c.x) * u.x + (p.y - c.y) * u.y;
    var width = e + w.width / 2, shift = (e - w.width / 2) / 2;
    var c2 = {x: c.x + u.x * shift, y: c.y + u.y * shift};
    return {top: c2.y - w.height / 2, left: c2.x - width / 2, height: w.height, width: width, angle: w.angle};
}

function round(zoom, angle) {
    var what = zoom + "%, angle " + angle;
    display.SetProperty("Zoom", String(zoom));
    host.wait(20);
    var map = calibrate(zoom);
    var centre = toImage(map, {x: display.width / 2, y: display.height / 2});
    var w0 = {width: 180 * map.k, height: 110 * map.k, angle: angle};
    w0.left = centre.x - w0.width / 2;
    w0.top = centre.y - w0.height / 2;
    display.SetMovableWindow(w0.top, w0.left, w0.height, w0.width, w0.angle, angle !== 0);
    display.ShowMovableWindow(0x00FF00);
    var original = windowNow();
    var a = angle * Math.PI / 180, u = {x: Math.cos(a), y: -Math.sin(a)}, v = {x: Math.sin(a), y: Math.cos(a)};

    // Edit 1: move, widen, turn; then Cancel puts everything back.
    var exits = windowExits.length;
    display.EditMovableWindow();
    expect(display.GetProperty("EditingWindow") === "True", "editing the window at " + what);
    var from = toWidget(map, centre);
    host.drag(display, Math.round(from.x), Math.round(from.y), Math.round(from.x) + 30, Math.round(from.y) - 20);
    var moved = windowNow();
    var expected = {top: original.top - 20 * map.k, left: original.left + 30 * map.k, height: original.height,
                    width: original.width, angle: original.angle};
    expect(sameWindow(moved, expected, 1e-6), "move at " + what + ": " + text(moved) + " != " + text(expected));

    // The right edge a quarter of the height above its middle (clear of the turning handle).
    var c = {x: moved.left + moved.width / 2, y: moved.top + moved.height / 2};
    var edge = toWidget(map, {x: c.x + u.x * moved.width / 2 - v.x * moved.height / 4,
                              y: c.y + u.y * moved.width / 2 - v.y * moved.height / 4});
    var to = {x: Math.round(edge.x) + 25, y: Math.round(edge.y) + 7};
    host.drag(display, Math.round(edge.x), Math.round(edge.y), to.x, to.y);
    var widened = windowNow();
    expected = afterRightEdge(moved, toImage(map, to));
    expect(sameWindow(widened, expected, 1e-6), "right edge at " + what + ": " + text(widened) + " != " + text(expected));

    if (angle !== 0) {
        // The turning handle in the middle of the right edge, taken round by about 25 degrees.
        c = {x: widened.left + widened.width / 2, y: widened.top + widened.height / 2};
        var handle = toWidget(map, {x: c.x + u.x * widened.width / 2, y: c.y + u.y * widened.width / 2});
        var r = widened.width / 2 / map.k, b = a + 25 * Math.PI / 180;
        var cw = toWidget(map, c);
        var end = {x: Math.round(cw.x + Math.cos(b) * r), y: Math.round(cw.y - Math.sin(b) * r)};
        var press = {x: Math.round(handle.x), y: Math.round(handle.y)};
        host.drag(display, press.x, press.y, end.x, end.y);
        var turned = windowNow();
        var p0 = toImage(map, press), p1 = toImage(map, end);
        var turn = (Math.atan2(-(p1.y - c.y), p1.x - c.x) - Math.atan2(-(p0.y - c.y), p0.x - c.x)) * 180 / Math.PI;
        expected = {top: widened.top, left: widened.left, height: widened.height, width: widened.width,
                    angle: widened.angle + turn};
        expect(sameWindow(turned, expected, 1e-6), "turn at " + what + ": " + text(turned) + " != " + text(expected));
    } else {
        // A fixed window has no turning handle: the middle of its right edge only widens it.
        c = {x: widened.left + widened.width / 2, y: widened.top + widened.height / 2};
        var middle = toWidget(map, {x: c.x + widened.width / 2, y: c.y});
        host.drag(display, Math.round(middle.x), Math.round(middle.y), Math.round(middle.x) + 10,
                  Math.round(middle.y) - 30);
        expect(display.MovableWindowAngle === 0, "fixed window not turned at " + what);
    }

    // Graphics drawn during the edit survive EraseOverlay, the window with them.
    display.DrawText("kept", 10, 10, 0x0000FF);
    display.EraseOverlay();
    expect(display.MovableWindowVisible, "EraseOverlay during the edit left the window at " + what);

    host.key(display, "Escape");
    host.wait(20);
    expect(display.GetProperty("EditingWindow") === "False", "edit ended by Cancel at " + what);
    expect(sameWindow(windowNow(), original, 0), "Cancel restored the window exactly at " + what + ": " +
           text(windowNow()) + " != " + text(original));
    expect(windowExits.length === exits + 1 && windowExits[exits] === 0,
           "one exit event (0) for the cancelled edit at " + what + " (" + windowExits.slice(exits).join(",") + ")");

    // Edit 2: move and accept; the window keeps the move, one exit event (1).
    exits = windowExits.length;
    display.EditMovableWindow();
    host.drag(display, Math.round(from.x), Math.round(from.y), Math.round(from.x) - 12, Math.round(from.y) + 9);
    host.key(display, "Return");
    host.wait(20);
    expected = {top: original.top + 9 * map.k, left: original.left - 12 * map.k, height: original.height,
                width: original.width, angle: original.angle};
    expect(sameWindow(windowNow(), expected, 1e-6), "accepted move at " + what + ": " + text(windowNow()));
    expect(windowExits.length === exits + 1 && windowExits[exits] === -1,
           "one exit event (1) for the accepted edit at " + what + " (" + windowExits.slice(exits).join(",") + ")");
    // Outside an edit EraseOverlay empties the graphics, the window's item too.
    display.EraseOverlay();
    expect(!display.MovableWindowVisible, "EraseOverlay after the edit removed the window at " + what);
}

function run() {
    // The host's automation runs the event loop inside each click and drag, where the host could
    // take the page for idle and end it: a pending timer keeps it running until the end.
    var keepAlive = setInterval(function () {}, 1000);
    expect(display.ImageWidth > 0, "image shown");
    var zooms = [50, 100, 200, 137];
    for (var i = 0; i < zooms.length; ++i) {
        round(zooms[i], 30);
        round(zooms[i], 0);
    }
    expect(display.LastErrorString === "", "no error (" + display.LastErrorString + ")");
    // Script arrays: a text without its X is skipped, and said so.
    display.DrawTextArray(["a", "b", "c"], [10, 20], [10, 20, 30], [255, 255, 255]);
    expect(display.LastErrorString.indexOf("Error in DrawTextArray: 1 of 3 texts skipped") === 0,
           "DrawTextArray with a short X array (" + display.LastErrorString + ")");
    clearInterval(keepAlive);
    if (failures.length > 0) {
        console.log("movable drags FAILED:\n  " + failures.join("\n  "));
        host.exit(1);
    } else {
        console.log("movable drags passed");
        host.exit(0);
    }
}

setTimeout(run, 200);
