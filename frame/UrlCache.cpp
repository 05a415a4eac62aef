#include "frame/UrlCache.h"

#include "frame/PersistentCookieJar.h"

#include <QDir>
#include <QDirIterator>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkDiskCache>
#include <QStandardPaths>

namespace nxr {
namespace {

// The URL a cookie is listed under: "Cookie:" + user + "@" + domain + path.
QString cookieUrl(const QNetworkCookie& cookie)
{
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = QStringLiteral("user");
    QString domain = cookie.domain();
    if (domain.startsWith(QLatin1Char('.')))
        domain.remove(0, 1);
    return QStringLiteral("Cookie:") + user + QLatin1Char('@') + domain +
           (cookie.path().isEmpty() ? QStringLiteral("/") : cookie.path());
}

std::size_t recordSize(const UrlCache::Entry& entry)
{
    return UrlCache::kRecordHeaderSize + std::size_t(entry.sourceUrl.toUtf8().size()) + 1;
}

} // namespace

UrlCache& UrlCache::instance()
{
    static UrlCache cache;
    return cache;
}

UrlCache::UrlCache()
{
    setRoot(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
            QStringLiteral("/NexaroControls/urlcache"));
}

UrlCache::~UrlCache() = default;

void UrlCache::setRoot(const QString& folder)
{
    m_root = QDir::cleanPath(folder);
    QDir().mkpath(m_root);
    QFile::setPermissions(m_root, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    m_disk.reset();
    m_attached.clear();
    if (m_jar)
        m_retiredJars.push_back(std::move(m_jar));
    m_jar = std::make_unique<PersistentCookieJar>(cookieFile());
    m_open.clear();
}

QString UrlCache::root() const
{
    return m_root;
}
QString UrlCache::diskCacheFolder() const
{
    return m_root + QStringLiteral("/http");
}
QString UrlCache::cookieFile() const
{
    return m_root + QStringLiteral("/cookies.txt");
}

PersistentCookieJar* UrlCache::cookieJar()
{
    return m_jar.get();
}

void UrlCache::attachTo(QNetworkAccessManager* manager)
{
    auto* cache = new QNetworkDiskCache(manager);
    cache->setCacheDirectory(diskCacheFolder());
    manager->setCache(cache);
    m_attached.emplace_back(cache);
    // The jar is shared by every manager; it stays owned here.
    manager->setCookieJar(m_jar.get());
    m_jar->setParent(nullptr);
}

QNetworkDiskCache* UrlCache::diskCache()
{
    if (!m_disk) {
        m_disk = std::make_unique<QNetworkDiskCache>();
        m_disk->setCacheDirectory(diskCacheFolder());
    }
    return m_disk.get();
}

std::vector<UrlCache::Entry> UrlCache::collect()
{
    std::vector<Entry> entries;
    QNetworkDiskCache* disk = diskCache();
    QDirIterator it(diskCacheFolder(), {QStringLiteral("*.d")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QNetworkCacheMetaData meta = disk->fileMetaData(it.next());
        if (meta.isValid())
            entries.push_back(Entry{meta.url().toString(), kNormalCacheEntry});
    }
    m_jar->reload();
    for (const QNetworkCookie& cookie : m_jar->cookies())
        entries.push_back(Entry{cookieUrl(cookie), kNormalCacheEntry | kCookieCacheEntry});
    return entries;
}

std::vector<UrlCache::Entry> UrlCache::snapshot()
{
    return collect();
}

std::size_t UrlCache::firstEntrySize()
{
    const std::vector<Entry> entries = collect();
    return entries.empty() ? 0 : recordSize(entries.front());
}

std::size_t UrlCache::nextEntrySize(Handle handle) const
{
    const auto it = m_open.find(handle);
    if (it == m_open.end() || it->second.next >= it->second.entries.size())
        return 0;
    return recordSize(it->second.entries[it->second.next]);
}

UrlCache::Handle UrlCache::findFirstEntry(Entry* entry, int* error)
{
    Enumeration e{collect(), 0};
    if (e.entries.empty()) {
        *error = kErrorNoMoreItems;
        return 0;
    }
    *entry = e.entries[e.next++];
    const Handle handle = ++m_lastHandle;
    m_open.emplace(handle, std::move(e));
    *error = 0;
    return handle;
}

bool UrlCache::findNextEntry(Handle handle, Entry* entry, int* error)
{
    const auto it = m_open.find(handle);
    if (it == m_open.end()) {
        *error = kErrorInvalidHandle;
        return false;
    }
    if (it->second.next >= it->second.entries.size()) {
        *error = kErrorNoMoreItems;
        return false;
    }
    *entry = it->second.entries[it->second.next++];
    *error = 0;
    return true;
}

void UrlCache::findClose(Handle handle)
{
    m_open.erase(handle);
}

bool UrlCache::deleteEntry(const QString& sourceUrl)
{
    if (sourceUrl.startsWith(QLatin1String("Cookie:")))
        return false;
    const QUrl url(sourceUrl);
    bool removed = false;
    for (const QPointer<QNetworkDiskCache>& cache : m_attached) {
        if (cache && cache->cacheDirectory() == diskCache()->cacheDirectory())
            removed = cache->remove(url) || removed;
    }
    return diskCache()->remove(url) || removed;
}

} // namespace nxr
