#include "platform/gstreamer/frame_clipper.h"

#include <algorithm>
#include <utility>

#include "platform/gstreamer/c_border.h"

namespace ql240::gstreamer {

namespace {

// Decoding this far is faster than a seek.
constexpr GstClockTime kShortMove = 500 * GST_MSECOND;
// While the video moves on, the audio waits in a queue, which holds 8 MiB and then blocks the splitter; the
// frames that the decoder delays need room there, too.
constexpr GstClockTime kFarthest = 2 * GST_SECOND;
// Display duration of the last frame.
constexpr GstClockTime kLastFrame = GST_SECOND;
// Duration of a frame without one.
constexpr GstClockTime kUsualFrame = GST_SECOND / 15;
// Of a position.
constexpr GstClockTime kRounding = GST_USECOND;

GstClockTime durationOf(GstBuffer* frame) {
    return GST_BUFFER_DURATION_IS_VALID(frame) ? GST_BUFFER_DURATION(frame) : kUsualFrame;
}

bool isTimeSegment(GstEvent* event, const GstSegment** segment) {
    gst_event_parse_segment(event, segment);
    return (*segment)->format == GST_FORMAT_TIME && (*segment)->rate > 0;
}

void replaceEvent(GstPadProbeInfo* info, GstEvent* event) {
    gst_event_unref(GST_PAD_PROBE_INFO_EVENT(info));
    GST_PAD_PROBE_INFO_DATA(info) = event;
}

} // namespace

FrameClipper::~FrameClipper() {
    if (m_sink)
        gst_pad_remove_probe(m_sink.get(), m_sinkProbe);
    if (m_source)
        gst_pad_remove_probe(m_source.get(), m_sourceProbe);
}

void FrameClipper::attach(GstElement* decoder) {
    m_sink = staticPad(decoder, "sink");
    m_source = staticPad(decoder, "src");
    m_next.reset(gst_pad_get_peer(m_source.get()));
    const auto events =
        static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_EVENT_FLUSH);
    const auto all = static_cast<GstPadProbeType>(events | GST_PAD_PROBE_TYPE_BUFFER);
    m_sinkProbe = gst_pad_add_probe(m_sink.get(), events, beforeDecoder, this, nullptr);
    m_sourceProbe = gst_pad_add_probe(m_source.get(), all, afterDecoder, this, nullptr);
}

GstPadProbeReturn FrameClipper::beforeDecoder(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* clipper = static_cast<FrameClipper*>(self);
    switch (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info))) {
        case GST_EVENT_SEGMENT:
            return answerToC(GST_PAD_PROBE_DROP, [=] {
                clipper->widen(info);
                return GST_PAD_PROBE_OK;
            });
        case GST_EVENT_FLUSH_STOP:
            clipper->m_originals.clear();
            break;
        default:
            break;
    }
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn FrameClipper::afterDecoder(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* clipper = static_cast<FrameClipper*>(self);
    const bool isFrame = GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER;
    return answerToC(isFrame ? GST_PAD_PROBE_DROP : GST_PAD_PROBE_OK,
                     [=] { return isFrame ? clipper->handleFrame(info) : clipper->handleEvent(info); });
}

void FrameClipper::widen(GstPadProbeInfo* info) {
    GstEvent* original = GST_PAD_PROBE_INFO_EVENT(info);
    const GstSegment* segment = nullptr;
    m_originals.emplace_back(gst_event_ref(original));
    if (!isTimeSegment(original, &segment))
        return;
    GstSegment wide = *segment;
    wide.start = 0;
    wide.time = 0;
    wide.position = 0;
    wide.stop = GST_CLOCK_TIME_NONE;
    GstEvent* event = gst_event_new_segment(&wide);
    gst_event_set_seqnum(event, gst_event_get_seqnum(original));
    replaceEvent(info, event);
}

void FrameClipper::restore(GstPadProbeInfo* info) {
    reset();
    if (m_originals.empty())
        return;
    const Handle<GstEvent> original = std::move(m_originals.front());
    m_originals.pop_front();
    const GstSegment* segment = nullptr;
    m_hasSegment = isTimeSegment(original.get(), &segment);
    m_segment = *segment;
    m_sought = m_segment.start;
    if (m_segment.start < m_segment.stop) // past the end of a stream the demuxer clamps the start
        m_shift = static_cast<std::int64_t>(m_segment.start) - static_cast<std::int64_t>(m_segment.time);
    m_cut = m_sought;
    if (const std::int64_t cutAt = m_cutAt.exchange(0); cutAt > 0)
        m_cut = std::max(m_cut, stampOf(static_cast<GstClockTime>(cutAt)));
    // The container's end of the stream doesn't include the delay of B-frames.
    GstSegment open = *segment;
    open.stop = GST_CLOCK_TIME_NONE;
    GstEvent* event = gst_event_new_segment(&open);
    gst_event_set_seqnum(event, gst_event_get_seqnum(original.get()));
    replaceEvent(info, event);
}

void FrameClipper::reset() {
    m_row.clear();
    m_shown.reset();
    m_nextOver.reset();
    m_last = m_beforeLast = 0;
    m_framePassed = false;
    m_hasSegment = false;
    m_ended = false;
    m_moved = false;
    m_hasMoved = false;
    m_starvedAtEnd = 0;
}

GstPadProbeReturn FrameClipper::handleEvent(GstPadProbeInfo* info) {
    switch (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info))) {
        case GST_EVENT_SEGMENT: {
            const std::scoped_lock lock(m_mutex);
            restore(info);
            break;
        }
        case GST_EVENT_FLUSH_STOP: {
            const std::scoped_lock lock(m_mutex);
            reset();
            break;
        }
        case GST_EVENT_EOS:
            handleEnd();
            break;
        default:
            break;
    }
    return GST_PAD_PROBE_OK;
}

void FrameClipper::handleEnd() {
    std::unique_lock lock(m_mutex);
    m_ended = true;
    if (m_framePassed || !m_hasSegment)
        return;
    if (!m_row.isEmpty())
        push(m_row.last(m_segment.start + kLastFrame), lock);
    else if (GST_CLOCK_TIME_IS_VALID(m_segment.stop))
        m_starvedAtEnd = static_cast<std::int64_t>(m_segment.stop) - m_shift;
}

GstPadProbeReturn FrameClipper::handleFrame(GstPadProbeInfo* info) {
    GstBuffer* frame = GST_PAD_PROBE_INFO_BUFFER(info);
    std::unique_lock lock(m_mutex);
    if (!m_hasSegment || !GST_BUFFER_PTS_IS_VALID(frame))
        return GST_PAD_PROBE_OK;
    if (m_framePassed) {
        m_row.clear();
        m_nextOver = GST_BUFFER_PTS(frame) + 2 * durationOf(frame);
        m_beforeLast = std::exchange(m_last, GST_BUFFER_PTS(frame));
        return GST_PAD_PROBE_OK;
    }
    m_row.add(share(frame), m_cut);
    const std::optional<GstFlowReturn> flow = pushWanted(lock);
    if (!flow)
        return GST_PAD_PROBE_DROP;
    if (*flow == GST_FLOW_OK && m_shown && m_shown->frame != frame)
        return GST_PAD_PROBE_OK; // the frame before it filled a gap; this one comes next
    gst_buffer_unref(frame);
    GST_PAD_PROBE_INFO_FLOW_RETURN(info) = *flow;
    return GST_PAD_PROBE_HANDLED;
}

// Nothing if the wanted frame hasn't been decoded yet.
std::optional<GstFlowReturn> FrameClipper::pushWanted(std::unique_lock<std::mutex>& lock) {
    for (;;) {
        const auto wanted = m_row.at(m_cut);
        if (!wanted)
            return std::nullopt;
        const GstFlowReturn flow = push(*wanted, lock);
        if (flow != GST_FLOW_FLUSHING || !std::exchange(m_moved, false))
            return flow;
    }
}

// Blocks until playing resumes or a move flushes the frame. Bypasses the decoder's source pad, which accepts
// no buffers after the end of the stream.
GstFlowReturn FrameClipper::push(const FrameRow::Shown& shown, std::unique_lock<std::mutex>& lock) {
    m_framePassed = true;
    const bool first = !m_shown;
    m_shown = shown;
    BufferHandle frame = cut(shown);
    GstSegment segment = m_segment;
    segment.position = segment.start;
    segment.stop = GST_CLOCK_TIME_NONE;
    lock.unlock();
    if (!first)
        gst_pad_send_event(m_next.get(), gst_event_new_segment(&segment));
    const GstFlowReturn flow = gst_pad_chain(m_next.get(), frame.release());
    lock.lock();
    return flow;
}

BufferHandle FrameClipper::cut(const FrameRow::Shown& shown) const {
    BufferHandle frame(gst_buffer_copy(shown.frame));
    const GstClockTime begin = std::max(shown.begin, m_segment.start);
    GST_BUFFER_PTS(frame.get()) = begin;
    GST_BUFFER_DURATION(frame.get()) = shown.end > begin ? shown.end - begin : GST_CLOCK_TIME_NONE;
    return frame;
}

// Converts a time in the clip to the frames' time stamps, which an edit list can shift.
GstClockTime FrameClipper::stampOf(GstClockTime ns) const {
    return ns + m_segment.start - m_segment.time;
}

bool FrameClipper::isOff(GstClockTime ns) {
    const std::scoped_lock lock(m_mutex);
    if (!m_nextOver || m_ended)
        return false;
    const GstClockTime stamp = stampOf(ns);
    return *m_nextOver <= stamp || m_beforeLast > stamp + kRounding;
}

bool FrameClipper::canMoveTo(GstClockTime ns) {
    const std::scoped_lock lock(m_mutex);
    if (!m_next)
        return true;
    if (!m_framePassed || m_ended || !m_shown)
        return false;
    const GstClockTime stamp = stampOf(ns);
    return m_row.reachesBackTo(stamp) && stamp < m_shown->end + kShortMove && stamp < m_sought + kFarthest;
}

std::unique_lock<std::mutex> FrameClipper::beginMove(GstClockTime ns) {
    std::unique_lock lock(m_mutex);
    if (!m_next || m_shown->holds(stampOf(ns)))
        return {};
    m_cut = m_segment.start = stampOf(ns);
    m_segment.time = ns;
    m_framePassed = false;
    m_moved = true;
    m_hasMoved = true;
    // The thread that waits in the sink returns and then waits for the lock.
    gst_pad_send_event(m_next.get(), gst_event_new_flush_start());
    return lock;
}

void FrameClipper::finishMove() {
    gst_pad_send_event(m_next.get(), gst_event_new_flush_stop(TRUE));
}

} // namespace ql240::gstreamer
