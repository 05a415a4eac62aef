// The mask fill against the plain recursive fill, and against the whole connected region for
// regions of ordinary shape.

#include "mask/MaskFill.h"
#include "PixelChecks.h"
#include "ReferenceFill.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <deque>
#include <random>

using namespace nxr;
using nxr::testing::covers;
using nxr::testing::ReferenceFill;

namespace {

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kBlack = qRgb(0, 0, 0);
const QRgb kBlue = qRgb(0, 0, 255);

QImage noise(int w, int h, double density, std::mt19937& rng)
{
    QImage img(w, h, QImage::Format_RGB32);
    std::bernoulli_distribution wall(density);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.setPixel(x, y, wall(rng) ? kRed : kBlack);
    return img;
}

// Horizontal corridors joined alternately at the right and the left end: every corridor is two
// turns deeper than the one above it.
QImage serpentine(int corridors, int width)
{
    QImage img(width, corridors * 2, QImage::Format_RGB32);
    img.fill(kRed);
    for (int c = 0; c < corridors; ++c) {
        for (int x = 0; x < width; ++x)
            img.setPixel(x, 2 * c, kBlack);
        if (c + 1 < corridors)
            img.setPixel(c % 2 == 0 ? width - 1 : 0, 2 * c + 1, kBlack);
    }
    return img;
}

// The 4-connected region of the seed's colour, painted.
void regionFill(QImage& img, QPoint seed, QRgb pen)
{
    const QRgb target = img.pixel(seed);
    std::deque<QPoint> todo{seed};
    img.setPixel(seed, pen);
    while (!todo.empty()) {
        const QPoint p = todo.front();
        todo.pop_front();
        for (QPoint d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            const QPoint q = p + d;
            if (img.rect().contains(q) && img.pixel(q) == target) {
                img.setPixel(q, pen);
                todo.push_back(q);
            }
        }
    }
}

} // namespace

TEST(MaskFill, PaintsWhatTheRecursiveFillPaintsOnRandomMasks)
{
    std::mt19937 rng(20261122);
    std::uniform_int_distribution<int> side(1, 160);
    std::uniform_real_distribution<double> density(0.0, 0.6);
    for (int round = 0; round < 400; ++round) {
        const int w = side(rng), h = side(rng);
        const QImage start = noise(w, h, density(rng), rng);
        const QPoint seed(std::uniform_int_distribution<int>(0, w - 1)(rng),
                          std::uniform_int_distribution<int>(0, h - 1)(rng));
        const QRgb pen = round % 3 == 0 ? kBlue : (start.pixel(seed) == kRed ? kBlack : kRed);
        QImage expected = start.copy();
        ReferenceFill(expected, pen).fillAt(seed.x(), seed.y());
        QImage actual = start.copy();
        const QRect changed = floodFillMask(actual, seed, pen);
        ASSERT_EQ(actual, expected) << "round " << round << ", " << w << "x" << h;
        ASSERT_TRUE(covers(start, actual, changed)) << "round " << round;
    }
}

TEST(MaskFill, StopsWhereTheRecursiveFillStopsPastTheTurnLimit)
{
    // 1200 corridors need about 2400 turns; the fill ends near corridor 1000.
    const QImage start = serpentine(1200, 12);
    for (QPoint seed : {QPoint(0, 0), QPoint(5, 0), QPoint(11, 0)}) {
        QImage expected = start.copy();
        ReferenceFill(expected, kRed).fillAt(seed.x(), seed.y());
        QImage actual = start.copy();
        floodFillMask(actual, seed, kRed);
        EXPECT_EQ(actual, expected);
        QImage whole = start.copy();
        regionFill(whole, seed, kRed);
        EXPECT_NE(actual, whole) << "the limit did not cut the fill";
        EXPECT_EQ(actual.pixel(6, 2 * 900), kRed);
        EXPECT_EQ(actual.pixel(6, 2 * 1100), kBlack);
    }
}

TEST(MaskFill, FillsOrdinaryRegionsWithHolesCompletely)
{
    std::mt19937 rng(7);
    QImage start(640, 480, QImage::Format_RGB32);
    start.fill(kBlack);
    {
        QPainter p(&start);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(kRed));
        std::uniform_int_distribution<int> at(0, 600), size(5, 60);
        for (int i = 0; i < 120; ++i) {
            const QRect r(at(rng), at(rng) * 480 / 640, size(rng), size(rng));
            i % 2 ? p.drawEllipse(r) : p.drawRect(r);
        }
    }
    for (QPoint seed : {QPoint(0, 0), QPoint(639, 479), QPoint(320, 1)}) {
        if (start.pixel(seed) != kBlack)
            continue;
        QImage whole = start.copy();
        regionFill(whole, seed, kBlue);
        QImage actual = start.copy();
        const QRect changed = floodFillMask(actual, seed, kBlue);
        EXPECT_EQ(actual, whole);
        EXPECT_TRUE(covers(start, actual, changed));
    }
}

TEST(MaskFill, NothingToDo)
{
    QImage img(10, 10, QImage::Format_RGB32);
    img.fill(kRed);
    const QImage before = img.copy();
    EXPECT_TRUE(floodFillMask(img, QPoint(3, 3), kRed).isEmpty()); // already the pen's colour
    EXPECT_TRUE(floodFillMask(img, QPoint(-1, 3), kBlack).isEmpty());
    EXPECT_TRUE(floodFillMask(img, QPoint(3, 10), kBlack).isEmpty());
    EXPECT_EQ(img, before);
    QImage grey(10, 10, QImage::Format_Grayscale8);
    grey.fill(0);
    EXPECT_TRUE(floodFillMask(grey, QPoint(3, 3), kRed).isEmpty());
}
