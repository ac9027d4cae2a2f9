// Who takes what the readers of the formats find: the dashboard's track, which ends at 61 s, or the whole
// record. Times in microseconds from the clip's start, accelerations in g.
#pragma once

#include "clips/clip_record.h"
#include "platform/sensor_library.h"

namespace ql240::sensorfiles {

// Of recorders that write raw counts.
inline constexpr double kCountsPerG = SensorLibrary::kCountsPerG;

// Something in the file that makes no sense: "GPS block", 17, the byte where it begins, "no status letter".
struct ReaderStop {
    const char* unit;
    std::int64_t number; // from 1
    std::int64_t offset;
    const char* reason;
};

class RecordSink {
public:
    virtual ~RecordSink() = default;

    // Nothing that begins later is asked for.
    virtual std::int64_t endUs() const = 0;
    // No reader looks at more records than that.
    virtual std::size_t mostRecords() const = 0;
    // Nothing more is taken.
    virtual bool isFull() const = 0;

    virtual void addFix(const RecordedFix& fix) = 0;
    virtual void addAcceleration(std::int64_t timeUs, double x, double y, double z) = 0;
    // Something else that was recorded at this time.
    virtual void addOther(std::int64_t timeUs) = 0;
    virtual void addStop(const ReaderStop& stop) = 0;
};

} // namespace ql240::sensorfiles
