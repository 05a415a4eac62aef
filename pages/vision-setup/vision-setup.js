// Vision setup page: the camera image of the controller with the view tool bar and a status line.
//
// With a controller (--script-arg server=HOST, and ftpPort/httpPort/user/password when they are not
// the defaults) the operator works the camera from the tool bar: Snap takes a picture and shows it,
// Live streams pictures (zoom and pan keep working while they arrive; Snap ends live mode), Save
// writes the shown image back to the controller (savePath, MC:\CAMERA\SAVED.PNG by default). The
// camera is the controller simulator's (its /__sim/snap request takes a picture); cameraUrl= names
// another request that answers the path of a new picture. The status line tells what happened,
// LastErrorString included.
//
// Without a controller the page shows the sample image of the repository's test data (or the file
// given with --script-arg image=PATH).
//
// Open and Save on the tool bar open the display's own dialog: images on this computer or on the
// controller (its devices as a folder tree), and, when opening, the controller's image log. The
// page answers the dialog's request for the log (OnLogListRequested) with the log index the
// controller keeps (logIndex=, MCV:\LOG\INDEX.TXT by default: "date;process;time;path" lines) and
// loads the logged image the operator picks (OnLogImageSelected). With --script-arg dialog=1 the
// page runs the dialog's round by itself (headless): a reference image opened from UD1:, a logged
// image opened from the log, the shown image saved to MC: (dialogSavePath=), a screenshot of the
// dialog at each step.
//
// Results: after each picture from the simulator's camera the page asks where the camera drew the
// flange (/__sim/result) and draws the found rim and bore, the centre cross turned by the part's
// angle, an arrow to the keyway and a label over the image; the tool bar's crosshair marks the
// image centre. The search window: "Search window..." lets the operator place and turn it on the
// image (the status line follows it), OK stores it on the controller (searchWindowPath,
// MC:\VISION\SEARCHWIN.TXT by default) and the next page load brings it back.
//
// With --script-arg check=1 the page checks itself headless: it zooms with the wheel and the
// tool bar, verifies the display's answers and ends the run with exit code 0 (or 1 and the
// reason on the console). With a controller as well, the check snaps a picture and runs the mask
// round below instead.
//
// The mask round (with a controller, in the demo round and in the check): the controller keeps an
// empty don't-care mask for the tool (the simulator's /__sim/mask writes one, maskPath=, by default
// MC:\CAMERA\DONTCARE.PNG); the page loads it, opens it for editing, paints two strokes over the
// camera image with the mouse, takes the second back with Ctrl+Z and accepts with Enter, which
// saves the mask and copies it back to the controller.
//
// Headless with a controller (or with --script-arg demo=1) the page runs the operator's round by
// itself: snap, live mode with zooming and moving the view while pictures stream, live mode ended,
// save, then the dialog's round (above); it writes a screenshot after each step into shots=
// (default: the current folder), says
// where, and exits 0 when every step worked.

function pageFolder() {
    var url = (typeof host !== "undefined" && host.pageUrl) ? String(host.pageUrl) : "";
    url = url.replace(/^file:\/\//, "");
    var slash = url.lastIndexOf("/");
    if (slash < 0)
        return ".";
    // pageUrl names the page's folder, its page.json or its form.
    return /\.(ui|json|js)$/.test(url) ? url.substring(0, slash) : url.replace(/\/$/, "");
}

function sampleImagePath() {
    if (typeof host !== "undefined" && host.args && host.args.image)
        return String(host.args.image);
    return pageFolder() + "/../../tests/data/sample-part.png";
}

var args = (typeof host !== "undefined" && host.args) ? host.args : {};
var controller = args.server ? {
    server: String(args.server),
    user: args.user !== undefined ? String(args.user) : "robot",
    password: args.password !== undefined ? String(args.password) : "robot",
    httpPort: args.httpPort ? String(args.httpPort) : "80",
    savePath: args.savePath ? String(args.savePath) : "MC:\\CAMERA\\SAVED.PNG",
    logIndex: args.logIndex ? String(args.logIndex) : "MCV:\\LOG\\INDEX.TXT",
    dialogSavePath: args.dialogSavePath ? String(args.dialogSavePath) : "MC:\\DIALOG.PNG",
    size: args.size ? String(args.size) : "1280x1024",
    searchWindowPath: args.searchWindowPath ? String(args.searchWindowPath) : "MC:\\VISION\\SEARCHWIN.TXT",
} : null;

var kRimColour = 0x00FF00, kBoreColour = 0x00FFFF, kKeywayColour = 0xFF8000, kWindowColour = 0x00C0FF;
var lastResult = null;
var searchWindow = null; // {top, left, height, width, angle} once placed or restored
var windowWatch = null;

var zoomEvents = [];
var pageButtons = [];
var frames = 0;
var cameraProblem = "";

function status(text) {
    statusLine.text = text;
    console.log(text);
}

display.OnError.connect(function () {
    status("Error: " + display.LastErrorString);
});
display.OnZoomChanged.connect(function (zoom) {
    zoomEvents.push(zoom);
    console.log("zoom " + zoom + "%");
});
display.OnLiveModeToggled.connect(function (on) {
    status(on ? "Live mode on: pictures stream from the camera; Snap ends it"
              : "Live mode off after " + frames + " pictures" + (cameraProblem ? ": " + cameraProblem : ""));
});
display.OnButtonClicked.connect(function (name) {
    pageButtons.push(name);
    if (name !== "Snap" || display.GetProperty("LiveMode") !== "True")
        console.log("tool bar: " + name);
    if (!controller)
        return;
    // Save opens the display's own dialog, which does the saving.
    if (name === "Snap")
        snap();
});

// ---- the image log and the open/save dialog

var userLoaded = [];
var logSelections = [];

// The controller's log index: one "date;process;time;path" line per logged image.
function readLogIndex() {
    var url = "http://" + controller.server + ":" + controller.httpPort + "/" +
        controller.logIndex.replace(":", "").replace(/\\/g, "/");
    var request = new XMLHttpRequest();
    request.open("GET", url, false);
    request.send();
    if (request.status !== 200 || String(request.responseText).indexOf("<HTML>") >= 0) {
        status("Error: no image log on the controller (" + controller.logIndex + ")");
        return [];
    }
    var entries = [];
    String(request.responseText).split(/\r?\n/).forEach(function (line) {
        var fields = line.split(";");
        if (fields.length === 4)
            entries.push(fields);
    });
    return entries;
}

display.OnLogListRequested.connect(function () {
    var entries = readLogIndex();
    display.ClearLogDataList();
    entries.forEach(function (f) { display.AddLogImage(f[0], f[1], f[2], f[3]); });
    display.UpdateLogImageLoad();
    console.log("image log: " + entries.length + " images");
});
display.OnLogImageSelected.connect(function (selector) {
    // [date, process, time stamp, image identifier]
    var picked = JSON.parse(selector);
    logSelections.push(picked);
    var before = display.LastErrorString;
    display.LoadImage(controller.server, picked[3], controller.user, controller.password);
    if (display.LastErrorString === before)
        status("Logged image " + picked[0] + " / " + picked[1] + " / " + picked[2] + " (" + display.ImageWidth +
               " x " + display.ImageHeight + ")");
});
display.OnUserLoadedImage.connect(function (path, width, height) {
    userLoaded.push([path, width, height]);
    status("Opened " + path + " (" + width + " x " + height + ")");
});

// The camera takes a picture; the answer is its path on the controller.
function takePicture() {
    var url = args.cameraUrl ? String(args.cameraUrl) : "http://" + controller.server + ":" + controller.httpPort +
        "/__sim/snap?w=" + controller.size.split("x")[0] + "&h=" + controller.size.split("x")[1] + "&color=1";
    var request = new XMLHttpRequest();
    request.open("GET", url, false);
    request.send();
    if (request.status !== 200) {
        cameraProblem = "the camera did not answer (" + request.status + " " + request.statusText + ")";
        status("Error: " + cameraProblem);
        return "";
    }
    cameraProblem = "";
    return String(request.responseText).trim();
}

// Snap: a new picture, shown; in live mode the display asks for the next one by itself.
function snap() {
    var path = takePicture();
    if (!path) {
        // Without a picture live mode would wait for ever: end it.
        if (display.GetProperty("LiveMode") === "True")
            display.AbortLiveMode();
        return;
    }
    var before = display.LastErrorString;
    display.LoadImage(controller.server, path, controller.user, controller.password);
    ++frames;
    requestResult(path);
    if (display.LastErrorString === before || display.GetProperty("LiveMode") === "True") {
        if (display.GetProperty("LiveMode") !== "True" || frames % 25 === 0)
            status((display.GetProperty("LiveMode") === "True" ? "Live: " : "Snapped ") + path + " (" +
                   display.ImageWidth + " x " + display.ImageHeight + ", " + frames + " pictures, zoom " +
                   display.Zoom.toFixed(1) + "%)");
    }
}

function controllerUrl(path) {
    return "http://" + controller.server + ":" + controller.httpPort + path;
}

// Asks where the camera drew the flange in the picture at `path` and shows it when the answer
// comes (the request does not wait: in live mode the next picture may be asked for meanwhile).
function requestResult(path) {
    if (!controller || args.cameraUrl)
        return;
    var request = new XMLHttpRequest();
    request.onreadystatechange = function () {
        if (request.readyState !== 4)
            return;
        var result = null;
        if (request.status === 200) {
            try {
                result = JSON.parse(String(request.responseText));
            } catch (e) {
                result = null;
            }
        }
        showResult(result);
    };
    request.open("GET", controllerUrl("/__sim/result?path=" + encodeURIComponent(path)), true);
    request.send();
}

// The found part over the picture. The window being edited keeps its place in the graphics, so
// the list is only emptied outside an edit; the keyed items replace themselves.
function showResult(result) {
    lastResult = result;
    var editing = display.GetProperty("EditingWindow") === "True";
    if (!editing) {
        display.ClearGraphics();
        if (searchWindow)
            display.ShowMovableWindow(kWindowColour);
    }
    if (!result || !result.found) {
        display.RefreshDisplay();
        return;
    }
    var cx = result.center[0], cy = result.center[1];
    display.DrawCircle(cx, cy, result.radius, kRimColour, "rim");
    display.DrawCircle(cx, cy, result.bore_radius, kBoreColour, "bore");
    display.DrawCross(cx, cy, result.angle, kRimColour, "centre");
    var k = result.keyway_angle * Math.PI / 180;
    display.DrawArrow(cx, cy, cx + Math.cos(k) * result.radius * 0.8, cy - Math.sin(k) * result.radius * 0.8,
                      kKeywayColour, 8, "keyway");
    if (!editing)
        display.DrawText("Flange " + result.angle.toFixed(1) + "\u00b0 at " + cx.toFixed(1) + ", " + cy.toFixed(1),
                         Math.round(cx - result.radius), Math.round(cy - result.radius - 18), kRimColour);
}

function windowText(w) {
    return "left " + w.left.toFixed(1) + ", top " + w.top.toFixed(1) + ", " + w.width.toFixed(1) + " x " +
           w.height.toFixed(1) + ", angle " + w.angle.toFixed(1) + "\u00b0";
}
function windowOnDisplay() {
    return {top: display.MovableWindowTop, left: display.MovableWindowLeft, height: display.MovableWindowHeight,
            width: display.MovableWindowWidth, angle: display.MovableWindowAngle};
}

// The search window: placed by the operator, kept on the controller.
function teachSearchWindow() {
    if (display.ImageWidth === 0) {
        status("Take a picture first: the search window is placed on the image");
        return;
    }
    if (!searchWindow)
        display.SetMovableWindow(display.ImageHeight / 4, display.ImageWidth / 4, display.ImageHeight / 2,
                                 display.ImageWidth / 2, 0, true);
    display.ShowMovableWindow(kWindowColour);
    display.EditMovableWindow();
    status("Search window: drag it, its edges or the handle on its right edge; OK stores it");
    windowWatch = setInterval(function () {
        status("Search window: " + windowText(windowOnDisplay()) + " (OK stores it, Cancel keeps the old one)");
    }, 100);
}

display.OnExitMovableWindowEditMode.connect(function (accepted) {
    if (windowWatch !== null)
        clearInterval(windowWatch);
    windowWatch = null;
    if (!accepted) {
        status(searchWindow ? "Search window kept: " + windowText(searchWindow) : "No search window");
        if (!searchWindow)
            display.MovableWindowVisible = false;
        return;
    }
    searchWindow = windowOnDisplay();
    storeSearchWindow();
});

function transferObject() {
    var transfer = createObject("NXRFileTransferObject");
    if (args.ftpPort)
        transfer.FTPPortNo = Number(args.ftpPort);
    transfer.HTTPPortNo = Number(controller.httpPort);
    return transfer;
}

function storeSearchWindow() {
    if (!controller) {
        status("Search window: " + windowText(searchWindow) + " (no controller to keep it)");
        return;
    }
    var transfer = transferObject();
    var ok = transfer.WriteCachedTextFile("searchwin.txt", JSON.stringify(searchWindow)) &&
             transfer.UploadCachedFile(controller.server, "searchwin.txt", controller.searchWindowPath,
                                       controller.user, controller.password);
    status(ok ? "Search window stored on the controller: " + windowText(searchWindow)
              : "Error: the search window was not stored: " + transfer.LastErrorString);
}

// The search window the controller keeps, shown from the start.
function restoreSearchWindow() {
    var request = new XMLHttpRequest();
    request.open("GET", controllerUrl("/" + controller.searchWindowPath.replace(":", "").replace(/\\/g, "/")), false);
    request.send();
    // A controller answers a missing file with an error page (HTML), not with a failure status.
    var body = String(request.responseText).trim();
    if (request.status !== 200 || body.charAt(0) !== "{")
        return;
    try {
        var w = JSON.parse(body);
        display.SetMovableWindow(w.top, w.left, w.height, w.width, w.angle, true);
        display.ShowMovableWindow(kWindowColour);
        searchWindow = windowOnDisplay();
        console.log("search window restored: " + windowText(searchWindow));
    } catch (e) {
        console.warn("the stored search window is not readable: " + e);
    }
}

teachButton.clicked.connect(teachSearchWindow);

function save() {
    var before = display.LastErrorString;
    display.SaveCurrentImage(controller.server, controller.savePath, controller.user, controller.password);
    if (display.LastErrorString === before)
        status("Saved the image to " + controller.savePath);
}

display.Caption = "Camera 1";
if (controller) {
    display.OpenSaveButtonsVisible = true;
    display.SetProperty("EnableLogImageLoad", "True");
    if (args.ftpPort)
        display.SetProperty("FTPPortNo", String(args.ftpPort));
    display.SetProperty("HTTPPortNo", controller.httpPort);
    status("Controller " + controller.server + ": Snap takes a picture, Live streams them");
    restoreSearchWindow();
} else {
    display.LoadLocalImage(sampleImagePath());
}

var shots = [];
function shot(name) {
    if (!args.shots && args.check === "1")
        return;
    var folder = args.shots ? String(args.shots) : ".";
    var file = folder + "/vision-setup-" + name + ".png";
    host.screenshot(file);
    shots.push(file);
}

// The mask round (see the top of the file). Returns what went wrong, nothing when all worked.
function maskRound() {
    var problems = [];
    var maskPath = args.maskPath ? String(args.maskPath) : "MC:\\CAMERA\\DONTCARE.PNG";
    var request = new XMLHttpRequest();
    request.open("GET", "http://" + controller.server + ":" + controller.httpPort + "/__sim/mask?path=" +
                 encodeURIComponent(maskPath) + "&w=" + display.ImageWidth + "&h=" + display.ImageHeight, false);
    request.send();
    if (request.status !== 200)
        return ["the controller wrote no empty mask (" + request.status + " " + request.statusText + ")"];
    var exits = [];
    display.OnExitMaskEditMode.connect(function (accepted) { exits.push(accepted); });
    // The whole picture in view.
    display.ZoomTo(0, 0, display.ImageHeight, display.ImageWidth);
    display.LoadMask(controller.server, maskPath, controller.user, controller.password, 0);
    display.EditDontCareMask();
    if (display.GetProperty("EditingMask") !== "True")
        return ["no mask edit: " + display.LastErrorString];
    status("Painting the don't-care mask of " + maskPath);
    host.wait(150);
    // Two strokes with the palette's pen across the middle of the image, the second taken back.
    var w = display.width, h = display.height;
    host.drag(display, w * 0.25, h * 0.40, w * 0.45, h * 0.42);
    host.drag(display, w * 0.25, h * 0.60, w * 0.45, h * 0.62);
    host.wait(100);
    shot("7-mask-painted");
    host.key(display, "Ctrl+Z");
    host.wait(100);
    shot("8-mask-undone");
    host.key(display, "Return");
    host.wait(200);
    if (exits.length !== 1 || exits[0] !== -1)
        problems.push("OnExitMaskEditMode raised " + JSON.stringify(exits) + ", wanted [-1]");
    if (display.GetProperty("EditingMask") !== "False")
        problems.push("the mask edit is still open");
    if (display.LastErrorString !== "")
        problems.push("error: " + display.LastErrorString);
    // The controller received the mask.
    var log = new XMLHttpRequest();
    log.open("GET", "http://" + controller.server + ":" + controller.httpPort + "/__sim/log", false);
    log.send();
    if (String(log.responseText).indexOf("STOR " + maskPath) < 0)
        problems.push("no upload of " + maskPath + " in the controller's log");
    display.ShowMask = 1;
    host.wait(100);
    shot("9-mask-shown");
    status(problems.length ? "Mask round: " + problems.join("; ") : "The mask went back to the controller as " + maskPath);
    return problems;
}

// The check with a controller: a picture, then the mask round.
function controllerCheck() {
    snap();
    host.wait(200);
    var problems = display.ImageWidth > 0 ? maskRound() : ["no picture: " + display.LastErrorString];
    console.log(problems.length ? "vision-setup check FAILED: " + problems.join("; ") : "vision-setup check passed");
    host.exit(problems.length ? 1 : 0);
}

// The operator's round, headless: every step ends with a screenshot.
function demoRound() {
    snap();
    host.wait(200);
    shot("1-snap");

    // Live mode, as the live button starts it: on, then the first picture.
    display.SetProperty("LiveMode", "True");
    snap();
    host.wait(1500);
    // Zoom in twice with the wheel over the disc area while pictures stream, then move the view.
    host.wheel(display, display.width / 3, display.height / 2, 1);
    host.wait(400);
    host.wheel(display, display.width / 3, display.height / 2, 1);
    host.wait(800);
    shot("2-live-zoomed");
    // Pan: the pan tool of the tool bar (fourth button), then a drag across the image.
    host.click(display, 91, 31);
    host.drag(display, display.width / 2, display.height / 2, display.width / 4, display.height / 3);
    host.wait(800);
    shot("3-live-panned");
    var liveFrames = frames;

    // End live mode (the operator presses Snap, which ends it once the running load is done).
    display.AbortLiveMode();
    host.wait(300);
    var restored = searchWindow;
    // The crosshair from the tool bar (the button after the zoom buttons), and the results.
    display.ZoomTo(0, 0, display.ImageHeight, display.ImageWidth);
    host.click(display, 248, 31);
    showResult(lastResult);
    shot("4-results");

    // Teach the search window: move it by a drag from its middle, keep it with Enter (OK). A pending
    // timer keeps the host from taking the page for idle while the drag runs the event loop.
    var keepAlive = setInterval(function () {}, 1000);
    teachSearchWindow();
    var before = windowOnDisplay();
    host.drag(display, display.width / 2, display.height / 2, display.width / 2 + 40, display.height / 2 + 25);
    var moved = windowOnDisplay();
    host.key(display, "Return");
    host.wait(100);
    clearInterval(keepAlive);
    shot("5-search-window");
    var taught = moved.left > before.left && moved.top > before.top && searchWindow !== null &&
                 searchWindow.left === moved.left && statusLine.text.indexOf("stored on the controller") >= 0;
    console.log("search window " + (taught ? "stored" : "NOT stored") + ": " + windowText(windowOnDisplay()) +
                (restored ? " (restored at load: " + windowText(restored) + ")" : ""));
    save();
    host.wait(100);
    shot("6-saved");
    var saved = display.LastErrorString === "";
    var maskProblems = maskRound();
    var ok = liveFrames > 3 && taught && lastResult !== null && display.GetProperty("LiveMode") === "False" &&
             saved && maskProblems.length === 0;
    console.log("vision-setup demo " + (ok ? "done" : "FAILED") + ": " + liveFrames + " pictures, last error '" +
                display.LastErrorString + "'" + (maskProblems.length ? ", mask: " + maskProblems.join("; ") : ""));
    console.log("screenshots: " + shots.join(", "));
    if (!ok)
        host.exit(1);
    else
        dialogRound(); // then the open/save dialog, which ends the run
}

function selfCheck() {
    var failures = [];
    function expect(condition, what) {
        if (!condition)
            failures.push(what);
    }
    expect(display.ImageWidth === 1280 && display.ImageHeight === 960,
           "sample image shown (" + display.ImageWidth + " x " + display.ImageHeight + ")");
    var fitted = display.Zoom;
    expect(fitted < 100, "image fitted on load (zoom " + fitted + ")");

    // Wheel up over the middle of the image: one rung of the zoom ladder, one event.
    zoomEvents = [];
    host.wheel(display, display.width / 2, display.height / 2, 1);
    host.wait(50);
    expect(display.Zoom > fitted, "wheel zoomed in (" + fitted + " -> " + display.Zoom + ")");
    expect(zoomEvents.length === 1, "one OnZoomChanged for the wheel step (" + zoomEvents.length + ")");

    // Scripting: the Zoom key bypasses the clamp, the Zoom property clamps.
    display.SetProperty("Zoom", "0.5");
    expect(display.GetProperty("Zoom") === "0.5", "Zoom key set 0.5 (" + display.GetProperty("Zoom") + ")");
    display.Zoom = 0.5;
    expect(display.Zoom === 1, "Zoom property clamps to 1 (" + display.Zoom + ")");

    display.ZoomTo(400, 500, 100, 100);
    expect(display.Zoom >= 300, "ZoomTo a 100 x 100 rectangle (" + display.Zoom + ")");
    expect(display.LastErrorString === "", "no error (" + display.LastErrorString + ")");

    // Without a controller there is no mask to edit: the display says so and stays out of editing.
    display.EditDontCareMask();
    expect(display.LastErrorString === "Error in EditDontCareMask: no mask image loaded.",
           "mask edit refused without a mask (" + display.LastErrorString + ")");
    expect(display.GetProperty("EditingMask") === "False", "no mask edit open");

    if (host.args.screenshot)
        host.screenshot(String(host.args.screenshot));
    if (failures.length > 0) {
        console.log("vision-setup check FAILED: " + failures.join("; "));
        host.exit(1);
    } else {
        console.log("vision-setup check passed");
        host.exit(0);
    }
}

// The dialog's round, headless: every step on the dialog as the operator would do it.
function dialogRound() {
    var folder = args.shots ? String(args.shots) : ".";
    var failures = [];
    function expect(condition, what) {
        if (!condition)
            failures.push(what);
    }
    function find(name) {
        var found = host.find(name);
        if (!found)
            throw new Error("no " + name + " on the screen");
        return found;
    }
    function waitFor(condition, ms) {
        for (var waited = 0; waited < ms && !condition(); waited += 50)
            host.wait(50);
        return condition();
    }
    function shot(name, target) {
        host.screenshot(folder + "/vision-setup-dialog-" + name + ".png", target);
    }
    function pressToolButton(name) {
        var button = find(name);
        host.click(button, button.width / 2, button.height / 2);
    }
    function typeInto(name, text) {
        var field = find(name);
        host.click(field, 5, 5);
        host.key(field, "Ctrl+A");
        host.type(field, text);
    }
    function press(name) {
        var button = find(name);
        host.click(button, button.width / 2, button.height / 2);
    }
    function dialogShown() {
        // host.find answers shown windows only; a controller's page sees the dialog as a handle
        // without members, so its visibility is not asked again.
        var d = host.find("dlg_OpenSave");
        return d !== null && d.visible !== false;
    }
    try {
        // 1. Open a reference image from the USB stick.
        pressToolButton("cmd_Open");
        expect(waitFor(dialogShown, 2000), "the open dialog appears");
        var dialog = find("dlg_OpenSave");
        press("opt_Remote");
        typeInto("txt_Server", controller.server);
        typeInto("txt_User", controller.user);
        typeInto("txt_Password", controller.password);
        press("cmd_Connect");
        expect(waitFor(function () { return String(find("lbl_Status").text).indexOf("MC:\\:") === 0; }, 5000),
               "MC:\\ listed after connecting (" + find("lbl_Status").text + ")");
        shot("1-open-remote", dialog);
        typeInto("txt_FileName", "UD1:\\REF\\REFERENCE.PNG");
        press("cmd_OK");
        expect(waitFor(function () { return userLoaded.length === 1; }, 5000), "the reference image opened");
        expect(display.ImageWidth === 320 && display.ImageHeight === 240,
               "reference image shown (" + display.ImageWidth + " x " + display.ImageHeight + ")");

        // 2. Open a logged image: the newest date, its first process, the newest time stamp.
        pressToolButton("cmd_Open");
        expect(waitFor(dialogShown, 2000), "the open dialog appears again");
        press("opt_Log");
        var log = find("tvw_ImageLog");
        expect(waitFor(function () { return String(find("lbl_Status").text).indexOf("8 ") === 0; }, 3000),
               "the log holds the controller's 8 images (" + find("lbl_Status").text + ")");
        // The newest date comes open with its processes; its first process's newest image is
        // two rows down.
        host.key(log, "Home");
        host.key(log, "Down");
        host.key(log, "Down");
        shot("2-log", dialog);
        press("cmd_OK");
        expect(waitFor(function () { return logSelections.length === 1; }, 5000), "a logged image was selected");
        if (logSelections.length === 1) {
            var s = logSelections[0];
            expect(s[0] === "2026-11-21" && s[1] === "GLUE BEAD" && s[2] === "08:16:11",
                   "the newest logged image picked (" + s.join(" / ") + ")");
        }

        // 3. Save the shown image to the controller's memory card.
        pressToolButton("cmd_Save");
        expect(waitFor(dialogShown, 2000), "the save dialog appears");
        typeInto("txt_FileName", controller.dialogSavePath);
        shot("3-save", find("dlg_OpenSave"));
        var errorBefore = display.LastErrorString;
        press("cmd_OK");
        host.wait(1000);
        expect(!dialogShown(), "the save dialog closed");
        expect(display.LastErrorString === errorBefore, "saved without error (" + display.LastErrorString + ")");
    } catch (e) {
        failures.push(String(e));
    }
    if (failures.length > 0) {
        console.log("vision-setup dialog round FAILED: " + failures.join("; "));
        host.exit(1);
    } else {
        console.log("vision-setup dialog round done: opened " + userLoaded.map(function (u) { return u[0]; }).join(", ") +
                    "; saved " + controller.dialogSavePath);
        host.exit(0);
    }
}

// The self-check and the rounds drive the page through the host's automation, which a run on
// screen has only with --automation.
var automation = typeof host.click === "function";
if ((args.check === "1" || args.demo === "1" || args.dialog === "1") && !automation)
    status("The page's own round needs the host's automation: run it headless or with --automation");
else if (args.check === "1")
    setTimeout(controller ? controllerCheck : selfCheck, 200);
else if (controller && args.dialog === "1")
    setTimeout(dialogRound, 200);
else if (controller && (args.demo === "1" || host.headless))
    setTimeout(demoRound, 200);
