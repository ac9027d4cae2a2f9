// Converts YUY2 frames for display: scaled, in RGB, with the stream's colour matrix and range. Converts a few
// rows at a time, so that intermediate data stays in the processor's cache and unused source rows are never
// read. One thread at a time.
#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <vector>

#include <gst/gst.h>

#include "platform/gstreamer/shrink_row.h"

namespace libyuv {
struct YuvConstants;
}

namespace ql240::gstreamer {

// A packed YUY2 frame in memory.
struct Yuy2Frame {
    const std::uint8_t* bytes = nullptr;
    int stride = 0; // bytes a row
    QSize size;
    const libyuv::YuvConstants* constants = nullptr;
    RgbMatrix matrix{}; // the same, for shrinkRow
};

class FrameConverter {
public:
    // The frame's size in pixels; empty if the sample isn't video.
    static QSize frameSize(GstSample* sample);

    // Scales the whole frame to `size` and writes its part `visible` to *picture (RGB32, visible.size()).
    // False if the sample isn't a YUY2 frame.
    bool convert(GstSample* sample, const QSize& size, const QRect& visible, QImage* picture);
    void convert(const Yuy2Frame& frame, const QSize& size, const QRect& visible, QImage* picture);

private:
    // Rows of planar 4:2:2.
    struct Rows {
        std::vector<std::uint8_t> bytes;
        std::uint8_t* y = nullptr;
        std::uint8_t* u = nullptr;
        std::uint8_t* v = nullptr;
        int strideY = 0;
        int strideUv = 0;
        void resize(int width, int count);
    };

    // The source columns that the visible part needs, and their position in the scaled picture.
    struct Columns {
        int sourceLeft = 0;
        int sourceWidth = 0;
        int scaledLeft = 0;
        int scaledWidth = 0;
    };
    void shrink(const Yuy2Frame& frame, const QSize& size, const QRect& seen, QImage* picture);
    void scale(const Yuy2Frame& frame, const QSize& size, const QRect& seen, QImage* picture);

    static Columns columnsFor(int sourceWidth, int scaledWidth, int left, int width);

    void blendRow(const Yuy2Frame& frame, const Columns& columns, int scaledHeight, int row,
                  std::uint8_t* to) const;
    const Rows& scaledColumns(const Columns& columns, int rows);

    std::vector<std::int32_t> m_pairs;
    std::vector<std::uint8_t> m_packed; // YUY2 rows, scaled vertically
    Rows m_source;
    Rows m_smooth;
    Rows m_scaled;
};

} // namespace ql240::gstreamer
