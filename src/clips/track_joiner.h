// Joins the records of several clips, passed in order of their starts, into one track, with a new segment for
// each clip and after each lost fix. Where clips overlap (a driving and an event clip of the same minute),
// the earlier clip wins. Doesn't keep the records. Value.
#pragma once

#include "clips/track_export.h"

namespace ql240 {

class TrackJoiner {
public:
    struct Result {
        std::int64_t points = 0;
        std::int64_t leftOut = 0; // because an earlier clip covers their times
        QString earlier;          // that clip
    };
    Result add(const ClipRecord& record, const QString& name, TrackWriter& writer);

private:
    // The unbroken run of clips that ends with the last one, by one of the two clocks.
    struct Reach {
        std::int64_t beginMs = 0;
        std::optional<std::int64_t> endMs;
        QString clip;

        void extend(std::optional<std::int64_t> startMs, std::int64_t lengthUs, const QString& name);
    };

    // How much of the record's beginning earlier clips cover.
    std::int64_t coveredUs(const ClipRecord& record, QString& earlier) const;

    Reach m_bySatellites;
    Reach m_byName;
};

} // namespace ql240
