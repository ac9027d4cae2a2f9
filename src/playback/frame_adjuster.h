// The picture adjustment of one video stream. It adjusts every other frame and copies it over the next one,
// which halves the processing at the cost of half the frame rate. setAdjust runs on the interface thread,
// filter on the stream's streaming thread.
#pragma once

#include <QSize>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "playback/image_adjust.h"

namespace ql240 {

class FrameAdjuster {
public:
    void setAdjust(const ImageAdjust& adjust);

    // Modifies a YUY2 frame in place; `frameSize` is the stream's native size.
    void filter(std::uint8_t* buffer, std::size_t length, const QSize& frameSize);

private:
    void remakeSavedFrame(std::size_t length, const QSize& frameSize);

    std::atomic<std::int32_t> m_brightness{0};
    std::atomic<std::int32_t> m_contrast{100};

    // Streaming thread.
    bool m_repeatNext = false;
    std::vector<std::uint8_t> m_savedFrame;
    QSize m_savedSize{-1, -1};
};

} // namespace ql240
