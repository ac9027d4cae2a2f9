// The demo card as a whole: its files, the clips' containers, and what happens to a folder that is there
// already.

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QTest>
#include <cmath>

#include "base/preferences.h"
#include "demo_card/camm_track.h"
#include "demo_card/card.h"
#include "demo_card/sensor_data.h"
#include "platform/sensor_files/sensor_file_library.h"
#include "sensors/sensor_track.h"
#include "settings/card.h"
#include "settings/device_settings.h"

using namespace ql240;

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60000) && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                     : QByteArray();
}

// The first moments of a demo clip, in small pictures.
ClipPlan shortened(ClipPlan clip, double seconds) {
    clip.drive.seconds = seconds;
    for (ClipFormat::Video& video : clip.format.videos)
        video.size = {192, 108};
    return clip;
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeContent(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

double number(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toDouble(std::nan(""));
}

} // namespace

class TestDemoCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void theViewerFindsItsWayOnTheCard();
    void clipsHaveTheirStreams_data();
    void clipsHaveTheirStreams();
    void sensorDataAreReadBackByOthers();
    void sensorDataAreInStepInTheViewer();
    void clipsAreTheSameOnEveryRun();
    void damagedFilesGetNoTrack_data();
    void damagedFilesGetNoTrack();
    void aFailureLeavesTheOldCard();
    void otherFoldersAreNeverReplaced();
    void theCardIsOfferedOnlyWhereNoFolderIsRemembered();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestDemoCard::theViewerFindsItsWayOnTheCard() {
    const QString card = path("card");
    Progress progress;
    const ClipPlan clip = shortened(demoClips()[5], 0.4);
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
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("card"));
}

void TestDemoCard::clipsHaveTheirStreams_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("streams");
    QTest::newRow("two videos") << 0
                                << QByteArray("h264,video,30 h264,video,30 aac,audio,32 unknown,data,20");
    QTest::newRow("one video") << 2 << QByteArray("h264,video,30 aac,audio,32 unknown,data,20");
    QTest::newRow("AVI") << 4 << QByteArray("mjpeg,video,15 pcm_s16le,audio,16000");
    QTest::newRow("mute AVI") << 5 << QByteArray("mjpeg,video,15");
}

void TestDemoCard::clipsHaveTheirStreams() {
    QFETCH(int, index);
    QFETCH(QByteArray, streams);
    const ClipPlan clip = shortened(demoClips()[index], 1);
    Progress progress;
    QCOMPARE(makeClip(clip, path(clip.name), progress), QString());
    const QByteArray found =
        outputOf("ffprobe", {"-v", "error", "-show_entries", "stream=codec_name,codec_type,nb_frames", "-of",
                             "csv=p=0", path(clip.name)});
    QCOMPARE(found.simplified(), streams);
    QProcess decoder;
    decoder.start("ffmpeg", {"-v", "error", "-nostdin", "-i", path(clip.name), "-f", "null", "-"});
    QVERIFY(decoder.waitForFinished(60000));
    QCOMPARE(decoder.readAllStandardError(), QByteArray());
}

// ExifTool knows nothing of our writer.
void TestDemoCard::sensorDataAreReadBackByOthers() {
    const ClipPlan clip = shortened(demoClips()[1], 2);
    Progress progress;
    QCOMPARE(makeClip(clip, path(clip.name), progress), QString());
    const QByteArray json = outputOf("exiftool", {"-ee", "-n", "-j", "-g3", path(clip.name)});
    const QJsonObject all = QJsonDocument::fromJson(json).array().first().toObject();
    QCOMPARE(all["Main"]["CreateDate"].toString(), QStringLiteral("2013:04:05 08:45:00"));
    const Drive drive(clip.drive);
    for (int i = 0; i < 40; ++i) {
        const QJsonObject sample = all[QStringLiteral("Doc%1").arg(i + 1)].toObject();
        const DriveState state = drive.at(i * 0.05);
        QVERIFY(std::abs(number(sample, "SampleTime") - i * 0.05) < 1e-6);
        const QStringList acceleration = sample["Acceleration"].toString().split(' ');
        QCOMPARE(acceleration.size(), 3);
        QVERIFY(std::abs(acceleration[1].toDouble() - state.forwardAcc) < 1e-5);
        QVERIFY(std::abs(acceleration[2].toDouble() - state.upAcc) < 1e-5);
        QCOMPARE(sample.contains("GPSLatitude"), i % 2 == 0);
        if (i % 2)
            continue;
        QVERIFY(std::abs(number(sample, "GPSLatitude") - state.position.latitude) < 1e-9);
        QVERIFY(std::abs(number(sample, "GPSLongitude") - state.position.longitude) < 1e-9);
        QCOMPARE(number(sample, "GPSMeasureMode"), 3.0);
        const double speed =
            std::hypot(number(sample, "GPSVelocityEast"), number(sample, "GPSVelocityNorth"));
        QVERIFY(std::abs(speed - state.speed) < 1e-4);
    }
}

// The whole way from the drive through the file to the dashboard's samples, tunnel included.
void TestDemoCard::sensorDataAreInStepInTheViewer() {
    const Drive drive(demoClips()[1].drive);
    ClipEncoder encoder(path("a.mp4"), {.videos = {{{192, 108}, 100}}});
    QImage picture(192, 108, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    QVERIFY(encoder.addFrame(0, picture) && encoder.finish());
    QVERIFY(addCammTrack(path("a.mp4"), cammSamples(drive), kCammSampleMs, drive.plan().start));
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

void TestDemoCard::clipsAreTheSameOnEveryRun() {
    for (int index : {0, 4}) {
        const ClipPlan clip = shortened(demoClips()[index], 0.6);
        Progress progress;
        QCOMPARE(makeClip(clip, path("a"), progress), QString());
        QCOMPARE(makeClip(clip, path("b"), progress), QString());
        QVERIFY(!contentOf(path("a")).isEmpty());
        QVERIFY(contentOf(path("a")) == contentOf(path("b")));
    }
}

void TestDemoCard::damagedFilesGetNoTrack_data() {
    QTest::addColumn<QByteArray>("content");
    const QByteArray start(
        "\0\0\0\x10"
        "ftypisom\0\0\0\0",
        16);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no boxes at all, only words");
    QTest::newRow("no index") << start;
    QTest::newRow("index cut") << start + QByteArray("\0\0\1\0moov", 8);
    QTest::newRow("index without a header") << start + QByteArray("\0\0\0\x08moov", 8);
    QTest::newRow("index first") << start + QByteArray("\0\0\0\x08moov\0\0\0\x08mdat", 16);
    QTest::newRow("header too short") << start + QByteArray("\0\0\0\x14moov\0\0\0\x0cmvhd\0\0\0\0", 20);
    QTest::newRow("size 0") << QByteArray("\0\0\0\0moov", 8);
}

void TestDemoCard::damagedFilesGetNoTrack() {
    QFETCH(QByteArray, content);
    QVERIFY(writeContent(path("a.mp4"), content));
    QVERIFY(!addCammTrack(path("a.mp4"), {"sample"}, 50, QDateTime::currentDateTime()));
    QCOMPARE(contentOf(path("a.mp4")), content);
}

void TestDemoCard::aFailureLeavesTheOldCard() {
    const QString card = path("card");
    QVERIFY(QDir().mkpath(card));
    QVERIFY(writeCardFiles(card));
    QVERIFY(writeContent(card + "/VIDEO/old.mp4", "old"));
    ClipPlan broken = shortened(demoClips()[5], 0.4);
    broken.name = QStringLiteral("no such folder/a.avi");
    Progress progress;
    QVERIFY(makeCard(card, {broken}, progress).startsWith(broken.name));
    Progress cancelled;
    cancelled.cancelled = true;
    QCOMPARE(makeCard(card, {shortened(demoClips()[5], 0.4)}, cancelled), QStringLiteral("interrupted"));
    QCOMPARE(contentOf(card + "/VIDEO/old.mp4"), QByteArray("old"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("card"));
    Progress fresh;
    QCOMPARE(makeCard(card, {shortened(demoClips()[5], 0.2)}, fresh), QString());
    QVERIFY(!QFile::exists(card + "/VIDEO/old.mp4"));
}

void TestDemoCard::otherFoldersAreNeverReplaced() {
    QCOMPARE(cardStateOf(path("none")), CardState::Missing);
    QCOMPARE(cardStateOf(m_folder->path()), CardState::EmptyFolder);
    QVERIFY(writeContent(path("holiday.jpg"), "dear"));
    QCOMPARE(cardStateOf(m_folder->path()), CardState::SomethingElse);
    QCOMPARE(cardStateOf(path("holiday.jpg")), CardState::SomethingElse);
    for (const QString& folder : {m_folder->path(), path("holiday.jpg")}) {
        QProcess tool;
        tool.start(QStringLiteral(QL240_DEMO_CARD), {"--force", folder});
        QVERIFY(tool.waitForFinished(30000));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(tool.readAllStandardError().contains("is no demo card"));
        QCOMPARE(contentOf(path("holiday.jpg")), QByteArray("dear"));
    }
    // A card that is there is kept, and its clips' folder is named.
    QVERIFY(QDir().mkpath(path("card")) && writeCardFiles(path("card")));
    QCOMPARE(outputOf(QStringLiteral(QL240_DEMO_CARD), {path("card")}).trimmed(),
             path("card/VIDEO").toUtf8());
}

// The folder that the user chose stays.
void TestDemoCard::theCardIsOfferedOnlyWhereNoFolderIsRemembered() {
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

QTEST_GUILESS_MAIN(TestDemoCard)
#include "test_demo_card.moc"
