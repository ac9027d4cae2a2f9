#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

#include "cli/clip_summary.h"
#include "cli/commands.h"
#include "clips/clip_moments.h"
#include "clips/track_export.h"

namespace ql240::cli {
namespace {

class EventList {
public:
    // False if the clip has neither accelerations nor a classification by the camera.
    bool add(const ClipInput& input, double thresholdG) {
        const ClipContents& contents = input.contents;
        ShockOptions options;
        options.thresholdG = thresholdG;
        ClipMoments found = momentsOf(contents.record, input.fileName, contents.lengthMs, options);
        m_offsets.add(found);
        for (Moment& moment : found.moments) {
            moment.clip = input.name;
            m_events.push_back(moment);
        }
        return !found.moments.empty() || !contents.record.accelerations.empty();
    }

    // Sorted by time; events without a known time come last.
    const std::vector<Moment>& sorted() {
        m_offsets.sort(m_events);
        return m_events;
    }

private:
    std::vector<Moment> m_events;
    CameraOffsets m_offsets;
};

bool isShock(const Moment& event) {
    return event.kind == Moment::Kind::Shock;
}

// "shock", or what the camera decided.
QString kindName(const Moment& event) {
    if (isShock(event))
        return QStringLiteral("shock");
    return event.kind == Moment::Kind::Event ? QStringLiteral("event") : QStringLiteral("motion");
}

QString timeText(const Moment& event) {
    if (event.utcMs)
        return clockText(*event.utcMs, ClipRecord::Clock::Utc);
    return event.cameraMs ? clockText(*event.cameraMs, ClipRecord::Clock::Camera) : QString();
}

QByteArray rowText(const Moment& event) {
    const QString size = isShock(event)
                             ? QStringLiteral("%1 %2").arg(event.sizeG, 0, 'f', 2).arg(axisName(event.axis))
                             : QStringLiteral("-");
    const QString place = event.place ? QStringLiteral("%1,%2")
                                            .arg(event.place->latitude, 0, 'f', 6)
                                            .arg(event.place->longitude, 0, 'f', 6)
                                      : QStringLiteral("-");
    const QString time = timeText(event);
    const QString offset = QString::number(static_cast<double>(event.timeUs) / 1e6, 'f', 3);
    return QStringLiteral("%1  %2  %3  %4  %5  %6\n")
        .arg(time.isEmpty() ? QStringLiteral("-") : time, -24)
        .arg(kindName(event), -6)
        .arg(offset, 9)
        .arg(size, 6)
        .arg(place, -22)
        .arg(shown(event.clip))
        .toLocal8Bit();
}

QJsonObject rowObject(const Moment& event) {
    QJsonObject object{{QStringLiteral("clip"), event.clip},
                       {QStringLiteral("offset_s"), static_cast<double>(event.timeUs) / 1e6},
                       {QStringLiteral("kind"), kindName(event)}};
    if (const QString time = timeText(event); !time.isEmpty())
        object[QStringLiteral("time")] = time;
    if (isShock(event)) {
        object[QStringLiteral("size_g")] = thousandths(event.sizeG);
        object[QStringLiteral("axis")] = axisName(event.axis);
    }
    if (event.place) {
        object[QStringLiteral("latitude")] = event.place->latitude;
        object[QStringLiteral("longitude")] = event.place->longitude;
    }
    return object;
}

QByteArray textOf(const std::vector<Moment>& events) {
    QByteArray text;
    if (!events.empty())
        text = "time                      kind    offset s  size g  place                   clip\n";
    for (const Moment& event : events)
        text += rowText(event);
    return text;
}

QByteArray jsonOf(const std::vector<Moment>& events) {
    QJsonArray rows;
    for (const Moment& event : events)
        rows.append(rowObject(event));
    return QJsonDocument(rows).toJson();
}

} // namespace

bool runEvents(const Options& options, Reports& reports) {
    EventList events;
    forEachClip(clipNames(options.names, reports), RecordPart::FixesAndAccelerations, reports,
                [&](const ClipInput& input) {
                    if (!events.add(input, options.thresholdG) && input.contents.readError.isEmpty())
                        reports.fail(input.name, QStringLiteral("no accelerations in it"));
                    return true;
                });
    const std::vector<Moment>& sorted = events.sorted();
    return writeResult(options.json ? jsonOf(sorted) : textOf(sorted), reports);
}

} // namespace ql240::cli
