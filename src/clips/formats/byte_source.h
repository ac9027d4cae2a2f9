// Bytes of a clip by their place in the file, with a budget: a clip's data are small beside its pictures, and
// each of their bytes is read once, so a file that wants more is lying about its structure. Past the budget,
// at the end of the file and after a read error there is nothing more to read. Not thread-safe.
#pragma once

#include <QIODevice>
#include <array>
#include <optional>
#include <span>
#include <utility>

namespace ql240::sensorfiles {

struct ByteRange {
    qint64 start = 0;
    qint64 size = 0;

    qint64 end() const { return start + size; }
    bool isEmpty() const { return size <= 0; }
};

class ByteSource {
public:
    // The device is open, seekable and outlives this.
    explicit ByteSource(QIODevice& device);

    qint64 size() const { return m_size; }

    // Fills `to` from `offset` on and returns how many bytes there were.
    qsizetype read(qint64 offset, std::span<char> to);

    // Where the last read ended; nothing where none was asked for since this was called last.
    std::optional<qint64> takeLastEnd() { return std::exchange(m_lastEnd, std::nullopt); }

private:
    QIODevice& m_device;
    qint64 m_size;
    qint64 m_bytesLeft;
    int m_readsLeft;
    std::optional<qint64> m_lastEnd;
};

// The bytes of one range in order, through a small window. Numbers are big-endian, as in boxes.
class RangeReader {
public:
    RangeReader(ByteSource& source, ByteRange range);

    // False when the range has less left than that; then the reader is at its end.
    bool read(std::span<char> to);
    std::optional<quint32> u32();
    std::optional<quint64> u64();
    std::optional<quint8> byte();

private:
    bool refill();

    ByteSource& m_source;
    ByteRange m_rest;
    std::array<char, 4096> m_window;
    qsizetype m_used = 0;
    qsizetype m_filled = 0;
};

} // namespace ql240::sensorfiles
