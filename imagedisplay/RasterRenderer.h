#pragma once
// Paints the visible part of a bitmap at a zoom, without any widget.
//
// At and above 100 % every image pixel becomes a crisp block of screen pixels (nearest
// neighbour). Below 100 % the image is first reduced by halving steps that average 2 x 2 pixels
// (kept until the bitmap changes) and the remaining factor, between 1/2 and 1, is again taken
// by nearest neighbour; zooms of 100 / 2^n therefore show exact averages. Only the part of the
// destination rectangle that lies inside the painted area is ever scaled, into a buffer that
// is reused while neither the bitmap nor the view changes. A view that needs no scaling at all
// is drawn straight from the bitmap.
//
// RGB32 bitmaps are drawn as they are. A grey (Format_Grayscale8) bitmap at 100 % is converted
// only where it is visible, into the reused buffer, so a repaint of an unchanged view costs what
// a colour one does. Once the same bitmap has needed kConversionsBeforeCopy such conversions (it
// is being scrolled or panned, not replaced by the next live image), it gets a paint-ready RGB32
// copy and every repaint costs what a colour one does. The copy takes four bytes a pixel, so a
// grey bitmap above kPaintReadyPixels never gets one. The reductions stay grey. Other formats are
// drawn from an RGB32 copy.
//
// A change of part of the bitmap (imageChanged(rect)) rebuilds only that part of the copy and
// of the reductions.

#include "frame/Export.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>

#include <vector>

class QPainter;

namespace nxr {

class NXR_EXPORT RasterRenderer
{
public:
    // The largest grey bitmap (in pixels) that gets a paint-ready colour copy: 16 M pixels, 64 MB.
    static constexpr qint64 kPaintReadyPixels = 16 * 1024 * 1024;
    static constexpr int kConversionsBeforeCopy = 3;

    RasterRenderer();

    // A new bitmap (shared, not copied). Drops the reductions and the buffer.
    void setImage(const QImage& image);
    // A new bitmap with its first reduction levels made ahead by reductions(); levels that do not
    // fit the bitmap are dropped (and built on first use as usual).
    void setImage(const QImage& image, std::vector<QImage> reductions);
    // The first `count` reduction levels of a bitmap drawn as it is (RGB32 or grey), exactly as
    // paint() builds them; none for other formats. Touches no renderer: runs on any thread.
    static std::vector<QImage> reductions(const QImage& image, int count);
    const QImage& image() const { return m_image; }
    // The bitmap's pixels changed in place: drops the reductions and the buffer.
    void imageChanged();
    // Part of the bitmap changed in place: updates that part of the copy and the reductions.
    void imageChanged(const QRect& region);
    // The bitmap for changing in place (detached from other holders on first write).
    QImage& editableImage() { return m_image; }
    // Drops the scaled buffer only, so that the next paint scales again.
    void discardBuffer();
    // Whether a grey bitmap may get its paint-ready colour copy (on by default). A view that
    // must not hold four bytes a pixel of its bitmap turns it off and keeps converting the
    // visible part.
    void setPaintReadyCopy(bool allowed);
    bool hasPaintReadyCopy() const { return !m_paintReady.isNull(); }

    void setBackground(const QColor& color) { m_background = color; }
    QColor background() const { return m_background; }

    // Paints `area` (device pixels of the view; the painter works in device pixels) with the
    // bitmap's destination rectangle at `origin`, scaled by zoom / 100, and the background
    // around it.
    void paint(QPainter& painter, const QRect& area, float zoom, const QPoint& origin);

    // The reduction level paint() draws from at a zoom (0: the bitmap itself) and that level's
    // image, built on first use.
    static int levelForZoom(float zoom);
    const QImage& level(int index);

private:
    const QImage& displaySource();
    void renderBuffer(const QImage& source, double levelScale, const QRect& target, const QPoint& origin);
    void convertBuffer(const QImage& grey, const QRect& target, const QPoint& origin);

    QImage m_image;
    QImage m_converted;        // RGB32 copy for formats drawn through a conversion
    QImage m_paintReady;       // RGB32 copy of a grey bitmap for drawing at 100 %
    int m_greyConversions = 0; // conversions of the visible part of this grey bitmap
    bool m_paintReadyAllowed = true;
    std::vector<QImage> m_levels; // m_levels[k - 1] is reduction level k
    QColor m_background = QColor(128, 128, 128);

    QImage m_buffer;
    QRect m_bufferRect;
    float m_bufferZoom = 0.0f;
    QPoint m_bufferOrigin;
    bool m_bufferValid = false;
    std::vector<int> m_columns;
};

} // namespace nxr
