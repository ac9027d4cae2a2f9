#include "clips/formats/second_records.h"

#include <QDateTime>
#include <algorithm>

namespace ql240::sensorfiles {
namespace {

constexpr qint64 kMsPerSecond = 1000;
constexpr qint64 kMostASecond = 10;
constexpr qint64 kSlackMs = 1000; // by which honest clocks may run past the clip's end

// Behind a record, those whose clock stands still or says nothing.
size_t endOfRun(std::span<const SecondRecord> seconds, size_t first) {
    const auto moved = [&](const SecondRecord& later) {
        return later.clock && later.clock != seconds[first].clock;
    };
    return std::find_if(seconds.begin() + first + 1, seconds.end(), moved) - seconds.begin();
}

// A receiver without a fix lets its clock stand, or says none, or no record is written; then the next clock
// that moves on says how long that was. One that is set right jumps as well: steps of more than `believedS`
// forward and all backward count as a second a record.
std::vector<qint64> timesOf(std::span<const SecondRecord> seconds, qint64 believedS) {
    std::vector<qint64> times;
    times.reserve(seconds.size());
    qint64 startMs = 0;
    for (size_t first = 0; first < seconds.size();) {
        const size_t next = endOfRun(seconds, first);
        const auto count = static_cast<qint64>(next - first);
        const bool moves = next < seconds.size() && seconds[first].clock;
        const qint64 step = moves ? *seconds[next].clock - *seconds[first].clock : 0;
        const bool believed = step > 0 && step <= believedS && count <= step * kMostASecond;
        const qint64 lengthMs = (believed ? step : count) * kMsPerSecond;
        for (qint64 i = 0; i < count; ++i) {
            times.push_back(startMs + i * std::min(kMsPerSecond, lengthMs / count));
        }
        startMs += lengthMs;
        first = next;
    }
    return times;
}

// Nobody drives through a tunnel that is longer than the clip: then a clock has been set.
std::vector<qint64> likelyTimes(std::span<const SecondRecord> seconds, std::optional<qint64> clipLengthMs) {
    constexpr qint64 kLongestTunnelS = 60;
    std::vector<qint64> times = timesOf(seconds, kLongestTunnelS);
    const bool fits = times.empty() || !clipLengthMs || times.back() <= *clipLengthMs + kSlackMs;
    return fits ? times : timesOf(seconds, 1);
}

} // namespace

std::optional<qint64> clockOf(int year, int month, int day, int hour, int minute, int second) {
    const QDate date(year < 2000 ? year + 2000 : year, month, day);
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    return date.toJulianDay() * 86400 + time.msecsSinceStartOfDay() / kMsPerSecond;
}

void addSecondRecords(std::span<const SecondRecord> seconds, std::optional<qint64> clipLengthMs,
                      SensorRecords& records) {
    const std::vector<qint64> times = likelyTimes(seconds, clipLengthMs);
    for (size_t i = 0; i < seconds.size(); ++i) {
        if (seconds[i].isRead) {
            records.addFix(times[i], seconds[i].latitude, seconds[i].longitude);
            records.addSpeed(times[i], seconds[i].kmh);
        }
    }
}

} // namespace ql240::sensorfiles
