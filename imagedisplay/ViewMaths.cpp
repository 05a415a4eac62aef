#include "imagedisplay/ViewMaths.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace nxr {
namespace {

// Scaled sizes are compared in whole device pixels; the tiny slack keeps 2592 * 33.33333 / 100
// from counting as one pixel more than it shows. Sizes past the pixel limit count as the limit,
// so that sums and differences of sizes and positions stay well inside int.
int wholePixels(double scaled)
{
    if (!(scaled > 0.0)) // also NaN
        return 0;
    return int(std::min(std::ceil(scaled - 1e-6), double(ViewMaths::kPixelLimit)));
}

double limitedPosition(double value)
{
    if (std::isnan(value))
        return 0.0;
    return std::clamp(value, -double(ViewMaths::kPixelLimit), double(ViewMaths::kPixelLimit));
}

} // namespace

float ViewMaths::integerZoom(double zoom, bool nearest)
{
    if (!(zoom > 0.0) || !std::isfinite(zoom))
        return 100.0f;
    const double offset = nearest ? 0.5 : 0.05;
    if (zoom <= 100.0) {
        const double n = std::floor(-100.0 / zoom + offset);
        return float(-100.0 / n);
    }
    return float(std::floor(zoom / 100.0 + offset) * 100.0);
}

float ViewMaths::fitZoom(double areaHeight, double areaWidth, double contentHeight, double contentWidth,
                         bool nearest)
{
    if (contentHeight <= 0.0 || contentWidth <= 0.0)
        return 100.0f;
    const double zoomH = areaHeight > 0.0 ? areaHeight * 100.0 / contentHeight : 100.0;
    const double zoomW = areaWidth > 0.0 ? areaWidth * 100.0 / contentWidth : 100.0;
    return integerZoom(zoomH >= zoomW ? zoomW : zoomH, nearest);
}

namespace {

// The wheel's rungs: 100 / k below 100 %, multiples of 100 above, each about a quarter to a
// half from the next, so that a step up and a step down always return to the same zoom.
const std::vector<float>& wheelLadder()
{
    static const std::vector<float> ladder = [] {
        std::vector<float> l;
        for (int k : {100, 80, 64, 50, 40, 32, 25, 20, 16, 12, 10, 8, 6, 5, 4, 3, 2})
            l.push_back(float(100.0 / k));
        for (double z : {100.0, 200.0, 300.0})
            l.push_back(float(z));
        // 400, 600, 800, 1200, 1600, 2400, ...
        for (double z = 400.0; z < 1e7; z *= 2.0) {
            l.push_back(float(z));
            l.push_back(float(z * 1.5));
        }
        return l;
    }();
    return ladder;
}

} // namespace

float ViewMaths::wheelZoom(float current, int steps)
{
    const std::vector<float>& ladder = wheelLadder();
    float zoom = current > 0.0f ? current : 100.0f;
    for (int i = 0; i < std::abs(steps); ++i) {
        if (steps > 0) {
            const auto next = std::upper_bound(ladder.begin(), ladder.end(), zoom * 1.0001f);
            if (next == ladder.end())
                break;
            zoom = *next;
        } else {
            const auto next = std::lower_bound(ladder.begin(), ladder.end(), zoom * 0.9999f);
            if (next == ladder.begin())
                break;
            zoom = *(next - 1);
        }
    }
    return zoom;
}

ViewMaths::ViewMaths() = default;

void ViewMaths::setImageSize(const QSize& size)
{
    m_image = size.isValid() ? size : QSize();
    setOriginClamped(m_origin.x(), m_origin.y());
}

QSize ViewMaths::effectiveImageSize() const
{
    return m_image.isEmpty() ? QSize(kAssumedImageWidth, kAssumedImageHeight) : m_image;
}

void ViewMaths::setUsableArea(const QSize& area)
{
    m_area = QSize(std::max(0, area.width()), std::max(0, area.height()));
    setOriginClamped(m_origin.x(), m_origin.y());
}

void ViewMaths::setScrollBarExtent(int extent)
{
    m_barExtent = std::max(0, extent);
    setOriginClamped(m_origin.x(), m_origin.y());
}

void ViewMaths::setZoom(float zoom)
{
    if (!(zoom > 0.0f) || !std::isfinite(zoom))
        return;
    m_zoom = std::min(zoom, kZoomLimit);
    setOriginClamped(m_origin.x(), m_origin.y());
}

float ViewMaths::maximumZoom() const
{
    // Without an image there is nothing to measure against: the zoom stays what was chosen (the
    // neutral 100 until then), however small the display is while it is being laid out.
    if (m_image.isEmpty())
        return kZoomLimit;
    // 100 times the visible height at that zoom (where the scroll bars are shown).
    const double candidate = std::min(100.0 * std::max(1, m_area.height()), double(kZoomLimit));
    const Bars b = barsAt(m_image.width() * candidate / 100.0, m_image.height() * candidate / 100.0);
    const int visible = m_area.height() - (b.horizontal ? m_barExtent : 0);
    return std::clamp(100.0f * float(visible), 1.0f, kZoomLimit);
}

float ViewMaths::safeZoom(double zoom) const
{
    if (!(zoom >= 1.0)) // also catches NaN
        return 1.0f;
    const float largest = maximumZoom();
    return double(largest) < zoom ? largest : float(zoom);
}

float ViewMaths::setSafeZoom(double zoom)
{
    setZoom(safeZoom(zoom));
    return m_zoom;
}

QSizeF ViewMaths::scaledSize() const
{
    return QSizeF(m_image.width() * scale(), m_image.height() * scale());
}

ViewMaths::Bars ViewMaths::barsAt(double scaledWidth, double scaledHeight) const
{
    const int w = wholePixels(scaledWidth);
    const int h = wholePixels(scaledHeight);
    Bars b;
    b.horizontal = w > m_area.width();
    b.vertical = h > m_area.height();
    if (b.horizontal && !b.vertical)
        b.vertical = h > m_area.height() - m_barExtent;
    if (b.vertical && !b.horizontal)
        b.horizontal = w > m_area.width() - m_barExtent;
    return b;
}

ViewMaths::Bars ViewMaths::bars() const
{
    const QSizeF s = scaledSize();
    return barsAt(s.width(), s.height());
}

QSize ViewMaths::visibleSize() const
{
    const Bars b = bars();
    return QSize(std::max(0, m_area.width() - (b.vertical ? m_barExtent : 0)),
                 std::max(0, m_area.height() - (b.horizontal ? m_barExtent : 0)));
}

QRectF ViewMaths::destinationRect() const
{
    return QRectF(QPointF(m_origin), scaledSize());
}

QRectF ViewMaths::visibleSourceRect() const
{
    const QRectF visible(QPointF(0, 0), QSizeF(visibleSize()));
    const QRectF shown = destinationRect().intersected(visible);
    if (shown.isEmpty())
        return QRectF();
    return toImage(shown);
}

QPoint ViewMaths::scrollMaximum() const
{
    const QSizeF s = scaledSize();
    const QSize v = visibleSize();
    return QPoint(std::max(0, wholePixels(s.width()) - v.width()),
                  std::max(0, wholePixels(s.height()) - v.height()));
}

QPoint ViewMaths::scrollPosition() const
{
    const QPoint max = scrollMaximum();
    return QPoint(max.x() > 0 ? -m_origin.x() : 0, max.y() > 0 ? -m_origin.y() : 0);
}

void ViewMaths::setScrollPosition(const QPoint& position)
{
    setOriginClamped(-double(position.x()), -double(position.y()));
}

void ViewMaths::setScrollX(int x)
{
    setOriginClamped(-double(x), m_origin.y());
}

void ViewMaths::setScrollY(int y)
{
    setOriginClamped(m_origin.x(), -double(y));
}

void ViewMaths::panBy(const QPoint& delta)
{
    setOriginClamped(double(m_origin.x()) + delta.x(), double(m_origin.y()) + delta.y());
}

void ViewMaths::setOriginClamped(double left, double top)
{
    const QSizeF s = scaledSize();
    const QSize v = visibleSize();
    auto clampAxis = [](double value, int scaled, int visible) {
        if (scaled <= visible) // the whole image fits: keep it centred, no scrolling
            return (visible - scaled) / 2;
        const double low = double(visible) - double(scaled);
        return int(std::lround(std::clamp(limitedPosition(value), low, 0.0)));
    };
    m_origin = QPoint(clampAxis(left, wholePixels(s.width()), v.width()),
                      clampAxis(top, wholePixels(s.height()), v.height()));
}

void ViewMaths::centreOn(double x, double y)
{
    const QSize v = visibleSize();
    setOriginClamped(v.width() / 2.0 - x * scale(), v.height() / 2.0 - y * scale());
}

float ViewMaths::focusedZoom(double zoom, double x, double y)
{
    setSafeZoom(zoom);
    centreOn(x, y);
    return m_zoom;
}

float ViewMaths::anchoredZoom(double zoom, const QPointF& screen)
{
    return anchoredZoom(zoom, screen, toImage(screen));
}

float ViewMaths::anchoredZoom(double zoom, const QPointF& screen, const QPointF& image)
{
    setSafeZoom(zoom);
    setOriginClamped(screen.x() - image.x() * scale(), screen.y() - image.y() * scale());
    return m_zoom;
}

QPointF ViewMaths::toImage(const QPointF& screen) const
{
    return QPointF((screen.x() - m_origin.x()) * 100.0 / double(m_zoom),
                   (screen.y() - m_origin.y()) * 100.0 / double(m_zoom));
}

QPointF ViewMaths::toScreen(const QPointF& image) const
{
    return QPointF(m_origin.x() + image.x() * double(m_zoom) / 100.0,
                   m_origin.y() + image.y() * double(m_zoom) / 100.0);
}

QRectF ViewMaths::toImage(const QRectF& screen) const
{
    return QRectF(toImage(screen.topLeft()), toImage(screen.bottomRight()));
}

QRectF ViewMaths::toScreen(const QRectF& image) const
{
    return QRectF(toScreen(image.topLeft()), toScreen(image.bottomRight()));
}

} // namespace nxr
