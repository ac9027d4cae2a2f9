// ql240-clip as its users call it: what it writes, where, and how it ends; and whether other programs read
// its tracks.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;

struct Ended {
    int code;
    QByteArray output;
    QString errors;
};

Ended run(const QString& program, const QStringList& arguments, const QString& input = {}) {
    QProcess process;
    if (!input.isEmpty())
        process.setStandardInputFile(input);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {-1, {}, process.errorString()};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2,
            process.readAllStandardOutput(), QString::fromUtf8(process.readAllStandardError())};
}

// Two fixes a second on a straight line across the antimeridian, an impact of 2 g at 3 s; the fixes of the
// fourth second are lost.
QByteArray driveClip(double clock, double longitude) {
    Track track;
    track.durations = {20};
    for (int i = 0; i < 400; ++i) {
        const float blow = i >= 150 && i < 156 ? 2 * 9.80665F : 0;
        QByteArray sample = motionAcceleration(blow, 0, 9.80665F);
        const bool isLost = i >= 200 && i < 250;
        const double east = longitude + i * 1e-5;
        if (i % 25 == 0)
            sample += motionFix(isLost ? 0 : 3, -33.5 + i * 1e-5, east > 180 ? east - 360 : east, 10, 0,
                                clock + i * 0.02);
        track.samples.append(sample);
    }
    return mp4({track});
}

} // namespace

class TestClipProgram : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString path(const QString& name) const { return m_folder.filePath(name); }
    void put(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray bytesOf(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    Ended clip(const QString& arguments, const QString& input = {}) const {
        return run(QStringLiteral(QL240_CLIP), arguments.split(u' ', Qt::SkipEmptyParts), input);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(QDir::setCurrent(m_folder.path()) && QDir().mkpath("card") && QDir().mkpath("empty"));
        const double start = 1365165000;
        put("card/REC_2013_04_05_21_30_00.mp4", driveClip(start, 179.998));
        put("card/EVS_2013_04_05_21_30_05.mp4", driveClip(start + 5, 179.9985));
        put("card/notes.txt", "no clip");
        put("zero.mp4", {});
        put("text.mp4", "no clip at all");
        put("wave.avi", riffChunk("RIFF", "WAVE" + riffChunk("gps0", QByteArray(32, 'x'))));
        put("mute.mp4", mp4({}));
        put("endless.mp4", mp4({}).replace(bigEndian(60000, 4), bigEndian(0, 4)));
        put("quiet.mp4", textless());
        put("cut.mp4", driveClip(start, 0).left(2000));
        put("old.gpx", "old");
        put("bell\a.mp4", driveClip(start, 0));
        QVERIFY(QFile::link("outside.gpx", "link.gpx"));
    }

    void endings_data() {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("errors");
        const auto row = [](const char* arguments, int code, const char* errors) {
            QTest::newRow(arguments) << QString(arguments) << code << QString::fromUtf8(errors);
        };
        row("", 2, "ql240-clip: no command is given\n");
        row("tell card", 2, "ql240-clip: no command \"tell\"\n");
        row("info", 2, "ql240-clip: no clip is named\n");
        row("info --force card", 2, "ql240-clip: info takes no --force\n");
        row("events --threshold 0 card", 2, "ql240-clip: \"0\" is no threshold in g\n");
        row("track card", 2, "ql240-clip: --format gpx, kml, csv or geojson is needed\n");
        row("track --format shp card", 2, "ql240-clip: no format \"shp\"\n");
        row("track -f kml --accelerations card", 2, "ql240-clip: only csv has room for accelerations\n");
        row("info - -", 2, "ql240-clip: standard input can be read once only\n");
        row("info --version", 0, "");
        row("info --help", 0, "");
        row("cut --from 1 card", 2, "ql240-clip: --to is needed\n");
        row("cut --from 1:x --to 2 card", 2, "ql240-clip: \"1:x\" is no time\n");
        row("cut --from 0:01:02.5 --to 1:01 card", 2, "ql240-clip: the piece ends before it begins\n");
        row("cut --from 1 --to 2 card mute.mp4", 2, "ql240-clip: only one clip can be cut at a time\n");
        row("cut --from 1 --to 2 -o - mute.mp4", 2, "ql240-clip: a piece is cut from a file into a file\n");
        row("cut --from 1 --to 2 -o none.gpx empty", 1, "ql240-clip: empty: no regular file\n");
        row("cut --from 1 --to 2 -o old.gpx card/REC_2013_04_05_21_30_00.mp4", 1,
            "ql240-clip: card/REC_2013_04_05_21_30_00.mp4: old.gpx: it exists; --force writes over it\n");
        row("info mute.mp4 card", 0, "");
        row("info no\x1b[2J.mp4", 1, "ql240-clip: no?[2J.mp4: No such file or directory\n");
        row("info no\u2028\U000E0041.mp4", 1, "ql240-clip: no??.mp4: No such file or directory\n");
        row("info nowhere.mp4", 1, "ql240-clip: nowhere.mp4: No such file or directory\n");
        row("info /dev/null zero.mp4 text.mp4 wave.avi empty card", 1,
            "ql240-clip: empty: no clip in it\n"
            "ql240-clip: /dev/null: no regular file\n"
            "ql240-clip: zero.mp4: neither an MP4 nor an AVI file\n"
            "ql240-clip: text.mp4: neither an MP4 nor an AVI file\n"
            "ql240-clip: wave.avi: neither an MP4 nor an AVI file\n");
        row("events mute.mp4 card", 1, "ql240-clip: mute.mp4: no accelerations in it\n");
        row("track -f csv quiet.mp4", 1, "ql240-clip: quiet.mp4: no position in it\n");
        row("track -o old.gpx card", 1, "ql240-clip: old.gpx: it exists; --force writes over it\n");
        row("track -o nowhere/a.gpx card", 1, "ql240-clip: nowhere/a.gpx: No such file or directory\n");
        row("track -o none.gpx mute.mp4", 1, "ql240-clip: mute.mp4: no position in it\n");
        row("track -f csv -o /dev/null --force card", 1, "ql240-clip: /dev/null: no regular file\n");
        row("track -o link.gpx --force card", 1, "ql240-clip: link.gpx: no regular file\n");
        row("track -f kml bell\a.mp4", 0, "");
        row("track -f csv --force -o card/EVS_2013_04_05_21_30_05.mp4 card", 1,
            "ql240-clip: card/EVS_2013_04_05_21_30_05.mp4: it is one of the clips\n");
        row("repair cut.mp4 mute.mp4", 2, "ql240-clip: one clip or folder at a time\n");
        row("repair -", 2, "ql240-clip: repair needs files\n");
        row("repair mute.mp4", 1, "ql240-clip: mute.mp4: it has its index, or is no clip\n");
        row("repair -o cut.mp4 --force cut.mp4", 1, "ql240-clip: cut.mp4: it is the clip itself\n");
        row("repair -o link.gpx --force cut.mp4", 1, "ql240-clip: link.gpx: no regular file\n");
        row("repair -o old.gpx cut.mp4", 1, "ql240-clip: old.gpx: it exists; --force writes over it\n");
        row("repair -o none.gpx cut.mp4", 1,
            "ql240-clip: cut.mp4: it needs a pattern: a whole MP4 clip of the same camera and settings, type "
            "\"mp42\"\n");
    }
    void endings() {
        QFETCH(QString, arguments);
        QFETCH(int, code);
        QFETCH(QString, errors);
        const Ended ended = clip(arguments);
        QCOMPARE(ended.errors, code == 2 ? errors + QStringLiteral("Try \"ql240-clip --help\".\n") : errors);
        QCOMPARE(ended.code, code);
        const bool writes = code == 0 || (code == 1 && arguments.contains(" card"));
        QCOMPARE(ended.output.isEmpty(), !writes || arguments.contains("-o"));
        QCOMPARE(bytesOf("old.gpx"), QByteArray("old"));
        QVERIFY(!QFile::exists("none.gpx"));
    }

    void cut() {
        const Ended ended = clip("cut --from 2 --to 0:04 card/REC_2013_04_05_21_30_00.mp4");
        QCOMPARE(ended.output, "REC_2013_04_05_21_30_02_cut.mp4\n");
        const QByteArray info = clip("info --json REC_2013_04_05_21_30_02_cut.mp4").output;
        QCOMPARE(QJsonDocument::fromJson(info).array().at(0).toObject()["fixes"].toInt(), 4);
    }

    void info() {
        const Ended ended = clip("info --json card/REC_2013_04_05_21_30_00.mp4");
        const QJsonObject object = QJsonDocument::fromJson(ended.output).array().at(0).toObject();
        const auto text = [&](const char* key) {
            return object[QLatin1StringView(key)].toVariant().toString();
        };
        QCOMPARE(text("container"), QString("MP4"));
        QCOMPARE(text("sensor_format"), QString("camera motion track"));
        QCOMPARE(text("fixes"), QString("14"));
        QCOMPARE(text("without_fix"), QString("2"));
        QCOMPARE(text("first_time"), QString("2013-04-05T12:30:00.000Z"));
        QCOMPARE(text("last_time"), QString("2013-04-05T12:30:07.500Z"));
        QCOMPARE(text("camera_offset_s"), QString("32400"));
        QCOMPARE(text("highest_speed_kmh"), QString("36"));
        QCOMPARE(object["strongest_shock"].toObject()["offset_s"].toDouble(), 3.1);
        QVERIFY(clip("info endless.mp4").output.contains(" bytes\n")); // no length in its header
        const Ended people = clip("info card/REC_2013_04_05_21_30_00.mp4");
        QVERIFY(people.output.contains("camera's offset  +09:00:00\n"));
        QVERIFY(people.output.contains("strongest shock  2.00 g at 3.100 s, x\n"));
    }

    // From a pipe as from a file.
    void standardInput() {
        const QString clipPath = path("card/REC_2013_04_05_21_30_00.mp4");
        const Ended file = clip("track -f csv -", clipPath);
        const Ended pipe = run("sh", {"-c", "cat " + clipPath + " | " QL240_CLIP " track -f csv -"});
        QCOMPARE(file.output.count('\n'), 15);
        QCOMPARE(pipe.output, file.output);
        QCOMPARE(pipe.code, 0);
        const Ended both = clip("track -f csv card/EVS_2013_04_05_21_30_05.mp4 -", clipPath);
        QVERIFY(both.output.split('\n').value(1).startsWith("\"-\",1,"));
    }

    void whatCannotBeRead() {
        const Ended input = run("sh", {"-c", QL240_CLIP " info - <&-"});
        QCOMPARE(input.errors, QString("ql240-clip: -: Bad file descriptor\n"));
        QVERIFY(QDir().mkpath("locked") && QFile::setPermissions("locked", {}));
        // Root reads everything.
        const QString bound =
            ::geteuid() == 0 ? "setpriv --bounding-set=-dac_override,-dac_read_search " : "";
        for (const char* command : {" info locked", " repair locked"}) {
            const Ended folder = run("sh", {"-c", bound + QL240_CLIP + command});
            QCOMPARE(folder.errors, QString("ql240-clip: locked: Permission denied\n"));
            QCOMPARE(folder.code, 1);
        }
        QVERIFY(QDir().rmdir("locked"));
    }

    // The camera's clock was wrong for the first clip; the last one has none but that.
    void orderOfClocks() {
        Track places;
        places.samples = {motionPlace(1, 1)};
        QVERIFY(QDir().mkpath("clocks"));
        put("clocks/REC_2013_04_05_21_30_00.mp4", driveClip(1365165100, 0));
        put("clocks/REC_2013_04_05_21_31_00.mp4", driveClip(1365165000, 0));
        put("clocks/REC_2013_04_05_21_31_30.mp4", mp4({places}));
        QByteArrayList order;
        for (const QByteArray& line : clip("track -f csv clocks").output.split('\n').mid(1)) {
            const QByteArray name = line.mid(line.indexOf("21_"), 8);
            if (!name.isEmpty() && !order.endsWith(name))
                order << name;
        }
        QCOMPARE(order.join(' '), QByteArray("21_31_00 21_31_30 21_30_00"));
    }

    // In order of time, not of names; the clip that began first counts where two overlap.
    void events() {
        const Ended ended = clip("events --json --threshold 1 card");
        QStringList rows;
        const QJsonArray found = QJsonDocument::fromJson(ended.output).array();
        for (qsizetype i = 0; i < found.size(); ++i)
            rows << found[i]["kind"].toString() + u' ' + found[i]["time"].toString();
        QCOMPARE(rows.join(u'|'), QString("shock 2013-04-05T12:30:03.100Z|event 2013-04-05T12:30:05.000Z|"
                                          "shock 2013-04-05T12:30:08.100Z"));
        QCOMPARE(clip("events --threshold 3 card/REC_2013_04_05_21_30_00.mp4").output, QByteArray());
    }

    void trackAppearsWhole() {
        const Ended first = clip("track -o new.csv --accelerations card");
        QCOMPARE(first.code, 0);
        QVERIFY(first.errors.contains("of its positions left out: card/REC_2013_04_05_21_30_00.mp4 has"));
        const QList<QByteArray> lines = bytesOf("new.csv").split('\n');
        QCOMPARE(lines[1],
                 QByteArray("\"card/REC_2013_04_05_21_30_00.mp4\",1,0.000,,,,,,,0.0000,0.0000,1.0000"));
        QCOMPARE(lines[2], QByteArray("\"card/REC_2013_04_05_21_30_00.mp4\",1,0.000,2013-04-05T12:30:00.000Z,"
                                      "-33.5000000,179.9980000,21.50,36.000,90.00,,,"));
        put("new.csv", "old");
        QCOMPARE(clip("track -o new.csv --force card").code, 0);
        QVERIFY(bytesOf("new.csv").count('\n') > 15);
    }

    void aReaderThatHasEnough() {
        const Ended ended =
            run("bash", {"-c", QL240_CLIP
                         " track -f csv --accelerations card 2>&1 >/dev/full | grep -c out:;" QL240_CLIP
                         " track -f csv --accelerations card 2>said | head -n 1 >/dev/null;"
                         "grep -vc out: said; " QL240_CLIP " info card > /dev/full; echo $?"});
        QCOMPARE(ended.output, QByteArray("1\n0\n1\n"));
        QVERIFY(ended.errors.contains("standard output: No space left on device"));
    }

    // The same points in the same segments as others find in what they make of it.
    void othersReadIt_data() {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QStringList>("reader");
        const QString gpsbabel = QStringLiteral("gpsbabel -t -i %1 -f track.%1 -o unicsv -F out.csv");
        QTest::newRow("gpsbabel gpx") << "gpx" << gpsbabel.arg("gpx").split(u' ');
        QTest::newRow("gpsbabel kml") << "kml" << gpsbabel.arg("kml").split(u' ');
        QTest::newRow("gdal gpx") << "gpx" << QString("ogrinfo -ro -al track.gpx track_points").split(u' ');
        QTest::newRow("gdal kml") << "kml" << QString("ogrinfo -ro -al track.kml").split(u' ');
        QTest::newRow("gdal geojson") << "geojson" << QString("ogrinfo -ro -al track.geojson").split(u' ');
    }
    void othersReadIt() {
        QFETCH(QString, format);
        QFETCH(QStringList, reader);
        if (QStandardPaths::findExecutable(reader[0]).isEmpty())
            QSKIP("gpsbabel and gdal-bin aren't installed: what they read was not compared");
        QCOMPARE(clip("track --force -o track." + format + " card/REC_2013_04_05_21_30_00.mp4").code, 0);
        const Ended ended = run(reader[0], reader.mid(1));
        QCOMPARE(ended.code, 0);
        const QByteArray found = reader[0] == "gpsbabel" ? bytesOf("out.csv") : ended.output;
        // The first and the last point.
        for (const char* number : {"-33.5", "179.998", "-33.49625", "-179.99825"})
            QVERIFY2(found.contains(number), found.left(2000).constData());
    }

private:
    static QByteArray textless() {
        Track track;
        track.samples = {motionAcceleration(0, 0, 9.8F)};
        return mp4({track});
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestClipProgram)
#include "test_clip_program.moc"
