// Which elements decode a stream. Interface thread.
#pragma once

#include <vector>

#include <gst/gst.h>

namespace ql240::gstreamer {

// The factories of parser and decoder, in order, for a stream of `caps`. Raw sound needs none. Empty with
// *known false if nothing here decodes it.
std::vector<const char*> decoderChain(const GstCaps* caps, bool* known);

} // namespace ql240::gstreamer
