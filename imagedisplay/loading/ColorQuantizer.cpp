#include "imagedisplay/loading/ColorQuantizer.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <vector>

namespace nxr {
namespace {

// One occupied cell of the 32 x 32 x 32 colour histogram.
struct Cell
{
    quint16 key = 0; // r5 << 10 | g5 << 5 | b5
    quint32 count = 0;
    quint64 sum[3] = {0, 0, 0}; // of the 8-bit channel values that fell into the cell
    int channel(int c) const { return (key >> (10 - 5 * c)) & 31; }
};

struct Box
{
    size_t begin = 0;
    size_t end = 0;
    quint64 pixels = 0;
    int widest = 0; // channel with the largest extent
    int extent = 0;
};

inline quint16 cellKey(QRgb c)
{
    return quint16((qRed(c) >> 3) << 10 | (qGreen(c) >> 3) << 5 | (qBlue(c) >> 3));
}

void measure(Box& box, const std::vector<Cell>& cells)
{
    int lo[3] = {31, 31, 31};
    int hi[3] = {0, 0, 0};
    box.pixels = 0;
    for (size_t i = box.begin; i < box.end; ++i) {
        box.pixels += cells[i].count;
        for (int c = 0; c < 3; ++c) {
            lo[c] = std::min(lo[c], cells[i].channel(c));
            hi[c] = std::max(hi[c], cells[i].channel(c));
        }
    }
    box.extent = -1;
    for (int c = 0; c < 3; ++c) {
        if (hi[c] - lo[c] > box.extent) {
            box.extent = hi[c] - lo[c];
            box.widest = c;
        }
    }
}

QImage exactPalette(const QImage& rgb, const QHash<QRgb, int>& index)
{
    QImage out(rgb.size(), QImage::Format_Indexed8);
    QList<QRgb> table(index.size());
    for (auto it = index.cbegin(); it != index.cend(); ++it)
        table[it.value()] = it.key();
    out.setColorTable(table);
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* src = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        uchar* dst = out.scanLine(y);
        for (int x = 0; x < rgb.width(); ++x)
            dst[x] = uchar(index.value(src[x] | 0xFF000000u));
    }
    return out;
}

QImage medianCut(const QImage& rgb, int maxColors)
{
    std::vector<quint32> histogram(32768, 0);
    std::vector<std::array<quint64, 3>> sums(32768, {0, 0, 0});
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* src = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            const quint16 k = cellKey(src[x]);
            ++histogram[k];
            sums[k][0] += quint64(qRed(src[x]));
            sums[k][1] += quint64(qGreen(src[x]));
            sums[k][2] += quint64(qBlue(src[x]));
        }
    }
    std::vector<Cell> cells;
    for (int k = 0; k < 32768; ++k) {
        if (histogram[k]) {
            Cell cell;
            cell.key = quint16(k);
            cell.count = histogram[k];
            std::memcpy(cell.sum, sums[k].data(), sizeof cell.sum);
            cells.push_back(cell);
        }
    }

    std::vector<Box> boxes(1);
    boxes[0].end = cells.size();
    measure(boxes[0], cells);
    while (int(boxes.size()) < maxColors) {
        // Split the box where most pixels lie farthest apart: population times extent.
        Box* pick = nullptr;
        for (Box& b : boxes) {
            if (b.extent > 0 &&
                (!pick || b.pixels * quint64(b.extent) > pick->pixels * quint64(pick->extent)))
                pick = &b;
        }
        if (!pick)
            break;
        const int c = pick->widest;
        std::sort(cells.begin() + pick->begin, cells.begin() + pick->end,
                  [c](const Cell& a, const Cell& b) { return a.channel(c) < b.channel(c); });
        // Cut at the pixel median, but never between two cells of the same value, and never so
        // that one side is empty (the extent is positive, so a cut exists).
        quint64 running = 0;
        size_t cut = pick->begin + 1;
        for (size_t i = pick->begin; i + 1 < pick->end; ++i) {
            running += cells[i].count;
            if (cells[i].channel(c) != cells[i + 1].channel(c)) {
                cut = i + 1;
                if (running * 2 >= pick->pixels)
                    break;
            }
        }
        Box upper;
        upper.begin = cut;
        upper.end = pick->end;
        pick->end = cut;
        measure(*pick, cells);
        measure(upper, cells);
        boxes.push_back(upper);
    }

    QList<QRgb> table;
    for (const Box& b : boxes) {
        quint64 total[3] = {0, 0, 0};
        quint64 n = 0;
        for (size_t i = b.begin; i < b.end; ++i) {
            for (int c = 0; c < 3; ++c)
                total[c] += cells[i].sum[c];
            n += cells[i].count;
        }
        table.append(
            qRgb(int((total[0] + n / 2) / n), int((total[1] + n / 2) / n), int((total[2] + n / 2) / n)));
    }

    // Every occupied cell maps to the palette entry nearest to the mean colour of its pixels.
    std::vector<uchar> lookup(32768, 0);
    for (const Cell& cell : cells) {
        const int r = int(cell.sum[0] / cell.count), g = int(cell.sum[1] / cell.count),
                  b = int(cell.sum[2] / cell.count);
        int best = 0;
        int bestDistance = INT_MAX;
        for (int i = 0; i < table.size(); ++i) {
            const int dr = qRed(table[i]) - r, dg = qGreen(table[i]) - g, db = qBlue(table[i]) - b;
            const int d = 2 * dr * dr + 4 * dg * dg + 3 * db * db;
            if (d < bestDistance) {
                bestDistance = d;
                best = i;
            }
        }
        lookup[cell.key] = uchar(best);
    }

    QImage out(rgb.size(), QImage::Format_Indexed8);
    out.setColorTable(table);
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* src = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        uchar* dst = out.scanLine(y);
        for (int x = 0; x < rgb.width(); ++x)
            dst[x] = lookup[cellKey(src[x])];
    }
    return out;
}

} // namespace

QImage ColorQuantizer::toIndexed(const QImage& image, int maxColors)
{
    if (image.isNull())
        return QImage();
    maxColors = std::clamp(maxColors, 2, 256);
    if (image.format() == QImage::Format_Indexed8 && image.colorCount() <= maxColors)
        return image;
    if (image.format() == QImage::Format_Grayscale8 && maxColors == 256) {
        QImage out(image.size(), QImage::Format_Indexed8);
        QList<QRgb> table(256);
        for (int i = 0; i < 256; ++i)
            table[i] = qRgb(i, i, i);
        out.setColorTable(table);
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(out.scanLine(y), image.constScanLine(y), size_t(image.width()));
        return out;
    }
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> index;
    for (int y = 0; y < rgb.height() && index.size() <= maxColors; ++y) {
        const auto* src = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb c = src[x] | 0xFF000000u;
            if (!index.contains(c)) {
                if (index.size() == maxColors) {
                    index.insert(c, -1); // one too many: give up on the exact palette
                    break;
                }
                index.insert(c, int(index.size()));
            }
        }
    }
    if (index.size() <= maxColors)
        return exactPalette(rgb, index);
    return medianCut(rgb, maxColors);
}

} // namespace nxr
