#pragma once
// The mouse pointers of the movable-shape editing: standard pointer numbers to Qt cursors, and
// the control's own picture for turning a window (pointer 99).

#include "frame/Export.h"

#include <QCursor>
#include <QPixmap>

namespace nxr {

// 0 arrow, 5 size all, 6 north-east/south-west, 7 north-south, 8 north-west/south-east,
// 9 west-east; 99 gives Qt::BitmapCursor (use cursorForPointer for its picture). Any other
// number is the arrow.
NXR_EXPORT Qt::CursorShape cursorShapeForPointer(int pointer);
// The cursor for a pointer number; 99 is the turning arrow of rotatePointerPicture(). Needs a
// running GUI application.
NXR_EXPORT QCursor cursorForPointer(int pointer);
// A 32 x 32 picture: a three-quarter circle with an arrow head, black with a white outline on a
// transparent background, hot spot at its centre.
NXR_EXPORT QPixmap rotatePointerPicture();

} // namespace nxr
