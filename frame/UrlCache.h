#pragma once
// The library's URL cache: an HTTP disk cache for everything the page host fetches by URL,
// beside a persistent cookie jar kept in its own file. Both live under one root folder
// (by default the user's cache folder + "/NexaroControls/urlcache").
//
// The cache is walked one entry at a time through an enumeration handle, the way a cache
// cleaner expects: a size query for the next record, then the record itself. Cookies show up
// in the walk as entries of type kCookieCacheEntry and are never removed by deleteEntry().

#include "frame/Export.h"

#include <QNetworkDiskCache>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class QNetworkAccessManager;

namespace nxr {

class PersistentCookieJar;

class NXR_EXPORT UrlCache
{
public:
    static constexpr std::uint32_t kNormalCacheEntry = 0x00000001;
    static constexpr std::uint32_t kCookieCacheEntry = 0x00100000;
    static constexpr int kErrorNoMoreItems = 259;
    static constexpr int kErrorInvalidHandle = 6;
    // The fixed part of an entry record; the source URL follows it.
    static constexpr std::size_t kRecordHeaderSize = 84;

    struct Entry
    {
        QString sourceUrl;
        std::uint32_t entryType = 0;
    };
    using Handle = std::uint64_t; // 0: no handle

    static UrlCache& instance();
    ~UrlCache();

    // Moves the cache to another root folder (tests, hosts with a cache of their own). Managers
    // attached before keep the old folder.
    void setRoot(const QString& folder);
    QString root() const;
    QString diskCacheFolder() const;
    QString cookieFile() const;

    // Gives the manager a disk cache on this cache's folder and the shared cookie jar.
    void attachTo(QNetworkAccessManager* manager);
    PersistentCookieJar* cookieJar();

    // --- one entry at a time ---
    // Size of the first record (opens nothing); 0 when the cache is empty.
    std::size_t firstEntrySize();
    // Size of the next record of an open enumeration; 0 when it has no more or the handle is bad.
    std::size_t nextEntrySize(Handle handle) const;
    // Opens an enumeration and returns its first record; 0 and *error = 259 when there is none.
    Handle findFirstEntry(Entry* entry, int* error);
    bool findNextEntry(Handle handle, Entry* entry, int* error);
    void findClose(Handle handle);
    // Deletes one cached URL; cookies are not entries that can be deleted here.
    bool deleteEntry(const QString& sourceUrl);

    // Every entry now in the cache (cookies included), for tests and tools.
    std::vector<Entry> snapshot();

private:
    UrlCache();
    std::vector<Entry> collect();
    QNetworkDiskCache* diskCache();

    QString m_root;
    std::unique_ptr<PersistentCookieJar> m_jar;
    // Jars of earlier roots stay alive for managers still holding them.
    std::vector<std::unique_ptr<PersistentCookieJar>> m_retiredJars;
    std::unique_ptr<QNetworkDiskCache> m_disk;
    // The caches handed to managers: each keeps its last entry in memory, so a deletion must
    // reach all of them.
    std::vector<QPointer<QNetworkDiskCache>> m_attached;
    struct Enumeration
    {
        std::vector<Entry> entries;
        std::size_t next = 0;
    };
    std::map<Handle, Enumeration> m_open;
    Handle m_lastHandle = 0;
};

} // namespace nxr
