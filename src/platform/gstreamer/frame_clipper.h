// Cuts a decoder's frames to the segment that was asked for, so that after a seek the first frame out is the
// one whose interval holds the target, also in a gap or past the last frame, where the decoder alone would
// give none. It widens the segment that the decoder sees and restores it behind it. Attached on the interface
// thread, works on the decoder's streaming thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class FrameClipper {
public:
    ~FrameClipper();
    void attach(GstElement* decoder);

    // For the next segment, shows the last frame before `ns`, though the segment begins earlier. Before the
    // seek is sent.
    void cutAt(std::int64_t ns) { m_cutAt = ns; }

    // Where the stream ends, in ns, if the last seek went past that and gave no frame at all; 0 otherwise.
    // Any thread.
    std::int64_t starvedAtEnd() const { return m_starvedAtEnd; }

private:
    static GstPadProbeReturn beforeDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn behindDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    GstPadProbeReturn handleEvent(GstPadProbeInfo* info);
    GstPadProbeReturn handleFrame(GstPadProbeInfo* info);
    void widen(GstPadProbeInfo* info);
    void restore(GstPadProbeInfo* info);
    void reset();
    // Pushes the last frame before the target, lasting until `end` (ns).
    void pushKept(GstClockTime end);

    PadHandle m_sink;
    PadHandle m_source;
    gulong m_sinkProbe = 0;
    gulong m_sourceProbe = 0;

    // Streaming thread.
    std::deque<Handle<GstEvent>> m_originals;
    GstSegment m_segment{};
    GstClockTime m_cut = 0; // frames that end before are cut
    BufferHandle m_kept;
    bool m_hasSegment = false;
    bool m_framePassed = false;

    std::atomic<std::int64_t> m_starvedAtEnd{0};
    std::atomic<std::int64_t> m_cutAt{0};
};

} // namespace ql240::gstreamer
