#include "clips/formats/sample_tables.h"

#include <utility>

namespace ql240::sensorfiles {

std::optional<SampleTimes::Time> SampleTimes::next(std::uint32_t count) {
    Time time{m_time, 0};
    while (count > 0) {
        if (m_left == 0) {
            m_left = m_entries.u32().value_or(0);
            m_delta = m_entries.u32().value_or(0);
        }
        if (m_left == 0 || m_time > kMaxTicks)
            return std::nullopt;
        const std::uint32_t part = std::min(m_left, count);
        m_left -= part;
        count -= part;
        m_time += static_cast<std::int64_t>(part) * m_delta;
    }
    time.duration = static_cast<std::uint32_t>(std::min<std::int64_t>(m_time - time.start, UINT32_MAX));
    return time;
}

SampleSizes::SampleSizes(ByteSource& source, const TrackLayout& track)
    : m_entries(source, track.sizes),
      m_constant(track.constantSize),
      m_bits(track.sizeBits),
      m_left(track.sampleCount) {}

std::optional<std::uint32_t> SampleSizes::next() {
    if (m_left == 0)
        return std::nullopt;
    --m_left;
    return m_constant > 0 ? std::optional(m_constant) : nextEntry();
}

std::optional<std::uint32_t> SampleSizes::nextEntry() {
    if (m_bits == 32)
        return m_entries.u32();
    if (m_bits == 4)
        return nextHalfByte();
    const std::optional<std::uint8_t> high = m_entries.byte();
    if (!high || m_bits == 8)
        return high;
    const std::optional<std::uint8_t> low = m_bits == 16 ? m_entries.byte() : std::nullopt;
    return low ? std::optional<std::uint32_t>(*high << 8 | *low) : std::nullopt;
}

std::optional<std::uint32_t> SampleSizes::nextHalfByte() {
    if (m_secondHalf)
        return std::exchange(m_secondHalf, std::nullopt);
    const std::optional<std::uint8_t> both = m_entries.byte();
    if (!both)
        return std::nullopt;
    m_secondHalf = *both & 0x0F;
    return *both >> 4;
}

ChunkRuns::ChunkRuns(ByteSource& source, const TrackLayout& track) : m_entries(source, track.chunkRuns) {
    readRun();
}

ChunkRuns::Run ChunkRuns::at(std::uint32_t chunk) {
    while (m_next != 0 && chunk >= m_next) {
        m_run = m_nextRun;
        readRun();
    }
    return m_run;
}

void ChunkRuns::readRun() {
    const std::uint32_t before = m_next;
    m_next = m_entries.u32().value_or(0);
    m_nextRun.samples = m_entries.u32().value_or(0);
    m_nextRun.description = m_entries.u32().value_or(0);
    if (m_next <= before)
        m_next = 0;
}

std::optional<std::int64_t> nextChunkOffset(RangeReader& offsets, const TrackLayout& track,
                                            std::int64_t fileSize) {
    const std::optional<std::uint64_t> offset =
        track.wideOffsets ? offsets.u64() : std::optional<std::uint64_t>(offsets.u32());
    const bool isInFile = offset && *offset < static_cast<std::uint64_t>(fileSize);
    return isInFile ? std::optional<std::int64_t>(*offset) : std::nullopt;
}

} // namespace ql240::sensorfiles
