#pragma once
// The raster overlay image laid over the camera image.
//
// Which overlay pixels let the image show through: an overlay with an alpha channel is laid over
// by its alpha (fully transparent pixels leave the image as it is, half-transparent ones blend);
// an overlay without one (the usual controller-made PNG or BMP drawn on black) is transparent
// where it is pure black (0, 0, 0) and opaque everywhere else.

#include "frame/Export.h"

#include <QImage>

namespace nxr {

// The camera image with `overlay` over it, at the camera image's size (an overlay of another size
// is scaled to it, nearest neighbour so that its lines stay sharp). The result is RGB32; a null
// image gives a null result, a null overlay the image alone.
NXR_EXPORT QImage composeOverlay(const QImage& image, const QImage& overlay);

} // namespace nxr
