// What the readers of the formats found in a clip: positions, speeds and accelerations, each by its own times
// in ms from the clip's start, already in the units of the sensor library (millionths of a degree, km/h,
// counts of 128 a g; rounded half away from zero, saturated).
#pragma once

#include <QtGlobal>
#include <optional>
#include <vector>

#include "platform/limits.h"
#include "platform/sensor_library.h"

namespace ql240::sensorfiles {

inline constexpr double kCountsPerG = SensorLibrary::kCountsPerG;

struct Position {
    qint32 latitude = 0; // north positive; both 0 without a fix
    qint32 longitude = 0;

    bool isFix() const { return latitude != 0 || longitude != 0; }
};

struct Acceleration {
    qint16 x = 0;
    qint16 y = 0;
    qint16 z = 0;
};

class SensorRecords {
public:
    // Degrees; what is no place on earth counts as no fix.
    void addFix(qint64 timeMs, double latitude, double longitude);
    void addNoFix(qint64 timeMs);
    void addSpeed(qint64 timeMs, double kmh);
    void addAcceleration(qint64 timeMs, double x, double y, double z);
    // Something else that was recorded at this time.
    void addOther(qint64 timeMs);

    // Once after the last record: puts late ones in order and, where no record gave a speed, works it out
    // from the distance between the fixes.
    void finish();

    // Nothing more is taken.
    bool isFull() const {
        return m_fixes.size() + m_speeds.size() + m_shocks.size() >= limits::kSensorRecords;
    }
    bool isEmpty() const { return m_fixes.empty() && m_speeds.empty() && m_shocks.empty(); }
    // A clip is answered for up to a second behind its last record.
    bool covers(qint64 timeMs) const;

    // The latest record at or before the time, zeros where there is none. Speeds are 0 without a fix.
    Position positionAt(qint64 timeMs) const;
    qint32 speedAt(qint64 timeMs) const;
    Acceleration accelerationAt(qint64 timeMs) const;

private:
    // Times in ms as 32 bits: a clip's records take no more memory than they take in the clip.
    struct Fix {
        qint32 timeMs;
        Position position;
    };
    struct Speed {
        qint32 timeMs;
        qint32 kmh;
    };
    struct Shock {
        qint32 timeMs;
        Acceleration acceleration;
    };

    qint32 note(qint64 timeMs);
    void deriveSpeeds();
    void deriveSpeedsOfRun(size_t first, size_t last);

    std::vector<Fix> m_fixes;
    std::vector<Speed> m_speeds;
    std::vector<Shock> m_shocks;
    std::optional<qint32> m_lastMs;
};

} // namespace ql240::sensorfiles
