#pragma once
// What the overlay graphics need of the image display: repaints, the camera image, the copy of a
// controller file, whether a movable shape is being edited, and a place to show the image with
// its raster overlay laid over it.

#include "frame/Export.h"

#include <QImage>
#include <QString>

namespace nxr {

class NXR_EXPORT GraphicsHost
{
public:
    virtual ~GraphicsHost() = default;

    // Repaints when the display is in a state to paint (the condition it uses after its other
    // changes); otherwise the graphics show with the next repaint.
    virtual void requestRepaint() = 0;

    // The camera image ("current"); null when none is loaded.
    virtual QImage currentImage() const = 0;

    // Shows `composite` (the camera image with the raster overlay over it) in place of the camera
    // image without replacing it; a null image brings the plain camera image back.
    virtual void showComposite(const QImage& composite) = 0;

    // Copies a controller file to `localPath` through the display's transfer object. On failure
    // returns false with the reason in *error.
    virtual bool copyFromController(const QString& server, const QString& controllerPath,
                                    const QString& userName, const QString& password,
                                    const QString& localPath, QString* error) = 0;

    // Loads and shows a camera image as the display's LoadImage does (reporting its own errors);
    // true when the image is shown.
    virtual bool loadImage(const QString& server, const QString& path, const QString& userName,
                           const QString& password) = 0;

    // Whether a movable window, cursor, line or line pair is in edit mode.
    virtual bool isEditingShape() const = 0;
};

} // namespace nxr
