// A drag by one mouse button, which ends when the button isn't held any more: a release gets lost where a
// modal window or another program takes the mouse over.
#pragma once

#include <qnamespace.h>
#include <QtGlobal>

namespace ql240 {

class MouseDrag {
public:
    void begin(Qt::MouseButton button) { m_button = button; }
    void end() { m_button = Qt::NoButton; }
    void end(Qt::MouseButton button) {
        if (button == m_button)
            end();
    }
    bool isUnderWay() const { return m_button != Qt::NoButton; }

    // For each move, with the buttons held during it: whether it belongs to the drag.
    bool goesOn(Qt::MouseButtons held) {
        if (!held.testFlag(m_button))
            end();
        return isUnderWay();
    }

private:
    Qt::MouseButton m_button = Qt::NoButton;
};

} // namespace ql240
