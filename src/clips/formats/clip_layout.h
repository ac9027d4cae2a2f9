// Where in a clip's container sensor data may lie: found by walking the boxes of an MP4 file (ISO/IEC
// 14496-12) or the chunks of an AVI file, headers only. Sizes that run past what holds them are cut there;
// what makes no sense ends the walk. Nothing here is read twice, and the picture data not at all.
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

// One track of an MP4 file. The ranges are the entries of its tables, without their headers.
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
    // The edit list's beginning: an empty edit shifts the track to later, in units of the whole file; a start
    // inside the media shifts it to earlier, in the track's own.
    std::uint64_t emptyEdit = 0;
    std::int64_t mediaStart = 0;
};

// A box or chunk of the outermost level that the file ends before, or bytes that are none.
struct CutBox {
    std::uint32_t type = 0; // 0: no box at all
    std::int64_t offset = 0;
    std::uint64_t missing = 0;
};

struct ClipLayout {
    bool isRiff = false;
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

// One box, by its type and what is in it.
struct Box {
    std::uint32_t type = 0;
    ByteRange body;
    std::int64_t offset = 0;
    std::uint64_t missing = 0; // of its size, behind what holds it
};

// The boxes of an area in order.
class BoxCursor {
public:
    BoxCursor(ByteSource& source, ByteRange area) : m_source(source), m_rest(area) {}
    std::optional<Box> next();
    // What is left behind the last box.
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
// The first chunk of `rest`, which begins behind it afterwards.
std::optional<RiffChunk> nextChunk(ByteSource& source, ByteRange& rest);

ClipLayout readClipLayout(ByteSource& source);
void readMp4Layout(ByteSource& source, ClipLayout& clip);
void readRiffLayout(ByteSource& source, ClipLayout& clip);

} // namespace ql240::sensorfiles
