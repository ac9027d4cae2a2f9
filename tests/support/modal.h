// Lets a test respond to a modal window that the code under test is about to open.
#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace ql240 {

// Calls `answer` once a modal window is shown, then closes the window if it is still open.
class ModalAnswer {
public:
    explicit ModalAnswer(std::function<void(QWidget*)> answer) : m_answer(std::move(answer)) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(1);
    }
    bool seen() const { return m_seen; }

private:
    void look() {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || modal == m_outer)
            return;
        m_timer.stop();
        m_seen = true;
        m_answer(modal);
        if (modal->isVisible())
            modal->close();
    }

    std::function<void(QWidget*)> m_answer;
    QWidget* m_outer = QApplication::activeModalWidget();
    QTimer m_timer;
    bool m_seen = false;
};

} // namespace ql240
