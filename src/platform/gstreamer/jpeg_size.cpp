#include "platform/gstreamer/jpeg_size.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

constexpr std::ptrdiff_t kFrameHeader = 9; // marker, length, precision, height, width
constexpr guint8 kScan = 0xDA;
constexpr guint8 kEnd = 0xD9;
constexpr guint8 kStart[] = {0xFF, 0xD8};

bool beginsFrame(guint8 marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool hasLength(guint8 marker) {
    return marker >= 0xC0 && marker <= 0xFE && !(marker >= 0xD0 && marker <= 0xD9);
}

bool isTooLarge(const guint8* at, const guint8* end) {
    std::int64_t pixels = 0; // of the largest picture
    std::int64_t scans = 0;
    while (end - at >= kFrameHeader) {
        at = static_cast<const guint8*>(std::memchr(at, 0xFF, static_cast<std::size_t>(end - at)));
        if (!at || end - at < kFrameHeader)
            break;
        if (beginsFrame(at[1]))
            pixels = std::max(pixels, static_cast<std::int64_t>(qFromBigEndian<std::uint16_t>(at + 5)) *
                                          qFromBigEndian<std::uint16_t>(at + 7));
        if (at[1] == kScan)
            ++scans;
        if (at[1] == kEnd) { // padding, or the second field
            at = std::search(at, end, std::begin(kStart), std::end(kStart));
            continue;
        }
        const std::ptrdiff_t size = hasLength(at[1]) ? 2 + qFromBigEndian<std::uint16_t>(at + 2) : 1;
        at += std::min(size, end - at);
    }
    return pixels > limits::kPicturePixels || scans * pixels > limits::kPassedPixels;
}

} // namespace

bool isJpegTooLarge(GstBuffer* buffer) {
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
        return false;
    const bool answer = isTooLarge(map.data, map.data + map.size);
    gst_buffer_unmap(buffer, &map);
    return answer;
}

} // namespace ql240::gstreamer
