// Conversion of painted pictures to what the encoders take: planar Y'CbCr 4:2:0 (I420).
#pragma once

#include <QImage>
#include <QSize>
#include <span>

#include "demo_card/clip_encoder.h"

namespace ql240::demo {

// Weights in 1/65536 of R', G', B' and the offset of luma.
struct YuvMatrix {
    int y[3];
    int u[3];
    int v[3];
    int lumaOffset;
    const char* colorimetry; // as media capabilities name it
};

// BT.709 for high definition, BT.601 below, both 16 … 235; BT.601 with 0 … 255 for Motion-JPEG.
const YuvMatrix& yuvMatrixFor(const ClipFormat& format, QSize size);

// Format_RGB32 with even sides into width × height × 3/2 bytes.
void convertToI420(const QImage& picture, const YuvMatrix& matrix, std::span<uchar> planes);

} // namespace ql240::demo
