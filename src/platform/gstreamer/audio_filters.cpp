#include "platform/gstreamer/audio_filters.h"

#include <algorithm>

#include "platform/gstreamer/c_border.h"
#include "platform/gstreamer/codec_table.h"
#include "platform/gstreamer/queue_limits.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

// No limit by time: the video queues limit how far the splitter reads ahead. If the video yields no frames,
// its queues never fill, and the audio queue must let the splitter read on to the clip's end, or until
// endUnlessPrerolled.
constexpr GstClockTime kAnyTime = 0;
// How far ahead of its time the sound is passed on: more than servers and devices buffer.
constexpr GstClockTime kLead = 300 * GST_MSECOND;

// The splitter's streaming thread: the queue is full, so the splitter can't reach a video frame any more.
void endUnlessPrerolled(GstElement* queue, gpointer) {
    GstObject* pipeline = GST_OBJECT_PARENT(queue);
    if (pipeline && GST_STATE_RETURN(pipeline) == GST_STATE_CHANGE_ASYNC)
        GST_ELEMENT_ERROR(queue, STREAM, FAILED, (nullptr), (nullptr));
}

// Sound in other formats isn't played.
bool canBeHeard(const GstCaps* caps) {
    const GstStructure* sound = gst_caps_get_structure(caps, 0);
    gint rate = 0;
    gint channels = 0;
    return gst_structure_get_int(sound, "rate", &rate) &&
           gst_structure_get_int(sound, "channels", &channels) && rate >= limits::kSlowestSound &&
           rate <= limits::kFastestSound && channels >= 1 && channels <= limits::kSoundChannels;
}

} // namespace

AudioDecoder::AudioDecoder() {
    addPin(u"In", PinDirection::Input);
    addPin(u"Out", PinDirection::Output);
}

Status AudioDecoder::prepareInput(Pin& input, const Pin& upstream) {
    auto factories = decoderChain(StreamKind::Sound, upstream.caps().get());
    if (!factories)
        return kStatusTypeNotAccepted;
    factories->insert(factories->begin(), "queue");
    factories->push_back("audioconvert");
    const auto chain = addChain(*factories);
    if (chain.empty())
        return kStatusClassNotRegistered;
    limitQueue(chain.front(), kAnyTime, limits::kQueuedSoundBytes);
    g_signal_connect(chain.front(), "overrun", G_CALLBACK(endUnlessPrerolled), nullptr);
    input.setPad(staticPad(chain.front(), "sink"));
    outputPin()->setPad(staticPad(chain.back(), "src"));
    return kStatusOk;
}

AudioRenderer::AudioRenderer() {
    const auto chain = addChain({"queue", "fakesink"});
    if (chain.empty())
        return;
    limitQueue(chain.front(), kLead, limits::kQueuedSoundBytes);
    m_sink = share(chain.back());
    g_object_set(m_sink.get(), "sync", TRUE, "enable-last-sample", FALSE, "signal-handoffs", TRUE, nullptr);
    g_signal_connect(m_sink.get(), "handoff", G_CALLBACK(isDue), this);
    Pin& input = addPin(u"Audio Input pin (rendered)", PinDirection::Input);
    input.setPad(staticPad(chain.front(), "sink"));
    const auto all = static_cast<GstPadProbeType>(
        GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_EVENT_FLUSH);
    gst_pad_add_probe(input.pad(), all, arrived, this, nullptr);
}

// Stops the streaming threads before the members are destroyed.
AudioRenderer::~AudioRenderer() {
    leavePipeline();
}

// The decoder's streaming thread; a flush arrives on the thread that seeks.
GstPadProbeReturn AudioRenderer::arrived(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* renderer = static_cast<AudioRenderer*>(self);
    return answerToC(GST_PAD_PROBE_OK, [renderer, info] {
        const std::scoped_lock lock(renderer->m_mutex);
        if (GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER)
            renderer->soundArrived(GST_PAD_PROBE_INFO_BUFFER(info));
        else
            renderer->eventArrived(GST_PAD_PROBE_INFO_EVENT(info));
        return GST_PAD_PROBE_OK;
    });
}

void AudioRenderer::eventArrived(GstEvent* event) {
    switch (GST_EVENT_TYPE(event)) {
        case GST_EVENT_CAPS: {
            GstCaps* caps = nullptr;
            gst_event_parse_caps(event, &caps);
            m_caps = canBeHeard(caps) ? share(caps) : nullptr;
            break;
        }
        case GST_EVENT_SEGMENT:
            gst_event_copy_segment(event, &m_segment);
            break;
        case GST_EVENT_FLUSH_STOP:
            m_ahead.clear();
            m_baseTime.reset();
            m_output.flush();
            break;
        default:
            break;
    }
}

// At other playback rates than 1, there is no sound.
void AudioRenderer::soundArrived(GstBuffer* sound) {
    if (!m_caps || m_segment.format != GST_FORMAT_TIME || m_segment.rate != 1.0)
        return;
    const GstClockTime begin =
        gst_segment_to_running_time(&m_segment, GST_FORMAT_TIME, GST_BUFFER_PTS(sound));
    if (!GST_CLOCK_TIME_IS_VALID(begin))
        return;
    m_ahead.push_back({SampleHandle(gst_sample_new(sound, m_caps.get(), nullptr, nullptr)), begin});
    if (m_baseTime)
        play(m_ahead.back());
}

void AudioRenderer::play(const Piece& piece) {
    BufferHandle sound(gst_buffer_copy(gst_sample_get_buffer(piece.sample.get())));
    GST_BUFFER_PTS(sound.get()) = *m_baseTime + piece.runningTime;
    m_output.play(
        SampleHandle(gst_sample_new(sound.get(), gst_sample_get_caps(piece.sample.get()), nullptr, nullptr)));
}

// The sink's streaming thread.
void AudioRenderer::isDue(GstElement* sink, GstBuffer* sound, GstPad*, gpointer self) {
    answerToC(true, [sink, sound, renderer = static_cast<AudioRenderer*>(self)] {
        const std::scoped_lock lock(renderer->m_mutex);
        renderer->dropBefore(sound);
        renderer->playFrom(gst_element_get_base_time(sink));
        return true;
    });
}

void AudioRenderer::dropBefore(GstBuffer* sound) {
    const auto due = std::find_if(m_ahead.begin(), m_ahead.end(), [sound](const Piece& piece) {
        return gst_sample_get_buffer(piece.sample.get()) == sound;
    });
    if (due != m_ahead.end())
        m_ahead.erase(m_ahead.begin(), due);
}

// Passes on the pieces received so far; later ones follow as they arrive.
void AudioRenderer::playFrom(GstClockTime baseTime) {
    if (m_baseTime == baseTime)
        return;
    if (m_baseTime)
        m_output.flush();
    m_baseTime = baseTime;
    for (const Piece& piece : m_ahead)
        play(piece);
}

void AudioRenderer::stateChanged(GstMessage* message) {
    if (!m_sink || GST_MESSAGE_SRC(message) != GST_OBJECT(m_sink.get()))
        return;
    GstState before = GST_STATE_NULL;
    GstState now = GST_STATE_NULL;
    gst_message_parse_state_changed(message, &before, &now, nullptr);
    const std::scoped_lock lock(m_mutex);
    if (before == GST_STATE_PAUSED && now == GST_STATE_PLAYING) {
        playFrom(gst_element_get_base_time(m_sink.get()));
    } else if (before == GST_STATE_PLAYING && now == GST_STATE_PAUSED) {
        m_baseTime.reset();
        m_output.flush();
    }
}

} // namespace ql240::gstreamer
