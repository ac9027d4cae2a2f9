#include "clips/formats/byte_source.h"

#include <QtEndian>
#include <algorithm>

namespace ql240::sensorfiles {
namespace {

// Some box headers are read twice, and windows extend past the last byte needed.
constexpr std::int64_t kSlack = 64 * 1024;

} // namespace

ByteSource::ByteSource(QIODevice& device, ReadBudget budget)
    : m_device(device),
      m_size(device.size()),
      m_bytesLeft(std::min<std::int64_t>(device.size() + kSlack, budget.bytes)),
      m_readsLeft(budget.reads) {}

qsizetype ByteSource::read(std::int64_t offset, std::span<char> to) {
    const auto wanted = static_cast<std::int64_t>(to.size());
    m_lastEnd = offset;
    if (offset < 0 || offset >= m_size || wanted > m_bytesLeft || m_readsLeft <= 0)
        return 0;
    --m_readsLeft;
    const std::int64_t there = std::min(wanted, m_size - offset);
    const std::int64_t got =
        m_device.seek(offset) ? std::max<std::int64_t>(0, m_device.read(to.data(), there)) : 0;
    if (got < there && !m_failedAt)
        m_failedAt = offset + got;
    m_bytesLeft -= got;
    m_lastEnd = offset + got;
    return got;
}

RangeReader::RangeReader(ByteSource& source, ByteRange range) : m_source(source), m_rest(range) {}

bool RangeReader::refill() {
    const std::int64_t size = std::min<std::int64_t>(m_rest.size, m_window.size());
    m_used = 0;
    m_filled = size > 0 ? m_source.read(m_rest.start, std::span(m_window).first(size)) : 0;
    m_rest = m_filled > 0 ? ByteRange{m_rest.start + m_filled, m_rest.size - m_filled} : ByteRange{};
    return m_filled > 0;
}

bool RangeReader::read(std::span<char> to) {
    while (!to.empty()) {
        if (m_used == m_filled && !refill())
            return false;
        const std::size_t part = std::min<std::size_t>(to.size(), m_filled - m_used);
        std::copy_n(m_window.data() + m_used, part, to.data());
        m_used += static_cast<qsizetype>(part);
        to = to.subspan(part);
    }
    return true;
}

std::optional<std::uint32_t> RangeReader::u32() {
    std::array<char, 4> bytes{};
    return read(bytes) ? std::optional(qFromBigEndian<std::uint32_t>(bytes.data())) : std::nullopt;
}

std::optional<std::uint64_t> RangeReader::u64() {
    std::array<char, 8> bytes{};
    return read(bytes) ? std::optional(qFromBigEndian<std::uint64_t>(bytes.data())) : std::nullopt;
}

std::optional<std::uint8_t> RangeReader::byte() {
    std::array<char, 1> bytes{};
    return read(bytes) ? std::optional(static_cast<std::uint8_t>(bytes[0])) : std::nullopt;
}

} // namespace ql240::sensorfiles
