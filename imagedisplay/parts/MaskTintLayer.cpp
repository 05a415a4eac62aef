#include "imagedisplay/parts/MaskTintLayer.h"

#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/loading/ImageList.h"

#include <QPainter>

#include <cmath>

namespace nxr {

MaskTintLayer::MaskTintLayer(ImageList& images, std::function<int()> which, std::function<bool()> hidden)
    : m_images(images), m_which(std::move(which)), m_hidden(std::move(hidden))
{}

QRgb MaskTintLayer::overlayPixel(QRgb dontCare, QRgb emphasis)
{
    const bool a = (dontCare & 0xFFFFFFu) != 0;
    const bool b = (emphasis & 0xFFFFFFu) != 0;
    if (!a && !b)
        return 0;
    // One mask m over c: c/2 + m/2, alpha 1/2. Both: (c/2 + a/2)/2 + b/2 = c/4 + a/4 + b/2.
    auto channel = [&](int shift) {
        const int ca = a ? int((dontCare >> shift) & 0xFF) : 0;
        const int cb = b ? int((emphasis >> shift) & 0xFF) : 0;
        return (a && b) ? (ca + 2 * cb + 2) / 4 : (ca + cb + 1) / 2;
    };
    const int alpha = (a && b) ? 192 : 128;
    return qRgba(channel(16), channel(8), channel(0), alpha);
}

const QImage& MaskTintLayer::overlay()
{
    const int which = m_which();
    const bool showA = which == 1 || which == 3;
    const bool showB = which == 2 || which == 3;
    QImage a = showA ? m_images.image(ImageList::kDontCareMask) : QImage();
    QImage b = showB ? m_images.image(ImageList::kEmphasisMask) : QImage();
    const qint64 keys[2] = {a.isNull() ? 0 : a.cacheKey(), b.isNull() ? 0 : b.cacheKey()};
    if (which == m_builtFor && keys[0] == m_keys[0] && keys[1] == m_keys[1])
        return m_overlay;
    m_builtFor = which;
    m_keys[0] = keys[0];
    m_keys[1] = keys[1];
    m_overlay = QImage();
    if (a.isNull() && b.isNull())
        return m_overlay;
    const QSize size = a.isNull() ? b.size() : (b.isNull() ? a.size() : a.size().expandedTo(b.size()));
    if (!a.isNull() && a.depth() != 32)
        a = a.convertToFormat(QImage::Format_RGB32);
    if (!b.isNull() && b.depth() != 32)
        b = b.convertToFormat(QImage::Format_RGB32);
    m_overlay = QImage(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        const auto* la =
            !a.isNull() && y < a.height() ? reinterpret_cast<const QRgb*>(a.constScanLine(y)) : nullptr;
        const auto* lb =
            !b.isNull() && y < b.height() ? reinterpret_cast<const QRgb*>(b.constScanLine(y)) : nullptr;
        auto* out = reinterpret_cast<QRgb*>(m_overlay.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const QRgb pa = la && x < a.width() ? la[x] : 0;
            const QRgb pb = lb && x < b.width() ? lb[x] : 0;
            out[x] = overlayPixel(pa, pb);
        }
    }
    return m_overlay;
}

void MaskTintLayer::paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty)
{
    if (m_hidden())
        return;
    const QImage& tint = overlay();
    if (tint.isNull())
        return;
    // Only the part of the overlay under the repainted area, whole pixels.
    const QRectF wanted = maths.toImage(QRectF(dirty)).intersected(QRectF(tint.rect()));
    if (wanted.isEmpty())
        return;
    const QRect source(QPoint(int(std::floor(wanted.left())), int(std::floor(wanted.top()))),
                       QPoint(int(std::ceil(wanted.right())) - 1, int(std::ceil(wanted.bottom())) - 1));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, maths.scale() < 1.0);
    painter.drawImage(maths.toScreen(QRectF(source)), tint, source);
}

} // namespace nxr
