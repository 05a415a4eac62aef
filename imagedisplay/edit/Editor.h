#pragma once
// One kind of editing on the image display (a mask, a movable window, cursor, line, line pair).
// The edit session keeps at most one editor active; see EditSession.

#include "frame/Export.h"

namespace nxr {

class Interaction;

// What is being edited. The display's "Editing..." keys and the OK/Cancel bar follow it.
enum class EditKind { None, Mask, Window, Cursor, Line, LinePair };

class NXR_EXPORT Editor
{
public:
    virtual ~Editor() = default;

    // The mouse and key handling while this editor is active; null for none.
    virtual Interaction* interaction() { return nullptr; }
    // Ends the edit, kept (accepted) or undone; the editor raises its own exit event
    // (OnExitMaskEditMode, ...). Called exactly once per edit, after the session has already
    // left the edit, so the editor may begin another one from its exit event.
    virtual void finish(bool accepted) = 0;
};

} // namespace nxr
