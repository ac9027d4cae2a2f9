// The state machine of a running clip: state changes, seeks and what the streams answer, boiled down to a
// position that can be asked for at any time. One seek is in flight at most; a newer target replaces the one
// that waits. Interface thread; times in units of 100 ns.
#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/gstreamer/streams.h"
#include "platform/media_graph.h"

namespace ql240::gstreamer {

class Transport {
public:
    explicit Transport(Streams& streams);

    // Starts the streams, which so far are only held back: `release` lets them go.
    bool start(const std::function<void()>& release);
    bool isStarted() const { return m_phase != Phase::Unstarted; }

    bool setState(GraphState state);
    GraphState state() const { return m_state; }
    bool isSettled() const { return !isInFlight(); }

    // False if the streams refuse; what has to wait is accepted.
    bool seek(std::int64_t target);
    bool setRate(double rate);
    std::int64_t position() const;
    std::int64_t duration() const { return m_duration; }

    // What was awaited has come; the clip has ended, or an error ended it. What was said before the last
    // question was asked (`number` is older) counts for nothing.
    void arrived(std::uint32_t number);
    void ended(std::uint32_t number);

    // Sends what waits, if nothing is in flight; false if it was refused.
    bool sendWaiting();

private:
    enum class Phase {
        Unstarted,
        Settled,  // nothing is awaited
        Stuck,    // nothing any more: what was awaited hasn't come
        Changing, // from here on what is in flight: a change of state,
        Seeking,  // a seek to m_current,
        Fetching, // a seek to the pictures that are to be seen there,
        Moving,   // a move of the pictures to there
        Ended,    // the clip is over
    };

    bool isAtRest() const { return m_phase == Phase::Settled || m_phase == Phase::Stuck; }
    bool isInFlight() const { return m_phase >= Phase::Changing && m_phase <= Phase::Moving; }
    bool isUnderWay() const { return m_phase >= Phase::Seeking && m_phase <= Phase::Moving; }
    bool isElsewhere() const;
    bool applyState();
    void stand();
    bool sendSeek(std::int64_t target);
    bool move(std::int64_t target);
    void await(Phase phase, std::int64_t target, std::uint32_t number);
    void settle(Phase phase = Phase::Settled);
    void giveUp();
    bool fetchLastPictures();
    void end();
    std::int64_t clamped(std::int64_t target) const;
    void report(const char* outcome) const;

    Streams& m_streams;
    const std::int64_t m_duration;
    Phase m_phase = Phase::Unstarted;
    GraphState m_state = GraphState::Stopped; // as it was last asked for
    double m_rate = 1.0;
    std::optional<std::int64_t> m_current; // where the clip goes, or stands until time goes on
    std::uint32_t m_number = 0;            // of the last seek or move
    std::optional<std::int64_t> m_waiting; // for what is in flight
    mutable std::int64_t m_last = 0;       // for when the streams don't know
    QTimer m_patience;                     // for what is in flight
    QElapsedTimer m_sent;                  // since it was sent
};

} // namespace ql240::gstreamer
