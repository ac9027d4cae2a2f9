#include <immintrin.h>

#include "platform/gstreamer/shrink_row.h"

namespace ql240::gstreamer {

namespace {

// The means of the two rows for eight pairs, each as the bytes Y U Y V.
inline __m256i eightPairs(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs) {
    const __m256i index = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pairs));
    const __m256i above = _mm256_i32gather_epi32(reinterpret_cast<const int*>(upper), index, 4);
    const __m256i below = _mm256_i32gather_epi32(reinterpret_cast<const int*>(lower), index, 4);
    return _mm256_avg_epu8(above, below);
}

// Clamps a channel to 0..255; the sums have four fractional bits.
inline __m256i channel(__m256i sum) {
    const __m256i rounded = _mm256_srai_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(8)), 4);
    return _mm256_min_epi16(_mm256_max_epi16(rounded, _mm256_setzero_si256()), _mm256_set1_epi16(255));
}

// Gains have 13 fractional bits and samples are shifted by 6, so the high half of the product has 4.
inline __m256i gained(__m256i sample, std::int16_t gain) {
    return _mm256_mulhrs_epi16(_mm256_slli_epi16(sample, 6), _mm256_set1_epi16(gain));
}

void shrinkBlock(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs,
                 const RgbMatrix& matrix, std::uint32_t* rgb) {
    const __m256i first = eightPairs(upper, lower, pairs);
    const __m256i second = eightPairs(upper, lower, pairs + 8);
    const __m256i byteMask = _mm256_set1_epi32(0xFF);
    const auto field = [&](int shift) {
        return _mm256_packus_epi32(_mm256_and_si256(_mm256_srli_epi32(first, shift), byteMask),
                                   _mm256_and_si256(_mm256_srli_epi32(second, shift), byteMask));
    };
    const __m256i middle = _mm256_set1_epi16(128);
    const __m256i y =
        gained(_mm256_sub_epi16(_mm256_avg_epu16(field(0), field(16)), _mm256_set1_epi16(matrix.lumaOffset)),
               matrix.luma);
    const __m256i u = _mm256_sub_epi16(field(8), middle);
    const __m256i v = _mm256_sub_epi16(field(24), middle);
    const __m256i red = channel(_mm256_add_epi16(y, gained(v, matrix.redV)));
    const __m256i green =
        channel(_mm256_add_epi16(y, _mm256_add_epi16(gained(u, matrix.greenU), gained(v, matrix.greenV))));
    const __m256i blue = channel(_mm256_add_epi16(y, gained(u, matrix.blueU)));
    const __m256i low = _mm256_or_si256(blue, _mm256_slli_epi16(green, 8));
    const __m256i high = _mm256_or_si256(red, _mm256_set1_epi16(static_cast<short>(0xFF00)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(rgb), _mm256_unpacklo_epi16(low, high));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(rgb + 8), _mm256_unpackhi_epi16(low, high));
}

} // namespace

// If the width isn't a multiple of the block, the last block overlaps the previous one.
void shrinkRowAvx2(const std::uint8_t* upper, const std::uint8_t* lower, const std::int32_t* pairs, int width,
                   const RgbMatrix& matrix, std::uint32_t* rgb) {
    for (int x = 0; x + kShrinkBlock <= width; x += kShrinkBlock)
        shrinkBlock(upper, lower, pairs + x, matrix, rgb + x);
    if (width % kShrinkBlock != 0) {
        const int last = width - kShrinkBlock;
        shrinkBlock(upper, lower, pairs + last, matrix, rgb + last);
    }
}

} // namespace ql240::gstreamer
