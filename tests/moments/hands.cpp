#include "moments/hands.h"

#include <QCursor>
#include <QPointer>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace ql240::moments {
namespace {

// The text that a key types on a plain keyboard.
QString textOf(int key, Qt::KeyboardModifiers modifiers) {
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier) || key < Qt::Key_Space ||
        key > Qt::Key_AsciiTilde)
        return {};
    const QChar letter(key);
    return modifiers & Qt::ShiftModifier ? QString(letter) : QString(letter.toLower());
}

} // namespace

void Hands::send(QWidget* window, QPoint place, Qt::MouseButton button, int type) {
    QWindow* handle = window->windowHandle();
    if (!handle || !handle->isVisible())
        return;
    const QPoint global = window->mapToGlobal(place);
    constexpr int kApart = 1000; // avoids accidental double clicks
    m_timestamp += type == QEvent::MouseMove ? 1 : kApart;
    qt_handleMouseEvent(handle, place, global, m_held, button, static_cast<QEvent::Type>(type), {},
                        m_timestamp);
}

void Hands::press(QWidget* window, QPoint place, Qt::MouseButton button) {
    QCursor::setPos(window->mapToGlobal(place));
    m_held |= button;
    m_pressedAt = window->mapToGlobal(place);
    send(window, place, button, QEvent::MouseButtonPress);
}

void Hands::release(QWidget* window, QPoint place, Qt::MouseButton button) {
    m_held &= ~Qt::MouseButtons(button);
    send(window, place, button, QEvent::MouseButtonRelease);
}

void Hands::move(QWidget* window, QPoint place) {
    send(window, place, Qt::NoButton, QEvent::MouseMove);
}

void Hands::click(QWidget* window, QPoint place, Qt::MouseButton button) {
    const QPointer<QWidget> kept(window);
    press(window, place, button);
    if (kept)
        release(window, place, button);
}

void Hands::type(QWidget* window, int key, Qt::KeyboardModifiers modifiers, int repeats) {
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

} // namespace ql240::moments
