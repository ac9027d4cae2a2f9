// The two ends of the socket behind one announced window title. Interface thread only.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <memory>

#include "platform/linux/unique_fd.h"
#include "platform/running_windows.h"

namespace ql240 {

// The announcing end: listens from construction on, if isListening(), until it is destroyed.
class WindowServer : public QObject {
    Q_OBJECT
public:
    WindowServer(QByteArray path, RunningWindows::MessageHandler handler);
    ~WindowServer() override;

    bool isListening() const { return m_notifier != nullptr; }

private:
    bool listenAt();
    void acceptClient();

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
