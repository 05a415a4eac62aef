#include "imagedisplay/NXEViewButtons.h"

#include <array>

namespace nxr {

QString viewButtonName(int button)
{
    static const std::array<const char*, 20> names = {"LiveMode",
                                                      "Snap",
                                                      "MousePointer",
                                                      "MousePan",
                                                      "MouseZoomIn",
                                                      "MouseZoomOut",
                                                      "ZoomFitImage",
                                                      "ZoomDefault",
                                                      "",
                                                      "",
                                                      "ChangeSize",
                                                      "CrosshairOn",
                                                      "CrosshairOff",
                                                      "WindowReset",
                                                      "Accept",
                                                      "Cancel",
                                                      "Open",
                                                      "Save",
                                                      "LaserOn",
                                                      "LaserOff"};
    if (button < 0 || button >= int(names.size()))
        return QString();
    return QString::fromLatin1(names[size_t(button)]);
}

} // namespace nxr
