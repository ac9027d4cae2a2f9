// ql240-demo-card: makes a memory card with clips, as the camera would write it.

#include <fcntl.h>
#include <unistd.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/preferences.h"
#include "demo_card/card.h"

namespace {

using namespace ql240;
using namespace ql240::demo;

std::atomic<bool>* interrupted = nullptr;

void onSignal(int) {
    *interrupted = true;
}

// The H.264 encoder reports every end of stream as an error on standard error. While this object lives, only
// what is written to file() gets there.
class QuietLibraries {
public:
    QuietLibraries() : m_saved(dup(STDERR_FILENO)), m_file(fdopen(dup(STDERR_FILENO), "w")) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~QuietLibraries() {
        std::fclose(m_file);
        dup2(m_saved, STDERR_FILENO);
        close(m_saved);
    }
    Q_DISABLE_COPY_MOVE(QuietLibraries)

    FILE* file() const { return m_file; }

private:
    int m_saved;
    FILE* m_file;
};

struct Options {
    QString folder;
    bool force = false;
    bool offer = false;
};

std::optional<Options> readOptions(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Makes a demo card in DIR: clips of a drive, settings and version file as the camera leaves them.\n"
        "A demo card that is there already is kept, unless --force is given. Nothing else is ever "
        "replaced."));
    parser.addHelpOption();
    parser.addOption(
        {QStringLiteral("force"), QStringLiteral("Make a demo card anew where one is already.")});
    parser.addOption(
        {QStringLiteral("offer"), QStringLiteral("Make nothing, but have the viewer's folder dialog open on "
                                                 "the card's clips, unless it remembers a folder.")});
    parser.addPositionalArgument(QStringLiteral("DIR"), QStringLiteral("The folder that becomes the card."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1) {
        std::fputs(qPrintable(parser.helpText()), stderr);
        return {};
    }
    return Options{parser.positionalArguments().first(), parser.isSet(QStringLiteral("force")),
                   parser.isSet(QStringLiteral("offer"))};
}

void showProgress(QThread& work, const Progress& progress, int frames) {
    const bool terminal = isatty(STDERR_FILENO);
    const QuietLibraries quiet;
    int shown = -1;
    while (!work.wait(100)) {
        const int percent = progress.framesDone * 100 / frames;
        if (percent == shown || (!terminal && percent / 10 == shown / 10))
            continue;
        std::fprintf(quiet.file(),
                     terminal ? "\rMaking the demo card: %3d %%" : "Making the demo card: %3d %%\n", percent);
        std::fflush(quiet.file());
        shown = percent;
    }
    if (terminal)
        std::fputc('\n', quiet.file());
}

// Runs the work on a thread of its own and shows its progress.
QString makeWithProgress(const QString& folder) {
    Progress progress;
    interrupted = &progress.cancelled;
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    const QList<ClipPlan> clips = demoClips();
    int frames = 0;
    for (const ClipPlan& clip : clips)
        frames += clip.frames();
    QString problem;
    const std::unique_ptr<QThread> work(
        QThread::create([&] { problem = makeCard(folder, clips, progress); }));
    work->start();
    showProgress(*work, progress, frames);
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    return problem;
}

void offer(const QString& clips) {
    QString remembered;
    if (!readLastFolder(remembered))
        writeLastFolder(clips);
}

int fail(const QString& text) {
    std::fprintf(stderr, "ql240-demo-card: %s\n", qPrintable(text));
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const std::optional<Options> options = readOptions(application);
    if (!options)
        return EXIT_FAILURE;
    const CardState state = cardStateOf(options->folder);
    const QString clips = QDir(options->folder).absoluteFilePath(QLatin1String(kClipFolderName));
    if (options->offer) {
        if (state != CardState::DemoCard)
            return fail(QStringLiteral("%1 is no demo card").arg(options->folder));
        offer(clips);
        return EXIT_SUCCESS;
    }
    if (state == CardState::SomethingElse)
        return fail(
            QStringLiteral("%1 is there and is no demo card; it is left as it is").arg(options->folder));
    if (state != CardState::DemoCard || options->force)
        if (const QString problem = makeWithProgress(options->folder); !problem.isEmpty())
            return fail(problem);
    std::printf("%s\n", qPrintable(clips));
    return EXIT_SUCCESS;
}
