// Whether a fixed-size window is in full screen, and the geometry to restore. The window system grants full
// screen asynchronously and may leave it on its own. Interface thread only.
#pragma once

#include <QRect>

class QWidget;

namespace ql240 {

class FullScreen {
public:
    explicit FullScreen(QWidget& window) : m_window(window) {}

    // What the user asked for; `agrees` says whether the window system has complied so far.
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
