#include "clips/cut/avi_cut.h"

#include <algorithm>
#include <limits>

#include "clips/containers/avi_index.h"
#include "clips/containers/avi_writer.h"
#include "clips/cut/sensor_cut.h"
#include "clips/formats/trailer.h"
#include "platform/limits.h"

namespace ql240::cut {
namespace {

using namespace containers;

constexpr std::int64_t kUsPerSecond = 1'000'000;
constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kChunkBytes = 8 + 16; // the header and the index entry
constexpr sensorfiles::ReadBudget kBudget{limits::kRecordBytes, limits::kRecordReads};

// A stream's contribution to the piece.
struct Part {
    std::size_t stream = 0;
    std::int64_t first = 0; // the number of the cursor's step, from 0
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    std::int64_t startUs = 0; // of the first chunk
};

std::int64_t usOf(const AviStream& stream, std::int64_t unit) {
    const double seconds = static_cast<double>(unit) * stream.scale / stream.rate;
    constexpr double kMostSeconds = 1e9;
    return static_cast<std::int64_t>(std::clamp(seconds, -kMostSeconds, kMostSeconds) * kUsPerSecond);
}

// A chunk and its presentation time.
struct TimedPiece {
    std::int64_t number;
    AviPiece piece;
    std::int64_t startUs;
    std::int64_t endUs;
};

template <typename Visitor>
bool forEachChunk(QFileDevice& file, const AviMovie& movie, std::size_t number, QString& problem,
                  const Visitor& visit) {
    ByteSource source(file, kBudget);
    AviIndexCursor cursor(source, movie, number);
    const AviStream& stream = movie.streams[number];
    std::int64_t unit = stream.start;
    for (std::int64_t i = 0; const std::optional<AviPiece> piece = cursor.next(); ++i) {
        const std::int64_t next = unit + stream.unitsIn(piece->body.size);
        visit(TimedPiece{i, *piece, usOf(stream, unit), usOf(stream, next)});
        unit = next;
    }
    problem = cursor.problem();
    return problem.isEmpty();
}

class Lane {
public:
    Lane(QFileDevice& file, const AviMovie& movie, const Part& part)
        : m_source(file, kBudget), m_cursor(m_source, movie, part.stream), m_left(part.count) {
        for (std::int64_t i = 0; i < part.first; ++i)
            m_cursor.next();
        advance();
    }

    const std::optional<AviPiece>& piece() const { return m_piece; }
    void advance() {
        m_piece = m_left > 0 ? m_cursor.next() : std::nullopt;
        --m_left;
    }

private:
    ByteSource m_source;
    AviIndexCursor m_cursor;
    std::int64_t m_left;
    std::optional<AviPiece> m_piece;
};

class AviPieceOfClip final : public ClipPiece {
public:
    AviPieceOfClip(QFileDevice& file, CutRange asked, bool keepsSound, bool startsLate)
        : m_file(file), m_asked(asked), m_keepsSound(keepsSound), m_startsLate(startsLate) {}

    bool settle(QString& problem);
    void write(Copier& to) override;

private:
    bool readIndex(QString& problem);
    bool settleBorders(QString& problem);
    void remarkStart(const AviStream& stream, std::int64_t wantedUs);
    bool addPart(std::size_t stream, bool isKept, QString& problem);
    void addOthers(ByteSource& source);
    void addTrailer(ByteSource& source);
    void copyMedia(AviWriter& writer);

    QFileDevice& m_file;
    CutRange m_asked;
    bool m_keepsSound;
    bool m_startsLate;
    AviFile m_chunks;
    AviMovie m_movie;
    std::int64_t m_clipUs = 0; // length of the longest stream
    std::uint64_t m_chunksOfClip = 0;
    std::vector<Part> m_parts;
    std::vector<AviChunk> m_before; // before the media
    std::vector<AviChunk> m_after;
    std::optional<ByteRange> m_rest; // after the lists, copied unchanged
    QByteArray m_trailer;
};

bool AviPieceOfClip::readIndex(QString& problem) {
    ByteSource source(m_file, kBudget);
    if (!readAviChunks(source, m_chunks, problem))
        return false;
    std::optional<AviMovie> movie = readAviMovie(source, m_chunks, problem);
    if (!movie)
        return false;
    m_movie = std::move(*movie);
    const bool hasIndex =
        !m_movie.index.isEmpty() || std::any_of(m_movie.superIndexes.begin(), m_movie.superIndexes.end(),
                                                [](const ByteRange& index) { return !index.isEmpty(); });
    if (m_chunks.cut || !hasIndex)
        problem = QStringLiteral("no index: the recording wasn't finished");
    return problem.isEmpty();
}

// By the frames of the first video stream. It begins with a key frame: AVI can't hide the frames before the
// requested one.
bool AviPieceOfClip::settleBorders(QString& problem) {
    m_range = m_asked;
    const auto video = std::find_if(m_movie.streams.begin(), m_movie.streams.end(),
                                    [](const AviStream& stream) { return stream.isVideo(); });
    std::int64_t endUs = 0;
    std::int64_t wantedUs = m_range.fromUs;
    const auto takeFrame = [&](const TimedPiece& frame) {
        endUs = frame.endUs;
        if (frame.startUs <= m_asked.fromUs)
            wantedUs = frame.startUs;
        if (frame.startUs <= m_asked.fromUs && frame.piece.isKey && !frame.piece.body.isEmpty())
            m_range.fromUs = frame.startUs;
        if (frame.startUs <= m_asked.toUs)
            m_range.toUs = frame.endUs;
    };
    if (video != m_movie.streams.end()) {
        const auto number = static_cast<std::size_t>(video - m_movie.streams.begin());
        if (!forEachChunk(m_file, m_movie, number, problem, takeFrame))
            return false;
        if (m_asked.fromUs >= endUs)
            problem = QStringLiteral("the clip ends before that");
        else
            remarkStart(*video, wantedUs);
    }
    return problem.isEmpty();
}

void AviPieceOfClip::remarkStart(const AviStream& stream, std::int64_t wantedUs) {
    const std::int64_t earlierUs = wantedUs - m_range.fromUs;
    if (earlierUs < usOf(stream, 1) / 2)
        return;
    m_remarks << QStringLiteral(
                     "begins %1 s earlier, with a key frame: AVI can't hide the frames before "
                     "the requested one")
                     .arg(static_cast<double>(earlierUs) / kUsPerSecond, 0, 'f', 3);
}

// Whole chunks, from the one nearest to the piece's start; a video whose next key frame is later begins with
// that one. Streams that aren't kept count for the clip's length.
bool AviPieceOfClip::addPart(std::size_t number, bool isKept, QString& problem) {
    const AviStream& stream = m_movie.streams[number];
    Part part;
    part.stream = number;
    const bool isRead = forEachChunk(m_file, m_movie, number, problem, [&](const TimedPiece& chunk) {
        ++m_chunksOfClip;
        m_clipUs = std::max(m_clipUs, chunk.endUs);
        const std::int64_t halfUs = (chunk.endUs - chunk.startUs) / 2;
        const bool canBegin =
            chunk.startUs + halfUs >= m_range.fromUs && (chunk.piece.isKey || !stream.isVideo());
        if ((part.count == 0 && !canBegin) || chunk.startUs + halfUs >= m_range.toUs)
            return;
        if (part.count == 0) {
            part.first = chunk.number;
            part.startUs = chunk.startUs;
        }
        part.count = chunk.number - part.first + 1;
        part.bytes += chunk.piece.body.size + kChunkBytes;
    });
    if (isRead && m_chunksOfClip > limits::kClipSamples)
        problem = QStringLiteral("more chunks than a clip can have");
    if (!problem.isEmpty())
        return false;
    if (part.count > 0 && isKept) {
        m_parts.push_back(part);
        m_bytes += part.bytes;
    }
    return true;
}

bool AviPieceOfClip::settle(QString& problem) {
    if (!readIndex(problem) || !settleBorders(problem))
        return false;
    for (std::size_t i = 0; i < m_movie.streams.size(); ++i) {
        if (!addPart(i, m_keepsSound || !m_movie.streams[i].isSound(), problem))
            return false;
    }
    if (m_asked.toUs > m_range.toUs)
        remarkEnd(m_clipUs);
    std::int64_t mediaBytes = m_bytes;
    for (const Part& part : m_parts)
        mediaBytes -= part.count * kChunkBytes;
    if (m_parts.empty())
        problem = QStringLiteral("nothing of any stream is in that range");
    else if (mediaBytes > m_file.size())
        problem = QStringLiteral("its index names more bytes than the file has");
    if (!problem.isEmpty())
        return false;
    ByteSource source(m_file, kBudget);
    addOthers(source);
    addTrailer(source);
    if (source.failedAt())
        m_remarks << QStringLiteral("some of its sensor data can't be read");
    return true;
}

void AviPieceOfClip::addOthers(ByteSource& source) {
    const ClipLayout layout = sensorfiles::readClipLayout(source);
    std::vector<AviChunk>* to = &m_before;
    for (const AviChunk& list : m_chunks.lists) {
        for (const AviChunk& chunk : list.inner) {
            if (chunk.kind == fourCc("movi"))
                to = &m_after;
            else if (chunk.name == fourCc("gps0"))
                to->push_back(newChunk(chunk.name, plainPositions(source, layout, m_range)));
            else if (chunk.name == fourCc("gsen"))
                to->push_back(newChunk(chunk.name, plainAccelerations(source, layout, m_range)));
            else if (chunk.kind != fourCc("hdrl") && chunk.name != fourCc("idx1"))
                to->push_back(chunk);
        }
    }
}

// Includes a byte before the rest: findTrailer() ignores a marker at the start.
void AviPieceOfClip::addTrailer(ByteSource& source) {
    m_rest = m_chunks.rest;
    const std::int64_t start =
        std::max<std::int64_t>(m_chunks.rest.start - 1, source.size() - sensorfiles::kTrailerBytes);
    QByteArray tail(source.size() - start, '\0');
    tail.truncate(source.read(start, tail));
    if (m_rest->isEmpty() || !sensorfiles::findTrailer(tail))
        return;
    m_rest->size = start + 1 - m_rest->start;
    m_trailer = trailer(tail, m_clipUs / kUsPerMs, m_startsLate, m_range).sliced(1);
}

void AviPieceOfClip::write(Copier& to) {
    AviMovie pattern = m_movie;
    for (AviStream& stream : pattern.streams)
        pattern.setStart(static_cast<std::size_t>(&stream - pattern.streams.data()), 0);
    for (const Part& part : m_parts) {
        const AviStream& stream = pattern.streams[part.stream];
        const double lateS = static_cast<double>(part.startUs - m_range.fromUs) / kUsPerSecond;
        const double units = lateS * stream.rate / stream.scale;
        if (units >= 0.5)
            pattern.setStart(part.stream, static_cast<std::uint32_t>(units + 0.5));
    }
    AviWriter writer(pattern, m_bytes, to);
    for (std::size_t i = 0; i < pattern.streams.size(); ++i) {
        const bool isThere =
            std::any_of(m_parts.begin(), m_parts.end(), [i](const Part& p) { return p.stream == i; });
        if (!isThere)
            writer.leaveOut(i);
    }
    writer.begin(m_before);
    copyMedia(writer);
    writer.finish(m_after);
    to.add(*m_rest);
    to.add(QByteArrayView(m_trailer));
}

// In the order of the clip's media.
void AviPieceOfClip::copyMedia(AviWriter& writer) {
    std::vector<std::unique_ptr<Lane>> lanes;
    for (const Part& part : m_parts)
        lanes.push_back(std::make_unique<Lane>(m_file, m_movie, part));
    const auto isEarlier = [](const auto& a, const auto& b) {
        constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
        const auto start = [](const auto& lane) {
            return lane->piece() ? lane->piece()->body.start : kNever;
        };
        return start(a) < start(b);
    };
    for (;;) {
        const auto next = std::min_element(lanes.begin(), lanes.end(), isEarlier);
        if (!(*next)->piece())
            return;
        const AviPiece piece = *(*next)->piece();
        writer.add(m_parts[static_cast<std::size_t>(next - lanes.begin())].stream, piece.body, piece.isKey);
        (*next)->advance();
    }
}

} // namespace

std::unique_ptr<ClipPiece> pieceOfAvi(QFileDevice& file, CutRange range, bool keepsSound, bool startsLate,
                                      QString& problem) {
    auto piece = std::make_unique<AviPieceOfClip>(file, range, keepsSound, startsLate);
    return piece->settle(problem) ? std::move(piece) : nullptr;
}

} // namespace ql240::cut
