// Every format that is read, with what the sensor library's calls answer for it, and the timing of tracks.
#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "clips/formats/sensor_file_library.h"
#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;

struct Answer {
    qint64 timeMs;
    qint32 latitude; // millionths, south and west negative
    qint32 longitude;
    qint32 speed;
    qint16 x;
    qint16 y;
    qint16 z;
};

QByteArray toText(const Answer& a) {
    return QByteArray::number(a.timeMs) + ": " + QByteArray::number(a.latitude) + ' ' +
           QByteArray::number(a.longitude) + ' ' + QByteArray::number(a.speed) + ' ' +
           QByteArray::number(a.x) + ' ' + QByteArray::number(a.y) + ' ' + QByteArray::number(a.z);
}

// What the library says for a time, as text; "none" where both calls say that there is nothing.
QByteArray ask(SensorFileLibrary& library, SensorLibrary::Handle handle, qint64 timeMs) {
    Answer a{timeMs, 0, 0, 0, 0, 0, 0};
    std::int8_t north = 0;
    std::int8_t east = 0;
    const int placed =
        library.getLatLonSpeed(handle, timeMs, &a.latitude, &a.longitude, &north, &east, &a.speed);
    const int measured = library.getAccXYZ(handle, timeMs, &a.x, &a.y, &a.z);
    if (placed == 0 && measured == 0)
        return QByteArray::number(timeMs) + ": none";
    a.latitude *= north == 'S' ? -1 : 1;
    a.longitude *= east == 'W' ? -1 : 1;
    return toText(a);
}

SensorLibrary::Handle open(SensorFileLibrary& library, const QByteArray& clip) {
    QBuffer buffer;
    buffer.setData(clip);
    buffer.open(QIODevice::ReadOnly);
    return library.readClip(buffer);
}

QByteArray clipNamed(const QByteArray& name) {
    for (const NamedClip& clip : clipsOfAllFormats())
        if (clip.name == name)
            return clip.bytes;
    return {};
}

// Ten samples of 100 ms whose number is their speed in m/s.
Track countingTrack() {
    Track track;
    track.durations = {100};
    for (int i = 0; i < 10; ++i)
        track.samples.append(motionFix(3, 1, 1, float(i), 0));
    return track;
}

// A second's clock as the record has it; none for a negative second.
QList<int> clockOf(int second) {
    if (second < 0)
        return {0, 0, 0, 0, 0, 0, 0};
    return {13 + second / 86400, 4, 5, second / 3600 % 24, second / 60 % 60, second % 60, 0};
}

// Records with these clocks whose speeds count up from 1, in a clip of a minute.
QByteArray tableClip(const QList<int>& seconds) {
    QByteArray records;
    for (qsizetype i = 0; i < seconds.size(); ++i)
        records += gps0Record(3724.5, 12707.5, int(i) + 1, clockOf(seconds[i]));
    return mp4({}, {}, box("gps0", records));
}

QByteArray logClip(const QList<int>& seconds) {
    QByteArray log;
    for (qsizetype i = 0; i < seconds.size(); ++i) {
        log += '[' + QByteArray::number(1365165000000 + seconds[i] * qint64(1000)) + ']' +
               sentence("GPRMC,123000,A,3724.5,N,12707.5,E," + QByteArray::number((double(i) + 1) / 1.852));
    }
    return mp4({}, {}, box("free", box("gps ", log)));
}

qint32 speedAt(SensorFileLibrary& library, SensorLibrary::Handle handle, qint64 timeMs) {
    qint32 latitude = 0, longitude = 0, speed = -1;
    std::int8_t letter = 0;
    library.getLatLonSpeed(handle, timeMs, &latitude, &longitude, &letter, &letter, &speed);
    return speed;
}

} // namespace

class TestSensorFormats : public QObject {
    Q_OBJECT

private:
    // Rows of text samples: sentences and sensor lines.
    static void addLines() {
        const auto text = [](const char* name, const QByteArray& line, const char* expected) {
            Track track;
            track.handler = track.format = "text";
            track.samples = {textSample(line)};
            QTest::newRow(name) << mp4({track}) << expected;
        };
        const QByteArray good = "GPRMC,123000.00,A,3724.57426,N,12707.75518,E,27.0,90.5,050413,,";
        const QByteArray place = "3724.57426,N,12707.75518,E";
        const char* here = "0: 37409571 127129253 50 0 0 0";
        const char* hereUnmoved = "0: 37409571 127129253 0 0 0 0";
        const char* nowhere = "0: 0 0 0 0 0 0";
        text("without a checksum", '$' + good, here);
        text("another number in it", sentence(good).replace("27.0", "28.0"), "0: none");
        text("checksum cut off", sentence(good).chopped(4), "0: none");
        text("no status", "$GPRMC,123000,," + place + ",27.0", here);
        text("no speed", "$GPRMC,123000,A," + place + ',', hereUnmoved);
        text("a field missing", "$GPRMC,123000,A," + place, "0: none");
        text("60 minutes", "$GPRMC,123000,A,3760.0,N,12707.75518,E,27.0", nowhere);
        text("wrong letter", "$GPRMC,123000,A,3724.57426,n,12707.75518,E,27.0", nowhere);
        text("no numbers", "$GPRMC,123000,A,nan,N,inf,E,1e999", nowhere);
        text("GGA without a fix", "$GNGGA,123000," + place + ",0,08", nowhere);
        text("other sentence", "$GPGLL," + place + ",123000,A,x", "0: none");
        text("sensor line, scale 0", "gsensori,0,1,2,3", "0: none");
        text("sensor line, no numbers", "gsensori,512,a,b,c", "0: none");
        text("sensor line, too short", "gsensori,1,2,3", "0: none");
    }

private Q_SLOTS:
    void formats_data() {
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<qint64>("lastMs");
        QTest::newRow("motion") << clipNamed("motion")
                                << QList<Answer>{{0, 0, 0, 0, 128, 0, -128},
                                                 {99, 0, 0, 0, 128, 0, -128},
                                                 {100, -33856800, 151215300, 36, 128, 0, -128},
                                                 {200, -33856800, 151215300, 36, 1, -1, 64},
                                                 {300, 0, 0, 0, 1, -1, 64},
                                                 {400, 51500000, -127500, 18, 1, -1, 64}}
                                << qint64(1400);
        QTest::newRow("places, speed from the way")
            << clipNamed("place")
            << QList<Answer>{{0, 37500000, 127000000, 40, 0, 0, 0},
                             {1500, 37500100, 127000000, 40, 0, 13, 0},
                             {4000, 37500300, 127000000, 40, 0, 39, 0}}
            << qint64(4000);
        QTest::newRow("index of blocks") << clipNamed("gps-index")
                                         << QList<Answer>{{0, 37408333, 127129167, 19, 0, 0, 0},
                                                          {1000, -33850000, -151208333, 93, 0, 0, 0},
                                                          {2000, 0, 0, 0, 0, 0, 0},
                                                          {4999, 0, 0, 0, 0, 0, 0},
                                                          {5000, 37412500, 127125000, 0, 0, 0, 0}}
                                         << qint64(6000);
        QTest::newRow("text") << clipNamed("text")
                              << QList<Answer>{{0, 37409571, 127129253, 50, 0, 0, 0},
                                               {1000, 0, 0, 0, -17, -3, 25},
                                               {2000, -33856800, -151215300, 50, -17, -3, 25}}
                              << qint64(3000);
        QTest::newRow("subtitle") << clipNamed("subtitle")
                                  << QList<Answer>{{0, 37409571, 127129253, 50, -17, -3, 25}} << qint64(1000);
        QTest::newRow("free box") << clipNamed("free-log")
                                  << QList<Answer>{{0, 0, 0, 0, 128, -64, 3},
                                                   {100, 0, 0, 0, -32768, 32767, 0},
                                                   {250, 37409571, 127129253, 50, -32768, 32767, 0},
                                                   {1250, -33856800, -151215300, 1, -32768, 32767, 0},
                                                   {2250, 0, 0, 0, -32768, 32767, 0}}
                                  << qint64(3250);
        const QList<Answer> plain{{0, 37409571, 127129253, 50, 128, -128, 8},
                                  {200, 37409571, 127129253, 50, -1024, 1016, 0},
                                  {1000, -33856800, -151215300, 7, -1024, 1016, 0},
                                  {2000, 0, 0, 0, -1024, 1016, 0}};
        QTest::newRow("plain boxes") << clipNamed("gps0-mp4") << plain << qint64(3000);
        QTest::newRow("plain chunks") << clipNamed("gps0-avi") << plain << qint64(3000);
    }
    void formats() {
        QFETCH(QByteArray, clip);
        QFETCH(QList<Answer>, answers);
        QFETCH(qint64, lastMs);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, clip);
        QVERIFY(handle != 0);
        for (const Answer& answer : answers)
            QCOMPARE(ask(library, handle, answer.timeMs), toText(answer));
        QVERIFY(ask(library, handle, lastMs) != QByteArray::number(lastMs) + ": none");
        QCOMPARE(ask(library, handle, lastMs + 1), QByteArray::number(lastMs + 1) + ": none");
        QCOMPARE(ask(library, handle, -1), QByteArray("-1: none"));
        QCOMPARE(ask(library, handle + 1, 0), QByteArray("0: none"));
    }

    // Times and offsets of samples, in all forms of the tables.
    void tables_data() {
        QTest::addColumn<Track>("track");
        QTest::addColumn<qint64>("shiftMs");
        Track track = countingTrack();
        QTest::newRow("a chunk a sample") << track << qint64(0);
        track.samplesPerChunk = 4;
        QTest::newRow("chunks of unlike length") << track << qint64(0);
        track.wideOffsets = true;
        QTest::newRow("64-bit offsets") << track << qint64(0);
        track.sizeBits = 8;
        QTest::newRow("sizes of 8 bits") << track << qint64(0);
        track.sizeBits = 16;
        QTest::newRow("sizes of 16 bits") << track << qint64(0);
        track = countingTrack();
        track.emptyEdit = 250;
        QTest::newRow("empty edit") << track << qint64(250);
        track.mediaStart = 150;
        QTest::newRow("empty edit and media start") << track << qint64(100);
        track.emptyEdit = 0;
        QTest::newRow("media start") << track << qint64(-150);
        track = countingTrack();
        track.timescale = 30000;
        track.durations = {3000};
        QTest::newRow("other timescale") << track << qint64(0);
    }
    void tables() {
        QFETCH(Track, track);
        QFETCH(qint64, shiftMs);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, mp4({track}));
        QVERIFY(handle != 0);
        for (int i = 0; i < 10; ++i) {
            const qint64 start = 100 * i + shiftMs;
            const auto kmh = static_cast<qint32>(i * 3.6 + 0.5);
            if (start >= 0) {
                QCOMPARE(speedAt(library, handle, start), kmh);
                QCOMPARE(speedAt(library, handle, start + 99), kmh);
            }
        }
        QCOMPARE(speedAt(library, handle, 1900 + shiftMs), 32);
        QCOMPARE(speedAt(library, handle, 1901 + shiftMs), -1);
    }

    void clocks_data() {
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<QList<int>>("times");
        const QList<int> everySecond{0, 1000, 2000, 3000, 4000};
        const QList<int> tunnel{0, 1000, 2000, 38000, 39000};
        QTest::newRow("records missing") << tableClip({0, 1, 2, 38, 39}) << tunnel;
        QTest::newRow("records without a clock") << tableClip({0, -1, -1, 38, 39}) << tunnel;
        QTest::newRow("a clock that stands, then is right") << tableClip({0, 1, 1, 38, 39}) << tunnel;
        QTest::newRow("a clock that stands") << tableClip({7, 7, 7, 7, 7}) << everySecond;
        QTest::newRow("set by years, set back") << tableClip({0, 86400, 86401, 1, 2}) << everySecond;
        QTest::newRow("set by more than the clip has") << tableClip({0, 1, 40, 41, 75}) << everySecond;
        // 36 s are a tunnel in a clip of 100 s, until its end shows that all is too long.
        QList<int> late{0, 1, 38};
        QList<int> seconds{0, 1000, 2000};
        for (int i = 3; i < 60; ++i) {
            late << 36 + i;
            seconds << i * 1000;
        }
        const QByteArray minute = bigEndian(1000, 4) + bigEndian(60000, 4);
        QTest::newRow("set by more than a longer clip has")
            << tableClip(late << 150).replace(minute, bigEndian(1000, 4) + bigEndian(100000, 4))
            << seconds + QList<int>{60000};
        QTest::newRow("two a second") << tableClip({0, 0, 1, 1, 2}) << QList<int>{0, 500, 1000, 1500, 2000};
        QTest::newRow("log: lines missing") << logClip({0, 1, 2, 38, 39}) << tunnel;
        QTest::newRow("log: set by years, set back") << logClip({0, 86400, 86401, 1, 2}) << everySecond;
    }
    void clocks() {
        QFETCH(QByteArray, clip);
        QFETCH(QList<int>, times);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, clip);
        for (int i = 0; i < times.size(); ++i) {
            QCOMPARE(speedAt(library, handle, times[i]), i + 1);
            QCOMPARE(speedAt(library, handle, times[i] - 1), i == 0 ? -1 : i);
        }
    }

    // A sample isn't there before its time, not even for a part of a millisecond.
    void partsOfAMillisecond() {
        Track track;
        track.handler = track.format = "text";
        track.timescale = 30;
        track.durations = {1};
        track.samples = {"", "", "", "", textSample("gsensori,1,1,0,0")};
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, mp4({track}));
        QCOMPARE(ask(library, handle, 133), QByteArray("133: 0 0 0 0 0 0"));
        QCOMPARE(ask(library, handle, 134), QByteArray("134: 0 0 0 128 0 0"));
    }

    // What one record says at the start.
    void records_data() {
        QTest::addColumn<QByteArray>("clip");
        QTest::addColumn<QString>("expected");
        const auto motion = [](const char* name, const QByteArray& record, const char* expected) {
            Track track;
            track.samples = {record};
            QTest::newRow(name) << mp4({track}) << expected;
        };
        const double nan = std::nan("");
        const float nanf = std::nanf("");
        motion("half counts go away from zero", motionTurn() + motionAcceleration(2.2F, -2.2F, 0),
               "0: 0 0 0 29 -29 0");
        motion("accelerations saturate", motionAcceleration(1e9F, -1e30F, 0), "0: 0 0 0 32767 -32768 0");
        motion("speeds saturate", motionFix(3, 1, 1, 3e38F, 0), "0: 1000000 1000000 2147483647 0 0 0");
        motion("speed isn't a number", motionFix(3, 1, 1, nanf, 0), "0: 1000000 1000000 0 0 0 0");
        motion("fix isn't a number", motionFix(3, nan, 1, 5, 0), "0: 0 0 0 0 0 0");
        motion("91 degrees", motionFix(3, 91, 1, 5, 0), "0: 0 0 0 0 0 0");
        motion("-181 degrees", motionFix(3, 1, -181, 5, 0), "0: 0 0 0 0 0 0");
        motion("corner of the earth", motionFix(3, -90, -180, 5, 0), "0: -90000000 -180000000 18 0 0 0");
        motion("acceleration isn't a number", motionAcceleration(nanf, 0, 0), "0: none");
        motion("a record cut short", motionPlace(1, 1).chopped(1), "0: none");
        motion("unknown type", QByteArray::fromHex("00000800") + motionPlace(1, 1), "0: none");
        QTest::newRow("last candidate place in a block")
            << gpsIndexClip({gpsBlock({12, 30, 58, 13, 4, 5}, "ANE", 3724.5F, 12707.75F, 10, 472)})
            << "0: 37408333 127129167 19 0 0 0";
        addLines();
    }
    void records() {
        QFETCH(QByteArray, clip);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, clip);
        QTEST(QString::fromLatin1(ask(library, handle, 0)), "expected");
    }

    // Speeds from repeated positions and across gaps: a receiver with one fix a second in a track of ten
    // records.
    void speedFromTheWay() {
        Track track;
        track.durations = {100};
        for (int i = 0; i < 60; ++i) {
            const bool tunnel = i >= 30 && i < 40;
            track.samples.append(tunnel ? motionFix(0, 0, 0, std::nanf(""), 0)
                                        : motionPlace(37.5 + (i / 10) * 0.0001, 127.0));
        }
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = open(library, mp4({track}));
        for (int i = 0; i < 60; ++i)
            QCOMPARE(speedAt(library, handle, i * 100), i >= 30 && i < 40 ? 0 : 40);
    }

    void handlesAndFiles() {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("REC_\u00e9.mp4"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(clipNamed("motion"));
        file.close();
        SensorFileLibrary library;
        const SensorLibrary::Handle first = library.getInformationData(path.toLocal8Bit().constData());
        QVERIFY(first != 0);
        std::array<char, SensorLibrary::kCreateTimeSize> text{};
        QVERIFY(library.getCreateTime(first, text.data()) != 0);
        QCOMPARE(QByteArray(text.data()), QByteArray("2013-04-05-12-30-00"));
        const SensorLibrary::Handle second = library.getInformationData(path.toLocal8Bit().constData());
        QCOMPARE(ask(library, first, 0), QByteArray("0: none"));
        QVERIFY(ask(library, second, 0) != QByteArray("0: none"));
        QCOMPARE(library.getInformationData(folder.path().toLocal8Bit().constData()),
                 SensorLibrary::Handle(0));
        QCOMPARE(library.getInformationData("/nowhere/a.mp4"), SensorLibrary::Handle(0));
        QCOMPARE(library.getInformationData(""), SensorLibrary::Handle(0));
        QCOMPARE(ask(library, second, 0), QByteArray("0: none"));
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestSensorFormats)
#include "test_sensor_formats.moc"
