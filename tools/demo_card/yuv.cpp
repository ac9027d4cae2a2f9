#include "demo_card/yuv.h"

#include <QRgb>
#include <algorithm>

namespace ql240::demo {
namespace {

// Recommendations ITU-R BT.601 and BT.709: Y' = Kr R' + Kg G' + Kb B', chroma (B' - Y') / (2 - 2 Kb) and so
// on.
constexpr YuvMatrix matrix(double kr, double kb, double lumaScale, double chromaScale, int offset,
                           const char* name) {
    constexpr double one = 65536;
    const double kg = 1 - kr - kb;
    const auto fixed = [](double value) { return static_cast<int>(value < 0 ? value - 0.5 : value + 0.5); };
    const double y = one * lumaScale;
    const double u = one * chromaScale / (2 * (1 - kb));
    const double v = one * chromaScale / (2 * (1 - kr));
    return {{fixed(kr * y), fixed(kg * y), fixed(kb * y)},
            {fixed(-kr * u), fixed(-kg * u), fixed((1 - kb) * u)},
            {fixed((1 - kr) * v), fixed(-kg * v), fixed(-kb * v)},
            offset,
            name};
}

constexpr YuvMatrix kBt709 = matrix(0.2126, 0.0722, 219.0 / 255, 224.0 / 255, 16, "bt709");
constexpr YuvMatrix kBt601 = matrix(0.299, 0.114, 219.0 / 255, 224.0 / 255, 16, "bt601");
constexpr YuvMatrix kJpeg = matrix(0.299, 0.114, 1, 1, 0, "1:4:0:0");

inline int weigh(const int (&k)[3], int r, int g, int b) {
    return k[0] * r + k[1] * g + k[2] * b;
}

inline int red(QRgb c) {
    return static_cast<int>(c >> 16 & 255);
}
inline int green(QRgb c) {
    return static_cast<int>(c >> 8 & 255);
}
inline int blue(QRgb c) {
    return static_cast<int>(c & 255);
}

void lumaRow(const QRgb* from, int width, const YuvMatrix& m, uchar* to) {
    const int bias = (m.lumaOffset << 16) + (1 << 15);
    for (int x = 0; x < width; ++x)
        to[x] = static_cast<unsigned char>((weigh(m.y, red(from[x]), green(from[x]), blue(from[x])) + bias) >>
                                           16);
}

// Each chroma sample is the mean of four pixels; dividing their sum by 4 makes the shift 18 instead of 16.
void chromaRow(const QRgb* upper, const QRgb* lower, int pairs, const YuvMatrix& m, uchar* u, uchar* v) {
    constexpr int bias = (128 << 18) + (1 << 17);
    for (int x = 0; x < pairs; ++x) {
        const QRgb a = upper[2 * x];
        const QRgb b = upper[2 * x + 1];
        const QRgb c = lower[2 * x];
        const QRgb d = lower[2 * x + 1];
        const int r = red(a) + red(b) + red(c) + red(d);
        const int g = green(a) + green(b) + green(c) + green(d);
        const int l = blue(a) + blue(b) + blue(c) + blue(d);
        u[x] = static_cast<unsigned char>(std::min((weigh(m.u, r, g, l) + bias) >> 18, 255));
        v[x] = static_cast<unsigned char>(std::min((weigh(m.v, r, g, l) + bias) >> 18, 255));
    }
}

} // namespace

const YuvMatrix& yuvMatrixFor(const ClipFormat& format, QSize size) {
    if (format.container == ClipFormat::Container::Avi)
        return kJpeg;
    return size.height() > 576 ? kBt709 : kBt601;
}

void convertToI420(const QImage& picture, const YuvMatrix& matrix, std::span<uchar> planes) {
    const int width = picture.width();
    const int height = picture.height();
    uchar* const y = planes.data();
    uchar* const u = y + static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    uchar* const v = u + static_cast<std::size_t>(width / 2) * static_cast<std::size_t>(height / 2);
    const auto row = [&](int line) { return reinterpret_cast<const QRgb*>(picture.constScanLine(line)); };
    for (int line = 0; line < height; line += 2) {
        lumaRow(row(line), width, matrix,
                y + static_cast<std::size_t>(line) * static_cast<std::size_t>(width));
        lumaRow(row(line + 1), width, matrix,
                y + static_cast<std::size_t>(line + 1) * static_cast<std::size_t>(width));
        const std::size_t chroma = static_cast<std::size_t>(line / 2) * static_cast<std::size_t>(width / 2);
        chromaRow(row(line), row(line + 1), width / 2, matrix, u + chroma, v + chroma);
    }
}

} // namespace ql240::demo
