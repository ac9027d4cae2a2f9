#include "demo_card/scene/canvas.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace ql240::demo {
namespace {

constexpr float kNearest = 0.35f; // metres; walls are clipped there

// A shade in fixed point: channel × times / 256 + plus.
struct FixedShade {
    int times[3], plus[3];
    explicit FixedShade(const Shade& shade) {
        const Rgb light = shade.light * (256 * (1 - shade.hazePart));
        const Rgb haze = shade.haze * (256 * shade.hazePart);
        std::tie(times[0], times[1], times[2]) = std::tuple(light.r, light.g, light.b);
        std::tie(plus[0], plus[1], plus[2]) = std::tuple(haze.r, haze.g, haze.b);
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
    const unsigned keep = 256 - static_cast<unsigned>(qAlpha(top));
    const unsigned rb = ((below & 0xff00ff) * keep >> 8) & 0xff00ff;
    const unsigned ag = ((below >> 8 & 0xff00ff) * keep) & 0xff00ff00;
    return qAlpha(top) == 255 ? top : (top + (rb | ag)) | 0xff000000;
}

// part in 0 … 256.
inline QRgb blend(QRgb a, QRgb b, unsigned part) {
    const unsigned rest = 256 - part;
    const unsigned rb = (((a & 0xff00ff) * rest + (b & 0xff00ff) * part) >> 8) & 0xff00ff;
    const unsigned ag = ((a >> 8 & 0xff00ff) * rest + (b >> 8 & 0xff00ff) * part) & 0xff00ff00;
    return rb | ag;
}

QImage shaded(QImage picture, const FixedShade& shade) {
    auto* pixels = reinterpret_cast<QRgb*>(picture.bits());
    std::transform(pixels, pixels + picture.sizeInBytes() / static_cast<qsizetype>(sizeof(QRgb)), pixels,
                   [&](QRgb c) { return shaded(c, shade); });
    return picture;
}

} // namespace

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

const QImage& Mipmap::levelFor(double pixelsPerPixel) const {
    qsizetype level = 0;
    for (; pixelsPerPixel > 1.42 && level + 1 < m_levels.size(); ++level)
        pixelsPerPixel /= 2;
    return m_levels[level];
}

Canvas::Canvas(QSize size)
    : m_image(size, QImage::Format_RGB32), m_pixels(reinterpret_cast<QRgb*>(m_image.bits())) {}

void Canvas::span(int y, float x0, float x1, Rgb colour, float opacity) {
    x0 = std::max(x0, 0.0f);
    x1 = std::min(x1, static_cast<float>(width()));
    if (x1 <= x0 || y < 0 || y >= height())
        return;
    QRgb* const row = m_pixels + static_cast<qsizetype>(y) * width();
    const QRgb pixel = toPixel(colour);
    const auto cover = [&](int x, float part) {
        row[x] = blend(row[x], pixel, static_cast<unsigned>(part * opacity * 256)) | 0xff000000;
    };
    const int first = static_cast<int>(x0);
    const int last = static_cast<int>(x1);
    if (first == last)
        return cover(first, x1 - x0);
    cover(first, static_cast<float>(first + 1) - x0);
    if (opacity >= 1)
        std::fill(row + first + 1, row + last, pixel);
    else
        for (int x = first + 1; x < last; ++x)
            cover(x, 1);
    if (last < width())
        cover(last, x1 - static_cast<float>(last));
}

struct Canvas::Column {
    int x;
    float top, bottom; // rows
    float along, high; // metres: position along the wall, height of the wall
    float texelsPerPixel;
    const WallCover* cover;
    FixedShade shade;
};

void Canvas::wallColumn(Column c) {
    const float perPixel = c.high / (c.bottom - c.top); // metres
    const float coverHigh = static_cast<float>(c.cover->metres.height());
    const float down = perPixel * static_cast<float>(c.cover->turned.levelFor(0).width()) / coverHigh;
    const QImage& level =
        c.cover->turned.levelFor(static_cast<double>(std::max(down, c.texelsPerPixel)) * 0.8);
    const int u = static_cast<int>(std::fmod(c.along / static_cast<float>(c.cover->metres.width()), 1.0f) *
                                   static_cast<float>(level.height()));
    const auto* texels = reinterpret_cast<const QRgb*>(level.constScanLine(std::min(u, level.height() - 1)));
    const int size = level.width();
    const int first = std::max(0, static_cast<int>(std::floor(c.top)));
    const int end = std::min(height(), static_cast<int>(std::ceil(c.bottom)));
    const int stride = width();
    // The cover is aligned with the wall's foot, so that its floors meet the ground.
    const float whole = c.high / coverHigh;
    const float offset = (std::ceil(whole) - whole) * static_cast<float>(size);
    const float step = perPixel / coverHigh * static_cast<float>(size);
    float v = std::fmod(offset + std::max(0.0f, static_cast<float>(first) + 0.5f - c.top) * step,
                        static_cast<float>(size));
    QRgb* pixel = m_pixels + static_cast<qsizetype>(first) * stride + c.x;
    for (int y = first; y < end; ++y, pixel += stride) {
        QRgb colour = texels[std::min(static_cast<int>(v), size - 1)];
        const float covered =
            std::min(c.bottom, static_cast<float>(y + 1)) - std::max(c.top, static_cast<float>(y));
        if (covered < 1)
            colour = blend(0, colour, static_cast<unsigned>(covered * 256));
        *pixel = over(shaded(colour, c.shade), *pixel);
        for (v += step; v >= static_cast<float>(size);)
            v -= static_cast<float>(size);
    }
}

void Canvas::wall(const Projection& projection, WallEnd a, WallEnd b, float bottom, float top,
                  const WallCover& cover, const Shade& shade) {
    if (a.forward > b.forward)
        std::swap(a, b);
    if (b.forward < kNearest)
        return;
    if (const float part = (kNearest - a.forward) / (b.forward - a.forward); a.forward < kNearest)
        a = {std::lerp(a.right, b.right, part), kNearest, std::lerp(a.along, b.along, part)};
    if (projection.column(a.right, a.forward) > projection.column(b.right, b.forward))
        std::swap(a, b);
    const float x0 = projection.column(a.right, a.forward);
    const float x1 = projection.column(b.right, b.forward);
    const FixedShade fixed(shade);
    const int end = std::min(width(), static_cast<int>(std::ceil(x1 - 0.5f)));
    const float texels =
        static_cast<float>(cover.turned.levelFor(0).height()) / static_cast<float>(cover.metres.width());
    // 1 / depth and along / depth are linear in the column.
    const float depthStep = (1 / b.forward - 1 / a.forward) / (x1 - x0);
    const float placeStep = (b.along / b.forward - a.along / a.forward) / (x1 - x0);
    for (int x = std::max(0, static_cast<int>(std::ceil(x0 - 0.5f))); x < end; ++x) {
        const float away = static_cast<float>(x) + 0.5f - x0;
        const float depth = 1 / (1 / a.forward + depthStep * away);
        const float along = (a.along / a.forward + placeStep * away) * depth;
        const float step = std::abs(placeStep - along * depthStep) * depth * texels;
        const float high = projection.row(top, depth);
        const float low = projection.row(bottom, depth);
        if (low > high)
            wallColumn({x, high, low, along, top - bottom, step, &cover, fixed});
    }
}

void Canvas::picture(const Mipmap& picture, QRectF area, const Shade& shade, bool mirrored,
                     QPainter::CompositionMode mode) {
    if (area.width() < 1 || area.height() < 1 || !area.intersects(m_image.rect()))
        return;
    const QImage& level = picture.levelFor(picture.levelFor(0).height() / area.height());
    const QImage lit = shaded(level, FixedShade(shade));
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(mode);
    painter.drawImage(area, mirrored ? lit.mirrored(true, false) : lit);
}

} // namespace ql240::demo
