// The open clip as seen from outside the player: which recording it is, when it starts, whether it plays and
// its last known position. The main window updates it after its commands, steps, seeks and timer ticks; other
// parts connect to its signals. Owned by the main window; doesn't own the clip. Interface thread only.
#pragma once

#include <QDateTime>
#include <QObject>
#include <cstdint>

namespace ql240 {

class Clip;

class ClipSession : public QObject {
    Q_OBJECT
public:
    // Closed → Paused ⇄ Playing, and back to Closed from either.
    enum class Phase { Closed, Paused, Playing };
    Q_ENUM(Phase)

    using QObject::QObject;

    // Null while closed.
    const Clip* clip() const { return m_clip; }
    // By the camera's clock, from the file name; invalid if that has no time stamp.
    const QDateTime& start() const { return m_start; }
    Phase phase() const { return m_phase; }
    bool isPlaying() const { return m_phase == Phase::Playing; }
    std::int64_t positionMs() const { return m_positionMs; }

    // Call once everything about the clip has been read, except perhaps its track. Closes the clip that was
    // open.
    void open(const Clip& clip);
    void close();
    // Updates phase and position. Ignored unless `clip` is the open clip.
    void find(const Clip* clip, bool playing, std::int64_t positionMs);
    // Call when a track has been read. Ignored unless `clip` is the open clip.
    void findTrack(const Clip* clip);

Q_SIGNALS:
    void opened();
    void closed();
    // The track has been read after opened().
    void trackFound();
    // Also emitted to and from Closed.
    void phaseChanged(ql240::ClipSession::Phase phase);
    void moved(std::int64_t positionMs);

private:
    void enter(Phase phase);

    const Clip* m_clip = nullptr;
    QDateTime m_start;
    Phase m_phase = Phase::Closed;
    std::int64_t m_positionMs = 0;
};

} // namespace ql240
