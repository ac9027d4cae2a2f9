#include "demo_card/curve.h"

#include <algorithm>
#include <cmath>

namespace ql240::demo {
namespace {

double easeInOut(double x) {
    return x * x * x * (x * (x * 6 - 15) + 10);
}

double hermite(double x, double width, double from, double to, double fromSlope, double toSlope) {
    const double x2 = x * x;
    const double x3 = x2 * x;
    return from * (2 * x3 - 3 * x2 + 1) + fromSlope * width * (x3 - 2 * x2 + x) + to * (3 * x2 - 2 * x3) +
           toSlope * width * (x3 - x2);
}

// The harmonic mean of the neighbouring slopes, or level at an extreme: keeps every interval monotone.
QList<double> monotoneSlopes(const QList<CurveKey>& keys) {
    QList<double> slopes(keys.size(), 0.0);
    for (qsizetype i = 1; i + 1 < keys.size(); ++i) {
        const double before = (keys[i].value - keys[i - 1].value) / (keys[i].at - keys[i - 1].at);
        const double after = (keys[i + 1].value - keys[i].value) / (keys[i + 1].at - keys[i].at);
        if (before * after > 0)
            slopes[i] = 2 * before * after / (before + after);
    }
    return slopes;
}

} // namespace

Curve::Curve(double constant) : Curve(Shape::Ease, {{0, constant}}) {}

Curve::Curve(Shape shape, QList<CurveKey> keys)
    : m_shape(shape), m_keys(std::move(keys)), m_slopes(monotoneSlopes(m_keys)) {}

double Curve::operator()(double at) const {
    const auto next = std::upper_bound(m_keys.begin(), m_keys.end(), at,
                                       [](double value, const CurveKey& key) { return value < key.at; });
    if (next == m_keys.begin())
        return m_keys.first().value;
    if (next == m_keys.end())
        return m_keys.last().value;
    const auto& from = *(next - 1);
    const double width = next->at - from.at;
    const double x = (at - from.at) / width;
    if (m_shape == Shape::Ease)
        return from.value + (next->value - from.value) * easeInOut(x);
    const auto i = next - m_keys.begin();
    return hermite(x, width, from.value, next->value, m_slopes[i - 1], m_slopes[i]);
}

double hashNoise(std::uint32_t seed, std::int64_t index) {
    // The finalizer of SplitMix64.
    std::uint64_t x =
        (static_cast<std::uint64_t>(seed) << 32) ^ (static_cast<std::uint64_t>(index) * 0x9e3779b97f4a7c15u);
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
    return static_cast<double>((x ^ (x >> 31)) >> 11) * 0x1p-53;
}

double smoothNoise(std::uint32_t seed, double at) {
    const double base = std::floor(at);
    const auto index = static_cast<std::int64_t>(base);
    const double from = hashNoise(seed, index);
    return 2 * (from + (hashNoise(seed, index + 1) - from) * easeInOut(at - base)) - 1;
}

} // namespace ql240::demo
