// Assigns the units of an H.264 or H.265 stream in MP4 to pictures by their headers. One thread at a time.
#pragma once

#include <optional>
#include <vector>

#include "clips/repair/file_window.h"
#include "platform/picture_sequence.h"

namespace ql240::repair {

enum class UnitCodec { H264, H265 };

// Fields of a slice's header.
struct SliceHead {
    std::uint32_t address = 0;     // in the picture; 0: the first slice
    bool isInstant = false;        // an IDR picture
    bool isKey = false;            // refers to no earlier picture
    bool isReference = false;      // later pictures may refer to it
    bool countsForOrder = false;   // later order counts are relative to its own
    std::uint32_t frameNumber = 0; // H.264
    std::uint32_t orderLow = 0;    // the low bits of its order count
    std::uint32_t pictureSet = 0;
};

class UnitSyntax {
public:
    enum class Kind { Bad, Slice, Before, After, Set }; // before or after a picture's slices

    // From the body of "avcC" or "hvcC"; nothing if it is invalid.
    static std::optional<UnitSyntax> fromConfiguration(UnitCodec codec, Bytes configuration);

    std::size_t lengthBytes() const { return m_lengthBytes; }
    std::uint32_t framesInNumber(const SliceHead& slice) const; // the modulus of frame numbers
    // The modulus of orderLow.
    std::uint32_t ordersInLow(const SliceHead& slice) const;
    // Whether slices state an order count.
    bool hasOrder(const SliceHead& slice) const;

    // `head`: the unit's first bytes; `length`: its size in bytes.
    Kind kindOf(Bytes head, std::int64_t length) const;
    // Nothing if the header is invalid, or that of a field, which isn't supported.
    std::optional<SliceHead> sliceOf(Bytes head) const;
    // Whether `slice` belongs to the same picture as the preceding one.
    bool continues(const SliceHead& before, const SliceHead& slice) const;
    // Stores a parameter set; false if it differs from an earlier one with the same number.
    bool takeSet(Bytes unit);
    UnitCodec codec() const { return m_codec; }

private:
    struct PictureSet {
        std::uint32_t id = 0;
        std::uint32_t sequence = 0;
        bool hasDependentSlices = false; // H.265, like the next two
        bool saysOutput = false;
        int reservedBits = 0;
    };

    Kind kindOfH264(Bytes head, std::int64_t length) const;
    Kind kindOfH265(Bytes head, std::int64_t length) const;
    std::optional<SliceHead> h264Slice(Bytes head) const;
    std::optional<SliceHead> h265Slice(Bytes head) const;
    bool takeSequence(const PictureSequence& sequence);
    const PictureSequence* sequenceOf(std::uint32_t pictureSet) const;

    UnitCodec m_codec = UnitCodec::H264;
    std::size_t m_lengthBytes = 4;
    std::vector<PictureSequence> m_sequences;
    std::vector<PictureSet> m_pictureSets;
};

} // namespace ql240::repair
