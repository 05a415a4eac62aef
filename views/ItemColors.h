#pragma once
// Text colours of nodes and items as the pages give them: 0x00BBGGRR, or a system colour
// (high bit set, the low byte naming it: 0x80000008 is the window's text colour).

#include "frame/Export.h"

#include <QVariant>

namespace nxr::views {

// The brush for Qt::ForegroundRole; an invalid variant for the window's text colour (and for
// system colours without a counterpart), so the view's palette draws it and the selected item
// keeps the highlighted-text colour.
NXR_EXPORT QVariant textBrush(qint32 color);

} // namespace nxr::views
