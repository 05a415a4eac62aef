#pragma once
// Reduces an image to a palette of at most 256 colours, for files that can only hold a palette.

#include "frame/Export.h"

#include <QImage>

namespace nxr {

class NXR_EXPORT ColorQuantizer
{
public:
    // An Indexed8 image of the same size. The palette is exact when the image has at most
    // `maxColors` distinct colours (grey and indexed images always do); otherwise it is chosen
    // by median cut over a 5-bit-per-channel histogram and each pixel gets the nearest entry.
    // Transparency is dropped. maxColors is clamped to 2..256.
    static QImage toIndexed(const QImage& image, int maxColors = 256);
};

} // namespace nxr
