// Checks the index boxes of an MP4 file as the splitter reads them, and keeps only those needed for playing:
// the splitter recurses into nested boxes until its stack overflows, decompresses boxes to any size, and
// allocates memory for samples without data in the tables. On the splitter's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>

namespace ql240::gstreamer {

class IndexGuard {
public:
    // Turns the boxes in `box` that aren't needed into free space; false if the remaining ones exceed a
    // limit. Leaves anything but index boxes unchanged.
    bool tidy(std::uint64_t place, std::span<std::uint8_t> box);

private:
    using Bytes = std::span<std::uint8_t>;

    bool tidyWithin(std::uint32_t parent, Bytes boxes, bool isNew);
    bool fits(std::uint32_t parent, Bytes box, bool isNew);
    void noteRawSound(std::uint32_t parent, Bytes box);

    std::map<std::uint64_t, std::size_t> m_counted; // by a box's offset: how many of its bytes
    std::uint64_t m_samples = 0;
    std::uint64_t m_chunks = 0;
    std::optional<bool> m_isSound; // of the current track: its first handler
    std::optional<bool> m_isRaw;   // its first sample description
};

} // namespace ql240::gstreamer
