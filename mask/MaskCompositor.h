#pragma once
// The view of a mask over the camera image: every mask pixel that is not black shows its colour
// blended half and half with the camera pixel; black mask pixels and pixels outside a mask show
// the camera image unchanged.

#include "frame/Export.h"

#include <QImage>
#include <QRect>

#include <vector>

namespace nxr::MaskCompositor {

// Recomposes `rect` of `*view` from the camera image and the masks, later masks over earlier
// ones. `*view` becomes an RGB32 image of the camera's size when it is not one already (then the
// whole of it is composed). Masks must be 32-bit; other formats are converted for the call.
NXR_EXPORT void compose(const QImage& camera, const std::vector<QImage>& masks, const QRect& rect,
                        QImage* view);

} // namespace nxr::MaskCompositor
