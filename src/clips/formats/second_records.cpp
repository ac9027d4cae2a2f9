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
constexpr std::int64_t kLongestTunnelS = 60;
constexpr std::int64_t kNoTunnelS = 1;

// A run of records whose clock doesn't advance or is missing ends before the first one with another clock.
bool endsRun(const SecondRecord& first, const SecondRecord& later) {
    return later.fix.hasClock() && later.fix.clockMs != first.fix.clockMs;
}

std::size_t endOfRun(std::span<const SecondRecord> seconds, std::size_t first) {
    const auto moved = [&](const SecondRecord& later) { return endsRun(seconds[first], later); };
    return std::find_if(seconds.begin() + first + 1, seconds.end(), moved) - seconds.begin();
}

// Without a fix, a receiver's clock stops or is missing, or the recorder writes no records; the next clock
// that advances gives the length of that gap. A corrected clock jumps, too: for steps of more than `maxStepS`
// seconds forward, and for all steps backward, each record counts as one second.
std::int64_t lengthOfRunMs(const SecondRecord& first, std::int64_t count, const SecondRecord* next,
                           std::int64_t maxStepS) {
    const bool moves = next && first.fix.hasClock();
    const std::int64_t step = moves ? (next->fix.clockMs - first.fix.clockMs) / kMsPerSecond : 0;
    const bool isPlausible = step > 0 && step <= maxStepS && count <= step * kMaxRecordsPerSecond;
    return (isPlausible ? step : count) * kMsPerSecond;
}

std::vector<std::int64_t> timesOf(std::span<const SecondRecord> seconds, std::int64_t maxStepS) {
    std::vector<std::int64_t> times;
    times.reserve(seconds.size());
    std::int64_t startMs = 0;
    for (std::size_t first = 0; first < seconds.size();) {
        const std::size_t next = endOfRun(seconds, first);
        const auto count = static_cast<std::int64_t>(next - first);
        const SecondRecord* following = next < seconds.size() ? &seconds[next] : nullptr;
        const std::int64_t lengthMs = lengthOfRunMs(seconds[first], count, following, maxStepS);
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
    std::vector<std::int64_t> times = timesOf(seconds, kLongestTunnelS);
    const bool fits = times.empty() || !clipLengthMs || times.back() <= *clipLengthMs + kSlackMs;
    return fits ? times : timesOf(seconds, kNoTunnelS);
}

void TimesSoFar::add(const SecondRecord& record) {
    m_hasRecord = m_hasRecord || record.isRead;
    if (m_count > 0 && endsRun(m_first, record)) {
        const std::int64_t withTunnelsMs = lengthOfRunMs(m_first, m_count, &record, kLongestTunnelS);
        const std::int64_t withoutMs = lengthOfRunMs(m_first, m_count, &record, kNoTunnelS);
        m_agree = m_agree && withTunnelsMs == withoutMs;
        m_withTunnelsMs += withTunnelsMs;
        m_withoutMs += withoutMs;
        m_count = 0;
    }
    if (m_count++ == 0)
        m_first = record;
}

// Longer runs than a tunnel, and runs that begin without a clock, have a record each second.
bool TimesSoFar::reach(std::int64_t endUs) const {
    const bool isSettled = !m_first.fix.hasClock() || m_count > kLongestTunnelS * kMaxRecordsPerSecond;
    const std::int64_t inRunMs = isSettled ? std::max<std::int64_t>(0, m_count - 1) * kMsPerSecond : 0;
    const std::int64_t withTunnelsMs = m_withTunnelsMs + inRunMs;
    const bool isTooLong = m_clipLengthMs && withTunnelsMs > *m_clipLengthMs + kSlackMs;
    const bool isDecided = m_agree || !m_clipLengthMs || isTooLong;
    const std::int64_t reachedMs = isTooLong ? m_withoutMs + inRunMs : withTunnelsMs;
    return m_hasRecord && isDecided && reachedMs > endUs / kUsPerMs;
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
