#pragma once
// Draws overlay items with a QPainter in screen coordinates, after the image has been painted:
// the graphics are never burnt into the image, so they stay one screen pixel thin at any zoom.
//
// The painter works in device pixels (as the display's raster view paints); ScreenMapping says
// where an image point lands there. Lengths fixed in screen pixels (pen width 1, arrow heads 15,
// the cursor mark's 11-pixel dot, the text offset 3, the text halo 1, the 9-point font) are
// device-independent pixels: on a screen with device pixel ratio 1.5 a 1-pixel pen is 1.5
// device pixels wide.
//
// Line style bits: 4 puts an arrow head at the first end, 8 at the second; the low two bits pick
// the pen: 0 solid, 1 dashed, 2 dotted, 3 dash-dot.
//
// Items whose bounding box misses the dirty area are skipped after a few multiplications.

#include "frame/Export.h"
#include "graphics/OverlayItems.h"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRect>
#include <QRectF>

#include <array>

class QPainter;

namespace nxr {

class ViewMaths;

// 0x00BBGGRR to a colour.
NXR_EXPORT QColor colorFromLong(qint32 color);

struct NXR_EXPORT ScreenMapping
{
    // The mapping of the display's view: zoom and origin from its view maths (device pixels), the
    // raster view's device pixel ratio, and its visible area.
    static ScreenMapping ofView(const ViewMaths& view, double devicePixelRatio);

    // Device pixels per image pixel: zoom / 100.
    double scale = 1.0;
    // Device position of image point (0, 0).
    QPointF origin;
    // Device pixels per device-independent (screen) pixel.
    double devicePixelRatio = 1.0;
    // The visible part of the view in device pixels; text near its right edge is moved inside.
    // An empty rectangle switches that rule off.
    QRectF visibleArea;

    QPointF toScreen(double x, double y) const { return {origin.x() + x * scale, origin.y() + y * scale}; }
};

// The handles an edited window shows: a 7 x 7 screen-pixel square at each corner (colours 0..3
// for corners 0..3) and, for a rotatable window, one at the middle of the right edge (colour 4).
struct NXR_EXPORT RectangleHandles
{
    std::array<qint32, 5> colors{0x0000FF, 0x0000FF, 0x0000FF, 0x0000FF, 0x0000FF};
    bool filled = true;
    bool rotatable = false;
};

class NXR_EXPORT OverlayPainter
{
public:
    // Every item from a collection is drawn as a cross of this size.
    static constexpr double kCollectionCrossSize = 11.0;
    static constexpr double kArrowLength = 15.0;
    static constexpr double kMarkerDotDiameter = 11.0;
    static constexpr double kTextOffset = 3.0;
    static constexpr double kTextPointSize = 9.0;
    static constexpr int kTextWeight = 600;

    // `dirty` (device pixels) is the area being repainted; the painter's own clip is left as set.
    // The painter's pen, brush, font and hints are restored when this object goes.
    OverlayPainter(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty);
    ~OverlayPainter();
    OverlayPainter(const OverlayPainter&) = delete;
    OverlayPainter& operator=(const OverlayPainter&) = delete;

    // Every item in order: boxes as rotated rectangles, crosses of size 11, lines with their
    // Arrowed value as style (pairs as their two side lines around the centre line), text with
    // its halo, circles.
    // The item under `skipKey` (the movable shape being edited, which its editor draws with its
    // handles) is left out.
    void paint(const clsOverlayCollection& items, const QString& skipKey = {});

    // The four edges of the box turned by angle about its centre; with marker set, also the
    // handles.
    void drawRectangle(qint32 color, bool marker, double left, double top, double width, double height,
                       double angle, const RectangleHandles& handles = {});
    // Two strokes through the centre, turned by angle. Half-length 2 * size * scale; with
    // marker set the centre is rounded to whole device pixels, the half-length is size screen
    // pixels whatever the zoom, and a filled dot of 11 screen pixels marks the centre.
    void drawCross(qint32 color, bool marker, double x, double y, double angle, double size);
    void drawLine(qint32 color, double x1, double y1, double x2, double y2, int style);
    void drawLinePair(const clsLineItem& line);
    // Outline with a solid 1-pixel pen.
    void drawCircle(qint32 color, double x, double y, double radius);
    // The text 3 screen pixels right of the point, in the 9-point, weight-600 font, first four
    // times in GetContrastColor(color) displaced by one screen pixel left, right, up and down,
    // then once in color. Text that would run past the right edge of the visible area is moved
    // left so that it ends inside it.
    void drawText(qint32 color, double x, double y, const QString& text);

    // Where drawText puts the text's top left corner and how wide it is taken to be (device
    // pixels), before the halo.
    QRectF textRect(double x, double y, const QString& text);
    // The font of the text, sized for the painter's device and the pixel ratio.
    const QFont& textFont();

    // Items drawn and skipped as outside the dirty area, since construction.
    int drawnCount() const { return m_drawn; }
    int culledCount() const { return m_culled; }

private:
    void usePen(qint32 color, int penStyle);
    bool visible(double left, double top, double right, double bottom, double margin);
    void arrowHead(const QPointF& tip, const QPointF& back);

    QPainter& m_p;
    ScreenMapping m_map;
    QRectF m_dirty;
    double m_px;     // one screen pixel in device pixels
    double m_penPad; // room a pen stroke takes beyond its geometry
    qint32 m_penColor = -1;
    int m_penStyle = -1;
    bool m_fontReady = false;
    QFont m_font;
    double m_ascent = 0.0;
    double m_lineHeight = 0.0;
    double m_maxCharWidth = 0.0;
    int m_drawn = 0;
    int m_culled = 0;
};

} // namespace nxr
