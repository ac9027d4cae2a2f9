// The limits of the pipeline's queues. Any thread.
#pragma once

#include "platform/limits.h"

#include <gst/gst.h>

namespace ql240::gstreamer {

// By time; bytes and the number of buffers limit streams whose time stamps don't advance.
inline void limitQueue(GstElement* queue, GstClockTime time, guint bytes) {
    g_object_set(queue, "max-size-time", time, "max-size-bytes", bytes, "max-size-buffers",
                 guint{limits::kQueuedBuffers}, nullptr);
}

} // namespace ql240::gstreamer
