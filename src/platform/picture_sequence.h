// The fields of a sequence parameter set of H.264 or H.265 that give the pictures' size and the layout of
// slice headers. Any thread.
#pragma once

#include "platform/unit_bits.h"

namespace ql240 {

struct PictureSequence {
    std::uint32_t id = 0;
    std::int64_t width = 0; // in pixels, before cropping
    std::int64_t height = 0;
    bool hasSize = false;        // false: the set ends before its size
    bool hasPlanes = false;      // colour planes are coded separately
    bool hasFields = false;      // H.264: a picture may be a field
    int frameNumberBits = 0;     // H.264
    std::uint32_t orderKind = 0; // H.264: pic_order_cnt_type; with 0, slices state the order
    int orderBits = 0;
    int addressBits = 0; // H.265: of a slice's address in its picture

    bool operator==(const PictureSequence&) const = default;
};

// `bits`: the unit after its header.
PictureSequence readH264Sequence(UnitBits bits);
PictureSequence readH265Sequence(UnitBits bits);

} // namespace ql240
