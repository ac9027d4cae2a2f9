// Decoded frames that follow each other without a gap in decoding, and which of them a point in time shows.
// It holds the last few; the oldest go first. One thread at a time.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class FrameRow {
public:
    // A frame and the interval, in ns, in which it is to be seen.
    struct Shown {
        GstBuffer* frame;
        GstClockTime begin;
        GstClockTime end;
        bool holds(GstClockTime ns) const { return begin <= ns && ns < end; }
    };

    // Of frames far before `wanted` only the newest stays.
    void add(BufferHandle frame, GstClockTime wanted);
    void clear() { m_frames.clear(); }
    bool isEmpty() const { return m_frames.empty(); }
    bool reachesBackTo(GstClockTime ns) const;
    // None if the frame that `ns` shows is still to come.
    std::optional<Shown> at(GstClockTime ns) const;
    // The last one, lasting until `end`.
    Shown last(GstClockTime end) const;

private:
    std::deque<BufferHandle> m_frames;
};

} // namespace ql240::gstreamer
