// Limits the input that an element accepts without any output, and ends the stream past that: a parser that
// finds no end of a frame keeps all its input and scans it again for each buffer. Attached on the interface
// thread, works on the streaming thread.
#pragma once

#include <cstddef>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class Backlog {
public:
    struct Limit {
        std::size_t bytes = 0;
        std::size_t pieces = 0;
    };

    explicit Backlog(Limit limit) : m_limit(limit) {}
    ~Backlog();
    // Watches the elements from `first` to `last`. Call before adding probes there that drop buffers.
    void attach(GstElement* first, GstElement* last);

private:
    static GstPadProbeReturn goesIn(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn comesOut(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    bool takes(std::size_t bytes);

    const Limit m_limit;
    PadHandle m_in;
    PadHandle m_out;
    gulong m_inProbe = 0;
    gulong m_outProbe = 0;

    // Streaming thread.
    std::size_t m_bytes = 0;
    std::size_t m_pieces = 0;
};

} // namespace ql240::gstreamer
