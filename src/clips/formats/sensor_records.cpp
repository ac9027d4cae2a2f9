#include "clips/formats/sensor_records.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "clips/formats/sphere.h"

namespace ql240::sensorfiles {
namespace {

constexpr std::int64_t kHoldMs = 1000;
// Receivers repeat a position between two fixes, so speeds derived over less than a second may be wrong.
constexpr std::int64_t kSpeedWindowMs = 1000;
constexpr std::int64_t kUsPerMs = 1000;
constexpr double kRadiansPerMillionth = std::numbers::pi / 180.0 / 1e6;
constexpr double kKmhPerMetreAMs = 3600.0;

template <typename T>
T rounded(double value) {
    constexpr double kLow = std::numeric_limits<T>::min();
    constexpr double kHigh = std::numeric_limits<T>::max();
    return static_cast<T>(std::clamp(std::round(value), kLow, kHigh));
}

double metresBetween(const Position& a, const Position& b) {
    return metresOnSphere(a.latitude * kRadiansPerMillionth, b.latitude * kRadiansPerMillionth,
                          (static_cast<double>(b.longitude) - a.longitude) * kRadiansPerMillionth);
}

template <typename Record>
void sortByTime(std::vector<Record>& records) {
    std::stable_sort(records.begin(), records.end(),
                     [](const Record& a, const Record& b) { return a.timeMs < b.timeMs; });
}

template <typename Record>
const Record* latest(const std::vector<Record>& records, std::int64_t timeMs) {
    const auto after =
        std::upper_bound(records.begin(), records.end(), timeMs,
                         [](std::int64_t time, const Record& record) { return time < record.timeMs; });
    return after == records.begin() ? nullptr : &*std::prev(after);
}

} // namespace

// Converts a time to ms, rounding up, and extends the covered time to it.
std::int32_t SensorRecords::note(std::int64_t timeUs) {
    const std::int64_t timeMs = timeUs / kUsPerMs + (timeUs % kUsPerMs > 0 ? 1 : 0);
    const auto kept = static_cast<std::int32_t>(std::clamp<std::int64_t>(
        timeMs, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
    m_lastMs = std::max(m_lastMs.value_or(kept), kept);
    return kept;
}

void SensorRecords::addFix(const RecordedFix& fix) {
    if (isFull())
        return;
    const Position position = fix.isValid() ? Position{rounded<std::int32_t>(fix.latitude * 1e6),
                                                       rounded<std::int32_t>(fix.longitude * 1e6)}
                                            : Position();
    m_fixes.push_back({note(fix.timeUs), position});
    if (!isFull() && std::isfinite(fix.speedKmh))
        m_speeds.push_back({note(fix.timeUs), rounded<std::int32_t>(fix.speedKmh)});
}

void SensorRecords::addAcceleration(std::int64_t timeUs, double x, double y, double z) {
    if (!isFull() && std::isfinite(x) && std::isfinite(y) && std::isfinite(z)) {
        const auto counts = [](double g) { return rounded<std::int16_t>(g * kCountsPerG); };
        m_shocks.push_back({note(timeUs), {counts(x), counts(y), counts(z)}});
    }
}

void SensorRecords::addOther(std::int64_t timeUs) {
    note(timeUs);
}

void SensorRecords::finish() {
    sortByTime(m_fixes);
    sortByTime(m_speeds);
    sortByTime(m_shocks);
    if (m_speeds.empty())
        deriveSpeeds();
}

// Derives speeds only within an unbroken run of fixes.
void SensorRecords::deriveSpeeds() {
    std::size_t first = 0;
    for (std::size_t i = 0; i <= m_fixes.size(); ++i) {
        if (i == m_fixes.size() || !m_fixes[i].position.isFix()) {
            if (i > first)
                deriveSpeedsOfRun(first, i);
            first = i + 1;
        }
    }
}

// Derives a speed for each fix of [first, last) from the distance over the second before it, or over the
// run's first second for the fixes in that second.
void SensorRecords::deriveSpeedsOfRun(std::size_t first, std::size_t last) {
    const auto timeOf = [this](std::size_t i) { return static_cast<std::int64_t>(m_fixes[i].timeMs); };
    std::size_t opening = first;
    while (opening + 1 < last && timeOf(opening) - timeOf(first) < kSpeedWindowMs)
        ++opening;
    std::size_t from = first;
    for (std::size_t i = first; i < last; ++i) {
        const std::size_t to = std::max(i, opening);
        while (from + 1 < to && timeOf(to) - timeOf(from + 1) >= kSpeedWindowMs)
            ++from;
        const std::int64_t elapsedMs = timeOf(to) - timeOf(from);
        const double metres = metresBetween(m_fixes[from].position, m_fixes[to].position);
        const double kmh = elapsedMs > 0 ? metres / static_cast<double>(elapsedMs) * kKmhPerMetreAMs : 0.0;
        m_speeds.push_back({m_fixes[i].timeMs, rounded<std::int32_t>(kmh)});
    }
}

bool SensorRecords::covers(std::int64_t timeMs) const {
    return !isEmpty() && timeMs >= 0 && timeMs - kHoldMs <= *m_lastMs;
}

Position SensorRecords::positionAt(std::int64_t timeMs) const {
    const Fix* fix = latest(m_fixes, timeMs);
    return fix ? fix->position : Position();
}

std::int32_t SensorRecords::speedAt(std::int64_t timeMs) const {
    const Fix* fix = latest(m_fixes, timeMs);
    const Speed* speed = latest(m_speeds, timeMs);
    return fix && fix->position.isFix() && speed ? speed->kmh : 0;
}

Acceleration SensorRecords::accelerationAt(std::int64_t timeMs) const {
    const Shock* shock = latest(m_shocks, timeMs);
    return shock ? shock->acceleration : Acceleration();
}

} // namespace ql240::sensorfiles
