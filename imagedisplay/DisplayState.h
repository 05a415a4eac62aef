#pragma once
// The image display's mode flags, shared by its collaborators: what is being edited, live mode,
// colour mode. The edit session alone writes the edit; live mode owns the live flags.

#include "imagedisplay/edit/Editor.h"

namespace nxr {

struct DisplayState
{
    // What is being edited, and for a mask its edit mode (-1 while no mask is edited).
    EditKind edit = EditKind::None;
    int editMaskMode = -1;

    bool liveModeOn = false;
    bool liveModeBusy = false;
    bool abortRequested = false;

    bool colorMode = true;
    bool laserButtonEnabled = true;

    bool editingMask() const { return edit == EditKind::Mask; }
    bool editing() const { return edit != EditKind::None; }
};

} // namespace nxr
