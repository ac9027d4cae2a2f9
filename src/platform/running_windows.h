// The top-level windows of the user's programs, found by title, and messages to them. Interface thread only.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

class QWindow;

namespace ql240 {

// The message that hands the focus over: the window that gets it comes to the front and becomes active.
inline constexpr int kFocusMessage = 7;

// A window of a running process, this one included.
class RunningWindow {
public:
    virtual ~RunningWindow() = default;

    // Returns when the window has handled the message, at the latest after a bounded wait for a window that
    // hangs. The desktop's permission for this process to take the focus goes with it.
    virtual void sendMessage(int message) = 0;
};

class RunningWindows {
public:
    // What arrives at an announced window: the message, and the desktop's activation token, empty where there
    // is none.
    using MessageHandler = std::function<void(int message, const QByteArray& activationToken)>;

    virtual ~RunningWindows() = default;

    // The window with this title; none when no running process announces it.
    virtual std::unique_ptr<RunningWindow> findWindow(const QString& title) = 0;

    // Lets others find a window by `title` for as long as the result lives: at once, or from when whoever has
    // that title gives it up. Null when it cannot be announced at all.
    virtual std::shared_ptr<void> announceWindow(const QString& title, MessageHandler handler) = 0;

    // Gives the focus to a window of this process, by right of a token that came with a message.
    virtual void activate(QWindow& window, const QByteArray& token) = 0;
};

} // namespace ql240
