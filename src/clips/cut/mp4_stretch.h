// The samples of a track that a piece needs, and their presentation times. Any thread.
#pragma once

#include "clips/containers/mp4_movie.h"

namespace ql240::cut {

// Converts between ticks of a track and of a clip, which are fine enough for all its tracks.
class TrackClock {
public:
    // `clipTicks`: ticks of the clip per second.
    TrackClock(const containers::Mp4Track& track, std::uint32_t movieTimescale, std::int64_t clipTicks);

    std::int64_t toClip(std::int64_t ticks) const;
    std::int64_t toTrack(std::int64_t clipTicks) const; // rounded down
    // The end of the track by its edit list, in ticks of the clip.
    std::optional<std::int64_t> end() const { return m_end; }

private:
    std::int64_t m_timescale;
    std::int64_t m_clipTicks; // per second
    std::int64_t m_mediaStart;
    std::int64_t m_delay;
    std::optional<std::int64_t> m_end;
};

std::int64_t rescaled(std::int64_t value, std::int64_t from, std::int64_t to); // rounded down

// Consecutive samples of a track. Times in ticks of the track.
struct Mp4Stretch {
    std::int64_t first = 0; // the number of the cursor's step, from 0
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    std::int64_t decodeStart = 0;
    // What it shows, before the piece's start and end limit that.
    std::int64_t shownFrom = 0;
    std::int64_t shownTo = 0;
};

// From the frame displayed at `from` to the one displayed at `to`, in ticks of the clip, with all frames
// needed to decode them. Nothing, with the reason in `problem`, if the tables are invalid; so for the next
// two.
std::optional<Mp4Stretch> pictures(QFileDevice& file, const containers::Mp4Track& track,
                                   const TrackClock& clock, std::int64_t from, std::int64_t to,
                                   QString& problem);
// The sound from `from` to before `to`, and the preceding sample, which the decoder needs.
std::optional<Mp4Stretch> sound(QFileDevice& file, const containers::Mp4Track& track, const TrackClock& clock,
                                std::int64_t from, std::int64_t to, QString& problem);
// The samples that begin from `from` to before `to`.
std::optional<Mp4Stretch> records(QFileDevice& file, const containers::Mp4Track& track,
                                  const TrackClock& clock, std::int64_t from, std::int64_t to,
                                  QString& problem);

} // namespace ql240::cut
