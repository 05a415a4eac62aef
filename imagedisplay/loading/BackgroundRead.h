#pragma once
// Reads a local image file (ImageFile::read) on a worker thread while the calling thread waits in
// a nested event loop, as a transfer waits: timers, paints and input go on meanwhile, and a
// LoadImage re-entered from them follows the running one.
//
// When an object of the calling chain (CallEntry) is destroyed during the wait, the wait ends at
// once and CallAbandoned is thrown: the caller touches nothing afterwards, and the worker's image
// is dropped when it finishes. A failed read rethrows, on the calling thread, what
// ImageFile::read threw.
//
// The worker also makes the first reduction levels the view will draw the image from
// (RasterRenderer::reductions), so that the first paint of a large image need not, and for a
// view that shows grey (colour mode off) the grey image it will show.

#include "frame/Export.h"

#include <QImage>
#include <QString>

#include <vector>

namespace nxr {

class NXR_EXPORT BackgroundRead
{
public:
    struct Result
    {
        QImage image;                   // as read
        QImage shown;                   // the image the view shows: `image`, or its grey copy
        std::vector<QImage> reductions; // the first `reductions` levels of `shown`, fewer for a small image
    };
    static Result read(const QString& localPath, int reductions = 0, bool grey = false);
};

} // namespace nxr
