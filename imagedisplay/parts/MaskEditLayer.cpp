#include "imagedisplay/parts/MaskEditLayer.h"

#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/parts/MaskTintLayer.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace nxr {

namespace {

// The image pixels [first, end) one device pixel covers along one axis, clamped to [0, size).
struct Span
{
    int first = 0;
    int end = 0;
};

std::vector<Span> spans(int from, int count, double origin, double scale, int size)
{
    std::vector<Span> out(size_t(std::max(0, count)));
    for (int i = 0; i < count; ++i) {
        const double d = from + i - origin;
        int first = 0;
        int end = 0;
        if (scale >= 1.0) {
            // The image pixel under the device pixel's centre, as the view's nearest neighbour.
            first = int(std::floor((d + 0.5) / scale));
            end = first + 1;
        } else {
            first = int(std::floor(d / scale));
            end = std::max(first + 1, int(std::floor((d + 1.0) / scale)));
        }
        out[size_t(i)] = {std::clamp(first, 0, size), std::clamp(end, 0, size)};
    }
    return out;
}

} // namespace

MaskEditLayer::MaskEditLayer(std::function<const QImage*()> mask) : m_mask(std::move(mask)) {}

QImage MaskEditLayer::tint(const QImage& mask, const ViewMaths& maths, const QRect& device)
{
    if (device.isEmpty() || mask.isNull())
        return {};
    const QImage wide = mask.depth() == 32 ? mask : mask.convertToFormat(QImage::Format_RGB32);
    const double scale = maths.scale();
    const std::vector<Span> cols =
        spans(device.left(), device.width(), maths.origin().x(), scale, wide.width());
    const std::vector<Span> rows =
        spans(device.top(), device.height(), maths.origin().y(), scale, wide.height());
    QImage out(device.size(), QImage::Format_ARGB32_Premultiplied);
    out.fill(Qt::transparent);
    // Per device column: the sums of the premultiplied channels and the pixel count.
    std::vector<quint32> sums(size_t(device.width()) * 5);
    for (int j = 0; j < device.height(); ++j) {
        const Span row = rows[size_t(j)];
        if (row.first >= row.end)
            continue;
        std::fill(sums.begin(), sums.end(), 0u);
        bool any = false;
        for (int y = row.first; y < row.end; ++y) {
            const auto* in = reinterpret_cast<const QRgb*>(wide.constScanLine(y));
            for (int i = 0; i < device.width(); ++i) {
                const Span col = cols[size_t(i)];
                quint32* s = &sums[size_t(i) * 5];
                s[4] += quint32(std::max(0, col.end - col.first));
                for (int x = col.first; x < col.end; ++x) {
                    if (!(in[x] & 0xFFFFFFu))
                        continue;
                    const QRgb p = MaskTintLayer::overlayPixel(in[x], 0);
                    s[0] += quint32(qRed(p));
                    s[1] += quint32(qGreen(p));
                    s[2] += quint32(qBlue(p));
                    s[3] += quint32(qAlpha(p));
                    any = true;
                }
            }
        }
        if (!any)
            continue;
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(j));
        for (int i = 0; i < device.width(); ++i) {
            const quint32* s = &sums[size_t(i) * 5];
            if (!s[3] || !s[4])
                continue;
            const quint32 n = s[4];
            auto avg = [n](quint32 v) { return int((v + n / 2) / n); };
            line[i] = qRgba(avg(s[0]), avg(s[1]), avg(s[2]), avg(s[3]));
        }
    }
    return out;
}

void MaskEditLayer::paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty)
{
    const QImage* mask = m_mask();
    if (!mask || mask->isNull())
        return;
    // Only the device pixels showing the image.
    const QRect shown = dirty.intersected(maths.toScreen(QRectF(mask->rect())).toAlignedRect());
    if (shown.isEmpty())
        return;
    const QImage overlay = tint(*mask, maths, shown);
    painter.drawImage(shown.topLeft(), overlay);
}

} // namespace nxr
