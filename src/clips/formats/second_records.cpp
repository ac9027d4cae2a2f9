#include "clips/formats/second_records.h"

#include <QDateTime>
#include <algorithm>
#include <cstdlib>

namespace ql240::sensorfiles {
namespace {

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kMsPerDay = 86'400'000;
constexpr std::int64_t kJulianDayOf1970 = 2'440'588;
constexpr int kLastYear = 100'000'000; // later years in ms exceed 64 bits
constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kMaxRecordsPerSecond = 10;
constexpr std::int64_t kSlackMs = 1000; // a correct clock may run past the clip's end by this

// End of the run of records whose clock doesn't advance or is missing.
std::size_t endOfRun(std::span<const SecondRecord> seconds, std::size_t first) {
    const auto moved = [&](const SecondRecord& later) {
        return later.fix.hasClock() && later.fix.clockMs != seconds[first].fix.clockMs;
    };
    return std::find_if(seconds.begin() + first + 1, seconds.end(), moved) - seconds.begin();
}

// Without a fix, a receiver's clock stops or is missing, or the recorder writes no records; the next clock
// that advances gives the length of that gap. A corrected clock jumps, too: for steps of more than `maxStepS`
// seconds forward, and for all steps backward, each record counts as one second.
std::vector<std::int64_t> timesOf(std::span<const SecondRecord> seconds, std::int64_t maxStepS) {
    std::vector<std::int64_t> times;
    times.reserve(seconds.size());
    std::int64_t startMs = 0;
    for (std::size_t first = 0; first < seconds.size();) {
        const std::size_t next = endOfRun(seconds, first);
        const auto count = static_cast<std::int64_t>(next - first);
        const bool moves = next < seconds.size() && seconds[first].fix.hasClock();
        const std::int64_t step =
            moves ? (seconds[next].fix.clockMs - seconds[first].fix.clockMs) / kMsPerSecond : 0;
        const bool isPlausible = step > 0 && step <= maxStepS && count <= step * kMaxRecordsPerSecond;
        const std::int64_t lengthMs = (isPlausible ? step : count) * kMsPerSecond;
        for (std::int64_t i = 0; i < count; ++i)
            times.push_back(startMs + i * std::min(kMsPerSecond, lengthMs / count));
        startMs += lengthMs;
        first = next;
    }
    return times;
}

} // namespace

std::int64_t clockOf(int year, int month, int day, int hour, int minute, int second) {
    const QDate date(year < 2000 ? year + 2000 : year, month, day);
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid() || std::abs(date.year()) > kLastYear)
        return RecordedFix::kNoClock;
    return (date.toJulianDay() - kJulianDayOf1970) * kMsPerDay + time.msecsSinceStartOfDay();
}

// If the gaps make the records longer than the clip, they were corrections of the clock, not tunnels.
std::vector<std::int64_t> likelyTimes(std::span<const SecondRecord> seconds,
                                      std::optional<std::int64_t> clipLengthMs) {
    constexpr std::int64_t kLongestTunnelS = 60;
    std::vector<std::int64_t> times = timesOf(seconds, kLongestTunnelS);
    const bool fits = times.empty() || !clipLengthMs || times.back() <= *clipLengthMs + kSlackMs;
    return fits ? times : timesOf(seconds, 1);
}

void addSecondRecords(std::span<const SecondRecord> seconds, std::optional<std::int64_t> clipLengthMs,
                      RecordSink& sink) {
    const std::vector<std::int64_t> times = likelyTimes(seconds, clipLengthMs);
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        if (seconds[i].isRead) {
            RecordedFix fix = seconds[i].fix;
            fix.timeUs = times[i] * kUsPerMs;
            sink.addFix(fix);
        }
    }
}

} // namespace ql240::sensorfiles
