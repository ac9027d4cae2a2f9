// The streams of an AVI file and their chunks, from its headers and index; nothing is decoded. One thread at
// a time; offsets and sizes in bytes.
#pragma once

#include "clips/containers/avi_chunks.h"

namespace ql240::containers {

struct AviStream {
    std::uint32_t type = 0;    // "vids", "auds", "txts"
    std::uint32_t handler = 0; // the codec by the stream's header
    std::uint32_t codec = 0;   // the codec by a video's format
    std::uint32_t scale = 0;   // a unit lasts scale/rate seconds
    std::uint32_t rate = 0;
    std::uint32_t start = 0;      // in units
    std::uint32_t length = 0;     // in units
    std::uint32_t sampleSize = 0; // bytes per unit; 0: each chunk is a unit
    std::uint32_t chunkName = 0;  // "00dc"

    bool isVideo() const { return type == fourCc("vids"); }
    bool isSound() const { return type == fourCc("auds"); }
    // The number of units in a chunk of `bytes` bytes.
    std::int64_t unitsIn(std::int64_t bytes) const { return sampleSize > 0 ? bytes / sampleSize : 1; }
};

struct AviMovie {
    std::vector<AviStream> streams;
    // The list "hdrl", loaded, without the streams' index chunks.
    AviChunk headers;
    // The chunks of each list "movi".
    std::vector<ByteRange> media;
    ByteRange index;                     // the body of "idx1"
    std::vector<ByteRange> superIndexes; // the body of each stream's "indx"

    // Replaces a stream's start, also in the headers.
    void setStart(std::size_t stream, std::uint32_t start);
};

// Nothing, with the reason in `problem`, if the headers are invalid. Without an index, `index` and the super
// indexes are empty.
std::optional<AviMovie> readAviMovie(ByteSource& source, const AviFile& file, QString& problem);

// A chunk of a stream.
struct AviPiece {
    std::uint32_t name = 0; // "00dc"
    ByteRange body;
    bool isKey = true;

    // From the first two digits of the name; nothing if they aren't digits.
    std::optional<std::size_t> stream() const;
};

// Iterates over all streams' chunks in "movi" without the index, in the order of the file. `isKey` is then
// unknown and left at its default.
class AviMediaCursor {
public:
    AviMediaCursor(ByteSource& source, ByteRange media) : m_source(source), m_rest(media) {}

    // Nothing at the end, or at something that isn't a complete chunk: then rest() isn't empty. Enters lists
    // ("rec ") and skips chunks that belong to no stream.
    std::optional<AviPiece> next();
    ByteRange rest() const { return m_rest; }

private:
    ByteSource& m_source;
    ByteRange m_rest;
};

} // namespace ql240::containers
