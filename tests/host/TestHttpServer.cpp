#include "TestHttpServer.h"

#include <QTcpSocket>

TestHttpServer::TestHttpServer(const QHostAddress& address)
{
    m_server.listen(address, 0);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            ++m_connections;
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
}

namespace {

QByteArray headerLines(const QMap<QByteArray, QByteArray>& headers)
{
    QByteArray lines;
    for (auto it = headers.cbegin(); it != headers.cend(); ++it)
        lines += it.key() + ": " + it.value() + "\n";
    return lines;
}

} // namespace

QString TestHttpServer::url(const QString& path) const
{
    return QStringLiteral("http://%1:%2%3").arg(m_server.serverAddress().toString()).arg(port()).arg(path);
}

void TestHttpServer::serve(QTcpSocket* socket)
{
    QByteArray buffer = socket->property("buffer").toByteArray() + socket->readAll();
    socket->setProperty("buffer", buffer);
    const int headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    QMap<QByteArray, QByteArray> headers; // names lower-cased
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    const QByteArray method = first.value(0);
    const QByteArray path = first.value(1);
    for (const QByteArray& line : lines.mid(1)) {
        if (const int colon = line.indexOf(':'); colon > 0)
            headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    const int length = headers.value("content-length").toInt();
    if (buffer.size() < headerEnd + 4 + length)
        return;
    socket->setProperty("buffer", QByteArray());
    m_requests << QString::fromLatin1(method + ' ' + path);

    if (path == "/hang")
        return; // never answers
    Answer answer;
    if (path == "/echo")
        answer.body = method + " " + headers.value("x-test") + " " + buffer.mid(headerEnd + 4, length);
    else if (path == "/headers")
        answer.body = headerLines(headers);
    else if (path == "/cookie")
        answer.body = "cookie: " + headers.value("cookie");
    else
        answer = m_answers.value(path, Answer{404, "text/plain", "not here", {}});
    const QByteArray reason = answer.status == 200 ? "OK" : answer.status == 404 ? "Not Found" : "Status";
    socket->write("HTTP/1.1 " + QByteArray::number(answer.status) + " " + reason +
                  "\r\nContent-Type: " + answer.contentType + "\r\n" + answer.extraHeaders +
                  "Content-Length: " + QByteArray::number(answer.body.size()) +
                  "\r\nConnection: close\r\n\r\n" + answer.body);
    socket->disconnectFromHost();
}
