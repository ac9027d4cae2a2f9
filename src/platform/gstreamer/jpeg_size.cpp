#include "platform/gstreamer/jpeg_size.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace ql240::gstreamer {

namespace {

constexpr std::ptrdiff_t kFrameHeader = 9; // marker, length, precision, height, width

bool beginsFrame(guint8 marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool hasLength(guint8 marker) {
    return marker >= 0xC0 && marker <= 0xFE && !(marker >= 0xD0 && marker <= 0xD9);
}

std::int64_t pixelsIn(const guint8* at, const guint8* end) {
    std::int64_t most = 0;
    while (end - at >= kFrameHeader) {
        at = static_cast<const guint8*>(std::memchr(at, 0xFF, static_cast<std::size_t>(end - at)));
        if (!at || end - at < kFrameHeader)
            break;
        if (beginsFrame(at[1]))
            most = std::max(most, static_cast<std::int64_t>(qFromBigEndian<std::uint16_t>(at + 5)) *
                                      qFromBigEndian<std::uint16_t>(at + 7));
        const std::ptrdiff_t size = hasLength(at[1]) ? 2 + qFromBigEndian<std::uint16_t>(at + 2) : 1;
        at += std::min(size, end - at);
    }
    return most;
}

} // namespace

std::int64_t jpegPixels(GstBuffer* buffer) {
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
        return 0;
    const std::int64_t pixels = pixelsIn(map.data, map.data + map.size);
    gst_buffer_unmap(buffer, &map);
    return pixels;
}

} // namespace ql240::gstreamer
