// Logs GStreamer's own messages. Any thread.
#pragma once

#include <gst/gst.h>

namespace ql240::gstreamer {

// Logs an error's text and debug string; ignores other messages. `whose` names the pipeline.
void logError(const char* whose, GstMessage* message);

} // namespace ql240::gstreamer
