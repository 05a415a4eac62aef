#include "imagedisplay/loading/DisplaySurface.h"

#include "imagedisplay/DisplayState.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterRenderer.h"
#include "imagedisplay/RasterView.h"

namespace nxr {

QImage DisplaySurface::shownImage() const
{
    return m_display.leadView()->bitmap();
}

void DisplaySurface::showImage(const QImage& image, std::vector<QImage> reductions)
{
    QImage shown = image;
    // Colour mode off: the display shows grey whatever arrives (and the colour reductions go).
    if (showsGrey() && !shown.isNull() && shown.format() != QImage::Format_Grayscale8) {
        shown = shown.convertToFormat(QImage::Format_Grayscale8);
        reductions.clear();
    }
    m_display.leadView()->setBitmap(shown, std::move(reductions));
    m_display.viewport().imageSizeChanged();
}

bool DisplaySurface::showsGrey() const
{
    return !m_display.state().colorMode;
}

int DisplaySurface::reductionLevel() const
{
    return RasterRenderer::levelForZoom(m_display.leadView()->zoom());
}

void DisplaySurface::clearImage()
{
    m_display.clearImage();
}

void DisplaySurface::setLandingImage(const QImage& image)
{
    if (image.isNull())
        m_display.tempLeadView()->clearBitmap();
    else
        m_display.tempLeadView()->setBitmap(image);
}

float DisplaySurface::zoom() const
{
    return m_display.viewport().zoom();
}

QPointF DisplaySurface::scrollPosition() const
{
    return QPointF(m_display.viewport().maths().scrollPosition());
}

void DisplaySurface::restoreView(float zoom, const QPointF& scroll)
{
    m_display.viewport().setZoomDirect(zoom);
    m_display.viewport().setScrollPosition(scroll.toPoint());
}

float DisplaySurface::fitImage()
{
    return m_display.viewport().fitImage();
}

bool DisplaySurface::autoRepaint() const
{
    return m_display.leadView()->autoRepaint();
}

void DisplaySurface::setAutoRepaint(bool on)
{
    m_display.leadView()->setAutoRepaint(on);
}

bool DisplaySurface::repaintActiveView()
{
    RasterView* active = m_display.activeView();
    active->repaintView();
    return active == m_display.leadView();
}

void DisplaySurface::reinitialize()
{
    m_display.clearImage();
    m_display.InitDisplay();
}

void DisplaySurface::setViewButtonProperty(const QString& key, const QString& value)
{
    m_display.viewButtons()->SetProperty(key, value);
}

void DisplaySurface::setBusyPointer(bool busy)
{
    if (busy)
        m_display.leadView()->setCursor(Qt::BusyCursor);
    else
        m_display.leadView()->unsetCursor();
}

void DisplaySurface::replayMouseDown(int button, int shift, double x, double y)
{
    MouseArgs args;
    args.button = button;
    args.shift = shift;
    args.x = x;
    args.y = y;
    m_display.mouse().leadMouseDown(args);
}

QString DisplaySurface::caption() const
{
    return m_display.Caption();
}

} // namespace nxr
