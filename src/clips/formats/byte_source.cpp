#include "clips/formats/byte_source.h"

#include <QtEndian>
#include <algorithm>

#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

// Box headers are read twice at times, windows a little past what is needed.
constexpr qint64 kSlack = qint64(64) * 1024;

} // namespace

ByteSource::ByteSource(QIODevice& device)
    : m_device(device),
      m_size(device.size()),
      m_bytesLeft(std::min<qint64>(device.size() + kSlack, limits::kSensorBytes)),
      m_readsLeft(limits::kSensorReads) {}

qsizetype ByteSource::read(qint64 offset, std::span<char> to) {
    const auto wanted = static_cast<qint64>(to.size());
    m_lastEnd = offset;
    if (offset < 0 || offset >= m_size || wanted > m_bytesLeft || m_readsLeft <= 0) {
        return 0;
    }
    --m_readsLeft;
    if (!m_device.seek(offset)) {
        return 0;
    }
    const qint64 got = std::max<qint64>(0, m_device.read(to.data(), std::min(wanted, m_size - offset)));
    m_bytesLeft -= got;
    m_lastEnd = offset + got;
    return got;
}

RangeReader::RangeReader(ByteSource& source, ByteRange range) : m_source(source), m_rest(range) {}

bool RangeReader::refill() {
    const qint64 size = std::min<qint64>(m_rest.size, m_window.size());
    m_used = 0;
    m_filled = size > 0 ? m_source.read(m_rest.start, std::span(m_window).first(size)) : 0;
    m_rest = m_filled > 0 ? ByteRange{m_rest.start + m_filled, m_rest.size - m_filled} : ByteRange{};
    return m_filled > 0;
}

bool RangeReader::read(std::span<char> to) {
    while (!to.empty()) {
        if (m_used == m_filled && !refill()) {
            return false;
        }
        const size_t part = std::min<size_t>(to.size(), m_filled - m_used);
        std::copy_n(m_window.data() + m_used, part, to.data());
        m_used += static_cast<qsizetype>(part);
        to = to.subspan(part);
    }
    return true;
}

std::optional<quint32> RangeReader::u32() {
    std::array<char, 4> bytes{};
    return read(bytes) ? std::optional(qFromBigEndian<quint32>(bytes.data())) : std::nullopt;
}

std::optional<quint64> RangeReader::u64() {
    std::array<char, 8> bytes{};
    return read(bytes) ? std::optional(qFromBigEndian<quint64>(bytes.data())) : std::nullopt;
}

std::optional<quint8> RangeReader::byte() {
    std::array<char, 1> bytes{};
    return read(bytes) ? std::optional(static_cast<quint8>(bytes[0])) : std::nullopt;
}

} // namespace ql240::sensorfiles
