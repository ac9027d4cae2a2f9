// The dashboard's part of a clip's record: positions, speeds and accelerations with their times in ms from
// the clip's start (rounded up, so that none shows early), in the units of the sensor library (millionths of
// a degree, km/h, 1/128 g; rounded half away from zero, saturated).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "clips/formats/record_sink.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {

struct Position {
    std::int32_t latitude = 0; // north positive; both 0 without a fix
    std::int32_t longitude = 0;

    bool isFix() const { return latitude != 0 || longitude != 0; }
};

struct Acceleration {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::int16_t z = 0;
};

class SensorRecords final : public RecordSink {
public:
    std::int64_t endUs() const override { return limits::kSensorTrackMs * 1000; }
    std::size_t mostRecords() const override { return limits::kSensorRecords; }
    void addFix(const RecordedFix& fix) override;
    void addAcceleration(std::int64_t timeUs, double x, double y, double z) override;
    void addOther(std::int64_t timeUs) override;
    void addStop(const ReaderStop&) override {}

    // Call once, after the last record: sorts the records by time and, if none has a speed, derives the
    // speeds from the distances between fixes.
    void finish();

    bool isFull() const override {
        return m_fixes.size() + m_speeds.size() + m_shocks.size() >= limits::kSensorRecords;
    }
    bool isEmpty() const { return m_fixes.empty() && m_speeds.empty() && m_shocks.empty(); }
    // Whether the time is in the clip, up to one second after its last record.
    bool covers(std::int64_t timeMs) const;

    // The latest record at or before the time; zeros if there is none. Speeds are 0 without a fix.
    Position positionAt(std::int64_t timeMs) const;
    std::int32_t speedAt(std::int64_t timeMs) const;
    Acceleration accelerationAt(std::int64_t timeMs) const;

private:
    // 32-bit times keep these records as small as they are in the file.
    struct Fix {
        std::int32_t timeMs;
        Position position;
    };
    struct Speed {
        std::int32_t timeMs;
        std::int32_t kmh;
    };
    struct Shock {
        std::int32_t timeMs;
        Acceleration acceleration;
    };

    std::int32_t note(std::int64_t timeUs);
    void deriveSpeeds();
    void deriveSpeedsOfRun(std::size_t first, std::size_t last);

    std::vector<Fix> m_fixes;
    std::vector<Speed> m_speeds;
    std::vector<Shock> m_shocks;
    std::optional<std::int32_t> m_lastMs;
};

} // namespace ql240::sensorfiles
