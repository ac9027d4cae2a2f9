#include "clips/cut/mp4_cut.h"

#include <QtEndian>
#include <algorithm>
#include <limits>
#include <numeric>

#include "clips/containers/mp4_writer.h"
#include "clips/cut/mp4_stretch.h"
#include "clips/cut/sensor_cut.h"
#include "platform/limits.h"

namespace ql240::cut {
namespace {

using namespace containers;

constexpr std::int64_t kUsPerSecond = 1'000'000;
// The limit of a common multiple: nanoseconds.
constexpr std::int64_t kFinestTicks = 1'000'000'000;
constexpr sensorfiles::ReadBudget kBudget{limits::kRecordBytes, limits::kRecordReads};

// A track's contribution to the piece.
struct Part {
    const Mp4Track* track;
    TrackClock clock;
    Mp4Stretch stretch;
};

// Iterates over the samples of a part.
//
// GStreamer's demuxer ends a track at a key frame whose time in the media is past the movie's length,
// without regard to what the edit list hides before. So the few key frames there aren't marked as such;
// players find an earlier one.
//
// FFmpeg 7 takes a text track's length from its samples, not from its edit list. So the last record ends with
// the piece.
class Lane {
public:
    // The piece's end and its length, in ticks of the track.
    Lane(QFileDevice& file, const Part& part, std::int64_t end, std::int64_t length)
        : m_source(file, kBudget),
          m_cursor(m_source, *part.track),
          m_isVideo(part.track->isVideo()),
          m_isRecords(!m_isVideo && !part.track->isSound()),
          m_end(end),
          m_lastKey(part.stretch.decodeStart + length),
          m_left(part.stretch.count) {
        for (std::int64_t i = 0; i < part.stretch.first; ++i)
            m_cursor.next();
        advance();
    }

    const std::optional<Mp4Sample>& sample() const { return m_sample; }
    void advance() {
        m_sample = m_left > 0 ? m_cursor.next() : std::nullopt;
        --m_left;
        if (m_sample && m_isVideo && m_sample->time + m_sample->compositionOffset >= m_lastKey)
            m_sample->isSync = false;
        if (m_sample && m_isRecords)
            m_sample->duration = static_cast<std::uint32_t>(
                std::clamp<std::int64_t>(m_end - m_sample->time, 0, m_sample->duration));
    }

private:
    ByteSource m_source;
    Mp4SampleCursor m_cursor;
    bool m_isVideo;
    bool m_isRecords;
    std::int64_t m_end;
    std::int64_t m_lastKey;
    std::int64_t m_left;
    std::optional<Mp4Sample> m_sample;
};

class Mp4Piece final : public ClipPiece {
public:
    Mp4Piece(QFileDevice& file, CutRange asked, bool keepsSound)
        : m_file(file), m_asked(asked), m_keepsSound(keepsSound) {}

    bool settle(QString& problem);
    void write(Copier& to) override;

private:
    bool readIndex(QString& problem);
    bool settleBorders(QString& problem);
    bool borderBy(const Mp4Track& track, QString& problem);
    std::int64_t clipUs() const;
    bool addPart(const Mp4Track& track, QString& problem);
    void addOthers(ByteSource& source);
    void addFree(ByteSource& source, const Mp4Box& box);
    void settleTimescale();
    std::int64_t inPiece(std::int64_t clipTicks) const; // ticks of the new movie
    std::vector<Mp4Edit> editsOf(const Part& part) const;
    // The piece's length in a track's ticks.
    std::int64_t ticksOf(const Part& part) const {
        return rescaled(m_to - m_from, m_clipTicks, part.track->layout.timescale);
    }
    void copyMedia(Mp4Writer& writer);
    void setGpsIndex(const std::vector<std::pair<std::int64_t, ByteRange>>& blocks);

    QFileDevice& m_file;
    CutRange m_asked;
    bool m_keepsSound;
    Mp4File m_boxes;
    Mp4Movie m_movie;
    std::int64_t m_clipTicks = 1; // per second; the unit of the next two
    std::int64_t m_from = 0;
    std::int64_t m_to = 0;
    bool m_endsEarly = false; // the video ends before the requested time
    std::vector<Part> m_parts;
    std::uint32_t m_timescale = 0; // of the new movie
    std::vector<Mp4Box> m_start;
    std::vector<Mp4Box> m_others;
    std::vector<ByteRange> m_gpsBlocks;
};

bool Mp4Piece::readIndex(QString& problem) {
    ByteSource source(m_file, kBudget);
    if (!readMp4Boxes(source, m_boxes, problem))
        return false;
    std::optional<Mp4Movie> movie = readMp4Movie(source, m_boxes, problem);
    if (!movie)
        return false;
    m_movie = std::move(*movie);
    if (m_movie.isFragmented)
        problem = QStringLiteral("it is in fragments, which can't be cut");
    m_clipTicks = std::min<std::int64_t>(m_movie.timescale, kFinestTicks);
    for (const Mp4Track& track : m_movie.tracks) {
        if (track.layout.mediaEdits > 1)
            problem = QStringLiteral("its edit list has several stretches, which can't be cut");
        m_clipTicks = std::lcm(m_clipTicks, static_cast<std::int64_t>(track.layout.timescale));
        if (m_clipTicks > kFinestTicks)
            m_clipTicks = kFinestTicks;
    }
    return problem.isEmpty();
}

// By the frames of the first video track; without one, exactly as requested.
bool Mp4Piece::settleBorders(QString& problem) {
    m_from = rescaled(m_asked.fromUs, kUsPerSecond, m_clipTicks);
    m_to = rescaled(m_asked.toUs, kUsPerSecond, m_clipTicks);
    const auto video = std::find_if(m_movie.tracks.begin(), m_movie.tracks.end(),
                                    [](const Mp4Track& track) { return track.isVideo(); });
    if (video != m_movie.tracks.end() && !borderBy(*video, problem))
        return false;
    if (m_from >= m_to)
        problem = QStringLiteral("the clip ends before that");
    m_range = {rescaled(m_from, m_clipTicks, kUsPerSecond), rescaled(m_to, m_clipTicks, kUsPerSecond)};
    if (m_endsEarly)
        remarkEnd(clipUs());
    return problem.isEmpty();
}

// The end of the longest track.
std::int64_t Mp4Piece::clipUs() const {
    std::int64_t us = 0;
    for (const Mp4Track& track : m_movie.tracks) {
        const auto ticks = std::min<std::uint64_t>(track.layout.length, sensorfiles::kMaxTicks);
        const TrackClock clock(track, m_movie.timescale, kUsPerSecond);
        us = std::max(us, clock.toClip(static_cast<std::int64_t>(ticks)));
    }
    return us;
}

bool Mp4Piece::borderBy(const Mp4Track& track, QString& problem) {
    const TrackClock clock(track, m_movie.timescale, m_clipTicks);
    const std::optional<Mp4Stretch> shown = pictures(m_file, track, clock, m_from, m_to, problem);
    if (!shown)
        return false;
    const std::int64_t asked = m_from;
    const std::int64_t shownFrom = clock.toClip(shown->shownFrom);
    m_from = std::max<std::int64_t>(0, std::min(asked, shownFrom));
    // The other tracks may begin before the video.
    if (shownFrom > m_to)
        return true;
    const std::int64_t askedTo = m_to;
    m_to = clock.toClip(shown->shownTo);
    m_endsEarly = askedTo > m_to;
    // Edit lists may have coarser ticks than the track.
    const std::int64_t slack = m_clipTicks / m_movie.timescale;
    if (clock.end() && m_to > *clock.end() + slack)
        m_to = *clock.end();
    if (asked >= m_to)
        m_from = m_to;
    return true;
}

bool Mp4Piece::addPart(const Mp4Track& track, QString& problem) {
    const TrackClock clock(track, m_movie.timescale, m_clipTicks);
    std::optional<Mp4Stretch> stretch;
    if (track.isVideo())
        stretch = pictures(m_file, track, clock, m_from, m_to - 1, problem);
    else
        stretch = (track.isSound() ? sound : records)(m_file, track, clock, m_from, m_to, problem);
    if (!stretch)
        return false;
    const bool isShown = stretch->count > 0 && clock.toClip(stretch->shownTo) > m_from &&
                         clock.toClip(stretch->shownFrom) < m_to;
    if (isShown || (stretch->count > 0 && !track.isVideo() && !track.isSound())) {
        m_parts.push_back({&track, clock, *stretch});
        m_bytes += stretch->bytes;
    }
    return true;
}

// Exact for frames and records if the duration still fits 32 bits.
void Mp4Piece::settleTimescale() {
    std::int64_t ticks = 1;
    for (const Part& part : m_parts) {
        if (!part.track->isSound())
            ticks = std::min(kFinestTicks,
                             std::lcm(ticks, static_cast<std::int64_t>(part.track->layout.timescale)));
    }
    const std::int64_t seconds = (m_to - m_from) / m_clipTicks + 1;
    const bool fits =
        ticks > 1 && ticks < kFinestTicks && ticks <= std::numeric_limits<std::uint32_t>::max() / seconds;
    m_timescale = fits ? static_cast<std::uint32_t>(ticks) : m_movie.timescale;
}

bool Mp4Piece::settle(QString& problem) {
    if (!readIndex(problem) || !settleBorders(problem))
        return false;
    for (const Mp4Track& track : m_movie.tracks) {
        if (track.isSound() && !m_keepsSound)
            continue;
        if (!addPart(track, problem)) {
            problem = QStringLiteral("track %1, %2").arg(track.id).arg(problem);
            return false;
        }
    }
    if (m_parts.empty()) {
        problem = QStringLiteral("nothing of any track is in that range");
        return false;
    }
    settleTimescale();
    ByteSource source(m_file, kBudget);
    addOthers(source);
    if (m_bytes > source.size())
        problem = QStringLiteral("its tables name more bytes than the file has");
    return problem.isEmpty();
}

// The boxes besides the index and the media.
void Mp4Piece::addOthers(ByteSource& source) {
    const ClipLayout layout = sensorfiles::readClipLayout(source);
    if (!layout.gpsIndex.isEmpty())
        m_gpsBlocks = gpsBlocks(source, layout, m_range);
    for (const Mp4Box& box : m_boxes.boxes) {
        switch (box.type) {
            case fourCc("ftyp"):
                m_start.push_back(box);
                break;
            case fourCc("moov"):
            case fourCc("mdat"):
            case fourCc("wide"):
                break;
            case fourCc("free"):
                addFree(source, box);
                break;
            case fourCc("gps0"):
                m_others.push_back(newBox(box.type, plainPositions(source, layout, m_range)));
                break;
            case fourCc("gsen"):
                m_others.push_back(newBox(box.type, plainAccelerations(source, layout, m_range)));
                break;
            default:
                m_others.push_back(box);
        }
    }
    for (Mp4Box& box : m_others) {
        if (box.sizeField == Mp4Box::SizeField::ToEnd)
            box.sizeField = Mp4Box::SizeField::Wide;
    }
    for (const ByteRange& block : m_gpsBlocks)
        m_bytes += block.size;
    if (source.failedAt())
        m_remarks << QStringLiteral("some of its sensor data can't be read");
}

// Cuts a log; omits blocks of the "gps " index, which are copied with the media, and large padding; keeps
// anything else.
void Mp4Piece::addFree(ByteSource& source, const Mp4Box& box) {
    const auto body = std::get<ByteRange>(box.content);
    std::array<char, 4> name{};
    const bool hasName = body.size >= 4 && source.read(body.start, name) == 4;
    if (hasName && qFromBigEndian<std::uint32_t>(name.data()) == fourCc("GPS "))
        return;
    const QByteArray log = freeLog(source, body, m_range);
    if (!log.isEmpty())
        m_others.push_back(newBox(box.type, log));
    else if (body.size <= limits::kHeaderBytes)
        m_others.push_back(box);
}

std::int64_t Mp4Piece::inPiece(std::int64_t clipTicks) const {
    const std::int64_t half = m_clipTicks / m_timescale / 2;
    return rescaled(clipTicks - m_from + half, m_clipTicks, m_timescale);
}

std::vector<Mp4Edit> Mp4Piece::editsOf(const Part& part) const {
    const std::int64_t shownFrom = part.clock.toClip(part.stretch.shownFrom);
    const std::int64_t begin = std::max(m_from, shownFrom);
    const std::int64_t end = std::clamp(part.clock.toClip(part.stretch.shownTo), begin, m_to);
    const std::int64_t media = shownFrom >= m_from ? part.stretch.shownFrom : part.clock.toTrack(m_from);
    std::vector<Mp4Edit> edits;
    if (inPiece(begin) > 0)
        edits.push_back({static_cast<std::uint64_t>(inPiece(begin)), Mp4Edit::kEmpty});
    edits.push_back({static_cast<std::uint64_t>(inPiece(end) - inPiece(begin)),
                     std::max<std::int64_t>(0, media - part.stretch.decodeStart)});
    return edits;
}

void Mp4Piece::write(Copier& to) {
    Mp4Writer writer(to);
    writer.begin(m_start);
    for (const Part& part : m_parts)
        writer.setEdits(writer.addTrack(*part.track), editsOf(part));
    copyMedia(writer);
    writer.finish(m_movie, m_timescale, m_others);
}

// In the order of the clip's media.
void Mp4Piece::copyMedia(Mp4Writer& writer) {
    std::vector<std::unique_ptr<Lane>> lanes;
    for (const Part& part : m_parts)
        lanes.push_back(std::make_unique<Lane>(m_file, part, part.clock.toTrack(m_to), ticksOf(part)));
    std::vector<std::pair<std::int64_t, ByteRange>> blocks;
    for (;;) {
        std::size_t next = lanes.size();
        std::int64_t offset = blocks.size() < m_gpsBlocks.size() ? m_gpsBlocks[blocks.size()].start
                                                                 : std::numeric_limits<std::int64_t>::max();
        const bool isBlockLeft = blocks.size() < m_gpsBlocks.size();
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            if (lanes[i]->sample() && lanes[i]->sample()->offset < offset) {
                next = i;
                offset = lanes[i]->sample()->offset;
            }
        }
        if (next < lanes.size()) {
            writer.addSample(next, *lanes[next]->sample());
            lanes[next]->advance();
        } else if (isBlockLeft) {
            const ByteRange block = m_gpsBlocks[blocks.size()];
            blocks.emplace_back(block.isEmpty() ? 0 : writer.addOther(block), block);
        } else {
            break;
        }
    }
    setGpsIndex(blocks);
}

void Mp4Piece::setGpsIndex(const std::vector<std::pair<std::int64_t, ByteRange>>& blocks) {
    Mp4Box* const index = m_movie.box.find(fourCc("gps "));
    QByteArray bytes = loadedContent(index).first(std::min<qsizetype>(4, loadedContent(index).size()));
    if (index == nullptr || bytes.size() < 4)
        return;
    const auto append = [&bytes](std::int64_t value) {
        std::array<char, 4> number{};
        qToBigEndian(static_cast<std::uint32_t>(value), number.data());
        bytes.append(number.data(), number.size());
    };
    append(static_cast<std::int64_t>(blocks.size()));
    for (const auto& [position, range] : blocks) {
        append(position);
        append(range.size);
    }
    index->content = bytes;
}

} // namespace

std::unique_ptr<ClipPiece> pieceOfMp4(QFileDevice& file, CutRange range, bool keepsSound, QString& problem) {
    auto piece = std::make_unique<Mp4Piece>(file, range, keepsSound);
    return piece->settle(problem) ? std::move(piece) : nullptr;
}

} // namespace ql240::cut
