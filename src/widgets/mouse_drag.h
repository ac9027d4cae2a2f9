// A drag by one mouse button, which ends when the button isn't held any more: a release gets lost where a
// modal window or another program takes the mouse over.
#pragma once

#include <QMouseEvent>

namespace ql240 {

class MouseDrag {
public:
    void begin(const QMouseEvent& press) {
        m_button = press.button();
        m_pressedAt = pressTime(press);
    }
    void end() { m_button = Qt::NoButton; }
    void end(Qt::MouseButton button) {
        if (button == m_button)
            end();
    }
    bool isUnderWay() const { return m_button != Qt::NoButton; }

    // For each move: whether it belongs to the drag. The button may have been pressed again, on something
    // else.
    bool goesOn(const QMouseEvent& move) {
        if (!move.buttons().testFlag(m_button) || pressTime(move) != m_pressedAt)
            end();
        return isUnderWay();
    }

private:
    static ulong pressTime(const QMouseEvent& event) { return event.points().first().pressTimestamp(); }

    Qt::MouseButton m_button = Qt::NoButton;
    ulong m_pressedAt = 0;
};

} // namespace ql240
