#include "clips/containers/mp4_movie.h"

#include <QLocale>
#include <QtEndian>
#include <algorithm>
#include <span>

#include "platform/limits.h"

namespace ql240::containers {
namespace {

// The longest run of uncompressed sound: as many samples as players read at once.
constexpr std::uint32_t kRunSamples = 1024;

// The boxes in "stbl" that don't describe single samples. A sample group is kept if it contains all samples.
void dropTables(Mp4Box& tables) {
    std::erase_if(tables.inner, [](const Mp4Box& box) {
        const bool isUniformGroup = box.type == fourCc("sbgp") && sizeOf(box.content) == 20;
        return box.type != fourCc("stsd") && box.type != fourCc("sgpd") && !isUniformGroup;
    });
    const bool hasGroup = tables.find(fourCc("sbgp")) != nullptr;
    if (!hasGroup)
        tables.remove(fourCc("sgpd"));
}

Mp4Box* tablesOf(Mp4Box& track) {
    Mp4Box* box = &track;
    for (const std::uint32_t type : {fourCc("mdia"), fourCc("minf"), fourCc("stbl")})
        box = box != nullptr ? box->find(type) : nullptr;
    return box;
}

std::uint32_t bigEndianAt(const QByteArray& bytes, qsizetype at) {
    return at + 4 <= bytes.size() ? qFromBigEndian<std::uint32_t>(bytes.constData() + at) : 0;
}

// The track's number follows two times, whose size depends on the box's version.
std::uint32_t numberAfterTimes(const QByteArray& fullBox) {
    return bigEndianAt(fullBox, fullBox.startsWith('\1') ? 20 : 12);
}

// `headerBytes`: those of the tracks so far.
std::optional<Mp4Track> readTrack(ByteSource& source, const Mp4Box& box, std::int64_t& headerBytes,
                                  QString& problem) {
    Mp4Track track;
    const std::int64_t start = box.offset + box.headSize();
    track.layout = sensorfiles::readTrackLayout(source, {start, box.offset + box.size() - start});
    track.box = box;
    Mp4Box* const tables = tablesOf(track.box);
    if (tables == nullptr || track.layout.timescale == 0) {
        problem = QStringLiteral("a track without time scale or tables");
        return std::nullopt;
    }
    dropTables(*tables);
    headerBytes += track.box.size();
    if (headerBytes > limits::kHeaderBytes)
        problem = QStringLiteral("the tracks have more headers than a clip can have");
    if (!problem.isEmpty() || !loadBox(source, track.box, problem))
        return std::nullopt;
    track.id = numberAfterTimes(loadedContent(track.box.find(fourCc("tkhd"))));
    return track;
}

} // namespace

bool Mp4Track::hasRuns() const {
    return isSound() && layout.constantSize > 0 && layout.times.size == 8 && layout.compositions.isEmpty() &&
           !layout.hasSyncTable && layout.length == layout.sampleCount;
}

// With runs, each chunk begins one.
std::uint64_t Mp4Track::steps() const {
    constexpr std::int64_t kLeastEntryBytes = 4;
    const auto chunks = static_cast<std::uint64_t>(layout.chunkOffsets.size / kLeastEntryBytes);
    return hasRuns() ? chunks + layout.sampleCount / kRunSamples : layout.sampleCount;
}

std::uint64_t Mp4Movie::steps() const {
    std::uint64_t steps = 0;
    for (const Mp4Track& track : tracks)
        steps += track.steps();
    return steps;
}

QByteArray Mp4Track::descriptions() const {
    Mp4Track copy = *this;
    const Mp4Box* const tables = tablesOf(copy.box);
    return loadedContent(tables != nullptr ? tables->find(fourCc("stsd")) : nullptr);
}

std::optional<Mp4Movie> readMp4Movie(ByteSource& source, const Mp4File& file, QString& problem) {
    const Mp4Box* const index = file.find(fourCc("moov"));
    if (index == nullptr) {
        problem = QStringLiteral("no index: the recording wasn't finished");
        return std::nullopt;
    }
    Mp4Movie movie;
    movie.box = *index;
    movie.box.remove(fourCc("trak"));
    movie.isFragmented = movie.box.find(fourCc("mvex")) != nullptr || file.find(fourCc("moof")) != nullptr;
    if (!loadBox(source, movie.box, problem))
        return std::nullopt;
    movie.timescale = numberAfterTimes(loadedContent(movie.box.find(fourCc("mvhd"))));
    std::int64_t headerBytes = 0;
    for (const Mp4Box& box : index->inner) {
        if (box.type != fourCc("trak"))
            continue;
        std::optional<Mp4Track> track = readTrack(source, box, headerBytes, problem);
        if (track && movie.tracks.size() >= limits::kTracks)
            problem = QStringLiteral("more tracks than a clip can have");
        if (!problem.isEmpty())
            return std::nullopt;
        movie.tracks.push_back(std::move(*track));
    }
    if (movie.timescale == 0)
        problem = QStringLiteral("the index has no time scale");
    else if (movie.steps() > limits::kClipSamples)
        problem = QStringLiteral("more samples than a clip can have");
    return problem.isEmpty() ? std::optional(std::move(movie)) : std::nullopt;
}

Mp4SampleCursor::Mp4SampleCursor(ByteSource& source, const Mp4Track& track)
    : m_fileSize(source.size()),
      m_layout(track.layout),
      m_hasRuns(track.hasRuns()),
      m_times(source, track.layout),
      m_sizes(source, track.layout),
      m_runs(source, track.layout),
      m_offsets(source, track.layout.chunkOffsets),
      m_compositions(source, track.layout.compositions),
      m_syncSamples(source, track.layout.syncSamples),
      m_dependencies(source, track.layout.dependencies) {}

std::optional<Mp4Sample> Mp4SampleCursor::next() {
    if (m_number >= m_layout.sampleCount || !m_problem.isEmpty())
        return std::nullopt;
    if (++m_steps > limits::kClipSamples)
        return fail("more than a clip can have");
    if (m_run.samples == 0 && !openChunk())
        return fail("no chunk in the file holds it");
    Mp4Sample sample;
    sample.count = m_hasRuns ? std::min({m_run.samples, kRunSamples, m_layout.sampleCount - m_number}) : 1;
    if (!takeTables(sample))
        return fail("the tables end before it");
    sample.offset = m_offset;
    sample.description = m_run.description;
    if (sample.size > m_fileSize - m_offset)
        return fail("it isn't whole in the file");
    m_offset += sample.size;
    m_run.samples -= sample.count;
    return sample;
}

bool Mp4SampleCursor::openChunk() {
    m_run = m_runs.at(++m_chunk);
    const std::optional<std::int64_t> start = sensorfiles::nextChunkOffset(m_offsets, m_layout, m_fileSize);
    m_offset = start.value_or(0);
    return start && m_run.samples > 0;
}

bool Mp4SampleCursor::takeTables(Mp4Sample& sample) {
    const std::optional<std::uint32_t> size = m_sizes.next();
    const std::optional<sensorfiles::SampleTimes::Time> time = m_times.next(sample.count);
    if (!size || !time || *size > UINT32_MAX / sample.count)
        return false;
    m_sizes.skip(sample.count - 1);
    sample.size = *size * sample.count;
    sample.duration = time->duration;
    sample.time = time->start;
    m_number += sample.count;
    while (m_compositionsLeft == 0) {
        const std::optional<std::uint32_t> count = m_compositions.u32();
        if (!count)
            break;
        m_compositionsLeft = *count;
        m_composition = static_cast<std::int32_t>(m_compositions.u32().value_or(0));
    }
    sample.compositionOffset = m_compositionsLeft > 0 ? m_composition : 0;
    m_compositionsLeft -= m_compositionsLeft > 0 ? 1 : 0;
    sample.isSync = isSync();
    sample.dependency = m_dependencies.byte().value_or(0);
    return true;
}

bool Mp4SampleCursor::isSync() {
    while (m_layout.hasSyncTable && m_nextSync < m_number) {
        const std::uint32_t before = m_nextSync;
        m_nextSync = m_syncSamples.u32().value_or(UINT32_MAX);
        if (m_nextSync <= before)
            m_nextSync = UINT32_MAX;
    }
    return !m_layout.hasSyncTable || m_nextSync == m_number;
}

std::nullopt_t Mp4SampleCursor::fail(const char* reason) {
    m_problem = QStringLiteral("sample %1: %2")
                    .arg(QLocale(QLocale::English).toString(m_number), QLatin1StringView(reason));
    return std::nullopt;
}

} // namespace ql240::containers
