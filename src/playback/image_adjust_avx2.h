// The picture adjustment of YUY2 frames with AVX2; call it only on processors that have it. Any thread.
#pragma once

#include "playback/image_adjust.h"

namespace ql240 {

// Within these bounds every intermediate value of the vector code fits its lane.
constexpr bool fitsAvx2(const ImageAdjust& adjust) {
    return adjust.contrast >= 0 && adjust.contrast <= 170 && adjust.brightness >= -1000 &&
           adjust.brightness <= 1000;
}

// Adjusts whole blocks of 32 bytes and returns the number of bytes adjusted.
std::size_t adjustYuy2Avx2(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust);

} // namespace ql240
