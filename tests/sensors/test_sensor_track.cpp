#include <QTest>

#include "sensors/sensor_track.h"
#include "support/fake_sensor_library.h"
#include "support/made_card.h"

using namespace ql240;
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
    // Event and motion clips are padded in front; half a millisecond rounds up; times wrap at 32 bits.
    void trailerTimes() {
        const std::tuple<const char*, int, qint64, int, int> rows[] = {
            {"REC_a.avi", 600, 60000, 600, 100},
            {"EVT_a.avi", 600, 60000, 801, 75},
            {"MOT_b.avi", 2, 900, 4, 250},
            {"EVT_c.avi", 1, 900, 2, 500},
            {"REC_d.avi", 40, 4080, 40, 105},
            {"REC_e.avi", 40, 4079, 40, 104},
            {"REC_f.avi", 2, 4000000000, 2, 2000000050}};
        for (const auto& [name, lines, durationMs, samples, stepMs] : rows) {
            SensorTrack track;
            QVERIFY(appendTrailer(track, writeClip(name, clipWithTrailer(trailerLines(lines))), durationMs));
            QCOMPARE(int(track.size()), samples);
            for (int i = 0; i < samples; ++i) {
                QCOMPARE(track[i].timeMs, qint32(quint32(i) * quint32(stepMs)));
                QCOMPARE(track[i].speed, std::max(i - (samples - lines), 0) % 200);
            }
        }
    }

    void trailerFields() {
        const std::pair<const char*, SensorSample> rows[] = {
            {"x$123000,37.409571,-127.5,72,128,-64,3", {0, 128, -64, 3, 37.409571, -127.5, 72}},
            {"x,north,,fast,a,b,1.5", {0, 0, 0, 0, 0.0, 0.0, 0}},
            {"x,nan,-inf,3,4,5,6", {0, 4, 5, 6, 0.0, 0.0, 3}},
            {"x,1,2,-1,40000,-32769,65536", {0, -25536, 32767, 0, 1.0, 2.0, -1}}, // wraps at 16 bits
            {"x,1,2,3,4,5,6,7,8\r", {0, 4, 5, 6, 1.0, 2.0, 3}},
            {",,,,,,9", {0, 0, 0, 9, 0.0, 0.0, 0}},
        };
        for (const auto& [line, expected] : rows) {
            SensorTrack track;
            QVERIFY(appendTrailer(track, writeClip("a.avi", clipWithTrailer(line)), 1000));
            QVERIFY2(track.size() == 1 && track.front() == expected, line);
        }
    }

    void whereTheMarkerCounts() {
        constexpr int kNoMarker = -1;
        const QByteArray tail = "ETKLP1\n" + trailerLines(3);
        const auto inTail = [&](qsizetype tailSize) {
            return QByteArray(50000, 'v') + tail + QByteArray(tailSize - tail.size(), '\n');
        };
        const QByteArray shortLines = "vETKLP1\n\r\n\nshort,1,2\n" + trailerLines(1) + "x,1,2,3,4,5";
        const std::tuple<const char*, QByteArray, int> rows[] = {
            {"a.avi", tail, kNoMarker}, // the file's first byte doesn't count
            {"a.avi", 'v' + tail, 3},
            {"a.avi", inTail(33006), kNoMarker}, // nor does that of the searched tail
            {"a.avi", inTail(33005), 3},
            {"a.avi", "vvETKLP1", 0},
            {"a.avi", "", kNoMarker},
            {"a.mp4", 'v' + tail, kNoMarker},
            {"a.AVI", 'v' + tail, kNoMarker},
            {"a.avi", shortLines, 1}};
        for (const auto& [name, bytes, samples] : rows) {
            SensorTrack track;
            QCOMPARE(appendTrailer(track, writeClip(name, bytes), 60000), samples != kNoMarker);
            QCOMPARE(int(track.size()), std::max(samples, 0));
        }
    }

    void unreadableClips() {
        SensorTrack track;
        QVERIFY(QDir(m_card.drive()).mkdir("folder.avi"));
        for (const char* name : {"missing.avi", "folder.avi"})
            QVERIFY2(!appendTrailer(track, m_card.path(name), 1000), name);
        QVERIFY(!appendTrailer(track, ".avi", 1000));
    }

    // Loading appends; padding and times then count all samples, including the earlier ones.
    void loadingTwiceAppends() {
        const QString path = writeClip("EVT_twice.avi", clipWithTrailer(trailerLines(4)));
        SensorTrack track;
        for (const size_t samples : {6, 14}) {
            QVERIFY(appendTrailer(track, path, 900));
            QCOMPARE(track.size(), samples);
        }
        QCOMPARE(track[1].timeMs, 71);
    }

    // Each round asks for position and acceleration; the first without an answer is the last.
    void library() {
        const std::array<int, 4> rows[] = {
            {1000000, 1000000, 611, 611}, {30000, 1000000, 301, 302}, {30000, 200, 3, 4}, {-1, -1, 0, 1}};
        for (const auto& [lastMs, lastAccelerationMs, samples, rounds] : rows) {
            FakeSensorLibrary fake;
            fake.lastMs = lastMs;
            fake.lastAccelerationMs = lastAccelerationMs;
            SensorTrack track;
            QVERIFY(appendLibrarySamples(track, fake, "/card/REC_a.mp4"));
            QCOMPARE(fake.path, QByteArray("/card/REC_a.mp4"));
            QCOMPARE(int(track.size()), samples);
            QCOMPARE(int(fake.askedTimes.size()), rounds);
            QCOMPARE(fake.accelerationCalls, rounds);
            QVERIFY(track.empty() || track.back().timeMs == (samples - 1) * 100);
        }
    }

    void libraryHemispheres() {
        for (const auto& [north, east, sign] : {std::tuple('N', 'E', 1), {'S', 'W', -1}, {'\0', 'e', -1}}) {
            FakeSensorLibrary fake;
            fake.lastMs = 0;
            const FakeSensorLibrary::Answer answer{37409571, 127129253, north, east, 88, 128, -64, 3};
            fake.answer = [&](qint64) { return answer; };
            SensorTrack track;
            QVERIFY(appendLibrarySamples(track, fake, "a.mp4"));
            QVERIFY((track.at(0) == SensorSample{0, 128, -64, 3, sign * 37.409571, sign * 127.129253, 88}));
        }
    }

    void lookup() {
        const std::array<int, 4> rows[] = {
            {301, 100, 0, 0},         {301, 100, 199, 100}, {301, 100, 30000, 30000},
            {301, 100, 45000, 30000}, {301, 100, -1, -1},   {301, 0, 50, -1},
            {301, -100, 50, -1},      {0, 100, 0, -1},      {1, 100, 45000, 0}};
        for (const auto& [samples, stepMs, timeMs, expectedMs] : rows) {
            SensorTrack track(samples);
            for (int i = 0; i < samples; ++i)
                track[i].timeMs = i * stepMs;
            QCOMPARE(sampleForTime(track, timeMs).timeMs, expectedMs);
        }
    }
};

QTEST_GUILESS_MAIN(TestSensorTrack)
#include "test_sensor_track.moc"
