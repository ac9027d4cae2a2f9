// The places in a clip's container that may hold sensor data: found by walking the boxes of an MP4 file
// (ISO/IEC 14496-12) or the chunks of an AVI file, headers only. Sizes that exceed the parent's are clamped
// to it; an invalid header ends the walk. Nothing is read twice, and the video data not at all.
#pragma once

#include <vector>

#include "clips/formats/byte_source.h"

namespace ql240::sensorfiles {

constexpr std::uint32_t fourCc(const char (&text)[5]) {
    return static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[0])) << 24 |
           static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[1])) << 16 |
           static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[2])) << 8 |
           static_cast<std::uint8_t>(text[3]);
}

// One track of an MP4 file. The ranges hold the entries of its tables, without the tables' headers.
struct TrackLayout {
    std::uint32_t handler = 0;
    std::uint32_t format = 0; // of the first sample description
    std::uint32_t timescale = 0;
    std::uint64_t length = 0; // in ticks
    ByteRange description;    // stsd, its header included
    ByteRange times;          // stts
    ByteRange chunkRuns;      // stsc
    ByteRange sizes;          // stsz, stz2
    ByteRange chunkOffsets;   // stco, co64
    bool wideOffsets = false;
    int sizeBits = 32;
    std::uint32_t constantSize = 0;
    std::uint32_t sampleCount = 0;
    // The edit list: empty edits before its first media edit, then that edit.
    std::uint64_t emptyEdit = 0;  // delays the track, in ticks of the file's timescale
    std::int64_t mediaStart = 0;  // advances it, in ticks of its own
    std::uint64_t editLength = 0; // of the first media edit, in ticks of the file's timescale; 0: to the end
    std::uint32_t mediaEdits = 0; // 0 also without an edit list
    ByteRange compositions;       // ctts
    ByteRange syncSamples;        // stss
    bool hasSyncTable = false;    // without one, every sample is a key frame
    ByteRange dependencies;       // sdtp, a byte for each sample
};

// A top-level box or chunk that extends past the end of the file, or trailing bytes that are not a box.
struct CutBox {
    std::uint32_t type = 0; // 0: no box at all
    std::int64_t offset = 0;
    std::uint64_t missing = 0;
};

struct ClipLayout {
    bool isRiff = false;   // an AVI file; other RIFF files are neither
    bool hasIndex = false; // moov, or the header list of an AVI file
    std::vector<TrackLayout> tracks;
    ByteRange userData;    // moov/udta
    ByteRange headers;     // LIST hdrl
    ByteRange information; // LIST INFO
    std::optional<CutBox> cut;
    std::vector<ByteRange> freeBoxes;
    ByteRange gpsIndex; // the body of moov/"gps "
    ByteRange gps0;
    ByteRange gsen;
    std::uint32_t timescale = 0; // of the whole file
    std::optional<std::int64_t> lengthMs;
    std::optional<std::int64_t> createdAt; // seconds since 1970
};

struct Box {
    std::uint32_t type = 0;
    ByteRange body;
    std::int64_t offset = 0;
    std::uint64_t missing = 0; // how many of its bytes lie past the end of its parent
    bool hasNoSize = false;    // its size field is 0: it extends to the end of its parent
};

// Iterates over the boxes of an area.
class BoxCursor {
public:
    BoxCursor(ByteSource& source, ByteRange area) : m_source(source), m_rest(area) {}
    std::optional<Box> next();
    // The bytes after the last box.
    ByteRange rest() const { return m_rest; }

private:
    ByteSource& m_source;
    ByteRange m_rest;
};

// A chunk's name, its little-endian size and, for "RIFF" and "LIST", the kind of the list.
struct RiffChunk {
    std::uint32_t name = 0;
    std::uint32_t kind = 0;
    ByteRange body;
    std::int64_t offset = 0;
    std::uint64_t missing = 0;
};
// Takes the first chunk off `rest`.
std::optional<RiffChunk> nextChunk(ByteSource& source, ByteRange& rest);

// Empty for a RIFF file of another kind than AVI.
ClipLayout readClipLayout(ByteSource& source);
// `area`: the body of the "trak" box.
TrackLayout readTrackLayout(ByteSource& source, ByteRange area);
void readMp4Layout(ByteSource& source, ClipLayout& clip);
void readRiffLayout(ByteSource& source, ClipLayout& clip);

} // namespace ql240::sensorfiles
