#pragma once
// What an editing subsystem (result graphics, movable shapes, mask painting) needs of the image
// display: the view maths, layers over the image views, partial repaints, the edit session, the
// display's property keys, the view buttons and the display's events. DisplayEditHost serves it
// from the real display; tests use a fake. Subsystems hold this, never the display itself.

#include "frame/Export.h"

#include <QRectF>
#include <QString>

namespace nxr {

class EditSession;
class PaintLayer;
class PropertyTable;
class ViewMaths;

class NXR_EXPORT EditHost
{
public:
    enum class View { Image, Mask };

    virtual ~EditHost() = default;

    // Zoom, scroll and screen/image conversion of the image and mask views.
    virtual const ViewMaths& maths() const = 0;
    // Device pixels per screen pixel of the image view (1.5 on a 150 % screen).
    virtual double screenPixel() const = 0;

    // Layers over a view, lowest order first; the host does not own them.
    virtual void addLayer(PaintLayer& layer, int order, View view = View::Image) = 0;
    virtual void removeLayer(PaintLayer& layer) = 0;
    // Repaints the part of the views showing an image rectangle, or a device rectangle.
    virtual void repaintImage(const QRectF& imageRect) = 0;
    virtual void repaintDevice(const QRectF& deviceRect) = 0;

    virtual EditSession& session() = 0;

    // The display's SetProperty/GetProperty table: a subsystem adds its keys here when it is
    // made (or takes over a key the display accepted for it, with PropertyTable::replace).
    virtual PropertyTable& keys() = 0;

    // A key of the view buttons' string property protocol.
    virtual void setViewButtonProperty(const QString& key, const QString& value) = 0;
    virtual QString viewButtonProperty(const QString& key) = 0;

    // Raises one of the display's events taking one integer (OnExitMaskEditMode, ...).
    virtual void raiseEvent(const char* eventName, int value) = 0;
    // Reports a failure of a routine the way every public routine does (LastErrorString,
    // the error trace, OnError).
    virtual void reportError(const QString& routine, const QString& text) = 0;
};

} // namespace nxr
