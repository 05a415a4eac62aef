#pragma once
// The image display's mode flags, shared by its collaborators: which editing is active, live
// mode, colour mode. The subsystems that own an editing or live mode set their flags here.

namespace nxr {

struct DisplayState
{
    // -1 while no mask is edited; otherwise the mask edit mode.
    int editMaskMode = -1;
    bool editingWindow = false;
    bool editingCursor = false;
    bool editingLine = false;
    bool editingLinePair = false;

    bool liveModeOn = false;
    bool liveModeBusy = false;
    bool abortRequested = false;

    bool colorMode = true;
    bool laserButtonEnabled = true;

    bool editingMask() const { return editMaskMode != -1; }
    bool editingMovable() const { return editingWindow || editingCursor || editingLine || editingLinePair; }
    bool editing() const { return editingMask() || editingMovable(); }
};

} // namespace nxr
