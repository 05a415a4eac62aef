// The working mask's tint in the mask view, made per repainted device pixel from the mask alone.

#include "imagedisplay/parts/MaskEditLayer.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/parts/MaskTintLayer.h"
#include "mask/MaskCompositor.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>

using nxr::MaskEditLayer;
using nxr::MaskTintLayer;
using nxr::ViewMaths;

namespace {

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kBlue = qRgb(0, 0, 255);
const QRgb kBlack = qRgb(0, 0, 0);

// A mask with a scatter of red and blue pixels on black.
QImage scatter(int w, int h)
{
    QImage mask(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int v = (x * 7 + y * 13) % 5;
            mask.setPixel(x, y, v == 0 ? kRed : (v == 1 ? kBlue : kBlack));
        }
    return mask;
}

ViewMaths mathsFor(const QSize& image, float zoom, const QPoint& scroll = {})
{
    ViewMaths maths;
    maths.setImageSize(image);
    maths.setUsableArea(QSize(400, 300));
    maths.setZoom(zoom);
    maths.setScrollPosition(scroll);
    return maths;
}

} // namespace

TEST(MaskEditLayer, EachDevicePixelTintsTheMaskPixelsItCovers)
{
    const QImage mask = scatter(40, 30);
    struct Case
    {
        float zoom;
        QPoint scroll;
    };
    // Zoomed in (nearest pixel), at 100 %, halved, a third and a non-integer reduction; scrolled
    // and not (the image smaller than the view sits inside it, so device pixels miss the image).
    for (const Case c : {Case{300.f, {}}, Case{300.f, {25, 17}}, Case{100.f, {}}, Case{50.f, {}},
                         Case{100.f / 3.f, {}}, Case{40.f, {}}}) {
        SCOPED_TRACE(testing::Message() << "zoom " << c.zoom << " scroll " << c.scroll.x());
        const ViewMaths maths = mathsFor(mask.size(), c.zoom, c.scroll);
        const QRect device(0, 0, 130, 100);
        const QImage tint = MaskEditLayer::tint(mask, maths, device);
        ASSERT_EQ(tint.size(), device.size());
        const double s = maths.scale();
        for (int j = 0; j < device.height(); ++j)
            for (int i = 0; i < device.width(); ++i) {
                // The image pixels the device pixel covers (its centre's when zoomed in).
                int x0, x1, y0, y1;
                const double dx = i - maths.origin().x(), dy = j - maths.origin().y();
                if (s >= 1.0) {
                    x0 = int(std::floor((dx + 0.5) / s)), x1 = x0 + 1;
                    y0 = int(std::floor((dy + 0.5) / s)), y1 = y0 + 1;
                } else {
                    x0 = int(std::floor(dx / s)), x1 = std::max(x0 + 1, int(std::floor((dx + 1) / s)));
                    y0 = int(std::floor(dy / s)), y1 = std::max(y0 + 1, int(std::floor((dy + 1) / s)));
                }
                int sum[4] = {0, 0, 0, 0}, n = 0;
                for (int y = std::max(0, y0); y < std::min(mask.height(), y1); ++y)
                    for (int x = std::max(0, x0); x < std::min(mask.width(), x1); ++x) {
                        const QRgb p = MaskTintLayer::overlayPixel(mask.pixel(x, y), 0);
                        sum[0] += qRed(p), sum[1] += qGreen(p), sum[2] += qBlue(p), sum[3] += qAlpha(p);
                        ++n;
                    }
                const QRgb got = tint.pixel(i, j);
                if (n == 0 || sum[3] == 0) {
                    ASSERT_EQ(qAlpha(got), 0) << i << "," << j;
                    continue;
                }
                ASSERT_NEAR(qAlpha(got), double(sum[3]) / n, 0.51) << i << "," << j;
                ASSERT_NEAR(qRed(got), double(sum[0]) / n, 0.51) << i << "," << j;
                ASSERT_NEAR(qBlue(got), double(sum[2]) / n, 0.51) << i << "," << j;
            }
    }
}

TEST(MaskEditLayer, DrawnOverTheCameraItGivesTheBlendOfTheSavedView)
{
    // At 100 % the tint drawn over a grey camera image shows what the composed view of the same
    // mask shows, within a grey level: a repainted part matches the whole.
    const QImage mask = scatter(40, 30);
    QImage camera(40, 30, QImage::Format_Grayscale8);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            camera.scanLine(y)[x] = uchar((x * 11 + y * 5) % 256);
    QImage composed;
    nxr::MaskCompositor::compose(camera, {mask}, camera.rect(), &composed);

    const ViewMaths maths = mathsFor(mask.size(), 100.f);
    const QRect imageOnScreen = maths.toScreen(QRectF(mask.rect())).toAlignedRect();
    QImage screen = camera.convertToFormat(QImage::Format_RGB32);
    {
        QPainter p(&screen);
        // Painted in two parts, as two repaints of the view would be.
        for (const QRect part : {QRect(imageOnScreen.topLeft(), QSize(17, 30)),
                                 QRect(imageOnScreen.topLeft() + QPoint(17, 0), QSize(23, 30))})
            p.drawImage(part.topLeft() - imageOnScreen.topLeft(), MaskEditLayer::tint(mask, maths, part));
    }
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const QRgb a = screen.pixel(x, y), b = composed.pixel(x, y);
            ASSERT_LE(std::abs(qRed(a) - qRed(b)), 1) << x << "," << y;
            ASSERT_LE(std::abs(qGreen(a) - qGreen(b)), 1) << x << "," << y;
            ASSERT_LE(std::abs(qBlue(a) - qBlue(b)), 1) << x << "," << y;
        }
    // A null mask or an empty area tints nothing.
    EXPECT_TRUE(MaskEditLayer::tint(QImage(), maths, QRect(0, 0, 4, 4)).isNull());
    EXPECT_TRUE(MaskEditLayer::tint(mask, maths, QRect()).isNull());
}
