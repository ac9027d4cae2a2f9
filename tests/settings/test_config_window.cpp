// The settings dialog: what it shows of a card, what clicks change, what OK writes.
#include <QComboBox>
#include <QDateTimeEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QToolButton>
#include <QWindow>

#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/modal.h"
#include "support/settings_fixture.h"

using namespace ql240;

namespace {

int RowValues::*valueOf(const QByteArray& name) {
    for (const SettingKey& key : kSettingKeys) {
        if (name == key.name)
            return key.value;
    }
    qFatal("no value %s", name.constData());
}

void confirm(QWidget* modal) {
    static_cast<SettingsPage*>(modal)->OnSlotsOK();
}

QComboBox* listAt(const ConfigWindow& window, QPoint place) {
    return qobject_cast<QComboBox*>(window.childAt(place));
}
QComboBox* driveList(const ConfigWindow& window) {
    return listAt(window, {165, 20});
}
QDateTimeEdit* clockField(const ConfigWindow& window) {
    return window.findChild<QDateTimeEdit*>(QStringLiteral("dateTime"));
}
QToolButton* buttonAt(const ConfigWindow& window, QPoint place) {
    return qobject_cast<QToolButton*>(window.childAt(place));
}

constexpr QPoint kVga(170, 65);
constexpr QPoint kTick(143, 265);
constexpr QPoint kPictureButton(460, 80);
constexpr QPoint kOkButton(490, 700);

} // namespace

class TestConfigWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }

    void withoutDrives() {
        ReadyWindow window;
        QCOMPARE(window.windowTitle(), QStringLiteral("QL240 Setting"));
        QCOMPARE(window.size(), QSize(554, 730));
        QCOMPARE(driveList(window)->count(), 0);
        QVERIFY(window.values() == RowValues());
        QVERIFY(window.settingFolder().isEmpty());
        click(window, {170, 65});
        QCOMPARE(window.values().resolutionvalue, 1);
        QSignalSpy accepted(&window, &QDialog::accepted);
        window.OnSlotsOK();
        QCOMPARE(accepted.size(), 1);
        QString unit;
        QVERIFY(readSpeedUnit(unit));
    }

    // The last card comes first into view; another drive is there for the choosing.
    void changingTheDrive() {
        const MadeCard first, second;
        makeCamera(first, "QL240 1.1 2.0");
        makeCamera(second, "QL240 1.2 2.0");
        putByte(first, QStringLiteral("framevalue"), 2);
        m_fixture->insert(first);
        m_fixture->insert(second, "SECOND");
        ReadyWindow window;
        QCOMPARE(driveList(window)->count(), 2);
        QCOMPARE(driveList(window)->currentText(), QStringLiteral("SECOND (%1)").arg(second.drive()));
        QCOMPARE(window.settingFolder(), second.path(QStringLiteral("setting")));
        QCOMPARE(listAt(window, {295, 20})->currentText(), QStringLiteral("1.2"));
        click(window, kVga);
        click(window, kTick);
        driveList(window)->setCurrentIndex(0);
        QVERIFY(waitForCard(window));
        QCOMPARE(window.values().framevalue, 2);
        QCOMPARE(window.values().resolutionvalue, 3);
        QCOMPARE(window.values().setsClock, 1);
        QCOMPARE(listAt(window, {295, 20})->currentText(), QStringLiteral("1.1"));
        QCOMPARE(listAt(window, {425, 20})->currentText(), QStringLiteral("2.0"));
        window.OnSlotsOK();
        QCOMPARE(byteOf(first, QStringLiteral("framevalue")), 2);
        QVERIFY(!QFileInfo::exists(second.path(QStringLiteral("setting"))));
    }

    void loadedValues_data() {
        QTest::addColumn<QByteArray>("onCard");
        QTest::addColumn<QByteArray>("shown");

        QTest::newRow("muted") << QByteArray("mutevalue:1\nspeakervalue:3\n") << QByteArray("speakervalue 0");
        QTest::newRow("not muted") << QByteArray("mutevalue:2\nspeakervalue:3\n")
                                   << QByteArray("speakervalue 3");
        QTest::newRow("preset 1") << QByteArray("sensitivityvalue1:6\nsensitivityvalue2:5\n")
                                  << QByteArray("sensitivityvalue 1");
        QTest::newRow("preset 3") << QByteArray("sensitivityvalue1:10\nsensitivityvalue2:9\n")
                                  << QByteArray("sensitivityvalue 3");
        QTest::newRow("no preset") << QByteArray(
                                          "sensitivityvalue1:7\nsensitivityvalue2:7\nsensitivityvalue:2\n")
                                   << QByteArray("sensitivityvalue 0 sensitivityvalue1 7");
        QTest::newRow("malformed") << QByteArray("motionvalue:high\n") << QByteArray("motionvalue 0");
    }
    void loadedValues() {
        QFETCH(QByteArray, onCard);
        QFETCH(QByteArray, shown);
        const MadeCard& card = m_fixture->camera();
        card.put(QStringLiteral("setting/setting.dat"), onCard);
        const ReadyWindow window;
        const QByteArrayList words = shown.split(' ');
        for (int i = 0; i + 1 < words.size(); i += 2)
            QCOMPARE(window.values().*valueOf(words[i]), words[i + 1].toInt());
    }

    void batterySystem_data() {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<bool>("button12");
        QTest::addColumn<bool>("button24");

        QTest::newRow("12 V") << QByteArray("QL240 1.02 1.00 12V") << true << false;
        QTest::newRow("24 V") << QByteArray("QL240 1.02 1.00 24V more") << false << true;
        QTest::newRow("lower case") << QByteArray("QL240 1.02 1.00 24v") << true << true;
        QTest::newRow("two spaces") << QByteArray("QL240  1.02 1.00 24V") << true << true;
        QTest::newRow("line end belongs to the field")
            << QByteArray("QL240 1.02 1.00 12V\nmore") << true << true;
        QTest::newRow("too few fields") << QByteArray("QL240") << true << true;
    }
    void batterySystem() {
        QFETCH(QByteArray, version);
        m_fixture->camera(version);
        const ReadyWindow window;
        QTEST(buttonAt(window, {350, 490})->isEnabled(), "button12");
        QTEST(buttonAt(window, {480, 490})->isEnabled(), "button24");
    }

    void partitionAsks_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<bool>("asks");
        QTest::addColumn<int>("value");

        QTest::newRow("the one it has") << QPoint(270, 560) << true << false << 2;
        QTest::newRow("another, confirmed") << QPoint(370, 560) << true << true << 3;
        QTest::newRow("another, refused") << QPoint(370, 560) << false << true << 2;
    }
    void partitionAsks() {
        QFETCH(QPoint, point);
        QFETCH(bool, confirmed);
        const MadeCard& card = m_fixture->camera();
        putByte(card, QStringLiteral("partitionvalue"), 2);
        ReadyWindow window;
        const ModalAnswer answer([&](QWidget* modal) {
            QVERIFY(qobject_cast<WindowBtn7*>(modal));
            click(*modal, confirmed ? QPoint(500, 235) : QPoint(430, 235));
            click(*modal->childAt(confirmed ? 500 : 430, 235), {5, 5});
        });
        click(window, point);
        QTEST(answer.seen(), "asks");
        QTEST(window.values().partitionvalue, "value");
    }

    // Until the drives are known there is nothing to edit, and what the card holds stays; OK waits for them.
    void lateDrives_data() {
        QTest::addColumn<bool>("left");
        QTest::newRow("they come") << false;
        QTest::newRow("the user gives up") << true;
    }
    void lateDrives() {
        QFETCH(bool, left);
        const MadeCard& card = m_fixture->camera();
        putByte(card, QStringLiteral("brightvalue"), 2);
        putByte(card, QStringLiteral("framevalue"), 1);
        m_fixture->holdDrives();
        ConfigWindow window;
        window.show();
        click(window, kVga);
        click(window, kTick);
        QVERIFY(window.values() == RowValues());
        for (int page = 0; page < 7; ++page) {
            const ModalAnswer answer(confirm);
            openPage(window, page);
            QVERIFY(!answer.seen());
        }
        QVERIFY(!buttonAt(window, kPictureButton)->isEnabled());
        bool locked = false;
        QTimer::singleShot(0, &window, [&] {
            locked = window.isVisible() && !window.childAt(kOkButton)->isEnabled();
            QTest::keyClick(&window, Qt::Key_Return); // OK, again
            if (left)
                click(*window.childAt(430, 700), {5, 5});
            m_fixture->answer();
        });
        window.OnSlotsOK();
        QVERIFY(locked);
        QCOMPARE(window.result(), int(left ? QDialog::Rejected : QDialog::Accepted));
        QVERIFY(waitForCard(window));
        QVERIFY(buttonAt(window, kPictureButton)->isEnabled());
        QCOMPARE(card.files(QStringLiteral("setting")).size(), left ? 2 : 26);
        QCOMPARE(byteOf(card, QStringLiteral("brightvalue")), 2);
        QCOMPARE(byteOf(card, QStringLiteral("framevalue")), 1);
        QString unit;
        QCOMPARE(readSpeedUnit(unit), !left);
    }

    // A page that is confirmed after another drive was read changes nothing but what it shows.
    void pagesHandBackTheirOwn() {
        const MadeCard first, second;
        for (const MadeCard* card : {&first, &second})
            m_fixture->insert(*card);
        putByte(first, QStringLiteral("framevalue"), 1);
        putByte(second, QStringLiteral("framevalue"), 2);
        ReadyWindow window;
        const ModalAnswer answer([&](QWidget* modal) {
            driveList(window)->setCurrentIndex(1);
            QTRY_COMPARE(window.values().framevalue, 2);
            confirm(modal);
        });
        window.OnSlotsBtn0();
        QVERIFY(answer.seen());
        QCOMPARE(window.values().framevalue, 2);
    }

    // The window manager keeps the dialog over the window that opened it, which isn't its parent.
    void staysOverItsOpener() {
        QWidget opener;
        opener.show();
        QApplication::setActiveWindow(&opener);
        QVERIFY(QTest::qWaitForWindowActive(&opener));
        ConfigWindow window;
        const ModalAnswer answer([&](QWidget* modal) {
            QCOMPARE(modal->windowHandle()->transientParent(), opener.windowHandle());
            QVERIFY(!modal->parent());
        });
        window.exec();
        QVERIFY(answer.seen());
    }

    void tickBoxAlone() {
        ReadyWindow window;
        window.show();
        QVERIFY(!clockField(window)->isEnabled());
        click(window, {133, 256});
        QCOMPARE(window.values().setsClock, 1);
        QVERIFY(clockField(window)->isEnabled());
        QVERIFY(buttonAt(window, {450, 260})->isEnabled());
        QVERIFY(!buttonAt(window, {200, 330})->isEnabled()); // the time zone's, never enabled
        QVERIFY(!buttonAt(window, {160, 520}));              // the screen saver's, never shown
        click(window, {152, 274});
        QCOMPARE(window.values().setsClock, 0);
        QVERIFY(!clockField(window)->isEnabled());
        click(window, {153, 265});
        QCOMPARE(window.values().setsClock, 0);
    }

    // Every value that the dialog edits, changed by clicks, written, and read by another dialog.
    void savesAndReadsBack() {
        const MadeCard& card = m_fixture->camera();
        card.put(QStringLiteral("setting/setting.dat"),
                 "hourvalue:9\nautoparkingvalue:0\nencodingvalue:1\nreversalvalue:1\n");
        RowValues saved;
        {
            ReadyWindow window;
            for (const OptionRow& row : config::kRows) {
                for (const Choice& choice : row.choices) {
                    const ModalAnswer answer(confirm);
                    if (row.kind == RowKind::Choices && choice.value != 3)
                        click(window, choice.hit.center());
                }
            }
            saved = window.values();
            window.OnSlotsOK();
        }
        QCOMPARE(card.files(QStringLiteral("setting")).size(), 26 + 1);
        QCOMPARE(byteOf(card, QStringLiteral("hourvalue")), 9);
        QCOMPARE(byteOf(card, QStringLiteral("autoparkingvalue")), 0);
        QCOMPARE(byteOf(card, QStringLiteral("reversalvalue")), 0);
        QCOMPARE(byteOf(card, QStringLiteral("sharpnessvalue")), 4);
        QCOMPARE(byteOf(card, QStringLiteral("resolutionvalue")), 2);
        QCOMPARE(byteOf(card, QStringLiteral("encodingvalue")), -1);
        const ReadyWindow again;
        QVERIFY(again.values() == saved);
        QVERIFY(!(again.values() == RowValues()));
    }

    void makesTheFolder() {
        const MadeCard stick;
        m_fixture->insert(stick);
        ReadyWindow window;
        click(window, {170, 200}); // the speaker off
        window.OnSlotsOK();
        QCOMPARE(stick.files(QStringLiteral("setting")).size(), 26);
        QCOMPARE(byteOf(stick, QStringLiteral("speakervalue")), 0);
        QCOMPARE(byteOf(stick, QStringLiteral("mutevalue")), 1);
    }

    void clockIsWrittenWhenTicked() {
        const MadeCard& card = m_fixture->camera();
        card.put(QStringLiteral("setting/settime.dat"), "2012-07-31-18-05-09");
        ReadyWindow window;
        const QDateTime time(QDate(2031, 2, 3), QTime(4, 5, 6));
        clockField(window)->setDateTime(time);
        window.Onapply();
        QCOMPARE(card.bytes(QStringLiteral("setting/settime.dat")),
                 std::optional<QByteArray>("2012-07-31-18-05-09"));
        click(window, kTick);
        window.Onapply();
        QCOMPARE(card.bytes(QStringLiteral("setting/settime.dat")),
                 std::optional<QByteArray>("2031-02-03-04-05-06"));
        window.OnSlotsGetTime();
        QVERIFY(qAbs(clockField(window)->dateTime().secsTo(QDateTime::currentDateTime())) < 60);
    }

    void closingKeepsTheCard() {
        const MadeCard& card = m_fixture->camera();
        for (const char* way : {"OnSlotsCancel", "OnSlotsExit", "Escape"}) {
            ReadyWindow window;
            QSignalSpy rejected(&window, &QDialog::rejected);
            window.show();
            click(window, {170, 65});
            if (qstrcmp(way, "Escape") == 0)
                QTest::keyClick(&window, Qt::Key_Escape);
            else
                QMetaObject::invokeMethod(&window, way);
            QCOMPARE(rejected.size(), 1);
            QVERIFY(!window.isVisible());
            QVERIFY(!QFileInfo::exists(card.path(QStringLiteral("setting"))));
            QString unit;
            QVERIFY(!readSpeedUnit(unit));
        }
    }

    void languages_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QString>("kept");

        QTest::newRow("none") << "" << 1 << "en";
        QTest::newRow("Spanish") << "es" << 4 << "es";
        QTest::newRow("unknown") << "xx" << 1 << "en";
    }
    void languages() {
        QFETCH(QString, stored);
        if (!stored.isEmpty())
            writeLanguage(stored);
        ConfigWindow window;
        auto* list = listAt(window, {160, 645});
        QTEST(list->currentIndex(), "entry");
        window.Onapply();
        QString code;
        QVERIFY(readLanguage(code));
        QTEST(code, "kept");

        list->setCurrentIndex(2);
        window.Onapply();
        QCOMPARE(currentLanguage(), QStringLiteral("ru"));
        QCOMPARE(list->itemText(0), QStringLiteral("Корейский"));
        QCOMPARE(buttonAt(window, {450, 260})->text(), QStringLiteral("Получить время"));
    }

    void viewerSpeedUnit() {
        for (const auto& [stored, unit] : {std::pair("", 1), {"mph", 2}, {"knots", 2}}) {
            if (*stored)
                writeSpeedUnit(QLatin1String(stored));
            ConfigWindow window;
            QCOMPARE(static_cast<int>(window.viewerSpeedUnit()), unit);
            window.setViewerSpeedUnit(static_cast<SpeedUnit>(3 - unit));
            window.Onapply();
            QString kept;
            QVERIFY(readSpeedUnit(kept));
            QCOMPARE(kept, unit == 1 ? QStringLiteral("mph") : QStringLiteral("km"));
        }
    }

    void screenSaver() {
        ConfigWindow window;
        window.OnSlotsEditor();
        QMessageBox* box = nullptr;
        const auto isThere = [&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* found = qobject_cast<QMessageBox*>(widget); found && found->isVisible())
                    box = found;
            }
            return box != nullptr;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isThere(), 10000);
        QCOMPARE(box->windowTitle(), QStringLiteral("QL240 Notification"));
        QCOMPARE(box->text(), QStringLiteral("No Disk "));
        QVERIFY(!box->parent() && !box->isModal());
        box->close();
    }

    void zoneIsKept() {
        ConfigWindow window;
        const ModalAnswer first([](QWidget* modal) {
            auto* zones = static_cast<WindowGMT*>(modal);
            zones->preselect(QStringLiteral("0x55"), QString());
            zones->OnSlotsOK();
        });
        window.OnSlotsGmt();
        QVERIFY(first.seen());
        QString code;
        const ModalAnswer second(
            [&](QWidget* modal) { code = static_cast<WindowGMT*>(modal)->selectedCode(); });
        window.OnSlotsGmt();
        QCOMPARE(code, QStringLiteral("0x55"));
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestConfigWindow)
#include "test_config_window.moc"
