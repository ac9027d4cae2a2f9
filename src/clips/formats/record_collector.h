// Collects all the records of a clip as a ClipRecord. Memory grows in small blocks with the records really
// found, not with the counts that the file states. One thread at a time.
#pragma once

#include "clips/formats/record_sink.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {

class RecordCollector final : public RecordSink {
public:
    // If false, accelerations are read and counted but not stored.
    explicit RecordCollector(bool keepsAccelerations = true) : m_keepsAccelerations(keepsAccelerations) {}

    std::int64_t endUs() const override { return limits::kRecordUs; }
    std::size_t mostRecords() const override { return limits::kRecordRecords; }
    bool isFull() const override { return m_count >= limits::kRecordRecords; }

    void addFix(const RecordedFix& fix) override;
    void addAcceleration(std::int64_t timeUs, double x, double y, double z) override;
    void addOther(std::int64_t timeUs) override;
    void addStop(const ReaderStop& stop) override;

    // Whether there are no records; there may be stops.
    bool isEmpty() const { return m_count == 0; }
    // Call once, after the last record: sorts the records by time and derives the clip's start from the
    // clocks.
    [[nodiscard]] ClipRecord take(ClipRecord::Clock clock);

private:
    void count(std::int64_t timeUs);
    bool completesLast(const RecordedFix& fix);

    bool m_keepsAccelerations;
    std::size_t m_count = 0;
    ClipRecord m_record;
};

} // namespace ql240::sensorfiles
