#include "clips/formats/track_samples.h"

#include <algorithm>

#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr qsizetype kBatchBytes = qsizetype(16) * 1024;
constexpr size_t kBatchSamples = 256;
constexpr qint64 kMaxTicks = qint64(1) << 52; // twice as many seconds still are ms of 64 bits

qint64 ticksToMsUp(qint64 ticks, quint32 timescale) {
    const qint64 scale = timescale;
    qint64 seconds = ticks / scale;
    qint64 rest = ticks % scale;
    if (rest < 0) {
        --seconds;
        rest += scale;
    }
    return seconds * 1000 + (rest * 1000 + scale - 1) / scale;
}

// When each sample begins, in ticks of the track.
class SampleTimes {
public:
    SampleTimes(ByteSource& source, const TrackLayout& track) : m_entries(source, track.times) {}

    std::optional<qint64> next() {
        if (m_left == 0) {
            m_left = m_entries.u32().value_or(0);
            m_delta = m_entries.u32().value_or(0);
        }
        if (m_left == 0 || m_time > kMaxTicks) {
            return std::nullopt;
        }
        --m_left;
        const qint64 time = m_time;
        m_time += m_delta;
        return time;
    }

private:
    RangeReader m_entries;
    quint32 m_left = 0;
    quint32 m_delta = 0;
    qint64 m_time = 0;
};

class SampleSizes {
public:
    SampleSizes(ByteSource& source, const TrackLayout& track)
        : m_entries(source, track.sizes),
          m_constant(track.constantSize),
          m_bits(track.sizeBits),
          m_left(track.sampleCount) {}

    std::optional<quint32> next() {
        if (m_left == 0) {
            return std::nullopt;
        }
        --m_left;
        return m_constant > 0 ? std::optional(m_constant) : nextEntry();
    }

private:
    // Four bits would say 15 bytes at most, which no sensor record is.
    std::optional<quint32> nextEntry() {
        if (m_bits == 32) {
            return m_entries.u32();
        }
        const std::optional<quint8> high = m_entries.byte();
        if (!high || m_bits == 8) {
            return high;
        }
        const std::optional<quint8> low = m_bits == 16 ? m_entries.byte() : std::nullopt;
        return low ? std::optional<quint32>(*high << 8 | *low) : std::nullopt;
    }

    RangeReader m_entries;
    quint32 m_constant;
    int m_bits;
    quint32 m_left;
};

// How many samples each chunk holds, from the runs of like chunks.
class ChunkRuns {
public:
    ChunkRuns(ByteSource& source, const TrackLayout& track) : m_entries(source, track.chunkRuns) {
        readRun();
    }

    quint32 samplesOf(quint32 chunk) {
        while (m_next != 0 && chunk >= m_next) {
            m_samples = m_nextSamples;
            readRun();
        }
        return m_samples;
    }

private:
    void readRun() {
        const quint32 before = m_next;
        m_next = m_entries.u32().value_or(0);
        m_nextSamples = m_entries.u32().value_or(0);
        m_entries.u32(); // sample description
        if (m_next <= before) {
            m_next = 0;
        }
    }

    RangeReader m_entries;
    quint32 m_samples = 0;
    quint32 m_next = 0;
    quint32 m_nextSamples = 0;
};

struct Sample {
    qint64 timeMs;
    qsizetype start;
    qsizetype size;
};

// Reads neighbouring samples of a chunk together.
class SampleBatch {
public:
    SampleBatch(ByteSource& source, const SampleVisitor& visit) : m_source(source), m_visit(visit) {}

    void add(qint64 offset, quint32 size, qint64 timeMs) {
        const auto bytes = static_cast<qsizetype>(std::min<qint64>(size, limits::kSensorSampleBytes));
        const bool follows = offset == m_offset + m_size;
        if (!follows || m_size + bytes > kBatchBytes || m_samples.size() == kBatchSamples) {
            flush();
        }
        if (m_samples.empty()) {
            m_offset = offset;
            m_size = 0;
        }
        m_samples.push_back({timeMs, m_size, bytes});
        m_size += bytes;
    }

    void flush() {
        if (m_samples.empty()) {
            return;
        }
        m_bytes.resize(m_size);
        const qsizetype got = m_source.read(m_offset, m_bytes);
        for (const Sample& sample : m_samples) {
            const qsizetype there = std::min(sample.size, got - sample.start);
            if (there > 0) {
                m_visit(sample.timeMs, std::span<const char>(m_bytes).subspan(sample.start, there));
            }
        }
        m_samples.clear();
        m_size = 0;
    }

private:
    ByteSource& m_source;
    const SampleVisitor& m_visit;
    std::vector<Sample> m_samples;
    std::vector<char> m_bytes;
    qint64 m_offset = 0;
    qsizetype m_size = 0;
};

// A track's ticks as ms from the clip's start, by the beginning of its edit list.
class ClipClock {
public:
    ClipClock(const TrackLayout& track, quint32 fileTimescale)
        : m_timescale(track.timescale), m_mediaStart(std::min(track.mediaStart, kMaxTicks)) {
        if (fileTimescale > 0 && track.emptyEdit < quint64(kMaxTicks)) {
            m_delayMs = ticksToMsUp(static_cast<qint64>(track.emptyEdit), fileTimescale);
        }
    }

    qint64 msOf(qint64 ticks) const { return ticksToMsUp(ticks - m_mediaStart, m_timescale) + m_delayMs; }

private:
    quint32 m_timescale;
    qint64 m_mediaStart;
    qint64 m_delayMs = 0;
};

std::optional<qint64> nextChunk(RangeReader& offsets, const TrackLayout& track, qint64 fileSize) {
    const std::optional<quint64> offset =
        track.wideOffsets ? offsets.u64() : std::optional<quint64>(offsets.u32());
    return offset && *offset < quint64(fileSize) ? std::optional<qint64>(*offset) : std::nullopt;
}

} // namespace

void forEachSample(ByteSource& source, const TrackLayout& track, quint32 fileTimescale,
                   const SampleVisitor& visit) {
    if (track.timescale == 0) {
        return;
    }
    const ClipClock clock(track, fileTimescale);
    SampleTimes times(source, track);
    SampleSizes sizes(source, track);
    ChunkRuns runs(source, track);
    RangeReader offsets(source, track.chunkOffsets);
    SampleBatch batch(source, visit);
    quint32 chunk = 0;
    quint32 leftInChunk = 0;
    qint64 offset = 0;
    for (size_t i = 0; i < limits::kSensorRecords; ++i) {
        if (leftInChunk == 0) {
            const std::optional<qint64> start = nextChunk(offsets, track, source.size());
            leftInChunk = runs.samplesOf(++chunk);
            offset = start.value_or(0);
            if (!start || leftInChunk == 0) {
                break;
            }
        }
        const std::optional<quint32> size = sizes.next();
        const std::optional<qint64> time = times.next();
        if (!size || !time) {
            break;
        }
        const qint64 timeMs = clock.msOf(*time);
        if (*size > 0) {
            batch.add(offset, *size, timeMs);
        }
        if (timeMs > limits::kSensorTrackMs) {
            break;
        }
        offset += *size;
        --leftInChunk;
    }
    batch.flush();
}

} // namespace ql240::sensorfiles
