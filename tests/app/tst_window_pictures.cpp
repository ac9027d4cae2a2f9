// The main window and the settings dialog in the program's own style against kept pictures. Run at one and at
// two device pixels a pixel.
#include "app/style.h"
#include "base/language.h"
#include "mainwindow/viewer.h"
#include "settings/config_window.h"
#include "settings/flat_fields.h"
#include "support/frame_code.h"
#include "support/golden.h"
#include "support/settings_fixture.h"

namespace ql240 {
namespace {

constexpr int kBoundMs = 15000;
constexpr int kShownMs = 1010;
constexpr int kShownFrame = 30;

// Temporary folders have another name each time; of this one the end alone is in sight.
const QString kFolder = QStringLiteral("a day by the sea and back over the mountains in the spring of 2013");

FakeSensorLibrary::Answer drive(std::int64_t timeMs) {
    FakeSensorLibrary::Answer answer;
    answer.speed = static_cast<std::int32_t>(40 + timeMs / 40);
    answer.latitude += static_cast<std::int32_t>(timeMs);
    answer.x = static_cast<std::int16_t>(timeMs / 20);
    answer.y = -30;
    answer.z = 128;
    return answer;
}

QByteArray pictureDiffers(QWidget& window, const QString& name) {
    QByteArray report;
    const auto scale = qRound(window.devicePixelRatioF());
    const QString kept = QStringLiteral("%1@%2x").arg(name).arg(scale);
    return matchesGolden(window.grab().toImage(), kept, report) ? QByteArray() : report;
}

} // namespace

class TestWindowPictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        applyStyle();
        setCurrentLanguage(QStringLiteral("en"));
    }

    void mainWindow() {
        Viewer viewer;
        viewer.show();
        viewer.loadMap();
        QVERIFY(QTest::qWaitForWindowActive(viewer.window.get()));
        const QByteArray atStart = pictureDiffers(*viewer.window, QStringLiteral("window-start"));

        QVERIFY(playUpToTheFrame(viewer));
        const QByteArray playing = pictureDiffers(*viewer.window, QStringLiteral("window-playing"));

        viewer.key(Qt::Key_F);
        QTRY_COMPARE(viewer.mainView()->geometry(), viewer.window->rect().adjusted(1, 1, -1, -1));
        QTRY_COMPARE_WITH_TIMEOUT(shownFrame(viewer), kShownFrame, kBoundMs);
        const QByteArray full = pictureDiffers(*viewer.window, QStringLiteral("window-full-screen"));
        QCOMPARE(atStart + playing + full, QByteArray());
    }

    void settings_data() {
        QTest::addColumn<QString>("language");
        QTest::newRow("settings-en") << "en";
        QTest::newRow("settings-kr") << "kr";
    }
    void settings() {
        QFETCH(QString, language);
        SettingsFixture fixture;
        setCurrentLanguage(language);
        writeLanguage(language);
        MadeCard card;
        makeCamera(card, "QL240 1.02 1.00 12V");
        for (const char* key : {"resolutionvalue", "framevalue", "speakervalue", "parkingvalue"})
            putByte(card, QLatin1String(key), 2);
        fixture.insert(card, "CARD OF THE BLUE CAR");
        ConfigWindow dialog;
        dialog.show();
        QVERIFY(waitForCard(dialog));
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        dialog.findChild<FlatField*>(QStringLiteral("dateTime"))
            ->setDateTime(QDateTime(QDate(2013, 4, 5), QTime(12, 30)));
        const QByteArray differs = pictureDiffers(dialog, QLatin1String(QTest::currentDataTag()));
        QCOMPARE(differs, QByteArray());
    }

private:
    static int shownFrame(const Viewer& viewer) {
        return readFrameNumber(viewer.mainView()->grab().toImage());
    }

    // The window shows the playing state, and its clip stands at a frame that's known.
    static bool playUpToTheFrame(Viewer& viewer) {
        viewer.sensors.answer = drive;
        for (const char* minute : {"29", "30", "31"})
            viewer.addClip(
                QStringLiteral("%1/REC_2013_04_05_12_%2_00.mp4").arg(kFolder, QLatin1String(minute)),
                TestClipSpec());
        viewer.openFolder(viewer.path(kFolder));
        viewer.updateTimer()->stop();
        viewer.player()->pause();
        viewer.player()->seek(kShownMs);
        const bool stands = QTest::qWaitFor([&] { return shownFrame(viewer) == kShownFrame; }, kBoundMs);
        viewer.window->OnTimeoutUpdate();
        return stands && viewer.window->isPlaying();
    }
};

} // namespace ql240

QTEST_MAIN(ql240::TestWindowPictures)
#include "tst_window_pictures.moc"
