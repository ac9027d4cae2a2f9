#include "clips/repair/clip_repair.h"

#include <QFile>
#include <QFileInfo>

#include "base/regular_file.h"
#include "clips/containers/new_file.h"
#include "clips/repair/avi_repair.h"
#include "clips/repair/pattern_choice.h"
#include "platform/limits.h"

namespace ql240 {

using namespace repair;

namespace {

// For the choice of a pattern: of the longest clip, and of many usual ones.
constexpr std::uint64_t kTriedSamples = 2 * limits::kClipSamples;

enum class Damage { None, Mp4, Avi };

Damage damageOf(QFile& file) {
    FileWindow window(file);
    if (lacksMp4Index(window))
        return Damage::Mp4;
    return lacksAviIndex(file) ? Damage::Avi : Damage::None;
}

RepairResult failed(RepairStatus status, const QString& problem) {
    RepairResult result;
    result.status = status;
    result.problem = problem;
    return result;
}

std::unique_ptr<Mp4Pattern> patternFor(const RepairOrder& order, QFile& from, RepairResult& result) {
    QString problem;
    FileWindow window(from);
    if (!mp4Media(window)) {
        result = failed(RepairStatus::NothingFound, QStringLiteral("no pictures in it"));
        return nullptr;
    }
    std::uint64_t samplesLeft = kTriedSamples;
    if (!order.pattern.isEmpty()) {
        result.pattern = order.pattern;
        std::unique_ptr<Mp4Pattern> pattern = fittingPattern(order.pattern, from, samplesLeft, problem);
        if (!pattern)
            result = failed(RepairStatus::NoPattern,
                            QStringLiteral("%1 can't be the pattern: %2").arg(order.pattern, problem));
        return pattern;
    }
    const std::int64_t size = from.size();
    for (const QString& candidate : patternsFor(order.clip)) {
        if (order.progress && !order.progress(0, size)) {
            result.status = RepairStatus::Cancelled;
            return nullptr;
        }
        problem.clear();
        result.pattern = candidate;
        if (std::unique_ptr<Mp4Pattern> pattern = fittingPattern(candidate, from, samplesLeft, problem))
            return pattern;
    }
    result = failed(RepairStatus::NoPattern, QStringLiteral("it needs a pattern: ") + wantedKind(from));
    return nullptr;
}

void take(const Saved& saved, RepairResult& result) {
    result.pictures = saved.pictures;
    result.sounds = saved.sounds;
    result.sensors = saved.sensors;
    result.lostBytes = saved.lostBytes;
}

// Without a pattern the clip is an AVI file.
RepairResult save(QFile& from, const Mp4Pattern* pattern, const RepairOrder& order,
                  containers::NewFile& output, RepairResult result) {
    const containers::CopyProgress progress = [&](std::int64_t bytes) {
        return !order.progress || order.progress(bytes, from.size());
    };
    QString problem;
    QSaveFile& to = output.device();
    const Saved saved =
        pattern ? saveMp4(from, *pattern, to, progress) : saveAvi(from, to, progress, problem);
    if (saved.isCancelled)
        return failed(RepairStatus::Cancelled, {});
    if (!saved.failure.isEmpty()) {
        const bool isOfOutput = to.error() != QFileDevice::NoError;
        return failed(isOfOutput ? RepairStatus::WriteFailed : RepairStatus::ReadFailed, saved.failure);
    }
    if (saved.pictures == 0)
        return failed(RepairStatus::NothingFound,
                      problem.isEmpty() ? QStringLiteral("no whole picture in it") : problem);
    if (!output.commit(problem))
        return failed(RepairStatus::WriteFailed, problem);
    take(saved, result);
    result.status = RepairStatus::Repaired;
    return result;
}

RepairResult repairInto(const RepairOrder& order, QFile& from, Damage damage, containers::NewFile& output) {
    RepairResult result;
    if (damage == Damage::Avi)
        return save(from, nullptr, order, output, result);
    const std::unique_ptr<Mp4Pattern> pattern = patternFor(order, from, result);
    return pattern ? save(from, pattern.get(), order, output, result) : result;
}

} // namespace

RepairResult repairClip(const RepairOrder& order) {
    QFile from(order.clip);
    QString problem;
    if (!openRegularFile(from, problem))
        return failed(RepairStatus::ReadFailed, problem);
    const Damage damage = damageOf(from);
    if (damage == Damage::None)
        return failed(RepairStatus::NotNeeded, QStringLiteral("it has its index, or is no clip"));
    if (containers::isSameFile(order.output, order.clip))
        return failed(RepairStatus::WriteFailed, QStringLiteral("it is the clip itself"));
    if (containers::isSameFile(order.output, order.pattern))
        return failed(RepairStatus::WriteFailed, QStringLiteral("it is the pattern"));
    containers::NewFile output(order.output, order.replaces);
    if (!output.open(problem))
        return failed(RepairStatus::WriteFailed, problem);
    return repairInto(order, from, damage, output);
}

bool needsRepair(const QString& clip) {
    QFile file(clip);
    QString problem;
    return openRegularFile(file, problem) && damageOf(file) != Damage::None;
}

QString repairedName(const QString& fileName) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    const qsizetype end = dot > 0 ? dot : fileName.size();
    return fileName.left(end) + QStringLiteral("_repaired") + fileName.mid(end);
}

} // namespace ql240
