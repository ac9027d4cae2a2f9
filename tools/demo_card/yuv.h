// Converts painted pictures to the encoders' input: planar Y'CbCr 4:2:0 (I420).
#pragma once

#include <QImage>
#include <QSize>
#include <span>

#include "demo_card/clip_encoder.h"

namespace ql240::demo {

// Weights of R', G', B' in 1/65536, and the luma offset.
struct YuvMatrix {
    int y[3];
    int u[3];
    int v[3];
    int lumaOffset;
    const char* colorimetry; // as in media caps
};

// BT.709 for high definition, otherwise BT.601, both 16 … 235; BT.601 with 0 … 255 for Motion-JPEG.
const YuvMatrix& yuvMatrixFor(const ClipFormat& format, QSize size);

// Format_RGB32 with even sides into width × height × 3/2 bytes.
void convertToI420(const QImage& picture, const YuvMatrix& matrix, std::span<uchar> planes);

} // namespace ql240::demo
