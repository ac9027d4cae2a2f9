#include "playback/image_adjust.h"

#include <algorithm>

#if defined(__x86_64__)
#include <immintrin.h>
#define QL240_AVX2 __attribute__((target("avx2")))
#endif

namespace ql240 {

namespace {

std::uint8_t clamped(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// BT.601 studio range, c being the luma less its offset.
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

#if defined(__x86_64__)

// Within these bounds every intermediate value of the vector code fits its lane.
bool fitsVector(const ImageAdjust& adjust) {
    return adjust.contrast >= 0 && adjust.contrast <= 170 && adjust.brightness >= -1000 && adjust.brightness <= 1000;
}

// Four even pixels' and four odd pixels' values of one channel per 128-bit half, each clamped to 0..255.
QL240_AVX2 inline __m256i clampedChannel(__m256i even, __m256i odd, __m256i chroma) {
    const __m256i first = _mm256_srai_epi32(_mm256_add_epi32(even, chroma), 8);
    const __m256i second = _mm256_srai_epi32(_mm256_add_epi32(odd, chroma), 8);
    return _mm256_min_epu16(_mm256_packus_epi32(first, second), _mm256_set1_epi16(255));
}

// Eight pixel pairs. Lanes are 16 bits wide: luma as it lies, chroma as (d, e) pairs, then per 128-bit half four even
// and four odd pixels. Products of luma and 298 need 32 bits and go through the multiply-add of lane pairs, whose other
// lane carries the rounding constant.
QL240_AVX2 inline __m256i adjustedPairs(__m256i yuy2, __m256i contrast, __m256i brightness) {
    const __m256i lumaOffset = _mm256_sub_epi16(_mm256_and_si256(yuy2, _mm256_set1_epi16(0xFF)), _mm256_set1_epi16(16));
    // trunc(n / 100) for n < 43,690: 41944 / 2^22 exceeds 1 / 100 by less than 1 / (100 n).
    const __m256i scaled = _mm256_mullo_epi16(_mm256_abs_epi16(lumaOffset), contrast);
    const __m256i hundredth = _mm256_srli_epi16(_mm256_mulhi_epu16(scaled, _mm256_set1_epi16(-23592)), 6);
    const __m256i luma = _mm256_add_epi16(_mm256_sign_epi16(hundredth, lumaOffset), brightness);
    const __m256i chroma = _mm256_sub_epi16(_mm256_srli_epi16(yuy2, 8), _mm256_set1_epi16(128));

    const __m256i lumaFactors = _mm256_set1_epi32(128 << 16 | 298);
    const __m256i one = _mm256_set1_epi32(1 << 16);
    const __m256i even = _mm256_madd_epi16(_mm256_blend_epi16(luma, one, 0xAA), lumaFactors);
    const __m256i odd = _mm256_madd_epi16(_mm256_or_si256(_mm256_srli_epi32(luma, 16), one), lumaFactors);

    const auto pair = [](int low, int high) QL240_AVX2 {
        return _mm256_set1_epi32(static_cast<int>(static_cast<unsigned>(high) << 16 | (static_cast<unsigned>(low) & 0xFFFF)));
    };
    const __m256i r = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(0, 409)));
    const __m256i g = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(-100, -208)));
    const __m256i b = clampedChannel(even, odd, _mm256_madd_epi16(chroma, pair(516, 0)));

    const auto times = [](__m256i value, int factor) QL240_AVX2 {
        return _mm256_mullo_epi16(value, _mm256_set1_epi16(static_cast<short>(factor)));
    };
    const __m256i round = _mm256_set1_epi16(128);
    const __m256i lumaSum = _mm256_add_epi16(_mm256_add_epi16(times(r, 66), times(g, 129)),
                                             _mm256_add_epi16(times(b, 25), round));
    const __m256i newLuma = _mm256_add_epi16(_mm256_srli_epi16(lumaSum, 8), _mm256_set1_epi16(16));

    // U for the four lanes of the even pixels, V for those of the odd ones, from the average of both.
    const auto average = [](__m256i value) QL240_AVX2 {
        return _mm256_avg_epu16(value, _mm256_shuffle_epi32(value, 0x4E));
    };
    const auto factors = [](short u, short v) QL240_AVX2 {
        return _mm256_setr_epi16(u, u, u, u, v, v, v, v, u, u, u, u, v, v, v, v);
    };
    const __m256i chromaSum = _mm256_add_epi16(
        _mm256_add_epi16(_mm256_mullo_epi16(average(r), factors(-38, 112)),
                         _mm256_mullo_epi16(average(g), factors(-74, -94))),
        _mm256_add_epi16(_mm256_mullo_epi16(average(b), factors(112, -18)), round));
    const __m256i newChroma = _mm256_add_epi16(_mm256_srai_epi16(chromaSum, 8), round);

    const __m256i grouped = _mm256_or_si256(newLuma, _mm256_slli_epi16(newChroma, 8));
    const __m256i interleave = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
    return _mm256_shuffle_epi8(grouped, interleave);
}

// Returns how many bytes it has done.
QL240_AVX2 std::size_t adjustAvx2(std::uint8_t* yuy2, std::size_t length, const ImageAdjust& adjust) {
    const __m256i contrast = _mm256_set1_epi16(static_cast<short>(adjust.contrast));
    const __m256i brightness = _mm256_set1_epi16(static_cast<short>(adjust.brightness));
    std::size_t done = 0;
    for (; done + 32 <= length; done += 32) {
        auto* at = reinterpret_cast<__m256i*>(yuy2 + done);
        _mm256_storeu_si256(at, adjustedPairs(_mm256_loadu_si256(at), contrast, brightness));
    }
    return done;
}

#endif

}  // namespace

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
    if (hasAvx2 && fitsVector(adjust))
        done = adjustAvx2(yuy2, length, adjust);
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

}  // namespace ql240
