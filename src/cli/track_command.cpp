#include <unistd.h>

#include <algorithm>
#include <map>

#include "cli/clip_input.h"
#include "cli/commands.h"
#include "cli/track_output.h"
#include "clips/clip_name.h"
#include "clips/track_joiner.h"

namespace ql240::cli {
namespace {

struct Start {
    QString name;
    std::optional<std::int64_t> cameraMs; // by the clip's name
    std::optional<std::int64_t> utcMs;    // by the receiver's clock
};

// The camera's time minus UTC, by the clips with both.
class CameraOffsets {
public:
    explicit CameraOffsets(const std::vector<Start>& starts) {
        for (const Start& start : starts) {
            if (start.cameraMs && start.utcMs)
                m_offsets[*start.cameraMs] = *start.cameraMs - *start.utcMs;
        }
    }

    // Of the nearest such clip: the camera's clock may have been set between two clips.
    std::optional<std::int64_t> at(std::optional<std::int64_t> cameraMs) const {
        if (!cameraMs || m_offsets.empty())
            return std::nullopt;
        const auto after = m_offsets.lower_bound(*cameraMs);
        if (after == m_offsets.begin())
            return after->second;
        const auto before = std::prev(after);
        const bool isAfterNearer =
            after != m_offsets.end() && after->first - *cameraMs < *cameraMs - before->first;
        return isAfterNearer ? after->second : before->second;
    }

private:
    std::map<std::int64_t, std::int64_t> m_offsets;
};

// By the clip's name, and by its receiver. A clip that can't be read is reported later, when its track is.
Start startOf(const QString& name) {
    Start start{name, {}, {}};
    const QDateTime byName = clipStart(name.section(u'/', -1));
    if (byName.isValid())
        start.cameraMs = byName.toMSecsSinceEpoch();
    if (name == QLatin1String("-"))
        return start; // which can be read once only
    Reports silent(Reports::Kind::Silent);
    if (const std::optional<ClipInput> input = readClip(name, RecordPart::Fixes, silent))
        start.utcMs = input->contents.record.startBySatellitesMs;
    return start;
}

// Sorts by the receivers' clocks, and clips without one by the camera's. Reads each clip, which is done again
// for its track: the records of a whole card are too many to keep.
QStringList inOrderOfTime(const QStringList& names, Reports& reports) {
    if (names.size() < 2)
        return names;
    std::vector<Start> starts;
    for (const QString& name : names) {
        reports.progress(static_cast<qsizetype>(starts.size()) + 1, names.size(), name);
        starts.push_back(startOf(name));
    }
    const CameraOffsets offsets(starts);
    const auto key = [&offsets](const Start& start) {
        return timeOrder(start.utcMs, start.cameraMs, offsets.at(start.cameraMs));
    };
    std::stable_sort(starts.begin(), starts.end(),
                     [&key](const Start& a, const Start& b) { return key(a) < key(b); });
    QStringList ordered;
    for (const Start& start : starts)
        ordered << start.name;
    return ordered;
}

void addClip(const ClipInput& input, TrackOutput& output, TrackJoiner& joiner, Reports& reports) {
    const ClipRecord& record = input.contents.record;
    if (!record.hasFix()) {
        if (!input.contents.readError.isEmpty())
            return; // and has been reported
        reports.fail(input.name, record.stops.isEmpty()
                                     ? QStringLiteral("no position in it")
                                     : QStringLiteral("no position in it: ") + record.stops.first());
        return;
    }
    const TrackJoiner::Result result = joiner.add(record, input.name, output.writer());
    if (result.leftOut > 0) {
        reports.say(input.name, QStringLiteral("%1 of its positions left out: %2 has their time")
                                    .arg(result.leftOut)
                                    .arg(result.earlier));
    }
}

} // namespace

bool runTrack(const Options& options, Reports& reports) {
    if (options.output.isEmpty() && ::isatty(STDOUT_FILENO) == 1)
        reports.hideProgress();
    TrackOutput output(options);
    QString reason;
    if (!output.open(reason)) {
        reports.fail(output.name(), reason);
        return false;
    }
    const QStringList names = inOrderOfTime(clipNames(options.names, reports), reports);
    const RecordPart part = options.accelerations ? RecordPart::FixesAndAccelerations : RecordPart::Fixes;
    TrackJoiner joiner;
    forEachClip(names, part, reports, [&](const ClipInput& input) {
        addClip(input, output, joiner, reports);
        return true;
    });
    if (output.finish(reason))
        return true;
    reports.fail(output.name(), reason);
    return false;
}

} // namespace ql240::cli
