#include "clips/record_reader.h"

#include <QLocale>
#include <QTimeZone>
#include <algorithm>

#include "clips/clip_name.h"
#include "clips/formats/record_collector.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/trailer.h"

namespace ql240 {

using namespace sensorfiles;

namespace {

constexpr std::int64_t kUsPerMs = 1000;

QString grouped(std::int64_t number) {
    return QLocale(QLocale::English).toString(number);
}

// Takes the date from the line, before its "$"; otherwise the previous line's or the clip's, or the next day
// after midnight. The first line may be from before midnight.
class TrailerClock {
public:
    explicit TrailerClock(const QDateTime& start) : m_last(start) {}

    std::int64_t msOf(QByteArrayView text) {
        const QTime time = timeOf(text);
        const QDate day = dayOf(text.first(std::max<qsizetype>(0, text.lastIndexOf('$'))));
        if (!time.isValid() || (!day.isValid() && !m_last.isValid()))
            return RecordedFix::kNoClock;
        QDateTime clock(day.isValid() ? day : m_last.date(), time, QTimeZone::utc());
        constexpr std::int64_t kHalfADayS = 43200;
        if (!day.isValid() && clock.secsTo(m_last) > kHalfADayS)
            clock = clock.addDays(1);
        else if (!day.isValid() && m_isFirst && m_last.secsTo(clock) > kHalfADayS)
            clock = clock.addDays(-1);
        m_isFirst = false;
        m_last = clock;
        return clock.toMSecsSinceEpoch();
    }

    static QTime timeOf(QByteArrayView text) {
        const qsizetype sign = text.lastIndexOf('$');
        const QString digits = sign < 0 ? QString() : QString::fromLatin1(text.sliced(sign + 1));
        return QTime::fromString(digits, QStringLiteral("hhmmss"));
    }

private:
    static QDate dayOf(QByteArrayView text) {
        QString digits;
        for (const char c : text) {
            if (c >= '0' && c <= '9')
                digits += QLatin1Char(c);
        }
        return QDate::fromString(digits, QStringLiteral("yyyyMMdd"));
    }

    QDateTime m_last;
    bool m_isFirst = true;
};

RecordedFix fixOf(const TrailerLine& line, TrailerClock& clock) {
    RecordedFix fix;
    fix.clockMs = clock.msOf(line.clock);
    if (line.latitude != 0.0 && line.longitude != 0.0) {
        fix.latitude = line.latitude;
        fix.longitude = line.longitude;
        fix.speedKmh = line.hasSpeed ? line.speedKmh : RecordedFix::kNothing;
    }
    return fix;
}

// What is wrong with a line, or nullptr.
const char* lineProblem(const TrailerLine& line, const RecordedFix& fix) {
    if (!line.isNumeric)
        return "a field isn't a number";
    if (!line.isWhole)
        return "no line end";
    if (line.latitude != 0.0 && line.longitude != 0.0 && !fix.isValid())
        return "no valid position";
    return TrailerClock::timeOf(line.clock).isValid() ? nullptr : "no valid clock";
}

// Adds the lines of a trailer to a record. `start`: the tail's offset in the file.
class TrailerLines {
public:
    TrailerLines(QByteArrayView tail, std::int64_t start, const QDateTime& clipStart,
                 RecordCollector& collector)
        : m_tail(tail), m_start(start), m_clock(clipStart), m_collector(collector) {}

    // False if there are none.
    bool addAll(bool startsLate, std::int64_t clipMs) {
        std::size_t lines = 0;
        forEachTrailerLine(m_tail, [&lines](const TrailerLine&) { ++lines; });
        const std::size_t padding = startsLate && lines > 0 ? trailerPadding(lines) : 0;
        const std::uint64_t stepMs = lines > 0 ? trailerStepMs(clipMs, lines + padding) : 0;
        m_stepUs = static_cast<std::int64_t>(stepMs) * kUsPerMs;
        m_timeUs = static_cast<std::int64_t>(padding) * m_stepUs;
        forEachTrailerLine(
            m_tail, [this](const TrailerLine& line) { add(line); },
            [this](QByteArrayView line) { stop(line, "fewer than seven fields"); });
        return lines > 0;
    }

private:
    void add(const TrailerLine& line) {
        RecordedFix fix = fixOf(line, m_clock);
        fix.timeUs = m_timeUs;
        m_collector.addFix(fix);
        const auto g = [](std::int16_t count) { return count / kCountsPerG; };
        if (line.hasAcceleration && line.isWhole)
            m_collector.addAcceleration(m_timeUs, g(line.x), g(line.y), g(line.z));
        m_timeUs += m_stepUs;
        stop(line.text, lineProblem(line, fix));
    }

    void stop(QByteArrayView line, const char* reason) {
        ++m_number;
        if (reason)
            m_collector.addStop({"trailer line", m_number, m_start + (line.data() - m_tail.data()), reason});
    }

    QByteArrayView m_tail;
    std::int64_t m_start;
    TrailerClock m_clock;
    RecordCollector& m_collector;
    std::int64_t m_stepUs = 0;
    std::int64_t m_timeUs = 0;
    std::int64_t m_number = 0;
};

bool readTrailer(ByteSource& source, const ClipContents& contents, const QString& path,
                 RecordCollector& collector) {
    const std::int64_t start = std::max<std::int64_t>(0, source.size() - kTrailerBytes);
    QByteArray tail(source.size() - start, '\0');
    tail.truncate(source.read(start, tail));
    TrailerLines lines(tail, start, contents.record.startByName, collector);
    return lines.addAll(trailerStartsLate(path), contents.lengthMs);
}

ClipRecord readFormats(ByteSource& source, const ClipLayout& layout, bool keepsAccelerations) {
    ClipRecord stopped;
    for (const SensorFormat& format : kSensorFormats) {
        RecordCollector collector(keepsAccelerations);
        format.read(source, layout, collector);
        const bool isEmpty = collector.isEmpty();
        ClipRecord record = collector.take(ClipRecord::Clock::Utc);
        record.format = QString::fromLatin1(format.name);
        if (!isEmpty)
            return record;
        if (stopped.stops.isEmpty() && !record.stops.isEmpty())
            stopped = std::move(record);
    }
    stopped.format.clear();
    return stopped;
}

void setRecord(ClipContents& contents, ClipRecord record) {
    record.camera = contents.record.camera;
    record.firmware = contents.record.firmware;
    record.startByName = contents.record.startByName;
    contents.record = std::move(record);
}

void readRecord(ByteSource& source, const ClipLayout& layout, const QString& path, RecordPart part,
                ClipContents& contents) {
    const bool keepsAccelerations = part == RecordPart::FixesAndAccelerations;
    RecordCollector trailer(keepsAccelerations);
    const bool hasTrailer = layout.isRiff && readTrailer(source, contents, path, trailer);
    ClipRecord record = trailer.take(ClipRecord::Clock::Camera);
    if (hasTrailer) {
        record.format = QStringLiteral("text behind the pictures");
    } else {
        ClipRecord other = readFormats(source, layout, keepsAccelerations);
        if (!other.format.isEmpty() || !other.stops.isEmpty())
            record = std::move(other);
    }
    setRecord(contents, std::move(record));
}

void addCut(const CutBox& cut, ClipContents& contents) {
    if (cut.type == 0) {
        contents.faults << QStringLiteral("byte %1: no box begins there").arg(grouped(cut.offset));
        return;
    }
    contents.faults << QStringLiteral("\"%1\" at byte %2: the file ends %3 bytes before it does")
                           .arg(typeText(cut.type), grouped(cut.offset),
                                QLocale(QLocale::English).toString(static_cast<qulonglong>(cut.missing)));
}

void readContainer(ByteSource& source, const ClipLayout& layout, ClipContents& contents) {
    contents.streams = readStreams(source, layout);
    const CameraText text = readCameraText(source, layout);
    contents.record.camera = text.camera;
    contents.record.firmware = text.firmware;
    for (const ClipStream& stream : contents.streams)
        contents.lengthMs = std::max(contents.lengthMs, stream.lengthMs);
    contents.lengthMs = layout.lengthMs.value_or(contents.lengthMs);
    if (layout.cut)
        addCut(*layout.cut, contents);
    if (!layout.hasIndex)
        contents.faults << QStringLiteral("no index: the recording wasn't finished");
}

bool isMp4(ByteSource& source) {
    BoxCursor boxes(source, {0, source.size()});
    const std::optional<Box> first = boxes.next();
    constexpr std::array kFirst{fourCc("ftyp"), fourCc("moov"), fourCc("mdat"), fourCc("free"),
                                fourCc("skip"), fourCc("wide"), fourCc("pnot")};
    return first && std::find(kFirst.begin(), kFirst.end(), first->type) != kFirst.end();
}

} // namespace

ClipContents readClipContents(QIODevice& device, const QString& path, RecordPart part) {
    ClipContents contents;
    contents.record.startByName = clipStart(path.section(u'/', -1));
    ByteSource source(device, {limits::kRecordBytes, limits::kRecordReads});
    const ClipLayout layout = readClipLayout(source);
    if (layout.isRiff || isMp4(source)) {
        contents.container = layout.isRiff ? "AVI" : "MP4";
        readContainer(source, layout, contents);
        readRecord(source, layout, u'/' + path, part, contents);
    }
    if (const std::optional<std::int64_t> byte = source.failedAt()) {
        const QString reason = device.size() < source.size() ? QStringLiteral("the file has become shorter")
                                                             : device.errorString();
        contents.readError = QStringLiteral("byte %1: %2").arg(grouped(*byte), reason);
    }
    return contents;
}

} // namespace ql240
