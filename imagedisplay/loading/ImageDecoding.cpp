#include "imagedisplay/loading/ImageDecoding.h"

#include "frame/Conversions.h"

#include <QBuffer>
#include <QImageReader>

namespace nxr {
namespace {

quint32 le32(const QByteArray& d, qsizetype at)
{
    const auto* p = reinterpret_cast<const uchar*>(d.constData()) + at;
    return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}

quint16 le16(const QByteArray& d, qsizetype at)
{
    const auto* p = reinterpret_cast<const uchar*>(d.constData()) + at;
    return quint16(p[0] | p[1] << 8);
}

// Walks the JPEG segments up to the end-of-image marker. Segments are skipped by their length;
// after a start-of-scan the entropy-coded data runs to the next marker (inside it every FF is
// followed by 00 or a restart marker). Data after the end marker is allowed.
bool jpegComplete(const QByteArray& d)
{
    const qsizetype n = d.size();
    auto byte = [&](qsizetype i) { return uchar(d[i]); };
    qsizetype at = 2;
    while (at + 1 < n) {
        if (byte(at) != 0xFF)
            return false;
        const uchar marker = byte(at + 1);
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        if (marker == 0xD9)
            return true;
        if ((marker >= 0xD0 && marker <= 0xD7) || marker == 0x01) {
            at += 2;
            continue;
        }
        if (at + 3 >= n)
            return false;
        at += 2 + ((qsizetype(byte(at + 2)) << 8) | byte(at + 3));
        if (marker != 0xDA)
            continue;
        while (at + 1 < n &&
               !(byte(at) == 0xFF && byte(at + 1) != 0 && (byte(at + 1) < 0xD0 || byte(at + 1) > 0xD7)))
            ++at;
    }
    return false;
}

// An uncompressed bitmap must hold all its rows after the pixel-data offset.
bool bmpComplete(const QByteArray& d)
{
    if (d.size() < 34)
        return false;
    const quint32 offset = le32(d, 10);
    const qint64 width = qint32(le32(d, 18));
    const qint64 height = qint32(le32(d, 22));
    const quint16 bits = le16(d, 28);
    const quint32 compression = le32(d, 30);
    if (compression != 0 && compression != 3)
        return true; // run-length data: its decoder checks its own end
    // No products of header fields: rows times stride can exceed 64 bits.
    const qint64 stride = ((qAbs(width) * bits + 31) / 32) * 4; // below 2^48
    const qint64 rows = qAbs(height);
    const qint64 available = d.size() - qint64(offset);
    if (available < 0)
        return false;
    return stride == 0 || rows <= available / stride;
}

// A PNG file ends with the IEND chunk and its checksum.
bool pngComplete(const QByteArray& d)
{
    const qsizetype at = d.lastIndexOf("IEND");
    return at >= 12 && d.size() - at >= 8;
}

// What the block structure of a GIF file says: whether it reaches its trailer byte, and whether
// every colour table in it is grey (Qt decodes GIF to 32-bit colour, which would lose that).
struct GifScan
{
    bool complete = false;
    bool grey = true;
};

GifScan scanGif(const QByteArray& d)
{
    GifScan scan;
    const qsizetype n = d.size();
    auto byte = [&](qsizetype i) { return uchar(d[i]); };
    if (n < 13)
        return scan;
    qsizetype at = 13;
    auto colourTable = [&](uchar flags) {
        const qsizetype entries = qsizetype(1) << ((flags & 7) + 1);
        for (qsizetype i = 0; i < entries && at + 3 * i + 2 < n; ++i) {
            const qsizetype e = at + 3 * i;
            if (byte(e) != byte(e + 1) || byte(e + 1) != byte(e + 2))
                scan.grey = false;
        }
        at += 3 * entries;
    };
    if (byte(10) & 0x80)
        colourTable(byte(10));
    auto skipSubBlocks = [&]() {
        while (at < n) {
            const uchar len = byte(at++);
            if (len == 0)
                return true;
            at += len;
        }
        return false;
    };
    while (at < n) {
        const uchar kind = byte(at++);
        if (kind == 0x3B) {
            scan.complete = true;
            return scan;
        }
        if (kind == 0x21) {
            if (++at > n || !skipSubBlocks())
                return scan;
        } else if (kind == 0x2C) {
            if (at + 9 > n)
                return scan;
            const uchar flags = byte(at + 8);
            at += 9;
            if (flags & 0x80)
                colourTable(flags);
            if (++at > n || !skipSubBlocks()) // LZW minimum code size, then the data
                return scan;
        } else {
            return scan;
        }
    }
    return scan;
}

bool greyTable(const QList<QRgb>& table)
{
    for (QRgb c : table) {
        if (qRed(c) != qGreen(c) || qGreen(c) != qBlue(c) || qAlpha(c) != 255)
            return false;
    }
    return !table.isEmpty();
}

// Grey stays grey; everything else becomes 32-bit colour, with alpha only when the file had it.
QImage normalised(const QImage& image)
{
    switch (image.format()) {
    case QImage::Format_Grayscale8:
    case QImage::Format_Grayscale16:
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return image;
    case QImage::Format_Mono:
    case QImage::Format_MonoLSB:
    case QImage::Format_Indexed8:
        if (greyTable(image.colorTable()))
            return image.convertToFormat(QImage::Format_Grayscale8);
        break;
    default:
        break;
    }
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

} // namespace

QImage decodeImage(const QByteArray& data)
{
    if (data.isEmpty())
        throw Failure(QStringLiteral("no image data"));
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false);
    const QByteArray kind = reader.format();
    const QImage image = reader.read();
    if (image.isNull()) {
        throw Failure(kind.isEmpty()
                          ? QStringLiteral("not an image file")
                          : QStringLiteral("cannot decode ") + QString::fromLatin1(kind).toUpper() +
                                QStringLiteral(" data: ") + reader.errorString());
    }
    GifScan gif;
    if (kind == "gif")
        gif = scanGif(data);
    const bool whole = kind == "jpeg"  ? jpegComplete(data)
                       : kind == "bmp" ? bmpComplete(data)
                       : kind == "gif" ? gif.complete
                       : kind == "png" ? pngComplete(data)
                                       : true;
    if (!whole)
        throw Failure(QString::fromLatin1(kind).toUpper() + QStringLiteral(" data is truncated"));
    if (kind == "gif" && gif.grey && !image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_Grayscale8);
    return normalised(image);
}

} // namespace nxr
