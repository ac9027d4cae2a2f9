// Records that come about once a second and carry a calendar clock of whole seconds.
#pragma once

#include <optional>
#include <span>

#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

struct SecondRecord {
    RecordedFix fix;    // its time in the clip is not known yet
    bool isRead = true; // false stands for a second of which nothing is known
};

// A date and time as such a clock; RecordedFix::kNoClock where there is no such time. Years may lack their
// century.
std::int64_t clockOf(int year, int month, int day, int hour, int minute, int second);

// Adds the records of a whole clip, each at the time that the clocks make likely.
void addSecondRecords(std::span<const SecondRecord> seconds, std::optional<std::int64_t> clipLengthMs,
                      RecordSink& sink);

} // namespace ql240::sensorfiles
