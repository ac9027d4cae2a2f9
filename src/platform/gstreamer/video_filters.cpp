#include "platform/gstreamer/video_filters.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include "platform/gstreamer/c_border.h"
#include "platform/gstreamer/codec_table.h"
#include "platform/gstreamer/frame_slot.h"
#include "platform/gstreamer/queue_limits.h"
#include "platform/gstreamer/video_window.h"
#include "platform/gstreamer/yuy2_packer.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

constexpr GstClockTime kQueueTime = 3 * GST_SECOND;
constexpr gint64 kMaxLateness = 20 * GST_MSECOND;

bool sizeInCaps(const GstCaps* caps, std::int32_t* width, std::int32_t* height) {
    const GstStructure* stream = caps ? gst_caps_get_structure(caps, 0) : nullptr;
    return stream && gst_structure_get_int(stream, "width", width) &&
           gst_structure_get_int(stream, "height", height);
}

bool hasProperty(GstElement* element, const char* name) {
    return g_object_class_find_property(G_OBJECT_GET_CLASS(element), name) != nullptr;
}

} // namespace

VideoDecoder::VideoDecoder() {
    addPin(u"In", PinDirection::Input);
    addPin(u"Out", PinDirection::Output);
}

// Stops the streaming thread before the clipper is destroyed.
VideoDecoder::~VideoDecoder() {
    leavePipeline();
}

Status VideoDecoder::prepareInput(Pin& input, const Pin& upstream) {
    std::int32_t width = 0;
    std::int32_t height = 0;
    if (sizeInCaps(upstream.caps().get(), &width, &height) && limits::isPictureTooLarge(width, height))
        return kStatusTypeNotAccepted;
    auto factories = decoderChain(StreamKind::Pictures, upstream.caps().get());
    if (!factories)
        return kStatusTypeNotAccepted;
    factories->insert(factories->begin(), "queue");
    factories->push_back(yuy2PackerFactory());
    factories->push_back("videoconvert");
    const auto chain = addChain(*factories);
    if (chain.empty())
        return kStatusClassNotRegistered;
    GstElement* queue = chain.front();
    GstElement* decoder = chain[chain.size() - 3];
    GstElement* converter = chain.back();
    limitQueue(queue, kQueueTime, limits::kQueuedPictureBytes);
    // The grabber needs every decoded frame, even a late one, which isn't drawn.
    for (GstElement* element : {decoder, converter}) {
        if (hasProperty(element, "qos"))
            g_object_set(element, "qos", FALSE, nullptr);
    }
    m_gate.attach(chain[1], decoder);
    if (chain[1] != decoder)
        m_parsing.attach(chain[1], chain[1]);
    m_decoding.attach(chain[1], decoder);
    m_clipper.attach(decoder);
    input.setPad(staticPad(queue, "sink"));
    outputPin()->setPad(staticPad(converter, "src"));
    return kStatusOk;
}

// On two cores, a single stream decodes on both, and two streams on one each.
void VideoDecoder::beforeFirstRun(int videoStreams) {
    for (const auto& element : elements()) {
        if (hasProperty(element.get(), "max-threads"))
            g_object_set(element.get(), "max-threads", videoStreams > 1 ? 1 : 2, nullptr);
    }
}

bool VideoDecoder::containerSize(std::int32_t* width, std::int32_t* height) const {
    const Pin* upstream = inputPin()->peer();
    return upstream && sizeInCaps(upstream->caps().get(), width, height);
}

SampleGrabber::SampleGrabber() {
    GstElement* filter = addElement("capsfilter");
    addPin(u"Input", PinDirection::Input).setPad(staticPad(filter, "sink"));
    addPin(u"Output", PinDirection::Output).setPad(staticPad(filter, "src"));
    m_probe = gst_pad_add_probe(outputPin()->pad(), GST_PAD_PROBE_TYPE_BUFFER, frameArrived, this, nullptr);
}

SampleGrabber::~SampleGrabber() {
    leavePipeline();
}

Status SampleGrabber::SetMediaType(const MediaType* type) {
    if (!type || type->major != kMediaTypeVideo || type->subtype != kMediaSubtypeYuy2)
        return kStatusTypeNotAccepted;
    m_type = *type;
    const CapsHandle caps(gst_caps_from_string("video/x-raw,format=YUY2"));
    g_object_set(elements().front().get(), "caps", caps.get(), nullptr);
    return kStatusOk;
}

Status SampleGrabber::SetBufferSamples(bool buffer) {
    const std::scoped_lock lock(m_keptMutex);
    m_keeps = buffer;
    return kStatusOk;
}

Status SampleGrabber::SetCallback(ISampleGrabberCB* callback, GrabberCallback kind) {
    if (callback && kind != GrabberCallback::Buffer)
        return kStatusInvalidArgument;
    const std::scoped_lock lock(m_callbackMutex);
    m_callback = callback;
    return kStatusOk;
}

Status SampleGrabber::GetConnectedMediaType(MediaType* type) {
    if (!inputPin()->peer())
        return kStatusNotConnected;
    *type = m_type;
    return kStatusOk;
}

Status SampleGrabber::GetCurrentBuffer(std::int32_t* size, std::uint8_t* buffer) {
    BufferHandle kept;
    {
        const std::scoped_lock lock(m_keptMutex);
        if (!m_keeps || !m_kept)
            return kStatusWrongState;
        kept = share(m_kept.get());
    }
    const gsize length = gst_buffer_get_size(kept.get());
    if (buffer && static_cast<gsize>(*size) < length)
        return kStatusInvalidArgument;
    *size = static_cast<std::int32_t>(length);
    if (buffer)
        gst_buffer_extract(kept.get(), 0, buffer, length);
    return kStatusOk;
}

// Streaming thread.
GstPadProbeReturn SampleGrabber::frameArrived(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* grabber = static_cast<SampleGrabber*>(self);
    GstBuffer* frame = grabber->filtered(GST_PAD_PROBE_INFO_BUFFER(info));
    GST_PAD_PROBE_INFO_DATA(info) = frame;
    const std::scoped_lock lock(grabber->m_keptMutex);
    if (grabber->m_keeps)
        grabber->m_kept = share(frame);
    return GST_PAD_PROBE_OK;
}

GstBuffer* SampleGrabber::filtered(GstBuffer* frame) {
    const std::scoped_lock lock(m_callbackMutex);
    if (!m_callback)
        return frame;
    frame = gst_buffer_make_writable(frame);
    GstMapInfo map;
    if (gst_buffer_map(frame, &map, GST_MAP_READWRITE)) {
        const GstClockTime time = GST_BUFFER_PTS_IS_VALID(frame) ? GST_BUFFER_PTS(frame) : 0;
        mayFail(answerToC(kStatusFail, [&] {
            return m_callback->BufferCB(static_cast<double>(time) / GST_SECOND, map.data,
                                        static_cast<std::int32_t>(map.size));
        }));
        gst_buffer_unmap(frame, &map);
    }
    return frame;
}

ColourConverter::ColourConverter() {
    GstElement* pass = addElement("identity");
    g_object_set(pass, "silent", TRUE, nullptr);
    addPin(u"XForm In", PinDirection::Input).setPad(staticPad(pass, "sink"));
    addPin(u"XForm Out", PinDirection::Output).setPad(staticPad(pass, "src"));
}

VideoRenderer::VideoRenderer() : m_slot(std::make_shared<FrameSlot>()) {
    GstElement* sink = addElement("appsink");
    g_object_set(sink, "max-buffers", 1U, "drop", TRUE, "qos", TRUE, "max-lateness", kMaxLateness,
                 "enable-last-sample", FALSE, nullptr);
    FrameSlot::connectTo(m_slot, GST_APP_SINK(sink));
    addPin(u"VMR Input0", PinDirection::Input).setPad(staticPad(sink, "sink"));
}

VideoRenderer::~VideoRenderer() {
    leavePipeline();
    delete m_window.data();
}

void VideoRenderer::holdPicture(bool on) {
    if (on)
        m_slot->hold();
    else
        m_slot->release();
}

Status VideoRenderer::GetVideoSize(std::int32_t* width, std::int32_t* height) {
    if (!isJoined())
        return kStatusNotConnected;
    if (const QSize decoded = m_slot->frameSize(); !decoded.isEmpty()) {
        *width = decoded.width();
        *height = decoded.height();
        return kStatusOk;
    }
    for (const Pin* pin = inputPin(); pin && pin->peer(); pin = pin->peer()->filter().inputPin()) {
        const auto* decoder = dynamic_cast<VideoDecoder*>(&pin->peer()->filter());
        if (decoder)
            return decoder->containerSize(width, height) ? kStatusOk : kStatusFail;
    }
    return kStatusNotConnected;
}

Status VideoRenderer::put_AutoShow(bool) {
    return isJoined() ? kStatusOk : kStatusNotConnected; // the window never shows itself
}

Status VideoRenderer::put_Owner(WindowToken owner) {
    if (!isJoined())
        return kStatusNotConnected;
    auto* host = reinterpret_cast<QWidget*>(owner);
    if (m_window && m_window->parentWidget() == host)
        return kStatusOk;
    delete m_window.data();
    if (host)
        m_window = new VideoWindow(m_slot, host);
    return kStatusOk;
}

Status VideoRenderer::put_WindowStyle(std::uint32_t style) {
    return style == kWindowStyleChild ? kStatusOk : kStatusInvalidArgument;
}

// Mouse and keyboard always go to the owner.
Status VideoRenderer::put_MessageDrain(WindowToken) {
    return isJoined() ? kStatusOk : kStatusNotConnected;
}

template <typename Change>
Status VideoRenderer::changeWindow(Change&& change) {
    if (!m_window)
        return kStatusNotConnected;
    change(*m_window);
    return kStatusOk;
}

Status VideoRenderer::SetWindowPosition(std::int32_t left, std::int32_t top, std::int32_t width,
                                        std::int32_t height) {
    return changeWindow([=](VideoWindow& window) { window.setGeometry(left, top, width, height); });
}

Status VideoRenderer::put_Left(std::int32_t left) {
    return changeWindow([=](VideoWindow& window) { window.move(left, window.y()); });
}

Status VideoRenderer::put_Top(std::int32_t top) {
    return changeWindow([=](VideoWindow& window) { window.move(window.x(), top); });
}

Status VideoRenderer::put_Width(std::int32_t width) {
    return changeWindow([=](VideoWindow& window) { window.resize(width, window.height()); });
}

Status VideoRenderer::put_Height(std::int32_t height) {
    return changeWindow([=](VideoWindow& window) { window.resize(window.width(), height); });
}

Status VideoRenderer::put_Visible(bool visible) {
    return changeWindow([=](VideoWindow& window) { window.setVisible(visible); });
}

} // namespace ql240::gstreamer
