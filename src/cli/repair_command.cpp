#include <QFileInfo>
#include <QLocale>

#include "cli/clip_input.h"
#include "cli/commands.h"
#include "clips/clip_folder.h"
#include "clips/repair/clip_repair.h"

namespace ql240::cli {
namespace {

// The folder's clips that need a repair, sorted by name.
QStringList damagedClips(const QString& folder) {
    QStringList clips;
    for (const QFileInfo& file : listFolder(folder).recordings) {
        if (needsRepair(file.filePath()))
            clips << file.filePath();
    }
    clips.sort();
    return clips;
}

QString grouped(std::int64_t count, const char* what) {
    return QLocale(QLocale::English).toString(static_cast<qlonglong>(count)) + u' ' + QLatin1StringView(what);
}

QString savedText(const RepairOrder& order, const RepairResult& result) {
    QStringList parts{grouped(result.pictures, "pictures")};
    if (result.sounds > 0)
        parts << grouped(result.sounds, "pieces of sound");
    if (result.sensors > 0)
        parts << grouped(result.sensors, "pieces of sensor data");
    if (result.lostBytes > 0)
        parts << grouped(result.lostBytes, "bytes omitted as incomplete");
    QString text = order.output + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
    return result.pattern.isEmpty() ? text : text + QStringLiteral(" (by %1)").arg(result.pattern);
}

bool repair(const RepairOrder& order, Reports& reports) {
    const RepairResult result = repairClip(order);
    if (result.status == RepairStatus::Repaired)
        return writeResult(forTerminal(savedText(order, result)) + '\n', reports);
    const bool isOfOutput = result.status == RepairStatus::WriteFailed;
    reports.fail(isOfOutput ? order.output : order.clip, result.problem);
    return true;
}

} // namespace

bool runRepair(const Options& options, Reports& reports) {
    const QString& name = options.names.first();
    const QFileInfo file(name);
    const QString problem = file.isDir() ? folderProblem(name) : QString();
    if (!problem.isEmpty()) {
        reports.fail(name, problem);
        return true;
    }
    if (file.isDir() && !options.output.isEmpty()) {
        reports.fail(name, QStringLiteral("the clips of a folder can't all become one file"));
        return true;
    }
    const QStringList clips = file.isDir() ? damagedClips(name) : QStringList{name};
    if (clips.isEmpty())
        reports.say(name, QStringLiteral("no clip in it needs a repair"));
    bool isWritten = true;
    for (qsizetype i = 0; i < clips.size() && isWritten; ++i) {
        reports.progress(i + 1, clips.size(), clips[i]);
        RepairOrder order;
        order.clip = clips[i];
        order.pattern = options.pattern;
        order.output =
            options.output.isEmpty() ? repairedName(QFileInfo(clips[i]).fileName()) : options.output;
        order.replaces = options.force;
        isWritten = repair(order, reports);
    }
    return isWritten;
}

} // namespace ql240::cli
