#pragma once
// What the movable shapes need of the image display: repaints, the view buttons, the mouse
// mode, the edit session with its OK/Cancel bar, the exit events, and the error and trace
// convention. The display implements it; tests/graphics/FakeMovableHost.h stands in for it.

#include "frame/Export.h"
#include "graphics/MoveableGraphics.h"

#include <QRectF>
#include <QString>

namespace nxr {

class MovableShapeEditor;

class NXR_EXPORT MovableHost
{
public:
    virtual ~MovableHost() = default;

    // Repaints `imageArea` (image pixels; a null rectangle means everything) when the display is
    // in a state to paint.
    virtual void requestRepaint(const QRectF& imageArea) = 0;

    // Sets a string property of the view buttons ("ButtonEnabled", "ActiveMouseCursor").
    virtual void setViewButtonsProperty(const QString& key, const QString& value) = 0;
    // The display's mouse mode (1 pointer, 2 pan, 3 zoom in, 4 zoom out) and its setter.
    virtual int mouseMode() const = 0;
    virtual void setMouseMode(int mode) = 0;

    // Whether a mask is being edited: a shape edit cannot start then.
    virtual bool otherEditActive() const = 0;
    // A shape's edit mode starts: the display makes `editor` its active editor, shows the
    // OK/Cancel bar and sets its edit flag; OK and Cancel call editor.finish().
    virtual void enterEditMode(MovableShape shape, MovableShapeEditor& editor) = 0;
    // The edit mode has ended (after the shape is restored or kept): the display hides the bar,
    // clears its flag and raises OnExitMovableWindowEditMode or OnExitMovableCursorEditMode for
    // the window and the cursor.
    virtual void leaveEditMode(MovableShape shape, bool accepted) = 0;

    // "Error in " + routine + ": " + description as the display's last error, error trace and
    // OnError.
    virtual void fail(const QString& routine, const QString& description) = 0;
    virtual void trace(const QString& routine, const QString& message) = 0;
};

} // namespace nxr
