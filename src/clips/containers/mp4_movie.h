// The tracks of an MP4 file and their samples, from its index; nothing is decoded. One thread at a time;
// offsets and sizes in bytes.
#pragma once

#include "clips/containers/mp4_boxes.h"
#include "clips/formats/sample_tables.h"

namespace ql240::containers {

// A sample, or, with uncompressed sound, which has a sample per tick, a run of samples within a chunk.
struct Mp4Sample {
    std::int64_t offset = 0; // in the file
    std::uint32_t size = 0;
    std::uint32_t duration = 0; // in ticks
    std::int32_t compositionOffset = 0;
    std::uint32_t description = 1; // the number of the track's sample description, from 1
    bool isSync = true;
    std::uint8_t dependency = 0; // its byte in "sdtp", or 0
    std::uint32_t count = 1;     // samples in the run
    std::int64_t time = 0;       // decoding time in ticks; writers ignore it
};

// An entry of an edit list, with its duration in ticks of the movie and its media time in ticks of the track.
struct Mp4Edit {
    std::uint64_t duration = 0;
    std::int64_t mediaStart = 0; // kEmpty: an empty edit

    static constexpr std::int64_t kEmpty = -1;
};

struct Mp4Track {
    // The ranges of its tables in the file, sample count, time scale, handler and format.
    sensorfiles::TrackLayout layout;
    // The "trak" box, loaded, without its sample tables, so that it can be used for samples of another file.
    Mp4Box box;
    std::uint32_t id = 0;

    bool isVideo() const { return layout.handler == fourCc("vide"); }
    bool isSound() const { return layout.handler == fourCc("soun"); }
    // Uncompressed sound: all samples have one size and a duration of one tick.
    bool hasRuns() const;
    // At most so many steps of a cursor.
    std::uint64_t steps() const;
    // The body of "stsd".
    QByteArray descriptions() const;
};

struct Mp4Movie {
    std::uint32_t timescale = 0;
    std::vector<Mp4Track> tracks;
    // The "moov" box, loaded, without its tracks.
    Mp4Box box;
    bool isFragmented = false; // the samples are listed in fragments

    std::uint64_t steps() const;
};

// Nothing, with the reason in `problem`, if the index is missing or invalid.
std::optional<Mp4Movie> readMp4Movie(ByteSource& source, const Mp4File& file, QString& problem);

// Iterates over a track's samples in decoding order by its tables.
class Mp4SampleCursor {
public:
    // Source and track outlive this.
    Mp4SampleCursor(ByteSource& source, const Mp4Track& track);

    // Nothing at the end, or if the tables are invalid.
    std::optional<Mp4Sample> next();
    // Why it ended before the last sample, or empty.
    const QString& problem() const { return m_problem; }
    std::uint32_t number() const { return m_number; } // samples so far

private:
    bool openChunk();
    std::uint32_t runLength() const;
    bool takeTables(Mp4Sample& sample);
    bool isSync();
    std::nullopt_t fail(const char* reason);

    std::int64_t m_fileSize;
    const sensorfiles::TrackLayout& m_layout;
    bool m_hasRuns;
    sensorfiles::SampleTimes m_times;
    sensorfiles::SampleSizes m_sizes;
    sensorfiles::ChunkRuns m_runs;
    sensorfiles::RangeReader m_offsets;
    sensorfiles::RangeReader m_compositions;
    sensorfiles::RangeReader m_syncSamples;
    sensorfiles::RangeReader m_dependencies;
    std::uint32_t m_number = 0;
    std::uint32_t m_steps = 0;
    std::uint32_t m_chunk = 0;
    sensorfiles::ChunkRuns::Run m_run; // the rest of the chunk
    std::int64_t m_offset = 0;
    std::uint32_t m_compositionsLeft = 0;
    std::int32_t m_composition = 0;
    std::uint32_t m_nextSync = 0;
    QString m_problem;
};

} // namespace ql240::containers
