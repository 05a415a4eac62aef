#include "TestHttpServer.h"

#include <QTcpSocket>

TestHttpServer::TestHttpServer()
{
    m_server.listen(QHostAddress::LocalHost, 0);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
}

QString TestHttpServer::url(const QString& path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path);
}

void TestHttpServer::serve(QTcpSocket* socket)
{
    QByteArray buffer = socket->property("buffer").toByteArray() + socket->readAll();
    socket->setProperty("buffer", buffer);
    const int headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    Request request;
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    request.method = first.value(0);
    request.path = first.value(1);
    for (int i = 1; i < lines.size(); ++i) {
        const int colon = lines[i].indexOf(':');
        if (colon > 0)
            request.headers.insert(lines[i].left(colon).trimmed().toLower(),
                                   lines[i].mid(colon + 1).trimmed());
    }
    const int length = request.headers.value("content-length").toInt();
    if (buffer.size() < headerEnd + 4 + length)
        return;
    request.body = buffer.mid(headerEnd + 4, length);
    socket->setProperty("buffer", QByteArray());
    m_requests << request;

    if (request.path == "/hang")
        return; // never answers
    Answer answer;
    if (request.path == "/echo") {
        answer.body = request.method + " " + request.headers.value("x-test") + " " + request.body;
    } else if (request.path == "/cookie") {
        answer.body = "cookie: " + request.headers.value("cookie");
    } else if (m_answers.contains(request.path)) {
        answer = m_answers.value(request.path);
    } else {
        answer.status = 404;
        answer.body = "not here";
    }
    const QByteArray reason = answer.status == 200 ? "OK" : answer.status == 404 ? "Not Found" : "Status";
    socket->write("HTTP/1.1 " + QByteArray::number(answer.status) + " " + reason +
                  "\r\nContent-Type: " + answer.contentType + "\r\n" + answer.extraHeaders +
                  "Content-Length: " + QByteArray::number(answer.body.size()) +
                  "\r\nConnection: close\r\n\r\n" + answer.body);
    socket->disconnectFromHost();
}
