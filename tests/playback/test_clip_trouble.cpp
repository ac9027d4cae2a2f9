// Broken and extreme files, and what isn't a file, on the real pipeline.
#include <QTest>

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include "clips/clip.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "support/frame_code.h"
#include "support/peak_memory.h"
#include "support/sensor_clips.h"
#include "support/test_clips.h"

using namespace ql240;
using madeclips::box;

namespace {

constexpr int kPatienceMs = 10000;
constexpr int kOpenLimitMs = 3500;
constexpr qint64 kMostMiB = 200;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The clip without the box or list that holds its index.
QByteArray withoutIndex(QByteArray bytes, const char* index) {
    return bytes.replace(QByteArray(index), QByteArray("junk"));
}

// Clips whose container, parameter set or pictures claim another size.
QByteArray withSize(QByteArray mp4, quint16 width, quint16 height) {
    char* size = mp4.data() + mp4.indexOf("avc1", mp4.indexOf("stsd")) + 28;
    qToBigEndian(width, size);
    qToBigEndian(height, size + 2);
    return mp4;
}

QByteArray withAviSize(QByteArray avi, quint32 width, quint32 height) {
    char* size = avi.data() + avi.indexOf("strf") + 12;
    qToLittleEndian(width, size);
    qToLittleEndian(height, size + 4);
    return avi;
}

QByteArray withH264Size(QByteArray mp4, const QByteArray& parameters) {
    const qsizetype at = mp4.indexOf("avcC") + 10;
    const int length = qFromBigEndian<quint16>(mp4.constData() + at);
    return mp4.replace(at + 2, length, parameters.leftJustified(length, '\0'));
}

QByteArray withJpegSize(QByteArray avi, bool progressive, quint16 side) {
    const QByteArray baseline = QByteArray::fromHex("FFC0001108");
    for (qsizetype at = avi.indexOf(baseline); at >= 0; at = avi.indexOf(baseline, at)) {
        qToBigEndian(side, avi.data() + at + 5);
        qToBigEndian(side, avi.data() + at + 7);
        avi[at + 1] = progressive ? '\xC2' : '\xC1';
        if (const qsizetype scan = avi.indexOf(QByteArray::fromHex("FFDA000C03"), at);
            progressive && scan > 0)
            avi[scan + 12] = '\0'; // only the first scan
    }
    return avi;
}

struct Chunk {
    QByteArray name;
    QByteArray body;
};

QByteArray littleEndian(qsizetype value) {
    return madeclips::littleEndian(static_cast<quint64>(value), 4);
}

quint32 sizeAt(const QByteArray& avi, qsizetype at) {
    return qFromLittleEndian<quint32>(avi.constData() + at);
}

QList<Chunk> mediaOf(const QByteArray& avi) {
    const qsizetype movi = avi.indexOf("movi");
    const qsizetype end = movi + sizeAt(avi, movi - 4);
    QList<Chunk> chunks;
    for (qsizetype at = movi + 4; at + 8 <= end; at += 8 + (chunks.last().body.size() + 1) / 2 * 2)
        chunks.append({avi.mid(at, 4), avi.mid(at + 8, sizeAt(avi, at + 4))});
    return chunks;
}

// The index lists the last chunk `repeats` more times.
QByteArray withMedia(const QByteArray& avi, const QList<Chunk>& chunks, int repeats = 0) {
    QByteArray media = "movi";
    QByteArray index;
    for (const Chunk& chunk : chunks) {
        index +=
            chunk.name + littleEndian(0x10) + littleEndian(media.size()) + littleEndian(chunk.body.size());
        media += chunk.name + littleEndian(chunk.body.size()) + chunk.body;
        media.append(media.size() % 2, '\0');
    }
    index += index.right(16).repeated(repeats);
    QByteArray made = avi.left(avi.indexOf("movi") - 4) + littleEndian(media.size()) + media + "idx1" +
                      littleEndian(index.size()) + index;
    return made.replace(4, 4, littleEndian(made.size() - 8));
}

// 440 MB of pictures in a small file, all at the start of the clip.
QByteArray standingStill(QByteArray avi) {
    avi.replace(avi.indexOf("strh") + 28, 8,
                littleEndian(1) + littleEndian(1'000'000'000)); // frames a second
    const QList<Chunk> chunks = mediaOf(avi);
    QList<Chunk> first = chunks.first(12);
    const auto isPicture = [](const Chunk& chunk) { return chunk.name == "00dc"; };
    first.append(*std::find_if(chunks.begin(), chunks.end(), isPicture));
    return withMedia(avi, first, int(440'000'000 / first.last().body.size()));
}

// 60 Mbit/s; the sound of each second follows its pictures.
QByteArray heavy(const QByteArray& avi) {
    QList<Chunk> chunks = mediaOf(avi);
    for (Chunk& chunk : chunks)
        chunk.body.append(chunk.name == "00dc" ? 500'000 - chunk.body.size() : 0, '\0');
    const qsizetype second = chunks.size() / 4;
    for (int i = 0; i < 4; ++i)
        std::stable_partition(chunks.begin() + i * second, chunks.begin() + (i + 1) * second,
                              [](const Chunk& chunk) { return chunk.name == "00dc"; });
    return withMedia(avi, chunks);
}

// An index that unpacks to a thousand times its size.
QByteArray compressedIndex() {
    const QByteArray packed = box("cmvd", qCompress(QByteArray(400'000'000, '\0'), 1));
    return box("ftyp", "qt  ") + box("moov", box("cmov", box("dcom", "zlib") + packed)) + box("mdat", "x");
}

QByteArray boxesInBoxes(const char* name, quint32 depth) {
    QByteArray boxes;
    for (quint32 size = 8 * depth; size > 0; size -= 8) {
        boxes += QByteArray(4, '\0') + name;
        qToBigEndian(size, boxes.data() + boxes.size() - 8);
    }
    return box("ftyp", "isom") + box("moov", boxes) + box("mdat", "x");
}

// Each track claims so many samples of one size, which need no table.
QByteArray withSamples(QByteArray mp4, quint32 samples) {
    for (qsizetype at = mp4.indexOf("stsz"); at >= 0; at = mp4.indexOf("stsz", at + 4)) {
        qToBigEndian(quint32(1), mp4.data() + at + 8);
        qToBigEndian(samples, mp4.data() + at + 12);
    }
    return mp4;
}

// An AVI clip with pictures of another kind: `first`, then `next` repeated, in a small file.
QByteArray withPictures(QByteArray avi, const char* kind, const QByteArray& first, const QByteArray& next,
                        int times) {
    avi.replace("MJPG", kind);
    const QList<Chunk> chunks = mediaOf(avi);
    const auto sound =
        std::find_if(chunks.begin(), chunks.end(), [](const Chunk& chunk) { return chunk.name == "01wb"; });
    return withMedia(avi, {{"00dc", first}, *sound, {"00dc", next}}, times);
}

// The chunks of that name are zeros.
QByteArray withoutPictures(const QByteArray& avi, const char* name) {
    QList<Chunk> chunks = mediaOf(avi);
    for (Chunk& chunk : chunks) {
        if (chunk.name == name)
            chunk.body.fill('\0');
    }
    return withMedia(QByteArray(avi).replace("MJPG", "H264"), chunks);
}

// 16 MB of sound ahead of the first picture.
QByteArray soundFirst(const QByteArray& avi) {
    return withMedia(QByteArray(avi).replace("MJPG", "H264"),
                     {{"00dc", QByteArray(40, '\0')}, {"01wb", QByteArray(400'000, '\0')}}, 40);
}

} // namespace

class TestClipTrouble : public QObject {
    Q_OBJECT

private:
    gstreamer::GstMediaPlatform m_media;
    QTemporaryDir m_folder;
    QString m_mp4;
    QString m_avi;

    QString write(const QString& name, const QByteArray& bytes) {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("can't write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    void expectGoodClipPlays() {
        const Clip clip{QFileInfo(m_mp4)};
        VideoView view;
        QVERIFY(view.openClip(&clip));
        view.player()->pause();
        QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(view.player()->frame(0, true)), 0, kPatienceMs);
    }

private Q_SLOTS:
    void initTestCase() {
        host().media = &m_media;
        m_mp4 = makeTestClip({});
        m_avi = makeTestClip(aviTestClip());
        QVERIFY(!m_mp4.isEmpty() && !m_avi.isEmpty());
        // The first clip of a process is slow: GStreamer looks for its plugins.
        expectGoodClipPlays();
    }

    void brokenFilesEndAsFailureOrEmpty_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("opens");
        const QByteArray mp4 = contentOf(m_mp4);
        const QByteArray avi = contentOf(m_avi);
        const auto row = [this](const QString& name, const QByteArray& bytes, bool opens) {
            QTest::newRow(qPrintable(name)) << write(name, bytes) << opens;
        };
        // Broken MP4 clips don't open; broken AVI clips open empty; what isn't a regular file never opens.
        row(QStringLiteral("empty.mp4"), {}, false);
        row(QStringLiteral("empty.avi"), {}, true);
        row(QStringLiteral("zeros.mp4"), QByteArray(100000, '\0'), false);
        row(QStringLiteral("zeros.avi"), QByteArray(100000, '\0'), true);
        row(QStringLiteral("32000 x 32000.mp4"), withSize(mp4, 32000, 32000), false);
        row(QStringLiteral("8193 x 8192.mp4"), withSize(mp4, 8193, 8192), false);
        row(QStringLiteral("0 x 360.mp4"), withSize(mp4, 0, 360), true);
        row(QStringLiteral("20000 x 20000.avi"), withAviSize(avi, 20000, 20000), true);
        row(QStringLiteral("-1 x -1.avi"), withAviSize(avi, -1U, -1U), true);
        row(QStringLiteral("h264 of 16000 x 16000.mp4"),
            withH264Size(mp4, QByteArray::fromHex("6764001eacb2801f4003e8c8")), true);
        row(QStringLiteral("jpeg of 20000 x 20000.avi"), withJpegSize(avi, false, 20000), true);
        row(QStringLiteral("jpeg of 20000 x 20000 in scans.avi"), withJpegSize(avi, true, 20000), true);
        // The parser waits for an end that never comes: large pieces, and many.
        const QByteArray zeros(8'000'000, '\0');
        const QByteArray h264Slice = QByteArray::fromHex("00000001091000000001419a");
        const std::tuple<const char*, const char*, QByteArray> endless[] = {
            {"h264", "H264", h264Slice},
            {"h265", "HEVC", QByteArray::fromHex("00000001460150000000010201d0")},
            {"mpeg4", "FMP4",
             QByteArray::fromHex("000001b001000001b58913000001000000012000c48d8800f514043c1443000001b6")},
        };
        for (const auto& [name, kind, slice] : endless)
            row(QStringLiteral("%1 without an end.avi").arg(QLatin1String(name)),
                withPictures(avi, kind, slice, zeros, 60), true);
        row(QStringLiteral("h264 in small pieces without an end.avi"),
            withPictures(avi, "H264", h264Slice, zeros.left(400), 60'000), true);
        const QByteArray large = QByteArray::fromHex("0000000167420033da003e8007d190");
        const QByteArray small = QByteArray::fromHex("00000001674200335680a03d90");
        const QByteArray intra =
            QByteArray::fromHex("0000000168ce388000000001658884b56ad5ac") + QByteArray(2000, 'U');
        const QByteArray delimiter = QByteArray::fromHex("000000010910");
        for (const auto& [name, sets] :
             {std::pair("large, small", large + small), {"small, large", small + large}}) {
            const QByteArray picture = delimiter + sets + intra;
            row(QStringLiteral("h264 of sizes %1.avi").arg(QLatin1String(name)),
                withPictures(avi, "H264", picture, picture, 20), true);
        }
        row(QStringLiteral("no picture in 4 s.avi"), withoutPictures(avi, "00dc"), true);
        row(QStringLiteral("no picture, and much sound.avi"), soundFirst(avi), true);
        row(QStringLiteral("compressed index.mp4"), compressedIndex(), false);
        for (const char* name : {"trak", "udta"})
            row(QStringLiteral("%1 in itself.mp4").arg(QLatin1String(name)), boxesInBoxes(name, 500'000),
                false);
        row(QStringLiteral("samples without a table.mp4"), withSamples(mp4, 4'000'000), false);
        row(QStringLiteral("no index.mp4"), withoutIndex(mp4, "moov"), false);
        row(QStringLiteral("no index.avi"), withoutIndex(avi, "idx1"), true);
        row(QStringLiteral("no sample table.mp4"), withoutIndex(mp4, "stbl"), false);
        row(QStringLiteral("no header list.avi"), withoutIndex(avi, "hdrl"), true);
        TestClipSpec mute;
        mute.sound = false;
        QTest::newRow("no sound.mp4") << makeTestClip(mute) << false;
        TestClipSpec odd = aviTestClip();
        odd.soundCodec = QStringLiteral("wmav2");
        QTest::newRow("unknown sound.avi") << makeTestClip(odd) << true;
        odd.videoStreams = 2;
        odd.sound = false;
        QTest::newRow("second video as sound.avi") << makeTestClip(odd) << true;
        for (const char* name : {"folder.mp4", "folder.avi", "fifo.mp4", "fifo.avi"}) {
            const QString path = m_folder.filePath(QLatin1String(name));
            const bool isFolder = QByteArray(name).startsWith("folder");
            QVERIFY(isFolder ? QDir().mkdir(path) : ::mkfifo(qPrintable(path), 0600) == 0);
            QTest::newRow(name) << path << false;
        }
        QTest::newRow("missing.mp4") << m_folder.filePath(QStringLiteral("missing.mp4")) << false;
    }

    void brokenFilesEndAsFailureOrEmpty() {
        QFETCH(QString, path);
        QFETCH(bool, opens);
        const Clip clip{QFileInfo(path)};
        VideoView view;
        view.resize(640, 360);
        view.show();
        const PeakMemory memory;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(view.openClip(&clip), opens);
        QVERIFY2(clock.elapsed() < kOpenLimitMs, qPrintable(QString::number(clock.elapsed())));
        Player& player = *view.player();
        QCOMPARE(player.clip(), opens ? &clip : nullptr);
        player.rewind();
        player.pause();
        player.play();
        m_media.setOutputVolume(0x8000, 0x8000);
        QTRY_COMPARE_WITH_TIMEOUT(player.positionMs(), player.durationMs(), kPatienceMs);
        player.seek(500);
        player.stepBack();
        player.frame(0, true);
        QCOMPARE_LT(memory.grownMiB(), kMostMiB);
        view.closeClip();
        expectGoodClipPlays();
    }

    // It isn't even opened, since that starts some devices.
    void whatIsNoFileStaysClosed() {
        const QString path = m_folder.filePath(QStringLiteral("device.avi"));
        QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
        const int notes = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        QVERIFY(::inotify_add_watch(notes, qPrintable(path), IN_OPEN) >= 0);
        const Clip clip{QFileInfo(path)};
        VideoView view;
        QVERIFY(!view.openClip(&clip));
        char note[4096];
        QCOMPARE(::read(notes, note, sizeof note), -1);
        ::close(notes);
    }

    void standingTimeFillsNoMemory() {
        const Clip clip{QFileInfo(write(QStringLiteral("standing.avi"), standingStill(contentOf(m_avi))))};
        VideoView view;
        const PeakMemory memory;
        QVERIFY(view.openClip(&clip));
        view.player()->pause();
        QVERIFY(!QTest::qWaitFor([&] { return memory.grownMiB() > kMostMiB; }, 2000));
        view.player()->play();
        QVERIFY(!QTest::qWaitFor([&] { return memory.grownMiB() > kMostMiB; }, 500));
        view.closeClip();
        expectGoodClipPlays();
    }

    void heavyClipPlaysToItsEnd() {
        const Clip clip{QFileInfo(write(QStringLiteral("heavy.avi"), heavy(contentOf(m_avi))))};
        VideoView view;
        QVERIFY(view.openClip(&clip));
        view.player()->pause();
        QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(view.player()->frame(0, true)), 0, kPatienceMs);
        view.player()->play();
        QTRY_COMPARE_WITH_TIMEOUT(view.player()->positionMs(), view.player()->durationMs(), 2 * kPatienceMs);
    }
};

QTEST_MAIN(TestClipTrouble)
#include "test_clip_trouble.moc"
