// Pieces of clips: every packet is the clip's, the displayed frames are the requested ones, and so are the
// sensor data. Runs on seeded ranges of each kind of clip; QL240_CUT_PAIRS sets their number.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "clips/cut/clip_cutter.h"
#include "clips/record_reader.h"
#include "support/peak_memory.h"
#include "support/sensor_clips.h"
#include "support/test_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;
using Container = TestClipSpec::Container;
using Codec = TestClipSpec::Codec;
using Status = CutResult::Status;

constexpr QSize kSize{320, 180};
constexpr std::int64_t kUs = 1'000'000;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Answer {
    QByteArray output;
    QByteArray errors;
};
Answer ask(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        qWarning("%s: %s", qPrintable(program), process.readAllStandardError().constData());
    return {process.readAllStandardOutput(), process.readAllStandardError()};
}

// Size and hash of each packet or frame, by stream.
using Hashes = QMap<int, QList<QByteArray>>;
Hashes hashesIn(const QByteArray& framemd5) {
    Hashes hashes;
    for (const QByteArray& line : framemd5.split('\n')) {
        const QList<QByteArray> fields = line.split(',');
        if (fields.size() >= 6 && !line.startsWith('#'))
            hashes[fields[0].toInt()] += fields[4].trimmed() + ' ' + fields[5].trimmed();
    }
    return hashes;
}

QStringList words(const char* text) {
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

// All packets, also those hidden by an edit list.
Hashes packetsOf(const QString& path) {
    const QStringList hidden =
        path.endsWith(QStringLiteral(".mp4")) ? words("-ignore_editlist 1") : QStringList();
    const QStringList rest = words("-map 0 -c copy -copy_unknown -f framemd5 -");
    return hashesIn(ask("ffmpeg", words("-v error") + hidden + QStringList{"-i", path} + rest).output);
}

struct Shown {
    Hashes frames;
    double seconds = 0;
};
Shown shownBy(const QString& path) {
    const Answer answer = ask("ffmpeg", words("-hide_banner -nostdin -i") + QStringList{path} +
                                            words("-map 0:v -fps_mode passthrough -f framemd5 -"));
    static const QRegularExpression duration(QStringLiteral("Duration: 00:00:([0-9.]+)"));
    return {hashesIn(answer.output), duration.match(QString::fromUtf8(answer.errors)).captured(1).toDouble()};
}

// The index of the part in the whole, or -1. The first stream's hashes are unique, but those of silent PCM
// aren't.
qsizetype placeIn(const QList<QByteArray>& whole, const QList<QByteArray>& part) {
    const auto found = std::search(whole.begin(), whole.end(), part.begin(), part.end());
    return part.isEmpty() || found == whole.end() ? -1 : found - whole.begin();
}

ClipRecord recordOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? readClipContents(file, QFileInfo(path).fileName()).record
                                          : ClipRecord();
}

bool isSame(const RecordedFix& a, const RecordedFix& b) {
    return a.latitude == b.latitude && a.clockMs == b.clockMs;
}
bool isSame(const RecordedAcceleration& a, const RecordedAcceleration& b) {
    return a.x == b.x && a.y == b.y;
}

// Whether the piece has exactly the clip's records in the range, at the piece's times.
template <typename Records>
QString difference(const Records& whole, const Records& part, CutRange range, std::int64_t toleranceUs) {
    const auto found = std::search(whole.begin(), whole.end(), part.begin(), part.end(),
                                   [](const auto& a, const auto& b) { return isSame(a, b); });
    const auto count = static_cast<std::int64_t>(part.size());
    if (found == whole.end() && count > 0)
        return QStringLiteral("no slice");
    const auto expected = std::count_if(whole.begin(), whole.end(), [&](const auto& each) {
        return each.timeUs >= range.fromUs && each.timeUs < range.toUs;
    });
    if (std::abs(expected - count) > (toleranceUs > 1000 ? 1 : 0))
        return QStringLiteral("%1 instead of %2").arg(count).arg(expected);
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t late = part[i].timeUs + range.fromUs - (found + i)->timeUs;
        if (std::abs(late) > toleranceUs)
            return QStringLiteral("record %1 is %2 µs late").arg(i).arg(late);
    }
    return {};
}

// A drive in which each record is unique.
constexpr int kSeconds = 4;
QList<int> clockAt(int second) {
    return {21, 30, second, 2013, 4, 5};
}

Track motionTrack() {
    Track track;
    track.timescale = 90000;
    track.durations = {1800};
    track.samplesPerChunk = 10;
    for (int i = 0; i < 50 * kSeconds; ++i) {
        QByteArray sample = motionAcceleration(static_cast<float>(i), 1, 9);
        if (i % 10 == 5)
            sample += motionFix(3, 37 + i * 1e-4, 127, 10, 0, 1365165000 + i * 0.02);
        track.samples.append(sample);
    }
    return track;
}

QByteArray rmcAt(int i) {
    return sentence("GPRMC,2130" + QByteArray::number(i).rightJustified(2, '0') + ".00,A,37" +
                    QByteArray::number(10 + i) + ".5,N,12707.5,E,27.0,359.5,050413,,");
}

Track textTrack() {
    Track track;
    track.handler = track.format = "text";
    track.durations = {400};
    for (int i = 0; i * 400 < 1000 * kSeconds; ++i)
        track.samples.append(textSample(rmcAt(i) + "gsensori,4,512," + QByteArray::number(i) + ",-3,512"));
    return track;
}

QList<QByteArray> gpsBlocks() {
    QList<QByteArray> blocks;
    blocks += QByteArray(); // the receiver has not started yet
    for (int i = 1; i < kSeconds; ++i)
        blocks += gpsBlock(clockAt(i), "ANE", 3710.5F + static_cast<float>(i), 12707.5F, 20);
    return blocks;
}

QByteArray freeLog() {
    QByteArray lines;
    QByteArray accelerations;
    for (int i = 0; i < 5 * kSeconds; ++i) {
        lines += '[' + QByteArray::number(1365165000000LL + i * 200) + ']' + rmcAt(i);
        accelerations += bigEndian(quint64(i) * 200, 4) + bigEndian(quint64(i), 2) + bigEndian(1, 4);
    }
    return box("free", box("gps ", lines) + box("sttm", bigEndian(1365165000000, 8)) +
                           box("3gf ", accelerations + QByteArray(4, '\xFF')));
}

struct PlainTables {
    QByteArray positions;
    QByteArray accelerations;
};
PlainTables plainTables() {
    PlainTables tables;
    for (int i = 0; i < kSeconds; ++i)
        tables.positions += gps0Record(3710.5 + i, 12707.5, 40, {13, 4, 5, 21, 30, i, 3});
    for (int i = 0; i < 5 * kSeconds; ++i)
        tables.accelerations += QByteArray(1, static_cast<char>(i)) + QByteArray("\x01\x10", 2);
    return tables;
}

QByteArray trailerLines() {
    QByteArray text = "ETKLP1\n";
    for (int i = 0; i < 10 * kSeconds; ++i)
        text += "20130405$2130" + QByteArray::number(i / 10).rightJustified(2, '0') + ',' +
                QByteArray::number(37.1 + i * 0.001) + ",127.1,40," + QByteArray::number(i) + ",2,128\n";
    return text;
}

struct Kind {
    QByteArray name;
    TestClipSpec spec;
    QByteArray (*sensors)(QByteArray clip) = nullptr; // adds them
    std::int64_t toleranceUs = 1000;                  // for their times
    QString fileName = QStringLiteral("REC_2013_04_05_21_30_00");
};

TestClipSpec avi(Codec codec, int rate = 15) {
    TestClipSpec spec = aviTestClip();
    spec.codec = codec;
    spec.rate = rate;
    spec.frames = rate * kSeconds;
    return spec;
}

// Adds a chunk to an AVI file's list.
QByteArray withChunks(QByteArray clip, const QByteArray& chunks) {
    clip += chunks;
    return clip.replace(4, 4, littleEndian(clip.size() - 8, 4));
}

QList<Kind> kinds() {
    using Clip = QByteArray;
    const TestClipSpec last{.faststart = false};
    const TestClipSpec two{.videoStreams = 2, .secondSize = {240, 136}};
    QList<Kind> all{
        {"plain", {}},
        {"two videos, B-frames", {.videoStreams = 2, .secondSize = {240, 136}, .bFrames = 2}},
        {"B-frames, no edit list", {.bFrames = 2, .editLists = false}},
        {"variable rate", {.variableRate = true, .sound = false}},
        {"starts late", {.firstTimeMs = 400}},
        {"H.265, B-frames", {.codec = Codec::H265, .bFrames = 3}},
        {"motion track", two, [](Clip c) { return withSensorData(c, {motionTrack()}); }},
        {"motion track, late", last,
         [](Clip c) {
             Track track = motionTrack();
             track.emptyEdit = 250;
             return withSensorData(c, {track});
         }},
        {"text track", last, [](Clip c) { return withSensorData(c, {textTrack()}); }},
        {"GPS blocks", last, [](Clip c) { return withSensorData(c, {}, gpsBlocks()); }, kUs / 2},
        {"free log", last, [](Clip c) { return c + freeLog(); }},
        {"tables", last,
         [](Clip c) {
             const PlainTables tables = plainTables();
             return c + box("gps0", tables.positions) + box("gsen", tables.accelerations);
         },
         kUs / 2},
        {"avi", avi(Codec::MotionJpeg)},
        {"avi, H.264, MP3", avi(Codec::H264, 30)},
        {"avi, tables", avi(Codec::MotionJpeg),
         [](Clip c) {
             const PlainTables tables = plainTables();
             return withChunks(c,
                               riffChunk("gps0", tables.positions) + riffChunk("gsen", tables.accelerations));
         },
         kUs / 2},
        {"avi, text after", avi(Codec::MotionJpeg), [](Clip c) { return c + trailerLines(); }, kUs / 5},
        {"avi, late text after", avi(Codec::MotionJpeg), [](Clip c) { return c + trailerLines(); }, kUs / 5,
         QStringLiteral("EVT_2013_04_05_21_30_00")},
    };
    for (Kind& kind : all) {
        kind.spec.size = kSize;
        kind.spec.frames = kSeconds * kind.spec.rate;
        kind.spec.faststart = kind.spec.faststart && kind.sensors == nullptr;
        if (kind.name.endsWith("MP3"))
            kind.spec.soundCodec = QStringLiteral("libmp3lame");
    }
    return all;
}

// All entries of the index lead to the first half of the file.
QByteArray manyFold(QByteArray avi) {
    for (qsizetype at = avi.lastIndexOf("idx1") + 16; at < avi.size(); at += 16)
        avi.replace(at, 8, littleEndian(4, 4) + littleEndian(quint64(avi.size()) / 2, 4));
    return avi;
}

// The requested range, in frame numbers.
struct Slice {
    qsizetype first;
    qsizetype last;
};
Slice sliceOf(const QList<std::chrono::nanoseconds>& times, CutRange range) {
    const auto shownAt = [&](std::int64_t us) {
        qsizetype i = 0;
        while (i + 1 < times.size() && times[i + 1].count() <= us * 1000)
            ++i;
        return i;
    };
    return {shownAt(range.fromUs), shownAt(range.toUs)};
}

} // namespace

class TestClipCut : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString put(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }
    static CutResult cut(const QString& clip, const QString& output, CutRange range, bool sound = true) {
        return cutClip({clip, range, sound, output, true});
    }

    struct Original {
        Kind kind;
        QString path;
        Hashes packets;
        Shown shown;
        ClipRecord record;
        QList<std::chrono::nanoseconds> times;
        bool isAvi = false;
    };

    Original original(const Kind& kind) const {
        QByteArray bytes = bytesOf(makeTestClip(kind.spec));
        Original made;
        made.kind = kind;
        made.isAvi = kind.spec.container == Container::Avi;
        made.path = put(kind.fileName + QLatin1String(made.isAvi ? ".avi" : ".mp4"),
                        kind.sensors ? kind.sensors(bytes) : bytes);
        made.record = recordOf(made.path);
        made.times = testClipFrameTimes(kind.spec);
        // ffmpeg's muxer writes the encoder's delay as two empty chunks after the first frame.
        for (qsizetype i = 1; made.isAvi && kind.spec.codec == Codec::H264 && i < made.times.size(); ++i)
            made.times[i] += std::chrono::nanoseconds(std::chrono::seconds(2)) / kind.spec.rate;
        return made;
    }

    void compare(const Original& clip, const CutResult& result, Slice asked) {
        const Hashes packets = packetsOf(result.output);
        // A track without a record in the range is omitted.
        const auto streams = clip.kind.spec.videoStreams + (clip.kind.spec.sound ? 1 : 0);
        QVERIFY(packets.size() == clip.packets.size() || packets.size() == streams);
        for (auto it = packets.begin(); it != packets.end(); ++it)
            QVERIFY2(placeIn(clip.packets[it.key()], *it) >= 0, QByteArray::number(it.key()));
        const Shown shown = shownBy(result.output);
        const QList<QByteArray>& frames = clip.shown.frames[0];
        const bool fromKey = clip.isAvi && clip.kind.spec.codec != Codec::MotionJpeg;
        const qsizetype first = fromKey ? asked.first / 30 * 30 : asked.first;
        QCOMPARE(shown.frames[0], frames.sliced(first, asked.last + 1 - first));
        const double seconds = static_cast<double>(result.range.toUs - result.range.fromUs) / kUs;
        QVERIFY2(std::abs(shown.seconds - seconds) < 1.5 / clip.kind.spec.rate,
                 QByteArray::number(shown.seconds));
        const ClipRecord record = recordOf(result.output);
        const std::int64_t tolerance = clip.kind.toleranceUs;
        QCOMPARE(difference(clip.record.fixes, record.fixes, result.range, tolerance), QString());
        QCOMPARE(difference(clip.record.accelerations, record.accelerations, result.range, tolerance),
                 QString());
    }

private Q_SLOTS:
    void pieces_data() {
        QTest::addColumn<int>("number");
        int number = 0;
        for (const Kind& kind : kinds())
            QTest::newRow(kind.name.constData()) << number++;
    }
    void pieces() {
        QFETCH(int, number);
        Original clip = original(kinds().at(number));
        clip.packets = packetsOf(clip.path);
        clip.shown = shownBy(clip.path);
        QVERIFY(!clip.shown.frames[0].isEmpty());
        QCOMPARE(!clip.record.fixes.empty(), clip.kind.sensors != nullptr);
        const QString piece = path(clip.isAvi ? QStringLiteral("piece.avi") : QStringLiteral("piece.mp4"));
        QRandomGenerator random(static_cast<quint32>(number + 1));
        const int pairs = std::max(1, qEnvironmentVariable("QL240_CUT_PAIRS", QStringLiteral("2")).toInt());
        for (int i = 0; i < pairs; ++i) {
            // A late trailer repeats its first line for the missing start.
            const bool isLate = clip.kind.fileName.startsWith("EVT_");
            const int startMs = isLate ? 1500 : static_cast<int>(clip.times.first().count() / 1000000);
            const int fromMs = startMs + random.bounded(kSeconds * (isLate ? 500 : 900));
            const CutRange range{fromMs * 1000LL, (fromMs + random.bounded(kSeconds * 900)) * 1000LL};
            const CutResult result = cut(clip.path, piece, range);
            QVERIFY2(result.status == Status::Done, qPrintable(result.reason));
            compare(clip, result, sliceOf(clip.times, range));
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(QStringLiteral("%1 to %2 µs").arg(range.fromUs).arg(range.toUs)));
        }
        QCOMPARE(bytesOf(clip.path).size(), QFileInfo(clip.path).size());
    }

    // Another program reads the same sensor data.
    void exifTool_data() {
        QTest::addColumn<int>("number");
        int number = -1;
        for (const Kind& kind : kinds()) {
            ++number;
            if (kind.sensors != nullptr && !kind.name.contains("text after"))
                QTest::newRow(kind.name.constData()) << number;
        }
    }
    void exifTool() {
        QFETCH(int, number);
        if (QStandardPaths::findExecutable("exiftool").isEmpty())
            QSKIP("exiftool isn't installed (libimage-exiftool-perl): its reading was not compared");
        const Kind kind = kinds().at(number);
        const Original clip = original(kind);
        const QString piece = path(clip.isAvi ? QStringLiteral("exif.avi") : QStringLiteral("exif.mp4"));
        const CutResult result = cut(clip.path, piece, {kUs, 3 * kUs});
        QCOMPARE(result.status, Status::Done);
        const auto latitudes = [](const QString& file) {
            return ask("exiftool", words("-ee3 -n -p $GPSLatitude -q -q") << file)
                .output.trimmed()
                .split('\n');
        };
        const QList<QByteArray> found = latitudes(piece);
        QVERIFY(found.size() >= 2 && placeIn(latitudes(clip.path), found) >= 0);
        QCOMPARE(found.size(), qsizetype(recordOf(piece).fixes.size()));
    }

    // As the viewer shows them: copies of the first line replace the missing start.
    void lateText() {
        const Original clip = original(kinds().back());
        const QString piece = path(QStringLiteral("late.avi"));
        QCOMPARE(cut(clip.path, piece, {0, kUs}).status, Status::Done);
        const ClipRecord record = recordOf(piece);
        QVERIFY(record.fixes.size() >= 9);
        for (const RecordedFix& fix : record.fixes)
            QVERIFY(isSame(fix, clip.record.fixes.front()));
    }

    // The piece begins between two blocks that are three seconds apart.
    void gapBetweenBlocks() {
        QList<QByteArray> blocks = gpsBlocks();
        blocks.remove(1, 2);
        blocks[0] = gpsBlock(clockAt(0), "ANE", 3710.5F, 12707.5F, 20);
        const QByteArray bytes = bytesOf(makeTestClip({.frames = 120, .faststart = false}));
        const QString clip = put(QStringLiteral("gap.mp4"), withSensorData(bytes, {}, blocks));
        const QString piece = path(QStringLiteral("after_gap.mp4"));
        QCOMPARE(cut(clip, piece, {kUs, 4 * kUs}).status, Status::Done);
        const ClipRecord record = recordOf(piece);
        QCOMPARE(record.fixes.size(), std::size_t(1));
        QCOMPARE(record.fixes.front().timeUs, 2 * kUs);
    }

    // Sound and sensor data before the first frame belong to the piece.
    void beforeTheVideo() {
        const QString clip = makeTestClip({.size = kSize, .firstTimeMs = 400});
        const QString piece = path(QStringLiteral("before.mp4"));
        const CutResult result = cut(clip, piece, {kUs / 10, 990'000});
        QCOMPARE(result.range.fromUs, kUs / 10);
        QCOMPARE(shownBy(piece).frames[0], shownBy(clip).frames[0].first(18));
    }

    // The camera fails, the microphone doesn't.
    void afterTheVideo() {
        QByteArray bytes = bytesOf(makeTestClip({}));
        bytes.replace(bytes.lastIndexOf("mdhd") + 20, 4, bigEndian(1'000'000, 4));
        const QString clip = put(QStringLiteral("short.mp4"), bytes);
        const QString piece = path(QStringLiteral("end.mp4"));
        QCOMPARE(cut(clip, piece, {0, 9 * kUs}).remarks.size(), 1);
        QCOMPARE(cut(clip, piece, {0, kUs}).remarks.size(), 0);
    }

    // An index without a size extends to the end of the file, but not of the piece.
    void indexWithoutSize() {
        const QByteArray bytes = bytesOf(makeTestClip({.faststart = false}));
        const qsizetype index = bytes.lastIndexOf("moov") - 4;
        const QString clip =
            put(QStringLiteral("no_size.mp4"), bytes.first(index) + box("gps0", plainTables().positions) +
                                                   QByteArray(4, '\0') + bytes.sliced(index + 4));
        const QString piece = path(QStringLiteral("size.mp4"));
        QCOMPARE(cut(clip, piece, {0, kUs}).status, Status::Done);
        QVERIFY(!recordOf(piece).fixes.empty());
    }

    // An index that begins with a list and marks no key frame, and sound that begins late.
    void unusualAvi() {
        QByteArray bytes = bytesOf(makeTestClip(aviTestClip()));
        const qsizetype index = bytes.lastIndexOf("idx1");
        for (qsizetype at = index + 8; at < bytes.size(); at += 16)
            bytes[at + 4] = '\0';
        bytes.insert(index + 8, "rec " + QByteArray(12, '\0'));
        bytes.replace(index + 4, 4, littleEndian(bytes.size() - index - 8, 4));
        bytes.replace(4, 4, littleEndian(bytes.size() - 8, 4));
        const qsizetype sound = bytes.indexOf("auds");
        bytes.replace(sound + 28, 4, bytes.sliced(sound + 24, 4)); // a second
        const QString clip = put(QStringLiteral("unusual.avi"), bytes);
        const QString piece = path(QStringLiteral("usual.avi"));
        QCOMPARE(cut(clip, piece, {kUs / 2, 2 * kUs}).status, Status::Done);
        const Hashes packets = packetsOf(piece);
        QCOMPARE(placeIn(packetsOf(clip)[0], packets[0]), 7);
        QCOMPARE(packets[0].size(), 24);
        const QByteArray start = ask("ffprobe", words("-v error -select_streams a -of csv=p=0 -show_entries "
                                                      "packet=pts_time")
                                                    << piece)
                                     .output.split('\n')[0]
                                     .trimmed();
        QVERIFY2(std::abs(start.toDouble() - 8 / 15.0) < 0.03, start);
    }

    void withoutSound() {
        for (const TestClipSpec& spec : {TestClipSpec{}, aviTestClip()}) {
            const QString clip = makeTestClip(spec);
            const QString piece = path(QStringLiteral("mute.") + QFileInfo(clip).suffix());
            QCOMPARE(cut(clip, piece, {500'000, kUs}, false).status, Status::Done);
            QCOMPARE(packetsOf(piece).keys(), QList<int>{0});
        }
    }

    // Half a gigabyte with an index of 3 MB takes little memory, and little is read twice.
    void largeClip() {
        Track track = motionTrack();
        track.samples = QList<QByteArray>(400'000, motionTurn());
        track.samples[0] = QByteArray(5 << 20, 'p'); // more than a run of sound
        track.durations = {90};
        const Mp4 large = mp4Around(qint64(500) << 20, {track});
        QFile file(path(QStringLiteral("large.mp4")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(large.before) > 0 &&
                file.seek(large.before.size() + large.picture) && file.write(large.after) > 0 &&
                file.flush());
        const PeakMemory memory;
        const CutResult result = cut(file.fileName(), path(QStringLiteral("part.mp4")), {kUs, 399 * kUs});
        QVERIFY2(result.status == Status::Done, qPrintable(result.reason));
        QVERIFY2(memory.grownMiB() < 24, QByteArray::number(memory.grownMiB()));
    }

    // A piece can be cut again.
    void pieceOfPiece() {
        const QString clip = makeTestClip({.size = kSize, .frames = 120, .bFrames = 2});
        const QString once = path(QStringLiteral("once.mp4"));
        const QString twice = path(QStringLiteral("twice.mp4"));
        QCOMPARE(cut(clip, once, {1'250'000, 3 * kUs}).status, Status::Done);
        QCOMPARE(cut(once, twice, {500'000, kUs}).status, Status::Done);
        QCOMPARE(shownBy(twice).frames[0], shownBy(clip).frames[0].sliced(52, 16));
    }

    void names() {
        const struct {
            const char* clip;
            const char* piece;
        } rows[] = {{"REC_2013_04_05_14_10_00.mp4", "REC_2013_04_05_14_10_12_cut.mp4"},
                    {"EVS_2013_04_05_14_10_00.avi", "EVS_2013_04_05_14_10_12_cut.avi"},
                    {"EVT_2013_04_05_23_59_50.avi", "REC_2013_04_06_00_00_02_cut.avi"},
                    {"front MOT_3.AVI", "front REC_3_cut.AVI"},
                    {"drive.mp4", "drive_cut.mp4"}};
        for (const auto& row : rows)
            QCOMPARE(cutName(QLatin1StringView(row.clip), 12'900'000), QLatin1StringView(row.piece));
    }

    // The clip is never written to, under any of its names, and no incomplete piece remains.
    void refusals() {
        const QByteArray bytes = bytesOf(makeTestClip({}));
        const QString clip = put(QStringLiteral("clip.mp4"), bytes);
        const QString other = path(QStringLiteral("other.mp4"));
        QVERIFY(QFile::link(clip, path(QStringLiteral("link.mp4"))));
        QCOMPARE(::link(QFile::encodeName(clip).constData(), QFile::encodeName(path("hard.mp4")).constData()),
                 0);
        const CutRange range{0, kUs};
        for (const char* name : {"clip.mp4", "link.mp4", "hard.mp4"}) {
            const CutResult result = cut(clip, path(QLatin1StringView(name)), range);
            QVERIFY2(result.status == Status::Failed && result.reason.endsWith("is the clip itself"), name);
        }
        const QString whole = put(QStringLiteral("kept.mp4"), "kept");
        QCOMPARE(cutClip({clip, range, true, whole}).status, Status::Failed);
        QCOMPARE(cutClip({clip, range, true, other}, [](auto, auto) { return false; }).status,
                 Status::Cancelled);
        const struct {
            QByteArray bytes;
            CutRange range;
            const char* reason;
        } rows[] = {{bytes, {5 * kUs, 6 * kUs}, "the clip ends before that"},
                    {bytes, {kUs, kUs / 2}, "the piece ends before it begins"},
                    {manyFold(bytesOf(makeTestClip(aviTestClip()))), range, "more bytes than the file has"},
                    {bytes.first(bytes.size() / 2), range, "sample"},
                    {bytesOf(makeTestClip({.faststart = false})).chopped(100), range, "no index"},
                    {bytesOf(makeTestClip(aviTestClip())).chopped(100), range, "no index"},
                    {"no clip", range, "no index"},
                    {{}, range, "no index"}};
        for (const auto& row : rows) {
            const CutResult result = cut(put(QStringLiteral("bad.mp4"), row.bytes), other, row.range);
            QVERIFY2(result.status == Status::Failed && result.reason.contains(row.reason),
                     qPrintable(result.reason));
        }
        QVERIFY(!QFile::exists(other));
        QCOMPARE(bytesOf(clip), bytes);
        QCOMPARE(bytesOf(whole), "kept");
    }

    void warnsOfFolder() {
        QVERIFY(QDir(m_folder.path()).mkpath("MOT_1"));
        const QString clip = makeTestClip(aviTestClip());
        QCOMPARE(cut(clip, path("MOT_1/a.avi"), {0, kUs}).remarks.size(), 1);
        QCOMPARE(cut(clip, path("a.avi"), {0, kUs}).remarks.size(), 0);
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestClipCut)
#include "test_clip_cut.moc"
