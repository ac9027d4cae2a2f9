#include "platform/gstreamer/frame_clipper.h"

#include <algorithm>

namespace ql240::gstreamer {

namespace {

// Time stamps are rounded to the container's clock; a smaller gap between frames is none.
constexpr GstClockTime kGapTolerance = GST_MSECOND;

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
    const auto events =
        static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_EVENT_FLUSH);
    const auto all = static_cast<GstPadProbeType>(events | GST_PAD_PROBE_TYPE_BUFFER);
    m_sinkProbe = gst_pad_add_probe(m_sink.get(), events, beforeDecoder, this, nullptr);
    m_sourceProbe = gst_pad_add_probe(m_source.get(), all, behindDecoder, this, nullptr);
}

GstPadProbeReturn FrameClipper::beforeDecoder(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* clipper = static_cast<FrameClipper*>(self);
    switch (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info))) {
        case GST_EVENT_SEGMENT:
            clipper->widen(info);
            break;
        case GST_EVENT_FLUSH_STOP:
            clipper->m_originals.clear();
            break;
        default:
            break;
    }
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn FrameClipper::behindDecoder(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* clipper = static_cast<FrameClipper*>(self);
    return GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER ? clipper->handleFrame(info)
                                                                     : clipper->handleEvent(info);
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
    m_cut = std::max(m_segment.start, static_cast<GstClockTime>(m_cutAt.exchange(0)));
    // The container's idea of the stream's end leaves out what B-frames delay.
    GstSegment open = *segment;
    open.stop = GST_CLOCK_TIME_NONE;
    GstEvent* event = gst_event_new_segment(&open);
    gst_event_set_seqnum(event, gst_event_get_seqnum(original.get()));
    replaceEvent(info, event);
}

void FrameClipper::reset() {
    m_kept.reset();
    m_framePassed = false;
    m_hasSegment = false;
    m_starvedAtEnd = 0;
}

GstPadProbeReturn FrameClipper::handleEvent(GstPadProbeInfo* info) {
    switch (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info))) {
        case GST_EVENT_SEGMENT:
            restore(info);
            break;
        case GST_EVENT_FLUSH_STOP:
            reset();
            break;
        case GST_EVENT_EOS:
            if (m_kept && !m_framePassed)
                pushKept(m_segment.start + GST_SECOND);
            else if (m_hasSegment && !m_framePassed && GST_CLOCK_TIME_IS_VALID(m_segment.stop))
                m_starvedAtEnd = static_cast<std::int64_t>(m_segment.stop);
            break;
        default:
            break;
    }
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn FrameClipper::handleFrame(GstPadProbeInfo* info) {
    GstBuffer* frame = GST_PAD_PROBE_INFO_BUFFER(info);
    if (!m_hasSegment || m_framePassed || !GST_BUFFER_PTS_IS_VALID(frame))
        return GST_PAD_PROBE_OK;
    const GstClockTime begin = GST_BUFFER_PTS(frame);
    const GstClockTime duration = GST_BUFFER_DURATION_IS_VALID(frame) ? GST_BUFFER_DURATION(frame) : 0;
    if (begin < m_cut && begin + duration <= m_cut) {
        m_kept = share(frame);
        return GST_PAD_PROBE_DROP;
    }
    m_framePassed = true;
    if (m_kept && begin > m_cut + kGapTolerance)
        pushKept(begin);
    m_kept.reset();
    if (begin < m_cut) {
        frame = gst_buffer_make_writable(frame);
        GST_BUFFER_PTS(frame) = m_cut;
        GST_BUFFER_DURATION(frame) = begin + duration - m_cut;
        GST_PAD_PROBE_INFO_DATA(info) = frame;
    }
    return GST_PAD_PROBE_OK;
}

void FrameClipper::pushKept(GstClockTime end) {
    m_framePassed = true;
    GstBuffer* frame = gst_buffer_make_writable(m_kept.release());
    GST_BUFFER_PTS(frame) = m_segment.start;
    GST_BUFFER_DURATION(frame) = end - m_segment.start;
    // Past its own pad, which at the end of the stream takes no more.
    if (const PadHandle next{gst_pad_get_peer(m_source.get())})
        gst_pad_chain(next.get(), frame);
    else
        gst_buffer_unref(frame);
}

} // namespace ql240::gstreamer
