#include "clips/cut/mp4_stretch.h"

#include <algorithm>
#include <limits>

#include "platform/limits.h"

namespace ql240::cut {
namespace {

using containers::ByteSource;
using containers::Mp4Sample;
using containers::Mp4SampleCursor;
using containers::Mp4Track;

constexpr std::int64_t kMostSeconds = INT64_C(1) << 32;
constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();

std::int64_t shownAt(const Mp4Sample& sample) {
    return sample.time + sample.compositionOffset;
}

// Calls `visit` with each sample's number, from 0, and the sample.
template <typename Visitor>
bool forEach(QFileDevice& file, const Mp4Track& track, QString& problem, const Visitor& visit) {
    ByteSource source(file, {limits::kRecordBytes, limits::kRecordReads});
    Mp4SampleCursor cursor(source, track);
    std::int64_t number = 0;
    while (const std::optional<Mp4Sample> sample = cursor.next())
        visit(number++, *sample);
    problem = cursor.problem();
    return problem.isEmpty();
}

// The piece's first and last frame by presentation time.
struct Frames {
    struct Frame {
        std::int64_t number = -1;
        std::int64_t time = 0;
        std::int64_t end = 0;
    };
    Frame first; // number -1: none
    Frame last;
    std::int64_t after = kLast; // presentation time of the frame after the last one
};

class FrameFinder {
public:
    FrameFinder(std::int64_t from, std::int64_t to) : m_from(from), m_to(to) {}

    void add(std::int64_t number, const Mp4Sample& sample) {
        const std::int64_t time = shownAt(sample);
        const Frames::Frame frame{number, time, time + sample.duration};
        take(frame, m_from, m_frames.first);
        take(frame, m_to, m_frames.last);
        if (time > m_to)
            m_frames.after = std::min(m_frames.after, time);
    }
    const Frames& frames() const { return m_frames; }

private:
    // Selects the last frame at or before `time`; if there is none, the first frame.
    static void take(const Frames::Frame& frame, std::int64_t time, Frames::Frame& best) {
        const bool isUpTo = frame.time <= time;
        const bool isBestUpTo = best.time <= time;
        const bool isBetter =
            isUpTo ? !isBestUpTo || frame.time > best.time : !isBestUpTo && frame.time < best.time;
        if (best.number < 0 || isBetter)
            best = frame;
    }

    std::int64_t m_from;
    std::int64_t m_to;
    Frames m_frames;
};

void extend(Mp4Stretch& stretch, std::int64_t number, const Mp4Sample& sample) {
    if (stretch.count == 0) {
        stretch.first = number;
        stretch.decodeStart = sample.time;
    }
    stretch.count = number - stretch.first + 1;
    stretch.bytes += sample.size;
}

} // namespace

std::int64_t rescaled(std::int64_t value, std::int64_t from, std::int64_t to) {
    std::int64_t whole = value / from;
    std::int64_t rest = value % from;
    if (rest < 0) {
        --whole;
        rest += from;
    }
    return std::clamp(whole, -kMostSeconds, kMostSeconds) * to + rest * to / from;
}

TrackClock::TrackClock(const Mp4Track& track, std::uint32_t movieTimescale, std::int64_t clipTicks)
    : m_timescale(track.layout.timescale), m_clipTicks(clipTicks), m_mediaStart(track.layout.mediaStart) {
    const auto inClip = [&](std::uint64_t ticks) {
        const auto most = std::min<std::uint64_t>(ticks, sensorfiles::kMaxTicks);
        return rescaled(static_cast<std::int64_t>(most), movieTimescale, clipTicks);
    };
    m_mediaStart = std::clamp(m_mediaStart, INT64_C(0), sensorfiles::kMaxTicks);
    m_delay = inClip(track.layout.emptyEdit);
    if (track.layout.editLength > 0)
        m_end = m_delay + inClip(track.layout.editLength);
}

std::int64_t TrackClock::toClip(std::int64_t ticks) const {
    return rescaled(ticks - m_mediaStart, m_timescale, m_clipTicks) + m_delay;
}

std::int64_t TrackClock::toTrack(std::int64_t clipTicks) const {
    const std::int64_t ticks = rescaled(clipTicks - m_delay, m_clipTicks, m_timescale) + m_mediaStart;
    return toClip(ticks + 1) <= clipTicks ? ticks + 1 : ticks;
}

std::optional<Mp4Stretch> pictures(QFileDevice& file, const Mp4Track& track, const TrackClock& clock,
                                   std::int64_t from, std::int64_t to, QString& problem) {
    FrameFinder finder(clock.toTrack(from), clock.toTrack(to));
    if (!forEach(file, track, problem, [&](std::int64_t n, const Mp4Sample& s) { finder.add(n, s); }))
        return std::nullopt;
    const Frames& frames = finder.frames();
    Mp4Stretch stretch;
    Mp4Stretch needed; // up to the last displayed frame
    const bool isRead = forEach(file, track, problem, [&](std::int64_t number, const Mp4Sample& sample) {
        const bool isUsable = shownAt(sample) <= frames.first.time || stretch.count == 0;
        if (number <= frames.first.number && sample.isSync && isUsable)
            stretch = {};
        extend(stretch, number, sample);
        if (number <= frames.first.number || shownAt(sample) <= frames.last.time)
            needed = stretch;
    });
    if (!isRead)
        return std::nullopt;
    needed.shownFrom = frames.first.time;
    needed.shownTo = frames.after != kLast ? frames.after : frames.last.end;
    return needed;
}

std::optional<Mp4Stretch> sound(QFileDevice& file, const Mp4Track& track, const TrackClock& clock,
                                std::int64_t from, std::int64_t to, QString& problem) {
    const std::int64_t begin = clock.toTrack(from);
    Mp4Stretch stretch;
    std::optional<Mp4Sample> before;
    const bool isRead = forEach(file, track, problem, [&](std::int64_t number, const Mp4Sample& sample) {
        const std::int64_t end = sample.time + sample.duration;
        if (end > begin && clock.toClip(sample.time) < to) {
            if (stretch.count == 0 && before)
                extend(stretch, number - 1, *before);
            extend(stretch, number, sample);
            stretch.shownTo = end;
        }
        before = sample;
    });
    stretch.shownFrom = stretch.decodeStart;
    return isRead ? std::optional(stretch) : std::nullopt;
}

std::optional<Mp4Stretch> records(QFileDevice& file, const Mp4Track& track, const TrackClock& clock,
                                  std::int64_t from, std::int64_t to, QString& problem) {
    Mp4Stretch stretch;
    const bool isRead = forEach(file, track, problem, [&](std::int64_t number, const Mp4Sample& sample) {
        const std::int64_t time = clock.toClip(sample.time);
        if (time < from || time >= to)
            return;
        extend(stretch, number, sample);
        stretch.shownTo = sample.time + sample.duration;
    });
    stretch.shownFrom = stretch.decodeStart;
    return isRead ? std::optional(stretch) : std::nullopt;
}

} // namespace ql240::cut
