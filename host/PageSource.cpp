#include "host/PageSource.h"

#include "frame/Trace.h"
#include "host/FormResources.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

namespace nxr {
namespace {

const QString kDescriptionName = QStringLiteral("page.json");
// A form's picture is an icon or an image of a few hundred kilobytes; nothing larger is fetched.
constexpr qint64 kMaxPictureBytes = qint64(16) << 20;

bool readFile(const QString& path, QByteArray* data, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    *data = file.readAll();
    return true;
}

QString withSuffix(const QString& path, const QString& suffix)
{
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    return path.left(dot) + suffix;
}

// An HTML answer: by its type, or by its first characters when the type says nothing useful.
bool isWebPage(const QByteArray& body, const QString& contentType)
{
    if (contentType.startsWith(QLatin1String("text/html"), Qt::CaseInsensitive) ||
        contentType.startsWith(QLatin1String("application/xhtml"), Qt::CaseInsensitive))
        return true;
    const QByteArray start = body.trimmed().left(64).toLower();
    return start.startsWith("<!doctype html") || start.startsWith("<html");
}

} // namespace

PageSource::PageSource(QNetworkAccessManager* network, QObject* parent) : QObject(parent), m_network(network)
{}

bool PageSource::isRemote(const QString& page)
{
    return page.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           page.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

QString PageSource::displayUrl(const QUrl& url)
{
    if (url.isLocalFile())
        return QDir::toNativeSeparators(url.toLocalFile());
    return url.toDisplayString(QUrl::RemoveUserInfo);
}

bool PageSource::parseDescription(const QByteArray& json, const QUrl& base, Description* out, QString* error)
{
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &parseError);
    const QString where = displayUrl(base);
    if (doc.isNull()) {
        *error = QStringLiteral("%1 is not valid JSON: %2 at offset %3")
                     .arg(where, parseError.errorString())
                     .arg(parseError.offset);
        return false;
    }
    if (!doc.isObject()) {
        *error = QStringLiteral("%1 must hold a JSON object").arg(where);
        return false;
    }
    const QJsonObject object = doc.object();
    Description result;
    const QJsonValue form = object.value(QStringLiteral("form"));
    if (!form.isString() || form.toString().isEmpty()) {
        *error = QStringLiteral("%1 names no form (\"form\": \"name.ui\")").arg(where);
        return false;
    }
    result.form = base.resolved(QUrl(form.toString()));
    const QJsonValue script = object.value(QStringLiteral("script"));
    if (script.isString()) {
        result.scripts << base.resolved(QUrl(script.toString()));
    } else if (script.isArray()) {
        for (const QJsonValue& item : script.toArray()) {
            if (!item.isString() || item.toString().isEmpty()) {
                *error = QStringLiteral("%1: \"script\" must list file names").arg(where);
                return false;
            }
            result.scripts << base.resolved(QUrl(item.toString()));
        }
    } else if (!script.isUndefined() && !script.isNull()) {
        *error = QStringLiteral("%1: \"script\" must be a file name or a list of them").arg(where);
        return false;
    }
    const QJsonValue title = object.value(QStringLiteral("title"));
    if (!title.isUndefined() && !title.isString()) {
        *error = QStringLiteral("%1: \"title\" must be a text").arg(where);
        return false;
    }
    result.title = title.toString();
    *out = result;
    return true;
}

bool PageSource::readLocal(const QString& page, PageFiles* files, QString* error)
{
    const QFileInfo info(page);
    if (!info.exists()) {
        *error = QStringLiteral("no page at %1").arg(QDir::toNativeSeparators(page));
        return false;
    }
    QString formPath;
    QStringList scriptPaths;
    QString title;
    QString descriptionPath;
    if (info.isDir()) {
        const QDir dir(info.absoluteFilePath());
        if (dir.exists(kDescriptionName)) {
            descriptionPath = dir.filePath(kDescriptionName);
        } else {
            const QStringList forms = dir.entryList({QStringLiteral("*.ui")}, QDir::Files, QDir::Name);
            const QStringList scripts = dir.entryList({QStringLiteral("*.js")}, QDir::Files, QDir::Name);
            if (forms.size() != 1) {
                *error =
                    forms.isEmpty()
                        ? QStringLiteral("%1 holds no .ui form and no page.json")
                              .arg(QDir::toNativeSeparators(dir.path()))
                        : QStringLiteral("%1 holds several forms (%2); name one in page.json")
                              .arg(QDir::toNativeSeparators(dir.path()), forms.join(QStringLiteral(", ")));
                return false;
            }
            if (scripts.size() > 1) {
                *error = QStringLiteral("%1 holds several scripts (%2); list them in page.json")
                             .arg(QDir::toNativeSeparators(dir.path()), scripts.join(QStringLiteral(", ")));
                return false;
            }
            formPath = dir.filePath(forms.first());
            if (!scripts.isEmpty())
                scriptPaths << dir.filePath(scripts.first());
        }
    } else if (info.suffix().compare(QLatin1String("json"), Qt::CaseInsensitive) == 0) {
        descriptionPath = info.absoluteFilePath();
    } else if (info.suffix().compare(QLatin1String("ui"), Qt::CaseInsensitive) == 0) {
        formPath = info.absoluteFilePath();
        const QString script = withSuffix(formPath, QStringLiteral(".js"));
        if (QFileInfo::exists(script))
            scriptPaths << script;
    } else {
        *error = QStringLiteral("%1 is not a page: give a folder, a .ui form or a page.json")
                     .arg(QDir::toNativeSeparators(page));
        return false;
    }

    if (!descriptionPath.isEmpty()) {
        QByteArray json;
        if (!readFile(descriptionPath, &json, error))
            return false;
        Description description;
        if (!parseDescription(json, QUrl::fromLocalFile(descriptionPath), &description, error))
            return false;
        formPath = description.form.toLocalFile();
        for (const QUrl& url : description.scripts)
            scriptPaths << url.toLocalFile();
        title = description.title;
    }

    PageFiles result;
    result.formUrl = QUrl::fromLocalFile(formPath);
    result.pageUrl = descriptionPath.isEmpty() ? result.formUrl : QUrl::fromLocalFile(descriptionPath);
    if (!readFile(formPath, &result.form, error))
        return false;
    for (const QString& path : scriptPaths) {
        QByteArray text;
        if (!readFile(path, &text, error))
            return false;
        result.scripts << PageScript{QUrl::fromLocalFile(path), QString::fromUtf8(text)};
    }
    result.title = title;
    result.workingDirectory = QFileInfo(formPath).absolutePath();
    *files = result;
    return true;
}

void PageSource::load(const QString& page)
{
    m_done = false;
    m_files = PageFiles{};
    if (!isRemote(page)) {
        PageFiles files;
        QString error;
        if (readLocal(page, &files, &error)) {
            m_done = true;
            Q_EMIT loaded(files);
        } else {
            fail(error);
        }
        return;
    }

    const QUrl url(page);
    if (!url.isValid() || url.host().isEmpty()) {
        fail(QStringLiteral("not a valid URL: %1").arg(displayUrl(url)));
        return;
    }
    const QString path = url.path();
    if (path.endsWith(QLatin1String(".ui"), Qt::CaseInsensitive)) {
        m_description = Description{};
        m_description.form = url;
        m_files.pageUrl = url;
        QUrl script = url;
        script.setPath(withSuffix(path, QStringLiteral(".js")));
        m_description.scripts << script;
        startRemoteForm();
        return;
    }
    QUrl descriptionUrl = url;
    if (!path.endsWith(QLatin1String(".json"), Qt::CaseInsensitive))
        descriptionUrl.setPath((path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/')) +
                               kDescriptionName);
    m_files.pageUrl = descriptionUrl;
    const bool folder = descriptionUrl != url;
    fetch(descriptionUrl, [this, descriptionUrl, folder](const QByteArray& json, const QString& contentType) {
        // Controllers answer a missing file with a web page of their own rather than a 404.
        if (isWebPage(json, contentType)) {
            QUrl folderUrl = descriptionUrl.resolved(QUrl(QStringLiteral(".")));
            fail(folder ? QStringLiteral(
                              "%1: no page.json there (the controller answered with a web page); name "
                              "the form: %2NAME.ui")
                              .arg(displayUrl(descriptionUrl), displayUrl(folderUrl))
                        : QStringLiteral("%1 is a web page, not a page description")
                              .arg(displayUrl(descriptionUrl)));
            return;
        }
        QString error;
        if (!parseDescription(json, descriptionUrl, &m_description, &error)) {
            fail(error);
            return;
        }
        startRemoteForm();
    });
}

void PageSource::startRemoteForm()
{
    m_files.title = m_description.title;
    m_files.formUrl = m_description.form;
    fetch(m_description.form, [this](const QByteArray& form, const QString&) {
        m_files.form = form;
        m_resourceNames = FormResources::references(form);
        fetchNextResource();
    });
}

void PageSource::fetchNextResource()
{
    while (!m_resourceNames.isEmpty()) {
        const QString name = m_resourceNames.takeFirst();
        const QUrl url = m_description.form.resolved(QUrl(name));
        const bool sameOrigin = url.scheme() == m_description.form.scheme() &&
                                url.host() == m_description.form.host() &&
                                url.port() == m_description.form.port() && url.userInfo().isEmpty();
        if (!sameOrigin || name.isEmpty()) {
            m_files.notes << QStringLiteral(
                                 "the form's picture %1 is not beside it on its controller; it is not "
                                 "loaded")
                                 .arg(name);
            continue;
        }
        QNetworkRequest request(url);
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferNetwork);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::SameOriginRedirectPolicy);
        QNetworkReply* reply = m_network->get(request);
        m_reply = reply;
        auto tooLarge = std::make_shared<bool>(false);
        connect(reply, &QNetworkReply::downloadProgress, reply,
                [reply, tooLarge](qint64 received, qint64 total) {
                    if (received > kMaxPictureBytes || total > kMaxPictureBytes) {
                        *tooLarge = true;
                        reply->abort();
                    }
                });
        connect(reply, &QNetworkReply::finished, this, [this, reply, name, url, tooLarge] {
            reply->deleteLater();
            if (m_reply == reply)
                m_reply = nullptr;
            const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            if (*tooLarge)
                m_files.notes << QStringLiteral(
                                     "the form's picture %1 is larger than %2 MiB; it is not loaded")
                                     .arg(displayUrl(url))
                                     .arg(kMaxPictureBytes >> 20);
            else if (reply->error() != QNetworkReply::NoError || status < 200 || status > 299)
                m_files.notes << QStringLiteral("the form's picture %1 could not be fetched: %2")
                                     .arg(displayUrl(url), status ? QStringLiteral("HTTP %1").arg(status)
                                                                  : reply->errorString());
            else
                m_files.resources.insert(name, reply->readAll());
            fetchNextResource();
        });
        return;
    }
    fetchNextScript();
}

void PageSource::fetchNextScript()
{
    const qsizetype next = m_files.scripts.size();
    if (next >= m_description.scripts.size()) {
        m_done = true;
        Q_EMIT loaded(m_files);
        return;
    }
    const QUrl url = m_description.scripts.at(next);
    fetch(url, [this, url](const QByteArray& text, const QString&) {
        m_files.scripts << PageScript{url, QString::fromUtf8(text)};
        fetchNextScript();
    });
}

void PageSource::fetch(const QUrl& url, std::function<void(const QByteArray&, const QString&)> next)
{
    if (url.scheme().compare(QLatin1String("http"), Qt::CaseInsensitive) != 0 &&
        url.scheme().compare(QLatin1String("https"), Qt::CaseInsensitive) != 0) {
        fail(QStringLiteral("a remote page can only refer to http(s) files, not %1").arg(displayUrl(url)));
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferNetwork);
    QNetworkReply* reply = m_network->get(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply, url, next = std::move(next)] {
        reply->deleteLater();
        if (m_reply == reply)
            m_reply = nullptr;
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (reply->error() != QNetworkReply::NoError || (status != 0 && (status < 200 || status > 299))) {
            const QString reason =
                status != 0
                    ? QStringLiteral("HTTP %1 %2")
                          .arg(status)
                          .arg(reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString())
                          .trimmed()
                    : reply->errorString();
            fail(QStringLiteral("cannot fetch %1: %2").arg(displayUrl(url), reason));
            return;
        }
        next(reply->readAll(), reply->header(QNetworkRequest::ContentTypeHeader).toString());
    });
}

void PageSource::fail(const QString& message)
{
    if (m_done)
        return;
    m_done = true;
    Q_EMIT failed(scrubCredentials(message));
}

} // namespace nxr
