#include "cli/clip_summary.h"

#include <QJsonArray>
#include <QLocale>
#include <algorithm>
#include <array>

#include "clips/track_export.h"

namespace ql240::cli {
namespace {

QString grouped(std::int64_t number) {
    return QLocale(QLocale::English).toString(number);
}

QJsonValue whole(std::int64_t number) {
    return QJsonValue(static_cast<qint64>(number));
}

QString seconds(std::int64_t ms) {
    return QString::number(static_cast<double>(ms) / 1000, 'f', 3) + QStringLiteral(" s");
}

// "+09:00:01"
QString offsetText(std::int64_t ms) {
    const std::int64_t total = std::llround(std::abs(static_cast<double>(ms)) / 1000);
    return QStringLiteral("%1%2:%3:%4")
        .arg(QLatin1Char(ms < 0 ? '-' : '+'))
        .arg(total / 3600, 2, 10, QLatin1Char('0'))
        .arg(total / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(total % 60, 2, 10, QLatin1Char('0'));
}

QString startText(const ClipRecord& record) {
    return record.startByName.toString(QStringLiteral("yyyy-MM-ddThh:mm:ss"));
}

const char* kindName(ClipStream::Kind kind) {
    constexpr std::array kNames{"video", "sound", "data"};
    return kNames[static_cast<std::size_t>(kind)];
}

// A fragmented clip's header gives no length and no rate.
QString streamText(const ClipStream& stream) {
    QString text = QString::fromLatin1(kindName(stream.kind)) + u' ' + stream.codec;
    if (stream.kind == ClipStream::Kind::Video) {
        text += QStringLiteral(", %1x%2").arg(stream.width).arg(stream.height);
        if (stream.framesASecond > 0)
            text += QStringLiteral(", %1 frames/s").arg(thousandths(stream.framesASecond));
    } else if (stream.kind == ClipStream::Kind::Sound) {
        text +=
            QStringLiteral(", %1 Hz, %2 channel(s)").arg(grouped(stream.samplesASecond)).arg(stream.channels);
    }
    return stream.lengthMs > 0 ? text + QStringLiteral(", ") + seconds(stream.lengthMs) : text;
}

void addDuration(QJsonObject& object, std::int64_t ms) {
    if (ms > 0)
        object[QStringLiteral("duration_s")] = static_cast<double>(ms) / 1000;
}

QJsonObject streamObject(const ClipStream& stream) {
    QJsonObject object{{QStringLiteral("kind"), QString::fromLatin1(kindName(stream.kind))},
                       {QStringLiteral("codec"), stream.codec}};
    addDuration(object, stream.lengthMs);
    if (stream.kind == ClipStream::Kind::Video) {
        object[QStringLiteral("width")] = stream.width;
        object[QStringLiteral("height")] = stream.height;
        if (stream.framesASecond > 0)
            object[QStringLiteral("frames_per_s")] = thousandths(stream.framesASecond);
    } else if (stream.kind == ClipStream::Kind::Sound) {
        object[QStringLiteral("samples_per_s")] = stream.samplesASecond;
        object[QStringLiteral("channels")] = stream.channels;
    }
    return object;
}

QStringList wrongOf(const ClipContents& contents) {
    QStringList all = contents.faults + contents.record.stops;
    if (contents.record.furtherStops > 0)
        all << QStringLiteral("%1 more like these").arg(grouped(contents.record.furtherStops));
    return all;
}

// Lines "  label  value", only for what the clip has.
class Lines {
public:
    void add(const char* label, const QString& value) {
        if (!value.isEmpty())
            m_text += QStringLiteral("  %1 %2\n").arg(QLatin1StringView(label), -16).arg(shown(value));
    }
    void addCount(const char* label, std::int64_t count) {
        add(label, count > 0 ? grouped(count) : QString());
    }
    void addClock(const char* label, std::optional<std::int64_t> ms, ClipRecord::Clock clock) {
        add(label, ms ? clockText(*ms, clock) : QString());
    }
    const QString& text() const { return m_text; }

private:
    QString m_text;
};

void addRecord(Lines& lines, const ClipRecord& record) {
    const ClipSummary summary = summaryOf(record);
    lines.add("sensor data", record.format.isEmpty() ? QStringLiteral("none") : record.format);
    lines.addCount("fixes", summary.fixes);
    lines.addCount("without a fix", static_cast<std::int64_t>(record.fixes.size()) - summary.fixes);
    lines.addCount("accelerations", static_cast<std::int64_t>(record.accelerations.size()));
    lines.addClock("first time", summary.firstMs, record.clock);
    lines.addClock("last time", summary.lastMs, record.clock);
    if (summary.fixes > 0)
        lines.add("distance", QString::number(summary.distanceM / 1000, 'f', 3) + QStringLiteral(" km"));
    if (summary.highestKmh)
        lines.add("highest speed", QString::number(*summary.highestKmh, 'f', 1) + QStringLiteral(" km/h"));
    if (summary.strongest) {
        lines.add("strongest shock", QStringLiteral("%1 g at %2, %3")
                                         .arg(summary.strongest->sizeG, 0, 'f', 2)
                                         .arg(seconds(summary.strongest->timeUs / 1000))
                                         .arg(axisName(summary.strongest->axis)));
    }
}

void addRecord(QJsonObject& object, const ClipRecord& record) {
    const ClipSummary summary = summaryOf(record);
    const auto addClock = [&](const char* key, std::optional<std::int64_t> ms) {
        if (ms)
            object[QLatin1StringView(key)] = clockText(*ms, record.clock);
    };
    object[QStringLiteral("sensor_format")] = record.format;
    object[QStringLiteral("fixes")] = whole(summary.fixes);
    object[QStringLiteral("without_fix")] =
        whole(static_cast<std::int64_t>(record.fixes.size()) - summary.fixes);
    object[QStringLiteral("accelerations")] = static_cast<int>(record.accelerations.size());
    addClock("first_time", summary.firstMs);
    addClock("last_time", summary.lastMs);
    if (summary.fixes > 0)
        object[QStringLiteral("distance_m")] = thousandths(summary.distanceM);
    if (summary.highestKmh)
        object[QStringLiteral("highest_speed_kmh")] = thousandths(*summary.highestKmh);
    if (summary.strongest) {
        object[QStringLiteral("strongest_shock")] =
            QJsonObject{{QStringLiteral("size_g"), thousandths(summary.strongest->sizeG)},
                        {QStringLiteral("offset_s"), static_cast<double>(summary.strongest->timeUs) / 1e6},
                        {QStringLiteral("axis"), axisName(summary.strongest->axis)}};
    }
}

} // namespace

ClipSummary summaryOf(const ClipRecord& record) {
    ClipSummary summary;
    LostFixes lost;
    const RecordedFix* before = nullptr;
    for (const RecordedFix& fix : record.fixes) {
        const bool beginsRun = lost.beginsRun(fix);
        if (!fix.isValid())
            continue;
        ++summary.fixes;
        if (fix.hasClock()) {
            summary.firstMs = summary.firstMs.value_or(fix.clockMs);
            summary.lastMs = fix.clockMs;
        }
        if (!std::isnan(fix.speedKmh))
            summary.highestKmh = std::max(summary.highestKmh.value_or(0), fix.speedKmh);
        if (!beginsRun)
            summary.distanceM += metresBetween(*before, fix);
        before = &fix;
    }
    for (const Shock& shock : findShocks(record.accelerations)) {
        if (!summary.strongest || shock.sizeG > summary.strongest->sizeG)
            summary.strongest = shock;
    }
    return summary;
}

QByteArray summaryText(const ClipInput& input) {
    const ClipContents& contents = input.contents;
    const ClipRecord& record = contents.record;
    Lines lines;
    lines.add(
        "container",
        QStringLiteral("%1, %2 bytes").arg(QLatin1StringView(contents.container), grouped(input.bytes)) +
            (contents.lengthMs > 0 ? QStringLiteral(", ") + seconds(contents.lengthMs) : QString()));
    for (const ClipStream& stream : contents.streams)
        lines.add("stream", streamText(stream));
    lines.add("camera", record.camera);
    lines.add("firmware", record.firmware);
    lines.add("start by name", startText(record));
    lines.addClock("start in UTC", record.startBySatellitesMs, ClipRecord::Clock::Utc);
    if (const std::optional<std::int64_t> offset = cameraOffsetMs(record))
        lines.add("camera's offset", offsetText(*offset));
    addRecord(lines, record);
    for (const QString& wrong : wrongOf(contents))
        lines.add("wrong", wrong);
    return (shown(input.name) + u'\n' + lines.text()).toLocal8Bit();
}

QJsonObject summaryObject(const ClipInput& input) {
    const ClipContents& contents = input.contents;
    const ClipRecord& record = contents.record;
    QJsonArray streams;
    for (const ClipStream& stream : contents.streams)
        streams.append(streamObject(stream));
    QJsonObject object{{QStringLiteral("clip"), input.name},
                       {QStringLiteral("container"), QString::fromLatin1(contents.container)},
                       {QStringLiteral("size_bytes"), whole(input.bytes)},
                       {QStringLiteral("streams"), streams},
                       {QStringLiteral("wrong"), QJsonArray::fromStringList(wrongOf(contents))}};
    addDuration(object, contents.lengthMs);
    const auto addText = [&object](const char* key, const QString& text) {
        if (!text.isEmpty())
            object[QLatin1StringView(key)] = text;
    };
    addText("camera", record.camera);
    addText("firmware", record.firmware);
    addText("start_by_name", startText(record));
    if (record.startBySatellitesMs)
        addText("start_utc", clockText(*record.startBySatellitesMs, ClipRecord::Clock::Utc));
    if (const std::optional<std::int64_t> offset = cameraOffsetMs(record))
        object[QStringLiteral("camera_offset_s")] = static_cast<double>(*offset) / 1000;
    addRecord(object, record);
    return object;
}

QString axisName(Shock::Axis axis) {
    return QStringLiteral("xyz").at(static_cast<int>(axis));
}

double thousandths(double value) {
    return std::round(value * 1000) / 1000;
}

} // namespace ql240::cli
