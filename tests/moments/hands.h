// The user's mouse and keyboard, as a window system reports them, including lost releases. Main thread.
#pragma once

#include <QCursor>
#include <QPointer>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace ql240::moments {

class Hands {
public:
    // `place` is in the window's coordinates.
    void press(QWidget* window, QPoint place, Qt::MouseButton button) {
        QCursor::setPos(window->mapToGlobal(place));
        m_held |= button;
        m_pressedAt = window->mapToGlobal(place);
        send(window, place, button, QEvent::MouseButtonPress);
    }
    void release(QWidget* window, QPoint place, Qt::MouseButton button) {
        m_held &= ~Qt::MouseButtons(button);
        send(window, place, button, QEvent::MouseButtonRelease);
    }
    void move(QWidget* window, QPoint place) { send(window, place, Qt::NoButton, QEvent::MouseMove); }
    void click(QWidget* window, QPoint place, Qt::MouseButton button = Qt::LeftButton) {
        const QPointer<QWidget> kept(window);
        press(window, place, button);
        if (kept)
            release(window, place, button);
    }
    // The button goes up, but the program gets no release event.
    void loseRelease() { m_held = Qt::NoButton; }
    Qt::MouseButtons held() const { return m_held; }
    // Where the left button last went down, in screen coordinates.
    QPoint pressedAt() const { return m_pressedAt; }
    void type(QWidget* window, int key, Qt::KeyboardModifiers modifiers = {}, int repeats = 0) {
        const QPointer<QWindow> handle(window->windowHandle());
        const QString text = textOf(key, modifiers);
        const auto send = [&](QEvent::Type type, bool repeat) {
            if (handle && handle->isVisible())
                qt_handleKeyEvent(handle, type, key, modifiers, text, repeat);
        };
        send(QEvent::KeyPress, false);
        for (int i = 0; i < repeats; ++i) {
            send(QEvent::KeyRelease, true);
            send(QEvent::KeyPress, true);
        }
        send(QEvent::KeyRelease, false);
    }

private:
    // The text that a key types on a plain keyboard.
    static QString textOf(int key, Qt::KeyboardModifiers modifiers) {
        if (modifiers & (Qt::ControlModifier | Qt::AltModifier) || key < Qt::Key_Space ||
            key > Qt::Key_AsciiTilde)
            return {};
        const QChar letter(key);
        return modifiers & Qt::ShiftModifier ? QString(letter) : QString(letter.toLower());
    }
    void send(QWidget* window, QPoint place, Qt::MouseButton button, int type) {
        QWindow* handle = window->windowHandle();
        if (!handle || !handle->isVisible())
            return;
        const QPoint global = window->mapToGlobal(place);
        constexpr int kApart = 1000; // avoids accidental double clicks
        m_timestamp += type == QEvent::MouseMove ? 1 : kApart;
        qt_handleMouseEvent(handle, place, global, m_held, button, static_cast<QEvent::Type>(type), {},
                            m_timestamp);
    }

    Qt::MouseButtons m_held;
    QPoint m_pressedAt;
    int m_timestamp = 0;
};

} // namespace ql240::moments
