// Writes an MP4 file sequentially: its type, the media in the order in which they are added, then the index.
// Keeps only the tables in memory, a few bytes per sample. Write failures are reported by the copier. One
// thread at a time.
#pragma once

#include "clips/containers/mp4_table_builder.h"

namespace ql240::containers {

class Mp4Writer {
public:
    // The output outlives this.
    explicit Mp4Writer(Copier& output) : m_output(output) {}

    // Writes "ftyp" and other boxes before the media. Call it once, first.
    void begin(const std::vector<Mp4Box>& boxes);
    // Returns the number of a new track with the pattern's descriptions, time scale and everything else that
    // doesn't describe samples.
    std::size_t addTrack(const Mp4Track& pattern);
    // Appends a sample, whose bytes are at its offset in the original; each track in decoding order.
    void addSample(std::size_t track, const Mp4Sample& sample);
    // The same with new bytes; ignores the sample's offset and size.
    void addSample(std::size_t track, Mp4Sample sample, QByteArrayView bytes);
    // Appends bytes that belong to no track; returns their offset in the new file.
    std::int64_t addOther(ByteRange range);
    // Sets the edit list; without one, the whole track is shown from the start. Durations in ticks of the
    // movie.
    void setEdits(std::size_t track, std::vector<Mp4Edit> edits);

    // Of the samples so far, in ticks of the track.
    std::uint64_t mediaDuration(std::size_t track) const { return m_tracks[track].tables.mediaDuration(); }

    // Writes the index and, after it, `others`. Omits tracks without samples. `movie`: everything in the
    // index besides the tracks; `timescale`: ticks of the movie per second. Call it once, last.
    void finish(const Mp4Movie& movie, std::uint32_t timescale, const std::vector<Mp4Box>& others = {});

private:
    struct Track {
        Mp4Box box;
        std::uint32_t timescale;
        std::vector<Mp4Edit> edits;
        Mp4TableBuilder tables;

        std::uint64_t durationIn(std::uint32_t movieTimescale) const;
    };

    void list(std::size_t track, const Mp4Sample& sample);
    static Mp4Box indexedBox(const Track& track, std::uint32_t timescale);
    void closeMedia();

    Copier& m_output;
    std::vector<Track> m_tracks;
    std::int64_t m_mediaStart = 0; // of the box "mdat"
    std::size_t m_lastTrack = SIZE_MAX;
};

} // namespace ql240::containers
