#include "views/ImageList.h"

#include "frame/Globals.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPixmap>

namespace nxr::views {
namespace {
constexpr qint64 kMaxPictureBytes = 32LL * 1024 * 1024;
}

void ImageList::add(const QString& path, const QString& key)
{
    const QFileInfo info(path);
    QImage image;
    if (info.isFile() && info.size() <= kMaxPictureBytes) {
        QImageReader reader(path);
        reader.setAutoTransform(true);
        image = reader.read();
    }
    if (image.isNull())
        throw Error{Step::Load, QStringLiteral("cannot read a picture from ") + path};
    add(QIcon(QPixmap::fromImage(image)), key);
}

void ImageList::add(const QIcon& icon, const QString& key)
{
    if (key.isEmpty())
        throw Error{Step::Add, QStringLiteral("Invalid key")};
    const QString stored = Globals::collectionKey(key);
    if (m_icons.contains(stored))
        throw Error{Step::Add, QStringLiteral("Key is not unique in collection")};
    m_icons.insert(stored, icon);
}

bool ImageList::contains(const QString& key) const
{
    return m_icons.contains(Globals::collectionKey(key));
}

QIcon ImageList::icon(const QString& key) const
{
    return m_icons.value(Globals::collectionKey(key));
}

} // namespace nxr::views
