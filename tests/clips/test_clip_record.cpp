// What a clip's record holds, where it says that it stopped, and how records become one track.
#include <QBuffer>
#include <QTest>
#include <QTimeZone>

#include "clips/clip_name.h"
#include "clips/formats/leap_seconds.h"
#include "clips/record_reader.h"
#include "clips/track_joiner.h"
#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;

ClipContents read(const QByteArray& clip, const char* name = "REC_2013_04_05_21_30_00.mp4") {
    QBuffer buffer;
    buffer.setData(clip);
    buffer.open(QIODevice::ReadOnly);
    return readClipContents(buffer, QLatin1StringView(name));
}

// A clip that becomes shorter after its size was asked for.
class ShrinkingClip : public QBuffer {
public:
    explicit ShrinkingClip(const QByteArray& clip) : m_before(clip.size()) {
        setData(clip.chopped(1));
        open(ReadOnly | Unbuffered);
    }
    qint64 size() const override { return m_isAsked++ == 0 ? m_before : QBuffer::size(); }

private:
    qint64 m_before;
    mutable int m_isAsked = 0;
};

QByteArray textClip(const QList<QByteArray>& samples) {
    Track track;
    track.handler = track.format = "text";
    track.durations = {1000};
    for (const QByteArray& text : samples)
        track.samples.append(textSample(text));
    return mp4({track});
}

QByteArray motionClip(const QList<QByteArray>& samples) {
    Track track;
    track.samples = samples;
    return mp4({track});
}

QByteArray rmc(const char* time, const char* place = "3724.5,N,12707.5,E") {
    return sentence(QByteArray("GPRMC,") + time + ",A," + place + ",27.0,359.5,311299,,");
}

// An AVI file of 60 s with a trailer.
QByteArray trailerClip(const QByteArray& lines) {
    const QByteArray strh = "vidsMJPG" + QByteArray(12, '\0') + littleEndian(1, 4) + littleEndian(15, 4) +
                            littleEndian(0, 4) + littleEndian(900, 4);
    const QByteArray strl = riffChunk("LIST", "strl" + riffChunk("strh", strh));
    return riffChunk("RIFF", "AVI " + riffChunk("LIST", "hdrl" + strl)) + "ETKLP1\n" + lines;
}

QString timesOf(const ClipRecord& record) {
    QStringList times;
    for (const RecordedFix& fix : record.fixes) {
        times << QString::number(fix.timeUs / 1000) + (fix.isValid() ? u' ' : u'!') +
                     (fix.hasClock() ? clockText(fix.clockMs, record.clock) : QString());
    }
    return times.join(u'|');
}

// "name:t,t,…/t,…": the points of each segment, by their longitudes.
class NotedTrack final : public TrackWriter {
public:
    QString text;

    void beginSegment(const QString& clip, ClipRecord::Clock) override { text += u'/' + clip + u':'; }
    void addPoint(const RecordedFix& fix) override { text += QString::number(fix.longitude) + u','; }
    bool finish() override { return true; }
};

// A fix a second from `second` on by the satellites, its number as longitude; none where that is negative.
ClipRecord drive(const char* start, std::optional<qint64> second, const QList<double>& places) {
    ClipRecord record;
    record.startByName = clipStart(QLatin1StringView(start));
    if (second)
        record.startBySatellitesMs = *second * 1000;
    for (qsizetype i = 0; i < places.size(); ++i) {
        RecordedFix fix;
        fix.timeUs = i * 1'000'000;
        if (places[i] >= 0) {
            fix.latitude = 1;
            fix.longitude = places[i];
        }
        record.fixes.push_back(fix);
    }
    return record;
}

} // namespace

class TestClipRecord : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leapSeconds_data() {
        QTest::addColumn<qint64>("gpsSeconds");
        QTest::addColumn<QString>("utc");
        QTest::newRow("the first day") << qint64(0) << "1980-01-06T00:00:00";
        QTest::newRow("the last before 2017") << qint64(1167264016) << "2016-12-31T23:59:59";
        QTest::newRow("the first of 2017") << qint64(1167264018) << "2017-01-01T00:00:00";
        QTest::newRow("today") << qint64(1447934418) << "2025-11-23T12:00:00";
    }
    void leapSeconds() {
        QFETCH(qint64, gpsSeconds);
        const auto utc = QDateTime::fromMSecsSinceEpoch(utcFromGpsMs(gpsSeconds * 1000), QTimeZone::utc());
        QTEST(utc.toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")), "utc");
    }

    void startsAndOffset() {
        const ClipRecord record = read(textClip({"$GPRMC,123000.00,V,,,,,,,050413,,", rmc("235959.25"),
                                                 rmc("000000.25").replace("311299", "010100").chopped(5)}))
                                      .record;
        QCOMPARE(timesOf(record), QString("0!2013-04-05T12:30:00.000Z|1000 1999-12-31T23:59:59.250Z|"
                                          "2000 2000-01-01T00:00:00.250Z"));
        QCOMPARE(clockText(record.startByName.toMSecsSinceEpoch(), ClipRecord::Clock::Camera),
                 QString("2013-04-05T21:30:00.000"));
        const ClipRecord camera =
            read(textClip({"$GPRMC,123001.5,A,3724.5,N,12707.5,E,0,0,050413,,"})).record;
        QCOMPARE(*cameraOffsetMs(camera), qint64(9 * 3600 * 1000 - 1500));
        QVERIFY(!cameraOffsetMs(read(textClip({rmc("120000")}), "clip.mp4").record));
    }

    // A receiver's two sentences of a fix are one; what says a thing anew is another.
    void halvesOfAFix() {
        const QByteArray gga = "$GPGGA,120000,3724.5,N,12707.5,E,1,08,1.1,30.5,M,,,,\r\n";
        const ClipRecord record = read(textClip({rmc("120000") + gga, gga + rmc("120001"), gga})).record;
        QCOMPARE(record.fixes.size(), size_t(3));
        for (size_t i = 0; i < 2; ++i) {
            QCOMPARE(record.fixes[i].altitudeM, 30.5);
            QCOMPARE(record.fixes[i].headingDeg, 359.5);
        }
        QVERIFY(std::isnan(record.fixes[2].speedKmh));
        const QByteArray lost = "$GPRMC,120002,V,,,,,,,050413,,\r\n$GPGGA,120002,,,,,0,00,,,M,,,,\r\n";
        QCOMPARE(read(textClip({rmc("120000"), lost})).record.fixes.size(), size_t(2));
    }

    // What no receiver measures isn't passed on: map programs refuse a whole track for it.
    void impossibleValues() {
        const auto drive = [](const char* knots, const char* heading) {
            return "$GPRMC,120000,A,3724.5,N,12707.5,E," + QByteArray(knots) + ',' + heading +
                   ",050413,,\r\n";
        };
        const ClipRecord record =
            read(textClip({drive("-27", "-5"), drive("1e300", "725"), drive("inf", "nan"),
                           "$GPGGA,120000,3724.5,N,12707.5,E,1,08,1.1,1e300,M,,,,\r\n", drive("0", "360")}))
                .record;
        QCOMPARE(record.fixes.size(), size_t(5));
        for (size_t i = 0; i < 4; ++i) {
            const RecordedFix& fix = record.fixes[i];
            QVERIFY(fix.isValid());
            QVERIFY(std::isnan(fix.speedKmh) && std::isnan(fix.headingDeg) && std::isnan(fix.altitudeM));
        }
        QCOMPARE(record.fixes[4].headingDeg + record.fixes[4].speedKmh, 360.0);
    }

    void itShrinks() {
        ShrinkingClip clip(textClip({rmc("120000")}));
        QCOMPARE(readClipContents(clip, {}).readError,
                 QStringLiteral("byte %1: the file has become shorter").arg(clip.data().size()));
    }

    // A length of all ones is unknown, in the file's header as in the track's.
    void unknownLength() {
        QByteArray clip = textClip({rmc("120000"), rmc("120001")});
        const QByteArray ones(4, '\xFF');
        clip.replace(clip.indexOf("mvhd") + 20, 4, ones);
        QCOMPARE(read(clip).lengthMs, qint64(60));
        clip.replace(clip.indexOf("mdhd") + 20, 4, ones);
        QCOMPARE(read(clip).lengthMs, qint64(0));
    }

    void trailer_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QString>("times");
        const QByteArray past = "x$235959,1,2,3,128,0,-64\n$000000,1,2,3,0,0,0\n";
        QTest::newRow("past midnight") << QByteArray("REC_2013_04_05_23_59_59.avi") << past
                                       << "0 2013-04-05T23:59:59.000|30050 2013-04-06T00:00:00.000";
        QTest::newRow("begins before midnight") << QByteArray("REC_2013_04_06_00_00_01.avi") << past
                                                << "0 2013-04-05T23:59:59.000|30050 2013-04-06T00:00:00.000";
        QTest::newRow("its own day") << QByteArray("clip.avi") << QByteArray("20130405$123000,0,2,3,0,0,0\n")
                                     << "0!2013-04-05T12:30:00.000";
        QTest::newRow("begins late") << QByteArray("EVT_2013_04_05_12_30_00.avi")
                                     << QByteArray("nothing,1,2,3,0,0,0\n") << "30050 ";
        QTest::newRow("begins late, by its folder")
            << QByteArray("/EVT_1/clip.avi") << QByteArray("nothing,1,2,3,0,0,0\n") << "30050 ";
        QTest::newRow("lower case means nothing")
            << QByteArray("mot_2013_04_05.avi") << QByteArray("nothing,1,2,3,0,0,0\n") << "0 ";
    }
    void trailer() {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, lines);
        const ClipContents contents = read(trailerClip(lines), name.constData());
        QTEST(timesOf(contents.record), "times");
        QCOMPARE(contents.lengthMs, qint64(60000));
        QVERIFY(!contents.record.startBySatellitesMs);
    }

    void whereItStops_data() {
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<QString>("said");
        const QByteArray good = gpsBlock({12, 30, 58, 13, 4, 5}, "ANE", 3724.5F, 12707.75F, 10);
        const QByteArray bad = gpsBlock({12, 30, 59, 13, 4, 5}, "XNE", 3724.5F, 12707.75F, 10);
        QTest::newRow("block") << gpsIndexClip({good, bad}) << "GPS block 2 at byte 540: no status letter";
        QTest::newRow("sentence") << textClip({rmc("120000"), rmc("120001").replace("27.0", "27.1")})
                                  << "text sample 2 at byte 162: wrong checksum";
        QTest::newRow("motion") << motionClip({motionPlace(1, 1), motionPlace(1, 1).chopped(1)})
                                << "motion sample 2 at byte 129: record cut short";
        QTest::newRow("place") << motionClip({motionPlace(91, 1), motionFix(0, 91, 1, 0, 0)})
                               << "motion sample 1 at byte 100: no valid position";
        QByteArray moved = motionClip({motionPlace(1, 1), motionPlace(1, 1)});
        const auto entry = moved.indexOf("stco") + 16;
        moved.replace(entry, 4, bigEndian(0x7FFFFFFF, 4));
        QTest::newRow("chunk")
            << moved << QStringLiteral("sample 2 at byte %1: no chunk in the file holds it").arg(entry);
        const QByteArray badPlace = gpsBlock({12, 30, 59, 13, 4, 5}, "ANE", 3760.0F, 12707.75F, 10);
        QTest::newRow("60 minutes in a block")
            << gpsIndexClip({good, badPlace}) << "GPS block 2 at byte 540: no valid position";
        const QByteArray small =
            bigEndian(56, 4) + gpsBlock({12, 30, 58, 13, 4, 5}, "ANE", 3724.5F, 12707.75F, 10, 8).mid(4, 52);
        QTest::newRow("long index") << gpsIndexClip(QList<QByteArray>(100001, small)) +
                                           box("skip", QByteArray(3 << 20, 'x'))
                                    << "GPS block 100,001 at byte 5,600,020: it and later ones aren't read";
        const auto plain = [](const char* name, const QByteArray& table, const char* said) {
            QTest::newRow(name) << mp4({}, {}, table) << said;
        };
        const QByteArray position = gps0Record(3724.5, 12707.5, 18, {13, 4, 5, 12, 30, 0, 0});
        plain("60 minutes in a table", box("gps0", gps0Record(3760, 12707.5, 18, {13, 4, 5, 12, 30, 0, 0})),
              "position 1 at byte 224: no valid position");
        plain("cut table", box("gps0", position + "abc"),
              "position 2 at byte 256: it isn't whole in the file");
        plain("long table", box("gps0", position.repeated(100001)),
              "position 100,001 at byte 3,200,224: it and later ones aren't read");
        plain("cut accelerations", box("gsen", "abcd"),
              "acceleration 2 at byte 227: it isn't whole in the file");
        const auto text = [](const char* name, const QByteArray& line, const char* said) {
            QTest::newRow(name) << textClip({line}) << said;
        };
        text("60 minutes in a sentence", rmc("120000", "3760.0,N,12707.5,E"),
             "text sample 1 at byte 100: no valid position");
        text("sensor line", "gsensori,0,1,2,3;gsensori,1,2,3",
             "text sample 1 at byte 100: invalid accelerations|"
             "text sample 1 at byte 100: invalid accelerations");
        plain("log without a clock", box("free", box("gps ", rmc("120000") + "[0]" + rmc("120001"))),
              "log line 1 at byte 232: no clock before it");
        plain("log with a bad clock", box("free", box("gps ", "[0]" + rmc("120000") + "[x]" + rmc("120001"))),
              "log line 2 at byte 294: its clock isn't a number");
        plain("no end mark", box("free", box("3gf ", QByteArray(10, '\0'))),
              "acceleration 2 at byte 242: the table has no end mark");
        plain("end mark alone", box("free", box("3gf ", QByteArray(10, '\0') + QByteArray(4, '\xFF'))), "");
        QTest::newRow("trailer")
            << trailerClip("x$123000,1,2\nx,1,2,3,0,0,0\nx$123000,1,2,3,0,0,z\nx$123001,91,2,3,0,0,0\n")
            << "trailer line 1 at byte 87: fewer than seven fields|"
               "trailer line 2 at byte 100: no valid clock|"
               "trailer line 3 at byte 114: a field isn't a number|"
               "trailer line 4 at byte 135: no valid position";
        QTest::newRow("cut file") << mp4({}, {}, box("free", QByteArray(2000, 'x'))).chopped(1234)
                                  << "\"free\" at byte 216: the file ends 1,234 bytes before it does";
        QTest::newRow("no index") << box("ftyp", "mp42") + box("mdat", QByteArray(9, 'x'))
                                  << "no index: the recording wasn't finished";
    }
    void whereItStops() {
        QFETCH(QByteArray, clip);
        const ClipContents contents = read(clip);
        QTEST((contents.record.stops + contents.faults).join(u'|'), "said");
    }

    // What is cut off could be digits.
    void cutWithinARecord_data() {
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<QString>("said");
        const QByteArray unchecked = rmc("120001").chopped(5);
        const auto log = [](const QByteArray& line) {
            return mp4({}, {}, box("free", box("gps ", "[0]" + rmc("120000") + "[1000]" + line)));
        };
        QTest::newRow("trailer") << trailerClip("x$123000,1,2,3,0,0,1")
                                 << "trailer line 1 at byte 87: no line end";
        QTest::newRow("log") << log(unchecked) << "log line 2 at byte 294: no line end and no checksum";
        // The second sample is the file's end, without its last bytes.
        const auto text = [](const char* name, const QByteArray& line, const char* said) {
            QByteArray clip = textClip({rmc("120000"), line});
            const qsizetype end = clip.size();
            clip.replace(clip.indexOf("stco") + 16, 4, bigEndian(end, 4));
            QTest::newRow(name) << clip + textSample(line).chopped(1)
                                << QStringLiteral(
                                       "sample 2 at byte %1: it isn't whole in the file|"
                                       "text sample 2 at byte %1: %2")
                                       .arg(end)
                                       .arg(QLatin1StringView(said));
        };
        text("sentence", unchecked, "no line end and no checksum");
        text("accelerations", "gsensori,4,512,1,2,30", "invalid accelerations");
    }
    void cutWithinARecord() {
        QFETCH(QByteArray, clip);
        const ClipRecord record = read(clip).record;
        QTEST(record.stops.join(u'|'), "said");
        QCOMPARE(record.fixes.size() + record.accelerations.size(), size_t(1));
    }

    // All of three hours, where the dashboard stops at 61 s.
    void threeHours() {
        Track track;
        track.samplesPerChunk = 100;
        for (int i = 0; i < 108000; ++i)
            track.samples.append(motionPlace(1, i * 1e-6));
        const ClipRecord record = read(mp4({track})).record;
        QCOMPARE(record.fixes.size(), size_t(108000));
        QCOMPARE(record.lengthUs, qint64(10'799'900'000));
        QVERIFY(record.stops.isEmpty());
    }

    void joining_data() {
        QTest::addColumn<QList<ClipRecord>>("clips");
        QTest::addColumn<QString>("track");
        QTest::addColumn<qint64>("leftOut");
        const char* first = "REC_2013_04_05_12_30_00";
        const char* second = "EVS_2013_04_05_12_30_04";
        const QList<double> six{0, 1, 2, 3, 4, 5};
        const QList<double> three{10, 11, 12};
        const auto row = [](const char* name, const QList<ClipRecord>& clips, const char* track,
                            int leftOut) {
            QTest::newRow(name) << clips << QString(track) << qint64(leftOut);
        };
        row("one after the other", {drive(first, 100, six), drive(second, 106, three)},
            "/0:0,1,2,3,4,5,/1:10,11,12,", 0);
        row("the satellites say that they overlap", {drive(first, 100, six), drive(first, 104, three)},
            "/0:0,1,2,3,4,5,/1:12,", 2);
        row("the names say so", {drive(first, {}, six), drive("EVS_2013_04_05_12_30_01", {}, three)},
            "/0:0,1,2,3,4,5,", 3);
        row("names are a second rough", {drive(first, {}, six), drive(second, {}, three)},
            "/0:0,1,2,3,4,5,/1:10,11,12,", 0);
        row("the clock was set back", {drive(first, 50'000, six), drive(second, 100, three)},
            "/0:0,1,2,3,4,5,/1:10,11,12,", 0);
        row("a lost fix", {drive(first, 100, {0, 1, -1, 3})}, "/0:0,1,/0:3,", 0);
        ClipRecord tunnel = drive(first, 100, {0, 1, 2, 3});
        tunnel.fixes[2].timeUs = 32'000'000;
        tunnel.fixes[3].timeUs = 33'000'000;
        row("a tunnel without records", {tunnel}, "/0:0,1,/0:2,3,", 0);
    }
    void joining() {
        QFETCH(QList<ClipRecord>, clips);
        TrackJoiner joiner;
        NotedTrack track;
        qint64 leftOut = 0;
        for (qsizetype i = 0; i < clips.size(); ++i)
            leftOut += joiner.add(clips[i], QString::number(i), track).leftOut;
        QTEST(track.text, "track");
        QTEST(leftOut, "leftOut");
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestClipRecord)
#include "test_clip_record.moc"
