#pragma once
// What image loading and live mode need of the display that shows the images: its raster views,
// its view (zoom and scroll), its tool bar and its mouse handler.

#include "frame/Export.h"

#include <QImage>
#include <QPointF>
#include <QString>

#include <vector>

namespace nxr {

class NXR_EXPORT ImageSurface
{
public:
    virtual ~ImageSurface() = default;

    // The bitmap of the main raster view; null when it shows none.
    virtual QImage shownImage() const = 0;
    // Puts a bitmap into the main raster view (the view, zoom and scroll are set separately), with
    // its first reduction levels when they were made ahead (RasterRenderer::reductions), or none.
    virtual void showImage(const QImage& image, std::vector<QImage> reductions) = 0;
    // How many reduction levels the main raster view draws from at its zoom.
    virtual int reductionLevel() const = 0;
    // True when the main raster view shows every image in grey (colour mode off).
    virtual bool showsGrey() const = 0;
    // Empties the main raster view.
    virtual void clearImage() = 0;
    // The never-visible landing raster view every file is read into first; a null image empties it.
    virtual void setLandingImage(const QImage& image) = 0;

    // Zoom (percent) and scroll position (image pixels) of the main raster view.
    virtual float zoom() const = 0;
    virtual QPointF scrollPosition() const = 0;
    // Brings back a zoom and scroll position remembered before the bitmap was replaced.
    virtual void restoreView(float zoom, const QPointF& scroll) = 0;
    // Fits the image into the viewport and returns the zoom that was set.
    virtual float fitImage() = 0;

    // Whether the main raster view repaints by itself after a change.
    virtual bool autoRepaint() const = 0;
    virtual void setAutoRepaint(bool on) = 0;
    // Repaints the active raster view now; returns true when that is the main raster view.
    virtual bool repaintActiveView() = 0;

    // Back to the state of a display that never showed an image.
    virtual void reinitialize() = 0;

    // A key of the tool bar's string property protocol ("LiveEnabled", "ButtonEnabled", ...).
    virtual void setViewButtonProperty(const QString& key, const QString& value) = 0;
    // The busy mouse pointer over the main raster view.
    virtual void setBusyPointer(bool busy) = 0;
    // Handles a mouse-down on the main raster view, as if it arrived now.
    virtual void replayMouseDown(int button, int shift, double x, double y) = 0;

    // The display's caption, for traces.
    virtual QString caption() const = 0;
};

} // namespace nxr
