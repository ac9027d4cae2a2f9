// The state machine of a running clip: derives a position, available at any time, from state changes, seeks
// and the streams' answers. At most one seek is in flight; a newer target replaces the waiting one. Interface
// thread; times in units of 100 ns.
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

    // Starts the streams, which are blocked until `release` is called.
    bool start(const std::function<void()>& release);
    bool isStarted() const { return m_phase != Phase::Unstarted; }

    bool setState(GraphState state);
    GraphState state() const { return m_state; }
    bool isSettled() const { return !isInFlight(); }

    // False if the streams refuse; a target that has to wait is accepted.
    bool seek(std::int64_t target);
    bool setRate(double rate);
    std::int64_t position() const;
    std::int64_t duration() const { return m_duration; }

    // Answers of the streams: the request in flight is done; the clip has ended, also by an error. Ignored if
    // they are older than the last request, by `number`.
    void arrived(std::uint32_t number);
    void ended(std::uint32_t number);

    // Sends the waiting target if nothing is in flight; false if it was refused.
    bool sendWaiting();

private:
    enum class Phase {
        Unstarted,
        Settled,  // no request in flight
        Stuck,    // no longer: a seek wasn't answered in time
        Changing, // in flight: a state change
        Seeking,  // in flight: a seek to m_current
        Fetching, // in flight: a seek to the frames that m_current shows
        Moving,   // in flight: a move of the video to m_current
        Ended,    // at the end of the clip
    };

    bool isAtRest() const { return m_phase == Phase::Settled || m_phase == Phase::Stuck; }
    bool isInFlight() const { return m_phase >= Phase::Changing && m_phase <= Phase::Moving; }
    bool isUnderWay() const { return m_phase >= Phase::Seeking && m_phase <= Phase::Moving; }
    bool isElsewhere() const;
    bool applyState();
    void holdPosition();
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
    GraphState m_state = GraphState::Stopped; // as last requested
    double m_rate = 1.0;
    std::optional<std::int64_t> m_current; // the target, kept while the clip doesn't play on from it
    std::uint32_t m_number = 0;            // of the last seek or move
    std::optional<std::int64_t> m_waiting; // the next target, sent when nothing is in flight
    mutable std::int64_t m_last = 0;       // last known position, while the streams report none
    QTimer m_timeout;                      // of the request in flight
    QElapsedTimer m_sent;                  // since it was sent
};

} // namespace ql240::gstreamer
