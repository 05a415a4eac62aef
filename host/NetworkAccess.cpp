#include "host/NetworkAccess.h"

#include "frame/UrlCache.h"

#include <QNetworkReply>

#include <memory>

namespace nxr {

// Counts its requests in the factory until each reply has finished (or is gone).
class CountingNetworkAccessManager : public QNetworkAccessManager
{
public:
    CountingNetworkAccessManager(NetworkAccess* factory, QObject* parent)
        : QNetworkAccessManager(parent), m_factory(factory)
    {}

protected:
    QNetworkReply* createRequest(Operation op, const QNetworkRequest& request,
                                 QIODevice* outgoingData) override
    {
        QNetworkReply* reply = QNetworkAccessManager::createRequest(op, request, outgoingData);
        if (reply && !reply->isFinished()) {
            ++m_factory->m_inFlight;
            auto counted = std::make_shared<bool>(true);
            NetworkAccess* factory = m_factory;
            auto done = [factory, counted] {
                if (*counted) {
                    *counted = false;
                    --factory->m_inFlight;
                }
            };
            QObject::connect(reply, &QNetworkReply::finished, reply, done);
            QObject::connect(reply, &QObject::destroyed, done);
        }
        return reply;
    }

private:
    NetworkAccess* m_factory;
};

QNetworkAccessManager* NetworkAccess::create(QObject* parent)
{
    auto* manager = new CountingNetworkAccessManager(this, parent);
    attachCacheAndCookies(manager);
    return manager;
}

void NetworkAccess::attachCacheAndCookies(QNetworkAccessManager* manager)
{
    UrlCache::instance().attachTo(manager);
}

} // namespace nxr
