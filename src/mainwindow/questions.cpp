#include "mainwindow/questions.h"

namespace ql240 {

Questions::Questions(QWidget* window) : m_window(window), m_dialogs(std::make_unique<WindowDialogs>()) {}

void Questions::warn(const QString& title, const QString& text) {
    ask([&](WindowDialogs& dialogs) { dialogs.warn(m_window, title, text); });
}

void Questions::oneLess() {
    if (--m_open == 0)
        QMetaObject::invokeMethod(this, &Questions::closed, Qt::QueuedConnection);
}

} // namespace ql240
