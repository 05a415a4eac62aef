#include "HeapMeter.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <malloc.h>

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
void* __libc_memalign(size_t, size_t);
}

namespace {

std::atomic<std::size_t> g_inUse{0};
std::atomic<std::size_t> g_peak{0};

void added(void* p)
{
    if (!p)
        return;
    const std::size_t now = g_inUse.fetch_add(malloc_usable_size(p)) + malloc_usable_size(p);
    std::size_t peak = g_peak.load();
    while (now > peak && !g_peak.compare_exchange_weak(peak, now)) {
    }
}

void removed(void* p)
{
    if (p)
        g_inUse.fetch_sub(malloc_usable_size(p));
}

} // namespace

extern "C" {

void* malloc(size_t n)
{
    void* p = __libc_malloc(n);
    added(p);
    return p;
}

void* calloc(size_t n, size_t size)
{
    void* p = __libc_calloc(n, size);
    added(p);
    return p;
}

void* realloc(void* old, size_t n)
{
    removed(old);
    void* p = __libc_realloc(old, n);
    if (p)
        added(p);
    else if (old && n != 0)
        added(old); // the old block stays
    return p;
}

void free(void* p)
{
    removed(p);
    __libc_free(p);
}

void* memalign(size_t alignment, size_t n)
{
    void* p = __libc_memalign(alignment, n);
    added(p);
    return p;
}

void* aligned_alloc(size_t alignment, size_t n)
{
    return memalign(alignment, n);
}

int posix_memalign(void** out, size_t alignment, size_t n)
{
    void* p = memalign(alignment, n);
    if (!p)
        return ENOMEM;
    *out = p;
    return 0;
}

void* valloc(size_t n)
{
    return memalign(4096, n);
}

} // extern "C"

namespace nxr::bench::HeapMeter {

std::size_t inUse()
{
    return g_inUse.load();
}

std::size_t peak()
{
    return g_peak.load();
}

void resetPeak()
{
    g_peak.store(g_inUse.load());
}

} // namespace nxr::bench::HeapMeter
