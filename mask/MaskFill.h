#pragma once
// The mask's flood fill. From the seed it fills runs of the seed's colour: a run goes one way
// along a row or a column as far as the colour reaches, is painted, and is then walked back from
// its far end; at every pixel of it, the neighbours across the run (up before down, left before
// right) that still have the seed's colour start runs of their own, one turn deeper, handled
// completely before the walk goes on. The seed starts a run to the left and, when the pixel to
// its right still has the colour afterwards, one to the right. A run reached through
// kMaskFillMaxTurns or more turns is not painted: regions with ordinary shapes and holes fill
// completely, only pathological ones (mazes and spirals) stay partial.
//
// The walk keeps its runs on an explicit stack (bounded by the turn limit), so a fill never
// grows the call stack.

#include "frame/Export.h"

#include <QImage>
#include <QRect>

namespace nxr {

constexpr int kMaskFillMaxTurns = 2000;

// Fills at `seed` with `pen` (a pixel value of the image's format) on a 32-bit image. Returns the
// bounding rectangle of the painted pixels; empty when the seed is outside the image, the image
// is not 32-bit, or the seed already has the pen's value.
NXR_EXPORT QRect floodFillMask(QImage& image, const QPoint& seed, QRgb pen);

} // namespace nxr
