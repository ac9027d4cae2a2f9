// Running windows over local sockets in the user's runtime folder: one socket for every announced title. A
// socket whose process has died is known by a lock that the kernel drops with the process. Interface thread
// only.
//
// A message is one line, its number in decimal, a space and the sender's activation token; the answer is
// "ok\n".
#pragma once

#include "platform/running_windows.h"

namespace ql240 {

class LocalRunningWindows : public RunningWindows {
public:
    // Sockets stand in `folder`; it must be the user's own. Made before the application object, which uses up
    // the activation token that the desktop gave to this process.
    explicit LocalRunningWindows(const QString& folder);

    // $XDG_RUNTIME_DIR, or Qt's substitute for it.
    static QString userFolder();

    std::unique_ptr<RunningWindow> findWindow(const QString& title) override;
    std::shared_ptr<void> announceWindow(const QString& title, MessageHandler handler) override;
    void activate(QWindow& window, const QByteArray& token) override;

private:
    QByteArray socketPath(const QString& title) const;

    QString m_folder;
    QByteArray m_token;
};

} // namespace ql240
