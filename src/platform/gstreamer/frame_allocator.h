// Memory of decoded frames that is copied when somebody writes into it, not before. A decoder keeps its
// frames as references while it hands them on, and the library copies such a frame whole, though most are
// only read.
#pragma once

#include <gst/gst.h>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

// The allocators of one clip share its limit; without a clip, an allocator has the limit to itself. Any
// thread.
[[nodiscard]] Handle<GstAllocator> newFrameAllocator(GstObject* clip = nullptr);

} // namespace ql240::gstreamer
