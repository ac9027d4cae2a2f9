// Converts YUY2 frames to what a window shows: scaled, in RGB, by the stream's own colour matrix and range.
// Buffers are kept from frame to frame. One thread at a time.
#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <vector>

#include <gst/gst.h>

namespace ql240::gstreamer {

class FrameConverter {
public:
    // The frame's size in pixels; empty if the sample isn't video.
    static QSize frameSize(GstSample* sample);

    // Scales the whole frame to `size` and puts the part `visible` of that into *picture (RGB32,
    // visible.size()). False if the sample is no YUY2 frame.
    bool convert(GstSample* sample, const QSize& size, const QRect& visible, QImage* picture);

private:
    struct Planes {
        std::vector<std::uint8_t> bytes;
        std::uint8_t* y = nullptr;
        std::uint8_t* u = nullptr;
        std::uint8_t* v = nullptr;
        int strideY = 0;
        int strideUv = 0;
        void resize(const QSize& size);
    };

    Planes m_source;
    Planes m_scaled;
};

} // namespace ql240::gstreamer
