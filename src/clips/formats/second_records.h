// Records that come about once a second and carry a calendar clock of whole seconds.
#pragma once

#include <limits>
#include <optional>
#include <span>

#include "clips/formats/sensor_records.h"

namespace ql240::sensorfiles {

struct SecondRecord {
    static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

    std::optional<qint64> clock; // in seconds, from whenever
    double latitude = kNothing;  // degrees; no numbers without a fix
    double longitude = kNothing;
    double kmh = kNothing;
    bool isRead = true; // false stands for a second of which nothing is known
};

// A date and time as such a clock; nothing where there is no such time. Years may lack their century.
std::optional<qint64> clockOf(int year, int month, int day, int hour, int minute, int second);

// Adds the records of a whole clip, each at the time that the clocks make likely.
void addSecondRecords(std::span<const SecondRecord> seconds, std::optional<qint64> clipLengthMs,
                      SensorRecords& records);

} // namespace ql240::sensorfiles
