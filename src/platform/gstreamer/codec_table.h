// Which elements decode a stream. Interface thread.
#pragma once

#include <optional>
#include <vector>

#include <gst/gst.h>

namespace ql240::gstreamer {

enum class StreamKind { Pictures, Sound };

// The factories of parser and decoder, in order, for a stream of `caps`; raw audio needs none. Nothing if the
// stream is of another kind or no decoder is known.
std::optional<std::vector<const char*>> decoderChain(StreamKind kind, const GstCaps* caps);

} // namespace ql240::gstreamer
