// The sensor samples of one clip, evenly spaced in time, and the two sources they are loaded from: the text
// trailer after the marker "ETKLP1" in an AVI clip, and the sensor library. The dashboard panel owns the
// track of the open clip. Any thread; loading may block on the file system. Times in ms from the clip's
// start, positions in degrees, speeds in km/h, accelerations in raw counts (128 per g).
#pragma once

#include <QByteArrayView>
#include <QString>
#include <cstdint>
#include <vector>

namespace ql240 {

class SensorLibrary;

struct SensorSample {
    std::int32_t timeMs = -1; // -1 means no sample
    std::int16_t accX = 0;
    std::int16_t accY = 0;
    std::int16_t accZ = 0;
    double latitude = 0.0;  // north positive; 0.0 means no position
    double longitude = 0.0; // east positive; 0.0 means no position
    std::int32_t speed = 0;

    bool hasPosition() const { return latitude != 0.0 && longitude != 0.0; }
    bool operator==(const SensorSample&) const = default;
};

using SensorTrack = std::vector<SensorSample>;

enum class TrackSource { None, Trailer, Library };

// Appends the clip's samples from its trailer, or without one from `library`, which may be null.
TrackSource appendTrack(SensorTrack& track, SensorLibrary* library, const QString& path,
                        std::int64_t durationMs);

// Both loaders append to `track` and return whether the clip has that source at all, with samples or without.
//
// The trailer: only for paths containing ".avi". The whole track is then padded in front (event and motion
// clips, whose samples begin after the picture) and spread over `durationMs`.
bool appendTrailer(SensorTrack& track, const QString& path, std::int64_t durationMs);
// The same for the last bytes of a clip's file; `startsLate` for event and motion clips.
bool appendTrailerBytes(SensorTrack& track, QByteArrayView tail, bool startsLate, std::int64_t durationMs);

// Asks the library every 100 ms until it has no more samples, at most up to 61 s.
bool appendLibrarySamples(SensorTrack& track, SensorLibrary& library, const QString& path);

// The sample at a playback time, in constant time. After the end it is the last sample; for a negative time
// or a track without a usable spacing it is the no-sample value. A single sample applies to all times.
SensorSample sampleForTime(const SensorTrack& track, std::int32_t timeMs);

} // namespace ql240
