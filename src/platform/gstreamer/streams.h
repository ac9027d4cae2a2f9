// What a transport drives: the streams of a clip, which seek and change their state together. Whatever they
// have to say later carries a number, counted up with wrap-around, and is younger than what was asked before.
// Interface thread; times in units of 100 ns.
#pragma once

#include <cstdint>
#include <optional>

namespace ql240::gstreamer {

class Streams {
public:
    enum class Answer { Done, Awaited, Refused };
    struct Sent {
        Answer answer = Answer::Refused;
        std::uint32_t number = 0; // of what is awaited
    };

    virtual ~Streams() = default;

    virtual std::int64_t duration() const = 0;
    // None while the streams don't know it.
    virtual std::optional<std::int64_t> position() const = 0;
    // After setRunning(false): where the clock was stopped, which is known before the streams have stopped.
    virtual std::int64_t stoppedAt() const = 0;

    // Playing, or paused. `settled`: nothing else is awaited.
    virtual Answer setRunning(bool running, bool settled) = 0;

    virtual Sent seek(std::int64_t target, double rate) = 0;
    // After a seek to `target` has settled: where a picture stream had ended before that, fetches its last
    // picture by a seek to there. Done: nothing to fetch.
    virtual Sent fetchLastPictures(std::int64_t target, double rate) = 0;
    // While paused, a short distance from where the last seek led: only the pictures go there. Refused: too
    // far.
    virtual Sent move(std::int64_t target) = 0;
    // After a pause: whether a picture is further from that of `position` than the one before or after it.
    virtual bool areOff(std::int64_t position) const = 0;
    // Whether all streams would play on from `position`.
    virtual bool areInStepAt(std::int64_t position) const = 0;
};

} // namespace ql240::gstreamer
