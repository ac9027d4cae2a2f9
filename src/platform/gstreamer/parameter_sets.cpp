#include "platform/gstreamer/parameter_sets.h"

#include <algorithm>
#include <limits>

#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kAvcLists = 5;
constexpr std::size_t kHevcLists = 22;

// Reads the bits of one unit; zeros past its end.
class Bits {
public:
    // `escaped`: a 3 after two zeros is an emulation prevention byte, which is skipped.
    Bits(Bytes bytes, bool escaped) : m_bytes(bytes), m_escaped(escaped) {}

    std::uint32_t take(int count) {
        std::uint32_t value = 0;
        for (; count > 0; --count)
            value = value << 1 | bit();
        return value;
    }
    void skip(int count) { take(count); }
    std::uint32_t number() { // unsigned Exp-Golomb code
        int zeros = 0;
        while (zeros < 31 && !bit())
            ++zeros;
        if (zeros < 31)
            return (1U << zeros) - 1 + take(zeros);
        m_isOver |= m_isPast;
        return take(32) - 1;
    }
    // Whether a number started past the end.
    bool isOver() const { return m_isOver; }
    int difference() {
        const std::uint32_t value = number();
        return value % 2 ? static_cast<int>(value / 2) + 1 : -static_cast<int>(value / 2);
    }

private:
    std::uint32_t bit() {
        if (m_left == 0)
            next();
        return m_byte >> --m_left & 1U;
    }
    void next() {
        const int byte = m_zeros >= 2 && m_at < m_bytes.size() ? m_bytes[m_at] : 0;
        if (byte == 1 || byte == 2)
            m_at = m_bytes.size(); // the next unit starts here
        if (byte == 3 && m_escaped) {
            ++m_at;
            m_zeros = 0;
        }
        m_isPast = m_at >= m_bytes.size();
        m_byte = m_at < m_bytes.size() ? m_bytes[m_at++] : 0;
        m_zeros = m_byte ? 0 : m_zeros + 1;
        m_left = 8;
    }

    Bytes m_bytes;
    bool m_escaped;
    std::size_t m_at = 0;
    std::uint32_t m_byte = 0;
    int m_left = 0;
    int m_zeros = 0;
    bool m_isPast = false;
    bool m_isOver = false;
};

bool isHighProfile(std::uint32_t profile) {
    constexpr std::uint32_t kHigh[] = {44, 83, 86, 100, 110, 118, 122, 128, 138, 144, 244};
    return std::find(std::begin(kHigh), std::end(kHigh), profile) != std::end(kHigh);
}

void skipScalingList(Bits& bits, int size) {
    int last = 8;
    int next = 8;
    for (int i = 0; i < size && next; ++i) {
        next = (last + bits.difference()) & 0xFF;
        last = next ? next : last;
    }
}

void skipFormat(Bits& bits) {
    const std::uint32_t chroma = bits.number();
    bits.skip(chroma == 3 ? 1 : 0);
    bits.number(); // bit depths
    bits.number();
    bits.skip(1);
    if (!bits.take(1))
        return;
    for (int i = 0; i < (chroma == 3 ? 12 : 8); ++i) {
        if (bits.take(1))
            skipScalingList(bits, i < 6 ? 16 : 64);
    }
}

void skipOrder(Bits& bits) {
    const std::uint32_t kind = bits.number();
    if (kind == 0)
        bits.number();
    if (kind != 1)
        return;
    bits.skip(1);
    bits.difference();
    bits.difference();
    for (std::uint32_t i = std::min(bits.number(), 255U); i > 0; --i)
        bits.difference();
}

// 0 if the size can't be read; limited to one more than the maximum, so that products don't overflow.
std::int64_t pixelsOf(std::int64_t width, std::int64_t height, const Bits& bits) {
    if (bits.isOver())
        return 0;
    return limits::isPictureTooLarge(width, height) ? limits::kPicturePixels + 1 : width * height;
}

std::int64_t h264Pixels(Bits bits) {
    constexpr std::int64_t kBlock = 16;
    const std::uint32_t profile = bits.take(8);
    bits.skip(16);
    bits.number();
    if (isHighProfile(profile))
        skipFormat(bits);
    bits.number();
    skipOrder(bits);
    bits.number(); // reference frames
    bits.skip(1);
    const std::int64_t width = kBlock * (static_cast<std::int64_t>(bits.number()) + 1);
    const std::int64_t height = kBlock * (static_cast<std::int64_t>(bits.number()) + 1);
    const bool hasFields = !bits.take(1);
    return pixelsOf(width, hasFields ? 2 * height : height, bits);
}

void skipLayers(Bits& bits, std::uint32_t more) {
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

std::int64_t h265Pixels(Bits bits) {
    bits.skip(4);
    const std::uint32_t moreLayers = bits.take(3);
    bits.skip(1);
    skipLayers(bits, moreLayers);
    bits.number();
    if (bits.number() == 3)
        bits.skip(1);
    const std::int64_t width = bits.number();
    const std::int64_t height = bits.number();
    return pixelsOf(width, height, bits);
}

// False at the end, or if fewer bytes are left than the length states.
bool takeSized(Bytes& bytes, int lengthBytes, Bytes& unit) {
    const auto head = static_cast<std::size_t>(lengthBytes);
    if (bytes.size() <= head)
        return false;
    std::size_t length = 0;
    for (const std::uint8_t byte : bytes.first(head))
        length = length << 8 | byte;
    if (length > bytes.size() - head)
        return false;
    unit = bytes.subspan(head, length);
    bytes = bytes.subspan(head + length);
    return true;
}

} // namespace

// If an H.264 set is invalid, the decoder parses it again without removing emulation prevention bytes.
bool ParameterSets::isUnitTooLarge(Bytes unit) {
    const std::size_t head = m_codec == ParameterCodec::H264 ? 1 : 2;
    if (unit.size() <= head)
        return false;
    if (isSlice(unit))
        ++m_slices;
    const Bytes set = unit.subspan(head);
    if (m_codec == ParameterCodec::H264 && (unit[0] & 0x1FU) == 7)
        m_pixels = std::max({m_pixels, h264Pixels(Bits(set, true)), h264Pixels(Bits(set, false))});
    else if (m_codec == ParameterCodec::H265 && (unit[0] >> 1 & 0x3FU) == 33)
        m_pixels = std::max(m_pixels, h265Pixels(Bits(set, true)));
    return m_pixels > limits::kPicturePixels || m_slices * m_pixels > limits::kPassedPixels;
}

bool ParameterSets::isSlice(Bytes unit) const {
    const auto kind = m_codec == ParameterCodec::H264 ? unit[0] & 0x1FU : unit[0] >> 1 & 0x3FU;
    return m_codec == ParameterCodec::H264 ? (kind >= 1 && kind <= 5) || kind == 20 : kind < 32;
}

bool ParameterSets::areStartedTooLarge(Bytes bytes) {
    for (auto at = bytes.begin(); (at = std::find(at, bytes.end(), 1)) != bytes.end(); ++at) {
        const std::ptrdiff_t before = at - bytes.begin();
        if (before >= 2 && at[-1] == 0 && at[-2] == 0 && isUnitTooLarge({at + 1, bytes.end()}))
            return true;
    }
    return false;
}

// Removes the units read from `bytes`. A decoder also finds start codes within a unit.
bool ParameterSets::areSizedTooLarge(Bytes& bytes, int lengthBytes, std::size_t count) {
    m_slices = 0;
    Bytes unit;
    for (std::size_t i = 0; i < count && takeSized(bytes, lengthBytes, unit); ++i) {
        if (isUnitTooLarge(unit) || areStartedTooLarge(unit))
            return true;
    }
    return false;
}

// Each list starts with its number of units.
bool ParameterSets::areListsTooLarge(Bytes head) {
    const bool isAvc = m_codec == ParameterCodec::H264;
    Bytes rest = head.subspan(isAvc ? kAvcLists : kHevcLists + 1);
    const int lists = isAvc ? 2 : head[kHevcLists];
    const std::size_t before = isAvc ? 1 : 3;
    for (int i = 0; i < lists && rest.size() > before; ++i) {
        std::size_t count = rest[0] & (i ? 0xFFU : 0x1FU);
        if (!isAvc)
            count = std::size_t{rest[1]} << 8U | rest[2];
        rest = rest.subspan(before);
        if (areSizedTooLarge(rest, 2, count))
            return true;
    }
    return false;
}

bool ParameterSets::isHeadTooLarge(Bytes head) {
    const std::size_t fixed = m_codec == ParameterCodec::H264 ? kAvcLists : kHevcLists;
    m_lengthBytes = 0;
    m_slices = 0;
    if (areStartedTooLarge(head))
        return true;
    if (head.size() <= fixed || (head[0] == 0 && head[1] == 0))
        return false;
    m_lengthBytes = (head[fixed - 1] & 3) + 1;
    return areListsTooLarge(head);
}

// A decoder accepts a piece that looks like a head as a new head.
bool ParameterSets::isPieceTooLarge(Bytes piece) {
    const bool isHead = m_codec == ParameterCodec::H264 && piece.size() > kAvcLists && piece[0] == 1;
    Bytes rest = piece;
    if (m_lengthBytes > 0 &&
        (areSizedTooLarge(rest, m_lengthBytes, kAll) || (isHead && areListsTooLarge(piece))))
        return true;
    m_slices = 0;
    return !rest.empty() && areStartedTooLarge(piece); // the lengths don't cover the piece
}

} // namespace ql240::gstreamer
