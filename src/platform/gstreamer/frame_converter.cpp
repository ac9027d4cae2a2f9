#include "platform/gstreamer/frame_converter.h"

#include <gst/video/video.h>
#include <libyuv.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace ql240::gstreamer {

namespace {

constexpr int kRowsAtATime = 16;
constexpr int kPadding = 64; // the vector code reads past the end of a row
constexpr int kHalf = 128;   // libyuv's weights are out of 256

// If the caps don't state the matrix, GstVideoInfo has default values for the range, too.
GstVideoColorimetry colorimetryOf(const GstCaps* caps, const GstVideoInfo& info) {
    GstVideoColorimetry result = GST_VIDEO_INFO_COLORIMETRY(&info);
    GstVideoColorimetry stated;
    const char* text = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
    if (text && gst_video_colorimetry_from_string(&stated, text) &&
        stated.range != GST_VIDEO_COLOR_RANGE_UNKNOWN)
        result.range = stated.range;
    return result;
}

void setMatrix(const GstVideoColorimetry& colorimetry, Yuy2Frame* frame) {
    const bool full = colorimetry.range == GST_VIDEO_COLOR_RANGE_0_255;
    if (colorimetry.matrix == GST_VIDEO_COLOR_MATRIX_BT709) {
        frame->constants = full ? &libyuv::kYuvF709Constants : &libyuv::kYuvH709Constants;
        frame->matrix = full ? kFull709 : kStudio709;
    } else {
        frame->constants = full ? &libyuv::kYuvJPEGConstants : &libyuv::kYuvI601Constants;
        frame->matrix = full ? kFull601 : kStudio601;
    }
}

std::size_t bytes(int count, int size) {
    return static_cast<std::size_t>(count) * static_cast<std::size_t>(size);
}

int scaledEdge(int edge, int from, int to) {
    return static_cast<int>((static_cast<std::int64_t>(edge) * to + from / 2) / from);
}

} // namespace

void FrameConverter::Rows::resize(int width, int count) {
    strideY = width + kPadding;
    strideUv = (width + 1) / 2 + kPadding;
    bytes.resize(gstreamer::bytes(strideY + 2 * strideUv, count));
    y = bytes.data();
    u = y + gstreamer::bytes(strideY, count);
    v = u + gstreamer::bytes(strideUv, count);
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
    if (!caps || !gst_video_info_from_caps(&info, caps) ||
        GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_YUY2 ||
        !gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ))
        return false;
    const std::unique_ptr<GstVideoFrame, void (*)(GstVideoFrame*)> mapped(&frame, gst_video_frame_unmap);
    Yuy2Frame yuy2{static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)),
                   GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0),
                   {GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info)}};
    setMatrix(colorimetryOf(caps, info), &yuy2);
    convert(yuy2, size, visible, picture);
    return true;
}

// Two pixels share their chroma, so the part begins and ends at even columns.
FrameConverter::Columns FrameConverter::columnsFor(int sourceWidth, int scaledWidth, int left, int width) {
    const auto sourceColumn = [&](int column) {
        return static_cast<int>(static_cast<std::int64_t>(column) * sourceWidth / scaledWidth) & ~1;
    };
    const int first = std::max(0, sourceColumn(left) - 2);
    const int last = std::min(sourceWidth, sourceColumn(left + width) + 4);
    const int scaledFirst = scaledEdge(first, sourceWidth, scaledWidth);
    return {first, last - first, scaledFirst, scaledEdge(last, sourceWidth, scaledWidth) - scaledFirst};
}

// Interpolates one output row from the two source rows around its centre; when scaling down by two or more,
// averages them instead, which reduces flicker.
void FrameConverter::blendRow(const Yuy2Frame& frame, const Columns& columns, int scaledHeight, int row,
                              std::uint8_t* to) const {
    const int height = frame.size.height();
    const double ratio = static_cast<double>(height) / scaledHeight;
    const double middle = std::clamp((row + 0.5) * ratio - 0.5, 0.0, height - 1.0);
    const int first = std::min(static_cast<int>(middle), height - 1);
    const int second = std::min(first + 1, height - 1);
    const int weight = ratio >= 2 ? kHalf : static_cast<int>((middle - first) * 256);
    const auto source = [&](int line) {
        return frame.bytes + static_cast<std::ptrdiff_t>(line) * frame.stride + 2 * columns.sourceLeft;
    };
    const int length = 2 * columns.sourceWidth;
    libyuv::InterpolatePlane(source(first), frame.stride, source(second), frame.stride, to, length, length, 1,
                             weight);
}

// The rows in m_source, scaled horizontally.
const FrameConverter::Rows& FrameConverter::scaledColumns(const Columns& columns, int rows) {
    if (columns.sourceWidth == columns.scaledWidth)
        return m_source;
    const Rows* from = &m_source;
    if (columns.sourceWidth >= 2 * columns.scaledWidth) {
        libyuv::InterpolatePlane(m_source.y, m_source.strideY, m_source.y + 1, m_source.strideY, m_smooth.y,
                                 m_smooth.strideY, columns.sourceWidth - 1, rows, kHalf);
        for (int row = 0; row < rows; ++row) {
            const auto last = static_cast<std::ptrdiff_t>(row) * m_source.strideY + columns.sourceWidth - 1;
            m_smooth.y[last] = m_source.y[last];
        }
        from = &m_smooth;
    }
    const auto scale = [rows](const std::uint8_t* source, int sourceStride, int sourceWidth, std::uint8_t* to,
                              int stride, int width) {
        libyuv::ScalePlane(source, sourceStride, sourceWidth, rows, to, stride, width, rows,
                           libyuv::kFilterLinear);
    };
    const int chromaFrom = (columns.sourceWidth + 1) / 2;
    const int chromaTo = (columns.scaledWidth + 1) / 2;
    scale(from->y, from->strideY, columns.sourceWidth, m_scaled.y, m_scaled.strideY, columns.scaledWidth);
    scale(m_source.u, m_source.strideUv, chromaFrom, m_scaled.u, m_scaled.strideUv, chromaTo);
    scale(m_source.v, m_source.strideUv, chromaFrom, m_scaled.v, m_scaled.strideUv, chromaTo);
    return m_scaled;
}

void FrameConverter::convert(const Yuy2Frame& frame, const QSize& size, const QRect& visible,
                             QImage* picture) {
    const QRect seen = visible.intersected(QRect(QPoint(), size));
    if (picture->size() != seen.size() || picture->format() != QImage::Format_RGB32)
        *picture = QImage(seen.size(), QImage::Format_RGB32);
    if (picture->isNull() || frame.size.isEmpty())
        return;
    if (frame.size.width() >= 2 * size.width() && frame.size.height() >= 2 * size.height())
        shrink(frame, size, seen, picture);
    else
        scale(frame, size, seen, picture);
}

// Each pixel averages the pixel pair and the rows around its centre.
void FrameConverter::shrink(const Yuy2Frame& frame, const QSize& size, const QRect& seen, QImage* picture) {
    const auto middle = [](int place, int from, int to) { return (place + 0.5) * from / to; };
    m_pairs.resize(bytes(seen.width(), 1));
    for (int x = 0; x < seen.width(); ++x)
        m_pairs[bytes(x, 1)] =
            static_cast<std::int32_t>(middle(seen.left() + x, frame.size.width(), size.width()) / 2);
    for (int row = 0; row < seen.height(); ++row) {
        const double line = middle(seen.top() + row, frame.size.height(), size.height());
        const int upper = std::clamp(static_cast<int>(line - 0.5), 0, frame.size.height() - 2);
        const auto* source = frame.bytes + static_cast<std::ptrdiff_t>(upper) * frame.stride;
        shrinkRow(source, source + frame.stride, m_pairs.data(), seen.width(), frame.matrix,
                  reinterpret_cast<std::uint32_t*>(picture->scanLine(row)));
    }
}

void FrameConverter::scale(const Yuy2Frame& frame, const QSize& size, const QRect& seen, QImage* picture) {
    const Columns columns = columnsFor(frame.size.width(), size.width(), seen.left(), seen.width());
    const int packedStride = 2 * columns.sourceWidth;
    m_packed.resize(bytes(packedStride, kRowsAtATime) + kPadding);
    m_source.resize(columns.sourceWidth, kRowsAtATime);
    m_smooth.resize(columns.sourceWidth, kRowsAtATime);
    m_scaled.resize(columns.scaledWidth, kRowsAtATime);
    const int offset = (seen.left() - columns.scaledLeft) & ~1;
    for (int done = 0; done < seen.height(); done += kRowsAtATime) {
        const int rows = std::min(kRowsAtATime, seen.height() - done);
        for (int row = 0; row < rows; ++row)
            blendRow(frame, columns, size.height(), seen.top() + done + row,
                     m_packed.data() + static_cast<std::ptrdiff_t>(row) * packedStride);
        libyuv::YUY2ToI422(m_packed.data(), packedStride, m_source.y, m_source.strideY, m_source.u,
                           m_source.strideUv, m_source.v, m_source.strideUv, columns.sourceWidth, rows);
        const Rows& scaled = scaledColumns(columns, rows);
        libyuv::I422ToARGBMatrix(scaled.y + offset, scaled.strideY, scaled.u + offset / 2, scaled.strideUv,
                                 scaled.v + offset / 2, scaled.strideUv, picture->scanLine(done),
                                 static_cast<int>(picture->bytesPerLine()), frame.constants, seen.width(),
                                 rows);
    }
}

} // namespace ql240::gstreamer
