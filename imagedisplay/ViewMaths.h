#pragma once
// The zoom, scroll and coordinate model of the image display, without any widget.
//
// All sizes and positions are in device pixels of the raster view: at zoom 100 one image pixel
// covers one device pixel. The view paints the image into a destination rectangle whose top
// left corner is origin() and whose size is the image size times zoom / 100; the part of the
// destination rectangle inside the visible area is what the operator sees.
//
// The usable area is the space for the raster view and its scroll bars. A scroll bar is shown
// for a direction in which the scaled image is larger than the visible area, and each shown bar
// takes its thickness from the other direction.

#include "frame/Export.h"

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QSizeF>

namespace nxr {

class NXR_EXPORT ViewMaths
{
public:
    static constexpr int kDefaultScrollBarExtent = 17;
    // The image size assumed by optimalZoom() while no bitmap is held.
    static constexpr int kAssumedImageWidth = 512;
    static constexpr int kAssumedImageHeight = 480;
    // The largest zoom held (10,000 screen pixels per image pixel); larger ones count as this.
    static constexpr float kZoomLimit = 1e6f;
    // Scaled sizes, positions and scroll ranges saturate at this many device pixels.
    static constexpr int kPixelLimit = 1 << 30;

    // Snaps a wanted zoom to one at which image pixels map to whole screen pixels: 100 / k at
    // or below 100, a multiple of 100 above it. nearest rounds to the closest such zoom,
    // otherwise the result does not exceed the wanted zoom (up to a small slack) so that an
    // area still fits. Zero, negative or non-numeric zooms give 100.
    static float integerZoom(double zoom, bool nearest);

    // The integer zoom at which an area of `area` device pixels shows `content` pixels of the
    // image. A zero content side gives 100 for that direction; the smaller direction wins.
    static float fitZoom(double areaHeight, double areaWidth, double contentHeight, double contentWidth,
                         bool nearest);

    // The zoom `steps` wheel rungs up (steps > 0) or down from `current`. The rungs are integer
    // zooms (100/k, multiples of 100); a zoom between rungs goes to the next rung that way.
    static float wheelZoom(float current, int steps);

    ViewMaths();

    void setImageSize(const QSize& size);
    QSize imageSize() const { return m_image; }
    // The image size the zoom maths uses: the bitmap's, or 512 x 480 while there is none.
    QSize effectiveImageSize() const;

    void setUsableArea(const QSize& area);
    QSize usableArea() const { return m_area; }
    void setScrollBarExtent(int extent);
    int scrollBarExtent() const { return m_barExtent; }

    float zoom() const { return m_zoom; }
    double scale() const { return double(m_zoom) / 100.0; }
    // Sets the zoom as given (only limited to kZoomLimit) and keeps the origin inside the scroll
    // limits.
    void setZoom(float zoom);
    // The zoom that setSafeZoom would set: at least 1, at most 100 times the visible height
    // (while an image is held; without one only kZoomLimit applies).
    float safeZoom(double zoom) const;
    float setSafeZoom(double zoom);
    float maximumZoom() const;

    QSizeF scaledSize() const;
    bool horizontalBarNeeded() const { return bars().horizontal; }
    bool verticalBarNeeded() const { return bars().vertical; }
    // The usable area less the shown scroll bars: the raster view's size.
    QSize visibleSize() const;

    QPoint origin() const { return m_origin; }
    QRectF destinationRect() const;
    // The part of the image that lies in the visible area, in image pixels.
    QRectF visibleSourceRect() const;

    // Scroll positions are the distance in device pixels from the image's left or top edge to
    // the visible area's, from 0 to scrollMaximum().
    QPoint scrollPosition() const;
    QPoint scrollMaximum() const;
    void setScrollPosition(const QPoint& position);
    void setScrollX(int x);
    void setScrollY(int y);
    // Moves the image by a screen distance (the image follows the mouse).
    void panBy(const QPoint& delta);

    // Places image point (x, y) at the centre of the visible area, then clamps.
    void centreOn(double x, double y);
    // setSafeZoom, then centreOn: the display's focused zoom. Returns the zoom set.
    float focusedZoom(double zoom, double x, double y);
    // setSafeZoom, keeping the image point under `screen` under it where the scroll limits allow.
    float anchoredZoom(double zoom, const QPointF& screen);
    // As above for a given image point (to anchor a run of steps to the point of the first).
    float anchoredZoom(double zoom, const QPointF& screen, const QPointF& image);

    QPointF toImage(const QPointF& screen) const;
    QPointF toScreen(const QPointF& image) const;
    QRectF toImage(const QRectF& screen) const;
    QRectF toScreen(const QRectF& image) const;

private:
    struct Bars
    {
        bool horizontal = false;
        bool vertical = false;
    };
    Bars bars() const;
    Bars barsAt(double scaledWidth, double scaledHeight) const;
    void setOriginClamped(double left, double top);

    QSize m_image;
    QSize m_area;
    int m_barExtent = kDefaultScrollBarExtent;
    float m_zoom = 100.0f;
    QPoint m_origin;
};

} // namespace nxr
