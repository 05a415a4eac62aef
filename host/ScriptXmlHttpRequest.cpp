#include "host/ScriptXmlHttpRequest.h"

#include "frame/PageTrust.h"

#include <QEventLoop>
#include <QJSEngine>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringDecoder>

#include <vector>

namespace nxr {
namespace {

bool isToken(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (QChar c : text)
        if (c.unicode() <= 32 || c.unicode() >= 127 || QStringLiteral("()<>@,;:\\\"/[]?={}").contains(c))
            return false;
    return true;
}

// Headers a page may not set; as in browsers they are dropped without a word.
bool isForbiddenHeader(const QByteArray& lower)
{
    static const QList<QByteArray> forbidden{"accept-charset",
                                             "accept-encoding",
                                             "connection",
                                             "content-length",
                                             "cookie",
                                             "cookie2",
                                             "date",
                                             "expect",
                                             "host",
                                             "origin",
                                             "referer",
                                             "keep-alive",
                                             "te",
                                             "trailer",
                                             "transfer-encoding",
                                             "upgrade",
                                             "via"};
    return forbidden.contains(lower) || lower.startsWith("proxy-") || lower.startsWith("sec-");
}

} // namespace

ScriptXmlHttpRequest::ScriptXmlHttpRequest(QJSEngine* engine, QNetworkAccessManager* network,
                                           const RequestPolicy& policy, QObject* parent)
    : QObject(parent), m_engine(engine), m_network(network), m_policy(policy)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ScriptXmlHttpRequest::onTimeout);
}

ScriptXmlHttpRequest::~ScriptXmlHttpRequest()
{
    dropReply();
}

QJSValue ScriptXmlHttpRequest::self() const
{
    return m_engine->newQObject(const_cast<ScriptXmlHttpRequest*>(this));
}

void ScriptXmlHttpRequest::setResponseType(const QString& type)
{
    static const QStringList known{QString(), QStringLiteral("text"), QStringLiteral("json"),
                                   QStringLiteral("arraybuffer")};
    if (known.contains(type))
        m_responseType = type;
}

QString ScriptXmlHttpRequest::responseText() const
{
    if (m_state < Loading)
        return QString();
    QByteArray charset = "UTF-8";
    for (const auto& [name, value] : m_responseHeaders) {
        if (name.compare("content-type", Qt::CaseInsensitive) != 0)
            continue;
        const int at = value.toLower().indexOf("charset=");
        if (at >= 0)
            charset = value.mid(at + 8).split(';').first().trimmed().replace('"', "");
    }
    QStringDecoder decoder(charset.constData());
    if (!decoder.isValid())
        decoder = QStringDecoder(QStringDecoder::Utf8);
    return decoder.decode(m_body);
}

QJSValue ScriptXmlHttpRequest::response() const
{
    if (m_responseType.isEmpty() || m_responseType == QLatin1String("text"))
        return QJSValue(responseText());
    if (m_state != Done)
        return QJSValue(QJSValue::NullValue);
    if (m_responseType == QLatin1String("arraybuffer"))
        return m_engine->toScriptValue(m_body);
    const QJSValue parsed = m_engine->globalObject()
                                .property(QStringLiteral("JSON"))
                                .property(QStringLiteral("parse"))
                                .call({QJSValue(QString::fromUtf8(m_body))});
    return parsed.isError() ? QJSValue(QJSValue::NullValue) : parsed;
}

void ScriptXmlHttpRequest::open(const QString& method, const QString& url, const QJSValue& async,
                                const QJSValue& user, const QJSValue& password)
{
    if (!isToken(method)) {
        m_engine->throwError(QJSValue::SyntaxError,
                             QStringLiteral("XMLHttpRequest.open: \"%1\" is not a method").arg(method));
        return;
    }
    const QString upper = method.toUpper();
    if (upper == QLatin1String("CONNECT") || upper == QLatin1String("TRACE") ||
        upper == QLatin1String("TRACK")) {
        m_engine->throwError(
            QStringLiteral("SecurityError: XMLHttpRequest.open: %1 is not allowed").arg(upper));
        return;
    }
    static const QStringList normalised{"DELETE", "GET", "HEAD", "OPTIONS", "POST", "PUT", "PATCH"};
    QUrl target = m_policy.pageUrl.resolved(QUrl(url));
    if (!target.isValid()) {
        m_engine->throwError(QJSValue::SyntaxError,
                             QStringLiteral("XMLHttpRequest.open: \"%1\" is not a URL").arg(url));
        return;
    }
    const QString scheme = target.scheme().toLower();
    const bool file = scheme == QLatin1String("file");
    if (!(scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
          (file && m_policy.localPage))) {
        m_engine->throwError(QStringLiteral("XMLHttpRequest.open: %1 URLs cannot be opened from this page")
                                 .arg(scheme.isEmpty() ? QStringLiteral("scheme-less") : scheme));
        return;
    }
    if (!m_policy.localPage && !PageTrust::sameOrigin(target, m_policy.pageUrl) &&
        !PageTrust::isTrustedOrigin(target)) {
        m_engine->throwError(QStringLiteral("SecurityError: XMLHttpRequest.open: %1 is another origin than "
                                            "the page's and not a trusted controller")
                                 .arg(PageTrust::originOf(target)));
        return;
    }
    if (!user.isUndefined() && !user.isNull())
        target.setUserName(user.toString());
    if (!password.isUndefined() && !password.isNull())
        target.setPassword(password.toString());

    dropReply();
    m_method = (normalised.contains(upper) ? upper : method).toLatin1();
    m_url = target;
    m_async = async.isUndefined() ? true : async.toBool();
    m_sent = false;
    m_requestHeaders.clear();
    resetResponse();
    m_state = Unsent;
    setState(Opened);
}

void ScriptXmlHttpRequest::setRequestHeader(const QString& name, const QString& value)
{
    if (m_state != Opened || m_sent) {
        m_engine->throwError(
            QStringLiteral("InvalidStateError: setRequestHeader needs open() and no send() yet"));
        return;
    }
    if (!isToken(name)) {
        m_engine->throwError(QJSValue::SyntaxError,
                             QStringLiteral("setRequestHeader: \"%1\" is not a header name").arg(name));
        return;
    }
    const QByteArray key = name.toLatin1();
    if (isForbiddenHeader(key.toLower()))
        return;
    if (key.compare("authorization", Qt::CaseInsensitive) == 0 && crossOrigin())
        return;
    for (auto& [existing, existingValue] : m_requestHeaders) {
        if (existing.compare(key, Qt::CaseInsensitive) == 0) {
            existingValue += ", " + value.trimmed().toUtf8();
            return;
        }
    }
    m_requestHeaders.append({key, value.trimmed().toUtf8()});
}

void ScriptXmlHttpRequest::send(const QJSValue& body)
{
    if (m_state != Opened || m_sent) {
        m_engine->throwError(QStringLiteral("InvalidStateError: send() needs open() first"));
        return;
    }
    QNetworkRequest request(m_url);
    bool hasContentType = false;
    for (const auto& [name, value] : m_requestHeaders) {
        request.setRawHeader(name, value);
        hasContentType = hasContentType || name.compare("content-type", Qt::CaseInsensitive) == 0;
    }
    QByteArray data;
    const bool bodyAllowed = m_method != "GET" && m_method != "HEAD";
    if (bodyAllowed && !body.isUndefined() && !body.isNull()) {
        const QVariant variant = body.toVariant();
        if (variant.typeId() == QMetaType::QByteArray) {
            data = variant.toByteArray();
        } else {
            data = body.toString().toUtf8();
            if (!hasContentType)
                request.setHeader(QNetworkRequest::ContentTypeHeader,
                                  QByteArrayLiteral("text/plain;charset=UTF-8"));
        }
    }
    // A controller's page is not led to another origin by a redirect.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         m_policy.localPage ? QNetworkRequest::NoLessSafeRedirectPolicy
                                            : QNetworkRequest::SameOriginRedirectPolicy);

    m_sent = true;
    m_keepAlive = self();
    fire(QStringLiteral("loadstart"));
    if (!m_sent) // the handler aborted or reopened
        return;

    QNetworkReply* reply = nullptr;
    if (m_method == "GET")
        reply = m_network->get(request);
    else if (m_method == "HEAD")
        reply = m_network->head(request);
    else if (m_method == "POST")
        reply = m_network->post(request, data);
    else if (m_method == "PUT")
        reply = m_network->put(request, data);
    else if (m_method == "DELETE" && data.isEmpty())
        reply = m_network->deleteResource(request);
    else
        reply = m_network->sendCustomRequest(request, m_method, data);
    m_reply = reply;
    connect(reply, &QNetworkReply::metaDataChanged, this, &ScriptXmlHttpRequest::onMetaData);
    connect(reply, &QNetworkReply::readyRead, this, &ScriptXmlHttpRequest::onReadyRead);
    connect(reply, &QNetworkReply::finished, this, &ScriptXmlHttpRequest::onFinished);
    if (m_timeoutMs > 0)
        m_timer.start(m_timeoutMs);
    if (!m_async) {
        QEventLoop loop;
        connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        connect(reply, &QObject::destroyed, &loop, &QEventLoop::quit);
        connect(&m_timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        if (m_reply && !m_reply->isFinished())
            loop.exec();
    }
}

void ScriptXmlHttpRequest::abort()
{
    if (m_reply || (m_sent && m_state != Done)) {
        dropReply();
        resetResponse();
        setState(Done);
        fire(QStringLiteral("abort"));
        fire(QStringLiteral("loadend"));
        m_keepAlive = QJSValue();
    }
    if (m_state == Done)
        m_state = Unsent;
}

QJSValue ScriptXmlHttpRequest::getResponseHeader(const QString& name) const
{
    if (m_state < HeadersReceived)
        return QJSValue(QJSValue::NullValue);
    QByteArrayList values;
    for (const auto& [key, value] : m_responseHeaders)
        if (key.compare(name.toLatin1(), Qt::CaseInsensitive) == 0)
            values << value;
    if (values.isEmpty())
        return QJSValue(QJSValue::NullValue);
    return QJSValue(QString::fromLatin1(values.join(", ")));
}

QString ScriptXmlHttpRequest::getAllResponseHeaders() const
{
    if (m_state < HeadersReceived)
        return QString();
    QString all;
    for (const auto& [key, value] : m_responseHeaders)
        all += QString::fromLatin1(key.toLower()) + QStringLiteral(": ") + QString::fromLatin1(value) +
               QStringLiteral("\r\n");
    return all;
}

void ScriptXmlHttpRequest::onMetaData()
{
    if (!m_reply || m_state >= HeadersReceived)
        return;
    const QVariant code = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (code.isValid()) {
        m_status = code.toInt();
        m_statusText = m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    } else if (m_reply->url().isLocalFile() && m_reply->error() == QNetworkReply::NoError) {
        m_status = 200;
        m_statusText = QStringLiteral("OK");
    } else {
        return; // nothing arrived yet (or only an error)
    }
    m_responseHeaders = m_reply->rawHeaderPairs();
    m_responseUrl = m_reply->url();
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && overLimit(length.toLongLong()))
        return;
    setState(HeadersReceived);
}

bool ScriptXmlHttpRequest::crossOrigin() const
{
    return !m_policy.localPage && !PageTrust::sameOrigin(m_url, m_policy.pageUrl);
}

bool ScriptXmlHttpRequest::overLimit(qint64 more)
{
    if (m_body.size() + more <= m_policy.maxResponseBytes)
        return false;
    const QString url = m_url.toString(QUrl::RemoveUserInfo);
    dropReply();
    resetResponse();
    QJSValue keep = m_keepAlive;
    m_keepAlive = QJSValue();
    Q_EMIT refused(
        QStringLiteral("XMLHttpRequest: the response of %1 is larger than %2 bytes; it was refused")
            .arg(url)
            .arg(m_policy.maxResponseBytes));
    setState(Done);
    fire(QStringLiteral("error"));
    fire(QStringLiteral("loadend"));
    return true;
}

void ScriptXmlHttpRequest::onReadyRead()
{
    if (!m_reply)
        return;
    onMetaData();
    if (!m_reply || m_state < HeadersReceived)
        return;
    if (overLimit(m_reply->bytesAvailable()))
        return;
    m_body += m_reply->readAll();
    setState(Loading);
    fire(QStringLiteral("progress"));
}

void ScriptXmlHttpRequest::onFinished()
{
    QNetworkReply* reply = m_reply;
    if (!reply)
        return;
    m_timer.stop();
    onMetaData();
    if (!m_reply)
        return; // refused as too large
    const bool answered = m_state >= HeadersReceived;
    if (answered && overLimit(reply->bytesAvailable()))
        return;
    if (answered)
        m_body += reply->readAll();
    m_reply = nullptr;
    reply->disconnect(this);
    reply->deleteLater();
    m_sent = false;
    QJSValue keep = m_keepAlive; // the handlers below may drop the last script reference
    m_keepAlive = QJSValue();
    if (answered) {
        setState(Done);
        fire(QStringLiteral("load"));
    } else {
        resetResponse();
        setState(Done);
        fire(QStringLiteral("error"));
    }
    fire(QStringLiteral("loadend"));
}

void ScriptXmlHttpRequest::onTimeout()
{
    if (!m_reply)
        return;
    dropReply();
    resetResponse();
    QJSValue keep = m_keepAlive;
    m_keepAlive = QJSValue();
    setState(Done);
    fire(QStringLiteral("timeout"));
    fire(QStringLiteral("loadend"));
}

void ScriptXmlHttpRequest::setState(State state)
{
    m_state = state;
    fire(QStringLiteral("readystatechange"));
}

void ScriptXmlHttpRequest::fire(const QString& type)
{
    const QJSValue target = self();
    QJSValue event = m_engine->newObject();
    event.setProperty(QStringLiteral("type"), type);
    event.setProperty(QStringLiteral("target"), target);
    std::vector<QJSValue> handlers;
    const QJSValue handler = target.property(QStringLiteral("on") + type);
    if (handler.isCallable())
        handlers.push_back(handler);
    const QJSValue listeners = target.property(QStringLiteral("__listeners")).property(type);
    const int count = listeners.property(QStringLiteral("length")).toInt();
    for (int i = 0; i < count; ++i)
        if (const QJSValue l = listeners.property(quint32(i)); l.isCallable())
            handlers.push_back(l);
    for (QJSValue& h : handlers) {
        const QJSValue result = h.callWithInstance(target, {event});
        if (result.isError())
            Q_EMIT callbackFailed(result);
    }
}

void ScriptXmlHttpRequest::cancelQuietly()
{
    dropReply();
    m_keepAlive = QJSValue();
}

void ScriptXmlHttpRequest::dropReply()
{
    m_timer.stop();
    if (QNetworkReply* reply = m_reply) {
        m_reply = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    m_sent = false;
}

void ScriptXmlHttpRequest::resetResponse()
{
    m_status = 0;
    m_statusText.clear();
    m_body.clear();
    m_responseHeaders.clear();
    m_responseUrl = QUrl();
}

} // namespace nxr
