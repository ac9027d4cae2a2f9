// Reads a file at mostly ascending offsets through one buffer, which grows to the largest request. One thread
// at a time; offsets and sizes in bytes.
#pragma once

#include <QFileDevice>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ql240::repair {

using Bytes = std::span<const std::uint8_t>;

class FileWindow {
public:
    // The file is open and outlives this.
    explicit FileWindow(QFileDevice& file) : m_file(file), m_size(file.size()) {}

    std::int64_t size() const { return m_size; }
    // Up to `count` bytes, fewer at the end of the file or after a read error, from which on nothing is read
    // any more. Valid until the next call.
    Bytes at(std::int64_t offset, std::size_t count);
    // The offset of the first read error.
    std::optional<std::int64_t> failedAt() const { return m_failedAt; }

private:
    void fill(std::int64_t offset, std::size_t count);

    QFileDevice& m_file;
    std::int64_t m_size;
    std::vector<char> m_buffer;
    std::int64_t m_start = 0;
    std::size_t m_filled = 0;
    std::optional<std::int64_t> m_failedAt;
};

// 0 if there are fewer than four bytes.
std::uint32_t bigEndian32(Bytes bytes);

} // namespace ql240::repair
