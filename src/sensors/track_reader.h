// Reads the open clip's track off the interface thread, since a failing card reader may block for minutes.
// Each reading has copies of what it needs and a sensor library of its own, so that one that hangs holds up
// neither the next clip nor the end of the program. Interface thread only.
#pragma once

#include <functional>

#include "base/background_jobs.h"
#include "sensors/sensor_track.h"

namespace ql240 {

struct ClipTrack {
    TrackSource source = TrackSource::None;
    SensorTrack samples;
};

class TrackReader {
public:
    using Then = std::function<void(ClipTrack)>;

    explicit TrackReader(Then then) : m_then(std::move(then)) {}

    // Asks for `before` with the clip's samples appended. Calls `then` before returning true if the clip
    // answers at once; otherwise returns false and calls `then` later, unless the track is no longer wanted.
    bool read(const QString& path, std::int64_t durationMs, SensorTrack before);
    // The track asked for last is no longer wanted.
    void stop() { m_jobs.forget(); }

private:
    Then m_then;
    BackgroundJobs m_jobs;
};

} // namespace ql240
