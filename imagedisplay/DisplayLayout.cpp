#include "imagedisplay/DisplayLayout.h"

#include <algorithm>

namespace nxr {

QSize DisplayLayout::minimumSize(const Input& in)
{
    return QSize(2 * in.margin + in.minimumImageWidth, in.labelHeight + in.toolbarHeight + in.margin);
}

DisplayLayout DisplayLayout::compute(const Input& in)
{
    const QSize min = minimumSize(in);
    const int w = std::max(in.size.width(), min.width());
    const int h = std::max(in.size.height(), min.height());
    const int inner = w - 2 * in.margin;
    DisplayLayout out;
    int y = in.margin;
    out.label = QRect(in.margin, y, inner, in.labelHeight);
    y += in.labelHeight;
    out.toolbar = QRect(in.margin, y, inner, in.toolbarHeight);
    y += in.toolbarHeight + in.gap;

    int bottom = h - in.margin;
    out.status = QRect(in.margin, bottom - in.statusHeight, inner, in.statusHeight);
    bottom -= in.statusHeight + in.gap;
    if (in.okCancelVisible) {
        out.okCancel = QRect(in.margin, bottom - in.okCancelHeight, inner, in.okCancelHeight);
        bottom -= in.okCancelHeight + in.gap;
    }
    out.imageFrame = QRect(in.margin, y, inner, std::max(0, bottom - y));
    return out;
}

} // namespace nxr
