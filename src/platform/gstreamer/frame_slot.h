// Passes decoded frames from the sink to the window: the streaming thread converts each frame to the
// displayed size and stores it here, replacing an older one, and posts one event to the window. Converts
// nothing while no window shows. Members are grouped by the thread that uses them.
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

// How a window shows the frame, in device pixels: scaled to `size`, of which the part `visible` is on screen.
struct PictureTarget {
    QSize size;
    QRect visible;
    friend bool operator==(const PictureTarget&, const PictureTarget&) = default;
};

class FrameSlot {
public:
    static const int kFrameReady; // type of the event posted to the window

    // Connects the sink to the slot, which the sink keeps alive.
    static void connectTo(const std::shared_ptr<FrameSlot>& slot, GstAppSink* sink);

    // Interface thread. A null `window` or an empty visible part stops the conversion; a changed target
    // converts the last frame again before this returns.
    void setTarget(QObject* window, const PictureTarget& target);
    // Interface thread. Between the two, no picture is shown unless one has been shown before: frames that
    // precede the target of a seek don't flash up in a clip that was just opened. release() shows the newest.
    void hold();
    void release();
    // The newest picture, with the size of the target's visible part; null before the first.
    const QImage& takePicture();

    // Native size of the frames; empty before the first. Any thread.
    QSize frameSize() const;

private:
    void deliver(SampleHandle sample);
    void publish();
    void convertLast(SampleHandle last, const PictureTarget& target);

    mutable std::mutex m_mutex;
    QObject* m_window = nullptr;
    PictureTarget m_target;
    SampleHandle m_last;
    QSize m_frameSize;
    QImage m_ready;
    bool m_readyIsFresh = false;
    bool m_isEventPosted = false;
    bool m_isHeld = false;

    // Streaming thread, and the interface thread while it converts again; guarded by m_convertMutex.
    std::mutex m_convertMutex;
    FrameConverter m_converter;
    QImage m_back;

    // Interface thread.
    QImage m_front;
};

} // namespace ql240::gstreamer
