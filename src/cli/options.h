// The command line of ql240-clip.
#pragma once

#include <QStringList>
#include <optional>

#include "clips/cut/cut_range.h"
#include "clips/track_export.h"

namespace ql240::cli {

enum ExitCode { kDone = 0, kSomeFailed = 1, kWrongUse = 2 };

struct Options {
    enum class Command { Help, Version, Info, Track, Events, Cut, Repair };

    Command command = Command::Help;
    QStringList names; // clips, folders, "-" for standard input
    bool json = false;
    double thresholdG = 0.5;
    TrackFormat format = TrackFormat::Gpx;
    QString output; // empty: standard output; with cut and repair, a default name
    bool force = false;
    bool accelerations = false;
    CutRange range;
    bool keepsSound = true;
    QString pattern; // empty: search the clip's folder
};

// Parses the arguments (without the program's name); nothing if they are invalid, with the reason in
// `problem`.
std::optional<Options> parseOptions(const QStringList& arguments, QString& problem);

const char* helpText();

} // namespace ql240::cli
