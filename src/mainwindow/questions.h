// Runs the window's dialogs. A dialog is an event loop of its own, during which everything else continues:
// code that must not act while one is open checks isOpen() and waits for closed(). Interface thread only.
#pragma once

#include <QObject>
#include <memory>

#include "mainwindow/window_dialogs.h"

namespace ql240 {

class Questions : public QObject {
    Q_OBJECT
public:
    explicit Questions(QWidget* window);

    void setDialogs(std::unique_ptr<WindowDialogs> dialogs) { m_dialogs = std::move(dialogs); }

    // Runs a dialog through `ask` and returns its result.
    template <typename Ask>
    auto ask(Ask ask) {
        const Open open(*this);
        return ask(*m_dialogs);
    }
    void warn(const QString& title, const QString& text);

    bool isOpen() const { return m_open > 0; }

Q_SIGNALS:
    // Emitted from the event loop after a dialog has closed and its caller has returned. Another dialog may
    // be open by then.
    void closed();

private:
    class Open {
    public:
        explicit Open(Questions& questions) : m_questions(questions) { ++m_questions.m_open; }
        ~Open() { m_questions.oneLess(); }
        Open(const Open&) = delete;
        Open& operator=(const Open&) = delete;

    private:
        Questions& m_questions;
    };
    void oneLess();

    QWidget* m_window;
    std::unique_ptr<WindowDialogs> m_dialogs;
    int m_open = 0;
};

} // namespace ql240
