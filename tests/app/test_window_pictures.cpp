// The windows in the program's style and the skin's pictures, compared with golden pictures at 1× and 2×.

#include "app/style.h"
#include "mainwindow/viewer.h"
#include "settings/flat_fields.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/frame_code.h"
#include "support/golden.h"
#include "support/settings_fixture.h"

using namespace ql240;
namespace {

constexpr int kShownMs = 1010;
constexpr int kShownFrame = 30;

// The names of temporary folders vary; this one is so long that only its end is shown.
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

QByteArray pictureDiffers(const QImage& painted, const QString& name) {
    QByteArray report;
    const QString kept = QStringLiteral("%1@%2x").arg(name).arg(qRound(qGuiApp->devicePixelRatio()));
    return matchesGolden(painted, kept, report) ? QByteArray() : report;
}
QByteArray pictureDiffers(QWidget& window, const QString& name) {
    return pictureDiffers(window.grab().toImage(), name);
}

// All pictures side by side, on the windows' background.
QImage sheetOf(const QList<QImage>& pictures) {
    constexpr int kWidth = 2000;
    QImage sheet(kWidth, 6400, QImage::Format_RGB32);
    sheet.fill(QColor(9, 9, 9));
    QPainter painter(&sheet);
    QPoint place;
    int below = 0;
    for (const QImage& picture : pictures) {
        if (place.x() + picture.width() > kWidth)
            place = {0, below};
        painter.drawImage(place, picture);
        below = std::max(below, place.y() + picture.height());
        place.rx() += picture.width();
    }
    painter.end();
    return sheet.copy(0, 0, kWidth, below);
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
        viewer.panel()->setDateText(QStringLiteral("2026.11.23")); // in place of today's
        const QByteArray atStart = pictureDiffers(*viewer.window, "window-start");

        QVERIFY(playUpToTheFrame(viewer));
        const QByteArray playing = pictureDiffers(*viewer.window, "window-playing");

        viewer.key(Qt::Key_F);
        QTRY_COMPARE(viewer.mainView()->geometry(), viewer.window->rect().adjusted(1, 1, -1, -1));
        QTRY_COMPARE_WITH_TIMEOUT(shownFrame(viewer), kShownFrame, kWaitMs);
        const QByteArray full = pictureDiffers(*viewer.window, "window-full-screen");
        QCOMPARE(atStart + playing + full, QByteArray());
    }

    void settingsInEnglish() { settingsIn("en"); }
    void settingsInKorean() { settingsIn("kr"); }
    void settingsPages() {
        setCurrentLanguage(QStringLiteral("en"));
        RowValues values;
        for (const SettingKey& key : kSettingKeys)
            values.*key.value = 3;
        QList<QImage> pictures;
        const auto add = [&](auto&& page) {
            if constexpr (requires { page.setValues(values); })
                page.setValues(values);
            pictures << page.grab().toImage().convertToFormat(QImage::Format_RGB32);
            pictures.last().setDevicePixelRatio(1);
        };
        add(WindowBtn0(nullptr));
        add(WindowBtn1(nullptr));
        add(WindowBtn2(nullptr));
        add(WindowBtn3(nullptr));
        add(WindowBtn4(nullptr));
        add(WindowBtn5(nullptr));
        add(WindowBtn6(nullptr));
        add(WindowBtn7(nullptr));
        add(WindowGMT(nullptr));
        QCOMPARE(pictureDiffers(sheetOf(pictures), QStringLiteral("settings-pages")), QByteArray());
    }

    // Every look of every control; the windows' backgrounds are in the tests above.
    void skin() {
        const bool doubled = qGuiApp->devicePixelRatio() > 1;
        QList<QImage> pictures;
        for (const QString& name : QDir(":/gfx_r/2012").entryList({"*.png"}, QDir::Files, QDir::Name)) {
            if (name.contains(QLatin1String("@2x")) != doubled)
                continue;
            QImage picture(":/gfx_r/2012/" + name);
            QVERIFY2(!picture.isNull(), qPrintable(name));
            picture.setDevicePixelRatio(1);
            if (picture.width() < 300 * (doubled ? 2 : 1))
                pictures << picture;
        }
        QVERIFY(pictures.size() > 100);
        QCOMPARE(pictureDiffers(sheetOf(pictures), QStringLiteral("skin")), QByteArray());
    }

private:
    static void settingsIn(const QString& language) {
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
        QCOMPARE(pictureDiffers(dialog, QStringLiteral("settings-") + language), QByteArray());
    }

    static int shownFrame(const Viewer& viewer) {
        return readFrameNumber(viewer.mainView()->grab().toImage());
    }

    // The window shows the playing state, with its clip at a known frame.
    static bool playUpToTheFrame(Viewer& viewer) {
        viewer.sensors.answer = drive;
        for (const char* minute : {"29", "30", "31"})
            viewer.addClip(kFolder + "/REC_2013_04_05_12_" + minute + "_00.mp4", TestClipSpec());
        viewer.openFolder(viewer.path(kFolder));
        viewer.updateTimer()->stop();
        viewer.player()->pause();
        viewer.player()->seek(kShownMs);
        const bool stands =
            QTest::qWaitFor([&] { return viewer.hasTrack() && shownFrame(viewer) == kShownFrame; }, kWaitMs);
        viewer.window->OnTimeoutUpdate();
        return stands && viewer.window->isPlaying();
    }
};

QTEST_MAIN(TestWindowPictures)
#include "test_window_pictures.moc"
