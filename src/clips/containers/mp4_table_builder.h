// Builds a track's sample tables. One thread at a time; durations in ticks of the track.
#pragma once

#include <utility>

#include "clips/containers/mp4_movie.h"

namespace ql240::containers {

class Mp4TableBuilder {
public:
    explicit Mp4TableBuilder(std::uint32_t timescale) : m_chunkTicks(timescale / 2) {}

    // `offset`: of the sample in the new file. `follows`: the preceding sample in the file is of the same
    // track.
    void add(const Mp4Sample& sample, std::int64_t offset, bool follows);

    std::uint32_t count() const { return m_count; }
    std::uint64_t mediaDuration() const { return m_duration; }
    // "stts", "stsc", "stsz", "stco" or "co64" and, if needed, "ctts", "stss" and "sdtp".
    std::vector<Mp4Box> boxes() const;

private:
    using Runs = std::vector<std::pair<std::uint32_t, std::uint32_t>>; // count and value

    struct Chunk {
        std::int64_t offset;
        std::uint32_t samples;
        std::uint32_t description;
    };

    static void addRun(Runs& runs, std::uint32_t count, std::uint32_t value);
    void addToChunk(const Mp4Sample& sample, std::int64_t offset, bool follows);
    Mp4Box chunkRuns() const;
    Mp4Box chunkOffsets() const;
    Mp4Box sizes() const;

    std::uint64_t m_chunkTicks; // the maximum duration of a chunk, which players read at once
    Runs m_durations;
    Runs m_compositions;
    Runs m_sizes;
    std::vector<Chunk> m_chunks;
    std::uint64_t m_ticksInChunk = 0;
    std::vector<std::uint32_t> m_syncSamples;
    QByteArray m_dependencies;
    std::uint32_t m_count = 0;
    std::uint64_t m_duration = 0;
};

} // namespace ql240::containers
