// Clips a decoder's frames to the requested segment, so that the first frame after a seek is the one whose
// interval contains the target, even in a gap or past the last frame, where the decoder alone would output
// none. It widens the segment before the decoder and restores it after the decoder. While the clip is paused
// it can move to another frame without a seek: to a recent one, or by decoding further. Attached on the
// interface thread, works on the decoder's streaming thread.
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

    // In the next segment, shows the last frame before `ns` of the clip although the segment starts earlier.
    // Call before sending the seek.
    void cutAt(std::int64_t ns) { m_cutAt = ns; }

    // The stream's end in the clip, in ns, if the last seek went past it and produced no frame; otherwise 0.
    // Any thread.
    std::int64_t starvedAtEnd() const { return m_starvedAtEnd; }

    // Whether both the last frame played and the one after it end before `ns`, or the frame before the last
    // one begins after `ns`. Interface thread.
    bool isOff(GstClockTime ns);

    // Interface thread, while the clip is paused after a seek has settled. Whether the frame at `ns` is
    // available quickly without a seek. If so, beginMove flushes the current frame and returns the clipper's
    // lock; finishMove, under that lock, lets the new frame through, after which the pipeline prerolls again.
    // No lock: the current frame already shows `ns`.
    bool canMoveTo(GstClockTime ns);
    [[nodiscard]] std::unique_lock<std::mutex> beginMove(GstClockTime ns);
    void finishMove();
    // Since the last seek; the stream is then no longer in step with the others.
    bool hasMoved() const { return m_hasMoved; }

private:
    static GstPadProbeReturn beforeDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn afterDecoder(GstPad* pad, GstPadProbeInfo* info, gpointer self);
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
    PadHandle m_next; // the sink pad downstream, for frames pushed outside the decoder's own flow, too
    gulong m_sinkProbe = 0;
    gulong m_sourceProbe = 0;

    // Streaming thread.
    std::deque<Handle<GstEvent>> m_originals;

    // Streaming thread, and the interface thread for a move; guarded by m_mutex.
    std::mutex m_mutex;
    GstSegment m_segment{};
    std::int64_t m_shift = 0;  // time stamp minus time in the clip
    GstClockTime m_sought = 0; // the segment's start before any move
    GstClockTime m_cut = 0;    // frames that end before this are dropped
    FrameRow m_row;            // the frames since the last seek; empty once playing
    std::optional<FrameRow::Shown> m_shown;
    std::optional<GstClockTime> m_nextOver; // when the frame after the last one played ends
    GstClockTime m_last = 0;                // start of the last one played
    GstClockTime m_beforeLast = 0;          // start of the one before it
    bool m_hasSegment = false;
    bool m_framePassed = false;
    bool m_ended = false;
    bool m_moved = false; // the frame that waits in the sink will be returned, and another one is wanted

    std::atomic<bool> m_hasMoved{false};
    std::atomic<std::int64_t> m_starvedAtEnd{0};
    std::atomic<std::int64_t> m_cutAt{0};
};

} // namespace ql240::gstreamer
