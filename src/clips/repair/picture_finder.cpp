#include "clips/repair/picture_finder.h"

#include <algorithm>

namespace ql240::repair {
namespace {

constexpr std::size_t kHeadBytes = 64;
constexpr int kMostUnits = 300;

} // namespace

PictureFinder::PictureFinder(UnitSyntax syntax, std::int64_t mostBytes, std::uint32_t keyInterval)
    : m_syntax(std::move(syntax)), m_mostBytes(mostBytes), m_keyInterval(keyInterval) {}

PictureFinder::Next PictureFinder::takeSlice(Bytes head, FoundPicture& picture) {
    const std::optional<SliceHead> slice = m_syntax.sliceOf(head);
    if (!slice)
        return picture.slices > 0 ? Next::Ends : Next::Fails;
    if (picture.slices > 0 && !m_syntax.continues(m_lastSlice, *slice))
        return Next::Ends;
    if (picture.slices == 0 && slice->address != 0)
        return Next::Fails;
    if (picture.slices++ == 0)
        picture.slice = *slice;
    m_lastSlice = *slice;
    return Next::Goes;
}

// `at`: after the length.
PictureFinder::Next PictureFinder::takeUnit(FileWindow& window, std::int64_t at, std::int64_t length,
                                            FoundPicture& picture) {
    const auto headBytes = static_cast<std::size_t>(std::min<std::int64_t>(length, kHeadBytes));
    const Bytes head = window.at(at, headBytes);
    const bool hasSlices = picture.slices > 0;
    ++m_unitsRead;
    switch (m_syntax.kindOf(head, length)) {
        case UnitSyntax::Kind::Slice:
            return takeSlice(head, picture);
        case UnitSyntax::Kind::Before:
            return hasSlices ? Next::Ends : Next::Goes;
        case UnitSyntax::Kind::Set:
            if (hasSlices)
                return Next::Ends;
            return m_syntax.takeSet(window.at(at, static_cast<std::size_t>(length))) ? Next::Goes
                                                                                     : Next::Fails;
        case UnitSyntax::Kind::After:
            return hasSlices ? Next::Goes : Next::Fails;
        case UnitSyntax::Kind::Bad:
            break;
    }
    return hasSlices ? Next::Ends : Next::Fails;
}

std::optional<FoundPicture> PictureFinder::at(FileWindow& window, std::int64_t offset, std::int64_t end) {
    const auto lengthBytes = static_cast<std::int64_t>(m_syntax.lengthBytes());
    FoundPicture picture;
    for (int units = 0; units < kMostUnits; ++units) {
        const std::int64_t start = offset + picture.size;
        if (start == end && picture.slices > 0)
            break;
        std::int64_t length = 0;
        const Bytes bytes = window.at(start, static_cast<std::size_t>(lengthBytes));
        for (const std::uint8_t byte : bytes)
            length = length << 8 | byte;
        const bool isCutThere =
            start + lengthBytes + 1 >= end || bytes.size() < static_cast<std::size_t>(lengthBytes);
        if (isCutThere || length == 0 || picture.size + length > m_mostBytes) {
            if (picture.slices == 0)
                return std::nullopt;
            break;
        }
        const std::int64_t there = std::min(length, end - start - lengthBytes);
        const Next next = takeUnit(window, start + lengthBytes,
                                   there < length ? std::max<std::int64_t>(there, 2) : length, picture);
        if (next == Next::Fails)
            return std::nullopt;
        if (next == Next::Ends)
            break;
        if (there < length) {
            picture.ending = Ending::Cut;
            break;
        }
        picture.size += lengthBytes + length;
    }
    if (picture.slices == 0 && picture.ending == Ending::Whole)
        return std::nullopt;
    picture.isExpected = picture.slices > 0 && isExpected(picture.slice);
    picture.isInRhythm = m_keyInterval == 0 || picture.slice.isKey == (m_index % m_keyInterval == 0);
    return picture;
}

bool PictureFinder::isExpected(const SliceHead& slice) const {
    if (m_index == 0)
        return slice.isKey;
    if (m_syntax.codec() == UnitCodec::H265 || slice.isInstant)
        return true;
    return slice.frameNumber == (m_lastReference + 1) % m_syntax.framesInNumber(slice);
}

std::int64_t PictureFinder::placeOf(const SliceHead& slice) {
    if (!m_syntax.hasOrder(slice))
        return 0;
    const std::int64_t count = m_syntax.ordersInLow(slice);
    const std::int64_t low = slice.orderLow;
    if (slice.isInstant) {
        m_orderHigh = 0;
        m_orderLow = 0;
    }
    std::int64_t high = m_orderHigh;
    if (low < m_orderLow && m_orderLow - low >= count / 2)
        high += count;
    else if (low > m_orderLow && low - m_orderLow > count / 2)
        high -= count;
    if (slice.countsForOrder) {
        m_orderHigh = high;
        m_orderLow = slice.orderLow;
    }
    return high + low;
}

std::int64_t PictureFinder::accept(const FoundPicture& picture) {
    ++m_index;
    m_slices = picture.slices;
    if (picture.slice.isReference)
        m_lastReference = picture.slice.frameNumber;
    return placeOf(picture.slice);
}

} // namespace ql240::repair
