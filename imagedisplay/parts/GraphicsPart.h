#pragma once
// The display's result graphics: the graphics and crosshair collections and the raster overlay
// (graphics/OverlayGraphics) plugged into the display, with the movable shapes (MovablePart).
//
// Over the display it serves GraphicsHost (repaints, the camera image, the composite in place of
// it, controller copies and loads) and paints both collections and the edited shape as one layer
// over ctl_LEAD. The tool bar's crosshair buttons switch the crosshair; every new image is laid
// under a shown raster overlay again, the crosshair follows a new image size and the movable
// shapes learn the image bounds.

#include "frame/Export.h"
#include "graphics/GraphicsHost.h"
#include "graphics/OverlayGraphics.h"
#include "imagedisplay/edit/DisplayParts.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QMetaObject>
#include <QSize>

#include <memory>

class NXRImageDisplay;

namespace nxr {

class EditHost;
class MovablePart;
class MovableShapes;

class NXR_EXPORT GraphicsPart : public DisplayPart, private GraphicsHost, private PaintLayer
{
public:
    // The layer's order over the image: above what the mask editing draws below it.
    static constexpr int kLayerOrder = 100;

    explicit GraphicsPart(EditHost& host);
    ~GraphicsPart() override;
    GraphicsPart(const GraphicsPart&) = delete;
    GraphicsPart& operator=(const GraphicsPart&) = delete;

    OverlayGraphics& graphics() { return m_graphics; }
    MovableShapes& shapes();
    MovablePart& movable() { return *m_movable; }

private:
    // GraphicsHost
    void requestRepaint() override;
    QImage currentImage() const override;
    void showComposite(const QImage& composite) override;
    bool copyFromController(const QString& server, const QString& controllerPath, const QString& userName,
                            const QString& password, const QString& localPath, QString* error) override;
    bool loadImage(const QString& server, const QString& path, const QString& userName,
                   const QString& password) override;
    bool isEditingShape() const override;

    // PaintLayer
    void paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty) override;

    void imageShown();

    EditHost& m_host;
    NXRImageDisplay& m_display;
    OverlayGraphics m_graphics;
    std::unique_ptr<MovablePart> m_movable;
    QSize m_crosshairFor;
    QMetaObject::Connection m_imageShown;
};

} // namespace nxr
