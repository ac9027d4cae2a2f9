// Boxes or RIFF chunks "gps0" (32-byte records, one per second, little-endian) and "gsen" (three i8 in 1/16
// g), as ExifTool documents them. The accelerations have no times; five per second is the rate found in
// clips.
#include <QtEndian>
#include <cmath>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/second_records.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/sensor_parts.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr double kUnitsPerG = 16;
constexpr const char* kNotWhole = "it isn't whole in the file";

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

// Reports the record at which a table's reading ended, unless that is where the table ends.
void addRest(const ReaderStop& record, ByteRange table, RecordSink& sink) {
    if (record.offset < table.end())
        sink.addStop(record);
}

void readAccelerations(ByteSource& source, ByteRange table, RecordSink& sink) {
    RangeReader reader(source, table);
    std::array<char, kPlainAccelerationBytes> record{};
    // Includes the first record after the sink's end.
    std::int64_t count = 0;
    for (std::int64_t timeUs = 0; timeUs - kPlainAccelerationStepUs <= sink.endUs() && !sink.isFull();
         timeUs += kPlainAccelerationStepUs) {
        if (!reader.read(record)) {
            addRest({"acceleration", count + 1, table.start + count * kPlainAccelerationBytes, kNotWhole},
                    table, sink);
            break;
        }
        ++count;
        const auto g = [&](int axis) { return static_cast<std::int8_t>(record[axis]) / kUnitsPerG; };
        sink.addAcceleration(timeUs, g(0), g(1), g(2));
    }
}

// The last of `seconds` may be one that is later than the sink's end.
void addPositionStops(const std::vector<SecondRecord>& seconds, ByteRange table, RecordSink& sink) {
    const auto offsetOf = [table](std::size_t i) {
        return table.start + static_cast<std::int64_t>(i) * kPlainPositionBytes;
    };
    const auto stopAt = [&](std::size_t i, const char* reason) {
        return ReaderStop{"position", static_cast<std::int64_t>(i) + 1, offsetOf(i), reason};
    };
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        const RecordedFix& fix = seconds[i].fix;
        if (!fix.isValid() && !std::isnan(fix.speedKmh))
            sink.addStop(stopAt(i, "no valid position"));
    }
    const std::size_t end = seconds.size();
    if (end == limits::kSensorRecords)
        addRest(stopAt(end, "it and later ones aren't read"), table, sink);
    else if (offsetOf(end + 1) > table.end())
        addRest(stopAt(end, kNotWhole), table, sink);
}

} // namespace

std::vector<SecondRecord> readPlainPositions(ByteSource& source, const ClipLayout& clip, std::int64_t endUs) {
    RangeReader reader(source, clip.gps0);
    std::vector<SecondRecord> seconds;
    TimesSoFar times(clip.lengthMs);
    std::array<char, kPlainPositionBytes> record{};
    while (seconds.size() < limits::kSensorRecords && !times.reach(endUs) && reader.read(record)) {
        seconds.push_back(readPosition(record));
        times.add(seconds.back());
    }
    return seconds;
}

void readPlainTables(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    const std::vector<SecondRecord> seconds = readPlainPositions(source, clip, sink.endUs());
    addPositionStops(seconds, clip.gps0, sink);
    addSecondRecords(seconds, clip.lengthMs, sink);
    readAccelerations(source, clip.gsen, sink);
}

} // namespace ql240::sensorfiles
