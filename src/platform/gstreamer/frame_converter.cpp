#include "platform/gstreamer/frame_converter.h"

#include <gst/video/video.h>
#include <libyuv.h>

#include <algorithm>

namespace ql240::gstreamer {

namespace {

constexpr int kAlignment = 64;

int aligned(int value) {
    return (value + kAlignment - 1) / kAlignment * kAlignment;
}

// BT.601 or BT.709, studio or full range.
const libyuv::YuvConstants* matrixOf(const GstVideoColorimetry& colorimetry) {
    const bool full = colorimetry.range == GST_VIDEO_COLOR_RANGE_0_255;
    if (colorimetry.matrix == GST_VIDEO_COLOR_MATRIX_BT709)
        return full ? &libyuv::kYuvF709Constants : &libyuv::kYuvH709Constants;
    return full ? &libyuv::kYuvJPEGConstants : &libyuv::kYuvI601Constants;
}

// The part of a frame whose scaled picture is `visible`, grown to even edges, and how large that part is when
// scaled.
struct Crop {
    QRect source;
    QRect scaled;
};

int scaledEdge(int edge, int from, int to) {
    return static_cast<int>((static_cast<std::int64_t>(edge) * to + from / 2) / from);
}

Crop cropFor(const QSize& frame, const QSize& size, const QRect& visible) {
    const auto evenFloor = [](std::int64_t value) { return static_cast<int>(value) & ~1; };
    const auto span = [&](int from, int to, int begin, int end) {
        const int first = std::max(0, evenFloor(static_cast<std::int64_t>(begin) * from / to) - 2);
        const int last = std::min(from, evenFloor(static_cast<std::int64_t>(end) * from / to) + 4);
        return std::pair(first, last);
    };
    const auto [left, right] =
        span(frame.width(), size.width(), visible.left(), visible.left() + visible.width());
    const auto [top, bottom] =
        span(frame.height(), size.height(), visible.top(), visible.top() + visible.height());
    const auto mapped = [&](int x, int y) {
        return QPoint(scaledEdge(x, frame.width(), size.width()),
                      scaledEdge(y, frame.height(), size.height()));
    };
    const QPoint first = mapped(left, top);
    const QPoint last = mapped(right, bottom);
    return {QRect(left, top, right - left, bottom - top),
            QRect(first, QSize(last.x() - first.x(), last.y() - first.y()))};
}

} // namespace

void FrameConverter::Planes::resize(const QSize& size) {
    strideY = aligned(size.width());
    strideUv = aligned((size.width() + 1) / 2);
    const auto luma = static_cast<std::size_t>(strideY) * static_cast<std::size_t>(size.height());
    const auto chroma =
        static_cast<std::size_t>(strideUv) * static_cast<std::size_t>((size.height() + 1) / 2);
    bytes.resize(luma + 2 * chroma + kAlignment);
    const auto misalignment = reinterpret_cast<std::uintptr_t>(bytes.data()) % kAlignment;
    y = bytes.data() + (kAlignment - misalignment) % kAlignment;
    u = y + luma;
    v = u + chroma;
}

QSize FrameConverter::frameSize(GstSample* sample) {
    GstVideoInfo info;
    const GstCaps* caps = sample ? gst_sample_get_caps(sample) : nullptr;
    if (!caps || !gst_video_info_from_caps(&info, caps))
        return {};
    return {GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info)};
}

bool FrameConverter::convert(GstSample* sample, const QSize& size, const QRect& visible, QImage* picture) {
    GstVideoInfo info;
    GstVideoFrame frame;
    const GstCaps* caps = gst_sample_get_caps(sample);
    const QRect seen = visible.intersected(QRect(QPoint(), size));
    if (seen.isEmpty() || !caps || !gst_video_info_from_caps(&info, caps) ||
        GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_YUY2 ||
        !gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ))
        return false;
    const Crop crop = cropFor({GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info)}, size, seen);
    const int stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    const auto* yuy2 = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)) +
                       static_cast<std::ptrdiff_t>(crop.source.top()) * stride + 2 * crop.source.left();
    m_source.resize(crop.source.size());
    libyuv::YUY2ToI420(yuy2, stride, m_source.y, m_source.strideY, m_source.u, m_source.strideUv, m_source.v,
                       m_source.strideUv, crop.source.width(), crop.source.height());
    gst_video_frame_unmap(&frame);

    const Planes* planes = &m_source;
    if (crop.source.size() != crop.scaled.size()) {
        m_scaled.resize(crop.scaled.size());
        libyuv::I420Scale(m_source.y, m_source.strideY, m_source.u, m_source.strideUv, m_source.v,
                          m_source.strideUv, crop.source.width(), crop.source.height(), m_scaled.y,
                          m_scaled.strideY, m_scaled.u, m_scaled.strideUv, m_scaled.v, m_scaled.strideUv,
                          crop.scaled.width(), crop.scaled.height(), libyuv::kFilterBilinear);
        planes = &m_scaled;
    }
    if (picture->size() != seen.size() || picture->format() != QImage::Format_RGB32)
        *picture = QImage(seen.size(), QImage::Format_RGB32);
    // Chroma covers two pixels: an odd offset starts one pixel further left and drops it.
    const QPoint offset = seen.topLeft() - crop.scaled.topLeft();
    const QPoint even(offset.x() & ~1, offset.y() & ~1);
    libyuv::I420ToARGBMatrix(
        planes->y + static_cast<std::ptrdiff_t>(even.y()) * planes->strideY + even.x(), planes->strideY,
        planes->u + static_cast<std::ptrdiff_t>(even.y() / 2) * planes->strideUv + even.x() / 2,
        planes->strideUv,
        planes->v + static_cast<std::ptrdiff_t>(even.y() / 2) * planes->strideUv + even.x() / 2,
        planes->strideUv, picture->bits(), static_cast<int>(picture->bytesPerLine()),
        matrixOf(GST_VIDEO_INFO_COLORIMETRY(&info)), seen.width(), seen.height());
    return true;
}

} // namespace ql240::gstreamer
