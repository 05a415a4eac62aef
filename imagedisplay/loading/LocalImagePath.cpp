#include "imagedisplay/loading/LocalImagePath.h"

#include "frame/Globals.h"

#include <QStringList>

namespace nxr::LocalImagePath {

QString subfolder(const QString& controllerPath)
{
    qsizetype end = controllerPath.lastIndexOf(QLatin1Char('\\'));
    if (end < 0)
        end = controllerPath.indexOf(QLatin1Char(':'));
    return end < 0 ? QString() : controllerPath.left(end + 1);
}

QString forControllerPath(const QString& storageFolder, const QString& controllerPath)
{
    QString folder = Globals::normalizePath(subfolder(controllerPath));
    folder.remove(QLatin1Char(':'));
    folder.remove(QChar(0));
    QString path = storageFolder + QLatin1Char('/');
    for (const QString& piece : folder.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        if (!piece.trimmed().isEmpty())
            path += piece + QLatin1Char('/');
    }
    QString extension = Globals::imageExtension(controllerPath);
    if (extension.isEmpty())
        extension = QStringLiteral(".PNG");
    return path + QStringLiteral("image") + extension;
}

} // namespace nxr::LocalImagePath
