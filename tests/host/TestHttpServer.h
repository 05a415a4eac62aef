#pragma once
// A small HTTP/1.1 server on 127.0.0.1 for tests: fixed answers by path, "/echo" answers with
// the request's method, its X-Test header and body, "/cookie" with its Cookie header, "/headers"
// with every request header as "name: value" lines, "/hang" never answers, anything else is 404.
// Every request is noted as "METHOD PATH".

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QStringList>
#include <QTcpServer>

class TestHttpServer : public QObject
{
    Q_OBJECT

public:
    // Listens on `address` (another loopback address stands for another machine).
    explicit TestHttpServer(const QHostAddress& address = QHostAddress::LocalHost);
    QStringList requests() const { return m_requests; }
    // Connections accepted, requests or not (a probe that only connects counts too).
    int connections() const { return m_connections; }
    quint16 port() const { return m_server.serverPort(); }
    QString url(const QString& path) const;
    // A 200 answer for `path`; extraHeaders are complete lines, each ending in CR LF.
    void set(const QByteArray& path, const QByteArray& contentType, const QByteArray& body,
             const QByteArray& extraHeaders = {})
    {
        m_answers[path] = Answer{200, contentType, body, extraHeaders};
    }

    // A page at /p/: page.json naming page.ui and page.js.
    void servePage(const QByteArray& ui, const QByteArray& js)
    {
        set("/p/page.json", "application/json", R"({"form": "page.ui", "script": "page.js"})");
        set("/p/page.ui", "text/xml", ui);
        set("/p/page.js", "application/javascript", js);
    }

private:
    struct Answer
    {
        int status = 200;
        QByteArray contentType = "text/plain";
        QByteArray body;
        QByteArray extraHeaders;
    };
    void serve(QTcpSocket* socket);
    QTcpServer m_server;
    QMap<QByteArray, Answer> m_answers;
    QStringList m_requests;
    int m_connections = 0;
};
