#include "clips/containers/avi_index.h"

#include <QLocale>
#include <QtEndian>
#include <algorithm>

#include "platform/limits.h"

namespace ql240::containers {
namespace {

using sensorfiles::RangeReader;

constexpr std::uint32_t kKeyFlag = 0x10;           // in "idx1"
constexpr std::uint32_t kNotKeyBit = 0x80000000U;  // in the size, in OpenDML segments
constexpr std::int64_t kSegmentHeadBytes = 8 + 24; // headers of the chunk and the index
constexpr std::uint8_t kIndexOfIndexes = 0;
constexpr std::uint32_t kMostSegments = 4096; // writers begin one per gigabyte

std::uint32_t u32At(const std::array<char, 24>& bytes, std::size_t at) {
    return qFromLittleEndian<std::uint32_t>(bytes.data() + at);
}

// The number of entries in the super index; moves the reader past its header.
std::uint32_t segmentsIn(RangeReader& superIndex) {
    std::array<char, 24> head{};
    const bool isThere = superIndex.read(head) && head[3] == kIndexOfIndexes;
    return isThere ? std::min(u32At(head, 4), kMostSegments) : 0;
}

} // namespace

AviIndexCursor::AviIndexCursor(ByteSource& source, const AviMovie& movie, std::size_t stream)
    : m_source(source),
      m_movie(movie),
      m_stream(stream),
      m_superIndex(source, movie.superIndexes[stream]),
      m_entries(std::in_place, source, movie.index),
      m_isOld(false) {
    m_segmentsLeft = segmentsIn(m_superIndex);
    m_isOld = m_segmentsLeft == 0;
    if (m_isOld)
        m_base = baseOfOldIndex();
}

// Offsets are relative to the kind of the list "movi" with most writers, to the file's start with some.
// Entries of lists ("rec ") don't say which: they have another name than what they lead to.
std::int64_t AviIndexCursor::baseOfOldIndex() {
    const std::int64_t list = m_movie.media.empty() ? 0 : m_movie.media.front().start - 4;
    RangeReader entries(m_source, m_movie.index);
    std::array<char, 16> entry{};
    std::array<char, 4> name{};
    while (entries.read(entry)) {
        if (!AviPiece{qFromBigEndian<std::uint32_t>(entry.data()), {}}.stream())
            continue;
        const std::int64_t offset = qFromLittleEndian<std::uint32_t>(entry.data() + 8);
        for (const std::int64_t base : {list, INT64_C(0)}) {
            if (m_source.read(base + offset, name) == 4 &&
                std::equal(name.begin(), name.end(), entry.begin()))
                return base;
        }
        fail("the index doesn't lead to it");
        break;
    }
    return list;
}

std::optional<AviPiece> AviIndexCursor::next() {
    if (!m_problem.isEmpty())
        return std::nullopt;
    const std::optional<AviPiece> piece = m_isOld ? nextOfOldIndex() : nextOfSegments();
    return piece ? checked(*piece) : std::nullopt;
}

std::optional<AviPiece> AviIndexCursor::nextOfOldIndex() {
    std::array<char, 16> entry{};
    while (m_entries->read(entry)) {
        const auto u32 = [&](std::size_t at) { return qFromLittleEndian<std::uint32_t>(entry.data() + at); };
        const AviPiece piece{qFromBigEndian<std::uint32_t>(entry.data()),
                             {m_base + u32(8) + 8, u32(12)},
                             (u32(4) & kKeyFlag) != 0};
        if (piece.stream() == m_stream)
            return piece;
    }
    return std::nullopt;
}

std::optional<AviPiece> AviIndexCursor::nextOfSegments() {
    while (m_left == 0) {
        if (m_segmentsLeft == 0)
            return std::nullopt;
        --m_segmentsLeft;
        if (!openSegment())
            return fail("a part of the index isn't there");
    }
    --m_left;
    std::array<char, 8> entry{};
    if (!m_entries->read(entry))
        return fail("a part of the index ends before it");
    const std::int64_t offset = qFromLittleEndian<std::uint32_t>(entry.data());
    const auto size = qFromLittleEndian<std::uint32_t>(entry.data() + 4);
    return AviPiece{
        m_movie.streams[m_stream].chunkName, {m_base + offset, size & ~kNotKeyBit}, (size & kNotKeyBit) == 0};
}

bool AviIndexCursor::openSegment() {
    std::array<char, 16> entry{};
    if (!m_superIndex.read(entry))
        return false;
    const auto offset = static_cast<std::int64_t>(qFromLittleEndian<std::uint64_t>(entry.data()));
    const std::int64_t size = qFromLittleEndian<std::uint32_t>(entry.data() + 8);
    std::array<char, 24> head{};
    if (offset < 0 || offset > m_source.size() ||
        m_source.read(offset + 8, head) != static_cast<qsizetype>(head.size()))
        return false;
    m_left = u32At(head, 4);
    m_base = static_cast<std::int64_t>(qFromLittleEndian<std::uint64_t>(head.data() + 12));
    m_entries.emplace(m_source, ByteRange{offset + kSegmentHeadBytes, size - kSegmentHeadBytes});
    return head[3] == 1 && m_base >= 0 && m_base <= m_source.size();
}

// Some writers mark no key frames. The first picture is one, and with Motion-JPEG all are.
std::optional<AviPiece> AviIndexCursor::checked(AviPiece piece) {
    if (++m_number > limits::kClipSamples)
        return fail("more than a clip can have");
    if (piece.body.end() > m_source.size())
        return fail("it isn't whole in the file");
    if (!piece.body.isEmpty()) {
        const bool isJpeg = (m_movie.streams[m_stream].codec | 0x20202020U) == fourCc("mjpg");
        piece.isKey = piece.isKey || isJpeg || !m_hasPicture;
        m_hasPicture = true;
    }
    return piece;
}

std::nullopt_t AviIndexCursor::fail(const char* reason) {
    m_problem = QStringLiteral("stream %1, chunk %2: %3")
                    .arg(m_stream + 1)
                    .arg(QLocale(QLocale::English).toString(static_cast<qulonglong>(m_number)),
                         QLatin1StringView(reason));
    return std::nullopt;
}

} // namespace ql240::containers
