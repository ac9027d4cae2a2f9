#include "playback/image_adjust.h"

#include <algorithm>

#include "playback/image_adjust_avx2.h"

namespace ql240 {

namespace {

std::uint8_t clamped(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// BT.601 studio range; c is luma − 16, d and e are chroma − 128.
Rgb toRgb(std::int32_t c, std::int32_t d, std::int32_t e) {
    return {clamped((298 * c + 409 * e + 128) >> 8), clamped((298 * c - 100 * d - 208 * e + 128) >> 8),
            clamped((298 * c + 516 * d + 128) >> 8)};
}

std::uint8_t toLuma(const Rgb& p) {
    return static_cast<std::uint8_t>(((66 * p.r + 129 * p.g + 25 * p.b + 128) >> 8) + 16);
}

void adjustPair(std::uint8_t* pair, const ImageAdjust& adjust) {
    const std::int32_t d = pair[1] - 128;
    const std::int32_t e = pair[3] - 128;
    const Rgb first = toRgb(scaledLuma(pair[0], adjust), d, e);
    const Rgb second = toRgb(scaledLuma(pair[2], adjust), d, e);
    const std::int32_t r = (first.r + second.r + 1) >> 1;
    const std::int32_t g = (first.g + second.g + 1) >> 1;
    const std::int32_t b = (first.b + second.b + 1) >> 1;
    pair[0] = toLuma(first);
    pair[1] = static_cast<std::uint8_t>(((-38 * r - 74 * g + 112 * b + 128) >> 8) + 128);
    pair[2] = toLuma(second);
    pair[3] = static_cast<std::uint8_t>(((112 * r - 94 * g - 18 * b + 128) >> 8) + 128);
}

} // namespace

std::int32_t scaledLuma(std::uint8_t y, const ImageAdjust& adjust) {
    return (y - 16) * adjust.contrast / 100 + adjust.brightness;
}

void adjustYuy2Scalar(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust) {
    for (std::size_t i = 0; i + 4 <= length; i += 4)
        adjustPair(yuy2 + i, adjust);
}

void adjustYuy2(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust) {
    std::size_t done = 0;
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2 && fitsAvx2(adjust))
        done = adjustYuy2Avx2(yuy2, length, adjust);
#endif
    adjustYuy2Scalar(yuy2 + done, length - done, adjust);
}

void yuy2ToRgb(const std::uint8_t* yuy2, std::size_t pairs, std::uint8_t* rgb) {
    const auto put = [&rgb](const Rgb& pixel) {
        *rgb++ = pixel.r;
        *rgb++ = pixel.g;
        *rgb++ = pixel.b;
    };
    for (const std::uint8_t* pair = yuy2; pair != yuy2 + 4 * pairs; pair += 4) {
        put(toRgb(pair[0] - 16, pair[1] - 128, pair[3] - 128));
        put(toRgb(pair[2] - 16, pair[1] - 128, pair[3] - 128));
    }
}

} // namespace ql240
