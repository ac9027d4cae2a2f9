// The picture sizes in the parameter sets of H.264 and H.265, and the number of slices in a piece of the
// stream. A stream may have several sets, and a decoder allocates memory for each that a picture refers to.
// One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ql240::gstreamer {

enum class ParameterCodec { H264, H265 };

class ParameterSets {
public:
    explicit ParameterSets(ParameterCodec codec) : m_codec(codec) {}

    // Whether a size is too large in the stream's head (codec_data), which also states the layout of the
    // pieces, or in one piece. A piece is also too large if a decoder might process too many pixels for its
    // slices.
    bool isHeadTooLarge(std::span<const std::uint8_t> head);
    bool isPieceTooLarge(std::span<const std::uint8_t> piece);

private:
    using Bytes = std::span<const std::uint8_t>;

    bool isUnitTooLarge(Bytes unit);
    bool areStartedTooLarge(Bytes bytes);
    bool areSizedTooLarge(Bytes& bytes, int lengthBytes, std::size_t count);
    bool areListsTooLarge(Bytes head);
    bool isSlice(Bytes unit) const;

    ParameterCodec m_codec;
    std::int64_t m_pixels = 0; // of the largest set so far
    std::int64_t m_slices = 0; // in the piece so far
    int m_lengthBytes = 0;     // of the length before each unit; 0: start codes instead
};

} // namespace ql240::gstreamer
