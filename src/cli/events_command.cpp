#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

#include "cli/clip_summary.h"
#include "cli/commands.h"
#include "clips/track_export.h"

namespace ql240::cli {
namespace {

struct Event {
    QString clip;
    std::optional<std::int64_t> utcMs;
    std::optional<std::int64_t> cameraMs;
    std::int64_t offsetUs = 0;
    QString kind; // "shock", or what the camera decided: "event", "motion"
    std::optional<Shock> shock;
    std::optional<RecordedFix> place;
};

class EventList {
public:
    // False if the clip has neither accelerations nor a classification by the camera.
    bool add(const ClipInput& input, double thresholdG) {
        const ClipRecord& record = input.contents.record;
        if (!m_cameraOffsetMs)
            m_cameraOffsetMs = cameraOffsetMs(record);
        const CameraDecision decision = cameraDecision(input.fileName);
        if (decision != CameraDecision::None) {
            const bool isEvent = decision == CameraDecision::Event;
            add(input, {}, 0, isEvent ? QStringLiteral("event") : QStringLiteral("motion"));
        }
        ShockOptions options;
        options.thresholdG = thresholdG;
        for (const Shock& shock : findShocks(record.accelerations, options))
            add(input, shock, shock.timeUs, QStringLiteral("shock"));
        return decision != CameraDecision::None || !record.accelerations.empty();
    }

    // Sorted by time; events without a known time come last.
    const std::vector<Event>& sorted() {
        const auto key = [this](const Event& event) {
            return timeOrder(event.utcMs, event.cameraMs, m_cameraOffsetMs);
        };
        std::stable_sort(m_events.begin(), m_events.end(),
                         [&](const Event& a, const Event& b) { return key(a) < key(b); });
        return m_events;
    }

private:
    void add(const ClipInput& input, const std::optional<Shock>& shock, std::int64_t offsetUs,
             const QString& kind) {
        const ClipRecord& record = input.contents.record;
        Event event{input.name, {}, {}, offsetUs, kind, shock, {}};
        if (record.startBySatellitesMs)
            event.utcMs = *record.startBySatellitesMs + offsetUs / 1000;
        if (record.startByName.isValid())
            event.cameraMs = record.startByName.toMSecsSinceEpoch() + offsetUs / 1000;
        if (const RecordedFix* fix = fixAt(record, offsetUs))
            event.place = *fix;
        m_events.push_back(event);
    }

    std::vector<Event> m_events;
    std::optional<std::int64_t> m_cameraOffsetMs;
};

QString timeText(const Event& event) {
    if (event.utcMs)
        return clockText(*event.utcMs, ClipRecord::Clock::Utc);
    return event.cameraMs ? clockText(*event.cameraMs, ClipRecord::Clock::Camera) : QString();
}

QByteArray rowText(const Event& event) {
    const QString size =
        event.shock
            ? QStringLiteral("%1 %2").arg(event.shock->sizeG, 0, 'f', 2).arg(axisName(event.shock->axis))
            : QStringLiteral("-");
    const QString place = event.place ? QStringLiteral("%1,%2")
                                            .arg(event.place->latitude, 0, 'f', 6)
                                            .arg(event.place->longitude, 0, 'f', 6)
                                      : QStringLiteral("-");
    const QString time = timeText(event);
    const QString offset = QString::number(static_cast<double>(event.offsetUs) / 1e6, 'f', 3);
    return QStringLiteral("%1  %2  %3  %4  %5  %6\n")
        .arg(time.isEmpty() ? QStringLiteral("-") : time, -24)
        .arg(event.kind, -6)
        .arg(offset, 9)
        .arg(size, 6)
        .arg(place, -22)
        .arg(shown(event.clip))
        .toLocal8Bit();
}

QJsonObject rowObject(const Event& event) {
    QJsonObject object{{QStringLiteral("clip"), event.clip},
                       {QStringLiteral("offset_s"), static_cast<double>(event.offsetUs) / 1e6},
                       {QStringLiteral("kind"), event.kind}};
    if (const QString time = timeText(event); !time.isEmpty())
        object[QStringLiteral("time")] = time;
    if (event.shock) {
        object[QStringLiteral("size_g")] = thousandths(event.shock->sizeG);
        object[QStringLiteral("axis")] = axisName(event.shock->axis);
    }
    if (event.place) {
        object[QStringLiteral("latitude")] = event.place->latitude;
        object[QStringLiteral("longitude")] = event.place->longitude;
    }
    return object;
}

QByteArray textOf(const std::vector<Event>& events) {
    QByteArray text;
    if (!events.empty())
        text = "time                      kind    offset s  size g  place                   clip\n";
    for (const Event& event : events)
        text += rowText(event);
    return text;
}

QByteArray jsonOf(const std::vector<Event>& events) {
    QJsonArray rows;
    for (const Event& event : events)
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
    const std::vector<Event>& sorted = events.sorted();
    return writeResult(options.json ? jsonOf(sorted) : textOf(sorted), reports);
}

} // namespace ql240::cli
