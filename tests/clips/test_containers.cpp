// MP4 and AVI files are read and written back byte for byte, also damaged ones if they are accepted; and an
// AVI file with several lists, for which no other test clip is long enough.
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QtEndian>

#include "clips/containers/avi_writer.h"
#include "support/clip_damage.h"
#include "support/clip_samples.h"
#include "support/sensor_clips.h"
#include "support/test_clips.h"

namespace ql240 {
namespace {

using namespace containers;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Reads all samples and writes the file back; nothing if it isn't accepted.
std::optional<QByteArray> rewritten(const QByteArray& bytes) {
    QTemporaryDir folder;
    QFile file(folder.filePath("clip"));
    QFile to(folder.filePath("copy"));
    if (!file.open(QIODevice::ReadWrite) || file.write(bytes) != bytes.size() || !file.flush() ||
        !to.open(QIODevice::ReadWrite))
        return QByteArray("unwritten");
    eachSample(file, [](ByteRange) {});
    return writtenBack(file, to);
}

// Why its movie isn't accepted.
QString problemOf(QFile& file) {
    QString problem;
    ByteSource source(file, kWholeClip);
    Mp4File boxes;
    AviFile chunks;
    if (isRiff(file) ? readAviChunks(source, chunks, problem) : readMp4Boxes(source, boxes, problem))
        isRiff(file) ? void(readAviMovie(source, chunks, problem))
                     : void(readMp4Movie(source, boxes, problem));
    return problem;
}

// With a box of so many bytes added to the "trak" box at `at`, within "moov" at the end.
QByteArray withHeaders(QByteArray bytes, qsizetype at, const QByteArray& content) {
    const QByteArray box = madeclips::box("udta", content);
    for (const qsizetype start : {at, bytes.lastIndexOf("moov") - 4}) {
        const auto size = qFromBigEndian<quint32>(bytes.constData() + start);
        bytes.replace(start, 4, madeclips::bigEndian(size + quint32(box.size()), 4));
    }
    return bytes.insert(at + 8, box);
}

QMap<QByteArray, QByteArray> clips() {
    QMap<QByteArray, QByteArray> all;
    for (const madeclips::NamedClip& clip : madeclips::clipsOfAllFormats())
        all[clip.name] = clip.bytes;
    all["plain"] = bytesOf(makeTestClip({}));
    all["two videos, index last"] =
        bytesOf(makeTestClip({.videoStreams = 2, .bFrames = 2, .faststart = false}));
    all["avi"] = bytesOf(makeTestClip(aviTestClip()));
    all["bytes after"] = all["plain"] + "ab";
    all["text after"] = all["avi"] + "ETKLP1\nline\n";
    return all;
}

} // namespace

class TestContainers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void identical() {
        const QMap<QByteArray, QByteArray> all = clips();
        for (auto it = all.begin(); it != all.end(); ++it)
            QVERIFY2(rewritten(*it) == *it, it.key());
    }

    // Also files muxed differently by other programs.
    void identicalOfOthers_data() {
        QTest::addColumn<QStringList>("program");
        const QString clip = makeTestClip({});
        const auto ffmpeg = [&](const char* arguments) {
            return QStringList{"ffmpeg", "-v", "error", "-i", clip, "-c", "copy"} +
                   QString(arguments).split(u' ');
        };
        QTest::newRow("fragments") << ffmpeg("-movflags frag_keyframe+empty_moov -f mp4");
        QTest::newRow("QuickTime, PCM") << ffmpeg("-c:a pcm_s16le -f mov");
        QTest::newRow("H.264 in AVI") << ffmpeg("-bsf:v h264_mp4toannexb -f avi");
        QTest::newRow("another muxer") << QStringList{
            "gst-launch-1.0", "-q", "filesrc", "location=" + clip, "!", "qtdemux", "!", "h264parse", "!",
            "qtmux",          "!",  "filesink"};
        QTest::newRow("another muxer, avi") << QStringList{
            "gst-launch-1.0", "-q", "filesrc", "location=" + clip, "!", "qtdemux", "!", "h264parse", "!",
            "avimux",         "!",  "filesink"};
    }
    void identicalOfOthers() {
        QFETCH(QStringList, program);
        QTemporaryDir folder;
        const QString made = folder.filePath("made");
        const bool isFfmpeg = program.first() == QLatin1String("ffmpeg");
        if (QStandardPaths::findExecutable(program.first()).isEmpty())
            QSKIP("the program isn't installed");
        program << (isFfmpeg ? made : "location=" + made);
        QCOMPARE(QProcess::execute(program.first(), program.mid(1)), 0);
        const QByteArray bytes = bytesOf(made);
        QVERIFY(bytes.size() > 10000);
        QVERIFY(rewritten(bytes) == bytes);
    }

    void damagedOnes() {
        constexpr int kCount = 40;
        int accepted = 0;
        const QMap<QByteArray, QByteArray> all = clips();
        for (const char* name : {"motion", "gps0-avi", "plain", "avi"}) {
            for (std::size_t kind = 0; kind < kDamageNames.size(); ++kind) {
                for (int i = 0; i < kCount; ++i) {
                    const QByteArray clip = damaged(all[name], static_cast<Damage>(kind), i, kCount);
                    const std::optional<QByteArray> copy = rewritten(clip);
                    accepted += copy ? 1 : 0;
                    QVERIFY2(!copy || *copy == clip, name);
                }
            }
        }
        QVERIFY(accepted > 0);
    }

    // Samples and headers of all tracks together; an index that each stream's chunks are looked for in.
    void tooMuch() {
        const QByteArray mp4 = bytesOf(makeTestClip({.faststart = false}));
        const QByteArray avi = bytesOf(makeTestClip(aviTestClip()));
        const auto replaced = [](QByteArray bytes, const char* name, int at, const QByteArray& by) {
            for (qsizetype i = bytes.indexOf(name); i >= 0; i = bytes.indexOf(name, i + 4))
                bytes.replace(i + at, by.size(), by);
            return bytes;
        };
        const QByteArray half = madeclips::bigEndian(limits::kClipSamples / 2 + 1, 4);
        QByteArray heavy = mp4;
        for (qsizetype at = mp4.lastIndexOf("tkhd"); at >= 0; at = mp4.lastIndexOf("tkhd", at - 1))
            heavy = withHeaders(heavy, at - 12, QByteArray(limits::kHeaderBytes * 2 / 3, '\0'));
        const struct {
            QByteArray bytes;
            qint64 size;
            const char* reason;
        } rows[] = {{mp4, mp4.size(), ""},
                    {avi, avi.size(), ""},
                    {replaced(replaced(mp4, "stsz", 8, madeclips::bigEndian(1, 4) + half), "stts", 12, half),
                     mp4.size(), "more samples"},
                    {heavy, heavy.size(), "more headers"},
                    {replaced(replaced(avi, "idx1", 4, QByteArray("\0\0\0\x20", 4)), "RIFF", 4,
                              QByteArray("\0\0\0\x21", 4)),
                     INT64_C(0x22000000), "more chunks"}};
        for (const auto& row : rows) {
            QTemporaryFile file;
            QVERIFY(file.open() && file.write(row.bytes) == row.bytes.size() && file.resize(row.size));
            const QString problem = problemOf(file);
            QVERIFY2(row.reason[0] == '\0' ? problem.isEmpty() : problem.contains(row.reason),
                     qPrintable(problem));
        }
    }

    // Rewritten in lists of 200 KB, it has the same packets, by its index and to another program.
    void longAvi() {
        const QString clip = makeTestClip(aviTestClip());
        QTemporaryDir folder;
        QFile file(clip);
        QFile to(folder.filePath("long.avi"));
        QVERIFY(file.open(QIODevice::ReadOnly) && to.open(QIODevice::ReadWrite));
        const auto movieOf = [](QFile& from, QString problem = {}) {
            ByteSource source(from, kWholeClip);
            AviFile chunks;
            return readAviChunks(source, chunks, problem) ? readAviMovie(source, chunks, problem)
                                                          : std::nullopt;
        };
        const auto movie = movieOf(file);
        QVERIFY(movie);
        Copier copier(file, to);
        AviWriter writer(*movie, file.size(), copier, 200'000);
        writer.begin();
        ByteSource source(file, kWholeClip);
        AviMediaCursor cursor(source, movie->media.front());
        while (const auto piece = cursor.next())
            writer.add(*piece->stream(), piece->body, true);
        writer.finish();
        QVERIFY(copier.finish());
        const auto packets = [](const QString& path) {
            QProcess ffmpeg;
            ffmpeg.start("ffmpeg",
                         {"-v", "error", "-i", path, "-map", "0", "-c", "copy", "-f", "framemd5", "-"});
            return ffmpeg.waitForFinished(60000) ? ffmpeg.readAllStandardOutput() : QByteArray();
        };
        QVERIFY(!packets(clip).isEmpty());
        QCOMPARE(packets(to.fileName()), packets(clip));
        const auto again = movieOf(to);
        QVERIFY(again && again->media.size() > 2);
        ByteSource written(to, kWholeClip);
        AviIndexCursor index(written, *again, 0);
        std::uint32_t count = 0;
        while (index.next())
            ++count;
        QCOMPARE(index.problem(), QString());
        QCOMPARE(count, movie->streams[0].length);
        QVERIFY(rewritten(bytesOf(to.fileName())) == bytesOf(to.fileName()));
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestContainers)
#include "test_containers.moc"
