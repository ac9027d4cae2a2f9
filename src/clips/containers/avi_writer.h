// Writes an AVI file sequentially: headers, media in the order in which they are added, index; last, the
// lengths in the headers. A file that may exceed a gigabyte gets several lists and an OpenDML index. Write
// failures are reported by the copier. One thread at a time; sizes in bytes.
#pragma once

#include "clips/containers/avi_movie.h"

namespace ql240::containers {

class AviWriter {
public:
    // The maximum that programs without OpenDML read.
    static constexpr std::int64_t kListBytes = INT64_C(1) << 30;

    // The output outlives this. `mostBytes`: an upper limit of the file's size, for which room is reserved
    // in the index. `listBytes`: the maximum size of a list.
    AviWriter(const AviMovie& pattern, std::int64_t mostBytes, Copier& output,
              std::int64_t listBytes = kListBytes);

    // Omits a stream; only before begin().
    void leaveOut(std::size_t stream);
    // Writes the headers and, after them, `others` ("INFO", "JUNK"). Call it once, first.
    void begin(const std::vector<AviChunk>& others = {});
    // Appends a chunk; `stream` is the number in the pattern.
    void add(std::size_t stream, ByteRange body, bool isKey);
    void add(std::size_t stream, QByteArrayView bytes, bool isKey);
    // Writes the index, `others` after it, and the lengths in the headers. Call it once, last.
    void finish(const std::vector<AviChunk>& others = {});

private:
    struct Entry { // in the index of the current list
        std::size_t stream;
        std::int64_t body;
        std::uint32_t size;
        bool isKey;
    };
    struct Segment { // in a stream's super index
        std::int64_t offset;
        std::uint32_t size;
        std::uint32_t units;
    };
    struct Stream {
        AviStream format;
        bool isLeftOut = false;
        std::int64_t headerAt = 0; // the body of "strh"
        std::int64_t indexAt = 0;  // the body of "indx"
        std::int64_t units = 0;
        std::int64_t unitsBefore = 0; // before the current list
        std::vector<Segment> segments;
    };

    void numberStreams();
    AviChunk preparedHeaders() const;
    void locate(const AviChunk& chunk, std::uint32_t parent, std::int64_t start);
    void openList();
    void closeMedia();
    void closeList();
    void beginChunk(std::size_t stream, std::int64_t size, bool isKey);
    void endChunk(std::int64_t size);
    void writeOldIndex();
    void writeSegment(std::size_t stream);
    void patchHeaders();
    void patchSuperIndex(const Stream& stream);
    void patch32(std::int64_t position, std::int64_t value);
    std::int64_t pictures() const; // of the first video stream

    AviChunk m_headers;
    Copier& m_output;
    std::int64_t m_listBytes;
    std::size_t m_mostSegments; // 0: "idx1" only
    std::vector<Stream> m_streams;
    std::vector<Entry> m_entries;
    std::int64_t m_located = -1;   // the stream whose header was located last
    std::int64_t m_headerAt = 0;   // the body of "avih"
    std::int64_t m_extendedAt = 0; // the body of "dmlh", if there is one
    std::int64_t m_listAt = 0;
    std::int64_t m_mediaAt = 0; // the list "movi"
    std::size_t m_lists = 0;
    std::int64_t m_firstListPictures = 0;
};

} // namespace ql240::containers
