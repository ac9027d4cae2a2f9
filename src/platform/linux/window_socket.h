// The two ends of the socket behind one announced window title. Interface thread only.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

#include "platform/linux/unique_fd.h"
#include "platform/running_windows.h"

namespace ql240 {

// The announcing end: listens at `path` until it is destroyed; where another does, it waits for its turn.
class WindowServer : public QObject {
    Q_OBJECT
public:
    WindowServer(QByteArray path, RunningWindows::MessageHandler handler);
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
    RunningWindows::MessageHandler m_handler;
    UniqueFd m_lock;
    UniqueFd m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

// The finding end: a connection to the process that announced the window.
class WindowClient : public RunningWindow {
public:
    // Not valid when nobody listens at `path`, or somebody else than this user.
    static UniqueFd connectTo(const QByteArray& path);

    WindowClient(UniqueFd socket, QByteArray token)
        : m_socket(std::move(socket)), m_token(std::move(token)) {}
    void sendMessage(int message) override;

private:
    UniqueFd m_socket;
    QByteArray m_token;
};

} // namespace ql240
