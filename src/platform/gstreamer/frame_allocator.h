// Memory of decoded frames that is copied when somebody writes into it, not before. A decoder keeps its
// frames as references while it hands them on, and the library copies such a frame whole, though most are
// only read.
#pragma once

#include <gst/gst.h>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

[[nodiscard]] Handle<GstAllocator> newFrameAllocator();

} // namespace ql240::gstreamer
