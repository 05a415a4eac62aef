// Overlay items painted into an image through the painter, checked by sampling pixels at the
// places a screen pixel should land: device = origin + image * zoom / 100, lengths fixed in
// screen pixels times the device pixel ratio.

#include "graphics/OverlayPainter.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <tuple>

using namespace nxr;

namespace {

const QRgb kBackground = qRgb(128, 128, 128);
constexpr qint32 kRed = 0x0000FF; // 0x00BBGGRR
const QRgb kRedRgb = qRgb(255, 0, 0);

struct View
{
    double zoom;
    QPointF origin;
    double ratio = 1.0;
};

// Paints like the display's raster view: a device-pixel painter on a surface of that ratio.
QImage paintView(const View& v, const std::function<void(OverlayPainter&)>& draw,
                 QSize size = QSize(400, 300), QRectF visible = QRectF())
{
    QImage img(size, QImage::Format_RGB32);
    img.fill(kBackground);
    img.setDevicePixelRatio(v.ratio);
    QPainter p(&img);
    p.scale(1.0 / v.ratio, 1.0 / v.ratio);
    ScreenMapping m{v.zoom / 100.0, v.origin, v.ratio, visible};
    OverlayPainter op(p, m, QRect(QPoint(0, 0), size));
    draw(op);
    return img;
}

QPointF dev(const View& v, double x, double y)
{
    return {v.origin.x() + x * v.zoom / 100.0, v.origin.y() + y * v.zoom / 100.0};
}

// Whether a pixel of `color` lies within `r` device pixels of (x, y).
bool near(const QImage& img, double x, double y, QRgb color, int r = 1)
{
    const int cx = int(std::floor(x)), cy = int(std::floor(y));
    for (int yy = cy - r; yy <= cy + r; ++yy)
        for (int xx = cx - r; xx <= cx + r; ++xx)
            if (img.valid(xx, yy) && img.pixel(xx, yy) == color)
                return true;
    return false;
}

// Whether red lies within `r` device pixels of where the view puts image point (x, y).
bool redAt(const QImage& img, const View& v, double x, double y, int r = 1)
{
    return near(img, v.origin.x() + x * v.zoom / 100.0, v.origin.y() + y * v.zoom / 100.0, kRedRgb, r);
}

int countNot(const QImage& img, QRgb background)
{
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            n += img.pixel(x, y) != background;
    return n;
}

// Image point (50, 40) near the middle of a 400 x 300 view, scrolled a little each time.
View centred(double zoom, QPointF shift, double ratio = 1.0)
{
    return {zoom, QPointF(200, 150) - QPointF(50, 40) * (zoom / 100.0) + shift, ratio};
}

const View kViews[] = {
    centred(100, {-50, -40}), centred(200, {-7, 5}),     centred(50, {13, -9}),
    centred(400, {3, -2}),    centred(100, {0, 0}, 1.5), centred(250, {-11, 6}, 1.5),
};

TEST(OverlayPainter, LinesBoxCrossAndCircleLandWhereTheViewPutsThemAtEveryZoomAndScroll)
{
    for (const View& v : kViews) {
        SCOPED_TRACE(testing::Message() << "zoom " << v.zoom << " ratio " << v.ratio);
        QImage img = paintView(v, [](OverlayPainter& p) {
            p.drawLine(kRed, 10, 40, 90, 40, 0); // horizontal
            p.drawLine(kRed, 60, 10, 60, 30, 0); // vertical
        });
        EXPECT_TRUE(redAt(img, v, 50, 40) && redAt(img, v, 60, 20));
        EXPECT_FALSE(near(img, dev(v, 50, 40).x(), dev(v, 50, 40).y() + 4, kRedRgb));
        EXPECT_FALSE(near(img, dev(v, 50, 40).x(), dev(v, 50, 40).y() - 4, kRedRgb));
        EXPECT_FALSE(near(img, dev(v, 95, 40).x() + 3, dev(v, 95, 40).y(), kRedRgb));
        // One screen pixel thick at any zoom.
        int rows = 0;
        for (int y = 0; y < img.height(); ++y)
            rows += img.pixel(int(dev(v, 50, 40).x()), y) == kRedRgb;
        EXPECT_GE(rows, 1);
        EXPECT_LE(rows, int(std::ceil(v.ratio)));

        // A 20 x 40 box at (30, 20) turned by 90 degrees about its centre (40, 40): 40 wide, 20 high.
        img = paintView(v, [](OverlayPainter& p) { p.drawRectangle(kRed, false, 30, 20, 20, 40, 90); });
        EXPECT_TRUE(redAt(img, v, 40, 30) && redAt(img, v, 20, 40));
        EXPECT_FALSE(redAt(img, v, 40, 20));
        // Crosses from the collection are 11 in size: half-length 22 image pixels.
        clsOverlayCollection items;
        items.AddCross(50, 40, 0, kRed);
        img = paintView(v, [&](OverlayPainter& p) { p.paint(items); });
        EXPECT_TRUE(redAt(img, v, 70, 40) && redAt(img, v, 50, 20));
        EXPECT_FALSE(redAt(img, v, 75, 40));
        // Radius 20 image pixels.
        img = paintView(v, [](OverlayPainter& p) { p.drawCircle(kRed, 50, 40, 20); });
        EXPECT_TRUE(redAt(img, v, 70, 40) && redAt(img, v, 50, 60));
        EXPECT_FALSE(redAt(img, v, 50, 40, 2) || redAt(img, v, 62, 40));
    }
}

TEST(OverlayPainter, TurnedCrossAndTheUnscaledMarker)
{
    const View v{400, {-100, -100}};
    // 45 degrees: strokes run along the diagonals, well inside the half-length 2 * 11 * 4 = 88.
    QImage img = paintView(v, [](OverlayPainter& p) { p.drawCross(kRed, false, 50, 50, 45, 11); });
    EXPECT_TRUE(redAt(img, v, 60, 40) && redAt(img, v, 40, 40));
    EXPECT_FALSE(redAt(img, v, 60, 50, 2));

    for (double ratio : {1.0, 1.5}) {
        const View m{400, {-100, -100}, ratio};
        img = paintView(m, [](OverlayPainter& p) { p.drawCross(kRed, true, 50.3, 50.3, 0, 11); });
        const double cx = std::round(dev(m, 50.3, 50.3).x()), cy = std::round(dev(m, 50.3, 50.3).y());
        // Half-length 11 screen pixels whatever the zoom, and a filled dot of 11.
        EXPECT_TRUE(near(img, cx + 10 * ratio, cy, kRedRgb)) << ratio;
        EXPECT_FALSE(near(img, cx + 13 * ratio, cy, kRedRgb, 1)) << ratio;
        EXPECT_EQ(img.pixel(int(cx + 3 * ratio), int(cy + 3 * ratio)), kRedRgb) << ratio;
        EXPECT_EQ(img.pixel(int(cx - 3 * ratio), int(cy - 3 * ratio)), kRedRgb) << ratio;
        EXPECT_NE(img.pixel(int(cx + 8 * ratio), int(cy + 8 * ratio)), kRedRgb) << ratio;
    }
}

TEST(OverlayPainter, ArrowHeadsAreFifteenScreenPixelsAtEitherEnd)
{
    const std::tuple<int, bool, bool> cases[] = {// style, head at the first end, at the second
                                                 {0, false, false},
                                                 {4, true, false},
                                                 {8, false, true},
                                                 {12, true, true}};
    for (double ratio : {1.0, 1.5}) {
        for (const auto& [style, atFirst, atSecond] : cases) {
            SCOPED_TRACE(testing::Message() << "style " << style << " ratio " << ratio);
            const View v{200, {-10, -10}, ratio};
            const QImage img =
                paintView(v, [&](OverlayPainter& p) { p.drawLine(kRed, 10, 50, 100, 50, style); });
            const QPointF a = dev(v, 10, 50), b = dev(v, 100, 50);
            const double len = 15 * ratio, half = 7.5 * ratio;
            // Barb ends: tip + back +/- p/2 with back 15 screen pixels toward the other end.
            EXPECT_EQ(near(img, b.x() - len, b.y() + half, kRedRgb), atSecond);
            EXPECT_EQ(near(img, b.x() - len, b.y() - half, kRedRgb), atSecond);
            EXPECT_EQ(near(img, a.x() + len, a.y() + half, kRedRgb), atFirst);
            EXPECT_EQ(near(img, a.x() + len * 0.5, a.y() - half * 0.5, kRedRgb), atFirst);
            EXPECT_FALSE(near(img, b.x() - len * 1.6, b.y() + half * 1.6, kRedRgb, 1));
        }
    }
}

TEST(OverlayPainter, PenStylesFromTheLowStyleBitsAndLinePairs)
{
    std::vector<int> painted;
    for (int style : {0, 1, 2, 3}) {
        const QImage img =
            paintView({100, {0, 0}}, [&](OverlayPainter& p) { p.drawLine(kRed, 10, 30, 210, 30, style); });
        int n = 0;
        for (int x = 10; x < 210; ++x)
            n += img.pixel(x, 30) == kRedRgb;
        painted.push_back(n);
    }
    EXPECT_GE(painted[0], 199);
    for (int i = 1; i < 4; ++i) {
        EXPECT_LT(painted[std::size_t(i)], 180) << "style " << i;
        EXPECT_GT(painted[std::size_t(i)], 20) << "style " << i;
    }
    EXPECT_NE(painted[1], painted[2]);

    // A line pair shows both sides.
    clsOverlayCollection items;
    items.AddLinePair(20, 50, 180, 50, 30, kRed);
    const QImage img = paintView({100, {0, 0}}, [&](OverlayPainter& p) { p.paint(items); });
    EXPECT_TRUE(near(img, 100, 35, kRedRgb) && near(img, 100, 65, kRedRgb));
    EXPECT_FALSE(near(img, 100, 42, kRedRgb, 2));
}

// The bounding box of the pixels of `color`.
QRect inkOf(const QImage& img, QRgb color)
{
    QRect r;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            if (img.pixel(x, y) == color)
                r |= QRect(x, y, 1, 1);
    return r;
}

TEST(OverlayPainter, TextIsNinePointsWithAHaloOfTheContrastColour)
{
    const std::tuple<qint32, QRgb, QRgb> cases[] = {
        {0x0000FF, qRgb(255, 0, 0), qRgb(0, 0, 0)},       // light text, black halo
        {0x400000, qRgb(0, 0, 64), qRgb(255, 255, 255)}}; // dark text, white halo
    for (const auto& [color, textColor, haloColor] : cases) {
        const QImage img =
            paintView({100, {0, 0}}, [&](OverlayPainter& p) { p.drawText(color, 20, 30, "Edge 42"); });
        const QRect text = inkOf(img, textColor), halo = inkOf(img, haloColor);
        ASSERT_FALSE(text.isEmpty()) << std::hex << color;
        EXPECT_EQ(halo, text.adjusted(-1, -1, 1, 1)); // one pixel beyond the text on every side
        // The text starts 3 pixels right of its point (glyph bearings aside) and hangs below it.
        EXPECT_GE(text.left(), 23);
        EXPECT_LE(text.left(), 26);
        EXPECT_GE(text.top(), 30);
        EXPECT_LE(text.top(), 36);
    }
    // Nine points on the screen at any pixel ratio: a capital is 8 to 10 pixels high at 96 dpi.
    const auto capital = [](double ratio) {
        const auto draw = [](OverlayPainter& p) { p.drawText(kRed, 10, 20, "HHH"); };
        return inkOf(paintView({100, {0, 0}, ratio}, draw), kRedRgb).height();
    };
    EXPECT_GE(capital(1.0), 7);
    EXPECT_LE(capital(1.0), 11);
    EXPECT_NEAR(double(capital(1.5)) / capital(1.0), 1.5, 0.25);
}

TEST(OverlayPainter, TextNearTheRightEdgeStaysInside)
{
    const QRectF visible(0, 0, 200, 150);
    const auto result = [](const View& v, double x, const QRectF& area) {
        return paintView(
            v, [&](OverlayPainter& p) { p.drawText(kRed, x, 40, "Result 12345"); }, QSize(320, 150), area);
    };
    for (double ratio : {1.0, 1.5}) {
        const View v{100, {0, 0}, ratio};
        for (double x : {150.0, 185.0, 199.0}) {
            const QRect halo = inkOf(result(v, x, visible), qRgb(0, 0, 0));
            ASSERT_FALSE(halo.isEmpty()) << x;
            EXPECT_LT(halo.right(), 200) << "x " << x << " ratio " << ratio;
            EXPECT_GE(halo.left(), 0);
        }
        // Away from the edge the text is where it was put.
        EXPECT_LE(inkOf(result(v, 10, visible), kRedRgb).left(), int(16 * ratio));
    }
    // Text whose point lies right of the visible area stays out of view.
    EXPECT_GE(inkOf(result({100, {0, 0}}, 230, visible), kRedRgb).left(), 230);
    // Without a visible area the text runs on past 200: the rule above is what moved it.
    EXPECT_GT(inkOf(result({100, {0, 0}}, 185, QRectF()), kRedRgb).right(), 220);
}

TEST(OverlayPainter, ItemsOutsideTheDirtyAreaAreSkipped)
{
    clsOverlayCollection items;
    for (int i = 0; i < 200; ++i) {
        items.AddLine(1000 + i, 1000, 1100 + i, 1100, kRed);
        items.AddText(-500, i, "far", kRed);
        items.AddCircle(3000, 10, 5, kRed);
        items.AddArrowLine(-400, 10, -300, 10, kRed, 12);
        items.AddText(500, i, "right of the view", kRed);
    }
    items.AddLine(50, 10, 50, 60, kRed);     // vertical: a bounding box of no width, inside
    items.AddCross(120, -10, 0, kRed);       // centre above the area, strokes reach into it
    items.AddBox(230, 10, 40, 20, 45, kRed); // corner reaches in from the right
    QImage img(240, 180, QImage::Format_RGB32);
    img.fill(kBackground);
    const ScreenMapping m{1.0, {0, 0}, 1.0, QRectF(0, 0, 240, 180)};
    {
        QPainter p(&img);
        OverlayPainter op(p, m, QRect(0, 0, 240, 180));
        op.paint(items);
        EXPECT_EQ(op.culledCount(), 1000);
        EXPECT_EQ(op.drawnCount(), 3);
    }
    EXPECT_TRUE(near(img, 50, 30, kRedRgb));
    EXPECT_TRUE(near(img, 120, 5, kRedRgb));
    EXPECT_GT(countNot(img, kBackground), 50);

    // A dirty strip paints only what lies in it.
    QImage strip(240, 180, QImage::Format_RGB32);
    strip.fill(kBackground);
    QPainter sp(&strip);
    OverlayPainter sop(sp, m, QRect(0, 100, 240, 20));
    sop.paint(items);
    EXPECT_EQ(sop.drawnCount(), 0);
}

TEST(OverlayPainter, EditedWindowShowsItsHandles)
{
    RectangleHandles handles;
    handles.colors = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF, 0xFF00FF};
    handles.rotatable = true;
    for (double ratio : {1.0, 1.5}) {
        const View v{200, {0, 0}, ratio};
        const QImage img = paintView(
            v, [&](OverlayPainter& p) { p.drawRectangle(0x000000, true, 20, 20, 60, 40, 0, handles); });
        // 7 x 7 screen-pixel squares centred on the corners; the rotation handle mid right edge.
        const QRgb expected[] = {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 0)};
        const QPointF corners[] = {dev(v, 20, 20), dev(v, 80, 20), dev(v, 80, 60), dev(v, 20, 60)};
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(img.pixel((corners[i] + QPointF(-2.5, 2.5) * ratio).toPoint()), expected[i]) << i;
            EXPECT_NE(img.pixel((corners[i] + QPointF(5, 5) * ratio).toPoint()), expected[i]) << i;
        }
        EXPECT_EQ(img.pixel(dev(v, 80, 40).toPoint() + QPoint(2, 2)), qRgb(255, 0, 255));
    }
}

} // namespace
