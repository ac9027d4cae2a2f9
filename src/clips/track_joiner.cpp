#include "clips/track_joiner.h"

#include <algorithm>

namespace ql240 {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
// File names have whole seconds, and a clip may extend slightly into the next.
constexpr std::int64_t kStartSlackMs = 2000;

std::optional<std::int64_t> nameStartMs(const ClipRecord& record) {
    return record.startByName.isValid() ? std::optional(record.startByName.toMSecsSinceEpoch())
                                        : std::nullopt;
}

std::int64_t lastFixUs(const ClipRecord& record) {
    const auto last = std::find_if(record.fixes.rbegin(), record.fixes.rend(),
                                   [](const RecordedFix& fix) { return fix.isValid(); });
    return last != record.fixes.rend() ? last->timeUs : 0;
}

} // namespace

void TrackJoiner::Reach::extend(std::optional<std::int64_t> startMs, std::int64_t lengthUs,
                                const QString& name) {
    if (!startMs)
        return;
    const std::int64_t lastMs = *startMs + lengthUs / kUsPerMs;
    const bool continues = endMs && *startMs + kStartSlackMs >= beginMs && *startMs <= *endMs;
    if (continues && lastMs <= *endMs)
        return;
    if (!continues)
        beginMs = *startMs;
    endMs = lastMs;
    clip = name;
}

std::int64_t TrackJoiner::coveredUs(const ClipRecord& record, QString& earlier) const {
    const bool isBySatellites = record.startBySatellitesMs && m_bySatellites.endMs;
    const Reach& reach = isBySatellites ? m_bySatellites : m_byName;
    const std::optional<std::int64_t> startMs =
        isBySatellites ? record.startBySatellitesMs : nameStartMs(record);
    earlier = reach.clip;
    // A clock that was set back isn't an overlap.
    const bool isBefore = startMs && *startMs + kStartSlackMs < reach.beginMs;
    if (!startMs || !reach.endMs || isBefore ||
        *startMs + (isBySatellites ? 0 : kStartSlackMs) > *reach.endMs)
        return std::numeric_limits<std::int64_t>::min();
    return (*reach.endMs - *startMs) * kUsPerMs;
}

TrackJoiner::Result TrackJoiner::add(const ClipRecord& record, const QString& name, TrackWriter& writer) {
    Result result;
    const std::int64_t covered = coveredUs(record, result.earlier);
    auto acceleration =
        std::find_if(record.accelerations.begin(), record.accelerations.end(),
                     [covered](const RecordedAcceleration& each) { return each.timeUs > covered; });
    const auto addAccelerationsUpTo = [&](std::int64_t timeUs) {
        for (; acceleration != record.accelerations.end() && acceleration->timeUs <= timeUs; ++acceleration)
            writer.addAcceleration(*acceleration);
    };
    LostFixes lost;
    for (const RecordedFix& fix : record.fixes) {
        if (fix.timeUs <= covered) {
            result.leftOut += fix.isValid();
            continue;
        }
        if (lost.beginsRun(fix))
            writer.beginSegment(name, record.clock);
        if (fix.isValid()) {
            addAccelerationsUpTo(fix.timeUs);
            writer.addPoint(fix);
            ++result.points;
        }
    }
    if (result.points > 0)
        addAccelerationsUpTo(std::numeric_limits<std::int64_t>::max());
    m_bySatellites.extend(record.startBySatellitesMs, lastFixUs(record), name);
    m_byName.extend(nameStartMs(record), lastFixUs(record), name);
    return result;
}

} // namespace ql240
