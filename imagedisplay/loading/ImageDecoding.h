#pragma once
// Decoding the bytes of an image file exchanged with the controller: JPEG, PNG, GIF and BMP,
// with checks that the file is whole before its image is used.

#include "frame/Export.h"

#include <QByteArray>
#include <QImage>

namespace nxr {

// Decodes `data`; the format is decided by the content. Grey images come back grey (Grayscale8,
// or Grayscale16 for 16-bit PNG), colour images as RGB32, or as ARGB32 when they carry
// transparency. Empty, truncated or non-image data throws nxr::Failure with the reason.
NXR_EXPORT QImage decodeImage(const QByteArray& data);

} // namespace nxr
