// The URL cache the page host fetches through, and the cache cleaner that empties it.

#include "frame/NXRCacheControl.h"
#include "frame/PersistentCookieJar.h"
#include "frame/UrlCache.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using nxr::UrlCache;

namespace {

// A tiny HTTP server: every GET is answered with a cacheable body named after its path; the
// path "/login" also sets a persistent cookie.
class TinyHttpServer : public QTcpServer
{
public:
    TinyHttpServer()
    {
        listen(QHostAddress::LocalHost, 0);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QString url(const QString& path) const
    {
        return QString("http://127.0.0.1:%1%2").arg(serverPort()).arg(path);
    }
    int requests = 0;

private:
    void answer(QTcpSocket* socket)
    {
        m_buffer[socket] += socket->readAll();
        const QByteArray request = m_buffer[socket];
        if (!request.contains("\r\n\r\n"))
            return;
        m_buffer.remove(socket);
        ++requests;
        const QByteArray path = request.split(' ').value(1);
        const QByteArray body = "body of " + path;
        QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nCache-Control: max-age=3600\r\n"
                          "Content-Length: " +
                          QByteArray::number(body.size()) + "\r\n";
        if (path == "/login")
            head += "Set-Cookie: session=abc123; Path=/; Max-Age=86400\r\n";
        socket->write(head + "\r\n" + body);
    }
    QHash<QTcpSocket*, QByteArray> m_buffer;
};

QByteArray fetch(QNetworkAccessManager& manager, const QString& url)
{
    QNetworkRequest request{QUrl(url)};
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    QNetworkReply* reply = manager.get(request);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    loop.exec();
    const QByteArray body = reply->readAll();
    reply->deleteLater();
    return body;
}

int countCookies(const std::vector<UrlCache::Entry>& entries)
{
    int n = 0;
    for (const auto& e : entries)
        n += (e.entryType & UrlCache::kCookieCacheEntry) ? 1 : 0;
    return n;
}

class UrlCacheTest : public ::testing::Test
{
protected:
    void SetUp() override { UrlCache::instance().setRoot(m_dir.path()); }
    QTemporaryDir m_dir;
};

} // namespace

TEST_F(UrlCacheTest, FetchedPagesAreCachedAndClearedButCookiesStay)
{
    TinyHttpServer server;
    QNetworkAccessManager manager;
    UrlCache::instance().attachTo(&manager);

    EXPECT_EQ(fetch(manager, server.url("/login")), "body of /login");
    EXPECT_EQ(fetch(manager, server.url("/page.js")), "body of /page.js");
    EXPECT_EQ(fetch(manager, server.url("/image.png")), "body of /image.png");
    EXPECT_EQ(server.requests, 3);
    EXPECT_EQ(fetch(manager, server.url("/page.js")), "body of /page.js");
    EXPECT_EQ(server.requests, 3) << "a cached page is served from the cache";

    const auto before = UrlCache::instance().snapshot();
    EXPECT_EQ(before.size(), 4u);
    EXPECT_EQ(countCookies(before), 1);

    NXRCacheControl control;
    control.Delete_IECache();
    EXPECT_EQ(control.lastDeleted(), 3);
    EXPECT_EQ(control.lastSteps(), 5); // four entries, then the step that finds nothing more
    const auto after = UrlCache::instance().snapshot();
    ASSERT_EQ(after.size(), 1u);
    EXPECT_TRUE(after.front().sourceUrl.startsWith("Cookie:"));
    EXPECT_TRUE(after.front().sourceUrl.endsWith("@127.0.0.1/"));

    EXPECT_EQ(fetch(manager, server.url("/page.js")), "body of /page.js");
    EXPECT_EQ(server.requests, 4) << "after clearing, the page is fetched again";

    // The cookie outlives the process: a fresh jar on the same file still has it.
    nxr::PersistentCookieJar reopened(UrlCache::instance().cookieFile());
    ASSERT_EQ(reopened.cookies().size(), 1);
    EXPECT_EQ(reopened.cookies().front().value(), "abc123");
}

TEST_F(UrlCacheTest, EmptyCacheOrOnlyCookiesDeleteNothing)
{
    NXRCacheControl empty;
    empty.Delete_IECache(); // one step finds nothing
    EXPECT_EQ(empty.lastSteps(), 1);
    EXPECT_TRUE(empty.lastStatus() == -1 || empty.lastStatus() == UrlCache::kErrorNoMoreItems);
    EXPECT_EQ(empty.lastDeleted(), 0);

    auto* jar = UrlCache::instance().cookieJar();
    QNetworkCookie a("a", "1"), b("b", "2");
    a.setDomain("robot.local");
    b.setDomain("cell.local");
    a.setExpirationDate(QDateTime::currentDateTimeUtc().addDays(1));
    ASSERT_TRUE(jar->insertCookie(a));
    ASSERT_TRUE(jar->insertCookie(b));

    NXRCacheControl control;
    control.Delete_IECache();
    EXPECT_EQ(control.lastDeleted(), 0);
    EXPECT_EQ(control.lastSteps(), 3);
    EXPECT_EQ(countCookies(UrlCache::instance().snapshot()), 2);
}

TEST_F(UrlCacheTest, EnumerationWalksOneEntryAtATime)
{
    auto* jar = UrlCache::instance().cookieJar();
    QNetworkCookie c("k", "v");
    c.setDomain("robot.local");
    jar->insertCookie(c);

    UrlCache& cache = UrlCache::instance();
    ASSERT_GT(cache.firstEntrySize(), UrlCache::kRecordHeaderSize);
    UrlCache::Entry entry;
    int error = -7;
    const UrlCache::Handle handle = cache.findFirstEntry(&entry, &error);
    ASSERT_NE(handle, 0u);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(cache.nextEntrySize(handle), 0u);
    EXPECT_FALSE(cache.findNextEntry(handle, &entry, &error));
    EXPECT_EQ(error, UrlCache::kErrorNoMoreItems);
    cache.findClose(handle);
    EXPECT_FALSE(cache.findNextEntry(handle, &entry, &error));
    EXPECT_EQ(error, UrlCache::kErrorInvalidHandle);
    EXPECT_FALSE(cache.deleteEntry(entry.sourceUrl)) << "a cookie cannot be deleted as a cache entry";
}
