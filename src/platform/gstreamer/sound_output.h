#pragma once

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

// An element that plays on the desktop's sound server or device, already opened, or keeps time in silence
// where there is none. A server that takes the connection and doesn't answer costs two seconds once; until it
// answers, every further output is silent. Null if the plugin is missing. Interface thread.
ElementHandle openSoundOutput();

} // namespace ql240::gstreamer
