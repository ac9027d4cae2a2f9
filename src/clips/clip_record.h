// Everything that a clip recorded beside picture and sound, as it stands in the file: nothing interpolated,
// nothing filled in. Times count from the clip's start, in microseconds; clocks are milliseconds since 1970;
// positions are degrees, north and east positive; accelerations are in g, gravity included. Plain values.
#pragma once

#include <QDateTime>
#include <QStringList>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <vector>

namespace ql240 {

// One record of the satellite receiver. What it doesn't say isn't a number; without a position there was no
// fix.
struct RecordedFix {
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
    static constexpr std::int64_t kNoClock = std::numeric_limits<std::int64_t>::min();

    std::int64_t timeUs = 0;
    double latitude = kNothing;
    double longitude = kNothing;
    double speedKmh = kNothing;
    double headingDeg = kNothing; // clockwise from north
    double altitudeM = kNothing;
    std::int64_t clockMs = kNoClock; // ClipRecord::clock says whose time it is

    bool isValid() const { return std::abs(latitude) <= 90.0 && std::abs(longitude) <= 180.0; }
    bool hasClock() const { return clockMs != kNoClock; }
};

struct RecordedAcceleration {
    std::int64_t timeUs = 0;
    float x = 0;
    float y = 0;
    float z = 0;
};

struct ClipRecord {
    enum class Clock { None, Camera, Utc };

    QString format; // empty where the clip holds no sensor data
    Clock clock = Clock::None;
    std::deque<RecordedFix> fixes;
    std::deque<RecordedAcceleration> accelerations;
    QString camera;
    QString firmware;
    QDateTime startByName; // the camera's local time, as if it were UTC; invalid where the name has none
    std::optional<std::int64_t> startBySatellitesMs;
    std::int64_t lengthUs = 0; // up to the last record
    // Where a reader found no sense or gave up, and why, the first of them: "GPS block 17 at byte 9,437,184:
    // no status letter".
    QStringList stops;
    std::int64_t furtherStops = 0;

    bool hasFix() const;
};

// The camera's time less UTC; nothing unless the clip has both starts. Names say whole seconds.
std::optional<std::int64_t> cameraOffsetMs(const ClipRecord& record);

// The key that puts clips and their moments in order of time: by the satellites' clock, else by the camera's
// less its offset. What has neither comes last.
std::int64_t timeOrder(std::optional<std::int64_t> utcMs, std::optional<std::int64_t> cameraMs,
                       std::optional<std::int64_t> cameraOffsetMs);

// Both valid; along the earth's mean sphere.
double metresBetween(const RecordedFix& a, const RecordedFix& b);

// Whether the satellites were lost between two fixes in a row: a record without a fix lies between them, or
// no record for so long that the receiver was off.
class LostFixes {
public:
    // For each record in order: true with the first valid fix after a loss, and with the very first.
    bool beginsRun(const RecordedFix& fix);

private:
    std::optional<std::int64_t> m_lastUs;
};

} // namespace ql240
