#include "demo_card/scene/backdrop.h"

#include <QtGui/QPainter>
#include <cmath>
#include <cstring>

#include "demo_card/scene/art.h"

namespace ql240 {
namespace {

constexpr int kMargin = 40; // rows and columns that pitch and yaw may need

float noise2(std::uint32_t seed, float x, float y) {
    const auto at = [seed](std::int64_t i, std::int64_t j) { return float(hashNoise(seed, i * 7919 + j)); };
    const float bx = std::floor(x);
    const float by = std::floor(y);
    const auto ease = [](float t) { return t * t * (3 - 2 * t); };
    const float u = ease(x - bx);
    const float v = ease(y - by);
    const auto i = std::int64_t(bx);
    const auto j = std::int64_t(by);
    const float low = at(i, j) + (at(i + 1, j) - at(i, j)) * u;
    const float high = at(i, j + 1) + (at(i + 1, j + 1) - at(i, j + 1)) * u;
    return low + (high - low) * v;
}

// Noise in 0 … 1 with detail down to 1/16 of its features.
float cloudNoise(std::uint32_t seed, float x, float y) {
    float sum = 0;
    float size = 0.5f;
    for (int octave = 0; octave < 5; ++octave, size /= 2) {
        sum += size * noise2(seed + unsigned(octave), x, y);
        x *= 2.03f;
        y *= 2.03f;
    }
    return sum;
}

float smooth(float from, float to, float at) {
    const float x = std::clamp((at - from) / (to - from), 0.0f, 1.0f);
    return x * x * (3 - 2 * x);
}

Rgb skyAt(const Palette& p, float height) {
    const float low = std::clamp(height / 0.38f, 0.0f, 1.0f);
    return height < 0.38f ? mix(p.skyLow, p.skyMiddle, std::pow(low, 0.8f))
                          : mix(p.skyMiddle, p.skyTop, smooth(0.38f, 1.0f, height));
}

} // namespace

Backdrop::Backdrop(const World& world, QSize size, float focal, double lowestHeading, double highestHeading,
                   bool backwards)
    : m_size(size), m_focal(focal), m_lowest(lowestHeading), m_seed(world.seed * 13 + (backwards ? 5 : 0)) {
    const int width =
        size.width() + int(std::ceil((highestHeading - lowestHeading) * double(focal))) + 2 * kMargin;
    m_horizon = int(size.height() * 0.47) + kMargin;
    m_picture = QImage(width, m_horizon + kMargin, QImage::Format_RGB32);
    m_sun = float(width) * 0.36f;
    paintSky(world, !backwards);
    paintHills(world);
    paintSkyline(world);
}

void Backdrop::paintSky(const World& world, bool withSun) {
    const Palette& p = world.palette;
    const float unit = float(m_size.height());
    for (int y = 0; y < m_picture.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(m_picture.scanLine(y));
        const float height = std::max(0.0f, float(m_horizon - y)) / float(m_horizon);
        const Rgb sky = skyAt(p, height);
        const float far = 1 / (height + 0.16f); // clouds are smaller towards the horizon
        for (int x = 0; x < m_picture.width(); ++x) {
            const float dx = (float(x) - m_sun) / unit;
            const float dy = float(m_horizon - y) / unit - p.sunHeight;
            const float away = withSun ? std::sqrt(dx * dx + dy * dy) : 9;
            Rgb colour = mix(sky, p.sun, 0.75f * std::exp(-away * 5.5f));
            const float n = cloudNoise(m_seed, (float(x) / unit - 3) * far * 0.9f, far * 2.2f);
            const float cover = smooth(0.62f - 0.3f * p.cloudiness, 0.82f - 0.25f * p.cloudiness, n) *
                                smooth(0.02f, 0.2f, height);
            const Rgb cloud =
                mix(p.cloud, p.sun, 0.6f * std::exp(-away * 3)) * (1.06f - 0.32f * smooth(0.5f, 0.9f, n));
            colour = mix(colour, cloud, cover * 0.85f);
            if (withSun && away < 0.03f)
                colour = mix(colour, {1.15f, 1.1f, 1.0f}, smooth(0.03f, 0.018f, away));
            row[x] = toPixel(colour);
        }
    }
}

void Backdrop::paintHills(const World& world) {
    const Palette& p = world.palette;
    for (int layer = 0; layer < 3; ++layer) {
        const float unit = float(m_size.height());
        const Rgb colour = mix(p.ridge, skyAt(p, 0.05f), 0.62f - 0.24f * float(layer));
        for (int x = 0; x < m_picture.width(); ++x) {
            const float u = float(x) / unit;
            const float n = cloudNoise(m_seed + 40 + unsigned(layer), u * (1.3f + 0.5f * float(layer)), 3.3f);
            const float high = unit * (0.15f - 0.035f * float(layer)) * smooth(0.2f, 0.85f, n);
            for (int y = std::max(0, m_horizon - int(high)); y < m_picture.height(); ++y) {
                const float mist = std::clamp(float(m_horizon - y) / (unit * 0.09f), 0.0f, 1.0f);
                reinterpret_cast<QRgb*>(m_picture.scanLine(y))[x] =
                    toPixel(mix(p.haze, colour, 0.4f + 0.6f * mist));
            }
        }
    }
}

void Backdrop::paintSkyline(const World& world) {
    const Palette& p = world.palette;
    QPainter painter(&m_picture);
    const double unit = m_size.height();
    // The tower on the hill.
    const double tower = double(m_sun) + unit * 0.55;
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(toColor(mix(p.ridge, p.haze, 0.35f)));
    painter.drawRect(QRectF(tower - unit * 0.0035, m_horizon - unit * 0.19, unit * 0.007, unit * 0.19));
    painter.drawEllipse(QPointF(tower, m_horizon - unit * 0.172), unit * 0.014, unit * 0.008);
    painter.drawRect(QRectF(tower - unit * 0.0012, m_horizon - unit * 0.23, unit * 0.0024, unit * 0.05));
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int layer = 0; layer < 2; ++layer)
        for (double x = 0, i = 0; x < m_picture.width(); ++i) {
            const auto dice = [&](int k) {
                return hashNoise(m_seed + 70 + unsigned(layer), std::int64_t(i) * 8 + k);
            };
            const double width = unit * (0.018 + 0.035 * dice(0));
            const double high = unit * (0.02 + 0.075 * std::pow(dice(1), 2.2)) * (layer ? 0.8 : 1.2);
            const QRectF block(x, m_horizon - high, width, high + kMargin);
            const Rgb colour = mix(p.ridge, p.haze, (layer ? 0.22f : 0.5f) + 0.12f * float(dice(2)));
            if (dice(3) < 0.82)
                painter.fillRect(block, toColor(colour));
            const double pane = unit * 0.0045;
            if (dice(3) < 0.82)
                for (double wy = block.top() + pane; wy < m_horizon; wy += 2 * pane)
                    for (double wx = x + pane; wx < x + width - pane; wx += 1.8 * pane)
                        if (hashNoise(m_seed + 90, std::int64_t(wx * 31 + wy * 4099)) <
                            0.34 * double(p.lampLight))
                            painter.fillRect(QRectF(wx, wy, pane * 0.8, pane * 0.9),
                                             toColor(mix(colour, hex(0xffd79a), 0.75f)));
            x += width * (0.8 + 0.7 * dice(4));
        }
}

int Backdrop::left(double heading) const {
    const int shift = kMargin + int(std::lround((heading - m_lowest) * double(m_focal)));
    return std::clamp(shift, 0, m_picture.width() - m_size.width());
}

float Backdrop::sunColumn(double heading) const {
    return m_sun - float(left(heading));
}

void Backdrop::paint(Canvas& canvas, double heading, float horizon) const {
    const int shift = m_horizon - int(std::lround(horizon));
    const int x = left(heading);
    for (int y = 0; y < std::min(canvas.height(), int(horizon) + 1); ++y) {
        const int row = std::clamp(y + shift, 0, m_picture.height() - 1);
        std::memcpy(canvas.line(y), reinterpret_cast<const QRgb*>(m_picture.constScanLine(row)) + x,
                    size_t(canvas.width()) * sizeof(QRgb));
    }
}

} // namespace ql240
