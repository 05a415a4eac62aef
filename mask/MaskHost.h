#pragma once
// What a mask edit needs of the image display: its image list and controller files, its
// repainting, its tool bar and mask palette, its error report and its events. The display
// implements it with a thin adapter; tests use a stand-in.

#include "frame/Export.h"

#include <QImage>
#include <QRect>
#include <QRectF>
#include <QString>

namespace nxr {

class ControllerFiles;
class ImageList;

class NXR_EXPORT MaskHost
{
public:
    virtual ~MaskHost() = default;

    // The display's keyed bitmaps: the camera image under "current", the masks under their keys.
    virtual ImageList& imageList() = 0;
    // The copy to and from the controller (the display's transfer object, caller "NXRImageDisplay").
    virtual ControllerFiles& controllerFiles() = 0;

    virtual bool autoRepaint() const = 0;
    virtual void setAutoRepaint(bool on) = 0;
    // True while the page batches updates of the display (no redraw on ShowMask then).
    virtual bool inBatchUpdate() const = 0;
    // Resets and redraws the display, which shows the masks ShowMask selects.
    virtual void resetAndRedraw() = 0;
    // During an edit the display shows the camera image with the session's working mask
    // (MaskSession::editor().working()) tinted over it. The session calls this with the rectangle
    // of the working mask that changed (the whole mask when the edit starts); the host repaints
    // only that.
    virtual void editMaskChanged(const QRect& changed) = 0;
    // Repaints an image area whose pixels did not change: the outline of a dragged shape moved.
    virtual void repaintEditArea(const QRectF& area) = 0;
    // Shows or hides the mask palette and the flashing Accept/Cancel buttons.
    virtual void showMaskEditControls(bool show) = 0;
    virtual void setBusyPointer(bool busy) = 0;

    // The mask palette's and the tool bar's string property protocol.
    virtual QString maskToolProperty(const QString& key) = 0;
    virtual void setMaskToolProperty(const QString& key, const QString& value) = 0;
    virtual QString viewButtonProperty(const QString& key) = 0;
    virtual void setViewButtonProperty(const QString& key, const QString& value) = 0;

    // Reports an error with its complete text under `routine` (LastErrorString, trace, OnError).
    virtual void reportError(const QString& routine, const QString& text) = 0;
    // A message box with the critical icon.
    virtual void showCriticalMessage(const QString& text) = 0;
    // Raises OnExitMaskEditMode(-1 accepted, 0 cancelled).
    virtual void raiseExitMaskEditMode(bool accepted) = 0;
};

} // namespace nxr
