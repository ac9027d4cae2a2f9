#include "mainwindow/full_screen.h"

#include <QWidget>

#include "mainwindow/main_window_layout.h"

namespace ql240 {

bool FullScreen::agrees() const {
    return isWanted() == m_window.isFullScreen();
}

void FullScreen::enter() {
    // If the window system has left full screen on its own, the present geometry is not the user's choice.
    if (m_phase == Phase::Normal)
        m_normalGeometry = m_window.geometry();
    m_phase = Phase::Full;
    // With a fixed size, the window system could not make the window fill the screen.
    m_window.setMinimumSize(0, 0);
    m_window.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    m_window.showFullScreen();
}

void FullScreen::leave() {
    m_phase = Phase::Normal;
    if (m_normalGeometry.isEmpty())
        m_normalGeometry = QRect(m_window.pos(), layout::kWindow);
    m_window.setWindowState(m_window.windowState() & ~Qt::WindowFullScreen);
    m_window.resize(m_normalGeometry.size());
    m_window.setFixedSize(m_normalGeometry.size());
    m_window.move(m_normalGeometry.topLeft());
}

} // namespace ql240
