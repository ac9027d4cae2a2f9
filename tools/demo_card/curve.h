// Smooth functions of one variable through given keys, and reproducible noise, which describe drives, cameras
// and traffic.
#pragma once

#include <QList>
#include <cstdint>

namespace ql240::demo {

struct CurveKey {
    double at;
    double value;
};

class Curve {
public:
    enum class Shape {
        Monotone, // cubic (Fritsch and Carlson): no overshoot, continuous slope
        Ease      // comes to rest at every key, continuous curvature
    };

    Curve(double constant = 0);               // NOLINT(google-explicit-constructor): a number is a curve
    Curve(Shape shape, QList<CurveKey> keys); // keys in ascending order, at least one

    // Before the first and after the last key the curve keeps that key's value.
    double operator()(double at) const;

private:
    Shape m_shape = Shape::Ease;
    QList<CurveKey> m_keys;
    QList<double> m_slopes;
};

// Uniform in 0 … 1, the same for the same arguments on every machine.
double hashNoise(std::uint32_t seed, std::int64_t index);

// Smooth noise in -1 … 1 with features about 1 long.
double smoothNoise(std::uint32_t seed, double at);

} // namespace ql240::demo
