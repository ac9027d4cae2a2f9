#include "clips/cut/sensor_cut.h"

#include <QtEndian>
#include <algorithm>
#include <array>

#include "clips/formats/sensor_parts.h"
#include "clips/formats/trailer.h"
#include "platform/limits.h"

namespace ql240::cut {
namespace {

using namespace sensorfiles;

constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kUsPerSecond = 1'000'000;

// A range of records without times of their own, by the records nearest to the start and to the end.
struct Indexes {
    std::size_t first;
    std::size_t end;
};
std::size_t nearest(const std::vector<std::int64_t>& times, std::int64_t us) {
    const auto after = std::lower_bound(times.begin(), times.end(), us);
    const bool isBetween = after != times.begin() && after != times.end();
    const bool isBeforeNearer = isBetween && us - *std::prev(after) < *after - us;
    return static_cast<std::size_t>(after - times.begin()) - (isBeforeNearer ? 1 : 0);
}

std::vector<std::int64_t> likelyTimesUs(const std::vector<SecondRecord>& seconds, const ClipLayout& clip) {
    std::vector<std::int64_t> times = likelyTimes(seconds, clip.lengthMs);
    for (std::int64_t& time : times)
        time *= kUsPerMs;
    return times;
}

Indexes nearest(const std::vector<std::int64_t>& times, CutRange range) {
    const std::size_t first = nearest(times, range.fromUs);
    return {first, std::max(first, nearest(times, range.toUs))};
}

// The same for records at a constant interval.
std::int64_t nearestStep(std::int64_t us, std::int64_t stepUs) {
    return (us + stepUs / 2) / stepUs;
}

QByteArray bytesAt(ByteSource& source, ByteRange range) {
    QByteArray bytes(std::clamp<std::int64_t>(range.size, 0, limits::kPieceBytes), '\0');
    bytes.truncate(bytes.isEmpty() ? 0 : source.read(range.start, bytes));
    return bytes;
}

QByteArray box(const char* type, const QByteArray& body) {
    QByteArray head(4, '\0');
    qToBigEndian(static_cast<std::uint32_t>(body.size() + 8), head.data());
    return head + type + body;
}

// The lines of a log that are in the range.
struct LogPiece {
    QByteArray lines;
    std::optional<std::int64_t> startedAt; // makes their times count from the range's start
};
LogPiece logLines(ByteSource& source, const FreeLog& log, CutRange range) {
    LogPiece piece;
    std::optional<std::int64_t> clock; // the last one, also for lines without a clock
    if (log.startedAt)
        piece.startedAt = *log.startedAt + range.fromUs / kUsPerMs;
    forEachLogLine(source, log, [&](const LogLine& line) {
        if (line.problem)
            return true;
        clock = line.clock ? line.clock : clock;
        const std::int64_t us = line.timeMs.value_or(-1) * kUsPerMs;
        if (us < range.fromUs || us >= range.toUs)
            return true;
        const bool isFirst = piece.lines.isEmpty();
        if (isFirst)
            piece.startedAt = *clock - (us - range.fromUs) / kUsPerMs;
        if (isFirst || line.clock)
            piece.lines += '[' + QByteArray::number(static_cast<qlonglong>(*clock)) + ']';
        piece.lines += line.text.toByteArray() + (line.isWhole ? "\r\n" : "");
        return true;
    });
    return piece;
}

QByteArray logAccelerations(ByteSource& source, ByteRange table, CutRange range) {
    QByteArray piece;
    RangeReader reader(source, table);
    std::array<char, kLogAccelerationBytes> record{};
    while (reader.read(record)) {
        const std::int64_t ms = qFromBigEndian<std::uint32_t>(record.data());
        if (ms == kLogEndMark)
            break;
        if (ms * kUsPerMs < range.fromUs || ms * kUsPerMs >= range.toUs)
            continue;
        qToBigEndian(static_cast<std::uint32_t>(ms - range.fromUs / kUsPerMs), record.data());
        piece.append(record.data(), record.size());
    }
    return piece + QByteArray(4, '\xFF');
}

} // namespace

std::vector<ByteRange> gpsBlocks(ByteSource& source, const ClipLayout& clip, CutRange range) {
    std::vector<SecondRecord> seconds;
    std::vector<ByteRange> blocks;
    for (const GpsBlock& block : readGpsBlocks(source, clip)) {
        if (!block.isListed)
            continue;
        const std::int64_t there = std::min(block.range.size, source.size() - block.range.start);
        seconds.push_back(block.record);
        blocks.push_back(there > 0 ? ByteRange{block.range.start, there} : ByteRange{});
    }
    const std::vector<std::int64_t> times = likelyTimesUs(seconds, clip);
    Indexes kept = nearest(times, range);
    // The start may be in a gap without entries. Empty ones then delay the next block; the previous one would
    // be shown too late.
    if (kept.first < kept.end && range.fromUs - times[kept.first] > kUsPerSecond / 2)
        ++kept.first;
    const std::int64_t gapUs = kept.first < kept.end ? times[kept.first] - range.fromUs : 0;
    std::vector<ByteRange> piece(std::max<std::int64_t>(0, nearestStep(gapUs, kUsPerSecond)));
    piece.insert(piece.end(), blocks.begin() + kept.first, blocks.begin() + kept.end);
    return piece;
}

QByteArray freeLog(ByteSource& source, ByteRange area, CutRange range) {
    const FreeLog log = findFreeLog(source, area);
    if (log.isEmpty())
        return {};
    const LogPiece piece = logLines(source, log, range);
    QByteArray body;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> inner = boxes.next()) {
        if (inner->type == fourCc("gps "))
            body += box("gps ", piece.lines);
        else if (inner->type == fourCc("3gf "))
            body += box("3gf ", logAccelerations(source, inner->body, range));
        else if (inner->type != fourCc("sttm") && inner->body.size <= limits::kHeaderBytes)
            body += bytesAt(source, {inner->offset, inner->body.end() - inner->offset});
    }
    QByteArray start(8, '\0');
    qToBigEndian(static_cast<std::uint64_t>(piece.startedAt.value_or(0)), start.data());
    return piece.startedAt ? box("sttm", start) + body : body;
}

QByteArray plainPositions(ByteSource& source, const ClipLayout& clip, CutRange range) {
    const Indexes kept = nearest(likelyTimesUs(readPlainPositions(source, clip), clip), range);
    const auto count = static_cast<std::int64_t>(kept.end - kept.first);
    const auto first = static_cast<std::int64_t>(kept.first);
    return bytesAt(source, {clip.gps0.start + first * kPlainPositionBytes, count * kPlainPositionBytes});
}

QByteArray plainAccelerations(ByteSource& source, const ClipLayout& clip, CutRange range) {
    const std::int64_t records = clip.gsen.size / kPlainAccelerationBytes;
    const auto indexOf = [&](std::int64_t us) {
        return std::min(records, nearestStep(us, kPlainAccelerationStepUs));
    };
    const std::int64_t first = indexOf(range.fromUs);
    const std::int64_t count = indexOf(range.toUs) - first;
    return bytesAt(source,
                   {clip.gsen.start + first * kPlainAccelerationBytes, count * kPlainAccelerationBytes});
}

namespace {

// Drops lines evenly until they fit where programs search for them.
QList<QByteArray> thinned(const QList<QByteArray>& lines, qsizetype mostBytes) {
    qsizetype bytes = 0;
    for (const QByteArray& line : lines)
        bytes += line.size();
    if (bytes <= mostBytes)
        return lines;
    QList<QByteArray> kept;
    const qsizetype count = lines.size() * mostBytes / bytes;
    for (qsizetype i = 0; i < count; ++i)
        kept += lines[i * lines.size() / count];
    return kept;
}

} // namespace

QByteArray trailer(const QByteArray& tail, std::int64_t clipMs, bool startsLate, CutRange range) {
    QList<QByteArray> lines;
    forEachTrailerLine(tail, [&](const TrailerLine& line) {
        const QByteArray text = line.text.toByteArray();
        lines += text.endsWith('\n') ? text : text + '\n';
    });
    if (lines.isEmpty())
        return tail;
    if (startsLate) {
        const auto padding = static_cast<qsizetype>(trailerPadding(static_cast<std::size_t>(lines.size())));
        lines = QList<QByteArray>(padding, lines.first()) + lines;
    }
    const auto stepMs =
        static_cast<std::int64_t>(trailerStepMs(clipMs, static_cast<std::size_t>(lines.size())));
    const std::int64_t stepUs = std::max<std::int64_t>(1, stepMs) * kUsPerMs;
    const QByteArray head = tail.first(findTrailer(tail).value_or(0));
    const qsizetype first = std::min(lines.size(), static_cast<qsizetype>(nearestStep(range.fromUs, stepUs)));
    const qsizetype end = std::min(lines.size(), static_cast<qsizetype>(nearestStep(range.toUs, stepUs)));
    constexpr qsizetype kMarkerBytes = 64;
    const QList<QByteArray> kept = thinned(lines.sliced(first, end - first), kTrailerBytes - kMarkerBytes);
    return head + kept.join();
}

} // namespace ql240::cut
