// The sizes that JPEG pictures say of themselves. Any thread.
#pragma once

#include <cstdint>

#include <gst/gst.h>

namespace ql240::gstreamer {

// Whether a picture in the buffer is too large, or has too many scans for its size. The two fields of one are
// two pictures.
bool isJpegTooLarge(GstBuffer* buffer);

} // namespace ql240::gstreamer
