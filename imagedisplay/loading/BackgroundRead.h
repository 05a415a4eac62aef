#pragma once
// Reads a local image file (ImageFile::read) on a worker thread while the calling thread waits in
// a nested event loop, as a transfer waits: timers, paints and input go on meanwhile, and a
// LoadImage re-entered from them follows the running one.
//
// When an object of the calling chain (CallEntry) is destroyed during the wait, the wait ends at
// once and CallAbandoned is thrown: the caller touches nothing afterwards, and the worker's image
// is dropped when it finishes. A failed read rethrows, on the calling thread, what
// ImageFile::read threw.

#include "frame/Export.h"

#include <QImage>
#include <QString>

namespace nxr {

class NXR_EXPORT BackgroundRead
{
public:
    static QImage read(const QString& localPath);
};

} // namespace nxr
