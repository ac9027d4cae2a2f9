// The last few consecutively decoded frames, and which of them is shown at a given time. Drops the oldest
// first. One thread at a time.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>

#include "platform/gstreamer/gst_handles.h"

namespace ql240::gstreamer {

class FrameRow {
public:
    // A frame and its display interval in ns.
    struct Shown {
        GstBuffer* frame;
        GstClockTime begin;
        GstClockTime end;
        bool holds(GstClockTime ns) const { return begin <= ns && ns < end; }
    };

    // Keeps only the newest of the frames far before `wanted`.
    void add(BufferHandle frame, GstClockTime wanted);
    void clear() { m_frames.clear(); }
    bool isEmpty() const { return m_frames.empty(); }
    bool reachesBackTo(GstClockTime ns) const;
    // Nothing if the frame at `ns` hasn't been added yet.
    std::optional<Shown> at(GstClockTime ns) const;
    // The last frame, with `end` as its end.
    Shown last(GstClockTime end) const;

private:
    std::deque<BufferHandle> m_frames;
};

} // namespace ql240::gstreamer
