#include <unistd.h>

#include <algorithm>
#include <utility>

#include "cli/clip_input.h"
#include "cli/commands.h"
#include "cli/track_output.h"
#include "clips/clip_moments.h"
#include "clips/clip_name.h"
#include "clips/track_joiner.h"

namespace ql240::cli {
namespace {

struct Start {
    QString name;
    std::optional<std::int64_t> cameraMs; // by the clip's name
    std::optional<std::int64_t> utcMs;    // by the receiver's clock
    bool isRead = false;                  // standard input, which can be read once only
    std::optional<ClipInput> input;       // nothing if it failed
};

// A clip that can't be read is reported later, when its track is.
Start startOf(const QString& name, RecordPart part, Reports& reports) {
    Start start{name, {}, {}, name == kStandardInput, {}};
    Reports silent(Reports::Kind::Silent);
    std::optional<ClipInput> input =
        start.isRead ? readClip(name, part, reports) : readClip(name, RecordPart::Fixes, silent);
    const QDateTime byName = clipStart(name.section(u'/', -1));
    if (byName.isValid())
        start.cameraMs = byName.toMSecsSinceEpoch();
    if (input)
        start.utcMs = input->contents.record.startBySatellitesMs;
    if (start.isRead)
        start.input = std::move(input);
    return start;
}

// Sorts by the receivers' clocks, and clips without one by the camera's. Reads each clip, which is done again
// for its track: the records of a whole card are too many to keep.
std::vector<Start> inOrderOfTime(const QStringList& names, RecordPart part, Reports& reports) {
    std::vector<Start> starts;
    for (const QString& name : names) {
        reports.progress(static_cast<qsizetype>(starts.size()) + 1, names.size(), name);
        starts.push_back(names.size() > 1 ? startOf(name, part, reports) : Start{name, {}, {}, false, {}});
    }
    CameraOffsets offsets;
    for (const Start& start : starts) {
        if (start.cameraMs && start.utcMs)
            offsets.add(start.cameraMs, *start.cameraMs - *start.utcMs);
    }
    const auto key = [&offsets](const Start& start) {
        return timeOrder(start.utcMs, start.cameraMs, offsets.at(start.cameraMs));
    };
    std::stable_sort(starts.begin(), starts.end(),
                     [&key](const Start& a, const Start& b) { return key(a) < key(b); });
    return starts;
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

// Whether writing the output would replace one of the clips.
bool isAmong(const QString& output, const QStringList& names) {
    return !output.isEmpty() && std::any_of(names.begin(), names.end(), [&output](const QString& name) {
        return containers::isSameFile(name == kStandardInput ? QStringLiteral("/dev/stdin") : name, output);
    });
}

} // namespace

bool runTrack(const Options& options, Reports& reports) {
    if (options.output.isEmpty() && ::isatty(STDOUT_FILENO) == 1)
        reports.hideProgress();
    TrackOutput output(options);
    const QStringList names = clipNames(options.names, reports);
    if (isAmong(options.output, names)) {
        reports.fail(output.name(), QStringLiteral("it is one of the clips"));
        return false;
    }
    QString reason;
    if (!output.open(reason)) {
        reports.fail(output.name(), reason);
        return false;
    }
    const RecordPart part = options.accelerations ? RecordPart::FixesAndAccelerations : RecordPart::Fixes;
    std::vector<Start> starts = inOrderOfTime(names, part, reports);
    TrackJoiner joiner;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        Start& start = starts[i];
        reports.progress(static_cast<qsizetype>(i) + 1, names.size(), start.name);
        const std::optional<ClipInput> input =
            start.isRead ? std::exchange(start.input, {}) : readClip(start.name, part, reports);
        if (input)
            addClip(*input, output, joiner, reports);
    }
    if (output.finish(reason))
        return true;
    reports.fail(output.name(), reason);
    return false;
}

} // namespace ql240::cli
