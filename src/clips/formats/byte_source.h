// Random access to a clip's bytes, within a budget: sensor data is small compared with the video, and each of
// its bytes is read once, so a file that needs more has a false structure. Beyond the budget, at the end of
// the file and after a read error, reads return nothing. Not thread-safe.
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
    // The device is open, seekable and outlives this. A file smaller than the budget lowers it to its own
    // size.
    explicit ByteSource(QIODevice& device, ReadBudget budget = {limits::kSensorBytes, limits::kSensorReads});

    std::int64_t size() const { return m_size; }
    // Offset of the first read error.
    std::optional<std::int64_t> failedAt() const { return m_failedAt; }

    // Fills `to` with the bytes from `offset` on; returns how many were read.
    qsizetype read(std::int64_t offset, std::span<char> to);

    // Offset at which the last read ended; nothing if there was no read since the previous call.
    std::optional<std::int64_t> takeLastEnd() { return std::exchange(m_lastEnd, std::nullopt); }

private:
    QIODevice& m_device;
    std::int64_t m_size;
    std::int64_t m_bytesLeft;
    std::int64_t m_readsLeft;
    std::optional<std::int64_t> m_failedAt;
    std::optional<std::int64_t> m_lastEnd;
};

// Reads one range in order through a small window. Numbers are big-endian, as in boxes.
class RangeReader {
public:
    RangeReader(ByteSource& source, ByteRange range);

    // False if the range has fewer bytes left; the reader is then at its end.
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
