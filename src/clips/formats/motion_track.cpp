// Camera motion metadata, as published with the Street View camera formats: each record is a reserved u16,
// its type as a u16 and its fields, little-endian.
#include <QtEndian>
#include <cmath>

#include "clips/formats/sensor_formats.h"
#include "clips/formats/track_samples.h"

namespace ql240::sensorfiles {
namespace {

constexpr double kStandardGravity = 9.80665; // m/s²
constexpr double kKmhPerMetreAS = 3.6;

// Whole sizes by type, header included: angles, exposure, turning rates, acceleration, position of the
// camera, place, place with fix and velocity, magnetic field.
constexpr std::array<size_t, 8> kRecordSizes{16, 12, 16, 16, 16, 28, 60, 16};
enum RecordType { kAcceleration = 3, kPlace = 5, kFix = 6 };

template <typename T>
T field(std::span<const char> record, size_t offset) {
    return qFromLittleEndian<T>(record.data() + offset);
}

void addFixRecord(qint64 timeMs, std::span<const char> record, SensorRecords& records) {
    if (field<qint32>(record, 12) == 0) {
        records.addNoFix(timeMs);
        return;
    }
    records.addFix(timeMs, field<double>(record, 16), field<double>(record, 24));
    const double east = field<float>(record, 44);
    const double north = field<float>(record, 48);
    records.addSpeed(timeMs, std::hypot(east, north) * kKmhPerMetreAS);
}

void addAccelerationRecord(qint64 timeMs, std::span<const char> record, SensorRecords& records) {
    const auto counts = [&](size_t offset) {
        return static_cast<double>(field<float>(record, offset)) * kCountsPerG / kStandardGravity;
    };
    records.addAcceleration(timeMs, counts(4), counts(8), counts(12));
}

} // namespace

void readMotionSample(qint64 timeMs, std::span<const char> bytes, SensorRecords& records) {
    while (bytes.size() >= 4) {
        const size_t type = field<quint16>(bytes, 2);
        if (type >= kRecordSizes.size() || bytes.size() < kRecordSizes[type]) {
            return;
        }
        const std::span<const char> record = bytes.first(kRecordSizes[type]);
        bytes = bytes.subspan(record.size());
        if (type == kAcceleration) {
            addAccelerationRecord(timeMs, record, records);
        } else if (type == kPlace) {
            records.addFix(timeMs, field<double>(record, 4), field<double>(record, 12));
        } else if (type == kFix) {
            addFixRecord(timeMs, record, records);
        } else {
            records.addOther(timeMs);
        }
    }
}

void readMotionTrack(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    for (const TrackLayout& track : clip.tracks) {
        const bool handled = track.handler == fourCc("meta") || track.handler == fourCc("camm");
        if (handled && track.format == fourCc("camm")) {
            forEachSample(source, track, clip.timescale, [&](qint64 timeMs, std::span<const char> bytes) {
                readMotionSample(timeMs, bytes, records);
            });
        }
    }
}

} // namespace ql240::sensorfiles
