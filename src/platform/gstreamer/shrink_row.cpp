#include "platform/gstreamer/shrink_row.h"

#include <algorithm>

namespace ql240::gstreamer {

namespace {

std::int32_t mean(std::int32_t a, std::int32_t b) {
    return (a + b + 1) >> 1;
}

// Multiplies by the gain; the result is rounded and in 1/16.
std::int32_t gained(std::int32_t sample, std::int16_t gain) {
    return (sample * 64 * gain + 0x4000) >> 15;
}

std::uint32_t channel(std::int32_t sum) {
    return static_cast<std::uint32_t>(std::clamp((sum + 8) >> 4, 0, 255));
}

} // namespace

void shrinkRowScalar(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs,
                     int width, const RgbMatrix& matrix, std::uint32_t* rgb) {
    for (int x = 0; x < width; ++x) {
        const std::uint8_t* above = upper + 4 * pairs[x];
        const std::uint8_t* below = lower + 4 * pairs[x];
        const auto both = [&](int i) { return mean(above[i], below[i]); };
        const std::int32_t y = gained(mean(both(0), both(2)) - matrix.lumaOffset, matrix.luma);
        const std::int32_t u = both(1) - 128;
        const std::int32_t v = both(3) - 128;
        rgb[x] = 0xFF000000U | channel(y + gained(v, matrix.redV)) << 16 |
                 channel(y + gained(u, matrix.greenU) + gained(v, matrix.greenV)) << 8 |
                 channel(y + gained(u, matrix.blueU));
    }
}

void shrinkRow(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs, int width,
               const RgbMatrix& matrix, std::uint32_t* rgb) {
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2 && width >= kShrinkBlock)
        return shrinkRowAvx2(upper, lower, pairs, width, matrix, rgb);
#endif
    shrinkRowScalar(upper, lower, pairs, width, matrix, rgb);
}

} // namespace ql240::gstreamer
