// The two ends of the socket behind one announced window title. Interface thread only.
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

// What arrives at an announced window: the message, and the desktop's activation token, empty where there is
// none.
using MessageHandler = std::function<void(int message, const QByteArray& activationToken)>;

// The announcing end: listens at `path` until it is destroyed; where another does, it waits for its turn.
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

// The finding end: a connection to the process that announced the window.
class RunningWindow {
public:
    // Not valid when nobody listens at `path`, or somebody else than this user.
    static UniqueFd connectTo(const QByteArray& path);

    RunningWindow(UniqueFd socket, QByteArray token)
        : m_socket(std::move(socket)), m_token(std::move(token)) {}

    // Returns when the window has handled the message, at the latest after a bounded wait for a window that
    // hangs. The desktop's permission for this process to take the focus goes with it.
    void sendMessage(int message) const;

private:
    UniqueFd m_socket;
    QByteArray m_token;
};

} // namespace ql240
