#include "playback/frame_adjuster.h"

#include <algorithm>
#include <cstring>

namespace ql240 {

void FrameAdjuster::setAdjust(const ImageAdjust& adjust) {
    m_brightness.store(adjust.brightness, std::memory_order_relaxed);
    m_contrast.store(adjust.contrast, std::memory_order_relaxed);
}

void FrameAdjuster::filter(std::uint8_t* buffer, std::size_t length, const QSize& frameSize) {
    const ImageAdjust adjust{m_brightness.load(std::memory_order_relaxed),
                             m_contrast.load(std::memory_order_relaxed)};
    if (adjust.isNeutral()) {
        m_repeatNext = false;
        std::vector<std::uint8_t>().swap(m_savedFrame);
        return;
    }
    if (m_savedFrame.size() != length || m_savedSize != frameSize)
        remakeSavedFrame(length, frameSize);
    if (m_repeatNext) {
        std::memcpy(buffer, m_savedFrame.data(), length);
    } else {
        adjustYuy2(buffer, length, adjust);
        std::memcpy(m_savedFrame.data(), buffer, length);
    }
    m_repeatNext = !m_repeatNext;
}

void FrameAdjuster::remakeSavedFrame(std::size_t length, const QSize& frameSize) {
    m_savedFrame.assign(length, 128);
    for (std::size_t i = 0; i < length; i += 2)
        m_savedFrame[i] = 16;
    m_savedSize = frameSize;
    m_repeatNext = false;
}

} // namespace ql240
