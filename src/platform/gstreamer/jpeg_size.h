// The size that a JPEG picture says of itself. Any thread.
#pragma once

#include <cstdint>

#include <gst/gst.h>

namespace ql240::gstreamer {

// Width by height; the most where a buffer holds several pictures, as the two fields of one do.
std::int64_t jpegPixels(GstBuffer* buffer);

} // namespace ql240::gstreamer
