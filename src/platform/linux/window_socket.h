// Server and client of the socket behind one announced window title. Interface thread only.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/unique_fd.h"

namespace ql240 {

// Called with the message and the desktop's activation token, which is empty if there is none.
using MessageHandler = std::function<void(int message, const QByteArray& activationToken)>;

// The server: listens at `path` until it is destroyed. While another process does, it retries.
class WindowServer : public QObject {
    Q_OBJECT
public:
    WindowServer(QByteArray path, MessageHandler handler);
    ~WindowServer() override;

    bool isPossible() const { return m_phase != Phase::Impossible; }

private:
    enum class Phase { Waiting, Listening, Impossible };

    void takeTurn();
    Phase lockPath();
    bool listenAt();
    void acceptClient();

    Phase m_phase = Phase::Waiting;
    QTimer m_retry;
    QByteArray m_path;
    MessageHandler m_handler;
    UniqueFd m_lock;
    UniqueFd m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

// The client: a connection to the process that announced the window.
class RunningWindow {
public:
    // Invalid when no process listens at `path`, or one of another user.
    static UniqueFd connectTo(const QByteArray& path);

    RunningWindow(UniqueFd socket, QByteArray token)
        : m_socket(std::move(socket)), m_token(std::move(token)) {}

    // Returns when the window has handled the message, or after a time limit if it hangs. Also passes on this
    // process's permission to take the focus.
    void sendMessage(int message) const;

private:
    UniqueFd m_socket;
    QByteArray m_token;
};

} // namespace ql240
