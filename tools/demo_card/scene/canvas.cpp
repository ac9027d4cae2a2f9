#include "demo_card/scene/canvas.h"

#include <QtGui/QTransform>
#include <algorithm>
#include <cmath>
#include <vector>

namespace ql240 {
namespace {

constexpr float kNearest = 0.35f; // metres; walls are cut there

// A shade in whole numbers: channel × times / 256 + plus.
struct FixedShade {
    int times[3];
    int plus[3];
    explicit FixedShade(const Shade& shade) {
        const float clear = 1 - shade.hazePart;
        const float light[3] = {shade.light.r, shade.light.g, shade.light.b};
        const float haze[3] = {shade.haze.r, shade.haze.g, shade.haze.b};
        for (int i = 0; i < 3; ++i) {
            times[i] = int(light[i] * clear * 256);
            plus[i] = int(haze[i] * shade.hazePart * 256);
        }
    }
};

inline QRgb shaded(QRgb c, const FixedShade& s) {
    const int a = qAlpha(c);
    const auto channel = [&](int value, int i) {
        return std::min((value * s.times[i] + a * s.plus[i]) >> 8, a);
    };
    return qRgba(channel(qRed(c), 0), channel(qGreen(c), 1), channel(qBlue(c), 2), a);
}

inline QRgb over(QRgb top, QRgb below) {
    const unsigned keep = 256 - unsigned(qAlpha(top));
    const unsigned rb = ((below & 0xff00ff) * keep >> 8) & 0xff00ff;
    const unsigned ag = ((below >> 8 & 0xff00ff) * keep) & 0xff00ff00;
    return (top + (rb | ag)) | 0xff000000;
}

// part in 0 … 256.
inline QRgb blend(QRgb a, QRgb b, unsigned part) {
    const unsigned rest = 256 - part;
    const unsigned rb = (((a & 0xff00ff) * rest + (b & 0xff00ff) * part) >> 8) & 0xff00ff;
    const unsigned ag = ((a >> 8 & 0xff00ff) * rest + (b >> 8 & 0xff00ff) * part) & 0xff00ff00;
    return rb | ag;
}

// The shade over the canvas's own pixel.
inline void lay(QRgb& pixel, QRgb colour, const FixedShade& shade) {
    const QRgb top = shaded(colour, shade);
    pixel = qAlpha(top) == 255 ? top : over(top, pixel);
}

// Between which two pixels of a scaled picture a pixel of the screen lies.
struct Tap {
    int low, high;
    unsigned part; // of 256
};

struct Taps {
    int first = 0; // pixel of the screen
    std::vector<Tap> taps;

    Taps(double from, double to, int limit, int pixels, bool mirrored)
        : first(std::max(0, int(std::floor(from)))) {
        const double scale = pixels / (to - from);
        const int end = std::min(limit, int(std::ceil(to)));
        taps.reserve(size_t(std::max(0, end - first)));
        for (int i = first; i < end; ++i) {
            const double at = (i + 0.5 - from) * scale - 0.5;
            const int whole = int(std::floor(at));
            const auto inside = [&](int pixel) {
                pixel = std::clamp(pixel, 0, pixels - 1);
                return mirrored ? pixels - 1 - pixel : pixel;
            };
            taps.push_back({inside(whole), inside(whole + 1), unsigned((at - whole) * 256)});
        }
    }
};

// Calls put(pixel, colour) with the smoothly scaled picture, where it isn't transparent.
template <typename Put>
void scaled(const QImage& from, QRectF area, Canvas& canvas, bool mirrored, Put put) {
    const Taps across(area.left(), area.right(), canvas.width(), from.width(), mirrored);
    const Taps down(area.top(), area.bottom(), canvas.height(), from.height(), false);
    for (size_t y = 0; y < down.taps.size(); ++y) {
        const Tap& v = down.taps[y];
        const auto* upper = reinterpret_cast<const QRgb*>(from.constScanLine(v.low));
        const auto* lower = reinterpret_cast<const QRgb*>(from.constScanLine(v.high));
        QRgb* pixel = canvas.line(down.first + int(y)) + across.first;
        for (const Tap& u : across.taps) {
            const QRgb a = upper[u.low];
            const QRgb b = upper[u.high];
            const QRgb c = lower[u.low];
            const QRgb d = lower[u.high];
            if (a | b | c | d)
                put(*pixel, blend(blend(a, b, u.part), blend(c, d, u.part), v.part));
            ++pixel;
        }
    }
}

} // namespace

WallCover::WallCover(const QImage& upright, float wide, float high)
    : turned(upright.transformed(QTransform(0, 1, 1, 0, 0, 0))), metresWide(wide), metresHigh(high) {}

Mipmap::Mipmap(const QImage& picture) {
    QImage level = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    while (!level.isNull()) {
        m_levels.append(level);
        if (level.width() < 8 || level.height() < 8)
            break;
        level = level.scaled(level.width() / 2, level.height() / 2, Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    }
}

double Mipmap::aspect() const {
    return double(m_levels.first().width()) / m_levels.first().height();
}

const QImage& Mipmap::levelFor(double pixelsPerPixel) const {
    qsizetype level = 0;
    for (; pixelsPerPixel > 1.42 && level + 1 < m_levels.size(); ++level)
        pixelsPerPixel /= 2;
    return m_levels[level];
}

Canvas::Canvas(QSize size)
    : m_image(size, QImage::Format_RGB32),
      m_pixels(reinterpret_cast<QRgb*>(m_image.bits())),
      m_width(size.width()),
      m_height(size.height()) {}

void Canvas::span(int y, float x0, float x1, Rgb colour, float opacity) {
    x0 = std::max(x0, 0.0f);
    x1 = std::min(x1, float(m_width));
    if (x1 <= x0 || y < 0 || y >= m_height)
        return;
    QRgb* const row = line(y);
    const QRgb pixel = toPixel(colour);
    const auto cover = [&](int x, float part) {
        row[x] = blend(row[x], pixel, unsigned(part * opacity * 256)) | 0xff000000;
    };
    const int first = int(x0);
    const int last = int(x1);
    if (first == last)
        return cover(first, x1 - x0);
    cover(first, float(first + 1) - x0);
    if (opacity >= 1)
        std::fill(row + first + 1, row + last, pixel);
    else
        for (int x = first + 1; x < last; ++x)
            cover(x, 1);
    if (last < m_width)
        cover(last, x1 - float(last));
}

void Canvas::rectangle(QRectF area, Rgb colour, float opacity) {
    for (int y = int(std::floor(area.top())); y < int(std::ceil(area.bottom())); ++y) {
        const double covered = std::min<double>(area.bottom(), y + 1) - std::max<double>(area.top(), y);
        span(y, float(area.left()), float(area.right()), colour, opacity * float(covered));
    }
}

struct Canvas::Column {
    int x;
    float top, bottom; // rows
    float along, high; // metres: place along the wall, height of the wall
    float texelsPerPixel;
    const WallCover* cover;
    const FixedShade* shade;
};

void Canvas::wallColumn(const Column& c) {
    const float perPixel = c.high / (c.bottom - c.top); // metres
    const QImage& full = c.cover->turned.levelFor(0);
    const float down = perPixel * float(full.width()) / c.cover->metresHigh;
    const QImage& level = c.cover->turned.levelFor(double(std::max(down, c.texelsPerPixel)) * 0.8);
    const float repeats = c.along / c.cover->metresWide;
    const int u = int((repeats - std::floor(repeats)) * float(level.height()));
    const auto* texels = reinterpret_cast<const QRgb*>(level.constScanLine(std::min(u, level.height() - 1)));
    const int size = level.width();
    const float step = perPixel / c.cover->metresHigh * float(size);
    const int first = std::max(0, int(std::floor(c.top)));
    const int end = std::min(m_height, int(std::ceil(c.bottom)));
    // The cover hangs from the wall's foot, so that floors meet the ground.
    const float whole = c.high / c.cover->metresHigh;
    const float offset = (std::ceil(whole) - whole) * float(size);
    float v = std::fmod(offset + std::max(0.0f, float(first) + 0.5f - c.top) * step, float(size));
    QRgb* pixel = m_pixels + qsizetype(first) * m_width + c.x;
    for (int y = first; y < end; ++y, pixel += m_width) {
        QRgb colour = texels[std::min(int(v), size - 1)];
        const float covered = std::min(c.bottom, float(y + 1)) - std::max(c.top, float(y));
        if (covered < 1)
            colour = blend(0, colour, unsigned(covered * 256));
        lay(*pixel, colour, *c.shade);
        for (v += step; v >= float(size);)
            v -= float(size);
    }
}

void Canvas::wall(const Projection& projection, WallEnd a, WallEnd b, float bottom, float top,
                  const WallCover& cover, const Shade& shade) {
    if (a.forward < kNearest && b.forward < kNearest)
        return;
    const auto cut = [](WallEnd& near, const WallEnd& far) {
        const float part = (kNearest - near.forward) / (far.forward - near.forward);
        near = {near.right + (far.right - near.right) * part, kNearest,
                near.along + (far.along - near.along) * part};
    };
    if (a.forward < kNearest)
        cut(a, b);
    if (b.forward < kNearest)
        cut(b, a);
    float x0 = projection.column(a.right, a.forward);
    float x1 = projection.column(b.right, b.forward);
    if (x0 > x1) {
        std::swap(a, b);
        std::swap(x0, x1);
    }
    const FixedShade fixed(shade);
    const int first = std::max(0, int(std::ceil(x0 - 0.5f)));
    const int end = std::min(m_width, int(std::ceil(x1 - 0.5f)));
    const float texels = float(cover.turned.levelFor(0).height()) / cover.metresWide;
    const auto placeAt = [&](float x, float& inverse) {
        const float part = (x - x0) / (x1 - x0);
        inverse = 1 / a.forward + (1 / b.forward - 1 / a.forward) * part;
        return (a.along / a.forward + (b.along / b.forward - a.along / a.forward) * part) / inverse;
    };
    for (int x = first; x < end; ++x) {
        float inverse = 0;
        float ignored = 0;
        const float along = placeAt(float(x) + 0.5f, inverse);
        const float step = std::abs(placeAt(float(x) + 1.5f, ignored) - along) * texels;
        const float high = projection.row(top, 1 / inverse);
        const float low = projection.row(bottom, 1 / inverse);
        if (low > high)
            wallColumn({x, high, low, along, top - bottom, step, &cover, &fixed});
    }
}

void Canvas::picture(const Mipmap& picture, QRectF area, const Shade& shade, bool mirrored) {
    if (area.width() < 0.5 || area.height() < 0.5 || !area.intersects(QRectF(0, 0, m_width, m_height)))
        return;
    const FixedShade fixed(shade);
    const QImage& level = picture.levelFor(picture.levelFor(0).height() / area.height());
    scaled(level, area, *this, mirrored, [&](QRgb& pixel, QRgb colour) { lay(pixel, colour, fixed); });
}

void Canvas::overlay(const QImage& picture, int top, const Shade& shade) {
    const FixedShade fixed(shade);
    for (int y = 0; y < picture.height(); ++y) {
        const auto* colours = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        QRgb* const pixels = line(top + y);
        for (int x = 0; x < m_width; ++x)
            if (colours[x])
                lay(pixels[x], colours[x], fixed);
    }
}

void Canvas::glow(const Mipmap& picture, QRectF area, Rgb colour) {
    if (area.width() < 1 || area.height() < 1 || !area.intersects(QRectF(0, 0, m_width, m_height)))
        return;
    const int r = int(colour.r * 256);
    const int g = int(colour.g * 256);
    const int b = int(colour.b * 256);
    const QImage& level = picture.levelFor(picture.levelFor(0).height() / area.height());
    scaled(level, area, *this, false, [=](QRgb& pixel, QRgb light) {
        const int grey = qAlpha(light);
        pixel =
            qRgb(std::min(255, qRed(pixel) + (grey * r >> 8)), std::min(255, qGreen(pixel) + (grey * g >> 8)),
                 std::min(255, qBlue(pixel) + (grey * b >> 8)));
    });
}

} // namespace ql240
