#include "platform/gstreamer/picture_gate.h"

#include "platform/gstreamer/jpeg_size.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

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
    m_isOpen = !limits::isPictureTooLarge(width, height);
    m_isJpeg = gst_structure_has_name(stream, "image/jpeg");
}

bool PictureGate::isOpenFor(GstBuffer* picture) const {
    return m_isOpen && (!m_isJpeg || jpegPixels(picture) <= limits::kPicturePixels);
}

} // namespace ql240::gstreamer
