// The clips of a folder on one time axis, by the camera's clock, so that a range may reach from one clip into
// the next. Times on the axis in milliseconds since 1970, as if the camera's local time were UTC. A clip
// whose name has no time stamp lies on the axis too, apart from all others. Plain value; any thread.
#pragma once

#include <QHash>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace ql240 {

struct TimeRange {
    std::int64_t fromMs = 0;
    std::int64_t toMs = 0;

    bool isEmpty() const { return toMs <= fromMs; }
    friend bool operator==(const TimeRange&, const TimeRange&) = default;
};

class ClipTimeline {
public:
    // The part of a clip that lies in a range, in milliseconds from the clip's start.
    struct Part {
        QString clip;
        TimeRange range;
    };

    struct Clip {
        QString path;
        std::optional<std::int64_t> startMs; // nothing if the clip's name has no time stamp
        std::int64_t lengthMs = 0;           // 0 while it is unknown
    };

    ClipTimeline() = default;
    // In the folder's order.
    explicit ClipTimeline(const std::vector<Clip>& clips);

    void setLength(const QString& clip, std::int64_t lengthMs);

    // Nothing for a clip that isn't on it.
    std::optional<std::int64_t> timeOf(const QString& clip, std::int64_t ms) const;
    // Every clip that the range touches, sorted by start: event and driving clips of the same minute alike.
    std::vector<Part> partsOf(TimeRange range) const;
    // The range without what no clip covers at its ends.
    TimeRange clamped(TimeRange range) const;

private:
    struct Span {
        QString clip;
        std::int64_t beginMs;
        std::int64_t lengthMs;
    };

    std::vector<Span> m_spans; // sorted by begin
    QHash<QString, std::size_t> m_index;
};

} // namespace ql240
