#include "frame/PersistentCookieJar.h"

#include "frame/Trace.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QNetworkCookie>
#include <QSaveFile>

namespace nxr {

PersistentCookieJar::PersistentCookieJar(QString filePath, QObject* parent)
    : QNetworkCookieJar(parent), m_filePath(std::move(filePath))
{
    reload();
}

void PersistentCookieJar::reload()
{
    QList<QNetworkCookie> loaded;
    QFile file(m_filePath);
    if (file.open(QIODevice::ReadOnly)) {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        while (!file.atEnd()) {
            const QByteArray line = file.readLine().trimmed();
            if (line.isEmpty())
                continue;
            for (const QNetworkCookie& cookie : QNetworkCookie::parseCookies(line)) {
                if (cookie.isSessionCookie() || cookie.expirationDate() > now)
                    loaded << cookie;
            }
        }
    }
    setAllCookies(loaded);
}

void PersistentCookieJar::save() const
{
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QSaveFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly)) {
        errorTrace(QStringLiteral("PersistentCookieJar"), QStringLiteral("save"),
                   QStringLiteral("cannot write ") + m_filePath);
        return;
    }
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const QNetworkCookie& cookie : allCookies()) {
        if (cookie.isSessionCookie() || cookie.expirationDate() > now)
            file.write(cookie.toRawForm(QNetworkCookie::Full) + '\n');
    }
    file.commit();
}

bool PersistentCookieJar::setCookiesFromUrl(const QList<QNetworkCookie>& cookieList, const QUrl& url)
{
    const bool changed = QNetworkCookieJar::setCookiesFromUrl(cookieList, url);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::insertCookie(const QNetworkCookie& cookie)
{
    const bool changed = QNetworkCookieJar::insertCookie(cookie);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::updateCookie(const QNetworkCookie& cookie)
{
    const bool changed = QNetworkCookieJar::updateCookie(cookie);
    if (changed)
        save();
    return changed;
}

bool PersistentCookieJar::deleteCookie(const QNetworkCookie& cookie)
{
    const bool changed = QNetworkCookieJar::deleteCookie(cookie);
    if (changed)
        save();
    return changed;
}

} // namespace nxr
