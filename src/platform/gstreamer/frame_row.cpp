#include "platform/gstreamer/frame_row.h"

#include <algorithm>

#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

// 25 MB at 1080p; fewer of larger frames, but always the last but one, too, which fills a gap.
constexpr std::size_t kMost = 8;
constexpr std::size_t kFewest = 2;
// Time stamps are rounded to the container's timescale; smaller gaps between frames are ignored.
constexpr GstClockTime kGapTolerance = GST_MSECOND;

GstClockTime beginOf(const BufferHandle& frame) {
    return GST_BUFFER_PTS(frame.get());
}

GstClockTime endOf(const BufferHandle& frame) {
    return beginOf(frame) +
           (GST_BUFFER_DURATION_IS_VALID(frame.get()) ? GST_BUFFER_DURATION(frame.get()) : 0);
}

} // namespace

void FrameRow::add(BufferHandle frame, GstClockTime wanted) {
    if (endOf(frame) + kMost * (endOf(frame) - beginOf(frame)) < wanted)
        m_frames.clear();
    const std::size_t room =
        limits::kFrameRowBytes / std::max<std::size_t>(1, gst_buffer_get_size(frame.get()));
    m_frames.push_back(std::move(frame));
    while (m_frames.size() > std::clamp(room, kFewest, kMost))
        m_frames.pop_front();
}

bool FrameRow::reachesBackTo(GstClockTime ns) const {
    return !m_frames.empty() && beginOf(m_frames.front()) <= ns;
}

std::optional<FrameRow::Shown> FrameRow::at(GstClockTime ns) const {
    const auto next = std::find_if(m_frames.begin(), m_frames.end(), [ns](const BufferHandle& frame) {
        return beginOf(frame) >= ns || endOf(frame) > ns;
    });
    if (next == m_frames.end())
        return std::nullopt;
    if (next != m_frames.begin() && beginOf(*next) > ns + kGapTolerance) {
        const auto before = std::prev(next);
        return Shown{before->get(), beginOf(*before), beginOf(*next)};
    }
    return Shown{next->get(), beginOf(*next), endOf(*next)};
}

FrameRow::Shown FrameRow::last(GstClockTime end) const {
    return {m_frames.back().get(), beginOf(m_frames.back()), end};
}

} // namespace ql240::gstreamer
