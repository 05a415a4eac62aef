// Controller files: copy a controller file into the local cache, list a controller folder and its
// drives, and upload the cached copy back under a new name, all through NXRFileTransferObject.
//
// Against the simulator (sim/controller_sim.py, ports 2121 and 8080 by default):
//   scripts/demo.sh pages/transfer-demo
//   nexaro-page --script-arg ftpPort=PORT --script-arg httpPort=PORT pages/transfer-demo
// With --headless (or --script-arg run=all) the page runs copy, list, drives and upload once.

var args = host.args || {};
var user = args.user || "robot";
var password = args.password || "robot";

var transfer = createObject("NXRFileTransferObject");
transfer.FTPPortNo = Number(args.ftpPort || 2121);
transfer.HTTPPortNo = Number(args.httpPort || 8080);
if (args.server)
    txt_Server.text = args.server;

function show(text) {
    status.text = text;
    console.log(text);
}

function fail(what) {
    show(what + " failed: " + transfer.LastErrorString);
    return false;
}

function fileName(path) {
    return path.substring(path.lastIndexOf("\\") + 1);
}

function copyFile() {
    if (!transfer.CopyFile(txt_Server.text, txt_Path.text, user, password, ""))
        return fail("Copy");
    show("Copied " + txt_Path.text + " into " + transfer.StorageFolder);
    return true;
}

function listFolder() {
    var files = transfer.ListFiles(txt_Server.text, txt_Folder.text, user, password);
    var folders = transfer.ListFolders(txt_Server.text, txt_Folder.text, user, password);
    var lines = [];
    for (var i = 0; i < folders.length; i++)
        if (folders[i] !== "")
            lines.push("[" + folders[i] + "]");
    for (var j = 0; j < files.length; j++)
        if (files[j] !== "")
            lines.push(files[j]);
    txt_Names.plainText = lines.join("\n");
    show(txt_Folder.text + ": " + files.filter(function (n) { return n !== ""; }).join(", "));
    return files.length > 0;
}

function listDrives() {
    var drives = transfer.ListDrives(txt_Server.text, user, password);
    if (drives === "")
        return fail("Drive list");
    show("Drives: " + drives.split("\r\n").filter(function (d) { return d !== ""; }).join(" "));
    return true;
}

function upload() {
    // The upload sends the cached copy made by Copy.
    if (!transfer.UploadCachedFile(txt_Server.text, fileName(txt_Path.text), txt_UploadTo.text, user, password))
        return fail("Upload");
    show("Uploaded " + fileName(txt_Path.text) + " to " + txt_UploadTo.text);
    return true;
}

cmd_Copy.clicked.connect(copyFile);
cmd_List.clicked.connect(listFolder);
cmd_Drives.clicked.connect(listDrives);
cmd_Upload.clicked.connect(function () {
    if (copyFile())
        upload();
});

if (host.headless || args.run === "all") {
    var ok = copyFile() && listFolder() && listDrives() && upload();
    show(ok ? "Copy, list, drives and upload done." : status.text);
    if (!ok && host.exit) // on screen the host's exit is there only with --automation
        host.exit(1);
}
