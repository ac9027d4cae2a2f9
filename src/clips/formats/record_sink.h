// Receives the records that the format readers find: the dashboard's track, which ends at 61 s, or the whole
// record. Times in microseconds from the clip's start, accelerations in g.
#pragma once

#include "clips/clip_record.h"
#include "platform/sensor_library.h"

namespace ql240::sensorfiles {

// The unit of recorders that write raw counts.
inline constexpr double kCountsPerG = SensorLibrary::kCountsPerG;

// Invalid data in the file: "GPS block", 17, the offset of its first byte, "no status letter".
struct ReaderStop {
    const char* unit;
    std::int64_t number; // from 1
    std::int64_t offset;
    const char* reason;
};

class RecordSink {
public:
    virtual ~RecordSink() = default;

    // Readers may stop after this time.
    virtual std::int64_t endUs() const = 0;
    // Readers look at no more records than this.
    virtual std::size_t mostRecords() const = 0;
    // Further records are ignored.
    virtual bool isFull() const = 0;

    virtual void addFix(const RecordedFix& fix) = 0;
    virtual void addAcceleration(std::int64_t timeUs, double x, double y, double z) = 0;
    // A record at this time with other content.
    virtual void addOther(std::int64_t timeUs) = 0;
    virtual void addStop(const ReaderStop& stop) = 0;
};

} // namespace ql240::sensorfiles
