#pragma once
// The visible viewport of the image display (fra_ImageBackground): places the raster views and
// the two scroll bars, keeps the zoom and scroll state (ViewMaths) and pushes it into the views.
// Everything that changes zoom or scroll position goes through here.

#include "frame/Export.h"
#include "imagedisplay/ViewMaths.h"

#include <QFrame>

#include <vector>

class QScrollBar;
class QTimer;

namespace nxr {

class RasterView;

class NXR_EXPORT ImageViewport : public QFrame
{
    Q_OBJECT

public:
    explicit ImageViewport(QWidget* parent = nullptr);

    // The view that holds the shown image, and views that follow its zoom and scroll (the mask
    // being edited). All of them are placed at the same spot.
    void setPrimaryView(RasterView* view);
    void addFollowerView(RasterView* view);
    RasterView* primaryView() const { return m_primary; }

    const ViewMaths& maths() const { return m_maths; }

    // Space kept free left and right of the views (the frame margin), in pixels.
    void setFrameMargin(int pixels);
    int frameMargin() const { return m_margin; }

    // The image size changed (a new bitmap in the primary view).
    void imageSizeChanged();

    float zoom() const { return m_maths.zoom(); }
    // Sets the zoom without any clamp (the scripting "Zoom" key).
    void setZoomDirect(float zoom);
    // Clamps to [1, 100 x visible height], re-lays out and repaints; returns the zoom set.
    float setSafeZoom(double zoom);
    float focusedZoom(double zoom, double x, double y);
    float anchoredZoom(double zoom, const QPointF& devicePoint, const QPointF& imagePoint);
    // The zoom at which an area fits: with fitFrame, h and w are image sizes and the area is this
    // viewport (less the scroll bars that zoom needs); otherwise h and w are display sizes and the image is
    // the primary view's bitmap (512 x 480 while it has none).
    float optimalZoom(double h, double w, bool fitFrame, bool nearest) const;
    // Fits the whole image, centred. Returns the zoom set.
    float fitImage();
    void panBy(const QPoint& deviceDelta);
    void setScrollPosition(const QPoint& position);

    // The scroll bars' positions (device pixels), clamped to the limits of the current zoom.
    int scrollV() const { return m_maths.scrollPosition().y(); }
    int scrollH() const { return m_maths.scrollPosition().x(); }
    void setScrollV(int value);
    void setScrollH(int value);

    QScrollBar* horizontalBar() const { return m_hbar; }
    QScrollBar* verticalBar() const { return m_vbar; }

    // The diagnostic dump of the view's rectangles, one line each: the scaled image, the
    // source, the destination and the clipped (visible) source, as (left, top) (width, height).
    QStringList dimensionLines() const;

    // Re-reads the viewport size and places views and bars.
    void relayout();
    void repaintViews();

Q_SIGNALS:
    void viewChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void apply();
    qreal ratio() const;
    void scrollRefreshLater();

    ViewMaths m_maths;
    RasterView* m_primary = nullptr;
    std::vector<RasterView*> m_followers;
    QScrollBar* m_hbar = nullptr;
    QScrollBar* m_vbar = nullptr;
    QTimer* m_scrollRefresh = nullptr;
    int m_margin = 0;
    bool m_applying = false;
};

} // namespace nxr
