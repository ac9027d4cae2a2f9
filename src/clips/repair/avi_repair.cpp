#include "clips/repair/avi_repair.h"

#include <QBuffer>
#include <QtEndian>
#include <algorithm>
#include <limits>

#include "clips/containers/avi_writer.h"
#include "platform/limits.h"

namespace ql240::repair {

using containers::AviFile;
using containers::AviMovie;
using containers::AviPiece;
using sensorfiles::RiffChunk;

namespace {

constexpr std::int64_t kListHead = 12;

std::uint32_t nameAt(FileWindow& window, std::int64_t offset) {
    return bigEndian32(window.at(offset, 4));
}

// The offset of the list "movi", which follows the headers.
std::optional<std::int64_t> mediaStart(FileWindow& window, ByteSource& source) {
    if (nameAt(window, 0) != fourCc("RIFF") || nameAt(window, 8) != fourCc("AVI "))
        return std::nullopt;
    ByteRange rest{kListHead, source.size() - kListHead};
    while (const std::optional<RiffChunk> chunk = sensorfiles::nextChunk(source, rest)) {
        if (chunk->kind == fourCc("movi"))
            return chunk->offset;
        if (chunk->missing > 0)
            break;
    }
    return std::nullopt;
}

// Reads the headers as those of a file without media. `size`: the bytes before the media.
std::optional<AviMovie> readHeaders(FileWindow& window, std::int64_t size, QString& problem) {
    if (size > limits::kHeaderBytes) {
        problem = QStringLiteral("the headers are longer than a clip's can be");
        return std::nullopt;
    }
    const Bytes head = window.at(0, static_cast<std::size_t>(size));
    QByteArray bytes(reinterpret_cast<const char*>(head.data()), static_cast<qsizetype>(head.size()));
    qToLittleEndian(static_cast<std::uint32_t>(bytes.size() - 8), bytes.data() + 4);
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return std::nullopt;
    ByteSource source(buffer);
    AviFile file;
    if (!containers::readAviChunks(source, file, problem) || file.lists.empty())
        return std::nullopt;
    return containers::readAviMovie(source, file, problem);
}

// Encoders put a message of several hundred bytes before the first slice.
constexpr std::int64_t kPictureHead = 4096;

// Whether a picture is a key frame, by its first slice. Motion-JPEG pictures and those of unknown codecs are.
bool isKeyPicture(Bytes head, const containers::AviStream& stream) {
    constexpr std::uint32_t kH264[] = {fourCc("H264"), fourCc("h264"), fourCc("avc1"),
                                       fourCc("AVC1"), fourCc("X264"), fourCc("x264")};
    const auto isOneOf = [&](std::uint32_t type) {
        return std::find(std::begin(kH264), std::end(kH264), type) != std::end(kH264);
    };
    if (!isOneOf(stream.codec) && !isOneOf(stream.handler))
        return true;
    for (std::size_t i = 2; i + 1 < head.size(); ++i) {
        const int type = head[i + 1] & 0x1F;
        if (head[i] == 1 && head[i - 1] == 0 && head[i - 2] == 0 && (type == 1 || type == 5))
            return type == 5;
    }
    return false;
}

class AviSaver {
public:
    AviSaver(QFileDevice& from, const AviMovie& movie, QFileDevice& to,
             const containers::CopyProgress& progress)
        : m_from(from),
          m_movie(movie),
          m_source(from, {std::numeric_limits<std::int64_t>::max(), limits::kRecordReads * 10}),
          m_window(from),
          m_copier(from, to, progress),
          m_writer(movie, from.size(), m_copier) {}

    Saved save(std::int64_t mediaStart);

private:
    std::int64_t saveMedia(std::int64_t start);
    bool add(const AviPiece& piece);
    void keepRest(std::int64_t at);
    void finish();

    QFileDevice& m_from;
    const AviMovie& m_movie;
    ByteSource m_source;
    FileWindow m_window;
    containers::Copier m_copier;
    containers::AviWriter m_writer;
    std::vector<containers::AviChunk> m_after;
    ByteRange m_text;
    std::uint64_t m_count = 0;
    Saved m_saved;
};

bool AviSaver::add(const AviPiece& piece) {
    const std::size_t number = *piece.stream();
    if (number >= m_movie.streams.size() || ++m_count > limits::kClipSamples)
        return false;
    const containers::AviStream& stream = m_movie.streams[number];
    const auto headBytes = static_cast<std::size_t>(std::min(piece.body.size, kPictureHead));
    m_writer.add(number, piece.body,
                 !stream.isVideo() || isKeyPicture(m_window.at(piece.body.start, headBytes), stream));
    // An empty chunk repeats the preceding picture.
    if (piece.body.size > 0)
        ++(stream.isVideo() ? m_saved.pictures : stream.isSound() ? m_saved.sounds : m_saved.sensors);
    return !m_copier.hasFailed();
}

// Returns the end of the media in the last list.
std::int64_t AviSaver::saveMedia(std::int64_t start) {
    std::int64_t at = start;
    for (;;) {
        containers::AviMediaCursor cursor(m_source, {at + kListHead, m_source.size() - at - kListHead});
        while (const std::optional<AviPiece> piece = cursor.next()) {
            if (!add(*piece))
                return piece->body.start - 8;
        }
        std::int64_t end = cursor.rest().start;
        const std::int64_t mediaEnd = end;
        // Longer files have further lists, each followed by its index.
        if (nameAt(m_window, end) == fourCc("idx1")) {
            ByteRange rest = cursor.rest();
            const std::optional<RiffChunk> index = sensorfiles::nextChunk(m_source, rest);
            end = index && index->missing == 0 ? rest.start : end;
        }
        const bool goesOn = nameAt(m_window, end) == fourCc("RIFF") &&
                            nameAt(m_window, end + 8) == fourCc("AVIX") &&
                            nameAt(m_window, end + kListHead) == fourCc("LIST") &&
                            nameAt(m_window, end + kListHead + 8) == fourCc("movi");
        if (!goesOn)
            return mediaEnd;
        at = end + kListHead;
    }
}

// Keeps chunks that belong to no stream, and the trailer that some cameras write after all chunks.
void AviSaver::keepRest(std::int64_t at) {
    constexpr std::uint32_t kKept[] = {fourCc("gps0"), fourCc("gsen"), fourCc("LIST"), fourCc("JUNK"),
                                       fourCc("idx1")};
    ByteRange rest{at, m_source.size() - at};
    while (rest.size >= 8 &&
           std::find(std::begin(kKept), std::end(kKept), nameAt(m_window, rest.start)) != std::end(kKept)) {
        const ByteRange before = rest;
        const std::optional<RiffChunk> chunk = sensorfiles::nextChunk(m_source, rest);
        if (!chunk || chunk->missing > 0) {
            rest = before;
            break;
        }
        if (chunk->name == fourCc("idx1") || (chunk->name == fourCc("LIST") && chunk->kind != fourCc("INFO")))
            continue;
        containers::AviChunk kept;
        kept.name = chunk->name;
        kept.kind = chunk->kind;
        kept.content = chunk->body;
        m_after.push_back(std::move(kept));
    }
    constexpr std::size_t kMostText = 65536;
    const Bytes text = m_window.at(
        rest.start,
        std::min<std::size_t>(kMostText, static_cast<std::size_t>(std::max<std::int64_t>(0, rest.size))));
    const QByteArrayView view(reinterpret_cast<const char*>(text.data()),
                              static_cast<qsizetype>(text.size()));
    if (view.contains("ETKLP1"))
        m_text = rest;
    else
        m_saved.lostBytes += rest.size;
}

void AviSaver::finish() {
    m_writer.finish(m_after);
    if (!m_text.isEmpty())
        m_copier.add(m_text);
    if (!m_copier.finish())
        m_saved.failure = m_copier.failure();
}

Saved AviSaver::save(std::int64_t mediaStart) {
    m_writer.begin();
    const std::int64_t end = saveMedia(mediaStart);
    keepRest(end);
    if (m_saved.pictures > 0)
        finish();
    m_saved.isCancelled = m_copier.isCancelled();
    if (const std::optional<std::int64_t> failedAt = m_source.failedAt())
        m_saved.failure = QStringLiteral("byte %1: %2").arg(*failedAt).arg(m_from.errorString());
    return m_saved;
}

} // namespace

bool lacksAviIndex(QFileDevice& file) {
    FileWindow window(file);
    if (nameAt(window, 0) != fourCc("RIFF") || nameAt(window, 8) != fourCc("AVI "))
        return false;
    ByteSource source(file, {std::numeric_limits<std::int64_t>::max(), limits::kRecordReads});
    AviFile chunks;
    QString problem;
    if (!containers::readAviChunks(source, chunks, problem) || chunks.cut || chunks.lists.empty())
        return true;
    const std::optional<AviMovie> movie = containers::readAviMovie(source, chunks, problem);
    if (!movie || movie->media.empty() || movie->media.front().isEmpty())
        return true;
    const auto hasIndex = [](const ByteRange& range) { return !range.isEmpty(); };
    return movie->index.isEmpty() &&
           std::none_of(movie->superIndexes.begin(), movie->superIndexes.end(), hasIndex);
}

Saved saveAvi(QFileDevice& from, QFileDevice& to, const containers::CopyProgress& progress,
              QString& problem) {
    ByteSource source(from, {std::numeric_limits<std::int64_t>::max(), limits::kRecordReads});
    FileWindow window(from);
    const std::optional<std::int64_t> start = mediaStart(window, source);
    const std::optional<AviMovie> movie = start ? readHeaders(window, *start, problem) : std::nullopt;
    if (!movie)
        return {};
    return AviSaver(from, *movie, to, progress).save(*start);
}

} // namespace ql240::repair
