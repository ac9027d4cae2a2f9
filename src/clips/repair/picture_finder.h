// Finds the pictures of one H.264 or H.265 track and their display order. One thread at a time; offsets and
// sizes in bytes.
#pragma once

#include "clips/repair/unit_syntax.h"

namespace ql240::repair {

// Whether a sample ends within the available bytes.
enum class Ending : std::uint8_t { Whole, Cut };

struct FoundPicture {
    Ending ending = Ending::Whole;
    std::int64_t size = 0;
    SliceHead slice; // the first
    int slices = 0;
    bool isExpected = false; // its number follows the last one's
    bool isInRhythm = false; // a key frame exactly when one is due
};

class PictureFinder {
public:
    // `keyInterval`: in pictures; 0: not constant.
    PictureFinder(UnitSyntax syntax, std::int64_t mostBytes, std::uint32_t keyInterval);

    // The picture at `offset`; nothing if none begins there. Reads nothing from `end` on.
    std::optional<FoundPicture> at(FileWindow& window, std::int64_t offset, std::int64_t end);

    // Makes it the track's last picture. Returns its order count for display, relative to the last picture
    // that resets the count.
    std::int64_t accept(const FoundPicture& picture);
    // Whether it has fewer slices than the preceding picture.
    bool lacksSlices(const FoundPicture& picture) const { return picture.slices < m_slices; }
    const UnitSyntax& syntax() const { return m_syntax; }
    std::int64_t unitsRead() const { return m_unitsRead; }

private:
    enum class Next : std::uint8_t { Goes, Ends, Fails };

    Next takeUnit(FileWindow& window, std::int64_t at, std::int64_t length, FoundPicture& picture);
    Next takeSlice(Bytes head, FoundPicture& picture);
    bool isExpected(const SliceHead& slice) const;
    std::int64_t placeOf(const SliceHead& slice);

    UnitSyntax m_syntax;
    std::int64_t m_mostBytes;
    std::uint32_t m_keyInterval; // 0: not constant
    SliceHead m_lastSlice;       // of the picture being parsed
    std::int64_t m_unitsRead = 0;
    std::uint32_t m_index = 0;
    int m_slices = 0;
    std::uint32_t m_lastReference = 0; // its frame number
    std::int64_t m_orderHigh = 0;
    std::uint32_t m_orderLow = 0;
};

} // namespace ql240::repair
