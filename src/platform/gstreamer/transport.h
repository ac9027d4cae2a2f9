// The state machine of a running pipeline: state changes, seeks and what the bus tells, boiled down to a
// position that can be asked for at any time. One seek is in flight at most; a newer target replaces the one
// that waits. Interface thread; times in units of 100 ns.
#pragma once

#include <QElapsedTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/gstreamer/gst_handles.h"
#include "platform/media_graph.h"

namespace ql240::gstreamer {

class FrameClipper;
class Splitter;

class Transport {
public:
    Transport(GstElement* pipeline, const Splitter& splitter, std::vector<FrameClipper*> clippers);

    // Starts the pipeline, which so far only holds its streams back: `release` lets them go.
    bool start(const std::function<void()>& release);
    bool isStarted() const { return m_started; }

    bool setState(GraphState state);
    GraphState state() const { return m_state; }
    bool isSettled() const { return !m_inFlight; }

    void seek(std::int64_t target);
    bool setRate(double rate);
    std::int64_t position() const;
    std::int64_t duration() const { return m_duration; }

    // Gets the streams going again after one of them has been taken out.
    void restartAt(std::int64_t position);

    void handle(GstMessage* message);
    // Sends what waits, if nothing is in flight.
    void sendPending();

private:
    bool applyState();
    bool sendSeek(std::int64_t target);
    bool moveStreams(std::int64_t target);
    void await(std::int64_t target);
    void settle();
    bool seekToLastFrame();
    void end();
    std::int64_t clamped(std::int64_t target) const;

    GstElement* m_pipeline;
    const Splitter& m_splitter;
    std::vector<FrameClipper*> m_clippers;
    std::int64_t m_duration;
    double m_rate = 1.0;
    GraphState m_state = GraphState::Stopped;
    bool m_started = false;
    bool m_ended = false;
    bool m_apart = false; // the streams have been moved one by one; only a seek brings them together

    bool m_inFlight = false; // a preroll is awaited, after a seek or a state change
    QElapsedTimer m_inFlightSince;
    bool m_seeksLastFrame = false;         // the seek in flight only fetches a picture
    std::optional<std::int64_t> m_target;  // of the seek in flight
    std::optional<std::int64_t> m_pending; // waits for the one in flight
    std::optional<std::int64_t> m_held;    // the position of a settled seek, until time goes on
    mutable std::int64_t m_last = 0;       // for when the pipeline can't tell
};

} // namespace ql240::gstreamer
