// The streams of a clip, which a Transport controls: they seek and change state together. Each request has a
// sequence number, which wraps around; its answer has the same or a newer one. Interface thread; times in
// units of 100 ns.
#pragma once

#include <cstdint>
#include <optional>

namespace ql240::gstreamer {

class Streams {
public:
    enum class Answer { Done, Awaited, Refused };
    struct Sent {
        Answer answer = Answer::Refused;
        std::uint32_t number = 0; // of the request that is awaited
    };

    virtual ~Streams() = default;

    virtual std::int64_t duration() const = 0;
    // Nothing while it is unknown.
    virtual std::optional<std::int64_t> position() const = 0;
    // After setRunning(false): the position at which the clock stopped, known before the streams have
    // stopped.
    virtual std::int64_t stoppedAt() const = 0;

    // Plays or pauses. `settled`: no other request is in flight.
    virtual Answer setRunning(bool running, bool settled) = 0;

    virtual Sent seek(std::int64_t target, double rate) = 0;
    // After a seek to `target` has settled: if a video stream ends before it, seeks to that stream's last
    // frame. Done: no stream does.
    virtual Sent fetchLastPictures(std::int64_t target, double rate) = 0;
    // While paused: moves the video alone, a short distance from the last seek's target. Refused: too far.
    virtual Sent move(std::int64_t target) = 0;
    // After a pause: whether a frame is further from the frame at `position` than that frame's neighbours.
    virtual bool areOff(std::int64_t position) const = 0;
    // Whether all streams would resume from `position`.
    virtual bool areInStepAt(std::int64_t position) const = 0;
};

} // namespace ql240::gstreamer
