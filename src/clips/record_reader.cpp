#include "clips/record_reader.h"

#include <QLocale>
#include <QTimeZone>
#include <algorithm>

#include "clips/clip_name.h"
#include "clips/formats/record_collector.h"
#include "clips/formats/sensor_formats.h"
#include "clips/formats/trailer.h"
#include "clips/moments.h"

namespace ql240 {

using namespace sensorfiles;

namespace {

constexpr std::int64_t kUsPerMs = 1000;

QString grouped(std::int64_t number) {
    return QLocale(QLocale::English).toString(number);
}

// Takes the date from the line, before its "$"; otherwise the previous line's or the clip's, or the next day
// after midnight.
class TrailerClock {
public:
    explicit TrailerClock(const QDateTime& start) : m_last(start) {}

    std::int64_t msOf(QByteArrayView text) {
        const qsizetype sign = text.lastIndexOf('$');
        const QTime time =
            QTime::fromString(QString::fromLatin1(text.sliced(sign + 1)), QStringLiteral("hhmmss"));
        const QDate day = dayOf(text.first(std::max<qsizetype>(0, sign)));
        if (sign < 0 || !time.isValid() || (!day.isValid() && !m_last.isValid()))
            return RecordedFix::kNoClock;
        QDateTime clock(day.isValid() ? day : m_last.date(), time, QTimeZone::utc());
        constexpr std::int64_t kHalfADayS = 43200;
        if (!day.isValid() && clock.secsTo(m_last) > kHalfADayS)
            clock = clock.addDays(1);
        m_last = clock;
        return clock.toMSecsSinceEpoch();
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
};

RecordedFix fixOf(const TrailerLine& line, TrailerClock& clock) {
    RecordedFix fix;
    fix.clockMs = clock.msOf(line.clock);
    if (line.latitude != 0.0 && line.longitude != 0.0) {
        fix.latitude = line.latitude;
        fix.longitude = line.longitude;
        fix.speedKmh = line.speedKmh;
    }
    return fix;
}

bool readTrailer(ByteSource& source, const ClipContents& contents, const QString& fileName,
                 RecordCollector& collector) {
    const std::int64_t start = std::max<std::int64_t>(0, source.size() - kTrailerBytes);
    QByteArray tail(source.size() - start, '\0');
    tail.truncate(source.read(start, tail));
    std::size_t lines = 0;
    forEachTrailerLine(tail, [&lines](const TrailerLine&) { ++lines; });
    if (lines == 0)
        return false;
    const CameraDecision decision = cameraDecision(fileName);
    const bool startsLate = fileName.startsWith(QLatin1String("EVT_")) || decision == CameraDecision::Motion;
    const std::size_t padding = startsLate ? trailerPadding(lines) : 0;
    const auto stepUs =
        static_cast<std::int64_t>(trailerStepMs(contents.lengthMs, lines + padding)) * kUsPerMs;
    std::int64_t timeUs = static_cast<std::int64_t>(padding) * stepUs;
    TrailerClock clock(contents.record.startByName);
    forEachTrailerLine(tail, [&](const TrailerLine& line) {
        RecordedFix fix = fixOf(line, clock);
        fix.timeUs = timeUs;
        collector.addFix(fix);
        collector.addAcceleration(timeUs, line.x / kCountsPerG, line.y / kCountsPerG, line.z / kCountsPerG);
        timeUs += stepUs;
    });
    return true;
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

void readRecord(ByteSource& source, const ClipLayout& layout, const QString& fileName, RecordPart part,
                ClipContents& contents) {
    const bool keepsAccelerations = part == RecordPart::FixesAndAccelerations;
    RecordCollector trailer(keepsAccelerations);
    if (layout.isRiff && readTrailer(source, contents, fileName, trailer)) {
        setRecord(contents, trailer.take(ClipRecord::Clock::Camera));
        contents.record.format = QStringLiteral("text behind the pictures");
    } else {
        setRecord(contents, readFormats(source, layout, keepsAccelerations));
    }
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

ClipContents readClipContents(QIODevice& device, const QString& fileName, RecordPart part) {
    ClipContents contents;
    contents.record.startByName = clipStart(fileName);
    ByteSource source(device, {limits::kRecordBytes, limits::kRecordReads});
    const ClipLayout layout = readClipLayout(source);
    if (layout.isRiff || isMp4(source)) {
        contents.container = layout.isRiff ? "AVI" : "MP4";
        readContainer(source, layout, contents);
        readRecord(source, layout, fileName, part, contents);
    }
    if (const std::optional<std::int64_t> byte = source.failedAt())
        contents.readError = QStringLiteral("byte %1: %2").arg(grouped(*byte), device.errorString());
    return contents;
}

} // namespace ql240
