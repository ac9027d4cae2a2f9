// Clips of several muxers, truncated at many offsets: the repaired clip has exactly the samples that were
// complete, unchanged. QL240_REPAIR_CUTS sets the number of offsets for each kind of clip.
#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <cmath>
#include <map>
#include <random>

#include "clips/containers/avi_index.h"
#include "clips/containers/mp4_writer.h"
#include "clips/record_reader.h"
#include "clips/repair/clip_repair.h"
#include "clips/repair/media_finders.h"
#include "support/clip_damage.h"
#include "support/sensor_clips.h"
#include "support/test_clips.h"

namespace ql240 {
namespace {

using namespace containers;
using madeclips::bigEndian;

struct Piece {
    std::int64_t end = 0; // in the file
    double seconds = 0;   // presentation time
    QByteArray bytes;
    bool isKey = true;
};
// By track, GPS blocks last; uncompressed sound as one piece per unit.
using Pieces = std::map<std::size_t, std::vector<Piece>>;

void run(const QString& program, const QString& arguments) {
    QProcess process;
    process.start(program, arguments.split(u' ', Qt::SkipEmptyParts));
    QVERIFY(process.waitForFinished(60000));
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
}

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

void addPieces(const Mp4Track& track, ByteSource& source, const QByteArray& bytes,
               std::vector<Piece>& pieces) {
    Mp4SampleCursor cursor(source, track);
    while (const std::optional<Mp4Sample> sample = cursor.next()) {
        const auto unit = static_cast<std::int64_t>(sample->size / sample->count);
        for (std::uint32_t i = 0; i < sample->count; ++i) {
            const std::int64_t start = sample->offset + i * unit;
            const double ticks = static_cast<double>(sample->time + sample->compositionOffset) + i -
                                 static_cast<double>(track.layout.mediaStart);
            pieces.push_back(
                {start + unit, ticks / track.layout.timescale, bytes.mid(start, unit), sample->isSync});
        }
    }
}

Pieces mp4Pieces(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    (void)buffer.open(QIODevice::ReadOnly);
    QString problem;
    Pieces pieces;
    Mp4File file;
    ByteSource heads(buffer);
    const bool isRead = readMp4Boxes(heads, file, problem);
    const std::optional<Mp4Movie> movie = isRead ? readMp4Movie(heads, file, problem) : std::nullopt;
    for (std::size_t track = 0; movie && track < movie->tracks.size(); ++track) {
        ByteSource source(buffer);
        addPieces(movie->tracks[track], source, bytes, pieces[track]);
    }
    const QByteArray blocks = movie ? loadedContent(movie->box.find(fourCc("gps "))) : QByteArray();
    for (qsizetype at = 8; at < blocks.size(); at += 8) {
        const auto start = qFromBigEndian<std::uint32_t>(blocks.constData() + at);
        const auto size = qFromBigEndian<std::uint32_t>(blocks.constData() + at + 4);
        pieces[movie->tracks.size()].push_back({std::int64_t(start) + size, 0, bytes.mid(start, size)});
    }
    return pieces;
}

Pieces aviPieces(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    (void)buffer.open(QIODevice::ReadOnly);
    ByteSource source(buffer);
    AviFile file;
    QString problem;
    const bool isRead = readAviChunks(source, file, problem);
    const std::optional<AviMovie> movie = isRead ? readAviMovie(source, file, problem) : std::nullopt;
    Pieces pieces;
    for (std::size_t stream = 0; movie && stream < movie->streams.size(); ++stream) {
        const AviStream& format = movie->streams[stream];
        AviIndexCursor cursor(source, *movie, stream);
        double units = 0;
        while (const std::optional<AviPiece> piece = cursor.next()) {
            pieces[stream].push_back({piece->body.end(), units * format.scale / format.rate,
                                      bytes.mid(piece->body.start, piece->body.size), piece->isKey});
            units += static_cast<double>(format.unitsIn(piece->body.size));
        }
    }
    return pieces;
}

// The difference between what was complete and what was saved; empty without one.
QString difference(const std::vector<Piece>& whole, const std::vector<Piece>& saved) {
    // The last picture may seem to lack slices, and a few bytes of sound can't be recognized.
    const std::size_t spare = 1 + 7 / std::size_t(whole.front().bytes.size());
    if (saved.size() > whole.size() || saved.size() + spare < whole.size())
        return QStringLiteral("%1 of %2 pieces").arg(saved.size()).arg(whole.size());
    for (std::size_t i = 0; i < saved.size(); ++i) {
        if (saved[i].bytes != whole[i].bytes || (whole[i].isKey && !saved[i].isKey))
            return QStringLiteral("piece %1 is another one").arg(i);
        if (std::abs(saved[i].seconds - whole[i].seconds) >= 0.04)
            return QStringLiteral("piece %1: %2 s, not %3")
                .arg(i)
                .arg(saved[i].seconds)
                .arg(whole[i].seconds);
    }
    return {};
}

Pieces piecesOf(const QByteArray& bytes) {
    return bytes.startsWith("RIFF") ? aviPieces(bytes) : mp4Pieces(bytes);
}

enum class Sensors { None, Motion, Accelerations, Angles, Text, Blocks };

// A record of motion every 20 ms, some with a place as well; a sentence or a block every 200 ms.
QList<QByteArray> sensorSamples(Sensors kind) {
    QList<QByteArray> samples;
    for (int i = 0; i < 200; ++i) {
        const QByteArray words =
            "GPRMC,12000" + QByteArray::number(i % 10) + ",A,3733.5,N,12658.6,E,0.0,0.0,050413,,";
        if (kind == Sensors::Text)
            samples << madeclips::textSample(madeclips::sentence(words));
        else if (kind == Sensors::Blocks)
            samples << madeclips::gpsBlock({12, 0, i % 60, 13, 4, 5}, "ANE", 3733.5F, 12658.6F, 10);
        else
            samples << madeclips::motionAcceleration(0, float(i), 9.8F) +
                           (kind == Sensors::Motion && i % 50 == 7 ? madeclips::motionFix(3, 37, 127, 1, 2)
                                                                   : QByteArray());
        if (kind == Sensors::Angles)
            samples.last().replace(2, 1, QByteArray(1, '\0'));
    }
    return samples;
}

struct Next {
    double seconds;
    std::size_t track;
    Mp4Sample sample;
};

// All tracks' samples in order of time, with the sensors' samples between them.
std::vector<Next> interleaved(QFile& from, const Mp4Movie& movie, double sensorStep) {
    std::vector<Next> samples;
    for (std::size_t track = 0; track < movie.tracks.size(); ++track) {
        ByteSource source(from);
        Mp4SampleCursor cursor(source, movie.tracks[track]);
        while (const std::optional<Mp4Sample> sample = cursor.next())
            samples.push_back({double(sample->time) / movie.tracks[track].layout.timescale, track, *sample});
    }
    const double end = samples.back().seconds;
    for (int i = 0; i < 200 && i * sensorStep < end; ++i) {
        Mp4Sample sample;
        sample.duration = std::uint32_t(std::lround(sensorStep * 1000));
        samples.push_back({i * sensorStep + 0.001, movie.tracks.size(), sample});
    }
    std::stable_sort(samples.begin(), samples.end(),
                     [](const Next& a, const Next& b) { return a.seconds < b.seconds; });
    return samples;
}

std::optional<Mp4Movie> movieOf(QIODevice& device, Mp4File& file) {
    QString problem;
    ByteSource source(device);
    return readMp4Boxes(source, file, problem) ? readMp4Movie(source, file, problem) : std::nullopt;
}

void addSensors(const QString& path, Sensors kind) {
    const QList<QByteArray> sensors = sensorSamples(kind);
    const std::int64_t blocksAt = bytesOf(path).size();
    if (kind == Sensors::Blocks)
        put(path, bytesOf(path) + sensors.join());
    QFile from(path);
    QBuffer sensorClip;
    madeclips::Track track;
    track.handler = track.format = kind == Sensors::Text ? "text" : "camm";
    track.samples = sensors;
    sensorClip.setData(madeclips::mp4({track}));
    QVERIFY(from.open(QIODevice::ReadOnly) && sensorClip.open(QIODevice::ReadOnly));
    Mp4File file;
    Mp4File sensorFile;
    std::optional<Mp4Movie> movie = movieOf(from, file);
    const std::optional<Mp4Movie> sensorMovie = movieOf(sensorClip, sensorFile);
    QVERIFY(movie && sensorMovie);
    QFile to(path + ".new");
    QVERIFY(to.open(QIODevice::ReadWrite));
    Copier copier(from, to);
    Mp4Writer writer(copier);
    writer.begin({file.boxes.front()});
    for (const Mp4Track& each : movie->tracks)
        writer.addTrack(each);
    writer.addTrack(sensorMovie->tracks.front());
    qsizetype number = 0;
    QByteArray index;
    for (const Next& next : interleaved(from, *movie, kind < Sensors::Text ? 0.02 : 0.2)) {
        if (next.track < movie->tracks.size()) {
            writer.addSample(next.track, next.sample);
        } else if (kind == Sensors::Blocks) {
            const qsizetype size = sensors.first().size();
            index += bigEndian(quint64(writer.addOther({blocksAt + size * number++, size})), 4) +
                     bigEndian(quint64(size), 4);
        } else {
            writer.addSample(next.track, next.sample, sensors[number++]);
        }
    }
    if (kind == Sensors::Blocks)
        movie->box.inner.push_back(
            newBox(fourCc("gps "), bigEndian(0x101, 4) + bigEndian(quint64(number), 4) + index));
    writer.finish(*movie, movie->timescale);
    QVERIFY2(copier.finish(), qPrintable(copier.failure()));
    QVERIFY(QFile::remove(path) && to.rename(path));
}

// The size of the media's box or list: unchanged, none, invalid.
void damageSize(QByteArray& clip, int how, quint64 random) {
    const bool isAvi = clip.startsWith("RIFF");
    const qsizetype media = clip.indexOf(isAvi ? "movi" : "mdat") - 4;
    const bool isWide = !isAvi && clip.mid(media, 4) == bigEndian(1, 4);
    if (how > 0)
        clip.replace(isWide ? media + 8 : media, isWide ? 8 : 4,
                     bigEndian(how == 1 ? 0 : random | 2, isWide ? 8 : 4));
    if (how > 0 && isAvi)
        clip.replace(4, 4, bigEndian(0, 4));
}

struct Kind {
    const char* name;
    const char* remux; // "%1" to "%2"; nullptr: the clip as ffmpeg made it
    TestClipSpec spec;
    Sensors sensors = Sensors::None;
};

constexpr char kGStreamer[] =
    "gst-launch-1.0 -q filesrc location=%1 ! qtdemux name=d mp4mux name=m ! filesink location=%2 d.video_0 ! "
    "queue ! "
    "h264parse ! m.video_0 d.audio_0 ! queue ! aacparse ! m.audio_0";
constexpr char kGStreamerTwo[] =
    "gst-launch-1.0 -q filesrc location=%1 ! qtdemux name=d mp4mux name=m ! filesink location=%2 d.video_0 ! "
    "queue ! "
    "h264parse ! m.video_0 d.video_1 ! queue ! h264parse ! m.video_1 d.audio_0 ! queue ! aacparse ! "
    "m.audio_0";
constexpr char kGStreamerAvi[] =
    "gst-launch-1.0 -q filesrc location=%1 ! avidemux name=d avimux name=m ! filesink location=%2 d.video_0 "
    "! queue ! "
    "jpegparse ! m.video_0 d.audio_0 ! queue ! m.audio_0";
constexpr char kPcm[] = "ffmpeg -v error -y -i %1 -map 0 -c:v copy -c:a pcm_s16le -f mov %2";

std::vector<Kind> kinds() {
    TestClipSpec plain;
    plain.faststart = false;
    plain.frames = 120;
    plain.size = {320, 180};
    plain.secondSize = {320, 180};
    TestClipSpec two = plain;
    two.videoStreams = 2;
    TestClipSpec mute = plain;
    mute.sound = false;
    TestClipSpec reordered = plain;
    reordered.bFrames = 2;
    TestClipSpec h265 = reordered;
    h265.codec = TestClipSpec::Codec::H265;
    TestClipSpec avi = aviTestClip();
    avi.frames = 60;
    avi.size = {320, 180};
    TestClipSpec h264Avi = avi;
    h264Avi.codec = TestClipSpec::Codec::H264;
    return {{"one video, AAC", nullptr, plain},
            {"one video, AAC, GStreamer", kGStreamer, plain},
            {"mute, motion", nullptr, mute, Sensors::Motion},
            {"PCM", kPcm, plain},
            {"PCM, motion", kPcm, plain, Sensors::Motion},
            {"AAC, motion", nullptr, plain, Sensors::Motion},
            {"AAC, lines of text", nullptr, plain, Sensors::Text},
            {"AAC, GPS blocks", nullptr, plain, Sensors::Blocks},
            {"two videos", nullptr, two},
            {"two videos, GStreamer", kGStreamerTwo, two},
            {"two videos, motion", kGStreamerTwo, two, Sensors::Motion},
            {"two videos, PCM", kPcm, two},
            {"B-frames", nullptr, reordered},
            {"H.265", nullptr, h265},
            {"AVI", nullptr, avi},
            {"AVI, GStreamer", kGStreamerAvi, avi},
            {"AVI, H.264", nullptr, h264Avi}};
}

} // namespace

class TestClipRepair : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString path(const QString& name) const { return m_folder.filePath(name); }

    // A clip with `more` frames more than the kind's, under one of the camera's names.
    QString make(const Kind& kind, const QString& name, int moreFrames) const {
        TestClipSpec spec = kind.spec;
        spec.frames += moreFrames;
        const bool isAvi = spec.container == TestClipSpec::Container::Avi;
        const QString made = path(name + (isAvi ? ".avi" : ".mp4"));
        QFile::remove(made);
        const QString source = makeTestClip(spec);
        if (kind.remux) {
            const QStringList words = QString(kind.remux).arg(source, made).split(u' ');
            run(words.first(), words.mid(1).join(u' '));
        } else if (!QFile::copy(source, made)) {
            qFatal("no clip");
        }
        if (kind.sensors != Sensors::None)
            addSensors(made, kind.sensors);
        return made;
    }

    // The complete pieces before the cut.
    static Pieces wholeOnes(const Pieces& all, std::int64_t cut) {
        Pieces whole;
        for (const auto& [track, pieces] : all) {
            for (const Piece& piece : pieces) {
                if (piece.end <= cut)
                    whole[track].push_back(piece);
            }
        }
        return whole;
    }

    // What a repair of the truncated clip gets wrong, or empty. Counts the pieces.
    QString fault(const QString& clip, const Pieces& expected, std::size_t& wanted,
                  std::size_t& found) const {
        const QByteArray damaged = bytesOf(clip);
        const QString output = path("out" + clip.right(4));
        const RepairResult result = repairClip({clip, {}, output, true});
        if (bytesOf(clip) != damaged)
            return "the original is another one";
        if (result.status != RepairStatus::Repaired)
            return expected.count(0) == 0 || expected.at(0).size() < 3 ? QString() : result.problem;
        const Pieces saved = piecesOf(bytesOf(output));
        std::size_t number = 0;
        for (const auto& [track, pieces] : expected) {
            const auto got = saved.find(number++);
            const QString differs = got == saved.end() ? "none" : difference(pieces, got->second);
            if (!differs.isEmpty())
                return QStringLiteral("track %1: ").arg(track) + differs;
            wanted += pieces.size();
            found += got->second.size();
        }
        QFile file(output);
        const bool isOpen = file.open(QIODevice::ReadOnly);
        return isOpen ? readClipContents(file, {}, RecordPart::Fixes).faults.join(u' ') : file.errorString();
    }

private Q_SLOTS:
    void cutClips_data() {
        QTest::addColumn<int>("kind");
        int number = 0;
        for (const Kind& kind : kinds())
            QTest::newRow(kind.name) << number++;
    }
    void cutClips() {
        QFETCH(int, kind);
        const Kind made = kinds()[size_t(kind)];
        make(made, "REC_2013_04_05_14_10_12", 30);
        const QString clip = make(made, "REC_2013_04_05_14_11_12", 0);
        if (QTest::currentTestFailed())
            return;
        const QByteArray whole = bytesOf(clip);
        const Pieces all = piecesOf(whole);
        std::int64_t start = whole.size();
        std::int64_t end = 0;
        for (const auto& [track, pieces] : all) {
            start = std::min<std::int64_t>(start, pieces.front().end - pieces.front().bytes.size());
            end = std::max(end, pieces.back().end);
        }
        const int cuts = std::max(6, qEnvironmentVariableIntValue("QL240_REPAIR_CUTS"));
        std::mt19937 random(quint32(kind) + 1);
        std::size_t wanted = 0;
        std::size_t found = 0;
        for (int i = 0; i < cuts; ++i) {
            const std::int64_t slice = (end + 200 - start) / cuts;
            const std::int64_t cut =
                std::min<std::int64_t>(start + slice * i + random() % quint32(slice), whole.size() - 100);
            QByteArray damaged = whole.left(cut);
            damageSize(damaged, i % 3, random());
            put(clip, damaged);
            const QString problem = fault(clip, wholeOnes(all, cut), wanted, found);
            QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("cut %1, %2").arg(cut).arg(problem)));
        }
        run("ffprobe", "-v error -show_packets -of compact " + path("out" + clip.right(4)));
        QVERIFY2(double(found) >= 0.99 * double(wanted),
                 qPrintable(QStringLiteral("%1 of %2").arg(found).arg(wanted)));
    }

    // A clip of another kind may be nearer in time.
    void patternOfTheSameKind_data() {
        QTest::addColumn<QString>("damaged");
        QTest::addColumn<QString>("nearer");
        QTest::newRow("one track too many") << "one video, AAC"
                                            << "two videos";
        QTest::newRow("one track too few") << "two videos"
                                           << "one video, AAC";
        QTest::newRow("no sound") << "AAC, motion"
                                  << "mute, motion";
        QTest::newRow("no motion") << "AAC, motion"
                                   << "one video, AAC";
        QTest::newRow("other codec") << "H.265"
                                     << "one video, AAC";
        QTest::newRow("other rate") << "twice the rate"
                                    << "one video, AAC";
    }
    void patternOfTheSameKind() {
        const auto kindNamed = [](const QString& name) {
            std::vector<Kind> all = kinds();
            all.push_back({"twice the rate", nullptr, all[0].spec});
            all.back().spec.rate *= 2;
            return *std::find_if(all.begin(), all.end(),
                                 [&](const Kind& k) { return name == QLatin1String(k.name); });
        };
        QFETCH(QString, damaged);
        QFETCH(QString, nearer);
        make(kindNamed(nearer), "REC_2013_04_05_14_10_12", 0);
        const QString pattern = make(kindNamed(damaged), "REC_2013_04_05_12_00_00", 30);
        const QString clip = make(kindNamed(damaged), "REC_2013_04_05_14_11_12", 0);
        put(clip, bytesOf(clip).chopped(bytesOf(clip).size() / 3));
        const RepairResult result = repairClip({clip, {}, path("out.mp4"), true});
        QVERIFY(QFile::remove(pattern));
        QCOMPARE(result.pattern, pattern);
    }

    // The nearest clips were interrupted as well; an empty box precedes the media.
    void patternBehindDamagedOnes() {
        const Kind kind = kinds()[0];
        const QString pattern = make(kind, "REC_2013_04_05_12_00_00", 30);
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        QByteArray bytes = bytesOf(clip);
        bytes.insert(bytes.indexOf("mdat") - 4, bigEndian(8, 4) + "mdat");
        put(clip, bytes.chopped(bytes.size() / 3));
        QStringList neighbours;
        for (int i = 0; i < 40; ++i) {
            neighbours << path(QStringLiteral("REC_2013_04_05_14_10_%1.mp4").arg(i, 2, 10, QLatin1Char('0')));
            put(neighbours.last(), bytes.left(1000));
        }
        const RepairResult result = repairClip({clip, {}, path("out.mp4"), true});
        for (const QString& neighbour : neighbours + QStringList{pattern})
            QVERIFY(QFile::remove(neighbour));
        QCOMPARE(result.pattern, pattern);
        QCOMPARE(result.status, RepairStatus::Repaired);
    }

    // The file system allocated more than was written: the last picture ends in zeros. A record of angles
    // begins with zeros.
    void zerosBehind_data() {
        QTest::addColumn<int>("sensors");
        QTest::newRow("no sensors") << int(Sensors::None);
        QTest::newRow("angles") << int(Sensors::Angles);
    }
    void zerosBehind() {
        QFETCH(int, sensors);
        Kind kind = kinds()[0];
        kind.sensors = Sensors(sensors);
        make(kind, "REC_2013_04_05_14_10_12", 30);
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        const QByteArray whole = bytesOf(clip);
        const qint64 cut = whole.size() / 2;
        put(clip, whole.left(cut) + QByteArray(100'000, '\0'));
        const RepairResult result = repairClip({clip, {}, path("out.mp4"), true});
        QCOMPARE(result.status, RepairStatus::Repaired);
        Pieces expected = wholeOnes(mp4Pieces(whole), cut);
        Pieces got = mp4Pieces(bytesOf(path("out.mp4")));
        for (const std::size_t track : {0U, 2U})
            QVERIFY2(
                got[track].size() <= expected[track].size() &&
                    got[track].size() + 1 >= expected[track].size(),
                qPrintable(QStringLiteral("%1 of %2").arg(got[track].size()).arg(expected[track].size())));
        QVERIFY(result.lostBytes > 90'000);
        const qsizetype index = whole.lastIndexOf("moov") + 204;
        put(clip, whole.left(index) + QByteArray(whole.size() - index, '\0'));
        QVERIFY(needsRepair(clip));
    }

    void placesThatThePatternLacks() {
        Kind kind = kinds()[0];
        kind.sensors = Sensors::Accelerations;
        make(kind, "REC_2013_04_05_14_10_12", 30);
        kind.sensors = Sensors::Motion;
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        const QByteArray whole = bytesOf(clip);
        const qint64 cut = whole.size() * 2 / 3;
        put(clip, whole.left(cut));
        QCOMPARE(repairClip({clip, {}, path("out.mp4"), true}).status, RepairStatus::Repaired);
        const auto records = [](const Pieces& pieces) {
            QByteArray all;
            for (const Piece& piece : pieces.at(2))
                all += piece.bytes;
            return all;
        };
        QVERIFY(records(mp4Pieces(bytesOf(path("out.mp4"))))
                    .startsWith(records(wholeOnes(mp4Pieces(whole), cut))));
    }

    // Thousands of pictures seem to begin after the last one, all with the same scan of eight megabytes.
    void scansAreBounded() {
        Kind kind = kinds()[0];
        kind.spec.codec = TestClipSpec::Codec::MotionJpeg;
        kind.spec.sound = false;
        make(kind, "REC_2013_04_05_14_10_12", 30);
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        const Pieces all = mp4Pieces(bytesOf(clip));
        QByteArray starts(1, '\1');
        for (int left = 30000; left > 0; left -= 6)
            starts += QByteArray::fromHex("FFD8FFE0") + bigEndian(quint64(left - 4), 2);
        put(clip, bytesOf(clip).left(all.at(0)[60].end) + starts + QByteArray::fromHex("FFDA0002") +
                      QByteArray(8 << 20, '\0'));
        QElapsedTimer timer;
        timer.start();
        const RepairResult result = repairClip({clip, {}, path("out.mp4"), true});
        QCOMPARE(result.status, RepairStatus::Repaired);
        QCOMPARE(int(result.pictures), 61);
        QVERIFY2(timer.elapsed() < 10'000, qPrintable(QString::number(timer.elapsed())));
    }

    void durationsThatAddUp() {
        repair::Durations dropping;
        repair::Durations oddStart;
        for (int i = 0; i < 100; ++i) {
            dropping.learn(i % 20 == 7 ? 1024 : 512);
            oddStart.learn(i == 0 ? 600 : 512);
        }
        QCOMPARE(int(dropping.ticksOf(200)), 105 * 1024);
        QCOMPARE(int(oddStart.ticksOf(200)), 200 * 512);
    }

    // When it was recorded isn't known from the name, and the title is the other clip's.
    void nothingOfThePatternsRecording() {
        const QString pattern = make(kinds()[0], "REC_2013_04_05_14_10_12", 30);
        QByteArray bytes = bytesOf(pattern);
        put(pattern, bytes.replace(bytes.lastIndexOf("mvhd") + 8, 4, bigEndian(2'000'000'000, 4)));
        const QString clip = make(kinds()[0], "copy", 0);
        put(clip, bytesOf(clip).chopped(5000));
        QCOMPARE(repairClip({clip, pattern, path("out.mp4"), true}).status, RepairStatus::Repaired);
        QVERIFY(QFile::remove(clip));
        const QByteArray saved = bytesOf(path("out.mp4"));
        QCOMPARE(saved.mid(saved.lastIndexOf("mvhd") + 8, 4), bigEndian(0, 4));
        QVERIFY(bytes.contains("ilst") && !saved.contains("ilst"));
    }

    void nothingIsLeftOfACancelledRepair() {
        const Kind kind = kinds()[0];
        make(kind, "REC_2013_04_05_14_10_12", 30);
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        put(clip, bytesOf(clip).chopped(1000));
        const QString output = path("cancelled.mp4");
        const RepairResult result =
            repairClip({clip, {}, output, false, [](std::int64_t done, std::int64_t) { return done == 0; }});
        QCOMPARE(result.status, RepairStatus::Cancelled);
        QCOMPARE(QDir(m_folder.path()).entryList({"cancelled*"}), QStringList());
    }

    // With any damage to clip and pattern, the repair ends, and every sample is in the original.
    void damagedOnes() {
        const Kind kind = kinds()[5];
        const QString pattern = make(kind, "REC_2013_04_05_14_10_12", 30);
        const QString clip = make(kind, "REC_2013_04_05_14_11_12", 0);
        const QByteArray patternBytes = bytesOf(pattern);
        const QByteArray whole = bytesOf(clip);
        const QByteArray cut = whole.left(whole.size() * 2 / 3);
        const int count = std::max(40, qEnvironmentVariableIntValue("QL240_REPAIR_DAMAGES"));
        for (int i = 0; i < count; ++i) {
            const auto how = Damage(i % 5);
            put(clip, i % 4 == 0 ? cut : damaged(cut, how, i, count));
            put(pattern, i % 4 == 0 ? damaged(patternBytes, how, i, count) : patternBytes);
            const RepairResult result = repairClip({clip, {}, path("out.mp4"), true});
            const QByteArray original = bytesOf(clip);
            for (const auto& [track, pieces] : mp4Pieces(
                     result.status == RepairStatus::Repaired ? bytesOf(path("out.mp4")) : QByteArray())) {
                for (const Piece& piece : pieces)
                    QVERIFY(original.contains(piece.bytes));
            }
        }
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestClipRepair)
#include "test_clip_repair.moc"
