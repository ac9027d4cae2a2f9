// GStreamer's own words in the program's log. Any thread.
#pragma once

#include <gst/gst.h>

namespace ql240::gstreamer {

// An error's text and debug string; says nothing of other messages. `whose` is the pipeline's use.
void logError(const char* whose, GstMessage* message);

} // namespace ql240::gstreamer
