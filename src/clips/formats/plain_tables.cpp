// Boxes or RIFF chunks "gps0" (32 byte records, one a second, little-endian) and "gsen" (three i8 of 16 a g),
// as ExifTool documents them. The accelerations carry no times; five a second is the rate found in clips.
#include <QtEndian>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/second_records.h"
#include "clips/formats/sensor_formats.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr qint64 kAccelerationStepMs = 200;
// Up to the first behind the time that anybody asks for.
constexpr qint64 kAccelerations = limits::kSensorTrackMs / kAccelerationStepMs + 2;
constexpr double kCountsPerUnit = kCountsPerG / 16.0;

SecondRecord readPosition(std::span<const char> bytes) {
    const auto part = [&](size_t offset) { return static_cast<quint8>(bytes[offset]); };
    SecondRecord record;
    record.clock = clockOf(2000 + part(22), part(23), part(24), part(25), part(26), part(27));
    const double latitude = fromDegreesAndMinutes(qFromLittleEndian<double>(bytes.data()));
    const double longitude = fromDegreesAndMinutes(qFromLittleEndian<double>(bytes.data() + 8));
    if (latitude != 0.0 || longitude != 0.0) {
        record.latitude = latitude;
        record.longitude = longitude;
        record.kmh = qFromLittleEndian<quint16>(bytes.data() + 20);
    }
    return record;
}

void readPositions(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    RangeReader reader(source, clip.gps0);
    std::vector<SecondRecord> seconds;
    std::array<char, 32> record{};
    while (seconds.size() < limits::kSensorRecords && reader.read(record)) {
        seconds.push_back(readPosition(record));
    }
    addSecondRecords(seconds, clip.lengthMs, records);
}

void readAccelerations(ByteSource& source, ByteRange table, SensorRecords& records) {
    RangeReader reader(source, table);
    std::array<char, 3> record{};
    for (qint64 i = 0; i < kAccelerations && reader.read(record); ++i) {
        const auto counts = [&](int axis) { return static_cast<qint8>(record[axis]) * kCountsPerUnit; };
        records.addAcceleration(i * kAccelerationStepMs, counts(0), counts(1), counts(2));
    }
}

} // namespace

void readPlainTables(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    readPositions(source, clip, records);
    readAccelerations(source, clip.gsen, records);
}

} // namespace ql240::sensorfiles
