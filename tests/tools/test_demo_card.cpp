// The demo card as a whole: its files, the clips' containers, and what happens to a folder that is there
// already.

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtGui/QImage>
#include <QtTest/QTest>
#include <cmath>

#include "base/preferences.h"
#include "clips/formats/sensor_file_library.h"
#include "demo_card/camm_track.h"
#include "demo_card/card.h"
#include "demo_card/sensor_data.h"
#include "sensors/sensor_track.h"
#include "settings/card.h"
#include "settings/device_settings.h"
#include "support/made_card.h"

using namespace ql240;
using namespace ql240::demo;

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60000) && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                     : QByteArray();
}

// The first moments of a demo clip, in small pictures.
ClipPlan shortened(ClipPlan clip, double seconds) {
    clip.span.to = clip.span.from + seconds;
    for (ClipFormat::Video& video : clip.format.videos)
        video.size = {192, 108};
    return clip;
}

} // namespace

class TestDemoCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<MadeCard>(); }

    void theViewerFindsItsWayOnTheCard() {
        const QString card = path("card");
        Progress progress;
        const ClipPlan clip = shortened(demoClips().last(), 0.4);
        QCOMPARE(makeCard(card, {clip}, progress), QString());
        QCOMPARE(progress.framesDone.load(), clip.frames());
        QCOMPARE(cardStateOf(card), CardState::DemoCard);
        QCOMPARE(QDir(card).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
                 QStringList({"IMAGE", "VIDEO", "setting", "update"}));
        QCOMPARE(QDir(card + "/VIDEO").entryList(QDir::Files), QStringList(clip.name));
        QCOMPARE(readVersionText(updateFolder(card)), QStringLiteral("QL240 1.02 1.00 12V"));
        DeviceSettings settings(settingFolder(card));
        QVERIFY(settings.loadText());
        QVERIFY(settings.loadBytes());
        QCOMPARE(settings.resolutionvalue, 2);
        QCOMPARE(settings.batteryvalue2, 242);
        // Nothing but the card is left behind.
        QCOMPARE(QDir(m_folder->drive()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList("card"));
    }

    void clipsHaveTheirStreams_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QByteArray>("streams");
        const QByteArray mp4 = "h264,video,30 aac,audio,32 unknown,data,20";
        QTest::newRow("two videos") << 0 << "h264,video,30 " + mp4;
        QTest::newRow("one video") << 4 << mp4;
        QTest::newRow("AVI") << 5 << QByteArray("mjpeg,video,15 pcm_s16le,audio,16000");
        QTest::newRow("mute AVI") << 6 << QByteArray("mjpeg,video,15");
    }
    void clipsHaveTheirStreams() {
        QFETCH(int, index);
        QFETCH(QByteArray, streams);
        const ClipPlan clip = shortened(demoClips()[index], 1);
        Progress progress;
        QCOMPARE(makeClip(clip, path(clip.name), progress), QString());
        const QByteArray found =
            outputOf("ffprobe", {"-v", "error", "-show_entries", "stream=codec_name,codec_type,nb_frames",
                                 "-of", "csv=p=0", path(clip.name)});
        QCOMPARE(found.simplified(), streams);
        QProcess decoder;
        decoder.start("ffmpeg", {"-v", "error", "-nostdin", "-i", path(clip.name), "-f", "null", "-"});
        QVERIFY(decoder.waitForFinished(60000));
        QCOMPARE(decoder.readAllStandardError(), QByteArray());
    }

    // The whole way from the drive through the file to the dashboard's samples, tunnel included.
    void sensorDataAreInStepInTheViewer() {
        const Drive drive(demoClips()[3].drive);
        ClipEncoder encoder(path("a.mp4"), {.videos = {{{192, 108}, 100}}});
        QImage picture(192, 108, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        QVERIFY(encoder.addFrame(0, picture) && encoder.finish());
        QVERIFY(addCammTrack(path("a.mp4"), cammSamples(drive, {0, 20}), kCammSampleMs, drive.plan().start));
        SensorFileLibrary library;
        SensorTrack track;
        QVERIFY(appendLibrarySamples(track, library, path("a.mp4")));
        int withoutFix = 0;
        for (int time = 0; time < 20000; time += 100) {
            const DriveState state = drive.at(time / 1000.0);
            const SensorSample sample = sampleForTime(track, time);
            QCOMPARE(sample.hasPosition(), state.fix);
            withoutFix += !state.fix;
            if (state.fix)
                QVERIFY(std::abs(sample.latitude - state.position.latitude) < 1e-6);
            QVERIFY(std::abs(sample.speed - (state.fix ? state.speed * 3.6 : 0)) <= 0.51);
            QVERIFY(std::abs(sample.accX - state.rightAcc / 9.80665 * 128) <= 0.51);
        }
        QVERIFY(withoutFix > 50 && withoutFix < 120);
    }

    void aFailureLeavesTheOldCard() {
        const QString card = path("card");
        QVERIFY(QDir().mkpath(card));
        QVERIFY(writeCardFiles(card));
        m_folder->put("card/VIDEO/old.mp4", "old");
        ClipPlan broken = shortened(demoClips().last(), 0.4);
        broken.name = QStringLiteral("no such folder/a.avi");
        Progress progress;
        QVERIFY(makeCard(card, {broken}, progress).startsWith(broken.name));
        Progress cancelled;
        cancelled.cancelled = true;
        QCOMPARE(makeCard(card, {shortened(demoClips().last(), 0.4)}, cancelled),
                 QStringLiteral("interrupted"));
        QCOMPARE(*m_folder->bytes("card/VIDEO/old.mp4"), QByteArray("old"));
        QCOMPARE(QDir(m_folder->drive()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList("card"));
        Progress fresh;
        QCOMPARE(makeCard(card, {shortened(demoClips().last(), 0.2)}, fresh), QString());
        QVERIFY(!QFile::exists(card + "/VIDEO/old.mp4"));
    }

    void otherFoldersAreNeverReplaced() {
        QCOMPARE(cardStateOf(path("none")), CardState::Missing);
        QCOMPARE(cardStateOf(m_folder->drive()), CardState::EmptyFolder);
        m_folder->put("holiday.jpg", "dear");
        QCOMPARE(cardStateOf(m_folder->drive()), CardState::SomethingElse);
        QCOMPARE(cardStateOf(path("holiday.jpg")), CardState::SomethingElse);
        for (const QString& folder : {m_folder->drive(), path("holiday.jpg")}) {
            QProcess tool;
            tool.start(QStringLiteral(QL240_DEMO_CARD), {"--force", folder});
            QVERIFY(tool.waitForFinished(30000));
            QCOMPARE(tool.exitCode(), 1);
            QVERIFY(tool.readAllStandardError().contains("is no demo card"));
            QCOMPARE(*m_folder->bytes("holiday.jpg"), QByteArray("dear"));
        }
        // A card that is there is kept, and its clips' folder is named.
        QVERIFY(QDir().mkpath(path("card")) && writeCardFiles(path("card")));
        QCOMPARE(outputOf(QStringLiteral(QL240_DEMO_CARD), {path("card")}).trimmed(),
                 path("card/VIDEO").toUtf8());
    }

    // The folder that the user chose stays.
    void theCardIsOfferedOnlyWhereNoFolderIsRemembered() {
        const auto offer = [this](const char* card) {
            return QProcess::execute(QStringLiteral(QL240_DEMO_CARD), {"--offer", path(card)});
        };
        QString remembered;
        QCOMPARE(offer("card"), 1);
        QVERIFY(!readLastFolder(remembered));
        for (const char* card : {"card", "other"}) {
            QVERIFY(QDir().mkpath(path(card)) && writeCardFiles(path(card)));
            QCOMPARE(offer(card), 0);
            QVERIFY(readLastFolder(remembered));
            QCOMPARE(remembered, path("card/VIDEO"));
        }
    }

private:
    QString path(const QString& name) const { return m_folder->path(name); }

    std::unique_ptr<MadeCard> m_folder;
};

QTEST_GUILESS_MAIN(TestDemoCard)
#include "test_demo_card.moc"
