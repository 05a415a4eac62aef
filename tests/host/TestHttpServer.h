#pragma once
// A small HTTP/1.1 server on 127.0.0.1 for tests: fixed answers by path, "/echo" answers with
// the request's method, a custom header and body, "/cookie" with the request's Cookie header, "/hang"
// never answers; every request is recorded.

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QTcpServer>

class TestHttpServer : public QObject
{
    Q_OBJECT

public:
    struct Answer
    {
        Answer(int status_ = 200, QByteArray contentType_ = "text/plain", QByteArray body_ = {},
               QByteArray extraHeaders_ = {})
            : status(status_), contentType(std::move(contentType_)), body(std::move(body_)),
              extraHeaders(std::move(extraHeaders_))
        {}
        int status;
        QByteArray contentType;
        QByteArray body;
        QByteArray extraHeaders; // complete lines, each ending in CR LF
    };
    struct Request
    {
        QByteArray method;
        QByteArray path;
        QMap<QByteArray, QByteArray> headers; // names lower-cased
        QByteArray body;
    };

    TestHttpServer();
    quint16 port() const { return m_server.serverPort(); }
    QString url(const QString& path) const;
    void set(const QByteArray& path, const Answer& answer) { m_answers[path] = answer; }
    const QList<Request>& requests() const { return m_requests; }

private:
    void serve(QTcpSocket* socket);
    QTcpServer m_server;
    QMap<QByteArray, Answer> m_answers;
    QList<Request> m_requests;
};
