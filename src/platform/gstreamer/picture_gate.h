// Ends the stream before the decoder if a frame is too large, by the size that the parser found, the size in
// a JPEG header, and the largest size in the parameter sets, of which the parser reports only the last.
// Removes the container's size from the caps, since a parser prefers it to the stream's own. Attached on the
// interface thread, works on the streaming thread.
#pragma once

#include <optional>

#include "platform/gstreamer/gst_handles.h"
#include "platform/gstreamer/parameter_sets.h"

namespace ql240::gstreamer {

class PictureGate {
public:
    ~PictureGate();
    // Without a parser, `parser` is the decoder.
    void attach(GstElement* parser, GstElement* decoder);

private:
    static GstPadProbeReturn beforeParser(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn beforeDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    void takeCaps(GstEvent* event);
    bool isOpenFor(GstBuffer* picture);

    PadHandle m_parserSink;
    PadHandle m_decoderSink;
    gulong m_parserProbe = 0;
    gulong m_decoderProbe = 0;

    // Streaming thread.
    bool m_isOpen = true;
    bool m_isJpeg = false;
    std::optional<ParameterSets> m_sets;
};

} // namespace ql240::gstreamer
