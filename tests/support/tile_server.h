// A tile server on a port of this machine: answers every request with one picture, or takes it and never
// answers.
#pragma once

#include <QBuffer>
#include <QImage>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

namespace ql240 {

class TileServer : public QTcpServer {
public:
    bool silent = false;
    QByteArrayList requests;

    explicit TileServer(QColor colour) {
        QImage tile(256, 256, QImage::Format_RGB32);
        tile.fill(colour);
        QBuffer file(&m_tile);
        tile.save(&file, "PNG");
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(*socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
        listen(QHostAddress::LocalHost);
    }

    QString host() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }
    QString address() const { return host() + QStringLiteral("/{z}/{x}/{y}.png"); }

private:
    void answer(QTcpSocket& socket) {
        requests.append(socket.readAll());
        if (silent)
            return;
        socket.write(
            "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nCache-Control: max-age=60\r\n"
            "Connection: close\r\nContent-Length: " +
            QByteArray::number(m_tile.size()) + "\r\n\r\n" + m_tile);
        socket.disconnectFromHost();
    }

    QByteArray m_tile;
};

} // namespace ql240
