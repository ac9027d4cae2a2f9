// The sizes that the parameter sets of H.264 and H.265 say. A stream may hold several, and a decoder makes
// room for each that a picture refers to. Any thread.
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
    // says too how the pieces of the stream are laid out, or in one piece.
    bool isHeadTooLarge(std::span<const std::uint8_t> head);
    bool isPieceTooLarge(std::span<const std::uint8_t> piece) const;

private:
    using Bytes = std::span<const std::uint8_t>;

    bool isUnitTooLarge(Bytes unit) const;
    bool areStartedTooLarge(Bytes bytes) const;
    bool areSizedTooLarge(Bytes& bytes, int lengthBytes, std::size_t count) const;
    bool areListsTooLarge(Bytes head) const;

    ParameterCodec m_codec;
    int m_lengthBytes = 0; // ahead of each unit; 0: start codes stand there
};

} // namespace ql240::gstreamer
