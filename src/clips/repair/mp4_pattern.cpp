#include "clips/repair/mp4_pattern.h"

#include <QtEndian>
#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

#include "clips/formats/streams.h"
#include "platform/limits.h"

namespace ql240::repair {

using containers::Mp4Sample;
using containers::Mp4SampleCursor;

namespace {

constexpr std::size_t kMostShapes = 16;
constexpr std::size_t kMostRunLengths = 4096; // of which the most frequent 64 are kept
constexpr std::int64_t kLearnedPictures = 600;

Bytes bytesOf(const QByteArray& bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())};
}

// The body of a box anywhere in a sample description.
Bytes boxIn(const QByteArray& description, const char* type) {
    const qsizetype at = description.indexOf(type);
    if (at < 4)
        return {};
    const std::int64_t size = qFromBigEndian<std::uint32_t>(description.constData() + at - 4);
    const std::int64_t there = description.size() - at + 4;
    return size > 8 && size <= there
               ? bytesOf(description)
                     .subspan(static_cast<std::size_t>(at) + 4, static_cast<std::size_t>(size) - 8)
               : Bytes();
}

bool isOneOf(std::uint32_t type, std::initializer_list<std::uint32_t> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

std::optional<TrackPattern> patternOf(const containers::Mp4Track& track) {
    TrackPattern pattern;
    pattern.track = track;
    const std::uint32_t format = track.layout.format;
    const QByteArray description = track.descriptions();
    const bool isH264 = isOneOf(format, {fourCc("avc1"), fourCc("avc3")});
    if (isH264 || isOneOf(format, {fourCc("hvc1"), fourCc("hev1")})) {
        pattern.units = UnitSyntax::fromConfiguration(isH264 ? UnitCodec::H264 : UnitCodec::H265,
                                                      boxIn(description, isH264 ? "avcC" : "hvcC"));
        return pattern.units ? std::optional(pattern) : std::nullopt;
    }
    if (track.isVideo()) {
        pattern.kind = TrackPattern::Kind::Jpeg;
        return isOneOf(format,
                       {fourCc("jpeg"), fourCc("mjpg"), fourCc("MJPG"), fourCc("mjpa"), fourCc("mp4v")})
                   ? std::optional(pattern)
                   : std::nullopt;
    }
    if (format == fourCc("mp4a")) {
        const std::optional<AacFormat> aac = AacFormat::fromDescriptor(boxIn(description, "esds"));
        pattern.kind = TrackPattern::Kind::Aac;
        pattern.aac = aac.value_or(AacFormat{});
        return aac ? std::optional(pattern) : std::nullopt;
    }
    if (track.hasRuns()) {
        pattern.kind = TrackPattern::Kind::Pcm;
        pattern.unitBytes = track.layout.constantSize;
        return pattern;
    }
    const bool isText = isOneOf(format, {fourCc("text"), fourCc("tx3g")});
    pattern.kind = isText ? TrackPattern::Kind::Text : TrackPattern::Kind::Motion;
    return isText || format == fourCc("camm") ? std::optional(pattern) : std::nullopt;
}

// Learns from a track's samples in one pass.
class TrackLearner {
public:
    // `bytesLeft`: of the file, besides the samples of other tracks.
    TrackLearner(ByteSource& source, FileWindow& window, TrackPattern& pattern, ByteRange& media,
                 std::int64_t& bytesLeft)
        : m_source(source), m_window(window), m_pattern(pattern), m_media(media), m_bytesLeft(bytesLeft) {}

    // False, with the reason, if the track's samples couldn't be found without an index.
    bool learn(QString& problem);

private:
    const char* learnSample(const Mp4Sample& sample);
    const char* learnShape(const Mp4Sample& sample, std::size_t& shape);
    const char* learnPicture(const Mp4Sample& sample);
    void endRun(bool isLast);
    void finish();

    ByteSource& m_source;
    FileWindow& m_window;
    TrackPattern& m_pattern;
    ByteRange& m_media;
    std::int64_t& m_bytesLeft;
    std::optional<PictureFinder> m_pictures;
    std::int64_t m_end = -1; // of the preceding sample
    std::uint32_t m_run = 0;
    std::int64_t m_runBytes = 0;
    std::uint32_t m_runs = 0;
    std::map<std::int64_t, int> m_runsOfBytes;
    std::uint32_t m_index = 0;
    std::uint32_t m_lastKey = 0;
    bool m_areKeysRegular = true;
    std::int64_t m_firstPlace = 0;
    std::int64_t m_step = 0;
    std::optional<std::uint32_t> m_lastDuration;
    std::size_t m_lastShape = 0;
};

void TrackLearner::endRun(bool isLast) {
    if (m_run == 0)
        return;
    // The last run may be incomplete.
    if (!isLast || m_runs == 0)
        m_pattern.shortestRun = m_runs == 0 ? m_run : std::min(m_pattern.shortestRun, m_run);
    m_pattern.longestRun = std::max(m_pattern.longestRun, m_run);
    if (m_runsOfBytes.size() < kMostRunLengths || m_runsOfBytes.contains(m_runBytes))
        ++m_runsOfBytes[m_runBytes];
    ++m_runs;
    m_run = 0;
    m_runBytes = 0;
}

const char* TrackLearner::learnShape(const Mp4Sample& sample, std::size_t& shape) {
    const std::optional<QByteArray> types = motionShape(m_window.at(sample.offset, sample.size));
    if (!types)
        return "motion samples that aren't whole records";
    const auto known = std::find(m_pattern.shapes.begin(), m_pattern.shapes.end(), *types);
    shape = static_cast<std::size_t>(known - m_pattern.shapes.begin());
    if (known != m_pattern.shapes.end())
        return nullptr;
    if (m_pattern.shapes.size() >= kMostShapes)
        return "motion samples of too many kinds";
    m_pattern.shapes.push_back(*types);
    m_pattern.durations.resize(m_pattern.shapes.size());
    return nullptr;
}

const char* TrackLearner::learnPicture(const Mp4Sample& sample) {
    if (m_index >= kLearnedPictures)
        return nullptr;
    const std::int64_t end = sample.offset + sample.size;
    const std::optional<FoundPicture> found = m_pictures->at(m_window, sample.offset, end);
    if (!found || found->ending != Ending::Whole || found->size != sample.size)
        return "pictures that don't show where they end";
    const std::int64_t place = m_pictures->accept(*found);
    if (found->slice.isInstant)
        m_firstPlace = place;
    m_step = std::gcd(m_step, place - m_firstPlace);
    return nullptr;
}

const char* TrackLearner::learnSample(const Mp4Sample& sample) {
    using Kind = TrackPattern::Kind;
    if (sample.offset != m_end)
        endRun(false);
    m_end = sample.offset + sample.size;
    m_run += sample.count;
    m_runBytes += sample.size;
    m_media.start = std::min(m_media.start, sample.offset);
    m_media.size = std::max(m_media.size, m_end); // the end, until the start is known
    if (m_lastDuration)
        m_pattern.durations[m_lastShape].learn(*m_lastDuration);
    m_lastDuration = sample.duration / sample.count;
    m_pattern.largest = std::max(m_pattern.largest, sample.size);
    if (m_index == 0)
        m_pattern.shift = sample.compositionOffset;
    m_pattern.hasReordering = m_pattern.hasReordering || sample.compositionOffset != m_pattern.shift;
    if (sample.isSync && m_index > 0) {
        m_areKeysRegular =
            m_areKeysRegular && (m_pattern.keyInterval == 0 || m_pattern.keyInterval == m_index - m_lastKey);
        m_pattern.keyInterval = m_index - std::exchange(m_lastKey, m_index);
    }
    m_bytesLeft -= sample.size;
    const char* reason = m_bytesLeft < 0           ? "samples that share their bytes"
                         : sample.description == 1 ? nullptr
                                                   : "samples of more than one description";
    if (!reason && m_pattern.kind == Kind::Motion)
        reason = learnShape(sample, m_lastShape);
    else if (!reason && m_pattern.kind == Kind::Units)
        reason = learnPicture(sample);
    ++m_index;
    return reason;
}

void TrackLearner::finish() {
    endRun(true);
    if (m_pattern.durations[m_lastShape].isEmpty() && m_lastDuration)
        m_pattern.durations[m_lastShape].learn(*m_lastDuration);
    if (m_pictures)
        m_pattern.units = m_pictures->syntax();
    if (!m_areKeysRegular)
        m_pattern.keyInterval = 0;
    m_pattern.placeStep = std::max<std::int64_t>(1, std::abs(m_step));
    std::vector<std::pair<int, std::int64_t>> byCount;
    for (const auto& [bytes, count] : m_runsOfBytes)
        byCount.emplace_back(-count, bytes);
    std::sort(byCount.begin(), byCount.end());
    constexpr std::size_t kMostLengths = 64;
    for (std::size_t i = 0; i < std::min(byCount.size(), kMostLengths); ++i)
        m_pattern.runBytes.push_back(byCount[i].second);
}

bool TrackLearner::learn(QString& problem) {
    if (m_pattern.units)
        m_pictures.emplace(*m_pattern.units, limits::kPieceBytes, 0); // the largest isn't known yet
    Mp4SampleCursor samples(m_source, m_pattern.track);
    while (const std::optional<Mp4Sample> sample = samples.next()) {
        const char* const reason = learnSample(*sample);
        if (reason) {
            problem = QString::fromLatin1(reason);
            return false;
        }
    }
    problem = samples.problem();
    finish();
    if (m_pictures && m_pattern.hasReordering && m_step == 0)
        problem = QStringLiteral("pictures that don't say in which order they are shown");
    return problem.isEmpty();
}

// Sorts the shapes, longest first, with their durations.
void sortShapes(TrackPattern& pattern) {
    std::vector<std::pair<QByteArray, Durations>> both;
    for (std::size_t i = 0; i < pattern.shapes.size(); ++i)
        both.emplace_back(pattern.shapes[i], pattern.durations[i]);
    std::stable_sort(both.begin(), both.end(),
                     [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
    for (std::size_t i = 0; i < both.size(); ++i)
        std::tie(pattern.shapes[i], pattern.durations[i]) = both[i];
}

// A clip recorded in a garage has no places, the damaged one may. Such a record takes no time of its own.
void addPlaces(TrackPattern& pattern) {
    constexpr char kPlaces[] = {5, 6}; // types of records
    for (const char type : kPlaces) {
        const QByteArray shape(1, type);
        if (std::find(pattern.shapes.begin(), pattern.shapes.end(), shape) != pattern.shapes.end())
            continue;
        pattern.shapes.push_back(shape);
        pattern.durations.emplace_back();
    }
}

std::optional<containers::Mp4Movie> readWhole(ByteSource& source, std::uint64_t& samplesLeft,
                                              QString& problem) {
    containers::Mp4File file;
    if (!containers::readMp4Boxes(source, file, problem))
        return std::nullopt;
    std::optional<containers::Mp4Movie> movie = containers::readMp4Movie(source, file, problem);
    if (movie && movie->isFragmented)
        problem = QStringLiteral("it is made of fragments");
    else if (movie && movie->tracks.empty())
        problem = QStringLiteral("no track in it");
    else if (movie && movie->steps() > samplesLeft)
        problem = QStringLiteral("too many samples, with those of the other clips");
    samplesLeft -= problem.isEmpty() ? movie->steps() : 0;
    return problem.isEmpty() ? std::move(movie) : std::nullopt;
}

} // namespace

std::int64_t TrackPattern::mostBytes() const {
    constexpr std::int64_t kUsual = INT64_C(1) << 20;
    return std::clamp<std::int64_t>(static_cast<std::int64_t>(largest) * 8, kUsual, limits::kPieceBytes);
}

std::optional<Mp4Pattern> readMp4Pattern(QFileDevice& from, std::uint64_t& samplesLeft, QString& problem) {
    ByteSource source(from, {std::numeric_limits<std::int64_t>::max(), limits::kRecordReads});
    std::optional<containers::Mp4Movie> movie = readWhole(source, samplesLeft, problem);
    if (!movie)
        return std::nullopt;
    Mp4Pattern pattern;
    FileWindow window(from);
    std::int64_t bytesLeft = source.size();
    pattern.media = {source.size(), 0};
    for (const containers::Mp4Track& track : movie->tracks) {
        if (track.layout.sampleCount == 0)
            continue;
        std::optional<TrackPattern> found = patternOf(track);
        if (!found) {
            problem = QStringLiteral("\"%1\" in it can't be found without an index")
                          .arg(sensorfiles::typeText(track.layout.format));
            return std::nullopt;
        }
        if (!TrackLearner(source, window, *found, pattern.media, bytesLeft).learn(problem))
            return std::nullopt;
        sortShapes(*found);
        if (found->kind == TrackPattern::Kind::Motion)
            addPlaces(*found);
        pattern.tracks.push_back(std::move(*found));
    }
    pattern.media.size -= pattern.media.start;
    pattern.movie = std::move(*movie);
    return pattern;
}

} // namespace ql240::repair
