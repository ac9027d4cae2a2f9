// Colours as light intensities: 0 … 1, more is overexposed.
#pragma once

#include <QColor>
#include <algorithm>

namespace ql240::demo {

struct Rgb {
    float r = 0, g = 0, b = 0;
};

constexpr Rgb hex(unsigned rrggbb) {
    return {static_cast<float>(rrggbb >> 16 & 255) / 255, static_cast<float>(rrggbb >> 8 & 255) / 255,
            static_cast<float>(rrggbb & 255) / 255};
}

constexpr Rgb operator+(Rgb a, Rgb b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}

constexpr Rgb operator*(Rgb a, float k) {
    return {a.r * k, a.g * k, a.b * k};
}

constexpr Rgb operator*(Rgb a, Rgb b) {
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}

constexpr Rgb mix(Rgb a, Rgb b, float part) {
    return a * (1 - part) + b * part;
}

inline QRgb toPixel(Rgb c) {
    const auto byte = [](float level) {
        return static_cast<int>(std::clamp(level, 0.0f, 1.0f) * 255 + 0.5f);
    };
    return qRgb(byte(c.r), byte(c.g), byte(c.b));
}

inline QColor toColor(Rgb c) {
    return QColor::fromRgb(toPixel(c));
}

// How a surface's own colour looks in this light, through some haze.
struct Shade {
    Rgb light{1, 1, 1};
    Rgb haze;
    float hazePart = 0;
    Rgb operator()(Rgb colour) const { return mix(colour * light, haze, hazePart); }
};

} // namespace ql240::demo
