#include "clips/repair/mp4_repair.h"

#include <QtEndian>
#include <algorithm>
#include <array>

#include "clips/containers/mp4_writer.h"
#include "platform/limits.h"

namespace ql240::repair {

using containers::Mp4Box;
using containers::Mp4Edit;
using containers::Mp4Sample;

namespace {

constexpr std::uint32_t kIndexType = fourCc("gps ");

bool isBoxType(std::uint32_t type) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        const std::uint32_t character = type >> shift & 0xFF;
        if (character != 0xA9 && (character < 0x20 || character > 0x7E))
            return false;
    }
    return true;
}

std::int64_t sizeAt(Bytes head) {
    const std::uint32_t narrow = bigEndian32(head);
    if (narrow != 1)
        return narrow;
    const std::uint64_t wide = head.size() < 16 ? 0 : qFromBigEndian<std::uint64_t>(head.data() + 8);
    return wide <= static_cast<std::uint64_t>(INT64_MAX) / 2 ? static_cast<std::int64_t>(wide) : 0;
}

QByteArray bigEndian(std::uint32_t value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

// Shifts the creation and modification times in the header of a movie, track or media. Unset times stay
// unset; all become so if it isn't known by how much they differ.
void moveTimes(Mp4Box* header, std::optional<std::int64_t> seconds) {
    QByteArray bytes = containers::loadedContent(header);
    const bool isWide = bytes.startsWith('\1');
    if (bytes.size() < 20)
        return;
    for (const int at : isWide ? std::array{8, 16} : std::array{4, 8}) { // version 1: the low halves
        const auto time = qFromBigEndian<std::uint32_t>(bytes.constData() + at);
        const std::int64_t moved = time != 0 && seconds ? time + *seconds : 0;
        qToBigEndian(static_cast<std::uint32_t>(moved), bytes.data() + at);
    }
    header->content = bytes;
}

// Keeps what it says about the camera. The rest, such as a place or a title, is about the pattern's clip.
void keepCamera(Mp4Box& movie) {
    constexpr std::uint32_t kSign = 0xA9000000; // the copyright sign in Latin-1
    constexpr std::uint32_t kKept[] = {kSign | fourCc("\0mak"), kSign | fourCc("\0mod"),
                                       kSign | fourCc("\0swr")};
    movie.remove(fourCc("meta"));
    const QByteArray bytes = containers::loadedContent(movie.find(fourCc("udta")));
    movie.remove(fourCc("udta"));
    QByteArray kept;
    for (qsizetype at = 0; at + 8 <= bytes.size();) {
        const auto size = qFromBigEndian<std::uint32_t>(bytes.constData() + at);
        const auto type = qFromBigEndian<std::uint32_t>(bytes.constData() + at + 4);
        if (size < 8 || size > bytes.size() - at)
            break;
        if (std::find(std::begin(kKept), std::end(kKept), type) != std::end(kKept))
            kept += bytes.sliced(at, size);
        at += size;
    }
    if (!kept.isEmpty())
        movie.inner.push_back(containers::newBox(fourCc("udta"), kept));
}

containers::Mp4Track movedTrack(containers::Mp4Track track, std::optional<std::int64_t> seconds) {
    moveTimes(track.box.find(fourCc("tkhd")), seconds);
    if (Mp4Box* const media = track.box.find(fourCc("mdia")))
        moveTimes(media->find(fourCc("mdhd")), seconds);
    return track;
}

class Mp4Saver {
public:
    Mp4Saver(QFileDevice& from, const Mp4Pattern& pattern, QFileDevice& to,
             const containers::CopyProgress& progress)
        : m_from(from),
          m_pattern(pattern),
          m_window(from),
          m_boxes(m_window),
          m_copier(from, to, progress),
          m_writer(m_copier),
          m_durations(pattern.tracks.size()) {}

    Saved save();

private:
    bool isGpsBlock(const OuterBoxes::Part& part);
    void keepPart(const OuterBoxes::Part& part);
    void begin();
    void saveArea(ByteRange area);
    void add(const FoundMedia& found);
    Mp4Sample sampleOf(const FoundMedia& found);
    void addGpsBlock(ByteRange block);
    void setEdits(std::size_t track);
    void finish();

    QFileDevice& m_from;
    const Mp4Pattern& m_pattern;
    FileWindow m_window;
    OuterBoxes m_boxes;
    containers::Copier m_copier;
    containers::Mp4Writer m_writer;
    std::optional<MediaWalk> m_walk;
    bool m_hasBegun = false;
    int m_parts = 0; // boxes besides the media
    std::vector<Mp4Box> m_before;
    std::vector<Mp4Box> m_after;
    std::vector<ByteRange> m_blocksBefore;
    QByteArray m_gpsEntries;
    std::vector<std::vector<Durations>> m_durations;
    std::vector<std::int64_t> m_counts;
    Saved m_saved;
};

bool Mp4Saver::isGpsBlock(const OuterBoxes::Part& part) {
    return part.type == fourCc("free") && bigEndian32(m_window.at(part.body.start, 4)) == fourCc("GPS ");
}

void Mp4Saver::keepPart(const OuterBoxes::Part& part) {
    constexpr std::int64_t kHead = 8;
    constexpr int kMostParts = 20'000; // a block every second for five hours
    if (part.type == fourCc("moov"))
        return;
    if (!part.isWhole || ++m_parts > kMostParts) {
        m_saved.lostBytes += part.body.size;
        return;
    }
    if (isGpsBlock(part)) {
        const ByteRange block{part.body.start - kHead, part.body.size + kHead};
        m_hasBegun ? addGpsBlock(block) : m_blocksBefore.push_back(block);
        return;
    }
    Mp4Box box;
    box.type = part.type;
    box.content = part.body;
    (m_hasBegun ? m_after : m_before).push_back(std::move(box));
}

void Mp4Saver::begin() {
    if (std::exchange(m_hasBegun, true))
        return;
    m_writer.begin(m_before);
    for (std::size_t i = 0; i < m_pattern.tracks.size(); ++i) {
        m_writer.addTrack(movedTrack(m_pattern.tracks[i].track, m_pattern.laterS));
        m_durations[i] = m_pattern.tracks[i].durations;
    }
    m_counts.resize(m_pattern.tracks.size());
    for (const ByteRange& block : m_blocksBefore)
        addGpsBlock(block);
}

void Mp4Saver::addGpsBlock(ByteRange block) {
    const std::int64_t at = m_writer.addOther(block);
    ++m_saved.sensors;
    if (at + block.size <= static_cast<std::int64_t>(UINT32_MAX))
        m_gpsEntries +=
            bigEndian(static_cast<std::uint32_t>(at)) + bigEndian(static_cast<std::uint32_t>(block.size));
}

Mp4Sample Mp4Saver::sampleOf(const FoundMedia& found) {
    const TrackPattern& pattern = m_pattern.tracks[found.track];
    Durations& durations = m_durations[found.track][found.shape];
    std::int64_t& count = m_counts[found.track];
    Mp4Sample sample;
    sample.offset = found.offset;
    sample.size = static_cast<std::uint32_t>(found.size);
    sample.count = found.count;
    sample.isSync = found.isKey || pattern.keyInterval == 1;
    sample.duration = pattern.kind == TrackPattern::Kind::Pcm ? found.count : durations.next();
    const std::int64_t moved = durations.ticksOf(count + found.places) - durations.ticksOf(count);
    sample.compositionOffset =
        static_cast<std::int32_t>(std::clamp<std::int64_t>(pattern.shift + moved, INT32_MIN, INT32_MAX));
    count += found.count;
    return sample;
}

void Mp4Saver::add(const FoundMedia& found) {
    if (found.track == FoundMedia::kGpsBlock) {
        addGpsBlock({found.offset, found.size});
        return;
    }
    const TrackPattern& pattern = m_pattern.tracks[found.track];
    m_writer.addSample(found.track, sampleOf(found));
    ++(pattern.isPicture() ? m_saved.pictures : pattern.isSound() ? m_saved.sounds : m_saved.sensors);
}

// With a wrong size, "mdat" may contain the boxes after the media.
void Mp4Saver::saveArea(ByteRange area) {
    if (m_walk)
        m_walk->enter(area);
    else
        m_walk.emplace(m_window, m_pattern, area);
    std::int64_t end = area.start;
    while (const std::optional<FoundMedia> found = m_walk->next()) {
        if (m_copier.hasFailed())
            return;
        add(*found);
        end = found->offset + found->size;
    }
    if (m_walk->end() == MediaWalk::End::Box)
        m_boxes.moveTo(m_walk->position());
    else
        m_saved.lostBytes += area.end() - end;
}

void Mp4Saver::setEdits(std::size_t track) {
    const sensorfiles::TrackLayout& layout = m_pattern.tracks[track].track.layout;
    if (layout.emptyEdit == 0 && layout.mediaEdits == 0)
        return;
    std::vector<Mp4Edit> edits;
    if (layout.emptyEdit > 0)
        edits.push_back({layout.emptyEdit, Mp4Edit::kEmpty});
    const auto media = static_cast<std::int64_t>(m_writer.mediaDuration(track));
    const std::int64_t shown =
        std::max<std::int64_t>(0, media + m_pattern.tracks[track].shift - layout.mediaStart);
    const double scale = static_cast<double>(m_pattern.movie.timescale) / layout.timescale;
    edits.push_back(
        {static_cast<std::uint64_t>(static_cast<double>(shown) * scale + 0.5), layout.mediaStart});
    m_writer.setEdits(track, std::move(edits));
}

void Mp4Saver::finish() {
    containers::Mp4Movie movie = m_pattern.movie;
    moveTimes(movie.box.find(fourCc("mvhd")), m_pattern.laterS);
    QByteArray index = containers::loadedContent(movie.box.find(kIndexType)).left(4);
    movie.box.remove(kIndexType);
    keepCamera(movie.box);
    if (!m_gpsEntries.isEmpty()) {
        constexpr qsizetype kEntry = 8;
        index.resize(4);
        index += bigEndian(static_cast<std::uint32_t>(m_gpsEntries.size() / kEntry)) + m_gpsEntries;
        movie.box.inner.push_back(containers::newBox(kIndexType, index));
    }
    for (std::size_t track = 0; track < m_pattern.tracks.size(); ++track)
        setEdits(track);
    m_writer.finish(movie, movie.timescale, m_after);
}

Saved Mp4Saver::save() {
    while (const std::optional<OuterBoxes::Part> part = m_boxes.next()) {
        if (part->type == fourCc("mdat")) {
            begin();
            saveArea(part->body);
        } else {
            keepPart(*part);
        }
        if (m_copier.hasFailed())
            break;
    }
    if (m_walk && !m_pattern.hasPadding)
        m_saved.lostBytes += m_walk->skippedBytes();
    if (m_saved.pictures > 0) {
        finish();
        if (!m_copier.finish())
            m_saved.failure = m_copier.failure();
    }
    m_saved.isCancelled = m_copier.isCancelled();
    if (const std::optional<std::int64_t> failedAt = m_window.failedAt())
        m_saved.failure = QStringLiteral("byte %1: %2").arg(*failedAt).arg(m_from.errorString());
    return m_saved;
}

} // namespace

std::optional<OuterBoxes::Part> OuterBoxes::next() {
    const Bytes head = m_window.at(m_at, 16);
    if (++m_count > limits::kIndexBoxes || head.size() < 8 || !isBoxType(bigEndian32(head.subspan(4))))
        return std::nullopt;
    Part part;
    part.type = bigEndian32(head.subspan(4));
    const std::int64_t headSize = bigEndian32(head) == 1 ? 16 : 8;
    std::int64_t end = m_at + sizeAt(head);
    part.body.start = m_at + headSize;
    part.isWhole = end >= part.body.start && end <= m_window.size();
    if (part.type == fourCc("mdat")) {
        // A size is right if it leads to another box or to the end.
        const Bytes next = part.isWhole ? m_window.at(end, 8) : Bytes();
        const bool isRight = part.isWhole && (end == m_window.size() ||
                                              (next.size() == 8 && isBoxType(bigEndian32(next.subspan(4)))));
        end = isRight ? end : m_window.size();
    } else if (!part.isWhole) {
        end = m_window.size();
    }
    part.body.size = std::max<std::int64_t>(0, end - part.body.start);
    m_at = end;
    return part;
}

namespace {

enum class Index : std::uint8_t { NoClip, Lacking, Whole };

// A file system may have allocated an index that was never written.
bool isWritten(FileWindow& window, ByteRange index) {
    std::size_t boxes = 0;
    for (std::int64_t at = index.start; at + 8 <= index.end() && boxes < limits::kIndexBoxes; ++boxes) {
        const Bytes head = window.at(at, 8);
        if (head.size() == 8 &&
            std::all_of(head.begin(), head.end(), [](std::uint8_t byte) { return byte == 0; }))
            return false;
        at += std::max<std::int64_t>(8, bigEndian32(head));
    }
    return true;
}

Index indexOf(FileWindow& window) {
    constexpr std::uint32_t kFirst[] = {fourCc("ftyp"), fourCc("mdat"), fourCc("free"),
                                        fourCc("skip"), fourCc("wide"), fourCc("pnot")};
    OuterBoxes boxes(window);
    bool isFirst = true;
    while (const std::optional<OuterBoxes::Part> part = boxes.next()) {
        if (std::exchange(isFirst, false) &&
            std::find(std::begin(kFirst), std::end(kFirst), part->type) == std::end(kFirst))
            return Index::NoClip;
        if (part->type == fourCc("moov") && part->isWhole && isWritten(window, part->body))
            return Index::Whole;
    }
    return isFirst ? Index::NoClip : Index::Lacking;
}

} // namespace

bool lacksMp4Index(FileWindow& window) {
    return indexOf(window) == Index::Lacking;
}

bool hasMp4Index(FileWindow& window) {
    return indexOf(window) == Index::Whole;
}

std::optional<ByteRange> mp4Media(FileWindow& window) {
    OuterBoxes boxes(window);
    while (const std::optional<OuterBoxes::Part> part = boxes.next()) {
        if (part->type == fourCc("mdat") && !part->body.isEmpty())
            return part->body;
    }
    return std::nullopt;
}

Saved saveMp4(QFileDevice& from, const Mp4Pattern& pattern, QFileDevice& to,
              const containers::CopyProgress& progress) {
    return Mp4Saver(from, pattern, to, progress).save();
}

} // namespace ql240::repair
