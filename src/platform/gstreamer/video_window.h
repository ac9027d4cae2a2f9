// The renderer's window: a child of the host that draws the newest frame unscaled and leaves mouse and
// keyboard to the host. Interface thread.
#pragma once

#include <QWidget>

#include <memory>

namespace ql240::gstreamer {

class FrameSlot;

class VideoWindow final : public QWidget {
public:
    VideoWindow(std::shared_ptr<FrameSlot> slot, QWidget* host);
    ~VideoWindow() override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void retarget();

    std::shared_ptr<FrameSlot> m_slot;
    QRect m_visible; // the visible part, in window coordinates
};

} // namespace ql240::gstreamer
