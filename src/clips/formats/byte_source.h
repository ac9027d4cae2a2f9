// Bytes of a clip by their place in the file, with a budget: a clip's data are small beside its pictures, and
// each of their bytes is read once, so a file that wants more is lying about its structure. Past the budget,
// at the end of the file and after a read error there is nothing more to read. Not thread-safe.
#pragma once

#include <QIODevice>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "platform/limits.h"

namespace ql240::sensorfiles {

struct ByteRange {
    std::int64_t start = 0;
    std::int64_t size = 0;

    std::int64_t end() const { return start + size; }
    bool isEmpty() const { return size <= 0; }
};

struct ReadBudget {
    std::int64_t bytes;
    std::int64_t reads;
};

class ByteSource {
public:
    // The device is open, seekable and outlives this. Of a small file no more is read than it has.
    explicit ByteSource(QIODevice& device, ReadBudget budget = {limits::kSensorBytes, limits::kSensorReads});

    std::int64_t size() const { return m_size; }
    // Where the device first gave less than the file has.
    std::optional<std::int64_t> failedAt() const { return m_failedAt; }

    // Fills `to` from `offset` on and returns how many bytes there were.
    qsizetype read(std::int64_t offset, std::span<char> to);

    // Where the last read ended; nothing where none was asked for since this was called last.
    std::optional<std::int64_t> takeLastEnd() { return std::exchange(m_lastEnd, std::nullopt); }

private:
    QIODevice& m_device;
    std::int64_t m_size;
    std::int64_t m_bytesLeft;
    std::int64_t m_readsLeft;
    std::optional<std::int64_t> m_failedAt;
    std::optional<std::int64_t> m_lastEnd;
};

// The bytes of one range in order, through a small window. Numbers are big-endian, as in boxes.
class RangeReader {
public:
    RangeReader(ByteSource& source, ByteRange range);

    // False when the range has less left than that; then the reader is at its end.
    bool read(std::span<char> to);
    std::optional<std::uint32_t> u32();
    std::optional<std::uint64_t> u64();
    std::optional<std::uint8_t> byte();

private:
    bool refill();

    ByteSource& m_source;
    ByteRange m_rest;
    std::array<char, 4096> m_window;
    qsizetype m_used = 0;
    qsizetype m_filled = 0;
};

} // namespace ql240::sensorfiles
