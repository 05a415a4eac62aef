#include "transfer/TransferCache.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "transfer/ControllerPaths.h"

#include <QDir>
#include <QDirIterator>

#include <atomic>

namespace nxr::TransferCache {

namespace {
QString& storedVersion()
{
    static QString version;
    return version;
}

std::atomic<qint64> g_quota{qint64(1) << 30};

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

qint64 quotaBytes()
{
    return g_quota;
}

void setQuotaBytes(qint64 bytes)
{
    g_quota = qMax<qint64>(0, bytes);
}

void requireRoom()
{
    const QString folder = folderFor(storedVersion());
    qint64 used = 0;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    while (files.hasNext()) {
        files.next();
        used += files.fileInfo().size();
    }
    if (used >= g_quota)
        throw Failure(
            QStringLiteral("The local cache is full (%1 MiB)").arg(double(g_quota) / (1 << 20), 0, 'f', 1));
}

} // namespace nxr::TransferCache
