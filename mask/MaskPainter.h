#pragma once
// Painting mask operations into a mask bitmap. Every routine returns a rectangle that holds every
// pixel it changed (clipped to the image), so a view can recompose and repaint only that.
// Point coordinates are mask pixels; the point (10, 5) is the pixel whose centre is (10.5, 5.5).
// The bitmap must be 32-bit (MaskEditor widens other formats when an edit starts).

#include "frame/Export.h"
#include "mask/MaskModel.h"

#include <QImage>
#include <QRect>

namespace nxr::MaskPainter {

// Mask colours as pixel values: don't-care red, emphasis blue, erase black. The page's colour
// numbers are 0x0000FF (red), 0xFF0000 (blue) and 0.
NXR_EXPORT QRgb modeColor(int editMaskMode);
NXR_EXPORT QRgb eraseColor();

// Pen width in pixels of a KSEMaskToolSize (0, 1, 10, 26; 0 for unknown sizes), doubled when
// `shift` is exactly 1 (Shift alone).
NXR_EXPORT int penWidth(int toolSize, int shift);

// Points `first`..`last` (1-based, -1 for all) of a stroke: a line from the previous point when it
// lies at least one pixel away, then a dot (a filled circle of the width, a single pixel below
// width 2), so joints and ends are round.
NXR_EXPORT QRect drawStroke(QImage& mask, const MaskList<clsMaskPoint>& points, int width, QRgb color,
                            int first = -1, int last = -1);
// A filled rectangle with corners (x1, y1) and (x2, y2), both pixels included.
NXR_EXPORT QRect drawRectangle(QImage& mask, double x1, double y1, double x2, double y2, QRgb color);
// A filled ellipse with that centre and radii.
NXR_EXPORT QRect drawEllipse(QImage& mask, double cx, double cy, double rx, double ry, QRgb color);
NXR_EXPORT QRect fillAll(QImage& mask, QRgb color);
NXR_EXPORT QRect fill(QImage& mask, double x, double y, QRgb color);

// Paints one recorded operation as it was drawn, in the colour of `editMaskMode` or black when
// the operation erases (mask all and mask none: the mode colour and black).
NXR_EXPORT QRect apply(QImage& mask, const clsMaskOperation& operation, int editMaskMode);

} // namespace nxr::MaskPainter
