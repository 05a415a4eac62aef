#pragma once
// Path helpers for controller files: names, URL paths, hosts and the cache folder names
// derived from them. Controller paths look like "MC:\A\B\F.TXT" (device, colon, folders
// separated by "\").

#include "frame/Export.h"

#include <QString>

namespace nxr {

// The text after the last "\" that follows the first ":" ("MC:\A\B.PNG" -> "B.PNG"); with a
// device but no "\" the text after the ":"; the whole path when neither occurs; "" for "".
NXR_EXPORT QString FileNameOfPath(const QString& path);

// The cache folder name of a controller software version: trimmed, upper-cased, every "." and
// "/" removed ("x1.23/b" -> "X123B").
NXR_EXPORT QString VersionFolderName(const QString& version);

// The host part of a server string: the text before the first ":" ("127.0.0.5:8080" -> "127.0.0.5").
NXR_EXPORT QString HostFromServer(const QString& server);

// The URL path of a controller file on the controller's web server:
// "MC:\A\B\F.TXT" -> "/MC/A/B/F.TXT"; a bare name "F.TXT" -> "/F.TXT". Not percent-encoded.
NXR_EXPORT QString RemoteUrlPath(const QString& controllerPath);

// Checks a local file name for the cache: a plain name that stays inside its folder.
// Returns an error description ("" when the name is fine). Refused: empty names, "." and "..",
// names holding "/", "\" or control characters.
NXR_EXPORT QString checkLocalName(const QString& name);

} // namespace nxr
