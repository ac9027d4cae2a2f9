// Counts what goes into an element while nothing comes out, and ends the stream past a limit: a parser that
// finds no end of a picture keeps all it gets, and looks through it again with each piece. Attached on the
// interface thread, works on the streaming thread.
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
    // Of the elements from `first` to `last`. Before any probe there that lets nothing pass.
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
