// Converts YUY2 frames to what a window shows: scaled, in RGB, by the stream's own colour matrix and range. A
// few rows of the picture are made at a time, so that everything in between stays in the cache and source
// rows that don't count are never read. One thread at a time.
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

    // Scales the whole frame to `size` and puts the part `visible` of that into *picture (RGB32,
    // visible.size()). False if the sample is no YUY2 frame.
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

    // The columns of the source that the visible part needs, and where they lie in the scaled picture.
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
    std::vector<std::uint8_t> m_packed; // YUY2 rows, already at their place in the picture
    Rows m_source;
    Rows m_smooth;
    Rows m_scaled;
};

} // namespace ql240::gstreamer
