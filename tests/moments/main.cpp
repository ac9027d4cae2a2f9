// Plays random runs on the viewer's real windows and reports those that found a fault, reduced to the few
// steps that are needed:
//
//     random_moments [--pipeline] [--seeds COUNT] [--from SEED]   in child processes
//     random_moments --worker [--keep 3,5,8] …                    in this process, the given steps or all
//
// Over fakes a seed always plays the same way; on the pipeline a failing seed is retried while it is reduced.
#include <QApplication>
#include <QCommandLineParser>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <numeric>

#include "base/language.h"
#include "moments/run.h"
#include "moments/virtual_time.h"
#include "widgets/fonts.h"

using namespace ql240;
using namespace ql240::moments;

namespace {

struct Order {
    bool pipeline = false;
    quint32 from = 1;
    int seeds = 200;
    int steps = 60;
    std::optional<std::vector<int>> keep;
};

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

Plan planOf(const Order& order) {
    return order.pipeline ? pipelinePlan() : fakesPlan();
}

QStringList workerCall(const Order& order, quint32 from, quint32 seeds) {
    QStringList call{QStringLiteral("--worker"),  QStringLiteral("--from"), QString::number(from),
                     QStringLiteral("--seeds"),   QString::number(seeds),   QStringLiteral("--steps"),
                     QString::number(order.steps)};
    if (order.pipeline)
        call << QStringLiteral("--pipeline");
    return call;
}

std::vector<Step> wantedSteps(const Order& order, quint32 seed) {
    const std::vector<Step> all = planOf(order).steps(seed, order.steps);
    if (!order.keep)
        return all;
    std::vector<Step> kept;
    for (const int index : *order.keep)
        kept.push_back(all[static_cast<std::size_t>(index)]);
    return kept;
}

// Prints a line before and after each seed, so that the last line of a crashed process names its seed.
int work(const Order& order) {
    if (!order.pipeline)
        startVirtualTime();
    installFontSubstitutes();
    int failed = 0;
    for (int i = 0; i < order.seeds; ++i) {
        const quint32 seed = order.from + static_cast<quint32>(i);
        out() << "seed " << seed << Qt::endl;
        setCurrentLanguage(QStringLiteral("en"));
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
        const QString failure = planOf(order).play(seed, wantedSteps(order, seed));
        out() << (failure.isEmpty() ? QStringLiteral("well") : QStringLiteral("wrong ") + failure)
              << Qt::endl;
        failed += !failure.isEmpty();
    }
    return failed == 0 ? 0 : 1;
}

// What a worker reports for one seed: empty if it passed.
QString tryWorker(const Order& order, quint32 seed, const std::vector<int>& keep) {
    QStringList kept;
    for (const int index : keep)
        kept << QString::number(index);
    QProcess worker;
    worker.start(QCoreApplication::applicationFilePath(),
                 workerCall(order, seed, 1) << QStringLiteral("--keep") << kept.join(QLatin1Char(',')));
    worker.waitForFinished(-1);
    const QString said = QString::fromUtf8(worker.readAllStandardOutput());
    if (worker.exitStatus() == QProcess::NormalExit && worker.exitCode() == 0)
        return {};
    const auto wrong = said.indexOf(QLatin1String("wrong "));
    return wrong >= 0 ? said.mid(wrong + 6).trimmed()
                      : QString::fromUtf8(worker.readAllStandardError()).trimmed();
}

std::vector<int> allSteps(const Order& order) {
    std::vector<int> all(static_cast<std::size_t>(order.steps));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

// Removes ever smaller ranges of steps as long as the run still fails.
void shorten(const Order& order, quint32 seed) {
    std::vector<int> kept = allSteps(order);
    QString said;
    for (std::size_t length = kept.size() / 2; length > 0; length /= 2) {
        for (std::size_t at = 0; at + length <= kept.size();) {
            std::vector<int> fewer = kept;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(at),
                        fewer.begin() + static_cast<std::ptrdiff_t>(at + length));
            const QString shorter = fewer.empty() ? QString() : tryWorker(order, seed, fewer);
            if (shorter.isEmpty()) {
                at += length;
            } else {
                kept = fewer;
                said = shorter;
            }
        }
    }
    const std::vector<Step> all = planOf(order).steps(seed, order.steps);
    out() << "seed " << seed << ", shortened: " << said << "\n ";
    for (const int index : kept) {
        const Step& step = all[static_cast<std::size_t>(index)];
        out() << " [" << index << "] " << planOf(order).nameOf(step) << ", " << step.delayMs << " ms;";
    }
    out() << Qt::endl;
}

struct Finding {
    quint32 seed = 0;
    QString what;
};

// A worker plays many seeds; if it dies, the next one continues after the seed that killed it.
std::vector<Finding> findWrong(const Order& order) {
    std::vector<Finding> wrong;
    const quint32 end = order.from + static_cast<quint32>(order.seeds);
    for (quint32 at = order.from; at < end;) {
        QProcess worker;
        worker.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        worker.start(QCoreApplication::applicationFilePath(), workerCall(order, at, end - at));
        worker.waitForFinished(-1);
        const QStringList lines =
            QString::fromUtf8(worker.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        if (lines.isEmpty())
            qFatal("no worker");
        bool open = false;
        for (const QString& line : lines) {
            open = line.startsWith(QLatin1String("seed "));
            if (open)
                at = line.mid(5).toUInt() + 1;
            else if (line.startsWith(QLatin1String("wrong ")))
                wrong.push_back({at - 1, line.mid(6)});
        }
        if (open)
            wrong.push_back({at - 1, QStringLiteral("it ended itself")});
    }
    return wrong;
}

// A failure that only real timing caused may not recur; it is reported but not counted.
bool comesAgain(const Order& order, quint32 seed) {
    constexpr int kTries = 3;
    for (int i = 0; i < (order.pipeline ? kTries : 1); ++i) {
        if (!tryWorker(order, seed, allSteps(order)).isEmpty())
            return true;
    }
    return !order.pipeline;
}

int manage(const Order& order) {
    constexpr int kShortened = 5; // the rest probably have the same cause
    int failed = 0;
    for (const Finding& finding : findWrong(order)) {
        out() << "seed " << finding.seed << ": " << finding.what << Qt::endl;
        if (!comesAgain(order, finding.seed))
            out() << "  not again in three more tries" << Qt::endl;
        else if (++failed <= kShortened)
            shorten(order, finding.seed);
    }
    out() << order.seeds - failed << " passed, " << failed << " failed" << Qt::endl;
    return failed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    // Qt's own event loop over poll(), which virtual time replaces, and one hash order for all processes.
    qputenv("QT_NO_GLIB", "1");
    qputenv("QT_HASH_SEED", "0");
    qputenv("ALSOFT_LOGLEVEL", "0");
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addOptions({{QStringLiteral("worker"), QString()},
                       {QStringLiteral("pipeline"), QString()},
                       {QStringLiteral("from"), QString(), QStringLiteral("seed"), QStringLiteral("1")},
                       {QStringLiteral("seeds"), QString(), QStringLiteral("count"), QStringLiteral("200")},
                       {QStringLiteral("steps"), QString(), QStringLiteral("count"), QStringLiteral("60")},
                       {QStringLiteral("keep"), QString(), QStringLiteral("indices")}});
    parser.process(application);
    const auto number = [&](const char* name) { return parser.value(QLatin1String(name)).toInt(); };
    Order order{parser.isSet(QStringLiteral("pipeline")),
                static_cast<quint32>(number("from")),
                number("seeds"),
                number("steps"),
                {}};
    if (parser.isSet(QStringLiteral("keep"))) {
        order.keep.emplace();
        for (const QString& index : parser.value(QStringLiteral("keep")).split(QLatin1Char(',')))
            order.keep->push_back(index.toInt());
    }
    return parser.isSet(QStringLiteral("worker")) ? work(order) : manage(order);
}
