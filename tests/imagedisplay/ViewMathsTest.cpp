// The zoom, scroll and coordinate model of the image display, without a screen.

#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/DisplayLayout.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRStatusBar.h"
#include "imagedisplay/ToolbarClickHandler.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <tuple>

using nxr::ViewMaths;

namespace {

ViewMaths makeView(QSize image, QSize area, float zoom)
{
    ViewMaths v;
    v.setUsableArea(area);
    v.setImageSize(image);
    v.setZoom(zoom);
    return v;
}

// ---- integer zoom ----

TEST(ViewMathsZoom, IntegerZoomSnapsToWholePixelZooms)
{
    const std::tuple<double, bool, float> table[] = {
        {0, true, 100.0f},
        {-5, true, 100.0f},
        {std::nan(""), true, 100.0f},
        {45, true, 50.0f},
        {30, true, float(100.0 / 3.0)},
        {250, true, 300.0f},
        {249, true, 200.0f},
        {100, true, 100.0f},
        // zoom in from 100 and from 33.33 (single precision): 200 and 50, not 66.67 or 100
        {double(100.0f) * 2.0, true, 200.0f},
        {double(float(100.0 / 3.0)) * 2.0, true, 50.0f},
        // zoom out from 50 and from 300
        {double(50.0f) / 2.0, true, 25.0f},
        {150, true, 200.0f},
        // not nearest: never above the wanted zoom (but for the small slack)
        {30.86, false, 25.0f},
        {34, false, float(100.0 / 3.0)},
        {190, false, 100.0f},
        {390, false, 300.0f}};
    for (const auto& [wanted, nearest, expected] : table)
        EXPECT_EQ(ViewMaths::integerZoom(wanted, nearest), expected) << "wanted " << wanted << " " << nearest;
}

TEST(ViewMathsZoom, SafeZoomClampsButDirectZoomDoesNot)
{
    ViewMaths v = makeView(QSize(640, 480), QSize(400, 300), 100);
    EXPECT_EQ(v.setSafeZoom(0.5), 1.0f);
    EXPECT_EQ(v.setSafeZoom(-3), 1.0f);
    // One image pixel never grows taller than the visible area.
    const float largest = v.setSafeZoom(1e9);
    EXPECT_EQ(largest, 100.0f * float(v.visibleSize().height()));
    EXPECT_EQ(v.setSafeZoom(250), 250.0f);
    v.setZoom(0.5f);
    EXPECT_EQ(v.zoom(), 0.5f);
    v.setZoom(0.0f); // refused: a zero zoom has no view
    EXPECT_EQ(v.zoom(), 0.5f);
}

// ---- fit ----

TEST(ViewMathsFit, WholeImageFitsWithoutScrollBarsAndIsCentred)
{
    for (auto [image, area, expected] : {std::tuple{QSize(2000, 500), QSize(400, 300), 20.0f},
                                         {QSize(500, 2000), QSize(400, 300), float(100.0 / 7.0)},
                                         {QSize(2592, 1944), QSize(800, 600), 25.0f},
                                         {QSize(100, 50), QSize(800, 600), 800.0f},
                                         {QSize(640, 480), QSize(640, 480), 100.0f}}) {
        SCOPED_TRACE(std::to_string(image.width()) + "x" + std::to_string(image.height()));
        ViewMaths v = makeView(image, area, 100);
        const float zoom =
            ViewMaths::fitZoom(area.height(), area.width(), image.height(), image.width(), false);
        EXPECT_FLOAT_EQ(zoom, expected);
        v.focusedZoom(zoom, image.width() / 2.0, image.height() / 2.0);
        EXPECT_FALSE(v.horizontalBarNeeded());
        EXPECT_FALSE(v.verticalBarNeeded());
        const QRectF dest = v.destinationRect();
        EXPECT_GE(dest.left(), 0);
        EXPECT_GE(dest.top(), 0);
        EXPECT_LE(dest.right(), area.width() + 1e-6);
        EXPECT_LE(dest.bottom(), area.height() + 1e-6);
        // centred within a pixel
        EXPECT_LE(std::abs(dest.left() - (area.width() - dest.right())), 1.0 + 1e-6);
        EXPECT_LE(std::abs(dest.top() - (area.height() - dest.bottom())), 1.0 + 1e-6);
    }
}

TEST(ViewMathsFit, OptimalZoomOfNothingIs100AndEmptyViewAssumes512x480)
{
    EXPECT_EQ(ViewMaths::fitZoom(300, 400, 0, 100, true), 100.0f);
    EXPECT_EQ(ViewMaths::fitZoom(300, 400, 100, -1, true), 100.0f);
    ViewMaths v;
    EXPECT_EQ(v.effectiveImageSize(), QSize(512, 480));
    v.setImageSize(QSize(10, 20));
    EXPECT_EQ(v.effectiveImageSize(), QSize(10, 20));
}

// ---- round trips ----

using RoundTripParam = std::tuple<float, double>; // zoom, scroll fraction

class RoundTrip : public ::testing::TestWithParam<RoundTripParam>
{
};

TEST_P(RoundTrip, ScreenImageScreenAndBack)
{
    const auto [zoom, fraction] = GetParam();
    ViewMaths v = makeView(QSize(2592, 1944), QSize(783, 517), zoom);
    const QPoint max = v.scrollMaximum();
    v.setScrollPosition(QPoint(int(max.x() * fraction), int(max.y() * fraction)));
    for (const QPointF screen :
         {QPointF(0, 0), QPointF(17.5, 300.25), QPointF(782, 516), QPointF(-40, 1000)}) {
        const QPointF back = v.toScreen(v.toImage(screen));
        EXPECT_NEAR(back.x(), screen.x(), 1e-9);
        EXPECT_NEAR(back.y(), screen.y(), 1e-9);
    }
    for (const QPointF image : {QPointF(0, 0), QPointF(1295.5, 971.25), QPointF(2592, 1944)}) {
        const QPointF back = v.toImage(v.toScreen(image));
        EXPECT_NEAR(back.x(), image.x(), 1e-9);
        EXPECT_NEAR(back.y(), image.y(), 1e-9);
    }
    // The origin is image point (0, 0); the destination rectangle is the scaled image.
    EXPECT_NEAR(v.toImage(QPointF(v.origin())).x(), 0.0, 1e-12);
    EXPECT_NEAR(v.destinationRect().width(), 2592 * double(zoom) / 100.0, 1e-9);
    const QRectF r(QPointF(10, 20), QPointF(300.5, 400));
    const QRectF rb = v.toScreen(v.toImage(r));
    EXPECT_NEAR(rb.left(), r.left(), 1e-9);
    EXPECT_NEAR(rb.bottom(), r.bottom(), 1e-9);
    // Scroll position and origin agree: left = -scroll when the image is larger than the view.
    if (v.scrollMaximum().x() > 0) {
        EXPECT_EQ(v.origin().x(), -v.scrollPosition().x());
    }
}

INSTANTIATE_TEST_SUITE_P(Grid, RoundTrip,
                         ::testing::Combine(::testing::Values(1.0f, 6.25f, 12.5f, float(100.0 / 3.0), 50.0f,
                                                              100.0f, 150.0f, 200.0f, 400.0f, 1600.0f),
                                            ::testing::Values(0.0, 0.37, 0.5, 1.0)));

// ---- scroll bars and limits ----

TEST(ViewMathsScroll, BarsTakeSeventeenPixelsFromTheOtherDirection)
{
    // Wider only: a horizontal bar, and the height less 17 still holds the image.
    ViewMaths v = makeView(QSize(1000, 200), QSize(400, 300), 100);
    EXPECT_TRUE(v.horizontalBarNeeded());
    EXPECT_FALSE(v.verticalBarNeeded());
    EXPECT_EQ(v.visibleSize(), QSize(400, 283));
    EXPECT_EQ(v.scrollMaximum(), QPoint(600, 0));
    // 290 rows no longer fit once the horizontal bar takes 17: both bars.
    v.setImageSize(QSize(1000, 290));
    EXPECT_TRUE(v.verticalBarNeeded());
    EXPECT_EQ(v.visibleSize(), QSize(383, 283));
    EXPECT_EQ(v.scrollMaximum(), QPoint(617, 7));
    // Same the other way round.
    v.setImageSize(QSize(390, 1000));
    EXPECT_TRUE(v.verticalBarNeeded());
    EXPECT_TRUE(v.horizontalBarNeeded());
    v.setImageSize(QSize(383, 1000));
    EXPECT_FALSE(v.horizontalBarNeeded());
}

TEST(ViewMathsScroll, PositionsAreClampedToTheLimits)
{
    ViewMaths v = makeView(QSize(2592, 1944), QSize(800, 600), 100);
    const QPoint max = v.scrollMaximum();
    EXPECT_EQ(max, QPoint(2592 - 783, 1944 - 583));
    v.setScrollX(-50);
    EXPECT_EQ(v.scrollPosition().x(), 0);
    v.setScrollY(max.y() + 1000);
    EXPECT_EQ(v.scrollPosition().y(), max.y());
    v.setScrollPosition(QPoint(100, 200));
    EXPECT_EQ(v.origin(), QPoint(-100, -200));
    v.panBy(QPoint(30, -20)); // the image follows the mouse
    EXPECT_EQ(v.scrollPosition(), QPoint(70, 220));
    // Zooming out keeps the position inside the new, smaller limits.
    v.setScrollPosition(max);
    v.setZoom(50);
    EXPECT_EQ(v.scrollPosition(), v.scrollMaximum());
    // An image smaller than the view has nothing to scroll and stays centred.
    v.setZoom(12.5f);
    v.setScrollPosition(QPoint(100, 100));
    EXPECT_EQ(v.scrollPosition(), QPoint(0, 0));
    EXPECT_EQ(v.origin(), QPoint((800 - 324) / 2, (600 - 243) / 2));
}

TEST(ViewMathsScroll, FocusedZoomCentresThePointButShowsNoEmptyMargin)
{
    ViewMaths v = makeView(QSize(2592, 1944), QSize(800, 600), 100);
    v.focusedZoom(200, 1000, 700);
    const QSize vis = v.visibleSize();
    const QPointF centre = v.toScreen(QPointF(1000, 700));
    EXPECT_NEAR(centre.x(), vis.width() / 2.0, 0.5);
    EXPECT_NEAR(centre.y(), vis.height() / 2.0, 0.5);
    // Near a corner the view stops at the image edge.
    v.focusedZoom(400, 5, 5);
    EXPECT_EQ(v.origin(), QPoint(0, 0));
    v.focusedZoom(400, 2590, 1940);
    EXPECT_EQ(v.scrollPosition(), v.scrollMaximum());
}

using AnchorParam = std::tuple<QSize, int>; // image size, wheel steps

class Anchor : public ::testing::TestWithParam<AnchorParam>
{
};

TEST_P(Anchor, WheelZoomKeepsThePointUnderTheCursor)
{
    const auto [image, steps] = GetParam();
    ViewMaths v = makeView(image, QSize(800, 600), 100);
    v.setScrollPosition(v.scrollMaximum() / 2);
    const QPointF cursor(411.0, 263.0);
    const QPointF before = v.toImage(cursor);
    const float wanted = ViewMaths::wheelZoom(v.zoom(), steps);
    const float set = v.anchoredZoom(wanted, cursor);
    EXPECT_EQ(set, wanted);
    const QPointF after = v.toScreen(before);
    // The origin is whole pixels: within half a device pixel.
    EXPECT_NEAR(after.x(), cursor.x(), 0.5);
    EXPECT_NEAR(after.y(), cursor.y(), 0.5);
}

INSTANTIATE_TEST_SUITE_P(Grid, Anchor,
                         ::testing::Combine(::testing::Values(QSize(2592, 1944), QSize(8000, 1800),
                                                              QSize(1800, 8000)),
                                            ::testing::Values(1, 2, 3, -1)));

TEST(ViewMathsWheel, StepsClimbTheIntegerZoomLadder)
{
    for (auto [from, steps, to] : {std::tuple{100.0f, 1, 200.0f},
                                   {100.0f, -1, 50.0f},
                                   {200.0f, -1, 100.0f},
                                   {50.0f, 1, 100.0f},
                                   {float(100.0 / 3.0), 1, 50.0f},
                                   {25.0f, 1, float(100.0 / 3.0)},
                                   {100.0f, 2, 300.0f}})
        EXPECT_EQ(ViewMaths::wheelZoom(from, steps), to) << from << " " << steps;
    // Every rung is an integer zoom and the walk is strictly monotonic both ways.
    float z = 1.0f;
    for (int i = 0; i < 40; ++i) {
        const float next = ViewMaths::wheelZoom(z, 1);
        ASSERT_GT(next, z);
        EXPECT_EQ(ViewMaths::integerZoom(next, true), next);
        EXPECT_EQ(ViewMaths::wheelZoom(next, -1), z) << "down from " << next;
        z = next;
    }
}

// ---- layout ----

TEST(DisplayLayoutTest, PartsStackInsideTheMarginAndRespectTheMinimum)
{
    nxr::DisplayLayout::Input in;
    in.size = QSize(640, 480);
    in.margin = 1;
    in.labelHeight = 18;
    in.toolbarHeight = 26;
    in.statusHeight = 20;
    in.okCancelHeight = 30;
    EXPECT_EQ(nxr::DisplayLayout::minimumSize(in), QSize(2 + 293, 18 + 26 + 1));

    nxr::DisplayLayout l = nxr::DisplayLayout::compute(in);
    EXPECT_EQ(l.label.top(), 1);
    EXPECT_EQ(l.toolbar.top(), l.label.bottom() + 1);
    EXPECT_GT(l.imageFrame.top(), l.toolbar.bottom());
    EXPECT_LT(l.imageFrame.bottom(), l.status.top());
    EXPECT_EQ(l.status.bottom(), 480 - 1 - 1);
    EXPECT_TRUE(l.okCancel.isEmpty());
    const int imageHeight = l.imageFrame.height();

    in.okCancelVisible = true;
    l = nxr::DisplayLayout::compute(in);
    EXPECT_LT(l.imageFrame.bottom(), l.okCancel.top());
    EXPECT_LT(l.okCancel.bottom(), l.status.top());
    EXPECT_EQ(l.imageFrame.height(), imageHeight - 30 - in.gap);

    in.size = QSize(100, 20); // laid out at the minimum
    l = nxr::DisplayLayout::compute(in);
    EXPECT_EQ(l.toolbar.width(), 293);
}

// ---- names, passing rules, status text ----

TEST(ToolbarPassing, NameThePageHears)
{
    // button, was live, live now, editing a mask or window: the name, "" for none
    const std::tuple<int, bool, bool, bool, const char*> table[] = {
        {vvb_ContinuousAcquire, false, false, false, "LiveMode"},
        {vvb_ContinuousAcquire, false, true, false, "Snap"},
        {vvb_Acquire, false, false, false, "Snap"},
        {vvb_Acquire, true, false, false, ""}, // the snap that ended live mode
        {vvb_Acquire, true, true, false, "Snap"},
        {vvb_Open, false, false, false, ""},
        {vvb_Save, false, false, false, "Save"},
        {vvb_MouseModePan, false, false, false, ""},
        {vvb_MouseModeZoomOut, false, false, false, ""},
        {vvb_FitImage, false, false, false, "ZoomFitImage"},
        {vvb_DefaultZoom, false, false, false, "ZoomDefault"},
        {vvb_FitImage, false, false, true, ""},
        {vvb_FitImage, true, true, false, ""},
        {vvb_LaserOn, false, false, true, "LaserOn"},
        {vvb_LaserOff, true, true, false, "LaserOff"},
        {vvb_Save, false, false, true, ""},
        {vvb_PixelGrid, false, false, false, "Unknown"},
        {42, false, false, true, ""}};
    for (const auto& [button, wasLive, liveNow, editing, expected] : table)
        EXPECT_EQ(nxr::ToolbarClickHandler::nameToPass(button, wasLive, liveNow, editing),
                  QString::fromLatin1(expected))
            << button << " " << wasLive << liveNow << editing;
}

TEST(StatusBarText, ZoomFormat)
{
    for (auto [zoom, text] : {std::pair{100.0f, "100%"},
                              {33.333332f, "33.33%"},
                              {12.5f, "12.5%"},
                              {float(100.0 / 7.0), "14.29%"},
                              {6.25f, "6.25%"},
                              {0.5f, "0.5%"},
                              {1600.0f, "1600%"}})
        EXPECT_EQ(NXRStatusBar::zoomText(zoom), text) << zoom;
}

} // namespace

// ---- extreme inputs ----

// Any zoom a page can set, on any image the display can hold: the view stays consistent (a
// larger image than the view has scroll bars, positions stay in their range) and nothing
// overflows.
TEST(ViewMathsLimits, ExtremeZoomsAndSizesKeepTheViewConsistent)
{
    const float zooms[] = {1e-6f, 0.01f, 1e4f, 1e6f, 1e7f, 1e12f, 1e30f, std::numeric_limits<float>::max()};
    const QSize images[] = {QSize(1, 1), QSize(640, 480), QSize(60000, 3), QSize(1 << 28, 1)};
    for (const float zoom : zooms) {
        for (const QSize image : images) {
            SCOPED_TRACE(testing::Message()
                         << "zoom " << zoom << " image " << image.width() << "x" << image.height());
            ViewMaths v = makeView(QSize(640, 480), QSize(400, 300), 100);
            v.setZoom(zoom);
            v.setImageSize(image); // the next load keeps the zoom
            EXPECT_LE(v.zoom(), ViewMaths::kZoomLimit);
            const QSizeF scaled = v.scaledSize();
            const bool wider = scaled.width() > 400.0;
            EXPECT_EQ(v.horizontalBarNeeded(), wider);
            const QPoint max = v.scrollMaximum();
            EXPECT_GE(max.x(), 0);
            EXPECT_GE(max.y(), 0);
            EXPECT_LE(max.x(), ViewMaths::kPixelLimit);
            if (wider) {
                EXPECT_GT(max.x(), 0);
            }
            for (const QPoint wanted : {QPoint(-5, -5), QPoint(INT_MAX, INT_MAX), QPoint(INT_MIN, INT_MIN)}) {
                v.setScrollPosition(wanted);
                const QPoint at = v.scrollPosition();
                EXPECT_TRUE(at.x() >= 0 && at.x() <= max.x()) << at.x();
                EXPECT_TRUE(at.y() >= 0 && at.y() <= max.y()) << at.y();
            }
            v.panBy(QPoint(INT_MAX, INT_MIN));
            v.centreOn(image.width() / 2.0, image.height() / 2.0);
            // Centred on the middle of the image: half way along the range (while the range is not
            // cut at the pixel limit).
            if (wider && scaled.width() < ViewMaths::kPixelLimit) {
                EXPECT_NEAR(v.scrollPosition().x(), max.x() / 2.0, 2.0 + max.x() * 1e-6);
            }
            v.anchoredZoom(1e30, QPointF(200, 150));
            EXPECT_LE(v.zoom(), ViewMaths::kZoomLimit);
        }
    }
}
