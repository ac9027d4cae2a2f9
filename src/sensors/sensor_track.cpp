#include "sensors/sensor_track.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "platform/logging.h"
#include "platform/sensor_library.h"

namespace ql240 {
namespace {

constexpr std::int64_t kTailSize = 33006;
constexpr QByteArrayView kMarker("ETKLP1");
constexpr int kFieldsPerLine = 7;
constexpr std::int64_t kLibraryStepMs = 100;
constexpr std::int64_t kLibraryEndMs = 61000;

bool containsAfterStart(const QString& path, QLatin1StringView text) {
    return path.indexOf(text, 1) > 0;
}

// The last `kTailSize` bytes of a regular file; empty if it can't be read.
QByteArray readTail(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    file.seek(std::max<std::int64_t>(0, file.size() - kTailSize));
    return file.read(kTailSize);
}

// A decimal number; 0 for anything else, including "nan" and "inf". QByteArray::toDouble() on purpose: its
// results for ties and limits are part of the format.
double toNumber(QByteArrayView field) {
    const double value = field.toByteArray().toDouble();
    return std::isfinite(value) ? value : 0.0;
}
std::int32_t toInteger(QByteArrayView field) {
    return field.toByteArray().toInt();
}

// Parses one line "clock,latitude,longitude,speed,x,y,z"; false if it has fewer fields.
bool parseLine(QByteArrayView line, SensorSample& sample) {
    std::array<QByteArrayView, kFieldsPerLine> fields;
    qsizetype start = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (start > line.size())
            return false;
        const qsizetype comma = line.indexOf(',', start);
        const qsizetype end = comma < 0 ? line.size() : comma;
        fields[i] = line.sliced(start, end - start);
        start = end + 1;
    }
    sample.latitude = toNumber(fields[1]);
    sample.longitude = toNumber(fields[2]);
    sample.speed = toInteger(fields[3]);
    sample.accX = static_cast<std::int16_t>(toInteger(fields[4]));
    sample.accY = static_cast<std::int16_t>(toInteger(fields[5]));
    sample.accZ = static_cast<std::int16_t>(toInteger(fields[6]));
    return true;
}

// Appends one sample per line and returns how many.
std::size_t appendLines(SensorTrack& track, QByteArrayView text) {
    const std::size_t before = track.size();
    while (!text.isEmpty()) {
        const qsizetype feed = text.indexOf('\n');
        QByteArrayView line = feed < 0 ? text : text.first(feed);
        text = feed < 0 ? QByteArrayView() : text.sliced(feed + 1);
        if (line.endsWith('\r'))
            line.chop(1);
        SensorSample sample;
        if (!line.isEmpty() && parseLine(line, sample)) {
            sample.timeMs = static_cast<std::int32_t>(track.size()) + 1;
            track.push_back(sample);
        }
    }
    return track.size() - before;
}

// In event and motion clips the camera starts writing samples late: repeats the first one in front, about a
// third of the track's length.
void padFront(SensorTrack& track) {
    const std::size_t n = track.size();
    std::size_t p = n / 3;
    if (static_cast<double>(n) * 0.25 + 0.5 >= static_cast<double>(p + 1))
        ++p;
    const SensorSample first = track.front();
    track.insert(track.begin(), p + 1, first);
}

void spreadOver(SensorTrack& track, std::int64_t durationMs) {
    const auto m = static_cast<std::int64_t>(track.size());
    const std::int64_t total = std::min(durationMs, std::numeric_limits<std::int64_t>::max() - 100) + 100;
    const std::int64_t q = total / m;
    const bool roundUp =
        static_cast<double>(total) / static_cast<double>(m) + 0.5 >= static_cast<double>(q + 1);
    const auto step = static_cast<std::uint64_t>(roundUp ? q + 1 : q);
    for (std::size_t i = 0; i < track.size(); ++i)
        track[i].timeMs = static_cast<std::int32_t>(i * step);
}

double signedDegrees(std::int32_t millionths, std::int8_t letter, char positive) {
    const double degrees = millionths / 1000000.0;
    return letter == positive ? degrees : -degrees;
}

bool readLibrarySample(SensorLibrary& library, SensorLibrary::Handle handle, std::int64_t timeMs,
                       SensorSample& sample) {
    std::int32_t latitude = 0;
    std::int32_t longitude = 0;
    std::int8_t latitudeLetter = 0;
    std::int8_t longitudeLetter = 0;
    const int placed = library.getLatLonSpeed(handle, timeMs, &latitude, &longitude, &latitudeLetter,
                                              &longitudeLetter, &sample.speed);
    const int measured = library.getAccXYZ(handle, timeMs, &sample.accX, &sample.accY, &sample.accZ);
    sample.timeMs = static_cast<std::int32_t>(timeMs);
    sample.latitude = signedDegrees(latitude, latitudeLetter, 'N');
    sample.longitude = signedDegrees(longitude, longitudeLetter, 'E');
    return placed != 0 && measured != 0;
}

} // namespace

bool appendTrailerBytes(SensorTrack& track, QByteArrayView tail, bool startsLate, std::int64_t durationMs) {
    const qsizetype marker = tail.indexOf(kMarker);
    if (marker <= 0) {
        qCDebug(lcSensors) << "no trailer in the last" << tail.size() << "bytes";
        return false;
    }
    const qsizetype start = std::min(marker + kMarker.size() + 1, tail.size());
    if (appendLines(track, tail.sliced(start)) > 0) {
        if (startsLate)
            padFront(track);
        spreadOver(track, durationMs);
    }
    qCDebug(lcSensors) << "the trailer has" << track.size() << "samples";
    return true;
}

bool appendTrailer(SensorTrack& track, const QString& path, std::int64_t durationMs) {
    if (!containsAfterStart(path, QLatin1StringView(".avi")))
        return false;
    const bool startsLate = containsAfterStart(path, QLatin1StringView("EVT_")) ||
                            containsAfterStart(path, QLatin1StringView("MOT_"));
    return appendTrailerBytes(track, readTail(path), startsLate, durationMs);
}

bool appendLibrarySamples(SensorTrack& track, SensorLibrary& library, const QString& path) {
    const SensorLibrary::Handle handle = library.getInformationData(path.toLocal8Bit().constData());
    if (handle == 0)
        return false;
    std::array<char, SensorLibrary::kCreateTimeSize> createTime{};
    library.getCreateTime(handle, createTime.data());
    for (std::int64_t t = 0; t <= kLibraryEndMs; t += kLibraryStepMs) {
        SensorSample sample;
        if (!readLibrarySample(library, handle, t, sample))
            break;
        track.push_back(sample);
    }
    qCDebug(lcSensors) << "the library has" << track.size() << "samples";
    return true;
}

SensorSample sampleForTime(const SensorTrack& track, std::int32_t timeMs) {
    if (timeMs < 0 || track.empty())
        return {};
    if (track.size() == 1)
        return track.front();
    const std::int32_t step = track[1].timeMs;
    if (step <= 0)
        return {};
    const auto index = static_cast<std::size_t>(timeMs / step);
    return track[std::min(index, track.size() - 1)];
}

} // namespace ql240
