// A text or tx3g track (handler "text" or "sbtl"): each sample is a length as a big-endian u16, then text:
// NMEA sentences and lines "gsensori,…,scale,x,y,z", whose last three numbers are in 1/scale g.
#include <QtEndian>
#include <cmath>
#include <vector>

#include "clips/formats/nmea.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/track_samples.h"

namespace ql240::sensorfiles {
namespace {

constexpr QByteArrayView kSensorWord("gsensori,");

bool endsLine(char c) {
    return static_cast<std::uint8_t>(c) < 0x20 || c == ';' || c == '$';
}

// Only the last four numbers matter: the scale, then x, y and z. False if they are invalid.
bool addSensorLine(std::int64_t timeUs, QByteArrayView line, RecordSink& sink) {
    std::vector<double> numbers;
    for (const QByteArray& part : line.sliced(kSensorWord.size()).toByteArray().split(',')) {
        bool isNumber = false;
        numbers.push_back(part.toDouble(&isNumber));
        if (!isNumber || !std::isfinite(numbers.back()))
            return false;
    }
    if (numbers.size() < 4)
        return false;
    const std::span<const double> last = std::span<const double>(numbers).last(4);
    if (last[0] == 0.0)
        return false;
    const double factor = 1.0 / last[0];
    sink.addAcceleration(timeUs, last[1] * factor, last[2] * factor, last[3] * factor);
    return true;
}

void addLine(const TrackSample& sample, QByteArrayView line, bool isWhole, RecordSink& sink) {
    const SentencePlace place{sample.timeUs, "text sample", sample.number, sample.offset, isWhole};
    if (!line.startsWith(kSensorWord))
        addNmeaSentence(place, line, sink);
    else if (!isWhole || !addSensorLine(sample.timeUs, line, sink))
        sink.addStop({place.unit, place.number, place.offset, "invalid accelerations"});
}

} // namespace

void readTextSample(const TrackSample& sample, RecordSink& sink) {
    std::span<const char> bytes = sample.bytes;
    bool isWhole = sample.isWhole;
    if (bytes.size() >= 2) {
        const std::size_t length = qFromBigEndian<std::uint16_t>(bytes.data());
        if (length <= bytes.size() - 2) {
            bytes = bytes.subspan(2, length);
            isWhole = true;
        }
    }
    std::size_t start = 0;
    for (std::size_t i = 0; i <= bytes.size(); ++i) {
        if (i == bytes.size() || endsLine(bytes[i])) {
            const auto line = bytes.subspan(start, i - start);
            addLine(sample, QByteArrayView(line.data(), static_cast<qsizetype>(line.size())),
                    isWhole || i < bytes.size(), sink);
            start = i + 1;
        }
    }
}

void readTextTrack(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    for (const TrackLayout& track : clip.tracks) {
        if (track.format == fourCc("text") || track.format == fourCc("tx3g")) {
            forEachSample(source, track, clip.timescale, sink,
                          [&](const TrackSample& sample) { readTextSample(sample, sink); });
        }
    }
}

} // namespace ql240::sensorfiles
