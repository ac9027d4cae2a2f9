#include "platform/picture_sequence.h"

#include <algorithm>
#include <bit>
#include <iterator>

#include "platform/limits.h"

namespace ql240 {
namespace {

constexpr std::uint32_t kSeparateChroma = 3;
constexpr std::uint32_t kMostOrderBits = 16;

bool isHighProfile(std::uint32_t profile) {
    constexpr std::uint32_t kHigh[] = {44, 83, 86, 100, 110, 118, 122, 128, 138, 144, 244};
    return std::find(std::begin(kHigh), std::end(kHigh), profile) != std::end(kHigh);
}

void skipScalingList(UnitBits& bits, int size) {
    int last = 8;
    int next = 8;
    for (int i = 0; i < size && next; ++i) {
        next = static_cast<int>((static_cast<std::uint32_t>(last) + bits.difference()) & 0xFFU);
        last = next ? next : last;
    }
}

// Whether the colour planes are coded separately.
bool readFormat(UnitBits& bits) {
    const std::uint32_t chroma = bits.number();
    const bool hasPlanes = chroma == kSeparateChroma && bits.take(1);
    bits.number(); // bit depths
    bits.number();
    bits.skip(1);
    if (!bits.take(1))
        return hasPlanes;
    for (int i = 0; i < (chroma == kSeparateChroma ? 12 : 8); ++i) {
        if (bits.take(1))
            skipScalingList(bits, i < 6 ? 16 : 64);
    }
    return hasPlanes;
}

int bitCount(std::uint32_t moreThanFour) {
    return static_cast<int>(std::min(moreThanFour, kMostOrderBits - 4)) + 4;
}

void readOrder(UnitBits& bits, PictureSequence& sequence) {
    sequence.orderKind = bits.number();
    if (sequence.orderKind == 0)
        sequence.orderBits = bitCount(bits.number());
    if (sequence.orderKind != 1)
        return;
    bits.skip(1);
    bits.difference();
    bits.difference();
    for (std::uint32_t i = std::min(bits.number(), 255U); i > 0; --i)
        bits.difference();
}

void skipLayers(UnitBits& bits, std::uint32_t more) {
    constexpr int kProfile = 88;
    constexpr int kLevel = 8;
    bits.skip(kProfile + kLevel);
    std::uint32_t said[8] = {};
    for (std::uint32_t i = 0; i < more; ++i)
        said[i] = bits.take(2);
    bits.skip(more ? static_cast<int>(2 * (8 - more)) : 0);
    for (std::uint32_t i = 0; i < more; ++i)
        bits.skip((said[i] & 2U ? kProfile : 0) + (said[i] & 1U ? kLevel : 0));
}

// A slice's address is the number of the coding tree block that it begins at.
int addressBitsOf(const PictureSequence& sequence, std::uint32_t blockBits) {
    if (limits::isPictureTooLarge(sequence.width, sequence.height))
        return 0;
    const std::int64_t block = INT64_C(1) << std::min(blockBits, 30U);
    const std::int64_t across = (sequence.width + block - 1) / block;
    const std::int64_t down = (sequence.height + block - 1) / block;
    return static_cast<int>(
        std::bit_width(static_cast<std::uint64_t>(std::max<std::int64_t>(0, across * down - 1))));
}

} // namespace

PictureSequence readH264Sequence(UnitBits bits) {
    constexpr std::int64_t kBlock = 16;
    PictureSequence sequence;
    const std::uint32_t profile = bits.take(8);
    bits.skip(16);
    sequence.id = bits.number();
    if (isHighProfile(profile))
        sequence.hasPlanes = readFormat(bits);
    sequence.frameNumberBits = bitCount(bits.number());
    readOrder(bits, sequence);
    bits.number(); // reference frames
    bits.skip(1);
    sequence.width = kBlock * (static_cast<std::int64_t>(bits.number()) + 1);
    sequence.height = kBlock * (static_cast<std::int64_t>(bits.number()) + 1);
    sequence.hasFields = !bits.take(1);
    sequence.height *= sequence.hasFields ? 2 : 1;
    sequence.hasSize = !bits.isOver();
    return sequence;
}

PictureSequence readH265Sequence(UnitBits bits) {
    PictureSequence sequence;
    bits.skip(4);
    const std::uint32_t moreLayers = bits.take(3);
    bits.skip(1);
    skipLayers(bits, moreLayers);
    sequence.id = bits.number();
    sequence.hasPlanes = bits.number() == kSeparateChroma && bits.take(1);
    sequence.width = bits.number();
    sequence.height = bits.number();
    sequence.hasSize = !bits.isOver();
    for (int i = bits.take(1) ? 4 : 0; i > 0; --i)
        bits.number(); // cropping
    bits.number();     // bit depths
    bits.number();
    sequence.orderBits = bitCount(bits.number());
    for (std::uint32_t i = bits.take(1) ? 0 : moreLayers; i <= moreLayers; ++i) {
        bits.number();
        bits.number();
        bits.number();
    }
    const std::uint32_t smallest = bits.number() + 3;
    sequence.addressBits = addressBitsOf(sequence, smallest + std::min(bits.number(), 8U));
    return sequence;
}

} // namespace ql240
