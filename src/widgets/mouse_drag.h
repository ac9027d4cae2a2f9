// A drag with one mouse button. It ends as soon as that button is no longer held, because the release is lost
// when a modal window or another program grabs the mouse.
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

    // Whether this move belongs to the drag. The button may have been released and pressed again elsewhere
    // since.
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
