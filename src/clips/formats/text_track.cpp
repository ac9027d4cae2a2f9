// A text or tx3g track (handler "text" or "sbtl"): each sample is its length as a big-endian u16 and then
// text, here NMEA sentences and lines "gsensori,…,scale,x,y,z", whose numbers are counts with `scale` of them
// a g.
#include <QtEndian>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/track_samples.h"

namespace ql240::sensorfiles {
namespace {

constexpr QByteArrayView kSensorWord("gsensori,");

bool endsLine(char c) {
    return static_cast<quint8>(c) < 0x20 || c == ';' || c == '$';
}

// The last four numbers count: the scale, then x, y and z.
void addSensorLine(qint64 timeMs, QByteArrayView line, SensorRecords& records) {
    std::vector<double> numbers;
    for (const QByteArray& part : line.sliced(kSensorWord.size()).toByteArray().split(',')) {
        bool isNumber = false;
        numbers.push_back(part.toDouble(&isNumber));
        if (!isNumber) {
            return;
        }
    }
    if (numbers.size() < 4) {
        return;
    }
    const std::span<const double> last = std::span<const double>(numbers).last(4);
    const double factor = kCountsPerG / last[0];
    records.addAcceleration(timeMs, last[1] * factor, last[2] * factor, last[3] * factor);
}

void addLine(qint64 timeMs, QByteArrayView line, SensorRecords& records) {
    if (line.startsWith(kSensorWord)) {
        addSensorLine(timeMs, line, records);
    } else {
        addNmeaSentence(timeMs, line, records);
    }
}

} // namespace

void readTextSample(qint64 timeMs, std::span<const char> bytes, SensorRecords& records) {
    if (bytes.size() >= 2) {
        const size_t length = qFromBigEndian<quint16>(bytes.data());
        if (length <= bytes.size() - 2) {
            bytes = bytes.subspan(2, length);
        }
    }
    size_t start = 0;
    for (size_t i = 0; i <= bytes.size(); ++i) {
        if (i == bytes.size() || endsLine(bytes[i])) {
            const auto line = bytes.subspan(start, i - start);
            addLine(timeMs, QByteArrayView(line.data(), static_cast<qsizetype>(line.size())), records);
            start = i + 1;
        }
    }
}

void readTextTrack(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    for (const TrackLayout& track : clip.tracks) {
        if (track.format == fourCc("text") || track.format == fourCc("tx3g")) {
            forEachSample(source, track, clip.timescale, [&](qint64 timeMs, std::span<const char> bytes) {
                readTextSample(timeMs, bytes, records);
            });
        }
    }
}

} // namespace ql240::sensorfiles
