#include "demo_card/sound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ql240::demo {
namespace {

using std::numbers::pi;

// First-order low-pass filter.
class LowPass {
public:
    LowPass(double hz, double rate) : m_part(1 - std::exp(-2 * pi * hz / rate)) {}
    double operator()(double in) { return m_value += (in - m_value) * m_part; }

private:
    double m_part;
    double m_value = 0;
};

// Engine speed in revolutions per second, with an automatic gearbox that shifts up early.
double engineTurns(double speed) {
    constexpr std::array<double, 6> metresPerTurn{0.16, 0.27, 0.40, 0.55, 0.72, 0.92};
    constexpr double idle = 13;
    constexpr double change = 36;
    for (double gear : metresPerTurn)
        if (speed / gear < change)
            return std::max(idle, speed / gear);
    return speed / metresPerTurn.back();
}

class Engine {
public:
    explicit Engine(double rate) : m_rate(rate), m_smooth(4, rate) {}

    // A four-cylinder engine fires twice per revolution; load adds overtones.
    double sample(double speed, double acceleration) {
        const double turns = m_smooth(engineTurns(speed));
        m_phase = std::fmod(m_phase + 2 * turns / m_rate, 2.0);
        const double load = 0.5 + std::clamp(acceleration, 0.0, 3.0) / 3;
        const double angle = 2 * pi * m_phase;
        return (0.6 * std::sin(angle) + load * 0.35 * std::sin(2 * angle + 0.4) +
                load * 0.2 * std::sin(3 * angle) + 0.25 * std::sin(angle / 2 + 1)) *
               (0.05 + 0.0006 * turns);
    }

private:
    double m_rate;
    LowPass m_smooth;
    double m_phase = 0;
};

class Road {
public:
    explicit Road(double rate) : m_low(320, rate), m_lower(140, rate), m_wind(1800, rate) {}

    double sample(double speed, std::int64_t index) {
        const double white = 2 * hashNoise(77, index) - 1;
        const double rumble = m_lower(m_low(white));
        const double wind = m_wind(white);
        return std::pow(speed / 25, 1.3) * (0.55 * rumble + 0.035 * wind);
    }

private:
    LowPass m_low;
    LowPass m_lower;
    LowPass m_wind;
};

// A relay that clicks twice every 0.7 s.
double indicatorTick(double time, const QList<TimeSpan>& spans) {
    for (const TimeSpan& span : spans) {
        if (time < span.from || time >= span.to)
            continue;
        const double cycle = std::fmod(time - span.from, 0.7);
        const double since = cycle < 0.35 ? cycle : cycle - 0.35;
        const double hz = cycle < 0.35 ? 2300 : 1700;
        return 0.12 * std::exp(-since / 0.004) * std::sin(2 * pi * hz * since);
    }
    return 0;
}

double thud(double since, std::int64_t index) {
    if (since < 0 || since > 1.5)
        return 0;
    const double body =
        std::sin(2 * pi * (48 + 30 * std::exp(-since / 0.05)) * since) * std::exp(-since / 0.16);
    const double crunch = (2 * hashNoise(78, index) - 1) * std::exp(-since / 0.06);
    const double rattle = (2 * hashNoise(79, index / 3) - 1) * std::exp(-since / 0.35) * 0.12;
    return 0.7 * body + 0.35 * crunch + rattle;
}

} // namespace

QByteArray driveSound(const Drive& drive, TimeSpan span, int rate, const QList<TimeSpan>& indicator) {
    const std::int64_t count = static_cast<std::int64_t>((span.to - span.from) * rate);
    QByteArray samples(count * static_cast<qsizetype>(sizeof(std::int16_t)), Qt::Uninitialized);
    auto* out = reinterpret_cast<std::int16_t*>(samples.data());
    Engine engine(rate);
    Road road(rate);
    DriveState state;
    for (std::int64_t i = 0; i < count; ++i) {
        const double time = span.from + static_cast<double>(i) / rate;
        if (i % 64 == 0)
            state = drive.at(time);
        double value = engine.sample(state.speed, state.forwardAcc) + road.sample(state.speed, i);
        value += indicatorTick(time, indicator);
        if (drive.plan().impactTime)
            value += thud(time - *drive.plan().impactTime, i);
        out[i] = static_cast<std::int16_t>(std::lround(std::tanh(value) * 30000));
    }
    return samples;
}

} // namespace ql240::demo
