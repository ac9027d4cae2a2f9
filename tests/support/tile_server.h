// A tile server on a local port: answers every request with a picture or another preset reply, or never.
#pragma once

#include <QBuffer>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>

namespace ql240 {

class TileServer : public QTcpServer {
public:
    bool silent = false;
    QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nCache-Control: max-age=60";
    QByteArray body;
    QByteArrayList requests;

    explicit TileServer(QColor colour) {
        body = picture(QSize(256, 256), "PNG", colour);
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

    static QByteArray picture(QSize size, const char* format, QColor colour = Qt::white) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        QBuffer file;
        image.save(&file, format);
        return file.data();
    }

private:
    void answer(QTcpSocket& socket) {
        requests.append(socket.readAll());
        if (silent)
            return;
        socket.write(head + "\r\nAccess-Control-Allow-Origin: *\r\nConnection: close\r\nContent-Length: " +
                     QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket.disconnectFromHost();
    }
};

} // namespace ql240
