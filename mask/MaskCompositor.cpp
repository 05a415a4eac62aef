#include "mask/MaskCompositor.h"

namespace nxr::MaskCompositor {

namespace {

inline quint32 blend(quint32 camera, quint32 mask)
{
    // Per channel (c + m) / 2 without carries between channels.
    return 0xFF000000u | ((((camera & 0xFEFEFEu) >> 1) + ((mask & 0xFEFEFEu) >> 1)) & 0xFFFFFFu);
}

} // namespace

void compose(const QImage& camera, const std::vector<QImage>& masks, const QRect& rect, QImage* view)
{
    QRect area = rect.intersected(camera.rect());
    if (view->size() != camera.size() || view->format() != QImage::Format_RGB32) {
        *view = QImage(camera.size(), QImage::Format_RGB32);
        area = camera.rect();
    }
    if (area.isEmpty())
        return;
    // The camera part of the area as RGB32 (grey and RGB32 images are read directly).
    const bool grey = camera.format() == QImage::Format_Grayscale8;
    const bool direct =
        grey || camera.format() == QImage::Format_RGB32 || camera.format() == QImage::Format_ARGB32;
    const QImage converted = direct ? QImage() : camera.copy(area).convertToFormat(QImage::Format_RGB32);
    std::vector<QImage> wide;
    wide.reserve(masks.size());
    for (const QImage& m : masks)
        wide.push_back(m.depth() == 32 ? m : m.convertToFormat(QImage::Format_RGB32));

    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* out = reinterpret_cast<quint32*>(view->scanLine(y));
        if (grey) {
            const uchar* in = camera.constScanLine(y);
            for (int x = area.left(); x <= area.right(); ++x)
                out[x] = 0xFF000000u | (quint32(in[x]) * 0x010101u);
        } else if (direct) {
            const auto* in = reinterpret_cast<const quint32*>(camera.constScanLine(y));
            for (int x = area.left(); x <= area.right(); ++x)
                out[x] = in[x] | 0xFF000000u;
        } else {
            const auto* in = reinterpret_cast<const quint32*>(converted.constScanLine(y - area.top()));
            for (int x = area.left(); x <= area.right(); ++x)
                out[x] = in[x - area.left()];
        }
        for (const QImage& m : wide) {
            if (y >= m.height())
                continue;
            const auto* in = reinterpret_cast<const quint32*>(m.constScanLine(y));
            const int right = std::min(area.right(), m.width() - 1);
            for (int x = area.left(); x <= right; ++x)
                if (in[x] & 0xFFFFFFu)
                    out[x] = blend(out[x], in[x]);
        }
    }
}

} // namespace nxr::MaskCompositor
