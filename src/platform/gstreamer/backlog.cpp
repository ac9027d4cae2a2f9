#include "platform/gstreamer/backlog.h"

namespace ql240::gstreamer {

Backlog::~Backlog() {
    if (m_in)
        gst_pad_remove_probe(m_in.get(), m_inProbe);
    if (m_out)
        gst_pad_remove_probe(m_out.get(), m_outProbe);
}

void Backlog::attach(GstElement* first, GstElement* last) {
    m_in = staticPad(first, "sink");
    m_out = staticPad(last, "src");
    const auto all = static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_FLUSH);
    m_inProbe = gst_pad_add_probe(m_in.get(), all, goesIn, this, nullptr);
    m_outProbe = gst_pad_add_probe(m_out.get(), GST_PAD_PROBE_TYPE_BUFFER, comesOut, this, nullptr);
}

GstPadProbeReturn Backlog::goesIn(GstPad*, GstPadProbeInfo* info, gpointer self) {
    auto* backlog = static_cast<Backlog*>(self);
    if (!(GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER)) {
        if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_FLUSH_STOP)
            backlog->m_bytes = backlog->m_pieces = 0;
        return GST_PAD_PROBE_OK;
    }
    GstBuffer* piece = GST_PAD_PROBE_INFO_BUFFER(info);
    if (backlog->takes(gst_buffer_get_size(piece)))
        return GST_PAD_PROBE_OK;
    gst_buffer_unref(piece);
    GST_PAD_PROBE_INFO_FLOW_RETURN(info) = GST_FLOW_ERROR;
    return GST_PAD_PROBE_HANDLED;
}

// The buffer that exceeds the limit isn't accepted any more.
bool Backlog::takes(std::size_t bytes) {
    m_bytes += bytes;
    m_pieces += bytes > 0 ? 1 : 0;
    return m_bytes <= m_limit.bytes && m_pieces <= m_limit.pieces;
}

GstPadProbeReturn Backlog::comesOut(GstPad*, GstPadProbeInfo*, gpointer self) {
    auto* backlog = static_cast<Backlog*>(self);
    backlog->m_bytes = backlog->m_pieces = 0;
    return GST_PAD_PROBE_OK;
}

} // namespace ql240::gstreamer
