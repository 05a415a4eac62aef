#pragma once
// Every network access of the page host (the page files of a remote page and the script's
// XMLHttpRequest) goes through managers made here, so that all of them share the library's
// URL cache and cookie jar, and the host can tell whether requests are still under way.

#include <QNetworkAccessManager>

#include <atomic>

namespace nxr {

class NetworkAccess
{
public:
    NetworkAccess() = default;
    NetworkAccess(const NetworkAccess&) = delete;
    NetworkAccess& operator=(const NetworkAccess&) = delete;

    // A new manager with the URL cache and the cookie jar attached. The factory must outlive it.
    QNetworkAccessManager* create(QObject* parent);

    // Requests started through managers of this factory and not finished yet.
    int requestsInFlight() const { return m_inFlight.load(); }

    // The one place where a manager gets the library's URL cache and persistent cookie jar.
    static void attachCacheAndCookies(QNetworkAccessManager* manager);

private:
    friend class CountingNetworkAccessManager;
    std::atomic<int> m_inFlight{0};
};

} // namespace nxr
