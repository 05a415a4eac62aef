#include "transfer/ControllerPaths.h"

#include <QStringList>

namespace nxr {

QString FileNameOfPath(const QString& path)
{
    if (path.isEmpty())
        return QString();
    const qsizetype colon = path.indexOf(QLatin1Char(':'));
    const qsizetype slash = path.lastIndexOf(QLatin1Char('\\'));
    if (slash > colon)
        return path.mid(slash + 1);
    if (colon >= 0)
        return path.mid(colon + 1);
    return path;
}

QString VersionFolderName(const QString& version)
{
    QString name = version.trimmed().toUpper();
    name.remove(QLatin1Char('.'));
    name.remove(QLatin1Char('/'));
    return name;
}

QString HostFromServer(const QString& server)
{
    const qsizetype colon = server.indexOf(QLatin1Char(':'));
    return colon < 0 ? server : server.left(colon);
}

QString RemoteUrlPath(const QString& controllerPath)
{
    const QString name = FileNameOfPath(controllerPath);
    const QString directory = controllerPath.left(controllerPath.size() - name.size());
    if (directory.isEmpty())
        return QLatin1Char('/') + name;
    QString result = QStringLiteral("/");
    QString rest = directory;
    const qsizetype colon = directory.indexOf(QLatin1Char(':'));
    if (colon >= 0) {
        result = QLatin1Char('/') + directory.left(colon) + QLatin1Char('/');
        rest = directory.mid(colon + 1);
    }
    const QStringList pieces = rest.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    for (const QString& piece : pieces)
        result += piece + QLatin1Char('/');
    return result + name;
}

QString checkLocalName(const QString& name)
{
    if (name.isEmpty())
        return QStringLiteral("No local file name");
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("Invalid local file name (") + name + QLatin1Char(')');
    for (const QChar c : name) {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c.unicode() < 0x20 || c.unicode() == 0x7f)
            return QStringLiteral("Invalid local file name (") + name +
                   QStringLiteral("): it must be a plain name inside the cache folder");
    }
    return QString();
}

} // namespace nxr
