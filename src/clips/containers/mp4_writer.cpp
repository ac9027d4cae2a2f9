#include "clips/containers/mp4_writer.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <limits>

namespace ql240::containers {
namespace {

constexpr std::uint64_t kMost32 = std::numeric_limits<std::uint32_t>::max();
constexpr qsizetype kHeadBytes = 16; // "mdat" with a 64-bit size

template <typename T>
void put(QByteArray& bytes, qsizetype at, T value) {
    if (at + static_cast<qsizetype>(sizeof value) <= bytes.size())
        qToBigEndian(value, bytes.data() + at);
}

template <typename T>
QByteArray bigEndian(T value) {
    QByteArray bytes(sizeof value, '\0');
    put(bytes, 0, value);
    return bytes;
}

// The headers of movie, track and media begin with version and flags, two times, some words and the duration.
// In version 1, times and duration have 64 bits.
struct Header {
    std::uint32_t type;
    qsizetype words; // bytes between the times and the duration
};
constexpr Header kMovieHeader{fourCc("mvhd"), 4};
constexpr Header kTrackHeader{fourCc("tkhd"), 8};
constexpr Header kMediaHeader{fourCc("mdhd"), 4};

QByteArray widened(const QByteArray& bytes, qsizetype words) {
    QByteArray wide = bytes.first(4);
    wide[0] = '\1';
    wide += QByteArray(4, '\0') + bytes.sliced(4, 4) + QByteArray(4, '\0') + bytes.sliced(8, 4);
    wide += bytes.sliced(12, words) + QByteArray(4, '\0') + bytes.sliced(12 + words, 4);
    return wide + bytes.sliced(16 + words);
}

void setDuration(Mp4Box* box, const Header& header, std::uint64_t duration) {
    QByteArray bytes = loadedContent(box);
    if (bytes.size() < 16 + header.words)
        return;
    if (!bytes.startsWith('\1') && duration > kMost32)
        bytes = widened(bytes, header.words);
    if (bytes.startsWith('\1'))
        put(bytes, 20 + header.words, duration);
    else
        put(bytes, 12 + header.words, static_cast<std::uint32_t>(duration));
    box->content = bytes;
}

void setTimescale(Mp4Box* box, std::uint32_t timescale) {
    QByteArray bytes = loadedContent(box);
    put(bytes, bytes.startsWith('\1') ? 20 : 12, timescale);
    if (box)
        box->content = bytes;
}

Mp4Box editBox(const std::vector<Mp4Edit>& edits) {
    const bool isWide = std::any_of(edits.begin(), edits.end(), [](const Mp4Edit& edit) {
        return edit.duration > kMost32 || edit.mediaStart > std::numeric_limits<std::int32_t>::max();
    });
    QByteArray bytes = bigEndian<std::uint32_t>(isWide ? 1U << 24 : 0);
    bytes += bigEndian(static_cast<std::uint32_t>(edits.size()));
    for (const Mp4Edit& edit : edits) {
        bytes += isWide ? bigEndian(edit.duration) : bigEndian(static_cast<std::uint32_t>(edit.duration));
        bytes += isWide ? bigEndian(edit.mediaStart) : bigEndian(static_cast<std::int32_t>(edit.mediaStart));
        bytes += bigEndian<std::uint32_t>(0x10000); // rate 1
    }
    Mp4Box box = newBox(fourCc("edts"), {});
    box.inner.push_back(newBox(fourCc("elst"), bytes));
    return box;
}

// After the header, as usual.
void insertAfter(Mp4Box& parent, std::uint32_t type, std::vector<Mp4Box> boxes) {
    auto& inner = parent.inner;
    auto at =
        std::find_if(inner.begin(), inner.end(), [type](const Mp4Box& box) { return box.type == type; });
    at = at != inner.end() ? std::next(at) : inner.begin();
    inner.insert(at, std::make_move_iterator(boxes.begin()), std::make_move_iterator(boxes.end()));
}

// Sets the length of a sample group that contains all samples.
void setGroupLength(Mp4Box* group, std::uint32_t samples) {
    QByteArray bytes = loadedContent(group);
    put(bytes, 12, samples);
    if (group)
        group->content = bytes;
}

} // namespace

std::uint64_t Mp4Writer::Track::durationIn(std::uint32_t movieTimescale) const {
    std::uint64_t duration = 0;
    for (const Mp4Edit& edit : edits)
        duration += edit.duration;
    const std::uint64_t media = tables.mediaDuration();
    const std::uint64_t scaled =
        media / timescale * movieTimescale + media % timescale * movieTimescale / timescale;
    return edits.empty() ? scaled : duration;
}

void Mp4Writer::begin(const std::vector<Mp4Box>& boxes) {
    for (const Mp4Box& box : boxes)
        writeBox(box, m_output);
    m_mediaStart = m_output.position();
    m_output.add(bigEndian<std::uint32_t>(1) + bigEndian(fourCc("mdat")) + QByteArray(8, '\0'));
}

std::size_t Mp4Writer::addTrack(const Mp4Track& pattern) {
    const std::uint32_t timescale = pattern.layout.timescale;
    m_tracks.push_back({pattern.box, timescale, {}, Mp4TableBuilder(timescale)});
    m_tracks.back().box.remove(fourCc("edts"));
    return m_tracks.size() - 1;
}

void Mp4Writer::list(std::size_t track, const Mp4Sample& sample) {
    m_tracks[track].tables.add(sample, m_output.position(), m_lastTrack == track);
    m_lastTrack = track;
}

void Mp4Writer::addSample(std::size_t track, const Mp4Sample& sample) {
    list(track, sample);
    m_output.add(ByteRange{sample.offset, sample.size});
}

void Mp4Writer::addSample(std::size_t track, Mp4Sample sample, QByteArrayView bytes) {
    sample.size = static_cast<std::uint32_t>(bytes.size());
    list(track, sample);
    m_output.add(bytes);
}

std::int64_t Mp4Writer::addOther(ByteRange range) {
    const std::int64_t position = m_output.position();
    m_output.add(range);
    m_lastTrack = SIZE_MAX;
    return position;
}

void Mp4Writer::setEdits(std::size_t track, std::vector<Mp4Edit> edits) {
    m_tracks[track].edits = std::move(edits);
}

void Mp4Writer::closeMedia() {
    const auto size = static_cast<std::uint64_t>(m_output.position() - m_mediaStart);
    m_output.patch(m_mediaStart + kHeadBytes - 8, bigEndian(size));
}

Mp4Box Mp4Writer::indexedBox(const Track& track, std::uint32_t timescale) {
    Mp4Box box = track.box;
    setDuration(box.find(fourCc("tkhd")), kTrackHeader, track.durationIn(timescale));
    if (!track.edits.empty())
        insertAfter(box, fourCc("tkhd"), {editBox(track.edits)});
    Mp4Box* const media = box.find(fourCc("mdia"));
    setDuration(media->find(fourCc("mdhd")), kMediaHeader, track.tables.mediaDuration());
    Mp4Box* const tables = media->find(fourCc("minf"))->find(fourCc("stbl"));
    setGroupLength(tables->find(fourCc("sbgp")), track.tables.count());
    insertAfter(*tables, fourCc("stsd"), track.tables.boxes());
    return box;
}

void Mp4Writer::finish(const Mp4Movie& movie, std::uint32_t timescale, const std::vector<Mp4Box>& others) {
    closeMedia();
    Mp4Box index = movie.box;
    std::vector<Mp4Box> tracks;
    std::uint64_t duration = 0;
    for (const Track& track : m_tracks) {
        if (track.tables.count() == 0)
            continue;
        tracks.push_back(indexedBox(track, timescale));
        duration = std::max(duration, track.durationIn(timescale));
    }
    Mp4Box* const header = index.find(fourCc("mvhd"));
    setTimescale(header, timescale);
    setDuration(header, kMovieHeader, duration);
    insertAfter(index, fourCc("mvhd"), std::move(tracks));
    writeBox(index, m_output);
    for (const Mp4Box& box : others)
        writeBox(box, m_output);
}

} // namespace ql240::containers
