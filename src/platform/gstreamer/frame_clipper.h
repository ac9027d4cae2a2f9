// Cuts a decoder's frames to the segment that was asked for, so that after a seek the first frame out is the
// one whose interval holds the target, also in a gap or past the last frame, where the decoder alone would
// give none. It widens the segment that the decoder sees and restores it behind it. While the clip is paused
// it can move to another frame by itself: to one just passed, or by decoding on. Attached on the interface
// thread, works on the decoder's streaming thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "platform/gstreamer/frame_row.h"
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

    // Interface thread, while the clip is paused after a seek that has settled. Whether the frame at `ns` can
    // be had without a seek, soon; then moveTo goes there and says whether another frame is on its way,
    // behind which the pipeline settles again. The streams don't run in step any more until the next seek.
    bool canMoveTo(GstClockTime ns);
    bool moveTo(GstClockTime ns);

private:
    static GstPadProbeReturn beforeDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn behindDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    GstPadProbeReturn handleEvent(GstPadProbeInfo* info);
    GstPadProbeReturn handleFrame(GstPadProbeInfo* info);
    void widen(GstPadProbeInfo* info);
    void restore(GstPadProbeInfo* info);
    void reset();
    void handleEnd();
    std::optional<GstFlowReturn> pushWanted(std::unique_lock<std::mutex>& lock);
    GstFlowReturn push(const FrameRow::Shown& shown, std::unique_lock<std::mutex>& lock);
    GstClockTime stampOf(GstClockTime ns) const;
    BufferHandle cut(const FrameRow::Shown& shown) const;

    PadHandle m_sink;
    PadHandle m_source;
    PadHandle m_next; // takes the frames, also those that don't come out of the decoder just now
    gulong m_sinkProbe = 0;
    gulong m_sourceProbe = 0;

    // Streaming thread.
    std::deque<Handle<GstEvent>> m_originals;

    // Streaming thread, and the interface thread for a move; guarded by m_mutex.
    std::mutex m_mutex;
    GstSegment m_segment{};
    GstClockTime m_cut = 0; // frames that end before are cut
    FrameRow m_row;         // since the last seek; empty as soon as time goes on
    std::optional<FrameRow::Shown> m_shown;
    bool m_hasSegment = false;
    bool m_framePassed = false;
    bool m_ended = false;
    bool m_moved = false; // the frame that waits at the sink comes back, and another one is wanted

    std::atomic<std::int64_t> m_starvedAtEnd{0};
    std::atomic<std::int64_t> m_cutAt{0};
};

} // namespace ql240::gstreamer
