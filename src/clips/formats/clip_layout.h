// Where in a clip's container sensor data may lie: found by walking the boxes of an MP4 file (ISO/IEC
// 14496-12) or the chunks of an AVI file, headers only. Sizes that run past what holds them are cut there;
// what makes no sense ends the walk. Nothing here is read twice, and the picture data not at all.
#pragma once

#include <vector>

#include "clips/formats/byte_source.h"

namespace ql240::sensorfiles {

constexpr quint32 fourCc(const char (&text)[5]) {
    return static_cast<quint32>(static_cast<quint8>(text[0])) << 24 |
           static_cast<quint32>(static_cast<quint8>(text[1])) << 16 |
           static_cast<quint32>(static_cast<quint8>(text[2])) << 8 | static_cast<quint8>(text[3]);
}

// One track of an MP4 file. The ranges are the entries of its tables, without their headers.
struct TrackLayout {
    quint32 handler = 0;
    quint32 format = 0; // of the first sample description
    quint32 timescale = 0;
    ByteRange times;        // stts
    ByteRange chunkRuns;    // stsc
    ByteRange sizes;        // stsz, stz2
    ByteRange chunkOffsets; // stco, co64
    bool wideOffsets = false;
    int sizeBits = 32;
    quint32 constantSize = 0;
    quint32 sampleCount = 0;
    // The edit list's beginning: an empty edit shifts the track to later, in units of the whole file; a start
    // inside the media shifts it to earlier, in the track's own.
    quint64 emptyEdit = 0;
    qint64 mediaStart = 0;
};

struct ClipLayout {
    std::vector<TrackLayout> tracks;
    std::vector<ByteRange> freeBoxes;
    ByteRange gpsIndex; // the body of moov/"gps "
    ByteRange gps0;
    ByteRange gsen;
    quint32 timescale = 0; // of the whole file
    std::optional<qint64> lengthMs;
    std::optional<qint64> createdAt; // seconds since 1970
};

// One box, by its type and what is in it.
struct Box {
    quint32 type = 0;
    ByteRange body;
};

// The boxes of an area in order.
class BoxCursor {
public:
    BoxCursor(ByteSource& source, ByteRange area) : m_source(source), m_rest(area) {}
    std::optional<Box> next();

private:
    ByteSource& m_source;
    ByteRange m_rest;
};

ClipLayout readClipLayout(ByteSource& source);
void readMp4Layout(ByteSource& source, ClipLayout& clip);
void readRiffLayout(ByteSource& source, ClipLayout& clip);

} // namespace ql240::sensorfiles
