#include "sensors/track_reader.h"

#include <memory>

#include "platform/host.h"
#include "platform/waits.h"

namespace ql240 {

bool TrackReader::read(const QString& path, std::int64_t durationMs, const SensorTrack& before) {
    m_jobs.forget(); // so that nothing below waits for an older reading
    const auto track = std::make_shared<ClipTrack>(ClipTrack{TrackSource::None, before});
    const auto& makeLibrary = host().makeSensorLibrary;
    m_jobs.start(
        [track, path, durationMs, library = makeLibrary ? makeLibrary() : nullptr] {
            track->source = appendTrack(track->samples, library.get(), path, durationMs);
        },
        [this, track, question = ++m_question] {
            if (question == m_question)
                m_then(*track);
        });
    return m_jobs.wait(waits::kSensorTrack);
}

} // namespace ql240
