#include "plot3d/SavePath.h"

#include "frame/Conversions.h"

#include <QDir>
#include <QFileInfo>

namespace nxr::plot3d {

QString resolveImagePath(const QString& storageFolder, const QString& requested)
{
    if (requested.trimmed().isEmpty())
        throw Failure(QStringLiteral("no file name given"));
    const QString root = QFileInfo(storageFolder).canonicalFilePath();
    if (root.isEmpty())
        throw Failure(QStringLiteral("the storage folder does not exist"));
    QString path = QDir::fromNativeSeparators(requested);
    if (QDir::isRelativePath(path))
        path = root + QLatin1Char('/') + path;
    path = QDir::cleanPath(path);
    const QString outside = QStringLiteral("the path lies outside the storage folder: ") + requested;
    if (!path.startsWith(root + QLatin1Char('/')))
        throw Failure(outside);
    if (!path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive))
        throw Failure(QStringLiteral("only .png files can be written: ") + requested);

    const QFileInfo target(path);
    // A link inside the storage folder must not lead the file out of it: the nearest existing
    // folder is checked before anything is created below it.
    QString existing = target.absolutePath();
    while (!QFileInfo::exists(existing))
        existing = QFileInfo(existing).absolutePath();
    const QString real = QFileInfo(existing).canonicalFilePath();
    if (real != root && !real.startsWith(root + QLatin1Char('/')))
        throw Failure(outside);
    if (!QDir().mkpath(target.absolutePath()))
        throw Failure(QStringLiteral("cannot create the folder of ") + requested);
    const QString folder = QFileInfo(target.absolutePath()).canonicalFilePath();
    if (folder != root && !folder.startsWith(root + QLatin1Char('/')))
        throw Failure(outside);
    if (target.isSymLink() || target.isDir())
        throw Failure(QStringLiteral("not a plain file: ") + requested);
    return folder + QLatin1Char('/') + target.fileName();
}

} // namespace nxr::plot3d
