#include <unistd.h>

#include <algorithm>

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

// Reads the starts from the clips; returns the camera's offset if one of them has both. Unreadable clips are
// reported later, when their track is read.
std::optional<std::int64_t> readStarts(std::vector<Start>& starts) {
    std::optional<std::int64_t> offsetMs;
    for (Start& start : starts) {
        Reports silent(Reports::Kind::Silent);
        const std::optional<ClipInput> input = readClip(start.name, RecordPart::Fixes, silent);
        if (!input)
            continue;
        start.utcMs = input->contents.record.startBySatellitesMs;
        if (!offsetMs)
            offsetMs = cameraOffsetMs(input->contents.record);
    }
    return offsetMs;
}

// Sorts by the camera's clock if all names have a time stamp; otherwise by the receiver's, which requires
// reading the clips twice.
QStringList inOrderOfTime(const QStringList& names) {
    std::vector<Start> starts;
    bool allHaveStart = true;
    for (const QString& name : names) {
        const QDateTime byName = clipStart(name.section(u'/', -1));
        allHaveStart = allHaveStart && byName.isValid();
        starts.push_back({name, {}, {}});
        if (byName.isValid())
            starts.back().cameraMs = byName.toMSecsSinceEpoch();
    }
    const bool readsTwice = !allHaveStart && !names.contains(QStringLiteral("-"));
    const std::optional<std::int64_t> offsetMs = readsTwice ? readStarts(starts) : std::nullopt;
    const auto key = [offsetMs](const Start& start) {
        return timeOrder(start.utcMs, start.cameraMs, offsetMs);
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
    const QStringList names = inOrderOfTime(clipNames(options.names, reports));
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
