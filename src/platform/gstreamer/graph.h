// A filter graph over one GStreamer pipeline. Interface thread; the pipeline's threads only wake it through
// an event.
#pragma once

#include <QObject>

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/gstreamer/com_object.h"
#include "platform/gstreamer/gst_filter.h"
#include "platform/gstreamer/pipeline_streams.h"
#include "platform/gstreamer/transport.h"
#include "platform/media_graph.h"

namespace ql240::gstreamer {

class Splitter;

class Graph final : public QObject,
                    public ComObject<IGraphBuilder, IMediaControl, IMediaSeeking, IBasicVideo> {
public:
    Graph();
    ~Graph() override;

    Status AddFilter(IBaseFilter* filter, const char16_t* name) override;
    Status ConnectDirect(IPin* output, IPin* input, const MediaType* type) override;
    Status Render(IPin* output) override;

    Status Run() override;
    Status Pause() override;
    Status Stop() override;
    Status GetState(std::int32_t timeoutMs, GraphState* state) override;

    Status SetPositions(std::int64_t* current, Positioning currentFlags, std::int64_t* stop,
                        Positioning stopFlags) override;
    Status GetPositions(std::int64_t* current, std::int64_t* stop) override;
    Status GetCurrentPosition(std::int64_t* current) override;
    Status GetStopPosition(std::int64_t* stop) override;
    Status SetRate(double rate) override;

    Status GetVideoSize(std::int32_t* width, std::int32_t* height) override;

protected:
    bool event(QEvent* event) override;

private:
    Splitter* playedSplitter() const;
    static GstBusSyncReply messagePosted(GstBus* bus, GstMessage* message, gpointer self);
    Status joinPins(Pin& output, Pin& input);
    Status setState(GraphState state);
    // The transport, once there are streams to play; otherwise null.
    Transport* transport();
    bool start();
    std::vector<Filter*> chainOf(Filter& sink) const;
    void dropIdleFilters();
    void drainBus();
    void holdPictures(bool on);
    void keep(MessageHandle message);
    MessageHandle takeMessage();
    void passToSound(GstMessage* message) const;

    ElementHandle m_pipeline;
    BusHandle m_bus;
    std::vector<ComPtr<IBaseFilter>> m_filters;
    Splitter* m_splitter = nullptr; // of the streams
    std::unique_ptr<PipelineStreams> m_streams;
    std::unique_ptr<Transport> m_transport;
    bool m_holdsPictures = false; // until the seek in flight has been answered

    std::mutex m_messagesMutex; // guards what the streaming threads have posted
    std::deque<MessageHandle> m_messages;
};

} // namespace ql240::gstreamer
