#pragma once
// Reading and writing the image files exchanged with the controller: JPEG, PNG, GIF and BMP.

#include "frame/Export.h"

#include <QImage>
#include <QString>

namespace nxr {

enum class ImageFileFormat { Jpeg, Png, Gif, Bmp };

class NXR_EXPORT ImageFile
{
public:
    // The format a controller path is written in: by its image extension (Globals::imageExtension),
    // JPEG when it has none.
    static ImageFileFormat formatForPath(const QString& controllerPath);
    // ".JPG", ".PNG", ".GIF" or ".BMP".
    static QString extensionOf(ImageFileFormat format);

    // Reads a local image file; the format is decided by the content, not the name. Grey images
    // come back grey (Grayscale8, or Grayscale16 for 16-bit PNG), colour images as RGB32, or as
    // ARGB32 when they carry transparency. A missing, unreadable, truncated or non-image file
    // throws nxr::Failure with the reason.
    static QImage read(const QString& localPath);

    // Writes `image` to a local file in `format`, replacing the file only once the whole image
    // has been written. Grey images are written as grey; GIF files of colour images get a palette
    // of at most 256 colours (exact when the image has no more). Throws nxr::Failure on error.
    static void write(const QImage& image, const QString& localPath, ImageFileFormat format);

    // The image encoded as `format`, as write() would store it.
    static QByteArray encode(const QImage& image, ImageFileFormat format);

    // PNG files are written with this writer quality (zlib level 1): several times faster than the
    // default level for camera images, for files about a sixth larger.
    static constexpr int kPngQuality = 80;
    // JPEG files are written with this quality.
    static constexpr int kJpegQuality = 90;
};

} // namespace nxr
