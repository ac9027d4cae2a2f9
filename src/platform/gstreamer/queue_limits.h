// How much a queue of the pipeline holds. Any thread.
#pragma once

#include "platform/limits.h"

#include <gst/gst.h>

namespace ql240::gstreamer {

// By time as long as time goes on in the stream, else by bytes or by their number.
inline void limitQueue(GstElement* queue, GstClockTime time, guint bytes) {
    g_object_set(queue, "max-size-time", time, "max-size-bytes", bytes, "max-size-buffers",
                 guint{limits::kQueuedBuffers}, nullptr);
}

} // namespace ql240::gstreamer
