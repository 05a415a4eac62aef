#pragma once
// A cookie jar that keeps its cookies in a file across runs. Session cookies are kept too,
// until the jar is cleared; expired cookies are dropped on load and save.

#include "frame/Export.h"

#include <QNetworkCookie>
#include <QNetworkCookieJar>

namespace nxr {

class NXR_EXPORT PersistentCookieJar : public QNetworkCookieJar
{
    Q_OBJECT

public:
    explicit PersistentCookieJar(QString filePath, QObject* parent = nullptr);

    bool setCookiesFromUrl(const QList<QNetworkCookie>& cookieList, const QUrl& url) override;
    bool insertCookie(const QNetworkCookie& cookie) override;
    bool updateCookie(const QNetworkCookie& cookie) override;
    bool deleteCookie(const QNetworkCookie& cookie) override;

    QList<QNetworkCookie> cookies() const { return allCookies(); }
    void reload();

private:
    void save() const;
    QString m_filePath;
};

} // namespace nxr
