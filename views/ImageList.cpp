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

namespace {
template <typename Source> QString addOrDescribe(ImageList& list, const Source& source, const QString& key)
{
    try {
        list.add(source, key);
        return QString();
    } catch (const ImageList::Error& e) {
        return (e.step == ImageList::Step::Load ? QStringLiteral("Error in LoadPicture: ")
                                                : QStringLiteral("Error adding ListImage: ")) +
               e.description;
    }
}
} // namespace

QString ImageList::tryAdd(const QString& path, const QString& key)
{
    return addOrDescribe(*this, path, key);
}

QString ImageList::tryAdd(const QIcon& icon, const QString& key)
{
    return addOrDescribe(*this, icon, key);
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
