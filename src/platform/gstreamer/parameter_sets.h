// The sizes that the parameter sets of H.264 and H.265 say, and how many slices of such a size a piece of the
// stream has. A stream may hold several sets, and a decoder makes room for each that a picture refers to. Any
// thread, but one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ql240::gstreamer {

enum class ParameterCodec { H264, H265 };

class ParameterSets {
public:
    explicit ParameterSets(ParameterCodec codec) : m_codec(codec) {}

    // Whether one of them says too large a picture: in the stream's head, as the container keeps it, which
    // says too how the pieces of the stream are laid out, or in one piece. A piece is too large as well if a
    // decoder might go over too many pixels for its slices.
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
    int m_lengthBytes = 0;     // ahead of each unit; 0: start codes stand there
};

} // namespace ql240::gstreamer
