#include "clips/containers/avi_movie.h"

#include <QtEndian>

#include "platform/limits.h"

namespace ql240::containers {
namespace {

constexpr qsizetype kStartAt = 28; // in "strh"
constexpr std::int64_t kIndexEntryBytes = 16;
// Each stream's chunks are looked for in the whole index; cameras write three streams.
constexpr std::uint64_t kMostIndexSteps = 8 * limits::kClipSamples;
// Up to the last fields that change in a new file.
constexpr qsizetype kMainHeaderBytes = 28;   // of "avih"
constexpr qsizetype kStreamHeaderBytes = 36; // of "strh"

std::uint32_t littleEndianAt(const QByteArray& bytes, qsizetype at) {
    return at + 4 <= bytes.size() ? qFromLittleEndian<std::uint32_t>(bytes.constData() + at) : 0;
}

std::uint32_t nameAt(const QByteArray& bytes, qsizetype at) {
    return at + 4 <= bytes.size() ? qFromBigEndian<std::uint32_t>(bytes.constData() + at) : 0;
}

// The name that most writers give a stream's chunks.
std::uint32_t usualChunkName(const AviStream& stream, std::size_t number) {
    const char digits[2] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
    const std::uint32_t suffix = stream.isVideo()   ? fourCc("  dc")
                                 : stream.isSound() ? fourCc("  wb")
                                                    : fourCc("  tx");
    return static_cast<std::uint32_t>(digits[0]) << 24 | static_cast<std::uint32_t>(digits[1]) << 16 |
           (suffix & 0xFFFF);
}

AviStream readStream(const AviChunk& list, std::size_t number) {
    const QByteArray header = loadedContent(list.find(fourCc("strh")));
    const QByteArray format = loadedContent(list.find(fourCc("strf")));
    AviStream stream;
    stream.type = nameAt(header, 0);
    stream.handler = nameAt(header, 4);
    stream.codec = stream.isVideo() ? nameAt(format, 16) : 0;
    stream.scale = littleEndianAt(header, 20);
    stream.rate = littleEndianAt(header, 24);
    stream.start = littleEndianAt(header, kStartAt);
    stream.length = littleEndianAt(header, 32);
    stream.sampleSize = stream.isVideo() ? 0 : littleEndianAt(header, 44);
    stream.chunkName = usualChunkName(stream, number);
    return stream;
}

ByteRange bodyOf(const AviChunk* chunk) {
    const auto* const range = chunk != nullptr ? std::get_if<ByteRange>(&chunk->content) : nullptr;
    return range != nullptr ? *range : ByteRange{};
}

void takeSuperIndexes(AviMovie& movie) {
    for (AviChunk& list : movie.headers.inner) {
        if (list.kind != fourCc("strl"))
            continue;
        movie.superIndexes.push_back(bodyOf(list.find(fourCc("indx"))));
        std::erase_if(list.inner, [](const AviChunk& chunk) { return chunk.name == fourCc("indx"); });
    }
}

bool hasBytes(const AviChunk* chunk, qsizetype bytes) {
    return loadedContent(chunk).size() >= bytes;
}

bool readStreams(AviMovie& movie) {
    for (const AviChunk& list : movie.headers.inner) {
        if (list.kind != fourCc("strl"))
            continue;
        const AviStream stream = readStream(list, movie.streams.size());
        if (stream.scale == 0 || stream.rate == 0 || !hasBytes(list.find(fourCc("strh")), kStreamHeaderBytes))
            return false;
        movie.streams.push_back(stream);
    }
    return hasBytes(movie.headers.find(fourCc("avih")), kMainHeaderBytes) && !movie.streams.empty() &&
           movie.streams.size() <= limits::kTracks;
}

void takeMedia(const AviFile& file, AviMovie& movie) {
    for (const AviChunk& list : file.lists) {
        for (const AviChunk& chunk : list.inner) {
            if (chunk.kind == fourCc("movi"))
                movie.media.push_back(bodyOf(&chunk));
        }
    }
    movie.index = bodyOf(file.find(fourCc("idx1")));
}

// Uncompressed video has another suffix than "dc".
void takeChunkNames(ByteSource& source, AviMovie& movie) {
    constexpr int kTold = 64;
    if (movie.media.empty())
        return;
    std::vector<bool> isKnown(movie.streams.size());
    AviMediaCursor cursor(source, movie.media.front());
    for (int i = 0; i < kTold; ++i) {
        const std::optional<AviPiece> piece = cursor.next();
        if (!piece)
            break;
        const std::size_t stream = piece->stream().value_or(SIZE_MAX);
        if (stream < isKnown.size() && !isKnown[stream]) {
            isKnown[stream] = true;
            movie.streams[stream].chunkName = piece->name;
        }
    }
}

} // namespace

void AviMovie::setStart(std::size_t stream, std::uint32_t start) {
    streams[stream].start = start;
    std::size_t number = 0;
    for (AviChunk& list : headers.inner) {
        if (list.kind != fourCc("strl") || number++ != stream)
            continue;
        AviChunk* const header = list.find(fourCc("strh"));
        QByteArray bytes = loadedContent(header);
        if (bytes.size() < kStartAt + 4)
            return;
        qToLittleEndian(start, bytes.data() + kStartAt);
        header->content = bytes;
    }
}

std::optional<AviMovie> readAviMovie(ByteSource& source, const AviFile& file, QString& problem) {
    AviMovie movie;
    if (const AviChunk* const headers = file.find(fourCc("hdrl")))
        movie.headers = *headers;
    takeSuperIndexes(movie);
    if (!loadChunk(source, movie.headers, problem))
        return std::nullopt;
    if (!readStreams(movie)) {
        problem = QStringLiteral("the headers name no streams, or too many, or one without a rate");
        return std::nullopt;
    }
    takeMedia(file, movie);
    if (static_cast<std::uint64_t>(movie.index.size / kIndexEntryBytes) >
        kMostIndexSteps / movie.streams.size()) {
        problem = QStringLiteral("more chunks than a clip can have");
        return std::nullopt;
    }
    takeChunkNames(source, movie);
    return movie;
}

std::optional<std::size_t> AviPiece::stream() const {
    const auto digit = [this](int shift) { return (name >> shift & 0xFF) - '0'; };
    if (digit(24) > 9 || digit(16) > 9)
        return std::nullopt;
    return digit(24) * 10 + digit(16);
}

std::optional<AviPiece> AviMediaCursor::next() {
    for (;;) {
        const ByteRange before = m_rest;
        const std::optional<sensorfiles::RiffChunk> chunk = sensorfiles::nextChunk(m_source, m_rest);
        if (!chunk || chunk->missing > 0) {
            m_rest = before;
            return std::nullopt;
        }
        if (chunk->kind == fourCc("rec ")) {
            m_rest = {chunk->body.start, before.end() - chunk->body.start};
            continue;
        }
        const AviPiece piece{chunk->name, chunk->body};
        if (piece.stream())
            return piece;
        const bool isKnown = (chunk->name >> 16) == (fourCc("ix00") >> 16) || chunk->name == fourCc("JUNK");
        if (!isKnown) {
            m_rest = before;
            return std::nullopt;
        }
    }
}

} // namespace ql240::containers
