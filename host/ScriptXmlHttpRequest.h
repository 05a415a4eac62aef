#pragma once
// XMLHttpRequest for page scripts, on the host's QNetworkAccessManager: open / setRequestHeader /
// send / abort, readyState, status, statusText, responseText, response (responseType "", "text",
// "json", "arraybuffer"), responseURL, timeout, getResponseHeader, getAllResponseHeaders, the
// handlers onreadystatechange, onloadstart, onprogress, onload, onerror, ontimeout, onabort and
// onloadend, and addEventListener/removeEventListener (added by the host's JavaScript wrapper).
// Relative URLs resolve against the page's URL. A synchronous request (open(..., false)) waits
// with the event loop running.
//
// A page from a controller follows the browsers' same-origin rule: requests to its own origin go
// freely, to another origin only when that origin is a trusted controller; Origin, Referer and
// the like are never set by the page, nor Authorization for another origin. Every response body
// is limited in size; a larger one ends the request with an error.

#include <QByteArray>
#include <QJSValue>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QTimer>
#include <QUrl>

class QJSEngine;
class QNetworkAccessManager;
class QNetworkReply;

namespace nxr {

// What a page's requests may do; the host fills it from the page's origin and its options.
struct RequestPolicy
{
    QUrl pageUrl;          // relative URLs resolve against it
    bool localPage = true; // a page from disk: local files readable, no origin rule
    qint64 maxResponseBytes = qint64(64) << 20;
};

class ScriptXmlHttpRequest : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int readyState READ readyState)
    Q_PROPERTY(int status READ status)
    Q_PROPERTY(QString statusText READ statusText)
    Q_PROPERTY(QString responseText READ responseText)
    Q_PROPERTY(QJSValue response READ response)
    Q_PROPERTY(QString responseType READ responseType WRITE setResponseType)
    Q_PROPERTY(QString responseURL READ responseURL)
    Q_PROPERTY(int timeout READ timeout WRITE setTimeout)
    Q_PROPERTY(bool withCredentials READ withCredentials WRITE setWithCredentials)
    Q_PROPERTY(int UNSENT READ unsent CONSTANT)
    Q_PROPERTY(int OPENED READ opened CONSTANT)
    Q_PROPERTY(int HEADERS_RECEIVED READ headersReceived CONSTANT)
    Q_PROPERTY(int LOADING READ loading CONSTANT)
    Q_PROPERTY(int DONE READ done CONSTANT)

public:
    enum State { Unsent = 0, Opened = 1, HeadersReceived = 2, Loading = 3, Done = 4 };

    ScriptXmlHttpRequest(QJSEngine* engine, QNetworkAccessManager* network, const RequestPolicy& policy,
                         QObject* parent = nullptr);
    ~ScriptXmlHttpRequest() override;

    int readyState() const { return m_state; }
    int status() const { return m_status; }
    QString statusText() const { return m_statusText; }
    QString responseText() const;
    QJSValue response() const;
    QString responseType() const { return m_responseType; }
    void setResponseType(const QString& type);
    QString responseURL() const { return m_responseUrl.toString(QUrl::RemoveUserInfo); }
    int timeout() const { return m_timeoutMs; }
    void setTimeout(int ms) { m_timeoutMs = qMax(0, ms); }
    bool withCredentials() const { return m_withCredentials; }
    void setWithCredentials(bool on) { m_withCredentials = on; }
    int unsent() const { return Unsent; }
    int opened() const { return Opened; }
    int headersReceived() const { return HeadersReceived; }
    int loading() const { return Loading; }
    int done() const { return Done; }

    Q_INVOKABLE void open(const QString& method, const QString& url, const QJSValue& async = QJSValue(),
                          const QJSValue& user = QJSValue(), const QJSValue& password = QJSValue());
    Q_INVOKABLE void setRequestHeader(const QString& name, const QString& value);
    Q_INVOKABLE void send(const QJSValue& body = QJSValue());
    Q_INVOKABLE void abort();
    Q_INVOKABLE QJSValue getResponseHeader(const QString& name) const;
    Q_INVOKABLE QString getAllResponseHeaders() const;
    Q_INVOKABLE void overrideMimeType(const QString&) {}

    // The host is closing: drops the request without telling the script.
    void cancelQuietly();

Q_SIGNALS:
    // A handler threw; `error` is what it threw.
    void callbackFailed(const QJSValue& error);
    // The host's note on a refused request or response.
    void refused(const QString& text);

private:
    void onMetaData();
    void onReadyRead();
    void onFinished();
    void onTimeout();
    // Ends the request with an error when the response body would pass the limit.
    bool overLimit(qint64 more);
    bool crossOrigin() const;
    void setState(State state);
    void fire(const QString& type);
    void finish(const QString& endEvent);
    void dropReply();
    void resetResponse();
    QJSValue self() const;

    QJSEngine* m_engine;
    QNetworkAccessManager* m_network;
    RequestPolicy m_policy;
    // While a request is under way the script object is held here, so neither it nor its
    // handlers are collected when the page keeps no reference.
    QJSValue m_keepAlive;

    State m_state = Unsent;
    QByteArray m_method;
    QUrl m_url;
    bool m_async = true;
    bool m_sent = false;
    QList<QPair<QByteArray, QByteArray>> m_requestHeaders;
    QPointer<QNetworkReply> m_reply;
    QTimer m_timer;
    int m_timeoutMs = 0;
    bool m_withCredentials = false;

    int m_status = 0;
    QString m_statusText;
    QByteArray m_body;
    QList<QPair<QByteArray, QByteArray>> m_responseHeaders;
    QUrl m_responseUrl;
    QString m_responseType;
};

} // namespace nxr
