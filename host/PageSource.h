#pragma once
// Finds and reads the files of a page: its form and its scripts, from a local folder or file,
// or from an http(s) URL. The rules are those of the host's --help:
//   folder   -> page.json in it, else its only .ui and its only .js (the script may be absent)
//   x.ui     -> x.ui and x.js beside it when there is one
//   *.json   -> a page description {"form": ..., "script": ... or [...], "title": ...}
//   URL      -> *.json or *.ui (with its .js, required) or a folder URL (URL/page.json)

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace nxr {

struct PageScript
{
    QUrl url;
    QString text;
};

struct PageFiles
{
    // The page.json, or the form when there is none; the script's relative URLs start here.
    QUrl pageUrl;
    QUrl formUrl;
    QByteArray form;
    QList<PageScript> scripts;
    QString title;
    // Folder the form's relative resources (icons, images) are read from; empty for remote pages.
    QString workingDirectory;
    // A remote form's pictures by the name the form gives them, fetched from beside it (its own
    // origin only), and what could not be fetched.
    QMap<QString, QByteArray> resources;
    QStringList notes;
};

class PageSource : public QObject
{
    Q_OBJECT

public:
    PageSource(QNetworkAccessManager* network, QObject* parent = nullptr);

    // Starts loading; ends with exactly one loaded() or failed(). Local pages answer at once
    // (before load() returns), remote pages when their files have arrived.
    void load(const QString& page);

    static bool isRemote(const QString& page);
    // The local rules alone, without signals.
    static bool readLocal(const QString& page, PageFiles* files, QString* error);

    // A description (page.json) read into form and script locations relative to `base`.
    struct Description
    {
        QUrl form;
        QList<QUrl> scripts;
        QString title;
    };
    static bool parseDescription(const QByteArray& json, const QUrl& base, Description* out, QString* error);

    // A URL fit for messages: no user name or password.
    static QString displayUrl(const QUrl& url);

Q_SIGNALS:
    void loaded(const nxr::PageFiles& files);
    void failed(const QString& message);

private:
    void fetch(const QUrl& url, std::function<void(const QByteArray& body, const QString& contentType)> next);
    void startRemoteForm();
    void fetchNextScript();
    void fetchNextResource();
    void fail(const QString& message);

    QNetworkAccessManager* m_network;
    QPointer<QNetworkReply> m_reply;
    Description m_description;
    QStringList m_resourceNames;
    PageFiles m_files;
    bool m_done = false;
};

} // namespace nxr
