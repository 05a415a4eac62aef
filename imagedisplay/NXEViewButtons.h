#pragma once
// The buttons of the image display's tool bar. The number is the button's identity in every
// message between the tool bar, the display and the page.

#include "frame/Export.h"

#include <QString>

enum NXEViewButtons {
    vvb_ContinuousAcquire = 0,
    vvb_Acquire = 1,
    vvb_MouseModePointer = 2,
    vvb_MouseModePan = 3,
    vvb_MouseModeZoomIn = 4,
    vvb_MouseModeZoomOut = 5,
    vvb_FitImage = 6,
    vvb_DefaultZoom = 7,
    vvb_PixelGrid = 8,
    vvb_SubpixelGrid = 9,
    vvb_ChangeSize = 10,
    vvb_CrosshairOn = 11,
    vvb_CrosshairOff = 12,
    vvb_WindowReset = 13,
    vvb_Accept = 14,
    vvb_Cancel = 15,
    vvb_Open = 16,
    vvb_Save = 17,
    vvb_LaserOn = 18,
    vvb_LaserOff = 19,
};

namespace nxr {

// The name a button is known by on the page ("LiveMode", "Snap", ...); "" for buttons 8 and 9
// and for numbers outside the enumeration.
NXR_EXPORT QString viewButtonName(int button);

} // namespace nxr
