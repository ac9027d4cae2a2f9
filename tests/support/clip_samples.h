// What the containers' readers make of a file: its samples, and the file written back from its tree.
#pragma once

#include <QFile>
#include <optional>

#include "clips/containers/avi_index.h"
#include "clips/containers/mp4_movie.h"
#include "platform/limits.h"

namespace ql240::containers {

inline constexpr sensorfiles::ReadBudget kWholeClip{limits::kRecordBytes, limits::kRecordReads};

inline bool isRiff(QFile& file) {
    return file.seek(0) && file.peek(4) == "RIFF";
}

// Passes the place of each sample of each track to `take`; of uncompressed sound, of the first in each run.
// False if there is no track, or an index is invalid.
template <typename Take>
bool eachMp4Sample(QFile& file, Take take) {
    ByteSource heads(file, kWholeClip);
    Mp4File boxes;
    QString problem;
    const bool isRead = readMp4Boxes(heads, boxes, problem);
    const std::optional<Mp4Movie> movie = isRead ? readMp4Movie(heads, boxes, problem) : std::nullopt;
    bool isWhole = movie && !movie->tracks.empty();
    for (std::size_t i = 0; movie && i < movie->tracks.size(); ++i) {
        ByteSource tables(file, kWholeClip);
        Mp4SampleCursor cursor(tables, movie->tracks[i]);
        while (const std::optional<Mp4Sample> sample = cursor.next())
            take(ByteRange{sample->offset, sample->size / sample->count});
        isWhole = isWhole && cursor.problem().isEmpty();
    }
    return isWhole;
}

template <typename Take>
bool eachAviChunk(QFile& file, Take take) {
    ByteSource heads(file, kWholeClip);
    AviFile chunks;
    QString problem;
    const bool isRead = readAviChunks(heads, chunks, problem);
    const std::optional<AviMovie> movie = isRead ? readAviMovie(heads, chunks, problem) : std::nullopt;
    bool isWhole = movie && !movie->streams.empty();
    for (std::size_t i = 0; movie && i < movie->streams.size(); ++i) {
        ByteSource index(file, kWholeClip);
        AviIndexCursor cursor(index, *movie, i);
        while (const std::optional<AviPiece> piece = cursor.next())
            take(piece->body);
        isWhole = isWhole && cursor.problem().isEmpty();
    }
    return isWhole;
}

template <typename Take>
bool eachSample(QFile& file, Take take) {
    return isRiff(file) ? eachAviChunk(file, take) : eachMp4Sample(file, take);
}

// `to` is open and empty. Nothing if the file isn't accepted.
inline std::optional<QByteArray> writtenBack(QFile& file, QFile& to) {
    QString problem;
    ByteSource source(file, kWholeClip);
    Copier copier(file, to);
    if (isRiff(file)) {
        AviFile chunks;
        if (!readAviChunks(source, chunks, problem) || chunks.cut)
            return std::nullopt;
        writeAviChunks(chunks, copier);
    } else {
        Mp4File boxes;
        if (!readMp4Boxes(source, boxes, problem))
            return std::nullopt;
        writeMp4Boxes(boxes, copier);
    }
    return copier.finish() && to.seek(0) ? std::optional(to.readAll()) : QByteArray("unwritten");
}

} // namespace ql240::containers
