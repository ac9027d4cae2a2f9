// Keeps all that the readers of the formats find, as a ClipRecord. Memory grows with the records that a clip
// really has, by small blocks. One thread at a time.
#pragma once

#include "clips/formats/record_sink.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {

class RecordCollector final : public RecordSink {
public:
    // Without them, accelerations are read but not kept.
    explicit RecordCollector(bool keepsAccelerations = true) : m_keepsAccelerations(keepsAccelerations) {}

    std::int64_t endUs() const override { return limits::kRecordUs; }
    std::size_t mostRecords() const override { return limits::kRecordRecords; }
    bool isFull() const override { return m_count >= limits::kRecordRecords; }

    void addFix(const RecordedFix& fix) override;
    void addAcceleration(std::int64_t timeUs, double x, double y, double z) override;
    void addOther(std::int64_t timeUs) override;
    void addStop(const ReaderStop& stop) override;

    // Whether nothing was found but stops.
    bool isEmpty() const { return m_count == 0; }
    // Once, after the last record: puts late ones in order and works out when the clip began.
    ClipRecord take(ClipRecord::Clock clock);

private:
    void count(std::int64_t timeUs);
    bool completesLast(const RecordedFix& fix);

    bool m_keepsAccelerations;
    std::size_t m_count = 0;
    ClipRecord m_record;
};

} // namespace ql240::sensorfiles
