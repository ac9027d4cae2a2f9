#include "sensors/sensor_track.h"

#include <QFile>
#include <algorithm>
#include <array>

#include "base/regular_file.h"
#include "clips/formats/trailer.h"
#include "platform/logging.h"
#include "platform/sensor_library.h"

namespace ql240 {

using namespace sensorfiles;

namespace {

constexpr std::int64_t kLibraryStepMs = 100;
constexpr std::int64_t kLibraryEndMs = 61000;

// The last `kTrailerBytes` bytes of a regular file; empty if it can't be read.
QByteArray readTail(const QString& path) {
    QFile file(path);
    QString problem;
    if (!openRegularFile(file, problem))
        return {};
    file.seek(std::max<std::int64_t>(0, file.size() - kTrailerBytes));
    return file.read(kTrailerBytes);
}

SensorSample sampleOf(const TrailerLine& line, std::int32_t timeMs) {
    return {timeMs, line.x, line.y, line.z, line.latitude, line.longitude, line.speedKmh};
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

TrackSource appendTrack(SensorTrack& track, SensorLibrary* library, const QString& path,
                        std::int64_t durationMs) {
    if (appendTrailer(track, path, durationMs))
        return TrackSource::Trailer;
    return library && appendLibrarySamples(track, *library, path) ? TrackSource::Library : TrackSource::None;
}

bool appendTrailerBytes(SensorTrack& track, QByteArrayView tail, bool startsLate, std::int64_t durationMs) {
    const std::size_t before = track.size();
    const bool isFound = forEachTrailerLine(tail, [&track](const TrailerLine& line) {
        track.push_back(sampleOf(line, static_cast<std::int32_t>(track.size()) + 1));
    });
    qCDebug(lcSensors) << "a trailer" << (isFound ? "of" : "is missing,") << track.size() - before << "lines";
    if (track.size() > before) {
        if (startsLate) {
            const SensorSample first = track.front();
            track.insert(track.begin(), trailerPadding(track.size()), first);
        }
        const std::uint64_t step = trailerStepMs(durationMs, track.size());
        for (std::size_t i = 0; i < track.size(); ++i)
            track[i].timeMs = static_cast<std::int32_t>(i * step);
    }
    return isFound;
}

bool appendTrailer(SensorTrack& track, const QString& path, std::int64_t durationMs) {
    if (path.indexOf(QLatin1StringView(".avi"), 1) < 0)
        return false;
    return appendTrailerBytes(track, readTail(path), trailerStartsLate(path), durationMs);
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
