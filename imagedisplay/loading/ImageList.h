#pragma once
// The display's keyed list of bitmaps: the shown image under "current", the masks under
// "dontcare_mask" and "emphasis_mask".

#include "frame/Export.h"

#include <QImage>
#include <QMap>
#include <QString>

namespace nxr {

class NXR_EXPORT ImageList
{
public:
    static inline const QString kCurrent = QStringLiteral("current");
    static inline const QString kDontCareMask = QStringLiteral("dontcare_mask");
    static inline const QString kEmphasisMask = QStringLiteral("emphasis_mask");

    // Files `image` under `key`, replacing what was there. A null image removes the key.
    void insert(const QString& key, const QImage& image);
    void remove(const QString& key) { m_images.remove(key); }
    void clear() { m_images.clear(); }

    bool contains(const QString& key) const { return m_images.contains(key); }
    // The image under `key`; a null image when there is none.
    QImage image(const QString& key) const { return m_images.value(key); }
    int count() const { return int(m_images.size()); }

private:
    QMap<QString, QImage> m_images;
};

} // namespace nxr
