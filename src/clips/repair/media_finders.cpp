#include "clips/repair/media_finders.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "clips/formats/sensor_formats.h"

namespace ql240::repair {
namespace {

constexpr std::size_t kMostMotionBytes = 4096;
constexpr std::size_t kMostTextBytes = 4096;

// Nothing if the bytes don't begin with these records.
std::optional<FoundSample> recordsAt(Bytes bytes, const QByteArray& shape) {
    FoundSample found;
    for (const char type : shape) {
        const auto at = static_cast<std::size_t>(found.size);
        const std::array<std::uint8_t, 4> head{0, 0, static_cast<std::uint8_t>(type), 0};
        const std::size_t there = std::min<std::size_t>(4, bytes.size() - at);
        if (!std::equal(head.begin(), head.begin() + static_cast<std::ptrdiff_t>(there),
                        bytes.begin() + static_cast<std::ptrdiff_t>(at)))
            return std::nullopt;
        // Too few bytes to recognize the record: a shorter shape may be complete.
        if (there < head.size() && found.size > 0)
            return std::nullopt;
        const std::size_t size = sensorfiles::motionRecordSize(static_cast<std::uint8_t>(type));
        if (bytes.size() - at < size) {
            found.ending = Ending::Cut;
            return found;
        }
        if (!sensorfiles::isPlausibleMotionRecord(
                std::span(reinterpret_cast<const char*>(bytes.data()) + at, size)))
            return std::nullopt;
        found.size += static_cast<std::int64_t>(size);
    }
    return found;
}

bool isText(std::uint8_t c) {
    return (c >= 0x20 && c < 0x7F) || c == '\r' || c == '\n' || c == '\t' || c == 0;
}

// `at`: after the marker. Nothing if the bytes end before the segment.
std::optional<std::int64_t> segmentEnd(FileWindow& window, std::int64_t at, std::int64_t end) {
    const Bytes length = window.at(at, 2);
    if (length.size() < 2 || at + 2 > end)
        return std::nullopt;
    return at + std::max<std::int64_t>(2, length[0] << 8 | length[1]);
}

// The offset of the next marker after a scan's data; nothing if the bytes end before.
std::optional<std::int64_t> scanEnd(FileWindow& window, std::int64_t at, std::int64_t end) {
    constexpr std::size_t kPiece = 16384;
    while (at + 1 < end) {
        const Bytes piece = window.at(at, static_cast<std::size_t>(std::min<std::int64_t>(kPiece, end - at)));
        if (piece.size() < 2)
            return std::nullopt;
        const std::uint8_t* const last = piece.data() + piece.size() - 1;
        for (const auto* mark = piece.data(); (mark = std::find(mark, last, 0xFF)) != last; ++mark) {
            const std::uint8_t code = mark[1];
            const bool isInside = code == 0 || code == 0xFF || (code >= 0xD0 && code <= 0xD7);
            if (!isInside)
                return at + (mark - piece.data());
        }
        at += static_cast<std::int64_t>(piece.size()) - 1;
    }
    return std::nullopt;
}

} // namespace

std::optional<QByteArray> motionShape(Bytes sample) {
    QByteArray shape;
    while (!sample.empty()) {
        const std::size_t size = sample.size() >= 4 ? sensorfiles::motionRecordSize(sample[2]) : 0;
        if (size == 0 || sample[0] != 0 || sample[1] != 0 || sample[3] != 0 || sample.size() < size)
            return std::nullopt;
        shape += static_cast<char>(sample[2]);
        sample = sample.subspan(size);
    }
    return shape.isEmpty() ? std::nullopt : std::optional(shape);
}

std::optional<FoundSample> motionSampleAt(FileWindow& window, std::int64_t offset, std::int64_t end,
                                          const MotionShapes& shapes) {
    const auto there = static_cast<std::size_t>(std::clamp<std::int64_t>(end - offset, 0, kMostMotionBytes));
    const Bytes bytes = window.at(offset, there);
    for (std::size_t i = 0; i < shapes.size() && bytes.size() >= 4; ++i) {
        std::optional<FoundSample> found = recordsAt(bytes, shapes[i]);
        if (found) {
            found->shape = i;
            return found;
        }
    }
    return std::nullopt;
}

std::optional<FoundSample> textSampleAt(FileWindow& window, std::int64_t offset, std::int64_t end) {
    const auto there = static_cast<std::size_t>(std::clamp<std::int64_t>(end - offset, 0, kMostTextBytes));
    const Bytes bytes = window.at(offset, there);
    if (bytes.size() < 4)
        return std::nullopt;
    const std::size_t length = std::size_t{bytes[0]} << 8U | bytes[1];
    const Bytes text = bytes.subspan(2, std::min(length, bytes.size() - 2));
    const QByteArrayView shown(reinterpret_cast<const char*>(text.data()),
                               static_cast<qsizetype>(text.size()));
    const bool isWhole = text.size() == length;
    const bool hasWord = shown.contains('$') || shown.contains("gsensor");
    if (length == 0 || length + 2 > kMostTextBytes || !std::all_of(text.begin(), text.end(), isText) ||
        (isWhole && !hasWord))
        return std::nullopt;
    FoundSample found;
    found.ending = isWhole ? Ending::Whole : Ending::Cut;
    found.size = static_cast<std::int64_t>(length) + 2;
    return found;
}

std::optional<FoundSample> jpegAt(FileWindow& window, std::int64_t offset, std::int64_t areaEnd,
                                  std::int64_t mostBytes, std::int64_t& bytesLeft) {
    const Bytes start = window.at(offset, 3);
    if (start.size() < 3 || offset + 3 > areaEnd || start[0] != 0xFF || start[1] != 0xD8 || start[2] != 0xFF)
        return std::nullopt;
    constexpr int kMostMarkers = 1000;
    constexpr std::int64_t kMarkerCost = 64; // in bytes
    const std::int64_t end = std::min(areaEnd, offset + std::min(mostBytes, bytesLeft));
    const auto cut = end == areaEnd ? std::optional(FoundSample{Ending::Cut, 0, 0}) : std::nullopt;
    std::int64_t at = offset + 2;
    for (int i = 0; i < kMostMarkers; ++i) {
        bytesLeft -= kMarkerCost;
        const Bytes marker = window.at(at, 2);
        if (marker.size() < 2 || at + 2 > end)
            return cut;
        if (marker[0] != 0xFF)
            return std::nullopt;
        const std::uint8_t code = marker[1];
        if (code == 0xD9)
            return FoundSample{Ending::Whole, at + 2 - offset, 0};
        if (code == 0xD8)
            return std::nullopt;
        std::optional<std::int64_t> next =
            code == 0xFF ? std::optional(at + 1) : segmentEnd(window, at + 2, end);
        if (next && code == 0xDA) {
            const std::int64_t scan = *next;
            next = scanEnd(window, scan, end);
            bytesLeft -= std::max<std::int64_t>(0, next.value_or(end) - scan);
        }
        if (!next || *next >= end)
            return cut;
        at = *next;
    }
    return std::nullopt;
}

void Durations::learn(std::uint32_t ticks) {
    ++m_count;
    m_ticks += ticks;
    if (m_balance == 0)
        m_usual = ticks, m_usualCount = 0;
    m_balance += ticks == m_usual ? 1 : -1;
    m_usualCount += ticks == m_usual ? 1 : 0;
}

// If one picture in twenty is dropped, the sound is three seconds ahead after a minute.
bool Durations::isSteady() const {
    const std::int64_t others = m_ticks - m_count * m_usual;
    return m_usualCount * 10 >= m_count * 9 && std::abs(others) <= std::int64_t{m_usual};
}

std::int64_t Durations::ticksOf(std::int64_t samples) const {
    if (m_count == 0)
        return 0;
    if (isSteady())
        return samples * m_usual;
    const double exact =
        static_cast<double>(samples) * static_cast<double>(m_ticks) / static_cast<double>(m_count);
    return std::llround(exact);
}

std::uint32_t Durations::next() {
    const std::int64_t before = ticksOf(m_given);
    return static_cast<std::uint32_t>(ticksOf(++m_given) - before);
}

} // namespace ql240::repair
