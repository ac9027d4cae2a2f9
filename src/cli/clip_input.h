// The clips that a command reads, from files, folders and standard input.
#pragma once

#include <QStringList>
#include <functional>

#include "cli/reports.h"
#include "clips/record_reader.h"

namespace ql240::cli {

// The name that stands for standard input.
inline constexpr QLatin1StringView kStandardInput{"-"};

struct ClipInput {
    QString name; // as given; with the folder's path for a clip in a folder
    QString fileName;
    ClipContents contents;
    std::int64_t bytes = 0;
};

// Why a folder can't be listed; empty if it can.
QString folderProblem(const QString& name);

// Replaces folders by their clips, in the viewer's order; reports a folder without clips, or one that can't
// be listed, as a failure.
QStringList clipNames(const QStringList& names, Reports& reports);

// Reads one clip; nothing, with a reported failure, if it can't be opened or isn't a clip. After a read
// error, reports that and returns everything before it.
std::optional<ClipInput> readClip(const QString& name, RecordPart part, Reports& reports);

// Calls `visit` with each readable clip in turn and reports progress; stops when `visit` returns false.
void forEachClip(const QStringList& names, RecordPart part, Reports& reports,
                 const std::function<bool(const ClipInput&)>& visit);

} // namespace ql240::cli
