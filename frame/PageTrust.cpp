#include "frame/PageTrust.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/Trace.h"
#include "frame/UserSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QRegularExpression>

namespace nxr::PageTrust {
namespace {

struct Controller
{
    QString host;   // lower case
    int port = -1;  // -1: any port
    QString scheme; // empty: http and https
    QString entry;
};

struct State
{
    QMutex mutex;
    QList<Controller> controllers;
    QUrl page;
};

State& state()
{
    static State s;
    return s;
}

int portOf(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    return url.port(scheme == QLatin1String("https") ? 443 : 80);
}

bool isWeb(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

bool hostMatches(const QString& a, const QString& b)
{
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

bool trustedOriginLocked(const State& s, const QUrl& url)
{
    if (!isWeb(url) || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme().toLower();
    for (const Controller& c : s.controllers) {
        if (!hostMatches(c.host, url.host()))
            continue;
        if (!c.scheme.isEmpty() && c.scheme != scheme)
            continue;
        if (c.port >= 0 && c.port != portOf(url))
            continue;
        return true;
    }
    return false;
}

} // namespace

bool addTrustedController(const QString& entry)
{
    const QString text = entry.trimmed();
    if (text.isEmpty())
        return false;
    Controller c;
    c.entry = text;
    if (text.contains(QLatin1String("://"))) {
        const QUrl url(text);
        if (!isWeb(url) || url.host().isEmpty())
            return false;
        c.host = url.host().toLower();
        c.scheme = url.scheme().toLower();
        c.port = url.port(-1);
        if (c.port < 0)
            c.port = portOf(url);
    } else {
        const QUrl url(QStringLiteral("http://") + text);
        if (!url.isValid() || url.host().isEmpty() || !url.path().isEmpty())
            return false;
        c.host = url.host().toLower();
        c.port = url.port(-1);
    }
    State& s = state();
    QMutexLocker lock(&s.mutex);
    s.controllers.append(c);
    return true;
}

void addTrustedControllersFromSettings()
{
    const QString list = UserSettings::get(kSettingsSection, kSettingsKey);
    for (const QString& entry :
         list.split(QRegularExpression(QStringLiteral("[\\s,;]+")), Qt::SkipEmptyParts))
        if (!addTrustedController(entry))
            errorTrace(QStringLiteral("PageTrust"), QStringLiteral("addTrustedControllersFromSettings"),
                       QStringLiteral("not a controller address: ") + entry);
}

QStringList trustedControllers()
{
    State& s = state();
    QMutexLocker lock(&s.mutex);
    QStringList out;
    for (const Controller& c : std::as_const(s.controllers))
        out << c.entry;
    return out;
}

void setPage(const QUrl& pageUrl)
{
    State& s = state();
    QMutexLocker lock(&s.mutex);
    s.page = pageUrl;
}

QUrl page()
{
    State& s = state();
    QMutexLocker lock(&s.mutex);
    return s.page;
}

bool pageIsRemote()
{
    return isWeb(page());
}

bool isTrustedOrigin(const QUrl& url)
{
    if (url.isLocalFile())
        return true;
    State& s = state();
    QMutexLocker lock(&s.mutex);
    return trustedOriginLocked(s, url);
}

QString originOf(const QUrl& url)
{
    if (!isWeb(url))
        return url.scheme().toLower() + QStringLiteral("://");
    return url.scheme().toLower() + QStringLiteral("://") + url.host().toLower() + QLatin1Char(':') +
           QString::number(portOf(url));
}

bool sameOrigin(const QUrl& a, const QUrl& b)
{
    return isWeb(a) && isWeb(b) && originOf(a) == originOf(b);
}

bool mayReachServer(const QString& server)
{
    State& s = state();
    QMutexLocker lock(&s.mutex);
    if (!isWeb(s.page))
        return true;
    // "host" or "host:port"; anything else names no host this rule can vouch for.
    const QUrl url(QStringLiteral("ftp://") + server.trimmed());
    const QString host = url.host();
    if (!url.isValid() || host.isEmpty() || !url.userName().isEmpty() || !url.path().isEmpty())
        return false;
    if (hostMatches(s.page.host(), host))
        return true;
    for (const Controller& c : std::as_const(s.controllers))
        if (hostMatches(c.host, host))
            return true;
    return false;
}

void requireServer(const QString& server)
{
    if (!mayReachServer(server))
        throw Failure(server + QStringLiteral(" is not a trusted controller of this page"));
}

bool mayReadLocalFile(const QString& path)
{
    if (!pageIsRemote())
        return true;
    const QString root = QFileInfo(Globals::storageFolder()).canonicalFilePath();
    const QString target = QFileInfo(path).canonicalFilePath();
    if (root.isEmpty() || target.isEmpty())
        return false;
    return target.startsWith(root + QLatin1Char('/'));
}

bool mayUseEnvironmentVariable(const QString& name)
{
    if (!pageIsRemote())
        return true;
    static const QRegularExpression own(QStringLiteral("^(TORVIK|NXR)_[A-Z0-9_]+$"));
    static const QRegularExpression steering(QStringLiteral("BROWSER|PROXY|PATH|SSL|PRELOAD"));
    return own.match(name).hasMatch() && !steering.match(name).hasMatch();
}

void reset()
{
    State& s = state();
    QMutexLocker lock(&s.mutex);
    s.controllers.clear();
    s.page = QUrl();
}

} // namespace nxr::PageTrust
