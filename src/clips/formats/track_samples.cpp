#include "clips/formats/track_samples.h"

#include <algorithm>

#include "clips/formats/sample_tables.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr qsizetype kBatchBytes = 16 * 1024;
constexpr std::size_t kBatchSamples = 256;
constexpr std::int64_t kMaxSeconds = INT64_C(1) << 40; // the sum of two still fits 64 bits in microseconds
constexpr std::int64_t kUsPerSecond = 1'000'000;

std::int64_t ticksToUsUp(std::int64_t ticks, std::uint32_t timescale) {
    const std::int64_t scale = timescale;
    std::int64_t seconds = ticks / scale;
    std::int64_t rest = ticks % scale;
    if (rest < 0) {
        --seconds;
        rest += scale;
    }
    return std::clamp(seconds, -kMaxSeconds, kMaxSeconds) * kUsPerSecond +
           (rest * kUsPerSecond + scale - 1) / scale;
}

struct Sample {
    std::int64_t timeUs;
    std::int64_t number;
    qsizetype start;
    qsizetype size;
    bool isTooLong;
};

// Reads adjacent samples at once.
class SampleBatch {
public:
    SampleBatch(ByteSource& source, RecordSink& sink, const SampleVisitor& visit)
        : m_source(source), m_sink(sink), m_visit(visit) {}

    void add(std::int64_t offset, std::uint32_t size, std::int64_t number, std::int64_t timeUs) {
        const auto bytes = static_cast<qsizetype>(std::min<std::int64_t>(size, limits::kSensorSampleBytes));
        const bool follows = offset == m_offset + m_size;
        if (!follows || m_size + bytes > kBatchBytes || m_samples.size() == kBatchSamples)
            flush();
        if (m_samples.empty()) {
            m_offset = offset;
            m_size = 0;
        }
        m_samples.push_back({timeUs, number, m_size, bytes, bytes < static_cast<std::int64_t>(size)});
        m_size += bytes;
    }

    void flush() {
        if (m_samples.empty())
            return;
        m_bytes.resize(m_size);
        const qsizetype got = m_source.read(m_offset, m_bytes);
        for (const Sample& sample : m_samples) {
            const qsizetype there = std::min(sample.size, got - sample.start);
            const std::int64_t offset = m_offset + sample.start;
            if (there < sample.size)
                m_sink.addStop({"sample", sample.number, offset, "it isn't whole in the file"});
            else if (sample.isTooLong)
                m_sink.addStop({"sample", sample.number, offset, "only its first 64 KiB are read"});
            if (there > 0) {
                const auto bytes = std::span<const char>(m_bytes).subspan(sample.start, there);
                const bool isWhole = there == sample.size && !sample.isTooLong;
                m_visit({sample.timeUs, sample.number, offset, bytes, isWhole});
            }
        }
        m_samples.clear();
        m_size = 0;
    }

private:
    ByteSource& m_source;
    RecordSink& m_sink;
    const SampleVisitor& m_visit;
    std::vector<Sample> m_samples;
    std::vector<char> m_bytes;
    std::int64_t m_offset = 0;
    qsizetype m_size = 0;
};

// Converts a track's ticks to microseconds from the clip's start, which the edit list shifts.
class ClipClock {
public:
    ClipClock(const TrackLayout& track, std::uint32_t fileTimescale)
        : m_timescale(track.timescale), m_mediaStart(std::min(track.mediaStart, kMaxTicks)) {
        if (fileTimescale > 0 && track.emptyEdit < static_cast<std::uint64_t>(kMaxTicks))
            m_delayUs = ticksToUsUp(static_cast<std::int64_t>(track.emptyEdit), fileTimescale);
    }

    std::int64_t usOf(std::int64_t ticks) const {
        return ticksToUsUp(ticks - m_mediaStart, m_timescale) + m_delayUs;
    }

private:
    std::uint32_t m_timescale;
    std::int64_t m_mediaStart;
    std::int64_t m_delayUs = 0;
};

} // namespace

void forEachSample(ByteSource& source, const TrackLayout& track, std::uint32_t fileTimescale,
                   RecordSink& sink, const SampleVisitor& visit) {
    if (track.timescale == 0)
        return;
    const ClipClock clock(track, fileTimescale);
    SampleTimes times(source, track);
    SampleSizes sizes(source, track);
    ChunkRuns runs(source, track);
    RangeReader offsets(source, track.chunkOffsets);
    SampleBatch batch(source, sink, visit);
    std::uint32_t chunk = 0;
    std::uint32_t leftInChunk = 0;
    std::int64_t offset = 0;
    for (std::int64_t number = 1; number <= track.sampleCount; ++number) {
        if (sink.isFull())
            break;
        if (static_cast<std::size_t>(number) > sink.mostRecords()) {
            sink.addStop({"sample", number, offset, "it and later ones aren't read"});
            break;
        }
        if (leftInChunk == 0) {
            const std::optional<std::int64_t> start = nextChunkOffset(offsets, track, source.size());
            leftInChunk = runs.at(++chunk).samples;
            offset = start.value_or(0);
            if (!start || leftInChunk == 0) {
                const std::int64_t entry = (chunk - 1) * (track.wideOffsets ? 8LL : 4LL);
                sink.addStop(
                    {"sample", number, track.chunkOffsets.start + entry, "no chunk in the file holds it"});
                break;
            }
        }
        const std::optional<std::uint32_t> size = sizes.next();
        const std::optional<SampleTimes::Time> time = times.next();
        if (!size || !time) {
            sink.addStop(
                {"sample", number, (size ? track.times : track.sizes).end(), "the tables end before it"});
            break;
        }
        const std::int64_t timeUs = clock.usOf(time->start);
        if (*size > 0)
            batch.add(offset, *size, number, timeUs);
        if (timeUs > sink.endUs())
            break;
        offset += *size;
        --leftInChunk;
    }
    batch.flush();
}

} // namespace ql240::sensorfiles
