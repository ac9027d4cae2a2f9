// The sensor samples of one clip, evenly spaced in time, and the two sources they are loaded from: the text
// trailer behind the marker "ETKLP1" of an AVI clip, and the sensor library. The dashboard panel owns the
// track of the clip being played. Interface thread only. Times in ms from the clip's start, positions in
// degrees, speeds in km/h, accelerations in raw counts (128 a g).
#pragma once

#include <QByteArrayView>
#include <QString>
#include <cstdint>
#include <vector>

namespace ql240 {

class SensorLibrary;

struct SensorSample {
    std::int32_t timeMs = -1; // -1 marks the no-sample value
    std::int16_t accX = 0;
    std::int16_t accY = 0;
    std::int16_t accZ = 0;
    double latitude = 0.0;  // north positive, 0.0 is no position
    double longitude = 0.0; // east positive, 0.0 is no position
    std::int32_t speed = 0;

    bool hasPosition() const { return latitude != 0.0 && longitude != 0.0; }
    bool operator==(const SensorSample&) const = default;
};

using SensorTrack = std::vector<SensorSample>;

// Both loaders append to `track` and return whether there is such a source at all, samples or not.
//
// The trailer: only for a path with ".avi" in it. The new track as a whole gets its front padded (clips of
// events and motion, whose samples begin after the picture does) and is spread over `durationMs`.
bool appendTrailer(SensorTrack& track, const QString& path, std::int64_t durationMs);
// The same for the end of a clip's file, `startsLate` for clips of events and motion.
bool appendTrailerBytes(SensorTrack& track, QByteArrayView tail, bool startsLate, std::int64_t durationMs);

// The library, asked every 100 ms for as long as it answers, at most up to 61 s.
bool appendLibrarySamples(SensorTrack& track, SensorLibrary& library, const QString& path);

// The sample for a playback time in constant time; a time behind the end gives the last sample, a negative
// time or a track without a usable spacing the no-sample value. A single sample stands for every time.
SensorSample sampleForTime(const SensorTrack& track, std::int32_t timeMs);

} // namespace ql240
