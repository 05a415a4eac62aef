#pragma once
// Pixel checks shared by the mask tests.

#include <QImage>
#include <QRect>

namespace nxr::testing {

// Every pixel that differs between before and after lies in `rect`.
inline bool covers(const QImage& before, const QImage& after, const QRect& rect)
{
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (before.pixel(x, y) != after.pixel(x, y) && !rect.contains(x, y))
                return false;
    return true;
}

} // namespace nxr::testing
