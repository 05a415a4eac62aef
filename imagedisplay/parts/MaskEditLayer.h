#pragma once
// The working mask of an open mask edit, tinted over the camera image the mask view shows.
//
// Nothing full-size is kept for it: every repaint tints only the repainted device pixels,
// straight from the working mask. Each device pixel gets the average of the overlay pixels
// (MaskTintLayer::overlayPixel) over the image pixels it covers (below 100 %), or the overlay
// pixel under its centre (at and above 100 %), so a mask pixel that is not black shows its
// colour blended half and half with the camera pixel, and a zoomed-out view shows the blend's
// average as the view of the camera image does.

#include "frame/Export.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QImage>

#include <functional>

namespace nxr {

class NXR_EXPORT MaskEditLayer : public PaintLayer
{
public:
    // `mask` answers the working mask (32-bit) while an edit is open, null otherwise.
    explicit MaskEditLayer(std::function<const QImage*()> mask);

    void paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty) override;

    // The premultiplied tint of the device rectangle `device` (device pixels of the view):
    // an image of device's size, transparent where the mask is black or absent.
    static QImage tint(const QImage& mask, const ViewMaths& maths, const QRect& device);

private:
    std::function<const QImage*()> m_mask;
};

} // namespace nxr
