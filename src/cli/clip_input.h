// The clips that a command is to read, from names of files and folders and from standard input.
#pragma once

#include <QStringList>
#include <functional>

#include "cli/reports.h"
#include "clips/record_reader.h"

namespace ql240::cli {

struct ClipInput {
    QString name; // as it was named, in a folder with the folder's path
    QString fileName;
    ClipContents contents;
    std::int64_t bytes = 0;
};

// Folders become the clips in them, in the viewer's order; one without any is reported as a failure.
QStringList clipNames(const QStringList& names, Reports& reports);

// Reads one clip; nothing, with a failure reported, where it is none or can't be opened. What can be read up
// to a failing byte counts, but is reported too.
std::optional<ClipInput> readClip(const QString& name, RecordPart part, Reports& reports);

// Calls `visit` with each in turn that can be read, and reports how far it is; ends where `visit` says false.
void forEachClip(const QStringList& names, RecordPart part, Reports& reports,
                 const std::function<bool(const ClipInput&)>& visit);

} // namespace ql240::cli
