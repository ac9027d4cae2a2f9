#include "platform/linux/local_running_windows.h"

#include <QFile>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QWindow>

#include "platform/linux/x11_activation.h"
#include "platform/logging.h"

namespace ql240 {
namespace {

// Set by Wayland and by X11 desktops respectively.
constexpr const char* kTokenVariables[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

} // namespace

LocalRunningWindows::LocalRunningWindows(const QString& folder) : m_folder(folder) {
    for (const char* variable : kTokenVariables) {
        if (m_token.isEmpty())
            m_token = qgetenv(variable);
    }
}

QString LocalRunningWindows::userFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

// "QL240 Viewer" → <folder>/ql240-viewer.sock
QByteArray LocalRunningWindows::socketPath(const QString& title) const {
    const QString name = title.toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
    return QFile::encodeName(m_folder + QLatin1Char('/') + name + QStringLiteral(".sock"));
}

std::optional<RunningWindow> LocalRunningWindows::findWindow(const QString& title) const {
    UniqueFd socket = RunningWindow::connectTo(socketPath(title));
    qCDebug(lcDesktop) << title << (socket.isValid() ? "runs already" : "doesn't run yet");
    if (!socket.isValid())
        return std::nullopt;
    return RunningWindow(std::move(socket), m_token);
}

std::shared_ptr<WindowServer> LocalRunningWindows::announceWindow(const QString& title,
                                                                  MessageHandler handler) const {
    auto server = std::make_shared<WindowServer>(socketPath(title), std::move(handler));
    if (server->isPossible())
        return server;
    qCWarning(lcDesktop) << title << "can't be announced in" << m_folder;
    return nullptr;
}

void LocalRunningWindows::activate(QWindow& window, const QByteArray& token) {
    const QString platform = QGuiApplication::platformName();
    // Qt's Wayland plugin reads the token for its next activation from here.
    if (!token.isEmpty() && platform.startsWith(QLatin1String("wayland")))
        qputenv(kTokenVariables[0], token);
    window.requestActivate();
    if (const std::uint32_t time = timeOfStartUpId(token); time != 0 && platform == QLatin1String("xcb"))
        activateOnX11(window, time);
}

} // namespace ql240
