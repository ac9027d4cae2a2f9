#include "sensors/track_reader.h"

#include <memory>
#include <utility>

#include "platform/host.h"
#include "platform/waits.h"

namespace ql240 {

bool TrackReader::read(const QString& path, std::int64_t durationMs, SensorTrack before) {
    m_jobs.forget();
    const auto track = std::make_shared<ClipTrack>(ClipTrack{TrackSource::None, std::move(before)});
    const auto& makeLibrary = host().makeSensorLibrary;
    m_jobs.start(
        [track, path, durationMs, library = makeLibrary ? makeLibrary() : nullptr] {
            track->source = appendTrack(track->samples, library.get(), path, durationMs);
        },
        [this, track] { m_then(std::move(*track)); });
    return m_jobs.wait(waits::kSensorTrack);
}

} // namespace ql240
