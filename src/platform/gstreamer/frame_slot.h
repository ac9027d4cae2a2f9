// Takes decoded frames from the sink to the window: the streaming thread converts each one to the size at
// which it is shown and leaves it here, the newest wins, and one event wakes the window. Nothing is
// converted while no window shows. Members are grouped by the thread that uses them.
#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>
#include <mutex>

#include <gst/app/gstappsink.h>

#include "platform/gstreamer/frame_converter.h"
#include "platform/gstreamer/gst_handles.h"

class QObject;

namespace ql240::gstreamer {

// How a window shows the picture, in device pixels: the whole picture is scaled to `size`, and `visible` of
// it is seen.
struct PictureTarget {
    QSize size;
    QRect visible;
    friend bool operator==(const PictureTarget&, const PictureTarget&) = default;
};

class FrameSlot {
public:
    static const int kFrameReady; // the type of the event that wakes the window

    // Makes the sink deliver into the slot, which lives as long as the sink may call.
    static void connectTo(const std::shared_ptr<FrameSlot>& slot, GstAppSink* sink);

    // Interface thread. A null `window` or an empty visible part stops the conversion; a changed target
    // converts the last frame again, here and now.
    void setTarget(QObject* window, const PictureTarget& target);
    // The newest picture, as large as the target's visible part; null before the first.
    const QImage& takePicture();

    // Native size of the frames; empty before the first. Any thread.
    QSize frameSize() const;

private:
    void deliver(SampleHandle sample);
    void tellWindow();

    mutable std::mutex m_mutex;
    QObject* m_window = nullptr;
    PictureTarget m_target;
    SampleHandle m_last;
    QSize m_frameSize;
    QImage m_ready;
    bool m_readyIsFresh = false;
    bool m_told = false;

    // Streaming thread, and the interface thread while it converts again; guarded by m_convertMutex.
    std::mutex m_convertMutex;
    FrameConverter m_converter;
    QImage m_back;

    // Interface thread.
    QImage m_front;
};

} // namespace ql240::gstreamer
