#include "platform/gstreamer/parameter_sets.h"

#include <algorithm>
#include <limits>

#include "platform/limits.h"
#include "platform/picture_sequence.h"

namespace ql240::gstreamer {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kAvcLists = 5;
constexpr std::size_t kHevcLists = 22;

// 0 if the size can't be read; limited to one more than the maximum, so that products don't overflow.
std::int64_t pixelsOf(const PictureSequence& sequence) {
    if (!sequence.hasSize)
        return 0;
    const bool isTooLarge = limits::isPictureTooLarge(sequence.width, sequence.height);
    return isTooLarge ? limits::kPicturePixels + 1 : sequence.width * sequence.height;
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
        m_pixels = std::max(
            {m_pixels, pixelsOf(readH264Sequence({set, true})), pixelsOf(readH264Sequence({set, false}))});
    else if (m_codec == ParameterCodec::H265 && (unit[0] >> 1 & 0x3FU) == 33)
        m_pixels = std::max(m_pixels, pixelsOf(readH265Sequence({set, true})));
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
