#include "clips/formats/sensor_records.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace ql240::sensorfiles {
namespace {

constexpr qint64 kHoldMs = 1000;
// Receivers repeat a position between two of their own fixes: over a second a speed is true, over less it may
// not be.
constexpr qint64 kSpeedWindowMs = 1000;
constexpr double kEarthRadiusM = 6371008.8; // mean radius, IUGG
constexpr double kRadiansPerMillionth = std::numbers::pi / 180.0 / 1e6;
constexpr double kKmhPerMetreAMs = 3600.0;

template <typename T>
T rounded(double value) {
    constexpr double kLow = std::numeric_limits<T>::min();
    constexpr double kHigh = std::numeric_limits<T>::max();
    return static_cast<T>(std::clamp(std::round(value), kLow, kHigh));
}

// On a sphere; the haversine formula, exact enough at any distance.
double metresBetween(const Position& a, const Position& b) {
    const double latitudeA = a.latitude * kRadiansPerMillionth;
    const double latitudeB = b.latitude * kRadiansPerMillionth;
    const double sinLatitude = std::sin((latitudeB - latitudeA) / 2);
    const double sinLongitude =
        std::sin((static_cast<double>(b.longitude) - a.longitude) * kRadiansPerMillionth / 2);
    const double h =
        sinLatitude * sinLatitude + std::cos(latitudeA) * std::cos(latitudeB) * sinLongitude * sinLongitude;
    return 2 * kEarthRadiusM * std::asin(std::min(1.0, std::sqrt(h)));
}

template <typename Record>
void sortByTime(std::vector<Record>& records) {
    std::stable_sort(records.begin(), records.end(),
                     [](const Record& a, const Record& b) { return a.timeMs < b.timeMs; });
}

template <typename Record>
const Record* latest(const std::vector<Record>& records, qint64 timeMs) {
    const auto after =
        std::upper_bound(records.begin(), records.end(), timeMs,
                         [](qint64 time, const Record& record) { return time < record.timeMs; });
    return after == records.begin() ? nullptr : &*std::prev(after);
}

} // namespace

// The time as it is kept.
qint32 SensorRecords::note(qint64 timeMs) {
    const auto kept = static_cast<qint32>(
        std::clamp<qint64>(timeMs, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()));
    m_lastMs = std::max(m_lastMs.value_or(kept), kept);
    return kept;
}

void SensorRecords::addFix(qint64 timeMs, double latitude, double longitude) {
    if (isFull()) {
        return;
    }
    if (std::abs(latitude) <= 90.0 && std::abs(longitude) <= 180.0) {
        m_fixes.push_back(
            {note(timeMs), {rounded<qint32>(latitude * 1e6), rounded<qint32>(longitude * 1e6)}});
    } else {
        addNoFix(timeMs);
    }
}

void SensorRecords::addNoFix(qint64 timeMs) {
    if (!isFull()) {
        m_fixes.push_back({note(timeMs), {}});
    }
}

void SensorRecords::addSpeed(qint64 timeMs, double kmh) {
    if (!isFull() && std::isfinite(kmh)) {
        m_speeds.push_back({note(timeMs), rounded<qint32>(kmh)});
    }
}

void SensorRecords::addAcceleration(qint64 timeMs, double x, double y, double z) {
    if (!isFull() && std::isfinite(x) && std::isfinite(y) && std::isfinite(z)) {
        m_shocks.push_back({note(timeMs), {rounded<qint16>(x), rounded<qint16>(y), rounded<qint16>(z)}});
    }
}

void SensorRecords::addOther(qint64 timeMs) {
    note(timeMs);
}

void SensorRecords::finish() {
    sortByTime(m_fixes);
    sortByTime(m_speeds);
    sortByTime(m_shocks);
    if (m_speeds.empty()) {
        deriveSpeeds();
    }
}

// Across a gap without a fix there is no distance: each unbroken run of fixes stands for itself.
void SensorRecords::deriveSpeeds() {
    size_t first = 0;
    for (size_t i = 0; i <= m_fixes.size(); ++i) {
        if (i == m_fixes.size() || !m_fixes[i].position.isFix()) {
            if (i > first) {
                deriveSpeedsOfRun(first, i);
            }
            first = i + 1;
        }
    }
}

// Over the last second up to each fix of [first, last); over the run's first second where that isn't over
// yet.
void SensorRecords::deriveSpeedsOfRun(size_t first, size_t last) {
    const auto timeOf = [this](size_t i) { return qint64(m_fixes[i].timeMs); };
    size_t opening = first;
    while (opening + 1 < last && timeOf(opening) - timeOf(first) < kSpeedWindowMs) {
        ++opening;
    }
    size_t from = first;
    for (size_t i = first; i < last; ++i) {
        const size_t to = std::max(i, opening);
        while (from + 1 < to && timeOf(to) - timeOf(from + 1) >= kSpeedWindowMs) {
            ++from;
        }
        const qint64 elapsedMs = timeOf(to) - timeOf(from);
        const double metres = metresBetween(m_fixes[from].position, m_fixes[to].position);
        const double kmh = elapsedMs > 0 ? metres / static_cast<double>(elapsedMs) * kKmhPerMetreAMs : 0.0;
        m_speeds.push_back({m_fixes[i].timeMs, rounded<qint32>(kmh)});
    }
}

bool SensorRecords::covers(qint64 timeMs) const {
    return !isEmpty() && timeMs >= 0 && timeMs - kHoldMs <= *m_lastMs;
}

Position SensorRecords::positionAt(qint64 timeMs) const {
    const Fix* fix = latest(m_fixes, timeMs);
    return fix != nullptr ? fix->position : Position();
}

qint32 SensorRecords::speedAt(qint64 timeMs) const {
    const Fix* fix = latest(m_fixes, timeMs);
    const Speed* speed = latest(m_speeds, timeMs);
    return fix != nullptr && fix->position.isFix() && speed != nullptr ? speed->kmh : 0;
}

Acceleration SensorRecords::accelerationAt(qint64 timeMs) const {
    const Shock* shock = latest(m_shocks, timeMs);
    return shock != nullptr ? shock->acceleration : Acceleration();
}

} // namespace ql240::sensorfiles
