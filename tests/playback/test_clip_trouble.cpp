// What the player does with files that are broken, no files, or many: on the real pipeline.
#include <QTest>

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sys/stat.h>

#include "library/clip.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "support/frame_code.h"
#include "support/test_clips.h"

using namespace ql240;

namespace {

constexpr int kPatienceMs = 10000;
constexpr int kOpenLimitMs = 3500;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray noise(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(11);
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

// The clip without the box or list that holds its index.
QByteArray withoutIndex(QByteArray bytes, const char* index) {
    return bytes.replace(QByteArray(index), QByteArray("junk"));
}

int entriesOf(const QString& folder) {
    return static_cast<int>(
        QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size());
}

qint64 residentKiB() {
    const QList<QByteArray> fields = contentOf(QStringLiteral("/proc/self/statm")).split(' ');
    return fields.value(1).toLongLong() * 4;
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
        // The first clip of a process finds the plugins, the first of a build lists them.
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
        const std::pair<QString, QByteArray> contents[] = {
            {QStringLiteral("empty"), {}},
            {QStringLiteral("zeros"), QByteArray(100000, '\0')},
            {QStringLiteral("noise"), noise(100000)},
            {QStringLiteral("text"), QByteArray("not a clip\n").repeated(1000)},
        };
        // A broken MP4 clip doesn't open; a broken AVI clip opens empty. What is no regular file opens as
        // neither.
        for (const auto& [name, bytes] : contents) {
            row(name + QStringLiteral(".mp4"), bytes, false);
            row(name + QStringLiteral(".avi"), bytes, true);
        }
        for (const int percent : {1, 30, 60, 95}) {
            const QString name = QStringLiteral("cut at %1.").arg(percent);
            row(name + QStringLiteral("mp4"), mp4.left(mp4.size() * percent / 100), percent > 1);
            row(name + QStringLiteral("avi"), avi.left(avi.size() * percent / 100), true);
        }
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
        for (const QString& name : {QStringLiteral("folder.mp4"), QStringLiteral("folder.avi")}) {
            QDir(m_folder.path()).mkdir(name);
            QTest::newRow(qPrintable(name)) << m_folder.filePath(name) << false;
        }
        for (const QString& name : {QStringLiteral("fifo.mp4"), QStringLiteral("fifo.avi")}) {
            ::mkfifo(qPrintable(m_folder.filePath(name)), 0600);
            QTest::newRow(qPrintable(name)) << m_folder.filePath(name) << false;
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
        view.closeClip();
        expectGoodClipPlays();
    }

    void reopeningLeavesNothingBehind() {
        const Clip clips[] = {Clip{QFileInfo(m_mp4)}, Clip{QFileInfo(m_avi)}};
        VideoView view;
        view.resize(640, 360);
        view.show();
        const auto openAll = [&](int times) {
            for (int i = 0; i < times; ++i) {
                QVERIFY(view.openClip(&clips[i % 2]));
                view.player()->rewind();
                view.player()->play();
                QCoreApplication::processEvents();
            }
            view.closeClip();
            QCoreApplication::processEvents();
        };
        openAll(60); // pools and caches fill; the sound, which opens in its own time, at the latest when it plays
        QVERIFY(view.openClip(&clips[0]));
        view.player()->play();
        QTRY_VERIFY_WITH_TIMEOUT(view.player()->positionMs() > 500, kPatienceMs);
        view.closeClip();
        const int threads = entriesOf(QStringLiteral("/proc/self/task"));
        const int descriptors = entriesOf(QStringLiteral("/proc/self/fd"));
        const qint64 memory = residentKiB();
        openAll(500);
        QTRY_COMPARE_LE(entriesOf(QStringLiteral("/proc/self/task")), threads);
        QTRY_COMPARE_LE(entriesOf(QStringLiteral("/proc/self/fd")), descriptors);
        qInfo("memory grew by %lld KiB in 500 openings", residentKiB() - memory);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they keep freed memory back
        QCOMPARE_LT(residentKiB() - memory, 16 * 1024);
#endif
    }
};

QTEST_MAIN(TestClipTrouble)
#include "test_clip_trouble.moc"
