// Iterates over a stream's chunks by the file's index: "idx1", or the several segments of an OpenDML index.
// One thread at a time.
#pragma once

#include "clips/containers/avi_movie.h"

namespace ql240::containers {

class AviIndexCursor {
public:
    // Source and movie outlive this.
    AviIndexCursor(ByteSource& source, const AviMovie& movie, std::size_t stream);

    // Nothing at the end, or if the index is invalid.
    std::optional<AviPiece> next();
    // Why it ended before the last chunk, or empty.
    const QString& problem() const { return m_problem; }

private:
    std::optional<AviPiece> nextOfOldIndex();
    std::optional<AviPiece> nextOfSegments();
    bool openSegment();
    std::int64_t baseOfOldIndex();
    std::optional<AviPiece> checked(AviPiece piece);
    std::nullopt_t fail(const char* reason);

    ByteSource& m_source;
    const AviMovie& m_movie;
    std::size_t m_stream;
    sensorfiles::RangeReader m_superIndex;
    std::optional<sensorfiles::RangeReader> m_entries;
    bool m_isOld;
    std::int64_t m_base = 0;  // what the entries' offsets are relative to
    std::uint32_t m_left = 0; // entries in the segment
    std::uint32_t m_segmentsLeft = 0;
    std::uint64_t m_number = 0; // chunks so far
    bool m_hasPicture = false;  // a chunk so far wasn't empty
    QString m_problem;
};

} // namespace ql240::containers
