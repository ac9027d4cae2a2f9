#include "platform/gstreamer/transport.h"

#include <algorithm>

#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/source_filters.h"

namespace ql240::gstreamer {

namespace {

constexpr std::int64_t kNsPerUnit = 100;
constexpr GstClockTime kMoment = 200 * GST_MSECOND;
constexpr qint64 kPatienceMs = 3000; // a preroll that never comes doesn't hold later seeks for ever

std::int64_t toUnits(std::int64_t ns) {
    return (ns + kNsPerUnit / 2) / kNsPerUnit;
}

} // namespace

Transport::Transport(GstElement* pipeline, const Splitter& splitter, std::vector<FrameClipper*> clippers)
    : m_pipeline(pipeline),
      m_splitter(splitter),
      m_clippers(std::move(clippers)),
      m_duration(toUnits(splitter.durationNs())) {}

std::int64_t Transport::clamped(std::int64_t target) const {
    return std::clamp(target, std::int64_t{0}, std::max(std::int64_t{0}, m_duration - 1));
}

bool Transport::start(const std::function<void()>& release) {
    // A target set before the first run goes straight to the demuxer, which waits at its pads.
    if (m_pending && *m_pending > 0 && !sendSeek(*m_pending))
        return false;
    if (m_pending)
        m_held = *m_pending;
    m_pending.reset();
    m_started = true;
    m_state = GraphState::Paused;
    const bool accepted = applyState();
    release();
    return accepted;
}

bool Transport::applyState() {
    // The way to playing goes on for a moment after the preroll; a state asked for within it can leave the
    // pipeline between the two for ever.
    if (!m_inFlight)
        gst_element_get_state(m_pipeline, nullptr, nullptr, kMoment);
    const GstState wanted = m_state == GraphState::Running ? GST_STATE_PLAYING : GST_STATE_PAUSED;
    switch (gst_element_set_state(m_pipeline, wanted)) {
        case GST_STATE_CHANGE_ASYNC:
            m_inFlight = true;
            m_inFlightSince.start();
            return true;
        case GST_STATE_CHANGE_FAILURE:
            end();
            return false;
        default:
            return true;
    }
}

bool Transport::setState(GraphState state) {
    if (m_state == state && state != GraphState::Stopped)
        return true;
    const std::int64_t here = position();
    if (m_state == GraphState::Running && !m_inFlight) { // time has gone on since the last seek
        m_last = here;
        m_held.reset();
    }
    m_state = state;
    if (state == GraphState::Stopped) {
        m_pending = 0;
        m_ended = false;
    } else if (state == GraphState::Running && m_apart) {
        m_pending = here;
        sendPending();
    }
    return applyState();
}

void Transport::seek(std::int64_t target) {
    target = clamped(target);
    m_ended = false;
    const bool shown = !m_inFlight && m_held == target && m_state != GraphState::Running;
    if (shown)
        m_pending.reset();
    else
        m_pending = target;
    sendPending();
}

void Transport::sendPending() {
    if (!m_started || !m_pending || (m_inFlight && m_inFlightSince.elapsed() < kPatienceMs))
        return;
    const std::int64_t target = *m_pending;
    m_pending.reset();
    const bool settled = m_state != GraphState::Running && !m_inFlight && m_held;
    if (settled && (m_held == target || moveStreams(target)))
        return;
    if (!sendSeek(target)) {
        m_last = position();
        return;
    }
    await(target);
}

void Transport::await(std::int64_t target) {
    m_target = target;
    m_held.reset();
    m_inFlight = true;
    m_inFlightSince.start();
}

// A short way, or one back to a frame just seen, each video stream goes by itself.
bool Transport::moveStreams(std::int64_t target) {
    const auto ns = static_cast<GstClockTime>(target * kNsPerUnit);
    if (!std::all_of(m_clippers.begin(), m_clippers.end(),
                     [ns](FrameClipper* clipper) { return clipper->canMoveTo(ns); }))
        return false;
    m_apart = true;
    bool moves = false;
    for (FrameClipper* clipper : m_clippers)
        moves |= clipper->moveTo(ns);
    if (moves)
        await(target);
    else
        m_held = target;
    return true;
}

bool Transport::sendSeek(std::int64_t target) {
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    m_apart = false;
    return m_splitter.sendSeek(gst_event_new_seek(m_rate, GST_FORMAT_TIME, flags, GST_SEEK_TYPE_SET,
                                                  target * kNsPerUnit, GST_SEEK_TYPE_NONE, -1));
}

bool Transport::setRate(double rate) {
    if (rate <= 0)
        return false;
    if (rate == m_rate)
        return true;
    const std::int64_t here = position();
    m_rate = rate;
    m_held.reset();
    seek(here);
    return true;
}

void Transport::restartAt(std::int64_t position) {
    m_ended = false;
    m_inFlight = false;
    m_held.reset();
    m_pending = clamped(position);
    // On the way up again the pipeline picks another clock: the one it had may have gone with the stream.
    gst_element_set_state(m_pipeline, GST_STATE_PAUSED);
    sendPending();
    applyState();
}

std::int64_t Transport::position() const {
    if (m_ended)
        return m_duration;
    if (m_pending)
        return *m_pending;
    if (m_target)
        return *m_target;
    if (!m_started)
        return 0;
    if (m_held && m_state != GraphState::Running)
        return *m_held;
    gint64 ns = 0;
    // A pause doesn't turn time back, though the picture that it holds may have begun before it.
    const std::int64_t earliest = m_held.value_or(m_state == GraphState::Running ? 0 : m_last);
    if (!m_inFlight && gst_element_query_position(m_pipeline, GST_FORMAT_TIME, &ns))
        m_last = std::clamp(toUnits(ns), earliest, m_duration);
    else if (m_held)
        m_last = *m_held;
    return m_last;
}

// A video stream that ends before the clip does keeps its last frame on screen: the picture comes from there,
// the position stays the target.
bool Transport::seekToLastFrame() {
    std::int64_t end = 0;
    for (const FrameClipper* clipper : m_clippers)
        end = std::max(end, clipper->starvedAtEnd() / kNsPerUnit);
    if (std::exchange(m_seeksLastFrame, false) || !m_target || m_state == GraphState::Running || end <= 0)
        return false;
    for (FrameClipper* clipper : m_clippers)
        clipper->cutAt(*m_target * kNsPerUnit);
    m_seeksLastFrame = sendSeek(end - 1);
    return m_seeksLastFrame;
}

void Transport::settle() {
    if (!m_pending && seekToLastFrame())
        return;
    m_inFlight = false;
    if (m_target)
        m_held = std::exchange(m_target, std::nullopt);
    sendPending();
}

// The end of the stream, or an error after a good open: the clip is over.
void Transport::end() {
    m_inFlight = false;
    m_target.reset();
    m_held.reset();
    m_ended = !m_pending;
    m_last = m_duration;
    sendPending();
}

void Transport::handle(GstMessage* message) {
    switch (GST_MESSAGE_TYPE(message)) {
        case GST_MESSAGE_ASYNC_DONE:
            settle();
            break;
        case GST_MESSAGE_EOS:
        case GST_MESSAGE_ERROR:
            end();
            break;
        default:
            break;
    }
}

} // namespace ql240::gstreamer
