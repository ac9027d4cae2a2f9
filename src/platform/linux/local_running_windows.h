// The top-level windows of the user's programs, found by title, and messages to them, over local sockets in
// the user's runtime folder: one socket for every announced title. A socket whose process has died is known
// by a lock that the kernel drops with the process. Interface thread only.
//
// A message is one line, its number in decimal, a space and the sender's activation token; the answer is
// "ok\n".
#pragma once

#include <QString>

#include "platform/linux/window_socket.h"

class QWindow;

namespace ql240 {

// The message that hands the focus over: the window that gets it comes to the front and becomes active.
inline constexpr int kFocusMessage = 7;

class LocalRunningWindows {
public:
    // Sockets stand in `folder`; it must be the user's own. Made before the application object, which uses up
    // the activation token that the desktop gave to this process.
    explicit LocalRunningWindows(const QString& folder);

    // $XDG_RUNTIME_DIR, or Qt's substitute for it.
    static QString userFolder();

    // The window with this title, which may be of this process; none when no running process announces it.
    [[nodiscard]] std::optional<RunningWindow> findWindow(const QString& title) const;

    // Lets others find a window by `title` for as long as the result lives: at once, or from when whoever has
    // that title gives it up. Null when it cannot be announced at all.
    [[nodiscard]] std::shared_ptr<WindowServer> announceWindow(const QString& title,
                                                               MessageHandler handler) const;

    // Gives the focus to a window of this process, by right of a token that came with a message.
    static void activate(QWindow& window, const QByteArray& token);

private:
    QByteArray socketPath(const QString& title) const;

    QString m_folder;
    QByteArray m_token;
};

} // namespace ql240
