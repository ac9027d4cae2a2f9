// Everything that a clip recorded besides video and audio, exactly as in the file, without interpolation or
// defaults. Times are in microseconds from the clip's start; clocks in milliseconds since 1970; positions in
// degrees, north and east positive; accelerations in g, gravity included. Plain values.
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

// One record of the GPS receiver. Missing values are NaN; without a position there was no fix.
struct RecordedFix {
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
    static constexpr std::int64_t kNoClock = std::numeric_limits<std::int64_t>::min();

    std::int64_t timeUs = 0;
    double latitude = kNothing;
    double longitude = kNothing;
    double speedKmh = kNothing;
    double headingDeg = kNothing; // clockwise from north
    double altitudeM = kNothing;
    std::int64_t clockMs = kNoClock; // ClipRecord::clock says by which clock

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

    QString format; // empty if the clip has no sensor data
    Clock clock = Clock::None;
    std::deque<RecordedFix> fixes;
    std::deque<RecordedAcceleration> accelerations;
    QString camera;
    QString firmware;
    QDateTime
        startByName; // the camera's local time, as if it were UTC; invalid if the name has no time stamp
    std::optional<std::int64_t> startBySatellitesMs;
    std::int64_t lengthUs = 0; // up to the last record
    // Where and why a reader skipped invalid data or stopped: "GPS block 17 at byte 9,437,184: no status
    // letter". Only the first few; furtherStops counts the others.
    QStringList stops;
    std::int64_t furtherStops = 0;

    bool hasFix() const;
};

// The camera's time minus UTC; nothing unless the clip has both starts. File names have whole seconds.
std::optional<std::int64_t> cameraOffsetMs(const ClipRecord& record);

// The sort key for clips and their moments: UTC from the receiver, otherwise the camera's time minus its
// offset. Without either they sort last.
std::int64_t timeOrder(std::optional<std::int64_t> utcMs, std::optional<std::int64_t> cameraMs,
                       std::optional<std::int64_t> cameraOffsetMs);

// Great-circle distance on a sphere with the earth's mean radius. Both fixes must be valid.
double metresBetween(const RecordedFix& a, const RecordedFix& b);

// Whether the fix was lost between two consecutive valid fixes: a record without a fix lies between them, or
// there is no record for so long that the receiver was off.
class LostFixes {
public:
    // Call for each record in order: true for the first valid fix of the clip and for the first after each
    // loss.
    bool beginsRun(const RecordedFix& fix);

private:
    std::optional<std::int64_t> m_lastUs;
};

} // namespace ql240
