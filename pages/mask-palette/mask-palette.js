// The mask tool palette on its own: the page shows what the operator picks and keeps the undo
// command enabled only after a drawing command. With the script argument check=1 it clicks the
// palette itself and exits non-zero when the palette answers wrongly.

var names = {
    tool: ["freehand", "joined line", "ellipse", "rectangle", "fill"],
    size: ["small", "medium", "large"],
    command: ["mask all", "mask none", "undo", "help"]
};
var heard = [];

palette.SetProperty("CommandEnabled", "2, False");
palette.OnToolSelected.connect(function (tool) {
    heard.push("tool " + tool);
    lbl_Status.text = "Tool: " + names.tool[tool];
});
palette.OnToolSizeSelected.connect(function (size) {
    heard.push("size " + size);
    lbl_Status.text = "Size: " + names.size[size];
});
palette.OnCommandClicked.connect(function (command) {
    heard.push("command " + command);
    lbl_Status.text = "Command: " + names.command[command];
    if (command === 0 || command === 1)
        palette.SetProperty("CommandEnabled", "2, True");
    if (command === 2)
        palette.SetProperty("CommandEnabled", "2, False");
});
palette.OnError.connect(function () { lbl_Status.text = palette.LastErrorString; });

function expect(what, actual, wanted) {
    if (String(actual) !== String(wanted)) {
        console.log("mask-palette check failed: " + what + " is " + actual + ", expected " + wanted);
        host.exit(1);
        return false;
    }
    return true;
}

// Three rows (tools, sizes, commands) of equal buttons across the palette.
function clickButton(row, index, count) {
    var w = palette.width, h = palette.height / 3;
    host.click(palette, 2 + (w - 4) / count * (index + 0.5), h * row + h / 2);
    host.wait(50);
}

if (typeof host !== "undefined" && host.args && host.args.check) {
    palette.SetProperty("CommandEnabled", "2 False"); // no comma: an error, reported on the page
    expect("error text", palette.GetProperty("LastErrorString"),
           "Error setting CommandEnabled property: invalid PropertyValue argument (2 False)");
    clickButton(0, 2, 5);  // ellipse
    clickButton(1, 2, 3);  // large
    clickButton(2, 2, 4);  // undo: disabled, nothing heard
    clickButton(2, 0, 4);  // mask all enables undo
    clickButton(2, 2, 4);  // undo
    if (expect("events", heard.join(", "), "tool 2, size 2, command 0, command 2") &&
        expect("SelectedTool", palette.GetProperty("SelectedTool"), 2) &&
        expect("SelectedToolSize", palette.GetProperty("SelectedToolSize"), 2)) {
        console.log("mask-palette check passed");
        host.exit(0);
    }
}
