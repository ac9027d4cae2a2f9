// The sizes stated in the headers of JPEG pictures. Any thread.
#pragma once

#include <cstdint>

#include <gst/gst.h>

namespace ql240::gstreamer {

// Whether a picture in the buffer is too large, or has too many scans for its size. The two fields of a frame
// are two pictures.
bool isJpegTooLarge(GstBuffer* buffer);

} // namespace ql240::gstreamer
