#include "clips/containers/mp4_table_builder.h"

#include <QtEndian>
#include <algorithm>
#include <limits>

namespace ql240::containers {
namespace {

template <typename T>
void append(QByteArray& bytes, T value) {
    const T swapped = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char*>(&swapped), sizeof swapped);
}

// Version, flags and entry count of a table.
QByteArray tableHead(std::size_t count, std::uint32_t version = 0) {
    QByteArray bytes;
    append<std::uint32_t>(bytes, version << 24);
    append(bytes, static_cast<std::uint32_t>(count));
    return bytes;
}

QByteArray runTable(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& runs,
                    std::uint32_t version = 0) {
    QByteArray bytes = tableHead(runs.size(), version);
    for (const auto& [count, value] : runs) {
        append(bytes, count);
        append(bytes, value);
    }
    return bytes;
}

bool isNegative(std::uint32_t offset) {
    return static_cast<std::int32_t>(offset) < 0;
}

} // namespace

void Mp4TableBuilder::addRun(Runs& runs, std::uint32_t count, std::uint32_t value) {
    if (!runs.empty() && runs.back().second == value)
        runs.back().first += count;
    else
        runs.emplace_back(count, value);
}

void Mp4TableBuilder::add(const Mp4Sample& sample, std::int64_t offset, bool follows) {
    m_count += sample.count;
    m_duration += sample.duration;
    addRun(m_durations, sample.count, sample.duration / sample.count);
    addRun(m_compositions, sample.count, static_cast<std::uint32_t>(sample.compositionOffset));
    addRun(m_sizes, sample.count, sample.size / sample.count);
    if (sample.isSync && sample.count == 1)
        m_syncSamples.push_back(m_count);
    if (sample.count == 1)
        m_dependencies += static_cast<char>(sample.dependency);
    addToChunk(sample, offset, follows);
}

void Mp4TableBuilder::addToChunk(const Mp4Sample& sample, std::int64_t offset, bool follows) {
    const bool begins = !follows || m_chunks.empty() || m_chunks.back().description != sample.description ||
                        m_ticksInChunk >= m_chunkTicks;
    if (begins) {
        m_chunks.push_back({offset, 0, sample.description});
        m_ticksInChunk = 0;
    }
    m_chunks.back().samples += sample.count;
    m_ticksInChunk += sample.duration;
}

std::vector<Mp4Box> Mp4TableBuilder::boxes() const {
    std::vector<Mp4Box> boxes;
    boxes.push_back(newBox(fourCc("stts"), runTable(m_durations)));
    const bool hasCompositions = std::any_of(m_compositions.begin(), m_compositions.end(),
                                             [](const auto& r) { return r.second != 0; });
    const bool hasNegative = std::any_of(m_compositions.begin(), m_compositions.end(),
                                         [](const auto& r) { return isNegative(r.second); });
    if (hasCompositions)
        boxes.push_back(newBox(fourCc("ctts"), runTable(m_compositions, hasNegative ? 1 : 0)));
    if (m_syncSamples.size() < m_count && m_dependencies.size() == static_cast<qsizetype>(m_count)) {
        QByteArray bytes = tableHead(m_syncSamples.size());
        for (const std::uint32_t number : m_syncSamples)
            append(bytes, number);
        boxes.push_back(newBox(fourCc("stss"), bytes));
    }
    if (std::any_of(m_dependencies.begin(), m_dependencies.end(), [](char c) { return c != 0; }))
        boxes.push_back(newBox(fourCc("sdtp"), QByteArray(4, '\0') + m_dependencies));
    boxes.push_back(chunkRuns());
    boxes.push_back(sizes());
    boxes.push_back(chunkOffsets());
    return boxes;
}

Mp4Box Mp4TableBuilder::chunkRuns() const {
    QByteArray entries;
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < m_chunks.size(); ++i) {
        const Chunk& chunk = m_chunks[i];
        if (i > 0 && m_chunks[i - 1].samples == chunk.samples &&
            m_chunks[i - 1].description == chunk.description)
            continue;
        append(entries, static_cast<std::uint32_t>(i + 1));
        append(entries, chunk.samples);
        append(entries, chunk.description);
        ++count;
    }
    return newBox(fourCc("stsc"), tableHead(count) + entries);
}

Mp4Box Mp4TableBuilder::chunkOffsets() const {
    const bool isWide = std::any_of(m_chunks.begin(), m_chunks.end(), [](const Chunk& chunk) {
        return chunk.offset > std::numeric_limits<std::uint32_t>::max();
    });
    QByteArray bytes = tableHead(m_chunks.size());
    for (const Chunk& chunk : m_chunks) {
        if (isWide)
            append(bytes, static_cast<std::uint64_t>(chunk.offset));
        else
            append(bytes, static_cast<std::uint32_t>(chunk.offset));
    }
    return newBox(isWide ? fourCc("co64") : fourCc("stco"), bytes);
}

Mp4Box Mp4TableBuilder::sizes() const {
    QByteArray bytes(4, '\0');
    const bool isConstant = m_sizes.size() == 1 && m_sizes.front().second > 0;
    append(bytes, isConstant ? m_sizes.front().second : 0U);
    append(bytes, m_count);
    for (const auto& [count, value] : m_sizes) {
        for (std::uint32_t i = 0; i < count && !isConstant; ++i)
            append(bytes, value);
    }
    return newBox(fourCc("stsz"), bytes);
}

} // namespace ql240::containers
