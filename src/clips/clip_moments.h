// The moments of a clip, as a list of a folder's moments shows them: what the camera classified, the shocks
// in its accelerations, and what the user marked. Plain values; any thread.
#pragma once

#include <map>

#include "clips/moments.h"

namespace ql240 {

struct Moment {
    enum class Kind { Event, Motion, Shock, Mark };

    Kind kind = Kind::Shock;
    QString clip;            // its path
    std::int64_t timeUs = 0; // from the clip's start; of a shock, its peak
    double sizeG = 0;        // only of a shock, as is its axis
    Shock::Axis axis = Shock::Axis::X;
    std::optional<RecordedFix> place;
    std::optional<std::int64_t> utcMs;
    std::optional<std::int64_t> cameraMs; // the camera's local time, as if it were UTC
};

// What a list of moments needs to know of a clip, without its record.
struct ClipMoments {
    std::vector<Moment> moments;          // sorted by time, the camera's classification first
    std::optional<std::int64_t> startMs;  // the camera's local time, as if it were UTC
    std::optional<std::int64_t> offsetMs; // the camera's time minus UTC
    std::int64_t lengthMs = 0;
};

ClipMoments momentsOf(const ClipRecord& record, const QString& path, std::int64_t lengthMs,
                      const ShockOptions& options = {});

// The camera's clock compared to UTC, for sorting clips with and without satellite times into one list. A
// clip without them gets the offset of the clip nearest to it by the camera's clock, since clocks get
// changed.
class CameraOffsets {
public:
    // A clip's start by its camera's clock, and that minus UTC; ignored unless both are known.
    void add(std::optional<std::int64_t> startMs, std::optional<std::int64_t> offsetMs);
    void add(const ClipMoments& clip) { add(clip.startMs, clip.offsetMs); }
    // Of the clip nearest to this start; nothing without one.
    std::optional<std::int64_t> at(std::optional<std::int64_t> startMs) const;
    // The sort key: UTC, as far as known. Moments without any time come last.
    std::int64_t orderOf(const Moment& moment) const;
    void sort(std::vector<Moment>& moments) const;

private:
    std::map<std::int64_t, std::int64_t> m_offsets; // by the clip's start
};

// A moment at this time of the clip, with its clocks and place.
Moment momentAt(const ClipRecord& record, const QString& path, Moment::Kind kind, std::int64_t timeUs);

} // namespace ql240
