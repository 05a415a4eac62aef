#pragma once
// GIF encoding (Qt reads GIF files but cannot write them).

#include "frame/Export.h"

#include <QByteArray>
#include <QImage>

namespace nxr {

class NXR_EXPORT GifWriter
{
public:
    // Encodes an Indexed8 image (see ColorQuantizer) as a single-frame GIF file. Throws
    // nxr::Failure for another format, a size beyond the GIF limits or an encoder error.
    static QByteArray encode(const QImage& indexed);
};

} // namespace nxr
