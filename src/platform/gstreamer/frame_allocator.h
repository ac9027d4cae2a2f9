// Copy-on-write memory for decoded frames. A decoder passes on frames that it also keeps as references;
// GStreamer would copy each of these whole, although most are only read.
#pragma once

#include <gst/gst.h>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

// The allocators of one clip share its limit; without a clip, an allocator has the limit to itself. Any
// thread.
[[nodiscard]] Handle<GstAllocator> newFrameAllocator(GstObject* clip = nullptr);

} // namespace ql240::gstreamer
