#include "imagedisplay/loading/GifWriter.h"

#include "frame/Conversions.h"

#include <gif_lib.h>

#include <vector>

namespace nxr {
namespace {

int appendBytes(GifFileType* gif, const GifByteType* bytes, int length)
{
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), length);
    return length;
}

QString gifError(int code)
{
    const char* text = GifErrorString(code);
    return QStringLiteral("GIF encoder: ") + (text ? QString::fromLatin1(text) : QString::number(code));
}

} // namespace

QByteArray GifWriter::encode(const QImage& indexed)
{
    if (indexed.format() != QImage::Format_Indexed8)
        throw Failure(QStringLiteral("GIF encoder: an 8-bit palette image is needed"));
    if (indexed.width() < 1 || indexed.height() < 1 || indexed.width() > 65535 || indexed.height() > 65535)
        throw Failure(QStringLiteral("GIF encoder: image size out of range"));
    const QList<QRgb> table = indexed.colorTable();
    if (table.isEmpty() || table.size() > 256)
        throw Failure(QStringLiteral("GIF encoder: the palette must have 1 to 256 colours"));

    // The colour map of a GIF file has a power-of-two size; unused entries stay black.
    int mapSize = 2;
    while (mapSize < table.size())
        mapSize *= 2;
    std::vector<GifColorType> colors(size_t(mapSize), GifColorType{0, 0, 0});
    for (int i = 0; i < table.size(); ++i)
        colors[size_t(i)] = GifColorType{GifByteType(qRed(table[i])), GifByteType(qGreen(table[i])),
                                         GifByteType(qBlue(table[i]))};

    QByteArray out;
    int error = 0;
    GifFileType* gif = EGifOpen(&out, appendBytes, &error);
    if (!gif)
        throw Failure(gifError(error));
    ColorMapObject* map = GifMakeMapObject(mapSize, colors.data());
    bool ok = map && EGifPutScreenDesc(gif, indexed.width(), indexed.height(), 8, 0, map) == GIF_OK &&
              EGifPutImageDesc(gif, 0, 0, indexed.width(), indexed.height(), false, nullptr) == GIF_OK;
    // Pixels pointing past the palette would make a file other readers reject.
    std::vector<GifByteType> line(size_t(indexed.width()));
    for (int y = 0; ok && y < indexed.height(); ++y) {
        const uchar* src = indexed.constScanLine(y);
        for (int x = 0; x < indexed.width(); ++x)
            line[size_t(x)] = src[x] < table.size() ? src[x] : 0;
        ok = EGifPutLine(gif, line.data(), indexed.width()) == GIF_OK;
    }
    const int failure = ok ? 0 : (map ? gif->Error : E_GIF_ERR_NOT_ENOUGH_MEM);
    GifFreeMapObject(map);
    int closeError = 0;
    const bool closed = EGifCloseFile(gif, &closeError) == GIF_OK;
    if (!ok)
        throw Failure(gifError(failure));
    if (!closed)
        throw Failure(gifError(closeError));
    return out;
}

} // namespace nxr
