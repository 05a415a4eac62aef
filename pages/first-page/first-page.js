// The first page: which controller software this library belongs to, where it keeps its local
// files, which controller version numbers it serves, and the caption language variable that the
// controls read when they start.

var info = createObject("NXRInfo");
var setup = createObject("NexaroControls.NXRClientSetupObject");

lbl_BuildID.text = info.NXRBuildID;
lbl_StorageFolder.text = info.StorageFolder;
lbl_StorageFolder.toolTip = info.StorageFolder; // a long path is cut at the window's edge

function showVersionCheck() {
    var n = spn_VNUM.value;
    var served = info.CheckVNUM(n);
    lbl_VNUMResult.text = served ? "served by this library" : "not served by this library";
    lbl_VNUMResult.styleSheet = served ? "color: darkgreen" : "color: darkred";
    return served;
}
cmd_Check.clicked.connect(showVersionCheck);
spn_VNUM.valueChanged.connect(showVersionCheck);

function showLanguage() {
    var value = setup.GetEnvironment("TORVIK_LANG");
    lbl_Language.text = value === "" ? "not set: built-in captions" : "\"" + value + "\"";
    return value;
}
cmb_Language.activated.connect(function (index) {
    setup.SetEnvironment("TORVIK_LANG", index === 0 ? "" : cmb_Language.currentText);
    showLanguage();
    lbl_Status.text = "TORVIK_LANG set for this process; controls created from now on use it.";
});

// Start with the language the process was given.
var language = showLanguage();
var known = ["kn", "default"].indexOf(language.trim().toLowerCase());
cmb_Language.currentIndex = known < 0 ? 0 : known + 1;
showVersionCheck();

console.log("controller software: " + info.NXRBuildID);
console.log("storage folder: " + info.StorageFolder);
console.log("version 64 served: " + info.CheckVNUM(64) + ", version 65 served: " + info.CheckVNUM(65));
console.log("TORVIK_LANG: " + (language === "" ? "(not set)" : language));
lbl_Status.text = host.headless ? "Headless run." : "Ready.";
