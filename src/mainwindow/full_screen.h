// Whether a window of fixed size stands in full screen, and the geometry that it comes back to. The window
// system grants full screen in its own time, and may take it away again. Interface thread only.
#pragma once

#include <QRect>

class QWidget;

namespace ql240 {

class FullScreen {
public:
    explicit FullScreen(QWidget& window) : m_window(window) {}

    // As the user wants it; `agrees` with what the window system has done so far.
    bool isWanted() const { return m_phase == Phase::Full; }
    bool agrees() const;

    void enter();
    void leave();

private:
    enum class Phase { Normal, Full };

    QWidget& m_window;
    Phase m_phase = Phase::Normal;
    QRect m_normalGeometry;
};

} // namespace ql240
