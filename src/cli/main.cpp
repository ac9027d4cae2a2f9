// ql240-clip: on the command line, everything in dash camera clips besides video and audio.
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "cli/commands.h"

namespace ql240::cli {

bool writeResult(const QByteArray& bytes, Reports& reports) {
    reports.clearLine();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return true;
    reports.fail(QStringLiteral("standard output"), QString::fromLocal8Bit(std::strerror(errno)));
    return false;
}

} // namespace ql240::cli

namespace {

// A standard stream that is closed would become the next file opened. This takes its place and can't be used.
void replaceClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace

int main(int argc, char** argv) {
    using namespace ql240::cli;
    using Command = Options::Command;
    // End when the reader of a pipe closes it, even if the parent process ignored the signal.
    std::signal(SIGPIPE, SIG_DFL);
    replaceClosedStreams();
    const QCoreApplication application(argc, argv);
    QString problem;
    const std::optional<Options> options = parseOptions(application.arguments().mid(1), problem);
    if (!options) {
        std::fprintf(stderr, "ql240-clip: %s\nTry \"ql240-clip --help\".\n",
                     forTerminal(problem).constData());
        return kWrongUse;
    }
    Reports reports;
    bool isWritten = true;
    switch (options->command) {
        case Command::Help:
            isWritten = writeResult(helpText(), reports);
            break;
        case Command::Version:
            isWritten = writeResult("ql240-clip " QL240_VERSION "\n", reports);
            break;
        case Command::Info:
            isWritten = runInfo(*options, reports);
            break;
        case Command::Track:
            isWritten = runTrack(*options, reports);
            break;
        case Command::Events:
            isWritten = runEvents(*options, reports);
            break;
        case Command::Cut:
            isWritten = runCut(*options, reports);
            break;
        case Command::Repair:
            isWritten = runRepair(*options, reports);
            break;
    }
    return isWritten && !reports.hasFailures() ? kDone : kSomeFailed;
}
