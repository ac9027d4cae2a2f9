// An index of blocks, as ExifTool documents it for several recorders: moov/"gps " is a version, a count and
// so many pairs of offset and size, big-endian; each block is a "free" box whose body begins "GPS ". The
// record in it is found by its letters: 'A' or 'V', 'N' or 'S', 'E' or 'W'.
#include <QtEndian>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/second_records.h"
#include "clips/formats/sensor_formats.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr size_t kHeadSize = 12; // box size, "free", "GPS "
constexpr size_t kClockSize = 24;
constexpr size_t kPlaceSize = 16; // four bytes of letters, latitude, longitude, knots

template <typename T>
T field(std::span<const char> bytes, size_t offset) {
    return qFromLittleEndian<T>(bytes.data() + offset);
}

std::optional<qint64> clockBefore(std::span<const char> block, size_t letters) {
    const auto part = [&](size_t i) { return field<qint32>(block, letters - kClockSize + 4 * i); };
    return clockOf(part(3), part(4), part(5), part(0), part(1), part(2));
}

bool areLetters(std::span<const char> bytes) {
    return (bytes[0] == 'A' || bytes[0] == 'V') && (bytes[1] == 'N' || bytes[1] == 'S') &&
           (bytes[2] == 'E' || bytes[2] == 'W');
}

// Where the letters stand: behind a clock that is one.
std::optional<size_t> findLetters(std::span<const char> block) {
    for (size_t i = kHeadSize + kClockSize; i + kPlaceSize <= block.size(); ++i) {
        if (areLetters(block.subspan(i, 3)) && clockBefore(block, i)) {
            return i;
        }
    }
    return std::nullopt;
}

bool isGpsBlock(std::span<const char> block) {
    return block.size() >= kHeadSize && qFromBigEndian<quint32>(block.data() + 4) == fourCc("free") &&
           qFromBigEndian<quint32>(block.data() + 8) == fourCc("GPS ");
}

SecondRecord readBlock(std::span<const char> block) {
    SecondRecord record;
    record.isRead = isGpsBlock(block);
    const std::optional<size_t> letters = record.isRead ? findLetters(block) : std::nullopt;
    if (!letters) {
        return record;
    }
    record.clock = clockBefore(block, *letters);
    if (block[*letters] == 'A') {
        const double latitude = fromDegreesAndMinutes(field<float>(block, *letters + 4));
        const double longitude = fromDegreesAndMinutes(field<float>(block, *letters + 8));
        record.latitude = block[*letters + 1] == 'N' ? latitude : -latitude;
        record.longitude = block[*letters + 2] == 'E' ? longitude : -longitude;
        record.kmh = static_cast<double>(field<float>(block, *letters + 12)) * kKmhPerKnot;
    }
    return record;
}

} // namespace

void readGpsIndex(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    RangeReader index(source, clip.gpsIndex);
    index.u32(); // version
    const quint32 count = std::min<quint32>(index.u32().value_or(0), limits::kSensorRecords);
    std::vector<SecondRecord> seconds;
    std::array<char, limits::kGpsBlockBytes> bytes{};
    for (quint32 i = 0; i < count; ++i) {
        const std::optional<quint32> offset = index.u32();
        const std::optional<quint32> size = index.u32();
        if (!offset || !size) {
            break;
        }
        const std::span<char> wanted = std::span(bytes).first(std::min<size_t>(*size, bytes.size()));
        const std::span<const char> block = wanted.first(source.read(*offset, wanted));
        seconds.push_back(readBlock(block));
    }
    addSecondRecords(seconds, clip.lengthMs, records);
}

} // namespace ql240::sensorfiles
