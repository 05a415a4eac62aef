#pragma once
// The masks ShowMask selects, tinted over the camera image outside a mask edit: every masked
// pixel shows its colour blended half and half with the image (both masks: the don't-care mask
// first, the emphasis mask over it), as the mask view does during an edit (MaskEditLayer).
//
// The layer keeps one premultiplied overlay built from the masks in the image list, rebuilt when
// the selection or one of the masks changed, and draws the visible part of it scaled to the view.

#include "frame/Export.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QImage>

#include <functional>

namespace nxr {

class ImageList;

class NXR_EXPORT MaskTintLayer : public PaintLayer
{
public:
    // `which` answers the ShowMask value, `hidden` whether an edit is open (its own view shows
    // the mask then).
    MaskTintLayer(ImageList& images, std::function<int()> which, std::function<bool()> hidden);

    void paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty) override;

    // The overlay for the current selection (null when nothing is tinted); rebuilt when needed.
    const QImage& overlay();

    // The overlay pixel for mask pixels of the don't-care and the emphasis mask (0 when a mask is
    // not shown or not masked there): premultiplied, so that drawing it over a camera pixel c gives
    // the display's blend (c + m) / 2 of each shown mask in turn.
    static QRgb overlayPixel(QRgb dontCare, QRgb emphasis);

private:
    ImageList& m_images;
    std::function<int()> m_which;
    std::function<bool()> m_hidden;
    QImage m_overlay;
    int m_builtFor = 0;
    qint64 m_keys[2] = {0, 0};
};

} // namespace nxr
