#include "clips/clip_moments.h"

#include <QFileInfo>
#include <algorithm>
#include <iterator>

namespace ql240 {
namespace {

constexpr std::int64_t kUsPerMs = 1000;

std::optional<std::int64_t> startByName(const ClipRecord& record) {
    if (!record.startByName.isValid())
        return std::nullopt;
    return record.startByName.toMSecsSinceEpoch();
}

} // namespace

Moment momentAt(const ClipRecord& record, const QString& path, Moment::Kind kind, std::int64_t timeUs) {
    Moment moment{kind, path, timeUs, 0, {}, {}, {}, {}};
    if (record.startBySatellitesMs)
        moment.utcMs = *record.startBySatellitesMs + timeUs / kUsPerMs;
    if (const auto start = startByName(record))
        moment.cameraMs = *start + timeUs / kUsPerMs;
    if (const RecordedFix* fix = fixAt(record, timeUs))
        moment.place = *fix;
    return moment;
}

ClipMoments momentsOf(const ClipRecord& record, const QString& path, std::int64_t lengthMs,
                      const ShockOptions& options) {
    ClipMoments found{{}, startByName(record), cameraOffsetMs(record), lengthMs};
    const CameraDecision decision = cameraDecision(QFileInfo(path).fileName());
    if (decision != CameraDecision::None) {
        const bool isEvent = decision == CameraDecision::Event;
        found.moments.push_back(
            momentAt(record, path, isEvent ? Moment::Kind::Event : Moment::Kind::Motion, 0));
    }
    for (const Shock& shock : findShocks(record.accelerations, options)) {
        found.moments.push_back(momentAt(record, path, Moment::Kind::Shock, shock.timeUs));
        found.moments.back().sizeG = shock.sizeG;
        found.moments.back().axis = shock.axis;
    }
    return found;
}

void CameraOffsets::add(std::optional<std::int64_t> startMs, std::optional<std::int64_t> offsetMs) {
    if (startMs && offsetMs)
        m_offsets[*startMs] = *offsetMs;
}

std::optional<std::int64_t> CameraOffsets::at(std::optional<std::int64_t> startMs) const {
    if (!startMs || m_offsets.empty())
        return std::nullopt;
    auto nearest = m_offsets.lower_bound(*startMs);
    if (nearest == m_offsets.end())
        nearest = std::prev(nearest);
    else if (nearest != m_offsets.begin() && *startMs - std::prev(nearest)->first < nearest->first - *startMs)
        nearest = std::prev(nearest);
    return nearest->second;
}

// By the clip's start, so that all moments of a clip have the same offset.
std::int64_t CameraOffsets::orderOf(const Moment& moment) const {
    std::optional<std::int64_t> startMs = moment.cameraMs;
    if (startMs)
        *startMs -= moment.timeUs / kUsPerMs;
    return timeOrder(moment.utcMs, moment.cameraMs, at(startMs));
}

void CameraOffsets::sort(std::vector<Moment>& moments) const {
    std::stable_sort(moments.begin(), moments.end(),
                     [this](const Moment& a, const Moment& b) { return orderOf(a) < orderOf(b); });
}

} // namespace ql240
