#pragma once
// Widget settings the tree and list views share.

#include "frame/Conversions.h"

#include <QFont>
#include <QWidget>

namespace nxr::views {

// SetFont: the family and point size; throws Failure for a size below 1.
inline void applyFont(QWidget& widget, const QString& family, int pointSize)
{
    if (pointSize <= 0)
        throw Failure(QStringLiteral("Invalid property value"));
    QFont f = widget.font();
    f.setFamily(family);
    f.setPointSize(pointSize);
    widget.setFont(f);
}

// HourglassCursor: the wait cursor over the widget, or its own cursor again.
inline void applyWaitCursor(QWidget& widget, bool wait)
{
    if (wait)
        widget.setCursor(Qt::WaitCursor);
    else
        widget.unsetCursor();
}

} // namespace nxr::views
