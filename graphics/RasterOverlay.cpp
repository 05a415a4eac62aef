#include "graphics/RasterOverlay.h"

#include <QPainter>

namespace nxr {

QImage composeOverlay(const QImage& image, const QImage& overlay)
{
    if (image.isNull())
        return QImage();
    QImage result = image.convertToFormat(QImage::Format_RGB32);
    if (overlay.isNull())
        return result;

    QImage top = overlay;
    if (top.size() != image.size())
        top = top.scaled(image.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
    const bool ownAlpha = top.hasAlphaChannel();
    top = top.convertToFormat(QImage::Format_ARGB32);
    if (!ownAlpha) {
        for (int y = 0; y < top.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(top.scanLine(y));
            for (int x = 0; x < top.width(); ++x)
                if ((line[x] & 0x00FFFFFF) == 0)
                    line[x] = 0;
        }
    }
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(0, 0, top);
    return result;
}

} // namespace nxr
