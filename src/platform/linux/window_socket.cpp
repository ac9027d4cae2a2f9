#include "platform/linux/window_socket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/limits.h"

namespace ql240 {
namespace {

constexpr int kAnswerWaitMs = 2000;
constexpr int kClientLifeMs = 2000;
constexpr int kRetryMs = 500;
constexpr int kWaitingClients = 8;

bool makeAddress(const QByteArray& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    return true;
}

UniqueFd newSocket() {
    return UniqueFd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

bool belongsToUser(const UniqueFd& socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

// One accepted connection: lives until its line is handled, the peer hangs up, or its time limit ends.
class Client : public QObject {
public:
    Client(UniqueFd socket, MessageHandler handler, QObject* parent)
        : QObject(parent),
          m_socket(std::move(socket)),
          m_handler(std::move(handler)),
          m_notifier(m_socket.get(), QSocketNotifier::Read) {
        connect(&m_notifier, &QSocketNotifier::activated, this, &Client::readLine);
        QTimer::singleShot(kClientLifeMs, this, &QObject::deleteLater);
    }

private:
    void readLine() {
        char bytes[512];
        const ssize_t got = read(m_socket.get(), bytes, sizeof bytes);
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        m_line.append(bytes, std::max<ssize_t>(got, 0));
        const qsizetype end = m_line.indexOf('\n');
        if (end < 0 && got > 0 && m_line.size() <= limits::kWindowMessageBytes)
            return;
        m_notifier.setEnabled(false);
        if (end >= 0)
            handleLine(m_line.left(end));
        deleteLater();
    }

    void handleLine(const QByteArray& line) {
        const qsizetype space = line.indexOf(' ');
        bool isNumber = false;
        const int message = line.left(space).toInt(&isNumber);
        if (space < 0 || !isNumber)
            return;
        m_handler(message, line.mid(space + 1));
        // The sender may have stopped waiting.
        (void)!send(m_socket.get(), "ok\n", 3, MSG_NOSIGNAL);
    }

    UniqueFd m_socket;
    MessageHandler m_handler;
    QSocketNotifier m_notifier;
    QByteArray m_line;
};

} // namespace

WindowServer::WindowServer(QByteArray path, MessageHandler handler)
    : m_path(std::move(path)), m_handler(std::move(handler)) {
    m_retry.setInterval(kRetryMs);
    connect(&m_retry, &QTimer::timeout, this, &WindowServer::takeTurn);
    takeTurn();
}

WindowServer::~WindowServer() {
    // Unlink while the lock is still held, so that no other process's socket is removed.
    if (m_phase == Phase::Listening)
        unlink(m_path.constData());
}

void WindowServer::takeTurn() {
    m_phase = lockPath();
    if (m_phase == Phase::Waiting)
        m_retry.start();
    else
        m_retry.stop();
    if (m_phase != Phase::Listening)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &WindowServer::acceptClient);
}

WindowServer::Phase WindowServer::lockPath() {
    m_lock = UniqueFd(open((m_path + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (m_lock.isValid() && flock(m_lock.get(), LOCK_EX | LOCK_NB) == 0)
        return listenAt() ? Phase::Listening : Phase::Impossible;
    return m_lock.isValid() && errno == EWOULDBLOCK ? Phase::Waiting : Phase::Impossible;
}

bool WindowServer::listenAt() {
    // A socket here is stale, because the lock was free.
    unlink(m_path.constData());
    sockaddr_un address;
    m_socket = newSocket();
    return makeAddress(m_path, address) && m_socket.isValid() &&
           bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
           listen(m_socket.get(), kWaitingClients) == 0;
}

void WindowServer::acceptClient() {
    UniqueFd client(accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (client.isValid() && belongsToUser(client))
        new Client(std::move(client), m_handler, this);
}

UniqueFd RunningWindow::connectTo(const QByteArray& path) {
    sockaddr_un address;
    UniqueFd socket = newSocket();
    if (!makeAddress(path, address) || !socket.isValid())
        return {};
    const int result = ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return result == 0 && belongsToUser(socket) ? std::move(socket) : UniqueFd();
}

void RunningWindow::sendMessage(int message) const {
    const QByteArray line =
        QByteArray::number(message) + ' ' + m_token.left(limits::kWindowMessageBytes / 2) + '\n';
    if (send(m_socket.get(), line.constData(), static_cast<std::size_t>(line.size()), MSG_NOSIGNAL) !=
        line.size())
        return;
    pollfd waiting{m_socket.get(), POLLIN, 0};
    poll(&waiting, 1, kAnswerWaitMs);
}

} // namespace ql240
