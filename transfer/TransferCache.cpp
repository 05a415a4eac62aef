#include "transfer/TransferCache.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "transfer/ControllerPaths.h"

#include <QDir>

namespace nxr::TransferCache {

namespace {
QString& storedVersion()
{
    static QString version;
    return version;
}

void ensureFolder(const QString& folder)
{
    if (!QDir().mkpath(folder))
        throw Failure(QStringLiteral("Cannot create the cache folder ") + folder);
}
} // namespace

QString versionId()
{
    return storedVersion();
}

void setVersionId(const QString& value)
{
    storedVersion() = value.toUpper().trimmed();
}

QString folderFor(const QString& version)
{
    QString folder = Globals::storageFolder() + QLatin1Char('/');
    const QString name = VersionFolderName(version);
    if (!version.isEmpty() && !name.isEmpty())
        folder += name + QLatin1Char('/');
    return folder;
}

QString currentFolder()
{
    const QString folder = folderFor(storedVersion());
    ensureFolder(folder);
    return folder;
}

bool overwriteForCurrentVersion()
{
    if (storedVersion().isEmpty())
        return true;
    const QString folder = folderFor(storedVersion());
    QDir dir(folder);
    if (!dir.exists()) {
        ensureFolder(folder);
        return true;
    }
    return dir.entryList(QDir::Files | QDir::NoDotAndDotDot).isEmpty();
}

} // namespace nxr::TransferCache
