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

    // For the next segment, shows the last frame before `ns` of the clip, though the segment begins earlier.
    // Before the seek is sent.
    void cutAt(std::int64_t ns) { m_cutAt = ns; }

    // Where in the clip the stream ends, in ns, if the last seek went past that and gave no frame at all; 0
    // otherwise. Any thread.
    std::int64_t starvedAtEnd() const { return m_starvedAtEnd; }

    // Whether the last frame that playing let through, and the next one too, end before `ns`, or the one
    // before it begins later already. Interface thread.
    bool isOff(GstClockTime ns);

    // Interface thread, while the clip is paused after a seek that has settled. Whether the frame at `ns` can
    // be had without a seek, soon; then beginMove takes the picture off the screen and returns the clipper's
    // lock, under which finishMove lets the other one come; the pipeline settles behind that. No lock: the
    // picture shows `ns` already.
    bool canMoveTo(GstClockTime ns);
    [[nodiscard]] std::unique_lock<std::mutex> beginMove(GstClockTime ns);
    void finishMove();
    // Since the last seek: the stream isn't in step with the others any more.
    bool hasMoved() const { return m_hasMoved; }

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
    std::int64_t m_shift = 0;  // from the clip's time to time stamps
    GstClockTime m_sought = 0; // where the segment began before any move
    GstClockTime m_cut = 0;    // frames that end before are cut
    FrameRow m_row;            // since the last seek; empty as soon as time goes on
    std::optional<FrameRow::Shown> m_shown;
    std::optional<GstClockTime> m_nextOver; // when the frame after the last that playing let through ends
    GstClockTime m_last = 0;                // when that last one begins,
    GstClockTime m_beforeLast = 0;          // and the one before it
    bool m_hasSegment = false;
    bool m_framePassed = false;
    bool m_ended = false;
    bool m_moved = false; // the frame that waits at the sink comes back, and another one is wanted

    std::atomic<bool> m_hasMoved{false};
    std::atomic<std::int64_t> m_starvedAtEnd{0};
    std::atomic<std::int64_t> m_cutAt{0};
};

} // namespace ql240::gstreamer
