// A top-level "free" box with boxes in it: "gps " is an ASCII log of lines "[epoch ms]$GPRMC,…", "3gf " a
// table of accelerations (u32 ms, three i16 of 128 a g, big-endian, ended by 0xFFFFFFFF), "sttm" the
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

constexpr quint32 kEndMark = 0xFFFFFFFF;
constexpr qint64 kBelievedStartMs = 60000; // how far the log's first line may be from the start given
// A clock that is set right jumps: what is longer than a tunnel, or back by more than lines out of order are,
// counts as the second that lies between two lines.
constexpr qint64 kBelievedStepMs = 60000;
constexpr qint64 kBelievedBackMs = 1000;
constexpr qint64 kUsualStepMs = 1000;
// Behind the time that anybody asks for, with room for what comes out of order.
constexpr qint64 kEndMs = limits::kSensorTrackMs + kBelievedBackMs;

void readAccelerations(ByteSource& source, ByteRange table, SensorRecords& records) {
    RangeReader reader(source, table);
    std::array<char, 10> record{};
    while (!records.isFull() && reader.read(record)) {
        const quint32 timeMs = qFromBigEndian<quint32>(record.data());
        if (timeMs == kEndMark) {
            return;
        }
        records.addAcceleration(timeMs, qFromBigEndian<qint16>(record.data() + 4),
                                qFromBigEndian<qint16>(record.data() + 6),
                                qFromBigEndian<qint16>(record.data() + 8));
        if (timeMs > kEndMs) {
            return;
        }
    }
}

// The log's lines against its clock; those before the first with a clock have no time and are left out.
class LogReader {
public:
    LogReader(std::optional<qint64> startedAt, SensorRecords& records)
        : m_startedAt(startedAt), m_records(records) {}

    bool isAtEnd() const { return m_records.isFull() || m_timeMs.value_or(0) > kEndMs; }

    void addLine(QByteArrayView line) {
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            bool isNumber = false;
            const qint64 clock =
                close < 0 ? 0 : line.sliced(1, close - 1).toByteArray().toLongLong(&isNumber);
            if (!isNumber || clock < 0) {
                return;
            }
            m_timeMs = timeOf(clock);
            line = line.sliced(close + 1);
        }
        if (m_timeMs && line.startsWith('$')) {
            addNmeaSentence(*m_timeMs, line, m_records);
        }
    }

private:
    qint64 timeOf(qint64 clock) {
        const qint64 last = std::exchange(m_clock, clock).value_or(clock);
        if (!m_timeMs) {
            const bool believed = m_startedAt && std::llabs(clock - *m_startedAt) <= kBelievedStartMs;
            return believed ? clock - *m_startedAt : 0;
        }
        const qint64 step = clock - last;
        return *m_timeMs + (step >= -kBelievedBackMs && step <= kBelievedStepMs ? step : kUsualStepMs);
    }

    std::optional<qint64> m_startedAt;
    SensorRecords& m_records;
    std::optional<qint64> m_clock; // of the last line that has one
    std::optional<qint64> m_timeMs;
};

void readLog(ByteSource& source, ByteRange log, std::optional<qint64> startedAt, SensorRecords& records) {
    RangeReader reader(source, log);
    LogReader lines(startedAt, records);
    QByteArray line;
    while (const std::optional<quint8> byte = reader.byte()) {
        if (*byte >= 0x20) {
            line.append(static_cast<char>(*byte));
            if (line.size() > limits::kSensorLine) {
                return;
            }
        } else if (!line.isEmpty()) {
            lines.addLine(line);
            line.clear();
            if (lines.isAtEnd()) {
                return;
            }
        }
    }
    lines.addLine(line);
}

void readFreeBox(ByteSource& source, ByteRange area, SensorRecords& records) {
    std::optional<qint64> startedAt;
    ByteRange log;
    ByteRange accelerations;
    BoxCursor boxes(source, area);
    while (const std::optional<Box> box = boxes.next()) {
        if (box->type == fourCc("gps ")) {
            log = box->body;
        } else if (box->type == fourCc("3gf ")) {
            accelerations = box->body;
        } else if (box->type == fourCc("sttm")) {
            const quint64 start = RangeReader(source, box->body).u64().value_or(0);
            if (start <= quint64(std::numeric_limits<qint64>::max())) {
                startedAt = static_cast<qint64>(start);
            }
        }
    }
    readLog(source, log, startedAt, records);
    readAccelerations(source, accelerations, records);
}

} // namespace

void readFreeLog(ByteSource& source, const ClipLayout& clip, SensorRecords& records) {
    for (const ByteRange& area : clip.freeBoxes) {
        readFreeBox(source, area, records);
    }
}

} // namespace ql240::sensorfiles
