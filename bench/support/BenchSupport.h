#pragma once
// Timing helpers and test pictures shared by the benchmarks.

#include "imagedisplay/ViewMaths.h"

#include <QImage>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace nxr::bench {

// Processor time of this thread: the machine may be shared, and waiting for a core is not the
// code's cost.
struct ThreadClock
{
    using time_point = std::chrono::nanoseconds;
    static time_point now()
    {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
    }
};

inline double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// Wall-clock time of one call of `f`, in `Unit` (std::micro, std::milli).
template <typename Unit, typename F> double timeOnce(F&& f)
{
    const auto t0 = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double, Unit>(std::chrono::steady_clock::now() - t0).count();
}

// A camera-sized 2592 x 1944 picture with detail everywhere, 8-bit grey or RGB.
inline QImage makeCameraPattern(bool grey)
{
    QImage img(2592, 1944, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    for (int y = 0; y < img.height(); ++y) {
        if (grey) {
            uchar* line = img.scanLine(y);
            for (int x = 0; x < img.width(); ++x)
                line[x] = uchar((x * 7 + y * 3) ^ (x >> 3));
        } else {
            QRgb* line = reinterpret_cast<QRgb*>(img.scanLine(y));
            for (int x = 0; x < img.width(); ++x)
                line[x] = qRgb((x * 7) & 255, (y * 5) & 255, (x ^ y) & 255);
        }
    }
    return img;
}

// The pattern of each kind, made once.
inline const QImage& cameraPattern(bool grey)
{
    static const QImage greyImage = makeCameraPattern(true), rgbImage = makeCameraPattern(false);
    return grey ? greyImage : rgbImage;
}

// The image view's maths for `image` in a 1024 x 768 view at `zoom` %, scrolled to the middle.
inline void viewTheMiddle(ViewMaths& maths, QSize image, float zoom)
{
    maths.setUsableArea(QSize(1024, 768));
    maths.setImageSize(image);
    maths.setZoom(zoom);
    maths.setScrollPosition(maths.scrollMaximum() / 2);
}

} // namespace nxr::bench
