// Goes through the index boxes of an MP4 file as the splitter reads them. It leaves what is needed to play:
// the splitter follows boxes within boxes until its stack is full, unpacks compressed ones to any size, and
// makes room for samples that no table is there for. On the splitter's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>

namespace ql240::gstreamer {

class IndexGuard {
public:
    // Makes free space of the boxes in `box` that nobody needs; false if what is left is too much. Anything
    // but an index box stays as it is.
    bool tidy(std::uint64_t place, std::span<std::uint8_t> box);

private:
    using Bytes = std::span<std::uint8_t>;

    bool tidyWithin(std::uint32_t parent, Bytes boxes, bool isNew);
    bool fits(std::uint32_t name, Bytes box, bool isNew);

    std::map<std::uint64_t, std::size_t> m_counted; // by a box's place: how much of it
    std::uint64_t m_samples = 0;
    std::uint64_t m_chunks = 0;
};

} // namespace ql240::gstreamer
