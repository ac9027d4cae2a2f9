#include "app/instance_windows.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include "platform/linux/local_running_windows.h"

namespace ql240 {
namespace {

void bringToFront(QWidget* window, const QByteArray& token) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    // Keep the modal dialog that blocks this window on top of it.
    QWidget* modal = QApplication::activeModalWidget();
    if (modal && modal != window) {
        window->activateWindow();
        modal->raise();
        window = modal;
    }
    LocalRunningWindows::activate(*window->windowHandle(), token);
}

} // namespace

InstanceWindows::InstanceWindows(const LocalRunningWindows& windows, const QStringList& titles)
    : m_windows(windows), m_titles(titles) {
    qApp->installEventFilter(this);
}

bool InstanceWindows::eventFilter(QObject* object, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::Show && type != QEvent::Hide)
        return false;
    auto* window = qobject_cast<QWidget*>(object);
    // Spontaneous show and hide events (another desktop, minimised) come from the window system: the window
    // still exists.
    if (!window || !window->isWindow() || event->spontaneous())
        return false;
    if (type == QEvent::Hide)
        m_announced.remove(window);
    else if (m_titles.contains(window->windowTitle()) && !m_announced.contains(window))
        announce(window);
    return false;
}

void InstanceWindows::announce(QWidget* window) {
    const auto handler = [window](int message, const QByteArray& token) {
        if (message == kFocusMessage)
            bringToFront(window, token);
    };
    auto announced = m_windows.announceWindow(window->windowTitle(), handler);
    if (!announced)
        return;
    m_announced.insert(window, announced);
    connect(window, &QObject::destroyed, this, [this](QObject* gone) { m_announced.remove(gone); });
}

} // namespace ql240
