#include "imagedisplay/RasterRenderer.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace nxr {
namespace {

const std::array<QRgb, 256>& greyTable()
{
    static const std::array<QRgb, 256> table = [] {
        std::array<QRgb, 256> t{};
        for (int i = 0; i < 256; ++i)
            t[size_t(i)] = qRgb(i, i, i);
        return t;
    }();
    return table;
}

bool drawnAsIs(QImage::Format format)
{
    return format == QImage::Format_Grayscale8 || format == QImage::Format_RGB32;
}

// Grey to RGB32, sixteen pixels a step where the processor allows: the grey byte is spread
// into blue, green and red and an opaque alpha put beside it by byte interleaving.
inline void greyRow(const uchar* in, QRgb* out, int width)
{
    int i = 0;
#ifdef __SSE2__
    const __m128i opaque = _mm_set1_epi8(char(0xFF));
    for (; i + 16 <= width; i += 16) {
        const __m128i g = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
        const __m128i gg0 = _mm_unpacklo_epi8(g, g);
        const __m128i gg1 = _mm_unpackhi_epi8(g, g);
        const __m128i ga0 = _mm_unpacklo_epi8(g, opaque);
        const __m128i ga1 = _mm_unpackhi_epi8(g, opaque);
        auto* o = reinterpret_cast<__m128i*>(out + i);
        _mm_storeu_si128(o, _mm_unpacklo_epi16(gg0, ga0));
        _mm_storeu_si128(o + 1, _mm_unpackhi_epi16(gg0, ga0));
        _mm_storeu_si128(o + 2, _mm_unpacklo_epi16(gg1, ga1));
        _mm_storeu_si128(o + 3, _mm_unpackhi_epi16(gg1, ga1));
    }
#endif
    for (; i < width; ++i)
        out[i] = 0xFF000000u | (quint32(in[i]) * 0x00010101u);
}

// Red in bits 16-23, green moved to bits 32-39, blue in bits 0-7: four pixels can be added
// without one channel spilling into the next.
inline quint64 spread(QRgb p)
{
    return quint64(p & 0x00FF00FFu) | (quint64(p & 0x0000FF00u) << 24);
}
constexpr quint64 kRounding = 0x0000000200020002ull;
inline QRgb gather(quint64 v)
{
    return 0xFF000000u | QRgb(v & 0x00FF00FFu) | (QRgb((v >> 24) & 0x0000FF00u));
}

// One halving step over the destination rectangle `part`: each pixel is the mean of a 2 x 2
// block of src; an odd last row or column repeats its edge pixel.
void halveInto(const QImage& src, QImage& dst, const QRect& part)
{
    const int lastX = src.width() - 1;
    const int lastY = src.height() - 1;
    const int x0 = part.left(), x1 = part.right();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const int ya = std::min(2 * y, lastY);
        const int yb = std::min(2 * y + 1, lastY);
        if (src.format() == QImage::Format_Grayscale8) {
            const uchar* a = src.constScanLine(ya);
            const uchar* b = src.constScanLine(yb);
            uchar* out = dst.scanLine(y);
            for (int x = x0; x <= x1; ++x) {
                const int xa = std::min(2 * x, lastX);
                const int xb = std::min(2 * x + 1, lastX);
                out[x] = uchar((a[xa] + a[xb] + b[xa] + b[xb] + 2) / 4);
            }
        } else {
            const QRgb* a = reinterpret_cast<const QRgb*>(src.constScanLine(ya));
            const QRgb* b = reinterpret_cast<const QRgb*>(src.constScanLine(yb));
            QRgb* out = reinterpret_cast<QRgb*>(dst.scanLine(y));
            for (int x = x0; x <= x1; ++x) {
                const int xa = std::min(2 * x, lastX);
                const int xb = std::min(2 * x + 1, lastX);
                // The three channels side by side in 16-bit lanes, summed in one go.
                const quint64 sum = spread(a[xa]) + spread(a[xb]) + spread(b[xa]) + spread(b[xb]) + kRounding;
                out[x] = gather(sum >> 2);
            }
        }
    }
}

QImage halve(const QImage& src)
{
    QImage dst((src.width() + 1) / 2, (src.height() + 1) / 2, src.format());
    halveInto(src, dst, dst.rect());
    return dst;
}

// Adds halvings of the last level (or of `source`) until there are `count` levels or the last one
// is a single pixel.
void addLevels(std::vector<QImage>& levels, const QImage& source, int count)
{
    while (int(levels.size()) < count) {
        const QImage& last = levels.empty() ? source : levels.back();
        if (last.width() <= 1 && last.height() <= 1)
            break;
        levels.push_back(halve(last));
    }
}

// The pixels of a halved image that depend on `region` of the image it was halved from.
QRect halvedRegion(const QRect& region)
{
    return QRect(QPoint(region.left() / 2, region.top() / 2),
                 QPoint(region.right() / 2, region.bottom() / 2));
}

} // namespace

RasterRenderer::RasterRenderer() = default;

void RasterRenderer::setImage(const QImage& image)
{
    m_image = image;
    imageChanged();
}

void RasterRenderer::setImage(const QImage& image, std::vector<QImage> reductions)
{
    setImage(image);
    if (!drawnAsIs(image.format()))
        return;
    const QImage* previous = &image;
    for (QImage& level : reductions) {
        const QSize halved((previous->width() + 1) / 2, (previous->height() + 1) / 2);
        if (level.format() != image.format() || level.size() != halved ||
            (previous->width() <= 1 && previous->height() <= 1))
            break;
        m_levels.push_back(std::move(level));
        previous = &m_levels.back();
    }
}

std::vector<QImage> RasterRenderer::reductions(const QImage& image, int count)
{
    std::vector<QImage> levels;
    if (image.isNull() || !drawnAsIs(image.format()))
        return levels;
    addLevels(levels, image, count);
    return levels;
}

void RasterRenderer::imageChanged()
{
    m_converted = QImage();
    m_paintReady = QImage();
    m_greyConversions = 0;
    m_levels.clear();
    discardBuffer();
}

void RasterRenderer::imageChanged(const QRect& region)
{
    QRect r = region.intersected(m_image.rect());
    if (r.isEmpty())
        return;
    discardBuffer();
    if (!m_converted.isNull()) {
        QPainter p(&m_converted);
        p.fillRect(r, m_background);
        p.drawImage(r.topLeft(), m_image, r);
    }
    if (!m_paintReady.isNull()) {
        for (int y = r.top(); y <= r.bottom(); ++y)
            greyRow(m_image.constScanLine(y) + r.left(),
                    reinterpret_cast<QRgb*>(m_paintReady.scanLine(y)) + r.left(), r.width());
    }
    const QImage* previous = &displaySource();
    for (QImage& level : m_levels) {
        r = halvedRegion(r).intersected(level.rect());
        if (r.isEmpty())
            break;
        halveInto(*previous, level, r);
        previous = &level;
    }
}

void RasterRenderer::setPaintReadyCopy(bool allowed)
{
    m_paintReadyAllowed = allowed;
    if (!allowed)
        m_paintReady = QImage();
}

void RasterRenderer::discardBuffer()
{
    m_bufferValid = false;
}

const QImage& RasterRenderer::displaySource()
{
    if (m_image.isNull() || drawnAsIs(m_image.format()))
        return m_image;
    if (m_converted.isNull()) {
        // Transparent pixels are shown over the background, as the view shows them.
        QImage flat(m_image.size(), QImage::Format_RGB32);
        flat.fill(m_background);
        QPainter p(&flat);
        p.drawImage(0, 0, m_image);
        p.end();
        m_converted = flat;
    }
    return m_converted;
}

int RasterRenderer::levelForZoom(float zoom)
{
    if (!(zoom < 100.0f) || !(zoom > 0.0f))
        return 0;
    // The deepest level whose scale 2^-level is still at least zoom / 100.
    return std::max(0, int(std::floor(std::log2(100.0 / double(zoom)) + 1e-6)));
}

const QImage& RasterRenderer::level(int index)
{
    const QImage& source = displaySource();
    if (index <= 0 || source.isNull())
        return source;
    addLevels(m_levels, source, index);
    if (m_levels.empty())
        return source;
    return m_levels[size_t(std::min(index, int(m_levels.size())) - 1)];
}

void RasterRenderer::paint(QPainter& painter, const QRect& area, float zoom, const QPoint& origin)
{
    if (area.isEmpty())
        return;
    const QImage& source = displaySource();
    if (source.isNull() || !(zoom > 0.0f)) {
        painter.fillRect(area, m_background);
        return;
    }
    const double scale = double(zoom) / 100.0;
    const QRect dest(origin, QSize(int(std::ceil(source.width() * scale - 1e-6)),
                                   int(std::ceil(source.height() * scale - 1e-6))));
    const QRect shown = dest.intersected(area);

    // Background around the image: up to four bands.
    if (shown.isEmpty()) {
        painter.fillRect(area, m_background);
        return;
    }
    if (shown.top() > area.top())
        painter.fillRect(QRect(area.left(), area.top(), area.width(), shown.top() - area.top()),
                         m_background);
    if (shown.bottom() < area.bottom())
        painter.fillRect(QRect(area.left(), shown.bottom() + 1, area.width(), area.bottom() - shown.bottom()),
                         m_background);
    if (shown.left() > area.left())
        painter.fillRect(QRect(area.left(), shown.top(), shown.left() - area.left(), shown.height()),
                         m_background);
    if (shown.right() < area.right())
        painter.fillRect(QRect(shown.right() + 1, shown.top(), area.right() - shown.right(), shown.height()),
                         m_background);

    const int levelIndex = levelForZoom(zoom);
    const QImage& src = level(levelIndex);
    const double levelScale = scale * double(1 << levelIndex);
    const bool exact = std::abs(levelScale - 1.0) < 1e-9;

    const bool greyAtFull = exact && levelIndex == 0 && src.format() == QImage::Format_Grayscale8;
    if (greyAtFull &&
        (!m_paintReady.isNull() || (m_paintReadyAllowed && m_greyConversions >= kConversionsBeforeCopy &&
                                    qint64(src.width()) * src.height() <= kPaintReadyPixels))) {
        if (m_paintReady.isNull()) {
            m_paintReady = QImage(src.size(), QImage::Format_RGB32);
            for (int y = 0; y < src.height(); ++y)
                greyRow(src.constScanLine(y), reinterpret_cast<QRgb*>(m_paintReady.scanLine(y)), src.width());
        }
        painter.drawImage(shown.topLeft(), m_paintReady, shown.translated(-origin));
        return;
    }
    if (exact && src.format() != QImage::Format_Grayscale8) {
        // No scaling: draw the visible part straight from the bitmap (or its reduction).
        painter.drawImage(shown.topLeft(), src, shown.translated(-origin));
        return;
    }
    // The buffer is kept for the view it was made for; a repaint of part of that view (a layer
    // asking for a small rectangle) takes its part of the buffer.
    const bool reusable =
        m_bufferValid && m_bufferZoom == zoom && m_bufferOrigin == origin && m_bufferRect.contains(shown);
    if (!reusable) {
        if (exact) {
            convertBuffer(src, shown, origin);
            ++m_greyConversions;
        } else
            renderBuffer(src, levelScale, shown, origin);
        m_bufferRect = shown;
        m_bufferZoom = zoom;
        m_bufferOrigin = origin;
        m_bufferValid = true;
    }
    painter.drawImage(shown.topLeft(), m_buffer, shown.translated(-m_bufferRect.topLeft()));
}

void RasterRenderer::convertBuffer(const QImage& grey, const QRect& target, const QPoint& origin)
{
    if (m_buffer.size() != target.size())
        m_buffer = QImage(target.size(), QImage::Format_RGB32);
    const QPoint from = target.topLeft() - origin;
    for (int j = 0; j < target.height(); ++j)
        greyRow(grey.constScanLine(from.y() + j) + from.x(), reinterpret_cast<QRgb*>(m_buffer.scanLine(j)),
                target.width());
}

void RasterRenderer::renderBuffer(const QImage& source, double levelScale, const QRect& target,
                                  const QPoint& origin)
{
    if (m_buffer.size() != target.size())
        m_buffer = QImage(target.size(), QImage::Format_RGB32);

    // The source column and row under the centre of each target pixel.
    const int lastX = source.width() - 1;
    const int lastY = source.height() - 1;
    m_columns.resize(size_t(target.width()));
    for (int i = 0; i < target.width(); ++i) {
        const double x = (target.left() + i + 0.5 - origin.x()) / levelScale;
        m_columns[size_t(i)] = std::clamp(int(std::floor(x)), 0, lastX);
    }
    const bool grey = source.format() == QImage::Format_Grayscale8;
    const QRgb* lut = greyTable().data();
    const int width = target.width();
    const size_t rowBytes = size_t(width) * sizeof(QRgb);
    int previousRow = -1;
    for (int j = 0; j < target.height(); ++j) {
        const double y = (target.top() + j + 0.5 - origin.y()) / levelScale;
        const int row = std::clamp(int(std::floor(y)), 0, lastY);
        QRgb* out = reinterpret_cast<QRgb*>(m_buffer.scanLine(j));
        if (row == previousRow) {
            std::memcpy(out, m_buffer.constScanLine(j - 1), rowBytes);
            continue;
        }
        previousRow = row;
        const int* col = m_columns.data();
        if (grey) {
            const uchar* in = source.constScanLine(row);
            for (int i = 0; i < width; ++i)
                out[i] = lut[in[col[i]]];
        } else {
            const QRgb* in = reinterpret_cast<const QRgb*>(source.constScanLine(row));
            for (int i = 0; i < width; ++i)
                out[i] = in[col[i]];
        }
    }
}

} // namespace nxr
