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
#include "platform/limits.h"

namespace ql240::sensorfiles {
namespace {

constexpr std::uint32_t kEndMark = 0xFFFFFFFF;
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
    std::array<char, 10> record{};
    while (!sink.isFull() && reader.read(record)) {
        const std::int64_t timeMs = qFromBigEndian<std::uint32_t>(record.data());
        if (timeMs == kEndMark)
            return;
        const auto g = [&](int at) { return qFromBigEndian<std::int16_t>(record.data() + at) / kCountsPerG; };
        sink.addAcceleration(timeMs * kUsPerMs, g(4), g(6), g(8));
        if (isPastEnd(timeMs, sink))
            return;
    }
}

// Assigns times to the log's lines by their clocks. Lines before the first clock have no time and are
// skipped.
class LogReader {
public:
    LogReader(std::optional<std::int64_t> startedAt, RecordSink& sink)
        : m_startedAt(startedAt), m_sink(sink) {}

    bool isAtEnd() const { return m_sink.isFull() || isPastEnd(m_timeMs.value_or(0), m_sink); }

    void addLine(QByteArrayView line, std::int64_t offset) {
        ++m_number;
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            bool isNumber = false;
            const std::int64_t clock =
                close < 0 ? 0 : line.sliced(1, close - 1).toByteArray().toLongLong(&isNumber);
            if (!isNumber || clock < 0)
                return;
            m_timeMs = timeOf(clock);
            line = line.sliced(close + 1);
        }
        if (m_timeMs && line.startsWith('$'))
            addNmeaSentence({*m_timeMs * kUsPerMs, "log line", m_number, offset}, line, m_sink);
    }

private:
    std::int64_t timeOf(std::int64_t clock) {
        const std::int64_t last = std::exchange(m_clock, clock).value_or(clock);
        if (!m_timeMs) {
            const bool isPlausible = m_startedAt && std::llabs(clock - *m_startedAt) <= kMaxStartOffsetMs;
            return isPlausible ? clock - *m_startedAt : 0;
        }
        const std::int64_t step = clock - last;
        return *m_timeMs + (step >= -kMaxStepBackMs && step <= kMaxStepMs ? step : kUsualStepMs);
    }

    std::optional<std::int64_t> m_startedAt;
    RecordSink& m_sink;
    std::int64_t m_number = 0;
    std::optional<std::int64_t> m_clock; // of the last line that has one
    std::optional<std::int64_t> m_timeMs;
};

void readLog(ByteSource& source, ByteRange log, std::optional<std::int64_t> startedAt, RecordSink& sink) {
    RangeReader reader(source, log);
    LogReader lines(startedAt, sink);
    QByteArray line;
    std::int64_t offset = log.start;
    while (const std::optional<std::uint8_t> byte = reader.byte()) {
        ++offset;
        if (*byte >= 0x20) {
            line.append(static_cast<char>(*byte));
            if (line.size() > limits::kSensorLine) {
                sink.addStop({"log", 1, offset - line.size(), "a line without end"});
                return;
            }
        } else if (!line.isEmpty()) {
            lines.addLine(line, offset - 1 - line.size());
            line.clear();
            if (lines.isAtEnd())
                return;
        }
    }
    lines.addLine(line, offset - line.size());
}

void readFreeBox(ByteSource& source, ByteRange area, RecordSink& sink) {
    std::optional<std::int64_t> startedAt;
    ByteRange log;
    ByteRange accelerations;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("gps ")) {
            log = box->body;
        } else if (box->type == fourCc("3gf ")) {
            accelerations = box->body;
        } else if (box->type == fourCc("sttm")) {
            const std::uint64_t start = RangeReader(source, box->body).u64().value_or(0);
            if (start <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
                startedAt = static_cast<std::int64_t>(start);
        }
    }
    readLog(source, log, startedAt, sink);
    readAccelerations(source, accelerations, sink);
}

} // namespace

void readFreeLog(ByteSource& source, const ClipLayout& clip, RecordSink& sink) {
    for (const ByteRange& area : clip.freeBoxes)
        readFreeBox(source, area, sink);
}

} // namespace ql240::sensorfiles
