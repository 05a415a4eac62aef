#pragma once
// Where the image display's parts go for a given control size: top to bottom the override
// label, the tool bar, the image frame, the OK/Cancel bar (only while editing) and the status
// bar, inside a margin. Pure geometry, no widgets.

#include "frame/Export.h"

#include <QRect>
#include <QSize>

namespace nxr {

struct NXR_EXPORT DisplayLayout
{
    struct Input
    {
        QSize size;
        int margin = 1;              // 15 twips
        int minimumImageWidth = 293; // 4400 twips
        int labelHeight = 0;
        int toolbarHeight = 0;
        int okCancelHeight = 0;
        bool okCancelVisible = false;
        int statusHeight = 0;
        int gap = 2;
    };
    QRect label;
    QRect toolbar;
    QRect imageFrame;
    QRect okCancel;
    QRect status;

    // Height: the label and the tool bar plus the margin; width: the margins and 4400 twips.
    static QSize minimumSize(const Input& in);
    static DisplayLayout compute(const Input& in);
};

} // namespace nxr
