#include "imagedisplay/loading/ImageFile.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "imagedisplay/loading/ColorQuantizer.h"
#include "imagedisplay/loading/GifWriter.h"
#include "imagedisplay/loading/ImageDecoding.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

namespace nxr {
namespace {

QByteArray qtEncode(const QImage& image, const char* format, int quality)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        throw Failure(QStringLiteral("could not encode the image: ") + writer.errorString());
    return out;
}

} // namespace

ImageFileFormat ImageFile::formatForPath(const QString& controllerPath)
{
    const QString ext = Globals::imageExtension(controllerPath);
    if (ext == QLatin1String(".PNG"))
        return ImageFileFormat::Png;
    if (ext == QLatin1String(".GIF"))
        return ImageFileFormat::Gif;
    if (ext == QLatin1String(".BMP"))
        return ImageFileFormat::Bmp;
    return ImageFileFormat::Jpeg;
}

QString ImageFile::extensionOf(ImageFileFormat format)
{
    switch (format) {
    case ImageFileFormat::Png:
        return QStringLiteral(".PNG");
    case ImageFileFormat::Gif:
        return QStringLiteral(".GIF");
    case ImageFileFormat::Bmp:
        return QStringLiteral(".BMP");
    case ImageFileFormat::Jpeg:
        break;
    }
    return QStringLiteral(".JPG");
}

QImage ImageFile::read(const QString& localPath)
{
    QFile file(localPath);
    if (!file.exists())
        throw Failure(QStringLiteral("file ") + localPath + QStringLiteral(" does not exist"));
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("cannot open ") + localPath + QStringLiteral(": ") + file.errorString());
    const QByteArray data = file.readAll();
    file.close();
    if (data.isEmpty())
        throw Failure(QStringLiteral("file ") + localPath + QStringLiteral(" is empty"));

    return decodeImage(data);
}

QByteArray ImageFile::encode(const QImage& image, ImageFileFormat format)
{
    if (image.isNull())
        throw Failure(QStringLiteral("no image to write"));
    // The 8-bit formats get 8-bit grey from 16-bit grey; colour stays colour.
    const QImage eightBit = image.format() == QImage::Format_Grayscale16
                                ? image.convertToFormat(QImage::Format_Grayscale8)
                                : image;
    switch (format) {
    case ImageFileFormat::Png:
        return qtEncode(image, "png", kPngQuality);
    case ImageFileFormat::Bmp:
        return qtEncode(eightBit, "bmp", -1);
    case ImageFileFormat::Gif:
        return GifWriter::encode(ColorQuantizer::toIndexed(eightBit));
    case ImageFileFormat::Jpeg:
        break;
    }
    const QImage opaque =
        eightBit.hasAlphaChannel() ? eightBit.convertToFormat(QImage::Format_RGB32) : eightBit;
    return qtEncode(opaque, "jpeg", kJpegQuality);
}

void ImageFile::write(const QImage& image, const QString& localPath, ImageFileFormat format)
{
    const QByteArray data = encode(image, format);
    QSaveFile file(localPath);
    if (!file.open(QIODevice::WriteOnly))
        throw Failure(QStringLiteral("cannot write ") + localPath + QStringLiteral(": ") +
                      file.errorString());
    file.write(data);
    if (!file.commit())
        throw Failure(QStringLiteral("cannot write ") + localPath + QStringLiteral(": ") +
                      file.errorString());
}

} // namespace nxr
