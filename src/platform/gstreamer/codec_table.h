// Which elements decode a stream. Interface thread.
#pragma once

#include <optional>
#include <vector>

#include <gst/gst.h>

namespace ql240::gstreamer {

enum class StreamKind { Pictures, Sound };

// The factories of parser and decoder, in order, for a stream of `caps`; raw sound needs none. Nothing if
// what flows there is of another kind, or if nothing here decodes it.
std::optional<std::vector<const char*>> decoderChain(StreamKind kind, const GstCaps* caps);

} // namespace ql240::gstreamer
