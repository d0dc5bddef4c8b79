#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVector>

#include <functional>

/// A web server on a port of the loopback device that answers each request with whatever bytes a test wants, within the
/// test's own event loop.
class ScriptedServer : public QTcpServer
{
public:
    using Handler = std::function<void(const QByteArray &request, QTcpSocket *socket)>;

    explicit ScriptedServer(Handler handler)
        : handler(std::move(handler))
    {
        if (!listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
        connect(this, &QTcpServer::newConnection, this, [this] { welcome(nextPendingConnection()); });
    }

    QString place() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }

    static QByteArray answer(const QByteArray &status, const QByteArray &body, const QByteArray &headers = {})
    {
        return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
               "\r\nConnection: close\r\n" + headers + "\r\n" + body;
    }
    static QByteArray redirection(const QString &target)
    {
        return answer("302 Found", QByteArray(), "Location: " + target.toUtf8() + "\r\n");
    }
    static QByteArray pathOf(const QByteArray &request) { return request.split(' ').value(1); }

    QVector<QByteArray> requests;

private:
    void welcome(QTcpSocket *socket)
    {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            const QByteArray request = socket->readAll();
            requests.append(request);
            handler(request, socket);
        });
    }

    Handler handler;
};
