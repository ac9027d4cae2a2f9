// The demo card: its files, the clips' streams, and what happens to an existing folder.

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QtEndian>
#include <QtTest/QTest>
#include <cmath>

#include "base/preferences.h"
#include "clips/formats/trailer.h"
#include "clips/moments.h"
#include "demo_card/camm_track.h"
#include "demo_card/card.h"
#include "demo_card/clips.h"
#include "demo_card/sensor_data.h"
#include "settings/card.h"
#include "settings/device_settings.h"
#include "support/made_card.h"

using namespace ql240;
using namespace ql240::demo;

namespace {

// The first moments of a demo clip, in small pictures.
ClipPlan shortened(ClipPlan clip, double seconds) {
    clip.span.to = clip.span.from + seconds;
    for (ClipFormat::Video& video : clip.format.videos)
        video.size = {192, 108};
    return clip;
}

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished(60000) ? process.readAll() : "no end";
}

int runTool(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral(QL240_DEMO_CARD), arguments);
}

} // namespace

class TestDemoCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<MadeCard>(); }

    void theViewerReadsTheCard() {
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
        QVERIFY(settings.loadText() && settings.loadBytes());
        QCOMPARE(settings.batteryvalue2, 242);
        QVERIFY(nothingButTheCard());
    }

    void clipsHaveTheirStreams() {
        const QByteArray mp4 = "h264,video,30 aac,audio,32 unknown,data,20";
        const std::pair<int, QByteArray> streams[] = {{0, "h264,video,30 " + mp4},
                                                      {4, mp4},
                                                      {5, "mjpeg,video,15 pcm_s16le,audio,16000"},
                                                      {6, "mjpeg,video,15"}};
        for (const auto& [index, expected] : streams) {
            const ClipPlan clip = shortened(demoClips()[index], 1);
            Progress progress;
            QCOMPARE(makeClip(clip, path(clip.name), progress), QString());
            const QByteArray found =
                outputOf("ffprobe", {"-v", "error", "-show_entries", "stream=codec_name,codec_type,nb_frames",
                                     "-of", "csv=p=0", path(clip.name)});
            QCOMPARE(found.simplified(), expected);
            QCOMPARE(
                outputOf("ffmpeg", {"-v", "error", "-nostdin", "-i", path(clip.name), "-f", "null", "-"}),
                "");
        }
    }

    // The shock finder finds exactly the impacts.
    void impactsAreTheOnlyShocks() {
        for (const ClipPlan& clip : demoClips()) {
            const Drive drive(clip.drive);
            std::deque<RecordedAcceleration> felt;
            if (clip.format.container == ClipFormat::Container::Mp4) {
                for (const QByteArray& sample : cammSamples(drive, clip.span)) {
                    const auto g = [&](int at) {
                        return qFromLittleEndian<float>(sample.constData() + at) / 9.80665F;
                    };
                    felt.push_back({qint64(felt.size()) * kCammSampleMs * 1000, g(4), g(8), g(12)});
                }
            } else {
                const QByteArray trailer = "media" + sensorTrailer(drive, clip.span);
                const double late = (clip.span.to - clip.span.from) / 4;
                sensorfiles::forEachTrailerLine(trailer, [&](const sensorfiles::TrailerLine& line) {
                    const double time = late + 0.1 * (1 + double(felt.size()));
                    felt.push_back({qint64(time * 1e6), line.x / 128.0F, line.y / 128.0F, line.z / 128.0F});
                });
            }
            const std::vector<Shock> shocks = findShocks(felt);
            const double impact = clip.drive.impactTime.value_or(-1) - clip.span.from;
            const bool hasOne = impact >= 0 && impact < clip.span.to - clip.span.from;
            QCOMPARE(shocks.size(), size_t(hasOne));
            if (hasOne)
                QVERIFY(std::abs(double(shocks[0].timeUs) / 1e6 - impact) <= 0.1);
        }
    }

    void aFailureLeavesTheOldCard() {
        const QString card = path("card");
        QVERIFY(QDir().mkpath(card) && writeCardFiles(card));
        m_folder->put("card/VIDEO/old.mp4", "old");
        const ClipPlan whole = shortened(demoClips().last(), 0.4);
        ClipPlan broken = whole;
        broken.name = "no such folder/a.avi";
        Progress progress;
        QVERIFY(makeCard(card, {broken}, progress).startsWith(broken.name));
        Progress cancelled;
        cancelled.cancelled = true;
        QCOMPARE(makeCard(card, {whole}, cancelled), QStringLiteral("interrupted"));
        QCOMPARE(*m_folder->bytes("card/VIDEO/old.mp4"), QByteArray("old"));
        QVERIFY(nothingButTheCard());
        Progress fresh;
        QCOMPARE(makeCard(card, {whole}, fresh), QString());
        QVERIFY(!QFile::exists(card + "/VIDEO/old.mp4"));
    }

    void otherFoldersAreNeverReplaced() {
        QCOMPARE(cardStateOf(path("none")), CardState::Missing);
        QCOMPARE(cardStateOf(m_folder->drive()), CardState::EmptyFolder);
        m_folder->put("holiday.jpg", "dear");
        for (const QString& folder : {m_folder->drive(), path("holiday.jpg")}) {
            QCOMPARE(cardStateOf(folder), CardState::SomethingElse);
            QCOMPARE(runTool({"--force", folder}), 1);
            QCOMPARE(*m_folder->bytes("holiday.jpg"), QByteArray("dear"));
        }
        // An existing card is kept, and its clips' folder is printed.
        QVERIFY(QDir().mkpath(path("card")) && writeCardFiles(path("card")));
        QCOMPARE(outputOf(QStringLiteral(QL240_DEMO_CARD), {path("card")}).trimmed(),
                 path("card/VIDEO").toUtf8());
    }

    // A folder that the user chose stays.
    void theCardIsOfferedOnlyWhereNoFolderIsRemembered() {
        QString remembered;
        QCOMPARE(runTool({"--offer", path("card")}), 1);
        QVERIFY(!readLastFolder(remembered));
        for (const QString& card : {path("card"), path("other")}) {
            QVERIFY(QDir().mkpath(card) && writeCardFiles(card));
            QCOMPARE(runTool({"--offer", card}), 0);
            QVERIFY(readLastFolder(remembered));
            QCOMPARE(remembered, path("card/VIDEO"));
        }
    }

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    bool nothingButTheCard() const {
        return QDir(m_folder->drive()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot) ==
               QStringList("card");
    }

    std::unique_ptr<MadeCard> m_folder;
};

QTEST_GUILESS_MAIN(TestDemoCard)
#include "test_demo_card.moc"
