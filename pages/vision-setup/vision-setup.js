// Vision setup page: the camera image with the view tool bar. Zoom, scroll and pan work from the
// tool bar, the mouse wheel (anchored at the cursor) and the mouse modes.
//
// Until the page loads images from the controller it shows the sample image of the repository's
// test data (or the file given with --script-arg image=PATH).
//
// With --script-arg check=1 the page checks itself headless: it zooms with the wheel and the
// tool bar, verifies the display's answers and ends the run with exit code 0 (or 1 and the
// reason on the console).

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

var zoomEvents = [];
var pageButtons = [];

display.OnError.connect(function () {
    console.log("display error: " + display.LastErrorString);
});
display.OnZoomChanged.connect(function (zoom) {
    zoomEvents.push(zoom);
    console.log("zoom " + zoom + "%");
});
display.OnButtonClicked.connect(function (name) {
    pageButtons.push(name);
    console.log("tool bar: " + name);
});

display.Caption = "Camera 1";
display.LoadLocalImage(sampleImagePath());

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

if (typeof host !== "undefined" && host.args && host.args.check === "1")
    setTimeout(selfCheck, 200);
