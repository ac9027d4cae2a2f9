#include <QTest>

#include "sensors/sensor_track.h"
#include "support/fake_sensor_library.h"
#include "support/made_card.h"

namespace ql240 {
namespace {

QByteArray trailerLines(int count) {
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "2013-04-05$123000,37.5,127.25," + QByteArray::number(i % 200) + ",1,-2,3\r\n";
    return text;
}

QByteArray clipWithTrailer(const QByteArray& text) {
    return QByteArray(100, 'v') + "ETKLP1\n" + text;
}

} // namespace

class TestSensorTrack : public QObject {
    Q_OBJECT

private:
    MadeCard m_card;

    QString writeClip(const QString& name, const QByteArray& bytes) {
        m_card.put(name, bytes);
        return m_card.path(name);
    }

private Q_SLOTS:
    void trailerTimes_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("lines");
        QTest::addColumn<qint64>("durationMs");
        QTest::addColumn<int>("samples");
        QTest::addColumn<int>("stepMs");
        QTest::newRow("driving clip") << "REC_a.avi" << 600 << qint64(60000) << 600 << 100;
        QTest::newRow("event clip") << "EVT_a.avi" << 600 << qint64(60000) << 801 << 75;
        QTest::newRow("motion clip") << "MOT_a.avi" << 600 << qint64(60000) << 801 << 75;
        QTest::newRow("event clip of two lines") << "EVT_b.avi" << 2 << qint64(900) << 4 << 250;
        QTest::newRow("event clip of one line") << "EVT_c.avi" << 1 << qint64(900) << 2 << 500;
        QTest::newRow("half rounds up") << "REC_d.avi" << 40 << qint64(4080) << 40 << 105;
        QTest::newRow("just below half") << "REC_e.avi" << 40 << qint64(4079) << 40 << 104;
        QTest::newRow("past 32 bits") << "REC_f.avi" << 2 << qint64(4000000000) << 2 << 2000000050;
        QTest::newRow("no duration") << "REC_g.avi" << 4 << qint64(0) << 4 << 25;
    }
    void trailerTimes() {
        QFETCH(QString, name);
        QFETCH(int, lines);
        QFETCH(qint64, durationMs);
        QFETCH(int, samples);
        QFETCH(int, stepMs);
        const QString path = writeClip(name, clipWithTrailer(trailerLines(lines)));
        SensorTrack track;
        QVERIFY(appendTrailer(track, path, durationMs));
        QCOMPARE(int(track.size()), samples);
        for (int i = 0; i < samples; ++i)
            QCOMPARE(track[i].timeMs, qint32(quint32(i) * quint32(stepMs)));
        const int padding = samples - lines;
        for (int i = 0; i < lines; ++i)
            QCOMPARE(track[padding + i].speed, i % 200);
        for (int i = 0; i < padding; ++i)
            QCOMPARE(track[i].speed, 0);
    }

    void trailerFields_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<SensorSample>("expected");
        QTest::newRow("plain") << QByteArray("x$123000,37.409571,-127.5,72,128,-64,3")
                               << SensorSample{0, 128, -64, 3, 37.409571, -127.5, 72};
        QTest::newRow("not numbers") << QByteArray("x,north,,fast,a,b,1.5")
                                     << SensorSample{0, 0, 0, 0, 0.0, 0.0, 0};
        QTest::newRow("no decimal numbers")
            << QByteArray("x,nan,-inf,3,4,5,6") << SensorSample{0, 4, 5, 6, 0.0, 0.0, 3};
        QTest::newRow("wraps at 16 bits")
            << QByteArray("x,1,2,-1,40000,-32769,65536") << SensorSample{0, -25536, 32767, 0, 1.0, 2.0, -1};
        QTest::newRow("carriage return, more fields")
            << QByteArray("x,1,2,3,4,5,6,7,8\r") << SensorSample{0, 4, 5, 6, 1.0, 2.0, 3};
        QTest::newRow("empty fields are kept")
            << QByteArray(",,,,,,9") << SensorSample{0, 0, 0, 9, 0.0, 0.0, 0};
    }
    void trailerFields() {
        QFETCH(QByteArray, line);
        QFETCH(SensorSample, expected);
        SensorTrack track;
        QVERIFY(appendTrailer(track, writeClip("a.avi", clipWithTrailer(line)), 1000));
        QCOMPARE(track.size(), size_t(1));
        QVERIFY(track.front() == expected);
    }

    void whereTheMarkerCounts_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("found");
        QTest::addColumn<int>("samples");
        const QByteArray tail = "ETKLP1\n" + trailerLines(3);
        const auto inTail = [&](int before, qsizetype tailSize) {
            return QByteArray(before, 'v') + tail + QByteArray(tailSize - tail.size(), '\n');
        };
        QTest::newRow("first byte of the file") << "a.avi" << tail << false << 0;
        QTest::newRow("second byte of the file") << "a.avi" << 'v' + tail << true << 3;
        QTest::newRow("first byte of the searched tail") << "a.avi" << inTail(50000, 33006) << false << 0;
        QTest::newRow("second byte of the searched tail") << "a.avi" << inTail(50000, 33005) << true << 3;
        QTest::newRow("before the searched tail") << "a.avi" << inTail(50000, 33007) << false << 0;
        QTest::newRow("short file, searched whole") << "a.avi" << inTail(1, 33005) << true << 3;
        QTest::newRow("marker ends the file") << "a.avi" << QByteArray("vvETKLP1") << true << 0;
        QTest::newRow("no marker") << "a.avi" << QByteArray(200, 'v') << false << 0;
        QTest::newRow("empty file") << "a.avi" << QByteArray() << false << 0;
        QTest::newRow("no avi in the name") << "a.mp4" << 'v' + tail << false << 0;
        QTest::newRow("name in capitals") << "a.AVI" << 'v' + tail << false << 0;
        QTest::newRow("empty and short lines")
            << "a.avi"
            << "vETKLP1\n\r\n\nshort,1,2\n" + trailerLines(1) + "x,1,2,3,4,5" << true << 1;
    }
    void whereTheMarkerCounts() {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, found);
        QFETCH(int, samples);
        SensorTrack track;
        QCOMPARE(appendTrailer(track, writeClip(name, bytes), 60000), found);
        QCOMPARE(int(track.size()), samples);
    }

    void unreadableClips() {
        SensorTrack track;
        QVERIFY(!appendTrailer(track, m_card.path("missing.avi"), 1000));
        QVERIFY(QDir(m_card.drive()).mkdir("folder.avi"));
        QVERIFY(!appendTrailer(track, m_card.path("folder.avi"), 1000));
        QVERIFY(!appendTrailer(track, ".avi", 1000));
        QVERIFY(track.empty());
    }

    // A load appends: padding and times are worked out over all samples, the ones from before included.
    void loadingTwiceAppends() {
        const QString path = writeClip("EVT_twice.avi", clipWithTrailer(trailerLines(4)));
        SensorTrack track;
        QVERIFY(appendTrailer(track, path, 900));
        QCOMPARE(track.size(), size_t(6));
        QVERIFY(appendTrailer(track, path, 900));
        QCOMPARE(track.size(), size_t(14));
        QCOMPARE(track[1].timeMs, 71);
    }

    void library_data() {
        QTest::addColumn<qint64>("lastMs");
        QTest::addColumn<qint64>("lastAccelerationMs");
        QTest::addColumn<int>("samples");
        QTest::addColumn<int>("rounds");
        QTest::newRow("answers always") << qint64(1000000) << qint64(1000000) << 611 << 611;
        QTest::newRow("ends at 30 s") << qint64(30000) << qint64(1000000) << 301 << 302;
        QTest::newRow("accelerations end first") << qint64(30000) << qint64(200) << 3 << 4;
        QTest::newRow("never answers") << qint64(-1) << qint64(-1) << 0 << 1;
    }
    void library() {
        QFETCH(qint64, lastMs);
        QFETCH(qint64, lastAccelerationMs);
        QFETCH(int, samples);
        QFETCH(int, rounds);
        FakeSensorLibrary fake;
        fake.lastMs = lastMs;
        fake.lastAccelerationMs = lastAccelerationMs;
        SensorTrack track;
        QVERIFY(appendLibrarySamples(track, fake, "/card/REC_a.mp4"));
        QCOMPARE(fake.path, QByteArray("/card/REC_a.mp4"));
        QCOMPARE(int(track.size()), samples);
        QCOMPARE(int(fake.askedTimes.size()), rounds);
        QCOMPARE(fake.accelerationCalls, rounds);
        if (samples > 0)
            QCOMPARE(track.back().timeMs, (samples - 1) * 100);
    }

    void libraryHemispheres_data() {
        QTest::addColumn<char>("latitudeLetter");
        QTest::addColumn<char>("longitudeLetter");
        QTest::addColumn<double>("latitude");
        QTest::addColumn<double>("longitude");
        QTest::newRow("north east") << 'N' << 'E' << 37.409571 << 127.129253;
        QTest::newRow("south west") << 'S' << 'W' << -37.409571 << -127.129253;
        QTest::newRow("no letters") << '\0' << 'e' << -37.409571 << -127.129253;
    }
    void libraryHemispheres() {
        QFETCH(char, latitudeLetter);
        QFETCH(char, longitudeLetter);
        FakeSensorLibrary fake;
        fake.lastMs = 0;
        fake.answer = [&](qint64) {
            return FakeSensorLibrary::Answer{37409571, 127129253, latitudeLetter, longitudeLetter, 88, 128,
                                             -64,      3};
        };
        SensorTrack track;
        QVERIFY(appendLibrarySamples(track, fake, "a.mp4"));
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        QVERIFY((track.at(0) == SensorSample{0, 128, -64, 3, latitude, longitude, 88}));
    }

    void lookup_data() {
        QTest::addColumn<int>("samples");
        QTest::addColumn<int>("stepMs");
        QTest::addColumn<int>("timeMs");
        QTest::addColumn<int>("expectedMs");
        QTest::newRow("start") << 301 << 100 << 0 << 0;
        QTest::newRow("inside a step") << 301 << 100 << 199 << 100;
        QTest::newRow("last") << 301 << 100 << 30000 << 30000;
        QTest::newRow("behind the data") << 301 << 100 << 45000 << 30000;
        QTest::newRow("negative") << 301 << 100 << -1 << -1;
        QTest::newRow("step 0") << 301 << 0 << 50 << -1;
        QTest::newRow("negative step") << 301 << -100 << 50 << -1;
        QTest::newRow("empty") << 0 << 100 << 0 << -1;
        QTest::newRow("single sample") << 1 << 100 << 45000 << 0;
    }
    void lookup() {
        QFETCH(int, samples);
        QFETCH(int, stepMs);
        SensorTrack track(samples);
        for (int i = 0; i < samples; ++i)
            track[i].timeMs = i * stepMs;
        QFETCH(int, timeMs);
        QFETCH(int, expectedMs);
        QCOMPARE(sampleForTime(track, timeMs).timeMs, expectedMs);
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestSensorTrack)
#include "test_sensor_track.moc"
