#pragma once
// Where SaveImage may write: only PNG files inside the storage folder, so that a page from any
// origin can keep screenshots for a report but never write anywhere else.

#include "frame/Export.h"

#include <QString>

namespace nxr::plot3d {

// The absolute path to write for `requested` (relative paths are taken inside `storageFolder`),
// missing folders below the storage folder created. Throws nxr::Failure with the reason when the
// path leaves the storage folder (also through "..", or a link), does not end in ".png", or names
// a folder or a link.
NXR_EXPORT QString resolveImagePath(const QString& storageFolder, const QString& requested);

} // namespace nxr::plot3d
