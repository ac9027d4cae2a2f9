// Clips that are cut, damaged or lie about their structure: the reader ends soon, with data that make sense
// or none, and never reads more than the file has.
#include <QElapsedTimer>
#include <QIODevice>
#include <QTest>

#include "clips/formats/sensor_file_library.h"
#include "clips/record_reader.h"
#include "platform/limits.h"
#include "support/sensor_clips.h"

namespace ql240 {
namespace {

using namespace madeclips;

constexpr qint64 kGigabyte = 1 << 30;
constexpr qint64 kSlack = 64 * 1024;

// A clip with a hole of zeros in it; counts what is read and fails from some byte on.
class HollowDevice : public QIODevice {
public:
    explicit HollowDevice(const Mp4& clip) : m_clip(clip) { open(ReadOnly | Unbuffered); }
    explicit HollowDevice(const QByteArray& clip) : HollowDevice(Mp4{clip, 0, {}}) {}

    qint64 bytesRead = 0;
    qint64 largestRead = 0;
    qint64 failsAfter = std::numeric_limits<qint64>::max();

    // Enough for what makes no end.
    void shorten() { m_clip.picture = std::min<qint64>(m_clip.picture, 8 << 20); }

    qint64 size() const override { return m_clip.before.size() + m_clip.picture + m_clip.after.size(); }

protected:
    qint64 readData(char* to, qint64 wanted) override {
        largestRead = std::max(largestRead, wanted);
        if (bytesRead >= failsAfter)
            return -1;
        const qint64 count = std::min({wanted, size() - pos(), failsAfter - bytesRead});
        std::fill_n(to, count, '\0');
        copy(m_clip.before, 0, to, count);
        copy(m_clip.after, m_clip.before.size() + m_clip.picture, to, count);
        bytesRead += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    void copy(const QByteArray& part, qint64 start, char* to, qint64 count) const {
        const qint64 first = std::max(start, pos());
        const qint64 end = std::min(start + part.size(), pos() + count);
        if (first < end)
            std::copy_n(part.constData() + (first - start), end - first, to + (first - pos()));
    }

    Mp4 m_clip;
};

QByteArray hexBytes(const char* hex) {
    return QByteArray::fromHex(hex);
}

QByteArray fullTable(const char* type, quint32 count, const QByteArray& entries) {
    return box(type, bigEndian(0, 4) + bigEndian(count, 4) + entries);
}

// The header of a movie or a track, which counts so many ticks a second.
QByteArray header(const char* type, quint32 timescale) {
    return box(type, QByteArray(12, '\0') + bigEndian(timescale, 4) + QByteArray(8, '\0'));
}

// A motion record at byte 8 and a motion track whose tables are as given.
QByteArray clipWithTables(const QByteArray& tables, quint32 timescale = 1000, const QByteArray& edits = {}) {
    const QByteArray description = fullTable("stsd", 1, box("camm", QByteArray(8, '\0')));
    const QByteArray mdhd = header("mdhd", timescale);
    const QByteArray hdlr = box("hdlr", QByteArray(8, '\0') + "camm" + QByteArray(12, '\0'));
    const QByteArray stbl = box("stbl", description + tables);
    return box("mdat", motionPlace(1, 1)) +
           box("moov",
               header("mvhd", timescale) + box("trak", edits + box("mdia", mdhd + hdlr + box("minf", stbl))));
}

QByteArray sizes(quint32 size, quint32 count) {
    return box("stsz", bigEndian(0, 4) + bigEndian(size, 4) + bigEndian(count, 4));
}

QByteArray nested(const char* type, int depth) {
    QByteArray bytes;
    for (int i = 0; i < depth; ++i)
        bytes += bigEndian(8 * (depth - i), 4) + type;
    return bytes;
}

} // namespace

class TestSensorHostile : public QObject {
    Q_OBJECT

private:
    // Reads the clip, checks whatever it answers and returns whether it has data.
    bool readAll(HollowDevice& device) {
        SensorFileLibrary library;
        QElapsedTimer timer;
        timer.start();
        const SensorLibrary::Handle handle = library.readClip(device);
        checkAnswers(library, handle);
        [&] {
            QVERIFY(device.bytesRead <= std::min<qint64>(device.size() + kSlack, limits::kSensorBytes));
            QVERIFY(device.largestRead <= kSlack);
            QVERIFY2(timer.elapsed() < 10000, "took more than ten seconds");
        }();
        checkRecord(device);
        return handle != 0;
    }

    // The whole record may take what the file has, and no byte twice.
    void checkRecord(HollowDevice& device) {
        device.bytesRead = 0;
        device.shorten();
        const ClipRecord record =
            readClipContents(device, QStringLiteral("EVT_2013_04_05_12_30_00.avi")).record;
        QVERIFY(device.bytesRead <= device.size() + kSlack);
        QVERIFY(device.largestRead <= kSlack);
        QVERIFY(record.fixes.size() + record.accelerations.size() <= limits::kRecordRecords);
        QVERIFY(record.stops.size() <= limits::kReportedStops);
    }

    void checkAnswers(SensorFileLibrary& library, SensorLibrary::Handle handle) {
        qint32 latitude = 0, longitude = 0, speed = 0;
        std::int8_t north = 0, east = 0;
        for (qint64 t = 0; t <= 61000; t += 100) {
            if (library.getLatLonSpeed(handle, t, &latitude, &longitude, &north, &east, &speed) == 0)
                break;
            QVERIFY(latitude >= 0 && latitude <= 90000000 && longitude >= 0 && longitude <= 180000000);
            QVERIFY((north == 'N' || north == 'S') && (east == 'E' || east == 'W'));
        }
    }

private Q_SLOTS:
    void damaged_data() {
        QTest::addColumn<QByteArray>("clip");
        for (const NamedClip& clip : clipsOfAllFormats())
            QTest::newRow(clip.name.constData()) << clip.bytes;
    }
    void damaged() {
        QFETCH(QByteArray, clip);
        for (qsizetype i = 0; i < clip.size(); ++i) {
            HollowDevice cut(clip.first(i));
            readAll(cut);
            HollowDevice failing(clip);
            failing.failsAfter = i;
            readAll(failing);
            for (const char flip : {'\x01', '\x80', '\xFF'}) {
                QByteArray flipped = clip;
                flipped[i] = static_cast<char>(flipped[i] ^ flip);
                HollowDevice device(flipped);
                readAll(device);
            }
            if (QTest::currentTestFailed())
                QFAIL(QByteArray("at byte " + QByteArray::number(i)).constData());
        }
    }

    void lies_data() {
        QTest::addColumn<Mp4>("clip");
        QTest::addColumn<bool>("hasData");
        const auto row = [](const char* name, const QByteArray& bytes, bool hasData = false) {
            QTest::newRow(name) << Mp4{bytes, kGigabyte, {}} << hasData;
        };
        const QByteArray oneChunk = fullTable("stsc", 1, hexBytes("00000001 FFFFFFFF 00000001"));
        const QByteArray times = fullTable("stts", 1, hexBytes("FFFFFFFF 00000001"));
        const QByteArray chunks = fullTable("stco", 1, bigEndian(8, 4));
        row("nothing but zeros", {});
        row("size 7", hexBytes("00000007") + "moov");
        row("64-bit size 15", hexBytes("00000001") + "moov" + bigEndian(15, 8));
        row("64-bit size 2^64-1", hexBytes("00000001") + "moov" + QByteArray(8, '\xFF'));
        row("size 0 inside", box("moov", hexBytes("00000000") + "trak" + hexBytes("00000000") + "mdia"));
        row("past the end", bigEndian(0xFFFFFFFF, 4) + "moov" + bigEndian(0xFFFFFFFF, 4) + "trak");
        row("nested without end", box("moov", box("trak", box("mdia", nested("minf", 100000)))));
        row("billions of samples", clipWithTables(times + oneChunk + chunks + sizes(28, 0xFFFFFFFF)), true);
        row("billions of empty samples", clipWithTables(times + oneChunk + chunks + sizes(0, 0xFFFFFFFF)));
        row("a sample of 4 GB", clipWithTables(times + oneChunk + chunks + sizes(0xFFFFFFFF, 0xFFFFFFFF)),
            true);
        QByteArray text = clipWithTables(times + oneChunk + chunks + sizes(0xFFFF, 0xFFFFFFFF));
        row("gigabytes of text", text.replace("camm", "text"));
        const QByteArray late =
            fullTable("elst", 1, bigEndian((1ULL << 53) - 1, 8) + QByteArray(8, '\xFF') + bigEndian(0, 4))
                .replace(8, 1, "\1"); // the version with numbers of 64 bits
        row("times without end",
            clipWithTables(
                fullTable("stts", 1, QByteArray(8, '\xFF')) + oneChunk + chunks + sizes(28, 0xFFFFFFFF), 1,
                box("edts", late)),
            true);
        row("counts past the tables",
            clipWithTables(fullTable("stts", 0xFFFFFFFF, {}) + fullTable("stsc", 0xFFFFFFFF, {}) +
                           fullTable("co64", 0xFFFFFFFF, {}) + sizes(0, 0xFFFFFFFF)));
        row("chunks nowhere",
            clipWithTables(times + oneChunk + fullTable("co64", 1, QByteArray(8, '\x7F')) + sizes(28, 100)));
        row("chunks run backwards", clipWithTables(times + chunks + sizes(28, 9) +
                                                   fullTable("stsc", 2,
                                                             hexBytes("00000005 00000001 00000001"
                                                                      "00000001 00000001 00000001"))));
        row("time stands still, no scale",
            clipWithTables(box("mdhd", QByteArray(24, '\0')) + oneChunk + chunks));
        row("an AVI of zeros", hexBytes("52494646 FFFFFFFF") + "AVI ");
        row("an AVI list of no size",
            hexBytes("52494646 FFFFFFFF") + "AVI LIST" + QByteArray(4, '\0') + "movi");
        row("an index of zeros",
            bigEndian(0, 4) + "moov" + bigEndian(0, 4) + "gps " + bigEndian(0, 4) + bigEndian(0xFFFFFFFF, 4));
        row("a log of zeros", bigEndian(0, 4) + "free" + bigEndian(0, 4) + "gps ");
        row("a line without end",
            bigEndian(0, 4) + "free" + bigEndian(0, 4) + "gps [1]$GPRMC" + QByteArray(100000, ','));
        row("accelerations of zeros", bigEndian(0, 4) + "free" + bigEndian(0, 4) + "3gf ", true);
        row("positions in a sound file", riffChunk("RIFF", "WAVE" + riffChunk("gps0", QByteArray(32, '\0'))));
        row("positions of zeros", bigEndian(0, 4) + "gps0", true);
        const QByteArray chunkEach = fullTable("stsc", 1, hexBytes("00000001 00000001 00000001"));
        QByteArray again = clipWithTables(times + chunkEach + sizes(28, 0xFFFFFFFF) + bigEndian(0, 4) +
                                          "stco" + bigEndian(0xFFFFFFFF, 8));
        for (const char* name : {"moov", "trak", "mdia", "minf", "stbl"})
            again.replace(again.indexOf(name) - 4, 4, bigEndian(0, 4)); // up to the end of the file
        row("the same chunk again and again", again);
    }
    void lies() {
        QFETCH(Mp4, clip);
        HollowDevice device(clip);
        QTEST(readAll(device), "hasData");
    }

    // A gigabyte with three minutes of samples: only headers, tables and the first minute's samples are read.
    void largeClip() {
        Track track;
        track.durations = {10};
        for (int i = 0; i < 18000; ++i) {
            track.samples.append(motionAcceleration(0, 0, 9.8F) +
                                 motionFix(3, 37.5, 127.0 + i * 1e-6, 20, 0));
        }
        const Mp4 clip = mp4Around(kGigabyte, {track});
        HollowDevice device(clip);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = library.readClip(device);
        qint16 x = 0, y = 0, z = 0;
        QVERIFY(library.getAccXYZ(handle, 61000, &x, &y, &z) != 0);
        QCOMPARE(z, qint16(128));
        QVERIFY(device.bytesRead <= clip.after.size() / 2);
    }

    // More records within the minute than are kept: those in a few samples, and samples without any.
    void tooManyRecords() {
        Track full;
        full.durations = {1000};
        for (int i = 0; i < 60; ++i) // 4096 records each
            full.samples << motionAcceleration(float(i) * 9.80665F / 128, 0, 0).repeated(4096);
        HollowDevice device(mp4({full}));
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = library.readClip(device);
        qint16 x = 0, y = 0, z = 0;
        QVERIFY(library.getAccXYZ(handle, 25000, &x, &y, &z) != 0);
        QCOMPARE(x, qint16(limits::kSensorRecords / 4096));
        QCOMPARE(library.getAccXYZ(handle, 25001, &x, &y, &z), 0);
        QVERIFY(device.bytesRead <= 30 * 65536);
        Track empty;
        empty.timescale = 10000;
        empty.durations = {4};
        empty.samplesPerChunk = 1000;
        empty.samples = QList<QByteArray>(150'000, motionTurn());
        HollowDevice other(mp4({empty}));
        library.readClip(other);
        // Sixteen bytes a sample, twelve in the tables.
        QVERIFY(other.bytesRead <= qint64(limits::kSensorRecords) * 28 + kSlack);
    }

    // An hour of records that have no times but their clocks: none is read past the dashboard's minute.
    void longClips_data() {
        QTest::addColumn<QByteArray>("clip");
        QList<QByteArray> blocks;
        QByteArray records;
        for (int i = 0; i < 3600; ++i) {
            const QList<int> clock{12, i / 60, i % 60, 13, 4, 5};
            blocks << gpsBlock(clock, "ANE", 3724.5F, 12707.75F, 10);
            records += gps0Record(3724.5, 12707.5, 18, {13, 4, 5, 12, i / 60, i % 60, 0});
        }
        QTest::newRow("index of blocks") << gpsIndexClip(blocks);
        QTest::newRow("plain table") << mp4({}, {}, box("gps0", records));
        QTest::newRow("plain table without clocks")
            << mp4({}, {}, box("gps0", gps0Record(3724.5, 12707.5, 18, QList<int>(7)).repeated(3600)));
    }
    void longClips() {
        QFETCH(QByteArray, clip);
        HollowDevice device(clip);
        SensorFileLibrary library;
        const SensorLibrary::Handle handle = library.readClip(device);
        qint16 x = 0, y = 0, z = 0;
        QVERIFY(library.getAccXYZ(handle, 61000, &x, &y, &z) != 0);
        QVERIFY2(device.bytesRead <= 100000, QByteArray::number(device.bytesRead).constData());
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestSensorHostile)
#include "test_sensor_hostile.moc"
