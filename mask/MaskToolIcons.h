#pragma once
// The pictures of the mask tool palette, drawn rather than loaded.

#include <QIcon>

namespace nxr::MaskToolIcons {

// A KSEMaskTool value 0..4 and a KSEMaskToolSize value 0..2; a null icon for other numbers.
QIcon tool(int tool);
QIcon size(int size);

} // namespace nxr::MaskToolIcons
