// Boxes or RIFF chunks "gps0" (32-byte records, one per second, little-endian) and "gsen" (three i8 in 1/16
// g), as ExifTool documents them. The accelerations have no times; five per second is the rate found in
// clips.
#include <QtEndian>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/second_records.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/sensor_parts.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr double kUnitsPerG = 16;

SecondRecord readPosition(std::span<const char> bytes) {
    const auto part = [&](std::size_t offset) { return static_cast<std::uint8_t>(bytes[offset]); };
    SecondRecord record;
    RecordedFix& fix = record.fix;
    fix.clockMs = clockOf(2000 + part(22), part(23), part(24), part(25), part(26), part(27));
    const double latitude = fromDegreesAndMinutes(qFromLittleEndian<double>(bytes.data()));
    const double longitude = fromDegreesAndMinutes(qFromLittleEndian<double>(bytes.data() + 8));
    if (latitude != 0.0 || longitude != 0.0) {
        fix.latitude = latitude;
        fix.longitude = longitude;
        fix.altitudeM = qFromLittleEndian<std::int32_t>(bytes.data() + 16);
        fix.speedKmh = qFromLittleEndian<std::uint16_t>(bytes.data() + 20);
        fix.headingDeg = part(28) * 2;
    }
    return record;
}

void readAccelerations(ByteSource& source, ByteRange table, RecordSink& sink) {
    RangeReader reader(source, table);
    std::array<char, kPlainAccelerationBytes> record{};
    // Includes the first record after the sink's end.
    for (std::int64_t timeUs = 0; timeUs - kPlainAccelerationStepUs <= sink.endUs() && !sink.isFull();
         timeUs += kPlainAccelerationStepUs) {
        if (!reader.read(record))
            break;
        const auto g = [&](int axis) { return static_cast<std::int8_t>(record[axis]) / kUnitsPerG; };
        sink.addAcceleration(timeUs, g(0), g(1), g(2));
    }
}

} // namespace

std::vector<SecondRecord> readPlainPositions(ByteSource& source, const ClipLayout& clip) {
    RangeReader reader(source, clip.gps0);
    std::vector<SecondRecord> seconds;
    std::array<char, kPlainPositionBytes> record{};
    while (seconds.size() < limits::kSensorRecords && reader.read(record))
        seconds.push_back(readPosition(record));
    return seconds;
}

void readPlainTables(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    addSecondRecords(readPlainPositions(source, clip), clip.lengthMs, sink);
    readAccelerations(source, clip.gsen, sink);
}

} // namespace ql240::sensorfiles
