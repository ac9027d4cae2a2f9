// A top-level "free" box that contains boxes: "gps " is an ASCII log of lines "[epoch ms]$GPRMC,…", "3gf " a
// table of accelerations (u32 ms, three i16 in 1/128 g, big-endian, terminated by 0xFFFFFFFF), "sttm" the
// recording's start as a u64 in epoch ms.
#include <QByteArray>
#include <QtEndian>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "clips/formats/nmea.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/sensor_parts.h"
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr std::int64_t kMaxStartOffsetMs = 60000; // between the stated start and the log's first line
// The clock jumps when the receiver corrects it. A step longer than a tunnel, or further back than lines out
// of order explain, counts as the usual second between two lines.
constexpr std::int64_t kMaxStepMs = 60000;
constexpr std::int64_t kMaxStepBackMs = 1000;
constexpr std::int64_t kUsualStepMs = 1000;
constexpr std::int64_t kUsPerMs = 1000;

// Leaves room for records out of order.
bool isPastEnd(std::int64_t timeMs, const RecordSink& sink) {
    return timeMs - kMaxStepBackMs > sink.endUs() / kUsPerMs;
}

void readAccelerations(ByteSource& source, ByteRange table, RecordSink& sink) {
    RangeReader reader(source, table);
    std::array<char, kLogAccelerationBytes - 4> axes{};
    bool goesOn = !table.isEmpty();
    for (std::int64_t i = 0; goesOn && !sink.isFull(); ++i) {
        const std::optional<std::uint32_t> mark = reader.u32();
        if (mark == kLogEndMark)
            return;
        if (!mark || !reader.read(axes)) {
            const std::int64_t offset = table.start + i * kLogAccelerationBytes;
            sink.addStop({"acceleration", i + 1, offset, "the table has no end mark"});
            return;
        }
        const std::int64_t timeMs = *mark;
        const auto g = [&](int at) { return qFromBigEndian<std::int16_t>(axes.data() + at) / kCountsPerG; };
        sink.addAcceleration(timeMs * kUsPerMs, g(0), g(2), g(4));
        goesOn = !isPastEnd(timeMs, sink);
    }
}

// Assigns times to the log's lines by their clocks. Lines before the first clock have no time.
class LogClock {
public:
    explicit LogClock(std::optional<std::int64_t> startedAt) : m_startedAt(startedAt) {}

    // Removes the clock from a line that has one, and sets the line's time; false if the clock is invalid.
    bool takeClock(LogLine& line) {
        if (line.text.startsWith('[')) {
            const qsizetype close = line.text.indexOf(']');
            bool isNumber = false;
            const std::int64_t clock =
                close < 0 ? 0 : line.text.sliced(1, close - 1).toByteArray().toLongLong(&isNumber);
            if (!isNumber || clock < 0)
                return false;
            m_timeMs = timeOf(clock);
            line.clock = clock;
            line.text = line.text.sliced(close + 1);
        }
        line.timeMs = m_timeMs;
        return true;
    }

private:
    std::int64_t timeOf(std::int64_t clock) {
        const std::int64_t last = std::exchange(m_clock, clock);
        if (!m_timeMs) {
            const bool isPlausible = m_startedAt && std::llabs(clock - *m_startedAt) <= kMaxStartOffsetMs;
            return isPlausible ? clock - *m_startedAt : 0;
        }
        const std::int64_t step = clock - last;
        return *m_timeMs + (step >= -kMaxStepBackMs && step <= kMaxStepMs ? step : kUsualStepMs);
    }

    std::optional<std::int64_t> m_startedAt;
    std::int64_t m_clock = 0; // of the last line that has one
    std::optional<std::int64_t> m_timeMs;
};

// Takes the line's clock.
const char* lineProblem(LogLine& line, LogClock& clock, bool isEndless) {
    if (isEndless)
        return "a line without end";
    return clock.takeClock(line) ? nullptr : "its clock isn't a number";
}

void readLog(ByteSource& source, const FreeLog& log, RecordSink& sink) {
    forEachLogLine(source, log, [&sink](const LogLine& line) {
        SentencePlace place{{}, "log line", line.number, line.offset, line.isWhole};
        if (line.timeMs)
            place.timeUs = *line.timeMs * kUsPerMs;
        if (line.problem)
            sink.addStop({place.unit, place.number, place.offset, line.problem});
        else if (line.text.startsWith('$'))
            addNmeaSentence(place, line.text, sink);
        return !sink.isFull() && !isPastEnd(line.timeMs.value_or(0), sink);
    });
}

} // namespace

FreeLog findFreeLog(ByteSource& source, ByteRange area) {
    FreeLog found;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("gps ")) {
            found.log = box->body;
        } else if (box->type == fourCc("3gf ")) {
            found.accelerations = box->body;
        } else if (box->type == fourCc("sttm")) {
            const std::uint64_t start = RangeReader(source, box->body).u64().value_or(0);
            if (start <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
                found.startedAt = static_cast<std::int64_t>(start);
        }
    }
    return found;
}

void forEachLogLine(ByteSource& source, const FreeLog& log, const LogVisitor& visit) {
    RangeReader reader(source, log.log);
    LogClock clock(log.startedAt);
    QByteArray text;
    std::int64_t offset = log.log.start;
    for (LogLine line;;) {
        const std::optional<std::uint8_t> byte = reader.byte();
        const bool isText = byte && *byte >= 0x20;
        offset += byte ? 1 : 0;
        if (isText) {
            text.append(static_cast<char>(*byte));
            if (text.size() <= limits::kSensorLine)
                continue;
        }
        const bool isEndless = isText;
        if (!text.isEmpty()) {
            line.text = text;
            line.clock.reset();
            line.isWhole = byte && !isEndless;
            line.offset = offset - text.size() - (line.isWhole ? 1 : 0);
            line.problem = lineProblem(line, clock, isEndless);
            ++line.number;
            if (!visit(line))
                return;
        }
        if (!byte || isEndless)
            return;
        text.clear();
    }
}

void readFreeLog(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    for (const ByteRange& area : clip.freeBoxes) {
        const FreeLog log = findFreeLog(source, area);
        readLog(source, log, sink);
        readAccelerations(source, log.accelerations, sink);
    }
}

} // namespace ql240::sensorfiles
