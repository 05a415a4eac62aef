// Painting of the visible part of a bitmap, checked pixel by pixel against the viewport model.

#include "imagedisplay/RasterRenderer.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

using nxr::RasterRenderer;

namespace {

const QColor kBackground(10, 20, 30);

QImage pattern(QImage::Format format, int w, int h)
{
    QImage img(w, h, format);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int v = (x * 37 + y * 91) % 256;
            if (format == QImage::Format_Grayscale8)
                img.scanLine(y)[x] = uchar(v);
            else
                img.setPixel(x, y, qRgb(v, (x * 13) % 256, (y * 29) % 256));
        }
    return img;
}

QImage render(RasterRenderer& r, QSize view, float zoom, QPoint origin)
{
    QImage target(view, QImage::Format_RGB32);
    target.fill(Qt::magenta); // anything left unpainted shows up
    QPainter p(&target);
    r.paint(p, QRect(QPoint(0, 0), view), zoom, origin);
    p.end();
    return target;
}

using Param = std::tuple<QImage::Format, float, QPoint>;

class NearestAtAndAbove100 : public ::testing::TestWithParam<Param>
{
};

TEST_P(NearestAtAndAbove100, EveryScreenPixelShowsTheImagePixelUnderItsCentre)
{
    const auto [format, zoom, origin] = GetParam();
    const QImage src = pattern(format, 37, 23);
    RasterRenderer r;
    r.setBackground(kBackground);
    r.setImage(src);
    const QSize view(120, 90);
    const QImage out = render(r, view, zoom, origin);
    const double s = double(zoom) / 100.0;
    const int scaledW = int(std::ceil(37 * s - 1e-6));
    const int scaledH = int(std::ceil(23 * s - 1e-6));
    for (int Y = 0; Y < view.height(); ++Y)
        for (int X = 0; X < view.width(); ++X) {
            const bool inside =
                X >= origin.x() && X < origin.x() + scaledW && Y >= origin.y() && Y < origin.y() + scaledH;
            QRgb expected = kBackground.rgb();
            if (inside) {
                const int x = std::min(36, int(std::floor((X + 0.5 - origin.x()) / s)));
                const int y = std::min(22, int(std::floor((Y + 0.5 - origin.y()) / s)));
                expected = src.pixel(x, y);
            }
            ASSERT_EQ(out.pixel(X, Y), expected) << "at " << X << "," << Y;
        }
}

INSTANTIATE_TEST_SUITE_P(Grid, NearestAtAndAbove100,
                         ::testing::Combine(::testing::Values(QImage::Format_Grayscale8, QImage::Format_RGB32,
                                                              QImage::Format_RGB888),
                                            ::testing::Values(100.0f, 150.0f, 400.0f, 1600.0f),
                                            ::testing::Values(QPoint(0, 0), QPoint(7, 3), QPoint(-30, -41))));

TEST(RendererReduction, HalfZoomShowsTheMeanOfEachTwoByTwoBlockPerChannel)
{
    QImage src(4, 2, QImage::Format_Grayscale8);
    const uchar rows[2][4] = {{0, 100, 200, 255}, {50, 150, 201, 255}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            src.scanLine(y)[x] = rows[y][x];
    RasterRenderer r;
    r.setImage(src);
    const QImage out = render(r, QSize(2, 1), 50.0f, QPoint(0, 0));
    EXPECT_EQ(qGray(out.pixel(0, 0)), 75);  // (0 + 100 + 50 + 150) / 4
    EXPECT_EQ(qGray(out.pixel(1, 0)), 228); // (200 + 255 + 201 + 255 + 2) / 4
    EXPECT_EQ(RasterRenderer::levelForZoom(100.0f), 0);
    EXPECT_EQ(RasterRenderer::levelForZoom(50.0f), 1);
    EXPECT_EQ(RasterRenderer::levelForZoom(float(100.0 / 3.0)), 1);
    EXPECT_EQ(RasterRenderer::levelForZoom(25.0f), 2);
    EXPECT_EQ(RasterRenderer::levelForZoom(6.25f), 4);
    EXPECT_EQ(RasterRenderer::levelForZoom(400.0f), 0);

    // Colour channels are averaged separately; an odd width repeats the edge column.
    QImage colour(3, 2, QImage::Format_RGB32);
    const QRgb pixels[2][3] = {{qRgb(255, 0, 10), qRgb(255, 255, 20), qRgb(7, 8, 9)},
                               {qRgb(254, 1, 30), qRgb(0, 255, 41), qRgb(9, 8, 7)}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            colour.setPixel(x, y, pixels[y][x]);
    r.setImage(colour);
    const QImage& half = r.level(1);
    ASSERT_EQ(half.size(), QSize(2, 1));
    EXPECT_EQ(half.pixel(0, 0), qRgb(191, 128, 25)); // (764+2)/4, (511+2)/4, (101+2)/4
    EXPECT_EQ(half.pixel(1, 0), qRgb(8, 8, 8));
}

TEST(RendererReduction, SmallZoomsKeepTheImageExtentAndColours)
{
    const QImage src = pattern(QImage::Format_RGB32, 200, 120);
    RasterRenderer r;
    r.setBackground(kBackground);
    r.setImage(src);
    for (float zoom : {6.25f, float(100.0 / 3.0), 12.5f, 70.0f}) {
        const QPoint origin(5, 4);
        const QImage out = render(r, QSize(160, 100), zoom, origin);
        const int w = int(std::ceil(200 * zoom / 100.0 - 1e-6));
        const int h = int(std::ceil(120 * zoom / 100.0 - 1e-6));
        EXPECT_EQ(out.pixel(origin.x() - 1, origin.y()), kBackground.rgb()) << zoom;
        EXPECT_EQ(out.pixel(origin.x() + w, origin.y()), kBackground.rgb()) << zoom;
        EXPECT_EQ(out.pixel(origin.x(), origin.y() + h), kBackground.rgb()) << zoom;
        EXPECT_NE(out.pixel(origin.x() + w - 1, origin.y() + h - 1), kBackground.rgb()) << zoom;
        EXPECT_NE(out.pixel(origin.x() + w - 1, origin.y() + h - 1), QColor(Qt::magenta).rgb()) << zoom;
    }
}

TEST(RendererReduction, LevelsMadeAheadAreUsedWhenTheyFitTheBitmapAndPaintAsBuiltOnes)
{
    struct Case
    {
        QImage::Format format;
        QSize image, madeFrom; // the levels are made from an image of `madeFrom`
        int count;
        bool used;
    };
    const Case cases[] = {
        {QImage::Format_RGB32, {201, 121}, {201, 121}, 3, true},
        {QImage::Format_Grayscale8, {200, 120}, {200, 120}, 2, true},
        {QImage::Format_RGB32, {201, 121}, {100, 60}, 2, false}, // another image's size
        {QImage::Format_RGB32, {2, 1}, {2, 1}, 4, true},         // stops at one pixel
    };
    for (const Case& c : cases) {
        const QImage src = pattern(c.format, c.image.width(), c.image.height());
        std::vector<QImage> ahead =
            RasterRenderer::reductions(pattern(c.format, c.madeFrom.width(), c.madeFrom.height()), c.count);
        ASSERT_FALSE(ahead.empty());
        const uchar* firstLevel = ahead.front().constBits();
        RasterRenderer made, built;
        made.setBackground(kBackground);
        built.setBackground(kBackground);
        made.setImage(src, std::move(ahead));
        built.setImage(src);
        EXPECT_EQ(made.level(1).constBits() == firstLevel, c.used) << c.image.width();
        for (float zoom : {50.0f, 25.0f, 12.5f, 30.0f})
            EXPECT_EQ(render(made, QSize(120, 80), zoom, QPoint(3, 2)),
                      render(built, QSize(120, 80), zoom, QPoint(3, 2)))
                << c.image.width() << " at " << zoom;
    }
    // A bitmap drawn through a conversion gets none: its levels depend on the background.
    EXPECT_TRUE(RasterRenderer::reductions(pattern(QImage::Format_ARGB32, 40, 40), 2).empty());
}

TEST(RendererBuffer, AChangedBitmapIsPaintedAfresh)
{
    QImage src = pattern(QImage::Format_RGB32, 20, 20);
    RasterRenderer r;
    r.setImage(src);
    QImage first = render(r, QSize(40, 40), 200.0f, QPoint(0, 0));
    src.fill(qRgb(1, 2, 3));
    r.setImage(src);
    QImage second = render(r, QSize(40, 40), 200.0f, QPoint(0, 0));
    EXPECT_NE(first.pixel(5, 5), second.pixel(5, 5));
    EXPECT_EQ(second.pixel(5, 5), qRgb(1, 2, 3));
}

} // namespace

namespace {

// A part of the bitmap changed in place shows as if the whole bitmap had been given afresh, at
// 100 % and through the reductions, for each format the views hold.
TEST(RendererRegion, APartChangedInPlaceMatchesAFreshRenderer)
{
    for (QImage::Format format : {QImage::Format_Grayscale8, QImage::Format_RGB32, QImage::Format_ARGB32}) {
        RasterRenderer edited;
        edited.setBackground(kBackground);
        edited.setImage(pattern(format, 101, 67));
        const std::vector<float> zooms = {100.0f, 50.0f, 25.0f, 12.5f, 300.0f};
        for (float zoom : zooms) // every reduction exists before the change
            render(edited, QSize(120, 90), zoom, QPoint(3, 2));

        const QRect changed(37, 21, 13, 9);
        QImage& bitmap = edited.editableImage();
        for (int y = changed.top(); y <= changed.bottom(); ++y)
            for (int x = changed.left(); x <= changed.right(); ++x) {
                if (format == QImage::Format_Grayscale8)
                    bitmap.scanLine(y)[x] = uchar(255 - x);
                else
                    bitmap.setPixel(x, y, qRgba(255 - x, y, 7, 128));
            }
        edited.imageChanged(changed);

        RasterRenderer fresh;
        fresh.setBackground(kBackground);
        fresh.setImage(bitmap.copy());
        for (float zoom : zooms)
            EXPECT_EQ(render(edited, QSize(120, 90), zoom, QPoint(3, 2)),
                      render(fresh, QSize(120, 90), zoom, QPoint(3, 2)))
                << "format " << int(format) << " zoom " << zoom;
    }
}

// A repaint of part of the view (a layer's dirty rectangle) shows the same pixels as the full
// repaint before it, whether the scaled buffer is reused or made for the part.
TEST(RendererRegion, PartOfTheViewPaintsLikeTheWholeView)
{
    for (QImage::Format format : {QImage::Format_Grayscale8, QImage::Format_RGB32})
        for (float zoom : {100.0f, 300.0f, 50.0f}) {
            RasterRenderer r;
            r.setBackground(kBackground);
            r.setImage(pattern(format, 90, 70));
            const QImage whole = render(r, QSize(100, 80), zoom, QPoint(-7, 5));
            for (bool freshBuffer : {false, true}) {
                if (freshBuffer)
                    r.discardBuffer();
                QImage part(QSize(100, 80), QImage::Format_RGB32);
                part.fill(Qt::magenta);
                QPainter p(&part);
                const QRect dirty(33, 21, 16, 16);
                r.paint(p, dirty, zoom, QPoint(-7, 5));
                p.end();
                EXPECT_EQ(part.copy(dirty), whole.copy(dirty))
                    << int(format) << " " << zoom << " " << freshBuffer;
                EXPECT_EQ(part.pixel(10, 10), QColor(Qt::magenta).rgb());
            }
        }
}

} // namespace

namespace {

// A grey bitmap at 100 % shows the same pixels whether its visible part is converted on each
// repaint or, once it has been scrolled a few times, drawn from its colour copy; a change in
// place reaches the copy too. A renderer not allowed the copy never makes one and shows the same.
TEST(RendererGrey, ScrollingAGreyBitmapShowsItsGreyValuesBeforeAndAfterItsColourCopy)
{
    for (const bool copyAllowed : {true, false}) {
        SCOPED_TRACE(copyAllowed ? "copy allowed" : "no copy");
        RasterRenderer grey;
        grey.setPaintReadyCopy(copyAllowed);
        grey.setBackground(kBackground);
        grey.setImage(pattern(QImage::Format_Grayscale8, 80, 60));
        RasterRenderer colour;
        colour.setBackground(kBackground);
        colour.setImage(pattern(QImage::Format_Grayscale8, 80, 60).convertToFormat(QImage::Format_RGB32));
        for (int step = 0; step < RasterRenderer::kConversionsBeforeCopy + 3; ++step) {
            const QPoint origin(-step, 2 - step);
            EXPECT_EQ(render(grey, QSize(70, 50), 100.0f, origin),
                      render(colour, QSize(70, 50), 100.0f, origin))
                << step;
        }
        EXPECT_EQ(grey.hasPaintReadyCopy(), copyAllowed);
        const QRect changed(10, 5, 7, 3);
        QImage& bitmap = grey.editableImage();
        QImage expected = colour.image().copy();
        for (int y = changed.top(); y <= changed.bottom(); ++y)
            for (int x = changed.left(); x <= changed.right(); ++x) {
                bitmap.scanLine(y)[x] = uchar(3 * x);
                expected.setPixel(x, y, qRgb(3 * x, 3 * x, 3 * x));
            }
        grey.imageChanged(changed);
        colour.setImage(expected);
        EXPECT_EQ(render(grey, QSize(70, 50), 100.0f, QPoint(0, 0)),
                  render(colour, QSize(70, 50), 100.0f, QPoint(0, 0)));
    }
}

} // namespace
