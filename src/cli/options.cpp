#include "cli/options.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <iterator>

namespace ql240::cli {
namespace {

using Command = Options::Command;

enum CommandBit { kInfo = 1, kTrack = 2, kEvents = 4, kCut = 8, kRepair = 16, kAll = 31 };

struct OptionRule {
    const char* name;
    const char* letter;
    bool hasValue;
    int commands;
};

constexpr OptionRule kRules[] = {
    {"json", "", false, kInfo | kEvents},
    {"threshold", "", true, kEvents},
    {"format", "f", true, kTrack},
    {"output", "o", true, kTrack | kCut | kRepair},
    {"force", "", false, kTrack | kCut | kRepair},
    {"accelerations", "", false, kTrack},
    {"from", "", true, kCut},
    {"to", "", true, kCut},
    {"no-sound", "", false, kCut},
    {"like", "", true, kRepair},
    {"help", "h", false, kAll},
    {"version", "", false, kAll},
};

constexpr struct {
    const char* word;
    Command command;
    int bit;
} kCommands[] = {
    {"info", Command::Info, kInfo},       {"track", Command::Track, kTrack},
    {"events", Command::Events, kEvents}, {"cut", Command::Cut, kCut},
    {"repair", Command::Repair, kRepair}, {"--help", Command::Help, kAll},
    {"-h", Command::Help, kAll},          {"--version", Command::Version, kAll},
};

QString text(const char* latin1) {
    return QString::fromLatin1(latin1);
}

void addRules(QCommandLineParser& parser) {
    for (const OptionRule& rule : kRules) {
        QStringList names{text(rule.name)};
        if (*rule.letter != 0)
            names << text(rule.letter);
        parser.addOption(QCommandLineOption(names, {}, rule.hasValue ? text(rule.name) : QString()));
    }
}

// The first option given that the command doesn't have.
QString strangeOption(const QCommandLineParser& parser, int commandBit) {
    for (const OptionRule& rule : kRules) {
        if ((rule.commands & commandBit) == 0 && parser.isSet(text(rule.name)))
            return text(rule.name);
    }
    return {};
}

bool takeThreshold(const QCommandLineParser& parser, Options& options, QString& problem) {
    if (!parser.isSet(text("threshold")))
        return true;
    bool isNumber = false;
    options.thresholdG = parser.value(text("threshold")).toDouble(&isNumber);
    if (isNumber && std::isfinite(options.thresholdG) && options.thresholdG > 0)
        return true;
    problem = QStringLiteral("\"%1\" is no threshold in g").arg(parser.value(text("threshold")));
    return false;
}

// Parses "90.5", "1:30.5" or "0:01:30.5"; nothing if it is invalid.
std::optional<std::int64_t> timeUsOf(const QString& text) {
    constexpr double kMostSeconds = 1e6;
    constexpr double kUsPerSecond = 1e6;
    const QStringList parts = text.split(u':');
    double seconds = 0;
    for (const QString& part : parts) {
        bool isNumber = false;
        const double number = part.toDouble(&isNumber);
        if (!isNumber || !(number >= 0 && number <= kMostSeconds) || parts.size() > 3)
            return std::nullopt;
        seconds = seconds * 60 + number;
    }
    return static_cast<std::int64_t>(std::llround(seconds * kUsPerSecond));
}

bool takeTime(const QCommandLineParser& parser, const char* name, std::int64_t& us, QString& problem) {
    const std::optional<std::int64_t> time = timeUsOf(parser.value(text(name)));
    us = time.value_or(0);
    if (!parser.isSet(text(name)))
        problem = QStringLiteral("--%1 is needed").arg(text(name));
    else if (!time)
        problem = QStringLiteral("\"%1\" is no time").arg(parser.value(text(name)));
    return problem.isEmpty();
}

bool takeCut(const QCommandLineParser& parser, Options& options, QString& problem) {
    options.keepsSound = !parser.isSet(text("no-sound"));
    if (!takeTime(parser, "from", options.range.fromUs, problem) ||
        !takeTime(parser, "to", options.range.toUs, problem))
        return false;
    if (options.range.fromUs > options.range.toUs)
        problem = text("the piece ends before it begins");
    else if (options.names.size() > 1)
        problem = text("only one clip can be cut at a time");
    else if (options.names.contains(text("-")) || parser.value(text("output")) == QLatin1String("-"))
        problem = text("a piece is cut from a file into a file");
    return problem.isEmpty();
}

// By name, otherwise by the output's suffix.
bool takeFormat(const QCommandLineParser& parser, Options& options, QString& problem) {
    const bool isNamed = parser.isSet(text("format"));
    const QString name =
        isNamed ? parser.value(text("format")) : QFileInfo(options.output).suffix().toLower();
    const std::optional<TrackFormat> format = trackFormatOf(name);
    options.format = format.value_or(TrackFormat::Gpx);
    if (!format) {
        problem = isNamed ? QStringLiteral("no format \"%1\"").arg(name)
                          : QStringLiteral("--format gpx, kml, csv or geojson is needed");
    } else if (options.accelerations && *format != TrackFormat::Csv) {
        problem = QStringLiteral("only csv has room for accelerations");
    }
    return problem.isEmpty();
}

// Allows one clip or folder, and no pipes: repair needs random access.
QString repairProblem(const Options& options, bool hasPattern) {
    if (options.names.size() > 1)
        return text("one clip or folder at a time");
    if (options.names.contains(text("-")) || options.output == QLatin1String("-"))
        return text("repair needs files");
    return hasPattern && options.pattern.isEmpty() ? text("the healthy clip has no name") : QString();
}

bool takeOptions(const QCommandLineParser& parser, Options& options, QString& problem) {
    const auto isSet = [&parser](const char* name) { return parser.isSet(text(name)); };
    options.names = parser.positionalArguments();
    options.json = isSet("json");
    options.force = isSet("force");
    options.accelerations = isSet("accelerations");
    options.output = parser.value(text("output"));
    options.pattern = parser.value(text("like"));
    if (isSet("output") && options.output.isEmpty())
        problem = text("the output has no name");
    else if (options.names.isEmpty())
        problem = text("no clip is named");
    else if (options.names.count(text("-")) > 1)
        problem = text("standard input can be read once only");
    else if (options.command == Command::Repair)
        problem = repairProblem(options, isSet("like"));
    if (!problem.isEmpty())
        return false;
    if (options.output == QLatin1String("-"))
        options.output.clear();
    if (options.command == Command::Cut)
        return takeCut(parser, options, problem);
    return options.command != Command::Track ? takeThreshold(parser, options, problem)
                                             : takeFormat(parser, options, problem);
}

} // namespace

std::optional<Options> parseOptions(const QStringList& arguments, QString& problem) {
    const QString word = arguments.value(0);
    const auto* const known = std::find_if(std::begin(kCommands), std::end(kCommands), [&](const auto& each) {
        return word == QLatin1StringView(each.word);
    });
    if (known == std::end(kCommands)) {
        problem =
            word.isEmpty() ? text("no command is given") : QStringLiteral("no command \"%1\"").arg(word);
        return std::nullopt;
    }
    Options options;
    options.command = known->command;
    if (known->bit == kAll)
        return options;
    QCommandLineParser parser;
    addRules(parser);
    if (!parser.parse(arguments)) {
        problem = parser.errorText();
    } else if (parser.isSet(text("help")) || parser.isSet(text("version"))) {
        options.command = parser.isSet(text("help")) ? Command::Help : Command::Version;
        return options;
    } else if (const QString strange = strangeOption(parser, known->bit); !strange.isEmpty()) {
        problem = QStringLiteral("%1 takes no --%2").arg(word, strange);
    } else if (takeOptions(parser, options, problem)) {
        return options;
    }
    return std::nullopt;
}

const char* helpText() {
    return "usage: ql240-clip info [--json] CLIP|FOLDER…\n"
           "       ql240-clip track [--format FORMAT] [-o FILE [--force]] [--accelerations] CLIP|FOLDER…\n"
           "       ql240-clip events [--threshold G] [--json] CLIP|FOLDER…\n"
           "       ql240-clip cut --from T --to T [--no-sound] [-o FILE [--force]] CLIP\n"
           "       ql240-clip repair [--like HEALTHY] [-o FILE [--force]] CLIP|FOLDER\n"
           "\n"
           "Shows what dash camera clips (MP4, AVI) recorded beside picture and sound. \"-\" is standard "
           "input.\n"
           "\n"
           "  info    what a clip holds, and what is wrong with it\n"
           "  track   where the car was, as one track\n"
           "  events  shocks, and the clips that the camera itself kept as events\n"
           "  cut     a piece of a clip, with its sensor data\n"
           "  repair  makes a clip open whose recording was interrupted, or all of a folder, in new files\n"
           "\n"
           "      --json           for programs\n"
           "  -f, --format FORMAT  gpx, kml, csv or geojson; by default the output's ending\n"
           "  -o, --output FILE    write there; it appears whole or not at all\n"
           "      --force          also over a file that exists\n"
           "      --accelerations  in csv, a row for each acceleration\n"
           "      --like HEALTHY   the clip to repair by; else one of the folder\n"
           "      --threshold G    the smallest shock, 0.5 by default\n"
           "      --from T, --to T the first and the last moment of the piece: 90.5 or 1:30.5\n"
           "      --no-sound       leave the sound out\n"
           "  -h, --help           this text\n"
           "      --version        the version\n"
           "\n"
           "Ends with 0; 1 where a clip failed or had nothing of what was asked for; 2 for wrong use.\n";
}

} // namespace ql240::cli
