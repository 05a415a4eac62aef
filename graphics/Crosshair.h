#pragma once
// The centre crosshair the tool bar switches on: a circle of radius 5 at the image centre and four
// lines from the image edges that stop 2.5 pixels short of the centre (inside the circle), all in
// 0xFF0000 (blue).

#include "frame/Export.h"
#include "graphics/OverlayItems.h"

#include <QSize>

namespace nxr {

inline constexpr qint32 kCrosshairColor = 0xFF0000;

// Clears `crosshair` and fills it for an image of `imageSize`; an empty size stands for no image
// and describes 640 x 480 with the centre on (319.5, 239.5) and the edges at 639.5 and 479.5.
NXR_EXPORT void DefineCrosshairOverlays(clsOverlayCollection& crosshair, const QSize& imageSize);

} // namespace nxr
