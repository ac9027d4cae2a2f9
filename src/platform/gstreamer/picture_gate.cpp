#include "platform/gstreamer/picture_gate.h"

#include "platform/gstreamer/jpeg_size.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

// Empty if mapping fails.
class MappedBytes {
public:
    explicit MappedBytes(GstBuffer* buffer) : m_buffer(buffer) {
        m_isMapped = gst_buffer_map(buffer, &m_map, GST_MAP_READ);
    }
    ~MappedBytes() {
        if (m_isMapped)
            gst_buffer_unmap(m_buffer, &m_map);
    }
    MappedBytes(const MappedBytes&) = delete;
    MappedBytes& operator=(const MappedBytes&) = delete;

    operator std::span<const std::uint8_t>() const {
        return m_isMapped ? std::span<const std::uint8_t>(m_map.data, m_map.size)
                          : std::span<const std::uint8_t>();
    }

private:
    GstBuffer* m_buffer;
    GstMapInfo m_map{};
    bool m_isMapped = false;
};

} // namespace

PictureGate::~PictureGate() {
    if (m_parserSink)
        gst_pad_remove_probe(m_parserSink.get(), m_parserProbe);
    if (m_decoderSink)
        gst_pad_remove_probe(m_decoderSink.get(), m_decoderProbe);
}

void PictureGate::attach(GstElement* parser, GstElement* decoder) {
    m_decoderSink = staticPad(decoder, "sink");
    const auto all =
        static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_BUFFER);
    m_decoderProbe = gst_pad_add_probe(m_decoderSink.get(), all, beforeDecoder, this, nullptr);
    if (parser == decoder)
        return;
    m_parserSink = staticPad(parser, "sink");
    m_parserProbe = gst_pad_add_probe(m_parserSink.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, beforeParser,
                                      this, nullptr);
}

GstPadProbeReturn PictureGate::beforeParser(GstPad*, GstPadProbeInfo* info, gpointer) {
    GstEvent* event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS)
        return GST_PAD_PROBE_OK;
    GstCaps* said = nullptr;
    gst_event_parse_caps(event, &said);
    const CapsHandle caps(gst_caps_copy(said));
    gst_structure_remove_fields(gst_caps_get_structure(caps.get(), 0), "width", "height", nullptr);
    GstEvent* bare = gst_event_new_caps(caps.get());
    gst_event_set_seqnum(bare, gst_event_get_seqnum(event));
    gst_event_unref(event);
    GST_PAD_PROBE_INFO_DATA(info) = bare;
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn PictureGate::beforeDecoder(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* gate = static_cast<PictureGate*>(self);
    if (!(GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER)) {
        if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_CAPS)
            gate->takeCaps(GST_PAD_PROBE_INFO_EVENT(info));
        return GST_PAD_PROBE_OK;
    }
    if (gate->isOpenFor(GST_PAD_PROBE_INFO_BUFFER(info)))
        return GST_PAD_PROBE_OK;
    gst_buffer_unref(GST_PAD_PROBE_INFO_BUFFER(info));
    GST_PAD_PROBE_INFO_FLOW_RETURN(info) = GST_FLOW_ERROR;
    return GST_PAD_PROBE_HANDLED;
}

void PictureGate::takeCaps(GstEvent* event) {
    GstCaps* caps = nullptr;
    gst_event_parse_caps(event, &caps);
    const GstStructure* stream = gst_caps_get_structure(caps, 0);
    gint width = 0;
    gint height = 0;
    gst_structure_get_int(stream, "width", &width);
    gst_structure_get_int(stream, "height", &height);
    m_isJpeg = gst_structure_has_name(stream, "image/jpeg");
    m_sets.reset();
    if (gst_structure_has_name(stream, "video/x-h264"))
        m_sets.emplace(ParameterCodec::H264);
    else if (gst_structure_has_name(stream, "video/x-h265"))
        m_sets.emplace(ParameterCodec::H265);
    const GValue* head = gst_structure_get_value(stream, "codec_data");
    GstBuffer* bytes = head && GST_VALUE_HOLDS_BUFFER(head) ? gst_value_get_buffer(head) : nullptr;
    m_isOpen = !limits::isPictureTooLarge(width, height) &&
               !(m_sets && bytes && m_sets->isHeadTooLarge(MappedBytes(bytes)));
}

bool PictureGate::isOpenFor(GstBuffer* picture) {
    if (!m_isOpen)
        return false;
    if (m_isJpeg)
        return !isJpegTooLarge(picture);
    return !m_sets || !m_sets->isPieceTooLarge(MappedBytes(picture));
}

} // namespace ql240::gstreamer
