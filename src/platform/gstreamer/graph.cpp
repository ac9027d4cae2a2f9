#include "platform/gstreamer/graph.h"

#include <malloc.h>

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

#include "platform/gstreamer/audio_filters.h"
#include "platform/gstreamer/c_border.h"
#include "platform/gstreamer/gst_log.h"
#include "platform/gstreamer/source_filters.h"
#include "platform/gstreamer/video_filters.h"

namespace ql240::gstreamer {

namespace {

const int kBusEvent = QEvent::registerEventType();

Filter& asFilter(const ComPtr<IBaseFilter>& filter) {
    return static_cast<Filter&>(*filter.get());
}

} // namespace

Graph::Graph() : m_pipeline(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)))) {
    m_bus.reset(gst_element_get_bus(m_pipeline.get()));
    gst_element_set_state(m_pipeline.get(), GST_STATE_READY);
}

// Stops the threads before destroying anything that they call.
Graph::~Graph() {
    gst_bus_set_sync_handler(m_bus.get(), nullptr, nullptr, nullptr);
    while (takeMessage()) { // log the messages that a failed open has left
    }
    for (const auto& filter : m_filters) {
        if (auto* splitter = dynamic_cast<Splitter*>(filter.get()))
            splitter->letGo();
    }
    gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    for (const auto& filter : m_filters)
        asFilter(filter).leavePipeline();
    m_transport.reset();
    m_streams.reset();
    m_filters.clear();
    // Return fragmented heap to the system so that it doesn't grow from clip to clip. Takes half a
    // millisecond.
    malloc_trim(0);
}

Status Graph::AddFilter(IBaseFilter* filter, const char16_t*) {
    if (!filter)
        return kStatusInvalidPointer;
    const bool fits = asFilter(m_filters.emplace_back(filter)).enterPipeline(m_pipeline.get());
    return fits ? kStatusOk : kStatusFail;
}

Status Graph::ConnectDirect(IPin* output, IPin* input, const MediaType*) {
    if (!output || !input)
        return kStatusInvalidPointer;
    auto& from = static_cast<Pin&>(*output);
    auto& to = static_cast<Pin&>(*input);
    if (from.direction() != PinDirection::Output || to.direction() != PinDirection::Input)
        return kStatusCannotConnect;
    if (from.peer() || to.peer())
        return kStatusAlreadyConnected;
    return joinPins(from, to);
}

Status Graph::joinPins(Pin& output, Pin& input) {
    const Status prepared = input.filter().prepareInput(input, output);
    if (failed(prepared))
        return prepared;
    if (!output.pad() || !input.pad() || gst_pad_link(output.pad(), input.pad()) != GST_PAD_LINK_OK)
        return kStatusCannotConnect;
    Pin::join(output, input);
    return input.filter().inputJoined(input);
}

Status Graph::Render(IPin* output) {
    if (!output)
        return kStatusInvalidPointer;
    const ComPtr<IBaseFilter> decoder(new AudioDecoder);
    const ComPtr<IBaseFilter> sound(new AudioRenderer);
    mayFail(AddFilter(decoder.get(), u"Audio Decoder"));
    mayFail(AddFilter(sound.get(), u"Default DirectSound Device"));
    const Status decoded = ConnectDirect(output, asFilter(decoder).inputPin(), nullptr);
    return failed(decoded)
               ? decoded
               : ConnectDirect(asFilter(decoder).outputPin(), asFilter(sound).inputPin(), nullptr);
}

// The filters from the source down to `sink`; empty if the source doesn't reach it.
std::vector<Filter*> Graph::chainOf(Filter& sink) const {
    std::vector<Filter*> chain{&sink};
    while (!chain.back()->isSource()) {
        const Pin* input = chain.back()->inputPin();
        if (!input || !input->peer())
            return {};
        chain.push_back(&input->peer()->filter());
    }
    return chain;
}

// Elements on no path from the source to a sink would stop the preroll or the end of the stream.
void Graph::dropIdleFilters() {
    std::vector<Filter*> used;
    for (const auto& filter : m_filters) {
        if (!asFilter(filter).isSink())
            continue;
        const auto chain = chainOf(asFilter(filter));
        used.insert(used.end(), chain.begin(), chain.end());
    }
    for (const auto& filter : m_filters) {
        if (std::find(used.begin(), used.end(), &asFilter(filter)) == used.end())
            asFilter(filter).leavePipeline();
    }
}

bool Graph::start() {
    const auto isVideo = [](const ComPtr<IBaseFilter>& filter) {
        return dynamic_cast<VideoDecoder*>(filter.get()) && asFilter(filter).inputPin()->peer();
    };
    const auto videoStreams = static_cast<int>(std::count_if(m_filters.begin(), m_filters.end(), isVideo));
    dropIdleFilters();
    {
        // Our own lock, not only GStreamer's, makes what was set up visible to the streaming threads.
        const std::scoped_lock lock(m_messagesMutex);
        m_messages.clear();
    }
    gst_bus_set_sync_handler(m_bus.get(), messagePosted, this, nullptr);
    for (const auto& filter : m_filters)
        asFilter(filter).beforeFirstRun(videoStreams);
    return m_transport->start([this] { m_splitter->letGo(); });
}

Splitter* Graph::playedSplitter() const {
    for (const auto& filter : m_filters) {
        const auto chain = asFilter(filter).isSink() ? chainOf(asFilter(filter)) : std::vector<Filter*>();
        if (chain.size() > 1)
            return dynamic_cast<Splitter*>(chain[chain.size() - 2]);
    }
    return nullptr;
}

Transport* Graph::transport() {
    if (m_transport)
        return m_transport.get();
    m_splitter = playedSplitter();
    if (!m_splitter)
        return nullptr;
    std::vector<FrameClipper*> clippers;
    for (const auto& filter : m_filters) {
        if (auto* decoder = dynamic_cast<VideoDecoder*>(filter.get()))
            clippers.push_back(&decoder->clipper());
    }
    m_streams = std::make_unique<PipelineStreams>(m_pipeline.get(), *m_splitter, std::move(clippers));
    m_transport = std::make_unique<Transport>(*m_streams);
    return m_transport.get();
}

Status Graph::setState(GraphState state) {
    drainBus();
    if (!transport())
        return kStatusFail;
    if (!m_transport->isStarted()) {
        if (state == GraphState::Stopped)
            return kStatusOk;
        if (!start())
            return kStatusFail;
    }
    const bool accepted = m_transport->setState(state);
    if (state != GraphState::Stopped)
        m_transport->sendWaiting();
    return accepted ? kStatusOk : kStatusFail;
}

Status Graph::Run() {
    return setState(GraphState::Running);
}

Status Graph::Pause() {
    return setState(GraphState::Paused);
}

Status Graph::Stop() {
    return setState(GraphState::Stopped);
}

Status Graph::GetState(std::int32_t, GraphState* state) {
    drainBus();
    *state = m_transport ? m_transport->state() : GraphState::Stopped;
    return !m_transport || m_transport->isSettled() ? kStatusOk : kStatusIntermediate;
}

Status Graph::SetPositions(std::int64_t* current, Positioning currentFlags, std::int64_t*,
                           Positioning stopFlags) {
    if (stopFlags != Positioning::None)
        return kStatusInvalidArgument;
    if (currentFlags == Positioning::None)
        return kStatusOk;
    drainBus();
    if (!transport())
        return kStatusFail;
    if (*current > 0)
        holdPictures(true);
    const bool accepted = m_transport->seek(*current);
    if (!accepted || m_transport->isSettled())
        holdPictures(false);
    return accepted ? kStatusOk : kStatusFail;
}

void Graph::holdPictures(bool on) {
    m_holdsPictures = on;
    for (const auto& filter : m_filters) {
        if (auto* renderer = dynamic_cast<VideoRenderer*>(filter.get()))
            renderer->holdPicture(on);
    }
}

Status Graph::GetPositions(std::int64_t* current, std::int64_t* stop) {
    const Status status = GetCurrentPosition(current);
    return failed(status) ? status : GetStopPosition(stop);
}

Status Graph::GetCurrentPosition(std::int64_t* current) {
    drainBus();
    *current = transport() ? m_transport->position() : 0;
    return m_transport ? kStatusOk : kStatusFail;
}

Status Graph::GetStopPosition(std::int64_t* stop) {
    *stop = transport() ? m_transport->duration() : 0;
    return m_transport ? kStatusOk : kStatusFail;
}

Status Graph::SetRate(double rate) {
    drainBus();
    return transport() && m_transport->setRate(rate) ? kStatusOk : kStatusInvalidArgument;
}

Status Graph::GetVideoSize(std::int32_t* width, std::int32_t* height) {
    for (const auto& filter : m_filters) {
        if (auto* renderer = dynamic_cast<VideoRenderer*>(filter.get()))
            return renderer->GetVideoSize(width, height);
    }
    return kStatusNotConnected;
}

// Streaming thread. The interface thread takes the message at the event at the latest. The bus would queue
// the message only after this call returns, perhaps after the event.
GstBusSyncReply Graph::messagePosted(GstBus*, GstMessage* message, gpointer self) {
    constexpr auto kWanted = GST_MESSAGE_ASYNC_DONE | GST_MESSAGE_EOS | GST_MESSAGE_ERROR;
    MessageHandle taken(message); // a handler owns what it drops
    auto* graph = static_cast<Graph*>(self);
    return answerToC(GST_BUS_DROP, [&] {
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_STATE_CHANGED)
            graph->passToSound(message);
        if (GST_MESSAGE_TYPE(message) & kWanted)
            graph->keep(std::move(taken));
        return GST_BUS_DROP;
    });
}

void Graph::keep(MessageHandle message) {
    {
        const std::scoped_lock lock(m_messagesMutex);
        m_messages.push_back(std::move(message));
    }
    QCoreApplication::postEvent(this, new QEvent(static_cast<QEvent::Type>(kBusEvent)));
}

// Any thread; the filters stay the same once the graph has run.
void Graph::passToSound(GstMessage* message) const {
    for (const auto& filter : m_filters) {
        if (auto* sound = dynamic_cast<AudioRenderer*>(filter.get()))
            sound->stateChanged(message);
    }
}

MessageHandle Graph::takeMessage() {
    MessageHandle message(gst_bus_pop(m_bus.get())); // from before the first run
    if (!message) {
        const std::scoped_lock lock(m_messagesMutex);
        if (m_messages.empty())
            return nullptr;
        message = std::move(m_messages.front());
        m_messages.pop_front();
    }
    logError("clip:", message.get());
    return message;
}

bool Graph::event(QEvent* event) {
    if (event->type() != kBusEvent)
        return QObject::event(event);
    drainBus();
    return true;
}

void Graph::drainBus() {
    if (!m_transport || !m_transport->isStarted())
        return;
    while (const MessageHandle message = takeMessage()) {
        const std::uint32_t number = gst_message_get_seqnum(message.get());
        if (GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_ASYNC_DONE)
            m_transport->arrived(number);
        else if (GST_MESSAGE_TYPE(message.get()) & (GST_MESSAGE_EOS | GST_MESSAGE_ERROR))
            m_transport->ended(number);
    }
    if (m_holdsPictures && m_transport->isSettled())
        holdPictures(false);
}

} // namespace ql240::gstreamer
