// Arithmetic on YUY2 frames: 2 bytes per pixel in groups Y0 U Y1 V, rows without padding. Integer BT.601,
// studio range. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ql240 {

struct ImageAdjust {
    std::int32_t brightness = 0; // added to the scaled luma
    std::int32_t contrast = 100; // percent
    constexpr bool isNeutral() const { return brightness == 0 && contrast == 100; }
};

struct Rgb {
    std::uint8_t r = 0, g = 0, b = 0;
};

// Luma scaling: trunc((y - 16) * contrast / 100) + brightness.
std::int32_t scaledLuma(std::uint8_t y, const ImageAdjust& adjust);

// Applies brightness and contrast in place to length / 4 pixel pairs; up to 3 trailing bytes stay unchanged.
// Uses AVX2 if the processor has it, with the same results as adjustYuy2Scalar.
void adjustYuy2(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust);
void adjustYuy2Scalar(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust);

// Converts `pairs` pixel pairs to 3 bytes per pixel (R, G, B) without adjustment.
void yuy2ToRgb(const std::uint8_t* yuy2, std::size_t pairs, std::uint8_t* rgb);

} // namespace ql240
