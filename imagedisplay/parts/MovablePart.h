#pragma once
// The movable window, cursor, line and line pair (graphics/MovableShapes) plugged into the
// display: MovableHost over the display, the shape editor as the edit session's editor, and its
// mouse and keys as the session's interaction.
//
// Every event converts to image pixels with the view's scale, device pixel ratio and screen
// density given to the editor first, so the grab distance stays 5 screen pixels at every zoom.
// OK and Cancel end the edit through the session (finishEdit), the window reset button puts the
// edited shape back, "MinPairWidth" and "MaxPairWidth" set the pair's limits, and the pointer
// shows what a press would grab (pointer 99, the turning arrow, included). Enter and Escape
// accept and cancel also when the display itself has the keyboard.

#include "frame/Export.h"
#include "graphics/MovableHost.h"
#include "graphics/MovableShapes.h"
#include "imagedisplay/edit/Editor.h"
#include "imagedisplay/edit/Interaction.h"

#include <QMetaObject>
#include <QSize>

#include <memory>

class QObject;

class NXRImageDisplay;

namespace nxr {

class EditHost;
class clsOverlayCollection;

class NXR_EXPORT MovablePart : private MovableHost, private Editor, private Interaction
{
public:
    MovablePart(EditHost& host, NXRImageDisplay& display, clsOverlayCollection& graphics);
    ~MovablePart() override;
    MovablePart(const MovablePart&) = delete;
    MovablePart& operator=(const MovablePart&) = delete;

    MovableShapes& shapes() { return m_shapes; }
    const MovableShapes& shapes() const { return m_shapes; }
    // A new image is shown: whole-shape moves stay on it.
    void imageShown(const QSize& size);

private:
    // MovableHost
    void requestRepaint(const QRectF& imageArea) override;
    void setViewButtonsProperty(const QString& key, const QString& value) override;
    int mouseMode() const override;
    void setMouseMode(int mode) override;
    bool otherEditActive() const override;
    void enterEditMode(MovableShape shape, MovableShapeEditor& editor) override;
    void leaveEditMode(MovableShape shape, bool accepted) override;
    void fail(const QString& routine, const QString& description) override;
    void trace(const QString& routine, const QString& message) override;

    // Editor
    Interaction* interaction() override { return this; }
    void finish(bool accepted) override;

    // Interaction
    bool press(const PointerEvent& e) override;
    bool move(const PointerEvent& e) override;
    bool release(const PointerEvent& e) override;
    bool doubleClick(const PointerEvent& e) override;
    bool hover(const PointerEvent& e) override;
    bool key(int key, Qt::KeyboardModifiers modifiers) override;
    std::optional<QCursor> pointerAt(const PointerEvent& e) override;
    void cancel() override;

    // Gives the editor the view the event came from.
    void useView(const PointerEvent& e);

    EditHost& m_host;
    NXRImageDisplay& m_display;
    MovableShapes m_shapes;
    // The mouse mode the shapes last asked for (given back when an edit ends).
    int m_mode = 1;
    QMetaObject::Connection m_left;
    // Enter and Escape on the display itself (not only on the image) end a shape's edit.
    std::unique_ptr<QObject> m_keys;
};

} // namespace nxr
