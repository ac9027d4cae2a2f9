// The open clip as everything outside the player may know it: which recording, when it began, whether it
// plays and where it was last found. The main window feeds it with what its commands, steps, seeks and ticks
// have come to; whoever wants to know listens. Belongs to the main window, refers to the clip. Interface
// thread only.
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
    // By the camera's clock, as the file's name has it; invalid where it doesn't.
    const QDateTime& start() const { return m_start; }
    Phase phase() const { return m_phase; }
    bool isPlaying() const { return m_phase == Phase::Playing; }
    std::int64_t positionMs() const { return m_positionMs; }

    // Once everything about the clip has been read; a clip that was open is closed first.
    void open(const Clip& clip);
    void close();
    // How a clip was found. What is found of another clip than the open one, or of none, is dropped.
    void find(const Clip* clip, bool playing, std::int64_t positionMs);

Q_SIGNALS:
    void opened();
    void closed();
    // Also to and from Closed.
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
