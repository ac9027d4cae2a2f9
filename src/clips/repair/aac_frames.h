// Finds the end of raw AAC frames (ISO/IEC 14496-3). Only an MP4 file's index has their sizes, so without it
// all codes of a frame have to be parsed, though none is decoded. Any thread; sizes in bytes.
#pragma once

#include <optional>

#include "clips/repair/file_window.h"

namespace ql240::repair {

struct AacFormat {
    std::uint8_t rateIndex = 0; // into the table of sampling rates
    std::uint8_t channels = 0;

    // From the decoder's configuration in the body of "esds"; nothing except for low complexity with 1,024
    // samples per frame.
    static std::optional<AacFormat> fromDescriptor(Bytes descriptor);
};

struct AacFrame {
    bool isWhole = true; // false: it continues past the end of the bytes
    std::size_t size = 0;
};

// The maximum size of a frame.
inline constexpr std::size_t kMostAacBytes = 8192;

// The frame at the start of `bytes`; nothing if they aren't a frame.
std::optional<AacFrame> aacFrameAt(Bytes bytes, const AacFormat& format);

} // namespace ql240::repair
