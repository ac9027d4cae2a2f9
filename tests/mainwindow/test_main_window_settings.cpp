#include <QSemaphore>

#include "base/language.h"
#include "base/preferences.h"
#include "mainwindow/picture_adjustment.h"
#include "mainwindow/viewer.h"
#include "settings/card.h"
#include "settings/config_window.h"
#include "support/made_card.h"
#include "support/modal.h"

namespace ql240 {

using layout::ButtonId;

// What the main window takes over from the settings dialog, the card and the preferences.
class TestMainWindowSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_viewer.reset(); }

    void settingsAcceptedThenCancelled();
    void pictureAdjustment_data();
    void pictureAdjustment();
    void cardModel_data();
    void cardModel();
    void slowCard();
    void unitAtStart_data();
    void unitAtStart();

private:
    Viewer& viewer() { return *m_viewer; }
    void openCard() { viewer().openFolder(viewer().path(QStringLiteral("card"))); }
    void inSettings(const std::function<void(ConfigWindow&)>& act);

    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindowSettings::init() {
    m_viewer = std::make_unique<Viewer>();
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"));
}

void TestMainWindowSettings::inSettings(const std::function<void(ConfigWindow&)>& act) {
    const ModalAnswer user([&](QWidget* dialog) { act(static_cast<ConfigWindow&>(*dialog)); });
    viewer().click(ButtonId::Setting);
    QVERIFY(user.seen());
}

void TestMainWindowSettings::settingsAcceptedThenCancelled() {
    setCurrentLanguage(QStringLiteral("en"));
    MadeCard card;
    viewer().drives.drives = {{card.drive(), {}, {}}};
    card.put(QStringLiteral("setting/setbrightvalue.dat"), "\4");
    card.put(QStringLiteral("setting/setcontrastvalue.dat"), "\4");
    viewer().show();
    openCard();
    QVERIFY(viewer().panel()->kilometres());
    SpeedUnit offered{};
    inSettings([&](ConfigWindow& dialog) {
        offered = dialog.viewerSpeedUnit();
        setCurrentLanguage(QStringLiteral("kr"));
        dialog.setViewerSpeedUnit(SpeedUnit::Mph);
        dialog.accept();
    });
    QCOMPARE(offered, SpeedUnit::Kmh);
    QVERIFY(!viewer().window->isPlaying());
    QVERIFY(!viewer().panel()->kilometres());
    QString unit;
    QVERIFY(readSpeedUnit(unit));
    QCOMPARE(unit, QStringLiteral("mph"));
    QCOMPARE(viewer().window->button(ButtonId::Play)->accessibleName(), QStringLiteral("재생"));
    inSettings([&](ConfigWindow& dialog) {
        offered = dialog.viewerSpeedUnit();
        dialog.setViewerSpeedUnit(SpeedUnit::Kmh);
        dialog.reject();
    });
    QCOMPARE(offered, SpeedUnit::Mph);
    QVERIFY(!viewer().panel()->kilometres());
    QVERIFY(readSpeedUnit(unit));
    QCOMPARE(unit, QStringLiteral("mph"));
}

void TestMainWindowSettings::pictureAdjustment_data() {
    QTest::addColumn<QByteArray>("bright");
    QTest::addColumn<QByteArray>("contrast");
    QTest::addColumn<QList<int>>("adjustment");
    QTest::newRow("neutral") << QByteArray("\4") << QByteArray("\4") << QList<int>{0, 100};
    QTest::newRow("lowest") << QByteArray("\1") << QByteArray("\1") << QList<int>{-60, 40};
    QTest::newRow("highest") << QByteArray("\7") << QByteArray("\7") << QList<int>{60, 160};
    QTest::newRow("zero") << QByteArray(1, '\0') << QByteArray(1, '\0') << QList<int>{0, 60};
    QTest::newRow("out of the tables") << QByteArray("\x64") << QByteArray("\xff") << QList<int>{0, 100};
}

void TestMainWindowSettings::pictureAdjustment() {
    QFETCH(QByteArray, bright);
    QFETCH(QByteArray, contrast);
    MadeCard card;
    viewer().drives.drives = {{viewer().path(QStringLiteral("nocard")), {}, {}}, {card.drive(), {}, {}}};
    card.put(QStringLiteral("setting/setbrightvalue.dat"), bright);
    card.put(QStringLiteral("setting/setcontrastvalue.dat"), contrast);
    const auto read = readCardAdjustment(host().drives);
    QVERIFY(read && read->ownFiles);
    const QList<int> numbers{brightnessOf(read->ownFiles->brightvalue),
                             contrastOf(read->ownFiles->contrastvalue)};
    QTEST(numbers, "adjustment");
}

void TestMainWindowSettings::cardModel_data() {
    QTest::addColumn<QByteArrayList>("versions");
    QTest::addColumn<QString>("text");
    QTest::newRow("no version file") << QByteArrayList() << "none";
    QTest::newRow("last file decides") << QByteArrayList{"AAAAAAAA", "BBBBBBBB"} << "BBBBBBBB";
    QTest::newRow("lines are joined") << QByteArrayList{"QL\r\n24\r\n"} << "QL\n24";
    QTest::newRow("empty file") << QByteArrayList{""} << "";
}

void TestMainWindowSettings::cardModel() {
    QFETCH(QByteArrayList, versions);
    const MadeCard cards[3]; // the last is a stick without a version
    for (int i = 0; i < 3; ++i) {
        if (i < versions.size())
            cards[i].put(QStringLiteral("update/version.txt"), versions[i]);
        viewer().drives.drives << DriveInfo{cards[i].drive(), {}, {}};
    }
    QTEST(cardVersionText(&viewer().drives).value_or(QStringLiteral("none")), "text");
    QVERIFY(!cardVersionText(nullptr));
}

// A dying card reader holds up neither the window nor the first clip; its answer counts when it comes.
void TestMainWindowSettings::slowCard() {
    struct SlowDrives : FakeDrives {
        QSemaphore answer;
        QList<DriveInfo> removableDrives() override {
            answer.acquire();
            return drives;
        }
    } slow;
    MadeCard card;
    card.put(QStringLiteral("setting/setbrightvalue.dat"), "\7");
    card.put(QStringLiteral("setting/setcontrastvalue.dat"), "\7");
    slow.drives = {{card.drive(), {}, {}}};
    host().drives = &slow;
    viewer().show();
    openCard();
    QVERIFY(viewer().window->isPlaying());
    QCOMPARE(viewer().window->pictureAdjustment().brightness(), 0);
    slow.answer.release(100);
    QTRY_COMPARE(viewer().window->pictureAdjustment().brightness(), 60);
    QCOMPARE(viewer().window->pictureAdjustment().contrast(), 160);
}

void TestMainWindowSettings::unitAtStart_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("kilometres");
    QTest::newRow("nothing stored") << QString() << true;
    QTest::newRow("km") << "km" << true;
    QTest::newRow("mph") << "mph" << false;
    QTest::newRow("anything else") << "KM" << false;
}

void TestMainWindowSettings::unitAtStart() {
    QFETCH(QString, stored);
    if (!stored.isNull())
        writeSpeedUnit(stored);
    viewer().show();
    QTEST(viewer().panel()->kilometres(), "kilometres");
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowSettings)
#include "test_main_window_settings.moc"
