#include "platform/gstreamer/pipeline_streams.h"

#include <gst/base/gstbasesink.h>

#include <algorithm>
#include <utility>

#include "platform/gstreamer/frame_clipper.h"
#include "platform/gstreamer/source_filters.h"

namespace ql240::gstreamer {

namespace {

constexpr std::int64_t kNsPerUnit = 100;
constexpr GstClockTime kMoment = 90 * GST_MSECOND;

// A hostile file may claim the maximum duration.
std::int64_t toUnits(std::int64_t ns) {
    return ns / kNsPerUnit + (ns % kNsPerUnit + kNsPerUnit / 2) / kNsPerUnit;
}

} // namespace

PipelineStreams::PipelineStreams(GstElement* pipeline, const Splitter& splitter,
                                 std::vector<FrameClipper*> clippers)
    : m_pipeline(pipeline), m_splitter(splitter), m_clippers(std::move(clippers)) {}

std::int64_t PipelineStreams::duration() const {
    return toUnits(m_splitter.durationNs());
}

std::optional<std::int64_t> PipelineStreams::position() const {
    gint64 ns = 0;
    if (!gst_element_query_position(m_pipeline, GST_FORMAT_TIME, &ns))
        return std::nullopt;
    return toUnits(ns);
}

std::int64_t PipelineStreams::stoppedAt() const {
    const auto running = static_cast<double>(gst_element_get_start_time(m_pipeline));
    return m_sought + toUnits(static_cast<std::int64_t>(running * m_rate));
}

// The change to playing continues for a moment after the preroll. A state change requested during it can
// leave the pipeline between the two states for ever, and a seek sent during it may never be reported as
// done.
void PipelineStreams::awaitChange() const {
    gst_element_get_state(m_pipeline, nullptr, nullptr, kMoment);
}

// When a pause follows at once, a sink whose thread has been signalled but hasn't woken up counts as paused,
// and then plays on in the paused pipeline. Called before the pause, this holds the frame that is due; called
// after it, the frame that a still unfinished change to playing has released.
void PipelineStreams::holdSinks() const {
    const GstIteratorForeachFunction hold = [](const GValue* item, gpointer) {
        auto* sink = static_cast<GstElement*>(g_value_get_object(item));
        if (!GST_IS_BASE_SINK(sink))
            return;
        GST_BASE_SINK_PREROLL_LOCK(sink);
        GST_BASE_SINK(sink)->need_preroll = TRUE;
        GST_BASE_SINK_PREROLL_UNLOCK(sink);
    };
    GstIterator* sinks = gst_bin_iterate_sinks(GST_BIN(m_pipeline));
    gst_iterator_foreach(sinks, hold, nullptr);
    gst_iterator_free(sinks);
}

Streams::Answer PipelineStreams::setRunning(bool running, bool settled) {
    if (settled)
        awaitChange();
    if (!running)
        holdSinks();
    const auto change = gst_element_set_state(m_pipeline, running ? GST_STATE_PLAYING : GST_STATE_PAUSED);
    if (!running)
        holdSinks();
    switch (change) {
        case GST_STATE_CHANGE_ASYNC:
            return Answer::Awaited;
        case GST_STATE_CHANGE_FAILURE:
            return Answer::Refused;
        default:
            return Answer::Done;
    }
}

// The end of the stream has the seek's sequence number; a preroll's message has a newer one.
Streams::Sent PipelineStreams::seek(std::int64_t target, double rate) {
    awaitChange();
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    GstEvent* event = gst_event_new_seek(rate, GST_FORMAT_TIME, flags, GST_SEEK_TYPE_SET, target * kNsPerUnit,
                                         GST_SEEK_TYPE_NONE, -1);
    const std::uint32_t number = gst_event_get_seqnum(event);
    if (!m_splitter.sendSeek(event))
        return {Answer::Refused, 0};
    m_sought = target;
    m_rate = rate;
    return {Answer::Awaited, number};
}

Streams::Sent PipelineStreams::fetchLastPictures(std::int64_t target, double rate) {
    std::int64_t end = 0;
    for (const FrameClipper* clipper : m_clippers)
        end = std::max(end, clipper->starvedAtEnd() / kNsPerUnit);
    if (end <= 0)
        return {Answer::Done, 0};
    const auto cutAt = [this](std::int64_t ns) {
        for (FrameClipper* clipper : m_clippers)
            clipper->cutAt(ns);
    };
    cutAt(target * kNsPerUnit);
    const Sent sent = seek(end - 1, rate);
    if (sent.answer == Answer::Refused)
        cutAt(0);
    return sent;
}

// Flushes all frames before the first new one can arrive, so that one message reports all of them.
Streams::Sent PipelineStreams::move(std::int64_t target) {
    const auto ns = static_cast<GstClockTime>(target * kNsPerUnit);
    const auto canMove = [ns](FrameClipper* clipper) { return clipper->canMoveTo(ns); };
    if (!std::all_of(m_clippers.begin(), m_clippers.end(), canMove))
        return {Answer::Refused, 0};
    const std::uint32_t number = gst_util_seqnum_next();
    std::vector<std::pair<FrameClipper*, std::unique_lock<std::mutex>>> moves;
    for (FrameClipper* clipper : m_clippers) {
        if (auto held = clipper->beginMove(ns))
            moves.emplace_back(clipper, std::move(held));
    }
    for (const auto& [clipper, held] : moves)
        clipper->finishMove();
    return {moves.empty() ? Answer::Done : Answer::Awaited, number};
}

bool PipelineStreams::areOff(std::int64_t position) const {
    const auto ns = static_cast<GstClockTime>(position * kNsPerUnit);
    return std::any_of(m_clippers.begin(), m_clippers.end(),
                       [ns](FrameClipper* clipper) { return clipper->isOff(ns); });
}

bool PipelineStreams::areInStepAt(std::int64_t position) const {
    const auto hasMoved = [](const FrameClipper* clipper) { return clipper->hasMoved(); };
    return position == m_sought && std::none_of(m_clippers.begin(), m_clippers.end(), hasMoved);
}

} // namespace ql240::gstreamer
