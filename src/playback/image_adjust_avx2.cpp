#include "playback/image_adjust_avx2.h"

#include <immintrin.h>

namespace ql240 {

namespace {

// One channel of four even and four odd pixels per 128-bit half, each value clamped to 0..255.
inline __m256i clampedChannel(__m256i even, __m256i odd, __m256i chroma) {
    const __m256i first = _mm256_srai_epi32(_mm256_add_epi32(even, chroma), 8);
    const __m256i second = _mm256_srai_epi32(_mm256_add_epi32(odd, chroma), 8);
    return _mm256_min_epu16(_mm256_packus_epi32(first, second), _mm256_set1_epi16(255));
}

// Eight pixel pairs. Lanes are 16 bits wide: luma in memory order, chroma as (d, e) pairs, then per 128-bit
// half four even and four odd pixels. Luma times 298 needs 32 bits, so it goes through the multiply-add of
// lane pairs, whose other lane carries the rounding constant.
inline __m256i adjustedPairs(__m256i yuy2, __m256i contrast, __m256i brightness) {
    const __m256i lumaOffset =
        _mm256_sub_epi16(_mm256_and_si256(yuy2, _mm256_set1_epi16(0xFF)), _mm256_set1_epi16(16));
    // trunc(n / 100) for n < 43,690: 41944 / 2^22 exceeds 1 / 100 by less than 1 / (100 n).
    const __m256i scaled = _mm256_mullo_epi16(_mm256_abs_epi16(lumaOffset), contrast);
    const __m256i hundredth = _mm256_srli_epi16(_mm256_mulhi_epu16(scaled, _mm256_set1_epi16(-23592)), 6);
    const __m256i luma = _mm256_add_epi16(_mm256_sign_epi16(hundredth, lumaOffset), brightness);
    const __m256i chroma = _mm256_sub_epi16(_mm256_srli_epi16(yuy2, 8), _mm256_set1_epi16(128));

    const __m256i lumaFactors = _mm256_set1_epi32(128 << 16 | 298);
    const __m256i one = _mm256_set1_epi32(1 << 16);
    const __m256i even = _mm256_madd_epi16(_mm256_blend_epi16(luma, one, 0xAA), lumaFactors);
    const __m256i odd = _mm256_madd_epi16(_mm256_or_si256(_mm256_srli_epi32(luma, 16), one), lumaFactors);

    const auto pair = [](int low, int high) {
        return _mm256_set1_epi32(
            static_cast<int>(static_cast<unsigned>(high) << 16 | (static_cast<unsigned>(low) & 0xFFFF)));
    };
    const __m256i r = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(0, 409)));
    const __m256i g = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(-100, -208)));
    const __m256i b = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(516, 0)));

    const auto times = [](__m256i value, int factor) {
        return _mm256_mullo_epi16(value, _mm256_set1_epi16(static_cast<short>(factor)));
    };
    const __m256i round = _mm256_set1_epi16(128);
    const __m256i lumaSum = _mm256_add_epi16(_mm256_add_epi16(times(r, 66), times(g, 129)),
                                             _mm256_add_epi16(times(b, 25), round));
    const __m256i newLuma = _mm256_add_epi16(_mm256_srli_epi16(lumaSum, 8), _mm256_set1_epi16(16));

    // U in the four lanes of the even pixels, V in those of the odd ones, each from the average of both.
    const auto average = [](__m256i value) {
        return _mm256_avg_epu16(value, _mm256_shuffle_epi32(value, 0x4E));
    };
    const auto factors = [](short u, short v) {
        return _mm256_setr_epi16(u, u, u, u, v, v, v, v, u, u, u, u, v, v, v, v);
    };
    const __m256i chromaSum =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_mullo_epi16(average(r), factors(-38, 112)),
                                          _mm256_mullo_epi16(average(g), factors(-74, -94))),
                         _mm256_add_epi16(_mm256_mullo_epi16(average(b), factors(112, -18)), round));
    const __m256i newChroma = _mm256_add_epi16(_mm256_srai_epi16(chromaSum, 8), round);

    const __m256i grouped = _mm256_or_si256(newLuma, _mm256_slli_epi16(newChroma, 8));
    const __m256i interleave =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
    return _mm256_shuffle_epi8(grouped, interleave);
}

} // namespace

std::size_t adjustYuy2Avx2(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust) {
    const __m256i contrast = _mm256_set1_epi16(static_cast<short>(adjust.contrast));
    const __m256i brightness = _mm256_set1_epi16(static_cast<short>(adjust.brightness));
    std::size_t done = 0;
    for (; done + 32 <= length; done += 32) {
        auto* at = reinterpret_cast<__m256i*>(yuy2 + done);
        _mm256_storeu_si256(at, adjustedPairs(_mm256_loadu_si256(at), contrast, brightness));
    }
    return done;
}

} // namespace ql240
