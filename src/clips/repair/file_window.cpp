#include "clips/repair/file_window.h"

#include <QtEndian>
#include <algorithm>

namespace ql240::repair {
namespace {

// Headers of large pictures are far apart and short.
constexpr std::size_t kLeastRead = 4096;
// Close ones are read at once.
constexpr std::size_t kCloseRead = 65536;
constexpr std::int64_t kClose = 16384;

} // namespace

// Keeps the overlapping part of the buffer.
void FileWindow::fill(std::int64_t offset, std::size_t count) {
    const std::int64_t filledEnd = m_start + static_cast<std::int64_t>(m_filled);
    const bool overlaps = offset >= m_start && offset < filledEnd;
    const auto kept = overlaps ? static_cast<std::size_t>(filledEnd - offset) : 0;
    const bool isClose = offset >= m_start && offset < filledEnd + kClose && m_filled > 0;
    const std::size_t least = isClose ? kCloseRead : kLeastRead;
    if (overlaps)
        std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_filled - kept), kept, m_buffer.begin());
    m_buffer.resize(std::max({m_buffer.size(), count, kept + least}));
    const std::int64_t from = offset + static_cast<std::int64_t>(kept);
    const std::int64_t wanted = std::min<std::int64_t>(
        static_cast<std::int64_t>(std::max(count, kept + least) - kept), m_size - from);
    // A worn card takes seconds for each attempt.
    const bool isReadable = !m_failedAt && m_file.seek(from);
    const std::int64_t got =
        isReadable ? std::max<std::int64_t>(0, m_file.read(m_buffer.data() + kept, wanted)) : 0;
    if (got < wanted && !m_failedAt)
        m_failedAt = from + got;
    m_start = offset;
    m_filled = kept + static_cast<std::size_t>(got);
}

Bytes FileWindow::at(std::int64_t offset, std::size_t count) {
    if (offset < 0 || offset >= m_size)
        return {};
    const auto there =
        static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(count), m_size - offset));
    const std::int64_t filledEnd = m_start + static_cast<std::int64_t>(m_filled);
    if (offset < m_start || offset + static_cast<std::int64_t>(there) > filledEnd)
        fill(offset, there);
    const auto skipped = static_cast<std::size_t>(offset - m_start);
    return {reinterpret_cast<const std::uint8_t*>(m_buffer.data()) + skipped,
            std::min(there, m_filled - skipped)};
}

std::uint32_t bigEndian32(Bytes bytes) {
    return bytes.size() < 4 ? 0 : qFromBigEndian<std::uint32_t>(bytes.data());
}

} // namespace ql240::repair
