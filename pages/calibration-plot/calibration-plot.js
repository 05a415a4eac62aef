// Calibration check page: two simulated cameras above a work area, each with its calibration grid,
// calibration points and field of view, and check points found by the cameras beside their nominal
// positions. The operator turns, moves and zooms the view with the mouse.
//
// Headless (or with --script-arg demo=1) the page turns the view by itself, writes a screenshot
// after each step into shots= (default: the current folder) and saves the plot's own picture into
// the storage folder. With --script-arg check=1 it drives the mouse through the host, checks the
// plot's answers and exits 0 ("calibration-plot check passed") or 1.

var args = (typeof host !== "undefined" && host.args) ? host.args : {};

// Rz(r) * Ry(p) * Rx(w) applied to a vector: the plot's pose convention (degrees, fixed axes).
function rotate(w, p, r, v) {
    var d = Math.PI / 180;
    var cw = Math.cos(w * d), sw = Math.sin(w * d), cp = Math.cos(p * d), sp = Math.sin(p * d);
    var cr = Math.cos(r * d), sr = Math.sin(r * d);
    var x = v[0], y = v[1] * cw - v[2] * sw, z = v[1] * sw + v[2] * cw; // about X
    var x2 = x * cp + z * sp, z2 = -x * sp + z * cp;                     // about Y
    return [x2 * cr - y * sr, x2 * sr + y * cr, z2];                     // about Z
}

var cameras = [
    { name: "CAM-LEFT", pos: [-220, -30, 720], wpr: [180, -12, 4], grid: [-200, 0, 0, 0, 0, 3] },
    { name: "CAM-RIGHT", pos: [230, 20, 700], wpr: [180, 14, -6], grid: [210, 10, 0, 0, 0, -4] },
];
var spacing = 15, side = 9;
var seed = 1;
function noise() { seed = (seed * 16807) % 2147483647; return (seed / 2147483647 - 0.5); }

function buildScene(checkRound) {
    plot.InitializeDrawing();
    for (var c = 0; c < cameras.length; ++c) {
        var cam = cameras[c], g = cam.grid;
        plot.AddCamera(cam.name, spacing, side * side, 700,
                       cam.pos[0], cam.pos[1], cam.pos[2], cam.wpr[0], cam.wpr[1], cam.wpr[2],
                       g[0], g[1], g[2], g[3], g[4], g[5],
                       0, 0, 500, 180, 0, 0, 0, 0, 500, 180, 0, 0, "GF" + (c + 1), "UF1");
        // The field of view: rays through the picture corners (about 32 x 26 degrees).
        var corners = [[-0.29, -0.23], [0.29, -0.23], [0.29, 0.23], [-0.29, 0.23]];
        for (var k = 0; k < 4; ++k) {
            var dir = rotate(cam.wpr[0], cam.wpr[1], cam.wpr[2], [corners[k][0], corners[k][1], 1]);
            plot.AddFOVCorner(cam.pos[0], cam.pos[1], cam.pos[2], dir[0], dir[1], dir[2]);
        }
        // The calibration points: the grid's dots, seen a little off their ideal places.
        for (var i = 0; i < side; ++i)
            for (var j = 0; j < side; ++j) {
                var local = [(i - 4) * spacing, (j - 4) * spacing, 0];
                var p = rotate(g[3], g[4], g[5], local);
                plot.AddCalibrationPoint(g[0] + p[0] + 0.3 * noise(), g[1] + p[1] + 0.3 * noise(), g[2] + p[2]);
            }
        plot.FinishCamera();
    }
    addCheckPoints(checkRound);
    plot.FinishDrawing();
}

function addCheckPoints(round) {
    var nominal = [[-60, 70, 0], [0, -60, 0], [60, 70, 0], [-230, 80, 0], [240, -70, 0]];
    for (var f = 0; f < nominal.length; ++f) {
        var c = nominal[f][0] < 0 ? 0 : 1, cam = cameras[c];
        var off = [nominal[f][0] + 4 * noise() * (round + 1), nominal[f][1] + 4 * noise() * (round + 1),
                   nominal[f][2] + noise()];
        plot.AddFoundPoint(c, nominal[f][0], nominal[f][1], nominal[f][2], off[0], off[1], off[2],
                           cam.pos[0], cam.pos[1], cam.pos[2],
                           off[0] - cam.pos[0], off[1] - cam.pos[1], off[2] - cam.pos[2]);
    }
}

var round = 0;
buildScene(round);
lbl_Status.text = "Cameras: " + plot.GetProperty("CameraCount") + ", check points: " +
                  plot.GetProperty("FoundPointCount");
plot.OnError.connect(function () { lbl_Status.text = plot.LastErrorString; });

cmd_Rebuild.clicked.connect(function () { buildScene(round); });
cmd_NewCheck.clicked.connect(function () {
    round = (round + 1) % 4;
    plot.ClearFoundPoints();
    addCheckPoints(round);
    plot.FinishDrawing();
});
cmd_Save.clicked.connect(function () {
    plot.SaveImage("calibration-plot/view.png");
    if (plot.LastErrorString === "")
        lbl_Status.text = "Saved as calibration-plot/view.png in the storage folder";
});

function runCheck() {
    var failures = [];
    function expect(ok, what) { if (!ok) failures.push(what); }
    expect(plot.GetProperty("OpenGL") === "True", "OpenGL picture (" + plot.LastErrorString + ")");
    var h = Number(plot.GetProperty("PictureHeight"));
    plot.SetProperty("Azimuth", "0");
    plot.SetProperty("Elevation", "0");
    host.drag(plot, 200, 200, 300, 200, "right");
    var az = Number(plot.GetProperty("Azimuth"));
    expect(Math.abs(az - 100 * 180 / h) < 1e-6, "right drag of 100 px turns by 100 * 180 / height (" + az + ")");
    host.drag(plot, 200, h - 10, 200, 10, "right");
    expect(plot.GetProperty("Elevation") === "90", "elevation stops at 90 (" + plot.GetProperty("Elevation") + ")");
    host.drag(plot, 200, 10, 200, h - 10, "right");
    host.drag(plot, 200, 10, 200, h - 10, "right");
    expect(plot.GetProperty("Elevation") === "-90", "elevation stops at -90 (" + plot.GetProperty("Elevation") + ")");
    host.drag(plot, 200, 200, 260, 200, "middle");
    expect(Number(plot.GetProperty("PanX")) > 0, "middle drag moves the view (" + plot.GetProperty("PanX") + ")");
    host.wheel(plot, 200, 200, 2);
    expect(Number(plot.GetProperty("ZoomDistance")) > 0, "the wheel zooms in (" + plot.GetProperty("ZoomDistance") + ")");
    expect(plot.LastErrorString === "", "no error (" + plot.LastErrorString + ")");
    if (args.screenshot)
        host.screenshot(String(args.screenshot));
    if (failures.length > 0) {
        console.log("calibration-plot check FAILED: " + failures.join("; "));
        host.exit(1);
    } else {
        console.log("calibration-plot check passed");
        host.exit(0);
    }
}

function runDemo() {
    var folder = args.shots ? String(args.shots) : ".";
    var steps = [
        ["calibration-1-start", -30, 30],
        ["calibration-2-turned", 40, 25],
        ["calibration-3-from-above", 40, 85],
        ["calibration-4-low", 150, 8],
    ];
    var shots = [];
    for (var i = 0; i < steps.length; ++i) {
        plot.SetProperty("Azimuth", String(steps[i][1]));
        plot.SetProperty("Elevation", String(steps[i][2]));
        host.wait(150);
        var file = folder + "/" + steps[i][0] + ".png";
        host.screenshot(file);
        shots.push(file);
    }
    plot.SaveImage("calibration-plot/view.png");
    console.log("screenshots: " + shots.join(", "));
    console.log("plot picture: calibration-plot/view.png in the storage folder" +
                (plot.LastErrorString ? " FAILED: " + plot.LastErrorString : ""));
    host.exit(plot.LastErrorString === "" ? 0 : 1);
}

// The host ends a headless run once no timer is pending; the mouse steps of a check or a demo
// run the event loop, so a timer stays pending until the page exits.
function keepRunning(body) {
    return function () {
        var keep = setInterval(function () {}, 1000);
        try {
            body();
        } finally {
            clearInterval(keep);
        }
    };
}

if (args.check)
    setTimeout(keepRunning(runCheck), 200);
else if (host.headless || args.demo)
    setTimeout(keepRunning(runDemo), 200);
