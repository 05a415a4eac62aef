#pragma once
// The numbers shared by the mask tool palette, the mask editor and the page: tools, tool sizes,
// palette commands and the kind of mask being edited.

enum KSEMaskTool {
    KSEMaskTool_None = -1,
    KSEMaskTool_Freehand = 0,
    KSEMaskTool_JoinedLine = 1,
    KSEMaskTool_Ellipse = 2,
    KSEMaskTool_Rectangle = 3,
    KSEMaskTool_Fill = 4,
};

enum KSEMaskToolSize {
    KSEMaskToolSize_None = -1,
    KSEMaskToolSize_Small = 0,
    KSEMaskToolSize_Medium = 1,
    KSEMaskToolSize_Large = 2,
};

enum KSEMaskCommand {
    KSEMaskCommand_None = -1,
    KSEMaskCommand_MaskAll = 0,
    KSEMaskCommand_MaskNone = 1,
    KSEMaskCommand_Undo = 2,
    KSEMaskCommand_Help = 3,
};

enum KSEEditMaskMode {
    KSEEditMask_None = -1,
    KSEEditMask_DontCare = 0,
    KSEEditMask_ExtraCare = 1,
};
