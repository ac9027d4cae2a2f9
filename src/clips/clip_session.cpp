#include "clips/clip_session.h"

#include <utility>

#include "clips/clip.h"
#include "clips/clip_name.h"

namespace ql240 {

void ClipSession::open(const Clip& clip) {
    close();
    m_clip = &clip;
    m_start = clipStart(clip.file().fileName());
    enter(Phase::Paused);
    Q_EMIT opened();
}

void ClipSession::close() {
    if (m_phase == Phase::Closed)
        return;
    m_clip = nullptr;
    m_start = {};
    m_positionMs = 0;
    enter(Phase::Closed);
    Q_EMIT closed();
}

void ClipSession::find(const Clip* clip, bool playing, std::int64_t positionMs) {
    if (!clip || clip != m_clip)
        return;
    enter(playing ? Phase::Playing : Phase::Paused);
    if (std::exchange(m_positionMs, positionMs) != positionMs)
        Q_EMIT moved(positionMs);
}

void ClipSession::findTrack(const Clip* clip) {
    if (clip && clip == m_clip)
        Q_EMIT trackFound();
}

void ClipSession::enter(Phase phase) {
    if (std::exchange(m_phase, phase) != phase)
        Q_EMIT phaseChanged(phase);
}

} // namespace ql240
