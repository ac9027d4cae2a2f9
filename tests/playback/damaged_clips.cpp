// Opens damaged clips one after the other in one process, plays each for a moment, seeks, steps, grabs and
// closes it: damaged_clips [COUNT]. Prints a table of what became of them; fails if a clip takes too long or
// if threads, open files or memory pile up. A clip that ends or stops the process is left in the folder
// "case" of the working folder.
// damaged_clips fields [all]: opens clips with an extreme number in each field that says a size, a count or a
// dimension, whichever fields those are, and fails if one takes too long or too much memory; "all" tries
// every number in every field, without it each length and some other fields of each part get one in turn.
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <csignal>
#include <cstdio>
#include <functional>

#include "clips/clip.h"
#include "clips/formats/sensor_file_library.h"
#include "demo_card/clip_maker.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "sensors/sensor_track.h"
#include "support/clip_damage.h"
#include "support/peak_memory.h"

using namespace ql240;
using namespace ql240::demo;

namespace {

constexpr int kMostMs = 5000;    // for one clip
constexpr int kHangSeconds = 60; // until the process is taken for stuck
constexpr int kMomentMs = 100;
constexpr qint64 kMostGrowthKiB = 48 * 1024;
constexpr qint64 kMostMiB = 256;           // for one clip
constexpr qint64 kGiant = qint64(3) << 30; // as far as a length may reach

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryCounts = false; // freed memory is kept back
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
    int moved = 0; // whose picture came after seeking
    int withTrack = 0;
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

    void openOnly(const QString& path) {
        const Clip clip{QFileInfo(path)};
        if (m_view.openClip(&clip)) {
            readTrack(path);
            m_view.player()->pause();
            waitUntil([&] { return !m_view.player()->frame(0, true).isNull(); }, kMomentMs / 4);
        }
        m_view.closeClip();
        QCoreApplication::processEvents();
    }

    void run(const QString& path, Line& line) {
        const Clip clip{QFileInfo(path)};
        ++line.clips;
        if (m_view.openClip(&clip)) {
            ++line.opened;
            line.withTrack += readTrack(path) ? 1 : 0;
            line.moved += play() ? 1 : 0;
        }
        m_view.closeClip();
        QCoreApplication::processEvents();
    }

private:
    bool readTrack(const QString& path) {
        SensorTrack track;
        const qint64 duration = m_view.player()->durationMs();
        if (!appendTrailer(track, path, duration))
            appendLibrarySamples(track, m_library, path);
        for (qint64 t = 0; t < 4000; t += 100)
            sampleForTime(track, qint32(t));
        return !track.empty();
    }

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

    SensorFileLibrary m_library;
    VideoView m_view;
    VideoView m_second;
};

char stuck[200]; // said when a clip stops the process

void onAlarm(int) {
    if (::write(STDERR_FILENO, stuck, qstrlen(stuck)) >= 0)
        ::_exit(3);
    ::_exit(4);
}

QString writeClip(const GoodClip& good, const QByteArray& bytes, qint64 size) {
    // The clip's own name, which decides on recipe and sensor source.
    const QString path = QDir(QStringLiteral("case")).filePath(QFileInfo(good.path).fileName());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.resize(size))
        qFatal("can't write %s", qPrintable(path));
    return path;
}

QString writeCase(const GoodClip& good, Damage damage, int number, int count) {
    const QByteArray bytes = damaged(good.bytes, damage, number, count);
    const QString path = writeClip(good, bytes, bytes.size());
    std::snprintf(stuck, sizeof stuck, "stuck: %s, %s, number %d of %d\n", good.title, damageName(damage),
                  number, count);
    return path;
}

// True if the clip was done with in time.
bool runCase(Trial& trial, const QString& path, Line& line) {
    QElapsedTimer clock;
    clock.start();
    ::alarm(kHangSeconds);
    trial.run(path, line);
    ::alarm(0);
    line.slowestMs = std::max(line.slowestMs, clock.elapsed());
    return clock.elapsed() <= kMostMs;
}

// False if the clip took too long or too much memory. Behind a length the file goes on in a hole.
bool runField(Trial& trial, const GoodClip& good, const ClipField& field, quint32 value) {
    const QString path =
        writeClip(good, withField(good.bytes, field, value), field.isLength ? kGiant : good.bytes.size());
    std::snprintf(stuck, sizeof stuck, "stuck: %s, %s, %#x at %lld\n", good.title, field.part.constData(),
                  value, qint64(field.at));
    QElapsedTimer clock;
    clock.start();
    const PeakMemory memory;
    ::alarm(kHangSeconds);
    trial.openOnly(path);
    ::alarm(0);
    const bool fits = clock.elapsed() <= 2 * kMostMs && memory.grownMiB() <= kMostMiB;
    if (!fits)
        std::fprintf(stderr, "%lld ms, %lld MiB; %s", clock.elapsed(), memory.grownMiB(), stuck);
    return fits;
}

bool runFields(const QList<GoodClip>& clips, bool all) {
    constexpr size_t kSome = 8;
    Trial trial;
    int failed = 0;
    int tried = 0;
    for (const GoodClip& good : clips) {
        const QList<ClipField> fields = fieldsOf(good.bytes);
        for (size_t k = 0; k < size_t(fields.size()) * kExtremes.size(); ++k) {
            const size_t i = k / kExtremes.size();
            const ClipField& field = fields[qsizetype(i)];
            if (!all && ((!field.isLength && i % kSome != 0) || k % kExtremes.size() != i % kExtremes.size()))
                continue;
            ++tried;
            failed += runField(trial, good, field, kExtremes[k % kExtremes.size()]) ? 0 : 1;
        }
    }
    std::printf("%d clips with an extreme field, %d of them took too much.\n", tried, failed);
    return failed == 0;
}

void printTable(const QList<GoodClip>& clips, const QList<Line>& lines) {
    std::printf(
        "| Clip | Damage | Clips | Opened | With picture | With sensor data | Slowest, ms |\n"
        "|---|---|---|---|---|---|---|\n");
    for (int i = 0; i < lines.size(); ++i) {
        const Line& line = lines[i];
        std::printf("| %s | %s | %d | %d | %d | %d | %lld |\n", clips[i / int(kDamages.size())].title,
                    damageName(kDamages[size_t(i) % kDamages.size()]), line.clips, line.opened, line.moved,
                    line.withTrack, line.slowestMs);
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

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const bool fields = argc > 1 && qstrcmp(argv[1], "fields") == 0;
    if (fields) // looking for a sound device takes longer than everything else
        qputenv("GST_PLUGIN_FEATURE_RANK",
                "pulsesink:0,pipewiresink:0,alsasink:0,jackaudiosink:0,openalsink:0,osssink:0,oss4sink:0");
    gstreamer::GstMediaPlatform media;
    host().media = &media;
    std::signal(SIGALRM, onAlarm);
    const QTemporaryDir folder;
    QDir().mkpath(QStringLiteral("case"));
    QList<GoodClip> clips{makeGoodClip("MP4", 4, folder.path()),
                          makeGoodClip("MP4 of two videos, index first", 0, folder.path()),
                          makeGoodClip("AVI with trailer", 5, folder.path())};
    clips[1].bytes = withIndexFirst(clips[1].bytes);
    if (fields) {
        const bool fit = runFields(clips.mid(1), argc > 2);
        return QDir(QStringLiteral("case")).removeRecursively() && fit ? 0 : 1;
    }
    const int kinds = int(clips.size() * kDamages.size());
    const int count = std::max(1, (argc > 1 ? atoi(argv[1]) : 3000) / kinds); // of each kind

    Trial trial;
    QList<Line> lines(kinds);
    Use before;
    bool inTime = true;
    // Kind by kind would let one that leaks hide in the warm-up.
    for (int number = 0; number < count; ++number) {
        for (int kind = 0; kind < kinds; ++kind) {
            const GoodClip& good = clips[kind / int(kDamages.size())];
            const QString path = writeCase(good, kDamages[size_t(kind) % kDamages.size()], number, count);
            if (runCase(trial, path, lines[kind]))
                continue;
            inTime = false;
            std::fprintf(stderr, "too slow; %s", stuck);
        }
        if (number == count / 10)
            before = useNow();
    }
    QDir(QStringLiteral("case")).removeRecursively();
    printTable(clips, lines);
    waitUntil([&] { return useNow().threads <= before.threads; }, kMostMs);
    return isFlat(before, useNow(), count * kinds) && inTime ? 0 : 1;
}
