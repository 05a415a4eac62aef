#pragma once
// Something drawn over the image of a raster view: result graphics, a movable shape, a brush
// outline. The view paints its bitmap and then every layer in order, on every repaint.
//
// Coordinates: the painter works in device pixels of the view, the same pixels ViewMaths
// speaks (maths.toScreen(imagePoint) is where to draw), so image-aligned drawing is exact at
// any zoom and on any screen. Sizes meant in screen pixels (handle squares, arrow heads, pen
// widths, text) are multiplied by screenPixel(painter): 1 on an ordinary screen, 1.5 on a
// 150 % screen, so that a handle keeps its size on the desk while the image keeps one image
// pixel per physical pixel at 100 %.

#include "frame/Export.h"

#include <QPaintDevice>
#include <QPainter>
#include <QRect>

namespace nxr {

class ViewMaths;

class NXR_EXPORT PaintLayer
{
public:
    virtual ~PaintLayer() = default;

    // Paints over the image. `dirty` is the part of the view being repainted (device pixels);
    // the painter is already clipped to it, so a layer may skip what lies outside.
    virtual void paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty) = 0;

    // Device pixels per screen pixel of the painter's device.
    static qreal screenPixel(const QPainter& painter)
    {
        return painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    }
};

} // namespace nxr
