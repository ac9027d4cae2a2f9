// Joins the records of several clips, given in the order in which they began, to one track: a new segment
// with each clip and after each lost fix. Where clips overlap in time (a driving clip and an event clip of
// the same minute) the one that began first counts. Keeps nothing of the records. Value.
#pragma once

#include "clips/track_export.h"

namespace ql240 {

class TrackJoiner {
public:
    struct Result {
        std::int64_t points = 0;
        std::int64_t leftOut = 0; // since an earlier clip has their time
        QString earlier;          // that clip
    };
    Result add(const ClipRecord& record, const QString& name, TrackWriter& writer);

private:
    // Up to when the clips so far reach, by one of the two clocks.
    struct Reach {
        std::optional<std::int64_t> endMs;
        QString clip;

        void extend(std::optional<std::int64_t> startMs, std::int64_t lengthUs, const QString& name);
    };

    // Up to when earlier clips have the record's time.
    std::int64_t coveredUs(const ClipRecord& record, QString& earlier) const;

    Reach m_bySatellites;
    Reach m_byName;
};

} // namespace ql240
