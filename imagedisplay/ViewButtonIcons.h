#pragma once
// The tool bar's button images, drawn in code so that they stay sharp at every size.

#include <QIcon>

namespace nxr {

class ViewButtonIcons
{
public:
    // The image of a tool-bar button (an NXEViewButtons value); a null icon for buttons without one.
    static QIcon icon(int button);
};

} // namespace nxr
