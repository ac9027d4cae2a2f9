// Iterates over a track's sample tables in small reads. One thread at a time; the source and the layout
// outlive the iterators.
#pragma once

#include <algorithm>

#include "clips/formats/clip_layout.h"

namespace ql240::sensorfiles {

inline constexpr std::int64_t kMaxTicks = INT64_C(1) << 52;

// The samples' start times and durations, in ticks of the track.
class SampleTimes {
public:
    struct Time {
        std::int64_t start;
        std::uint32_t duration;
    };

    SampleTimes(ByteSource& source, const TrackLayout& track) : m_entries(source, track.times) {}

    // Of the next `count` samples together; nothing at the end of the table or past kMaxTicks.
    std::optional<Time> next(std::uint32_t count = 1);

private:
    RangeReader m_entries;
    std::uint32_t m_left = 0;
    std::uint32_t m_delta = 0;
    std::int64_t m_time = 0;
};

class SampleSizes {
public:
    SampleSizes(ByteSource& source, const TrackLayout& track);

    // In bytes; nothing at the end of the table.
    std::optional<std::uint32_t> next();
    // Skips samples of a constant size.
    void skip(std::uint32_t count) { m_left -= std::min(m_left, count); }

private:
    std::optional<std::uint32_t> nextEntry();
    std::optional<std::uint32_t> nextHalfByte();

    RangeReader m_entries;
    std::uint32_t m_constant;
    int m_bits;
    std::uint32_t m_left;
    std::optional<std::uint8_t> m_secondHalf;
};

// The number of samples in each chunk and their description, from the runs of equal chunks.
class ChunkRuns {
public:
    struct Run {
        std::uint32_t samples = 0;
        std::uint32_t description = 0; // counted from 1
    };

    ChunkRuns(ByteSource& source, const TrackLayout& track);

    // Chunks are counted from 1; the calls must be in ascending order.
    Run at(std::uint32_t chunk);

private:
    void readRun();

    RangeReader m_entries;
    Run m_run;
    Run m_nextRun;
    std::uint32_t m_next = 0;
};

// The offset of the next chunk; nothing after the last one, or if the offset is past the end of the file.
std::optional<std::int64_t> nextChunkOffset(RangeReader& offsets, const TrackLayout& track,
                                            std::int64_t fileSize);

} // namespace ql240::sensorfiles
