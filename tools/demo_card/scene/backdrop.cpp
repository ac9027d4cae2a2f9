#include "demo_card/scene/backdrop.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ql240::demo {
namespace {

constexpr int kMargin = 40; // spare rows and columns for pitch and yaw

float smooth(float from, float to, float at) {
    const float x = std::clamp((at - from) / (to - from), 0.0f, 1.0f);
    return x * x * (3 - 2 * x);
}

float noise2(std::uint32_t seed, float x, float y) {
    const float left = std::floor(x);
    const float low = std::floor(y);
    const auto row = [&](float at) {
        const auto corner = static_cast<std::int64_t>(left) * 7919 + static_cast<std::int64_t>(at);
        return std::lerp(static_cast<float>(hashNoise(seed, corner)),
                         static_cast<float>(hashNoise(seed, corner + 7919)), smooth(0, 1, x - left));
    };
    return std::lerp(row(low), row(low + 1), smooth(0, 1, y - low));
}

// Noise in 0 … 1 with detail down to 1/16 of its features.
float cloudNoise(std::uint32_t seed, float x, float y) {
    float sum = 0;
    for (float size = 0.5f; size > 0.03f; size /= 2, x *= 2.03f, y *= 2.03f)
        sum += size * noise2(seed++, x, y);
    return sum;
}

Rgb skyAt(const Palette& p, float height) {
    return height < 0.38f ? mix(p.skyLow, p.skyMiddle, std::pow(height / 0.38f, 0.8f))
                          : mix(p.skyMiddle, p.skyTop, smooth(0.38f, 1.0f, height));
}

} // namespace

Backdrop::Backdrop(const World& world, Art& art, QSize size, float focal, double lowestHeading,
                   double highestHeading, bool backwards)
    : m_focal(focal),
      m_lowest(lowestHeading),
      m_seed(world.seed * 13 + (backwards ? 5 : 0)),
      m_picture(
          size.width() +
              static_cast<int>(std::ceil((highestHeading - lowestHeading) * static_cast<double>(focal))) +
              2 * kMargin,
          static_cast<int>(size.height() * 0.47) + 2 * kMargin, QImage::Format_RGB32),
      m_horizon(m_picture.height() - kMargin),
      m_sun(static_cast<float>(m_picture.width()) * 0.36f),
      m_unit(static_cast<float>(size.height())) {
    paintSky(world.palette, !backwards);
    paintHorizon(world.palette, art);
}

void Backdrop::paintSky(const Palette& p, bool withSun) {
    for (int y = 0; y < m_picture.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(m_picture.scanLine(y));
        const float height =
            std::max(0.0f, static_cast<float>(m_horizon - y)) / static_cast<float>(m_horizon);
        const Rgb sky = skyAt(p, height);
        const float far = 1 / (height + 0.16f); // clouds are smaller towards the horizon
        for (int x = 0; x < m_picture.width(); ++x) {
            const float away = withSun ? std::hypot((static_cast<float>(x) - m_sun) / m_unit,
                                                    static_cast<float>(m_horizon - y) / m_unit - p.sunHeight)
                                       : 9;
            const float n = cloudNoise(m_seed, (static_cast<float>(x) / m_unit - 3) * far * 0.9f, far * 2.2f);
            const float cover = smooth(0.62f - 0.3f * p.cloudiness, 0.82f - 0.25f * p.cloudiness, n) *
                                smooth(0.02f, 0.2f, height);
            const Rgb cloud =
                mix(p.cloud, p.sun, 0.6f * std::exp(-away * 3)) * (1.06f - 0.32f * smooth(0.5f, 0.9f, n));
            const Rgb clear = mix(sky, p.sun, 0.75f * std::exp(-away * 5.5f));
            row[x] = toPixel(
                mix(mix(clear, cloud, cover * 0.85f), {1.15f, 1.1f, 1.0f}, smooth(0.03f, 0.018f, away)));
        }
    }
}

void Backdrop::paintHorizon(const Palette& palette, Art& art) {
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(0, m_horizon, m_picture.width(), kMargin, toColor(palette.haze));
    const auto paint = [&](const char* part) {
        const QImage band = art.picture(QLatin1String(part), palette.ridge).image.levelFor(720 / m_unit);
        const double high = m_unit * 0.3;
        const double wide = m_unit * 3;
        for (double x = 0; x < m_picture.width(); x += wide)
            painter.drawImage(QRectF(x, m_horizon - high, wide, high), band);
    };
    paint("horizon#wall");
    painter.setOpacity(palette.lampLight);
    paint("horizon#lit");
}

int Backdrop::left(double heading) const {
    return kMargin + static_cast<int>(std::lround((heading - m_lowest) * static_cast<double>(m_focal)));
}

float Backdrop::sunColumn(double heading) const {
    return m_sun - static_cast<float>(left(heading));
}

void Backdrop::paint(Canvas& canvas, double heading, float horizon) const {
    const int top = m_horizon - static_cast<int>(std::lround(horizon));
    QPainter(&canvas.image()).drawImage(0, -top, m_picture, left(heading), 0, canvas.width());
}

} // namespace ql240::demo
