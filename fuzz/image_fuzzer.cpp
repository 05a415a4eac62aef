// Image file decoding over arbitrary bytes: it either refuses the data with a reason or returns
// an image in one of the four formats the display works with, and never reads outside the data.

#include "FuzzCheck.h"
#include "frame/Conversions.h"
#include "imagedisplay/loading/ImageDecoding.h"

#include <QImageReader>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Header fields can claim huge images; keep each run small and quick.
    QImageReader::setAllocationLimit(32);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // No copy: the fuzzer's buffer is exactly `size` bytes, so the sanitizer sees any read past it.
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    try {
        const QImage image = nxr::decodeImage(bytes);
        FUZZ_CHECK(!image.isNull(), QString());
        const QImage::Format f = image.format();
        FUZZ_CHECK(f == QImage::Format_Grayscale8 || f == QImage::Format_Grayscale16 ||
                       f == QImage::Format_RGB32 || f == QImage::Format_ARGB32,
                   QString::number(int(f)));
    } catch (const nxr::Failure& failure) {
        FUZZ_CHECK(!failure.description().isEmpty(), QString());
    }
    return 0;
}
