// Controller images: a navigation tree of the controller's devices and folders beside a list of
// the images in the chosen folder (name, size, date), sortable by a click on a column header.
// Folders are listed through NXRFileTransferObject when a node is first chosen; the sizes and
// dates come from the controller's web server (HEAD requests).
//
//   ./scripts/demo.sh pages/image-browser
//   nexaro-page --script-arg httpPort=PORT --script-arg ftpPort=PORT pages/image-browser
// "Take 6 pictures here" asks the simulator's camera for pictures in the chosen folder.
// With --headless (or --script-arg run=all) the page walks through once: it opens MC:, VISION,
// takes pictures, sorts by each column with header clicks, writes screenshots into shots= and
// exits 0 when the list answered as expected.

var args = host.args || {};
var server = String(args.server || "127.0.0.1");
var user = String(args.user || "robot");
var password = String(args.password || "robot");
var httpPort = Number(args.httpPort || 8080);

var transfer = createObject("NXRFileTransferObject");
transfer.FTPPortNo = Number(args.ftpPort || 2121);
transfer.HTTPPortNo = httpPort;

var tree = tvw_Folders;
var list = lvw_Images;
var listed = {};     // controller folder path -> true once its subfolders are in the tree
var generation = 0;  // bumps when another folder is shown; late answers for the old one are dropped
var pendingDetails = 0; // size and date requests not answered yet
var shown = [];         // names in the list
var bytesOf = {};       // name -> size in bytes, as the controller answered

function show(text) {
    status.text = text;
    console.log(text);
}

function pageFolder() {
    var url = String(host.pageUrl || "").replace(/^file:\/\//, "");
    var slash = url.lastIndexOf("/");
    if (slash < 0)
        return ".";
    return /\.(ui|json|js)$/.test(url) ? url.substring(0, slash) : url.replace(/\/$/, "");
}

function isImage(name) {
    return /\.(PNG|JPG|GIF|BMP)$/i.test(name);
}

var months = ["JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"];
function two(n) {
    return (n < 10 ? "0" : "") + n;
}
// The controller's date form: 22-NOV-26 18:48:03.
function controllerDate(date) {
    return two(date.getDate()) + "-" + months[date.getMonth()] + "-" + two(date.getFullYear() % 100) + " " +
           two(date.getHours()) + ":" + two(date.getMinutes()) + ":" + two(date.getSeconds());
}

function fileUrl(path) {
    // MC:\VISION\A.PNG -> http://server:port/MC/VISION/A.PNG
    return "http://" + server + ":" + httpPort + "/" + path.replace(":", "").replace(/\\/g, "/");
}

// Node texts must be unique in a tree: a folder name met again under another device is shown with
// its device. The tag keeps the controller path.
function nodeTextFor(name, path) {
    if (tree.NodeTextToKey(name) === "")
        return name;
    return name + " (" + path.substring(0, path.indexOf(":") + 1) + ")";
}

function addFolders(parentText, parentPath) {
    if (listed[parentPath])
        return;
    listed[parentPath] = true;
    var folders = transfer.ListFolders(server, parentPath, user, password);
    for (var i = 0; i < folders.length; i++) {
        if (folders[i] === "")
            continue;
        var path = parentPath.replace(/\\$/, "") + "\\" + folders[i];
        var text = nodeTextFor(folders[i], path);
        tree.AddNode(parentText, 4, "folder", text);
        tree.SetNodeTag(text, path);
        tree.SetNodeExpanded(text, false);
    }
}

function showImages(path) {
    var mine = ++generation;
    list.ClearList();
    bytesOf = {};
    var files = transfer.ListFiles(server, path, user, password).filter(function (n) { return isImage(n); });
    shown = files;
    files.forEach(function (name) {
        list.AddToList("image", name);
        var request = new XMLHttpRequest();
        request.open("HEAD", fileUrl(path + "\\" + name));
        ++pendingDetails;
        request.onloadend = function () { --pendingDetails; };
        request.onload = function () {
            if (mine !== generation || request.status !== 200)
                return;
            var bytes = Number(request.getResponseHeader("Content-Length"));
            var modified = request.getResponseHeader("Last-Modified");
            bytesOf[name] = bytes;
            list.SetSubItem(name, 1, (bytes / 1024).toFixed(1) + " kB");
            if (modified)
                list.SetSubItem(name, 2, controllerDate(new Date(modified)));
        };
        request.send();
    });
    show(path + ": " + files.length + " image" + (files.length === 1 ? "" : "s"));
}

function selectedFolderText() {
    // The node's visible text: the last part of its full path in the tree.
    var full = tree.GetProperty("FullSelectedPath");
    return full.substring(full.lastIndexOf("\\") + 1);
}

tree.OnNodeClick.connect(function () {
    var path = tree.GetProperty("Selected");
    addFolders(selectedFolderText(), path.indexOf("\\") >= 0 ? path : path + "\\");
    showImages(path.indexOf("\\") >= 0 ? path : path + "\\");
});
tree.OnExpand.connect(function (text) {
    tree.SetProperty("Selected", text);
});
tree.OnError.connect(function () { show(tree.LastErrorString); });
list.OnError.connect(function () { show(list.LastErrorString); });
list.OnDoubleClick.connect(function () {
    show("Open " + tree.GetProperty("Selected") + "\\" + list.GetProperty("SelectedText"));
});
list.OnItemSelected.connect(function () { show(list.GetProperty("SelectedText")); });

function snapHere() {
    var folder = tree.GetProperty("Selected");
    if (folder === "" || folder.indexOf(":") < 0) {
        show("Choose a folder first");
        return;
    }
    folder = folder.replace(/\\$/, "");
    var sizes = [[640, 480], [800, 600], [1280, 1024], [1024, 768], [2592, 1944], [704, 528]];
    var pending = sizes.length;
    sizes.forEach(function (size, i) {
        var request = new XMLHttpRequest();
        var name = folder + "\\SNAP" + (100 + i * 7) + (i % 2 ? ".PNG" : ".JPG");
        request.open("GET", "http://" + server + ":" + httpPort + "/__sim/snap?w=" + size[0] + "&h=" + size[1] +
                            "&path=" + encodeURIComponent(name));
        request.onloadend = function () {
            if (--pending === 0)
                showImages(folder.indexOf("\\") >= 0 ? folder : folder + "\\");
        };
        request.send();
    });
}
cmd_Snap.clicked.connect(snapHere);

// ---- set-up
var icons = pageFolder() + "/icons/";
tree.AddListImage(icons + "device.png", "device");
tree.AddListImage(icons + "folder.png", "folder");
list.AddListImage(icons + "image.png", "image");
list.AddColumn("Name", 1, 170);
list.AddColumn("Size", 2, 90);
list.AddColumn("Date", 3, 150);
list.SetProperty("View", "3");

var drives = transfer.ListDrives(server, user, password).split("\r\n").filter(function (d) { return d !== ""; });
drives.forEach(function (drive) {
    tree.AddNode("", -1, "device", drive);
    tree.SetNodeExpanded(drive, false);
});
show(drives.length ? "Choose a folder" : "No controller at " + server + ": " + transfer.LastErrorString);

// ---- the headless round
function round() {
    var folder = args.shots ? String(args.shots) : ".";
    var failures = [];
    function expect(what, ok) {
        if (!ok)
            failures.push(what);
    }
    function shot(name) {
        host.screenshot(folder + "/image-browser-" + name + ".png");
    }
    function headerClick(column) {
        // The header row is at the top of the list; the columns are 170, 90 and 150 pixels wide.
        var x = [85, 215, 305][column];
        host.click(list, x, 8);
        host.wait(50);
    }
    function order() {
        var names = [];
        for (var i = 1; i <= shown.length; i++) {
            list.SetProperty("Selected", String(i));
            names.push(list.GetProperty("SelectedText"));
        }
        return names;
    }
    tree.SetProperty("Selected", "MC:");
    chooseNodeByText("MC:");
    tree.SetProperty("Selected", "VISION");
    chooseNodeByText("VISION");
    expect("VISION listed under MC:", tree.GetProperty("ParentOfSelected") === "MC:");
    snapHere();
    for (var waited = 0; waited < 20000 && (pendingDetails > 0 || order().length < 8); waited += 100)
        host.wait(100);
    shot("1-folder");
    var before = list.LastErrorString;
    var smallFirst = shown.slice().sort(function (a, b) { return bytesOf[a] - bytesOf[b]; });
    headerClick(1);
    var bySize = order();
    expect("eight images in VISION (" + bySize.length + ")", bySize.length === 8);
    expect("smallest first: " + bySize.join(","), bySize.join(",") === smallFirst.join(","));
    headerClick(1);
    var bySizeDown = order();
    expect("same header reverses: " + bySizeDown.join(","), bySizeDown.join(",") === smallFirst.reverse().join(","));
    shot("2-size-descending");
    headerClick(0);
    var byName = order();
    expect("names ascending: " + byName.join(","), byName.join(",") === byName.slice().sort().join(","));
    headerClick(2);
    shot("3-date");
    expect("no list errors (" + list.LastErrorString + ")", list.LastErrorString === before);
    if (failures.length) {
        console.log("image-browser check FAILED: " + failures.join("; "));
        host.exit(1);
    } else {
        console.log("image-browser check passed");
        host.exit(0);
    }
}

function chooseNodeByText(text) {
    tree.SetProperty("Selected", text);
    var path = tree.GetProperty("Selected");
    path = path.indexOf("\\") >= 0 ? path : path + "\\";
    addFolders(text, path);
    tree.SetNodeExpanded(text, true);
    showImages(path);
}

if (host.headless || args.run === "all")
    setTimeout(round, 100);
