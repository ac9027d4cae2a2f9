// Shrinks one row to half the frame's width or less and converts it from YUY2 to RGB in one pass: each output
// pixel is the mean of one pixel pair in two source rows. FrameConverter uses this when scaling down by two
// or more.
#pragma once

#include <cstdint>

namespace ql240::gstreamer {

// YUV to RGB with gains in units of 1 / 8192.
struct RgbMatrix {
    std::int16_t lumaOffset;
    std::int16_t luma;
    std::int16_t redV;
    std::int16_t greenU;
    std::int16_t greenV;
    std::int16_t blueU;
};

constexpr std::int16_t rgbGain(double value) {
    return static_cast<std::int16_t>(value * 8192 + (value < 0 ? -0.5 : 0.5));
}

// ITU-R BT.601 and BT.709, studio and full range.
constexpr RgbMatrix kStudio601{
    16, rgbGain(1.16438), rgbGain(1.59603), rgbGain(-0.39176), rgbGain(-0.81297), rgbGain(2.01723)};
constexpr RgbMatrix kStudio709{
    16, rgbGain(1.16438), rgbGain(1.79274), rgbGain(-0.21325), rgbGain(-0.53291), rgbGain(2.11240)};
constexpr RgbMatrix kFull601{
    0, rgbGain(1), rgbGain(1.402), rgbGain(-0.344136), rgbGain(-0.714136), rgbGain(1.772)};
constexpr RgbMatrix kFull709{
    0, rgbGain(1), rgbGain(1.5748), rgbGain(-0.187324), rgbGain(-0.468124), rgbGain(1.8556)};

// `pairs` has, for each of `width` pixels, the index of its pixel pair in the rows `upper` and `lower`; `rgb`
// receives 0xFFRRGGBB. Uses AVX2 if the processor has it; the results equal those of shrinkRowScalar.
void shrinkRow(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs, int width,
               const RgbMatrix& matrix, std::uint32_t* rgb);
void shrinkRowScalar(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs,
                     int width, const RgbMatrix& matrix, std::uint32_t* rgb);

constexpr int kShrinkBlock = 16; // pixels; the minimum width for shrinkRowAvx2
void shrinkRowAvx2(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs, int width,
                   const RgbMatrix& matrix, std::uint32_t* rgb);

} // namespace ql240::gstreamer
