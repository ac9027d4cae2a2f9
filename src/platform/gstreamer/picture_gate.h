// Stands before a decoder and ends the stream at pictures that say they are too large: by the size that the
// parser read in them, by the one in a JPEG picture, and by the largest of those in parameter sets, of which
// the parser says the last alone. What the container says is dropped, for a parser believes it more than the
// pictures. Attached on the interface thread, works on the streaming thread.
#pragma once

#include <optional>

#include "platform/gstreamer/gst_handles.h"
#include "platform/gstreamer/parameter_sets.h"

namespace ql240::gstreamer {

class PictureGate {
public:
    ~PictureGate();
    // `parser` is the decoder itself where there is none.
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
