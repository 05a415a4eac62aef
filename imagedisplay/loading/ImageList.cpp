#include "imagedisplay/loading/ImageList.h"

namespace nxr {

void ImageList::insert(const QString& key, const QImage& image)
{
    if (image.isNull())
        m_images.remove(key);
    else
        m_images.insert(key, image);
}

} // namespace nxr
