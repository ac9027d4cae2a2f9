// Records written about once per second, with a calendar clock in whole seconds.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "clips/formats/record_sink.h"

namespace ql240::sensorfiles {

struct SecondRecord {
    RecordedFix fix;    // its timeUs isn't known yet
    bool isRead = true; // false: an unreadable record, which takes up its second
};

// A date and time in ms since 1970; RecordedFix::kNoClock if it is invalid. Years before 2000 count from
// 2000.
std::int64_t clockOf(int year, int month, int day, int hour, int minute, int second);

// The most likely times of all the records of a clip by their clocks, in milliseconds from the clip's start.
std::vector<std::int64_t> likelyTimes(std::span<const SecondRecord> seconds,
                                      std::optional<std::int64_t> clipLengthMs);

// Whether the records added so far, in order, are enough for their times up to some end: later ones decide
// whether a gap before it was a tunnel or a correction of the clock.
class TimesSoFar {
public:
    explicit TimesSoFar(std::optional<std::int64_t> clipLengthMs) : m_clipLengthMs(clipLengthMs) {}

    void add(const SecondRecord& record);
    // True once the last record is later than `endUs`, whatever follows.
    bool reach(std::int64_t endUs) const;

private:
    std::optional<std::int64_t> m_clipLengthMs;
    SecondRecord m_first; // of the last run of records whose clock doesn't advance
    std::int64_t m_count = 0;
    std::int64_t m_withTunnelsMs = 0; // when that run begins, by both explanations of gaps
    std::int64_t m_withoutMs = 0;
    bool m_agree = true;
    bool m_hasRecord = false;
};

// Adds all the records of a clip, with the most likely times by their clocks.
void addSecondRecords(std::span<const SecondRecord> seconds, std::optional<std::int64_t> clipLengthMs,
                      RecordSink& sink);

} // namespace ql240::sensorfiles
