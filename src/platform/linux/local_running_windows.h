// Finds top-level windows of the user's programs by title and sends messages to them, over local sockets in
// the user's runtime folder, one per announced title. A lock file that the kernel unlocks when its process
// ends identifies stale sockets. Interface thread only.
//
// A message is one line: its number in decimal, a space and the sender's activation token. The answer is the
// line "ok".
#pragma once

#include <QString>

#include "platform/linux/window_socket.h"

class QWindow;

namespace ql240 {

// Hands the focus over: the receiving window comes to the front and becomes active.
inline constexpr int kFocusMessage = 7;

class LocalRunningWindows {
public:
    // `folder` holds the sockets and must belong to the user. Construct before the application object, which
    // consumes the activation token that the desktop gave to this process.
    explicit LocalRunningWindows(const QString& folder);

    // $XDG_RUNTIME_DIR, or Qt's substitute for it.
    static QString userFolder();

    // The window with this title, possibly of this process; none if no running process announces it.
    [[nodiscard]] std::optional<RunningWindow> findWindow(const QString& title) const;

    // Makes a window findable by `title` for as long as the result lives, immediately or once the process
    // that has this title gives it up. Null when that is impossible.
    [[nodiscard]] std::shared_ptr<WindowServer> announceWindow(const QString& title,
                                                               MessageHandler handler) const;

    // Gives the focus to a window of this process, using the token that came with a message.
    static void activate(QWindow& window, const QByteArray& token);

private:
    QByteArray socketPath(const QString& title) const;

    QString m_folder;
    QByteArray m_token;
};

} // namespace ql240
