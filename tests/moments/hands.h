// The user's mouse and keyboard, as a window system reports them, including lost releases. Main thread.
#pragma once

#include <QPoint>
#include <QString>

class QWidget;
class QWindow;

namespace ql240::moments {

class Hands {
public:
    // `place` is in the window's coordinates.
    void press(QWidget* window, QPoint place, Qt::MouseButton button);
    void release(QWidget* window, QPoint place, Qt::MouseButton button);
    void move(QWidget* window, QPoint place);
    void click(QWidget* window, QPoint place, Qt::MouseButton button = Qt::LeftButton);
    // The button goes up, but the program gets no release event.
    void loseRelease() { m_held = Qt::NoButton; }
    Qt::MouseButtons held() const { return m_held; }
    // Where the left button last went down, in screen coordinates.
    QPoint pressedAt() const { return m_pressedAt; }

    void type(QWidget* window, int key, Qt::KeyboardModifiers modifiers = {}, int repeats = 0);

private:
    void send(QWidget* window, QPoint place, Qt::MouseButton button, int type);

    Qt::MouseButtons m_held;
    QPoint m_pressedAt;
    int m_timestamp = 0;
};

} // namespace ql240::moments
