#include "graphics/Crosshair.h"

namespace nxr {

void DefineCrosshairOverlays(clsOverlayCollection& crosshair, const QSize& imageSize)
{
    crosshair.Clear();
    double cx = 319.5, cy = 239.5, right = 639.5, bottom = 479.5;
    if (!imageSize.isEmpty()) {
        cx = imageSize.width() / 2.0;
        cy = imageSize.height() / 2.0;
        right = imageSize.width();
        bottom = imageSize.height();
    }
    constexpr double radius = 5.0;
    constexpr double gap = radius / 2.0;
    crosshair.AddCircle(cx, cy, radius, kCrosshairColor);
    crosshair.AddLine(0.0, cy, cx - gap, cy, kCrosshairColor);
    crosshair.AddLine(cx + gap, cy, right, cy, kCrosshairColor);
    crosshair.AddLine(cx, 0.0, cx, cy - gap, kCrosshairColor);
    crosshair.AddLine(cx, cy + gap, cx, bottom, kCrosshairColor);
}

} // namespace nxr
