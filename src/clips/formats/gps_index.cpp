// An index of GPS blocks, as ExifTool documents it for several recorders: moov/"gps " holds a version, a
// count and that many pairs of offset and size, big-endian; each block is a "free" box whose body begins with
// "GPS ". The record's position in the block varies; its status letters mark it: 'A' or 'V', 'N' or 'S', 'E'
// or 'W'.
#include <QtEndian>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/second_records.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/sensor_parts.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr std::size_t kHeadSize = 12; // box size, "free", "GPS "
constexpr std::size_t kClockSize = 24;
// Four bytes of letters, then latitude, longitude and knots as floats; a heading may follow.
constexpr std::size_t kPlaceSize = 16;

template <typename T>
T field(std::span<const char> bytes, std::size_t offset) {
    return qFromLittleEndian<T>(bytes.data() + offset);
}

std::int64_t clockBefore(std::span<const char> block, std::size_t letters) {
    const auto part = [&](std::size_t i) { return field<std::int32_t>(block, letters - kClockSize + 4 * i); };
    return clockOf(part(3), part(4), part(5), part(0), part(1), part(2));
}

bool areLetters(std::span<const char> bytes) {
    return (bytes[0] == 'A' || bytes[0] == 'V') && (bytes[1] == 'N' || bytes[1] == 'S') &&
           (bytes[2] == 'E' || bytes[2] == 'W');
}

// Offset of the status letters: the first match preceded by a valid clock.
std::optional<std::size_t> findLetters(std::span<const char> block) {
    for (std::size_t i = kHeadSize + kClockSize; i + kPlaceSize <= block.size(); ++i) {
        if (areLetters(block.subspan(i, 3)) && clockBefore(block, i) != RecordedFix::kNoClock)
            return i;
    }
    return std::nullopt;
}

bool isGpsBlock(std::span<const char> block) {
    return block.size() >= kHeadSize && qFromBigEndian<std::uint32_t>(block.data() + 4) == fourCc("free") &&
           qFromBigEndian<std::uint32_t>(block.data() + 8) == fourCc("GPS ");
}

double headingAfter(std::span<const char> block, std::size_t letters) {
    const std::size_t at = letters + kPlaceSize;
    const double degrees = at + 4 <= block.size() ? field<float>(block, at) : RecordedFix::kNothing;
    return degrees >= 0 && degrees <= 360 ? degrees : RecordedFix::kNothing;
}

// Sets `reason` to what is wrong with the block's record, or to nullptr.
SecondRecord readBlock(std::span<const char> block, const char*& reason) {
    SecondRecord record;
    reason = nullptr;
    record.isRead = isGpsBlock(block);
    const std::optional<std::size_t> letters = record.isRead ? findLetters(block) : std::nullopt;
    if (!letters) {
        reason = record.isRead ? "no status letter" : "no GPS block";
        return record;
    }
    RecordedFix& fix = record.fix;
    fix.clockMs = clockBefore(block, *letters);
    if (block[*letters] == 'A') {
        const double latitude = fromDegreesAndMinutes(field<float>(block, *letters + 4));
        const double longitude = fromDegreesAndMinutes(field<float>(block, *letters + 8));
        fix.latitude = block[*letters + 1] == 'N' ? latitude : -latitude;
        fix.longitude = block[*letters + 2] == 'E' ? longitude : -longitude;
        fix.headingDeg = headingAfter(block, *letters);
        fix.speedKmh = static_cast<double>(field<float>(block, *letters + 12)) * kKmhPerKnot;
        reason = fix.isValid() ? nullptr : "no valid position";
    }
    return record;
}

} // namespace

std::vector<GpsBlock> readGpsBlocks(ByteSource& source, const ClipLayout& clip, std::int64_t endUs) {
    RangeReader index(source, clip.gpsIndex);
    index.u32(); // version
    const std::uint32_t count = index.u32().value_or(0);
    std::vector<GpsBlock> blocks;
    TimesSoFar times(clip.lengthMs);
    std::array<char, limits::kGpsBlockBytes> bytes{};
    while (blocks.size() < count && !times.reach(endUs)) {
        const std::optional<std::uint32_t> offset = index.u32();
        const std::optional<std::uint32_t> size = index.u32();
        if (!offset || !size) {
            blocks.push_back({{clip.gpsIndex.end(), 0}, {}, "the index ends before it", false});
            break;
        }
        if (blocks.size() == limits::kSensorRecords) {
            blocks.push_back({{*offset, 0}, {}, "it and later ones aren't read", false});
            break;
        }
        const std::span<char> wanted = std::span(bytes).first(std::min<std::size_t>(*size, bytes.size()));
        const std::span<const char> block = wanted.first(source.read(*offset, wanted));
        GpsBlock& added = blocks.emplace_back(GpsBlock{{*offset, *size}, {}, nullptr});
        added.record = readBlock(block, added.problem);
        times.add(added.record);
    }
    return blocks;
}

void readGpsIndex(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    std::vector<SecondRecord> seconds;
    std::int64_t number = 0;
    for (const GpsBlock& block : readGpsBlocks(source, clip, sink.endUs())) {
        ++number;
        if (block.problem)
            sink.addStop({"GPS block", number, block.range.start, block.problem});
        if (block.isListed)
            seconds.push_back(block.record);
    }
    addSecondRecords(seconds, clip.lengthMs, sink);
}

} // namespace ql240::sensorfiles
