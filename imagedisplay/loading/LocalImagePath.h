#pragma once
// Where a controller image is kept on this machine.

#include "frame/Export.h"

#include <QString>

namespace nxr::LocalImagePath {

// The folder part of a controller path: everything up to and including its last "\" ("MC:\A\B\"
// for "MC:\A\B\F.JPG"), up to and including the device colon when there is no "\" ("MC:" for
// "MC:F.JPG"), "" for a bare file name.
NXR_EXPORT QString subfolder(const QString& controllerPath);

// The local file for a controller image: storageFolder + "/" + the subfolder normalised
// (upper case, without ".", "/" and ":", one local folder per "\"-separated piece, empty pieces
// dropped) + "image" + the path's image extension, ".PNG" when it has none of the four.
// "MC:\Vision\snap.jpg" in "/tmp/TORVIK" gives "/tmp/TORVIK/MC/VISION/image.JPG".
NXR_EXPORT QString forControllerPath(const QString& storageFolder, const QString& controllerPath);

} // namespace nxr::LocalImagePath
