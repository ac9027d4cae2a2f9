// damaged_clips [COUNT]: opens damaged clips in one process, plays, seeks, steps and grabs each, and prints a
// table of the results. Fails if a clip takes too long or too much memory, or if threads, open files or
// memory accumulate. A clip that crashes or hangs the process stays in the folder "case". damaged_clips
// fields [all]: the same with an extreme number in the fields that may hold a size, count or dimension: one
// number in each length and some other fields, or with "all" every number in every field.
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

#include "clips/clip.h"
#include "demo_card/clip_maker.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "support/clip_damage.h"
#include "support/peak_memory.h"
#include "support/test_clips.h"

using namespace ql240;
using namespace ql240::demo;

namespace {

constexpr int kMostMs = 10000;   // for one clip
constexpr qint64 kMostMiB = 256; // for one clip
constexpr int kMomentMs = 100;
constexpr qint64 kMostGrowthKiB = 48 * 1024;
constexpr qint64 kGiant = qint64(3) << 30; // the file's size, so that a length may be as large
constexpr int kDamages = int(kDamageNames.size());

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryCounts = false; // sanitizers keep freed memory
#else
constexpr bool kMemoryCounts = true;
#endif

struct GoodClip {
    const char* title;
    QString path;
    QByteArray bytes;
};

struct Line {
    int clips = 0;
    int opened = 0;
    int moved = 0; // whose picture changed after seeking
    qint64 slowestMs = 0;
};

struct Use {
    int threads = 0;
    int files = 0;
    qint64 kib = 0;
};

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int entriesOf(const QString& folder) {
    return int(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size());
}

Use useNow() {
    const qint64 pages = contentOf(QStringLiteral("/proc/self/statm")).split(' ').value(1).toLongLong();
    return {entriesOf(QStringLiteral("/proc/self/task")), entriesOf(QStringLiteral("/proc/self/fd")),
            pages * ::sysconf(_SC_PAGESIZE) / 1024};
}

// Three seconds of a drive in small pictures, with its sensor data.
GoodClip makeGoodClip(const char* title, int plan, const QString& folder) {
    ClipPlan clip = demoClips()[plan];
    clip.span.to = clip.span.from + 3;
    for (ClipFormat::Video& video : clip.format.videos)
        video.size = {192, 108};
    Progress progress;
    const QString path = QDir(folder).filePath(clip.name);
    if (const QString trouble = makeClip(clip, path, progress); !trouble.isEmpty())
        qFatal("%s", qPrintable(trouble));
    return {title, path, contentOf(path)};
}

GoodClip makeIndexFirst(const char* title) {
    const QSize size(192, 108);
    const QString path = makeTestClip({.videoStreams = 2, .size = size, .secondSize = size, .frames = 90});
    return {title, path, contentOf(path)};
}

bool waitUntil(const std::function<bool()>& holds, int ms) {
    QElapsedTimer clock;
    clock.start();
    while (!holds() && clock.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return holds();
}

class Trial {
public:
    Trial() {
        m_view.resize(640, 360);
        m_second.resize(320, 180);
        m_view.show();
        m_second.show();
    }

    // The file has a hole after the bytes, up to `size`. False if it took too long or too much memory.
    bool run(const GoodClip& good, const QByteArray& bytes, qint64 size, Line& line) {
        // The clip's own name, which selects the recipe.
        const QString path = QDir(QStringLiteral("case")).filePath(QFileInfo(good.path).fileName());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.resize(size))
            qFatal("can't write %s", qPrintable(path));
        file.close();
        QElapsedTimer clock;
        clock.start();
        const PeakMemory memory;
        const Clip clip{QFileInfo(path)};
        ++line.clips;
        if (m_view.openClip(&clip)) {
            ++line.opened;
            line.moved += play() ? 1 : 0;
        }
        m_view.closeClip();
        QCoreApplication::processEvents();
        line.slowestMs = std::max(line.slowestMs, clock.elapsed());
        return clock.elapsed() <= kMostMs && memory.grownMiB() <= kMostMiB;
    }

private:
    bool play() {
        Player& player = *m_view.player();
        m_view.setFrameSize(player.videoSize(0));
        m_view.layoutVideo();
        m_second.setSecondPlayer(&player);
        m_second.setVideoVisible(true);
        m_second.setFrameSize(player.videoSize(1));
        player.rewind();
        player.pause();
        player.play();
        waitUntil(
            [&] { return player.positionMs() >= kMomentMs || player.positionMs() == player.durationMs(); },
            3 * kMomentMs);
        player.pause();
        player.seek(qint32(player.durationMs() / 2));
        const bool moved = waitUntil([&] { return !player.frame(0, true).isNull(); }, kMomentMs);
        player.stepForward();
        player.stepBack();
        player.seek(qint32(player.durationMs()));
        player.stepForward();
        QCoreApplication::processEvents();
        player.frame(0, true);
        player.frame(1, true);
        player.stop();
        m_second.setSecondPlayer(nullptr);
        return moved;
    }

    VideoView m_view;
    VideoView m_second;
};

bool runFields(const QList<GoodClip>& clips, bool all) {
    constexpr size_t kSome = 8;
    Trial trial;
    Line line;
    bool fits = true;
    for (const GoodClip& good : clips) {
        const QList<ClipField> fields = fieldsOf(good.bytes);
        for (size_t k = 0; k < size_t(fields.size()) * kExtremes.size(); ++k) {
            const size_t i = k / kExtremes.size();
            const quint32 number = kExtremes[k % kExtremes.size()];
            const ClipField& field = fields[qsizetype(i)];
            if (!all && ((!field.isLength && i % kSome != 0) || k % kExtremes.size() != i % kExtremes.size()))
                continue;
            const qint64 size = field.isLength ? kGiant : good.bytes.size();
            if (trial.run(good, withField(good.bytes, field, number), size, line))
                continue;
            fits = false;
            std::fprintf(stderr, "too much: %s, %s, %#x at %lld\n", good.title, field.part.constData(),
                         number, qint64(field.at));
        }
    }
    std::printf("%d clips with an extreme field, %d opened, the slowest took %lld ms.\n", line.clips,
                line.opened, line.slowestMs);
    return fits;
}

void put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("can't write %s", qPrintable(path));
}

// damaged_clips commands PROGRAM [COUNT]: runs ql240-clip's info, cut and repair on the same clips, each in
// its own process. Fails if one takes too long, ends abnormally, has a sanitizer's report, or changes the
// clip, which is then kept in the working folder.
class CommandTrial {
public:
    explicit CommandTrial(QString program) : m_program(std::move(program)) {}

    // Counts the clips that were cut as opened, the repaired ones as moved. False if anything is wrong.
    bool run(const GoodClip& good, const QByteArray& bytes, Line& line) {
        const QString path = m_folder.filePath(QFileInfo(good.path).fileName());
        const QStringList output{"--force", "-o", m_folder.filePath("output"), path};
        put(path, bytes);
        m_isClean = true;
        ++line.clips;
        succeeds({"info", path}, line);
        line.opened += succeeds(QStringList{"cut", "--from", "1", "--to", "2"} + output, line) ? 1 : 0;
        line.moved += succeeds(QStringList{"repair", "--like", good.path} + output, line) ? 1 : 0;
        if (contentOf(path) != bytes)
            report("the clip", "has changed");
        return m_isClean;
    }

private:
    static constexpr int kMostCommandMs = 5000;

    bool succeeds(const QStringList& arguments, Line& line) {
        QProcess process;
        QElapsedTimer clock;
        clock.start();
        process.start(m_program, arguments);
        const bool isInTime = process.waitForFinished(kMostCommandMs);
        line.slowestMs = std::max(line.slowestMs, clock.elapsed());
        if (!isInTime) {
            process.kill();
            process.waitForFinished();
        }
        const QByteArray errors = process.readAllStandardError();
        const bool isNormal = process.exitStatus() == QProcess::NormalExit && process.exitCode() <= 1 &&
                              !errors.contains("Sanitizer") && !errors.contains("runtime error:");
        if (!isInTime || !isNormal)
            report(qPrintable(arguments.first()), isInTime ? errors.constData() : "takes too long");
        return process.exitCode() == 0;
    }
    void report(const char* command, const char* what) {
        std::fprintf(stderr, "%s: %s\n", command, what);
        m_isClean = false;
    }

    QString m_program;
    QTemporaryDir m_folder;
    bool m_isClean = true;
};

bool runCommands(const QList<GoodClip>& clips, const QString& program, int clipsWanted) {
    const int kinds = int(clips.size()) * kDamages;
    const int count = std::max(1, clipsWanted / kinds); // of each kind
    CommandTrial trial(program);
    bool fits = true;
    std::printf("| Clip | Damage | Clips | Cut | Repaired | Slowest, ms |\n|---|---|---|---|---|---|\n");
    for (int kind = 0; kind < kinds; ++kind) {
        const GoodClip& good = clips[kind / kDamages];
        const char* const damage = kDamageNames[size_t(kind % kDamages)];
        Line line;
        for (int number = 0; number < count; ++number) {
            const QByteArray bytes = damaged(good.bytes, Damage(kind % kDamages), number, count);
            if (trial.run(good, bytes, line))
                continue;
            fits = false;
            const QString kept = QStringLiteral("failed-%1-%2").arg(kind).arg(number);
            put(kept, bytes);
            std::fprintf(stderr, "%s, %s: see %s\n", good.title, damage, qPrintable(kept));
        }
        std::printf("| %s | %s | %d | %d | %d | %lld |\n", good.title, damage, line.clips, line.opened,
                    line.moved, line.slowestMs);
    }
    return fits;
}

void printTable(const QList<GoodClip>& clips, const QList<Line>& lines) {
    std::printf(
        "| Clip | Damage | Clips | Opened | With picture | Slowest, ms |\n|---|---|---|---|---|---|\n");
    for (int i = 0; i < lines.size(); ++i) {
        const Line& line = lines[i];
        std::printf("| %s | %s | %d | %d | %d | %lld |\n", clips[i / kDamages].title,
                    kDamageNames[size_t(i % kDamages)], line.clips, line.opened, line.moved, line.slowestMs);
    }
}

bool isFlat(const Use& before, const Use& after, int clips) {
    std::printf(
        "\nThreads %d before and %d after, open files %d and %d, memory %lld and %lld MiB: counted when a "
        "tenth of the %d clips was done, and at the end.\n",
        before.threads, after.threads, before.files, after.files, before.kib / 1024, after.kib / 1024, clips);
    return after.threads <= before.threads && after.files <= before.files &&
           (!kMemoryCounts || after.kib - before.kib <= kMostGrowthKiB);
}

bool runDamages(const QList<GoodClip>& clips, int clipsWanted) {
    const int kinds = int(clips.size()) * kDamages;
    const int count = std::max(1, clipsWanted / kinds); // of each kind
    Trial trial;
    QList<Line> lines(kinds);
    Use before;
    bool fits = true;
    // In turns: otherwise a kind that leaks might hide in the warm-up.
    for (int number = 0; number < count; ++number) {
        for (int kind = 0; kind < kinds; ++kind) {
            const GoodClip& good = clips[kind / kDamages];
            const auto damage = Damage(kind % kDamages);
            const QByteArray bytes = damaged(good.bytes, damage, number, count);
            if (trial.run(good, bytes, bytes.size(), lines[kind]))
                continue;
            fits = false;
            std::fprintf(stderr, "too much: %s, %s, number %d of %d\n", good.title,
                         kDamageNames[size_t(damage)], number, count);
        }
        if (number == count / 10)
            before = useNow();
    }
    printTable(clips, lines);
    waitUntil([&] { return useNow().threads <= before.threads; }, kMostMs);
    return isFlat(before, useNow(), count * kinds) && fits;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const bool fields = argc > 1 && qstrcmp(argv[1], "fields") == 0;
    if (fields) // looking for a sound device takes most of the time
        qputenv("GST_PLUGIN_FEATURE_RANK",
                "pulsesink:0,pipewiresink:0,alsasink:0,jackaudiosink:0,openalsink:0,osssink:0,oss4sink:0");
    gstreamer::GstMediaPlatform media;
    host().media = &media;
    const QTemporaryDir folder;
    QDir().mkpath(QStringLiteral("case"));
    const QList<GoodClip> clips{makeGoodClip("MP4", 4, folder.path()),
                                makeIndexFirst("MP4 of two videos, index first"),
                                makeGoodClip("AVI with trailer", 5, folder.path())};
    bool fits = false;
    if (argc > 2 && qstrcmp(argv[1], "commands") == 0)
        fits = runCommands(clips, QString::fromLocal8Bit(argv[2]), argc > 3 ? atoi(argv[3]) : 3000);
    else
        fits =
            fields ? runFields(clips.mid(1), argc > 2) : runDamages(clips, argc > 1 ? atoi(argv[1]) : 3000);
    return QDir(QStringLiteral("case")).removeRecursively() && fits ? 0 : 1;
}
