#include "frame/NXRCacheControl.h"

#include "frame/ClassRegistry.h"
#include "frame/Trace.h"
#include "frame/UrlCache.h"

NXR_REGISTER_CLASS(NXRCacheControl)

using nxr::UrlCache;

NXRCacheControl::NXRCacheControl(QObject* parent) : ScriptableObject(parent) {}

void NXRCacheControl::Delete_IECache()
{
    NXR_TRACE(QStringLiteral("NXRCacheControl"), QStringLiteral("Delete_IECache"), QStringLiteral("Entered"));
    m_steps = 0;
    m_deleted = 0;
    m_handle = 0;
    m_status = step(true);
    while (m_status == 0 && m_handle != 0)
        m_status = step(false);
    NXR_TRACE(QStringLiteral("NXRCacheControl"), QStringLiteral("Delete_IECache"),
              QStringLiteral("Done, status = ") + QString::number(m_status));
}

// One entry of the walk: learn the record's size, read the record, delete it unless it is a cookie.
int NXRCacheControl::step(bool first)
{
    UrlCache& cache = UrlCache::instance();
    ++m_steps;

    const std::size_t size = first ? cache.firstEntrySize() : cache.nextEntrySize(m_handle);
    if (size == 0) {
        if (m_handle != 0)
            cache.findClose(m_handle);
        m_handle = 0;
        return -1;
    }

    UrlCache::Entry entry;
    int error = 0;
    bool ok = false;
    if (first) {
        m_handle = cache.findFirstEntry(&entry, &error);
        ok = m_handle != 0;
    } else {
        ok = cache.findNextEntry(m_handle, &entry, &error);
    }
    if (m_handle == 0 || !ok) {
        if (m_handle != 0)
            cache.findClose(m_handle);
        m_handle = 0;
        return error;
    }

    if ((entry.entryType & UrlCache::kCookieCacheEntry) == 0 && cache.deleteEntry(entry.sourceUrl))
        ++m_deleted;
    return 0;
}
