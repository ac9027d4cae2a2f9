// The settings dialog: what it shows of a card, what clicks change, what OK writes.
#include <QComboBox>
#include <QDateTimeEdit>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>
#include <QToolButton>
#include <QWindow>

#include "settings/config_layout.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/modal.h"
#include "support/settings_fixture.h"

using namespace ql240;

namespace {

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
    return window.findChild<QDateTimeEdit*>("dateTime");
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

    // The last card is shown first; the user picks another drive.
    void changingTheDrive() {
        const MadeCard first, second;
        makeCamera(first, "QL240 1.1 2.0");
        makeCamera(second, "QL240 1.2 2.0");
        putByte(first, "framevalue", 2);
        m_fixture->insert(first);
        m_fixture->insert(second, "SECOND");
        ReadyWindow window;
        QCOMPARE(driveList(window)->count(), 2);
        QCOMPARE(driveList(window)->currentText(), "SECOND (" + second.drive() + ')');
        QCOMPARE(window.settingFolder(), second.path("setting"));
        QCOMPARE(listAt(window, {295, 20})->currentText(), "1.2");
        click(window, kVga);
        click(window, kTick);
        driveList(window)->setCurrentIndex(0);
        QVERIFY(waitForCard(window));
        QCOMPARE(window.values().framevalue, 2);
        QCOMPARE(window.values().resolutionvalue, 3);
        QCOMPARE(window.values().setsClock, 1);
        QCOMPARE(listAt(window, {295, 20})->currentText(), "1.1");
        QCOMPARE(listAt(window, {425, 20})->currentText(), "2.0");
        window.OnSlotsOK();
        QCOMPARE(byteOf(first, "framevalue"), 2);
        QVERIFY(!QFileInfo::exists(second.path("setting")));
    }

    void loadedValues() {
        const std::tuple<QByteArray, int RowValues::*, int> rows[] = {
            {"mutevalue:1\nspeakervalue:3\n", &RowValues::speakervalue, 0},
            {"mutevalue:2\nspeakervalue:3\n", &RowValues::speakervalue, 3},
            {"sensitivityvalue1:6\nsensitivityvalue2:5\n", &RowValues::sensitivityvalue, 1},
            {"sensitivityvalue1:10\nsensitivityvalue2:9\n", &RowValues::sensitivityvalue, 3},
            {"sensitivityvalue1:7\nsensitivityvalue2:7\nsensitivityvalue:2\n", &RowValues::sensitivityvalue,
             0},
            {"motionvalue:high\n", &RowValues::motionvalue, 0},
        };
        const MadeCard& card = m_fixture->camera();
        for (const auto& [onCard, value, shown] : rows) {
            card.put("setting/setting.dat", onCard);
            QVERIFY2(ReadyWindow().values().*value == shown, onCard);
        }
    }

    // A line end is part of its field.
    void batterySystem() {
        const std::tuple<QByteArray, bool, bool> rows[] = {
            {"QL240 1.02 1.00 12V", true, false},      {"QL240 1.02 1.00 24V more", false, true},
            {"QL240 1.02 1.00 24v", true, true},       {"QL240  1.02 1.00 24V", true, true},
            {"QL240 1.02 1.00 12V\nmore", true, true}, {"QL240", true, true}};
        const MadeCard& card = m_fixture->camera();
        for (const auto& [version, button12, button24] : rows) {
            makeCamera(card, version);
            const ReadyWindow window;
            QVERIFY2(buttonAt(window, {350, 490})->isEnabled() == button12, version);
            QVERIFY2(buttonAt(window, {480, 490})->isEnabled() == button24, version);
        }
    }

    void partitionAsks() {
        putByte(m_fixture->camera(), "partitionvalue", 2);
        // The current one; another one, refused, then confirmed.
        for (const auto& [x, confirmed, value] :
             {std::tuple(270, true, 2), {370, false, 2}, {370, true, 3}}) {
            ReadyWindow window;
            const ModalAnswer answer([&, confirmed = confirmed](QWidget* modal) {
                QVERIFY(qobject_cast<WindowBtn7*>(modal));
                click(*modal->childAt(confirmed ? 500 : 430, 235), {5, 5});
            });
            click(window, {x, 560});
            QCOMPARE(answer.seen(), x == 370);
            QCOMPARE(window.values().partitionvalue, value);
        }
    }

    // Until the drives answer nothing can be edited, and OK waits; the card's values stay.
    void lateDrives() {
        const MadeCard& card = m_fixture->camera();
        for (const bool left : {true, false}) {
            putByte(card, "brightvalue", 2);
            putByte(card, "framevalue", 1);
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
            QCOMPARE(card.files("setting").size(), left ? 2 : 26);
            QCOMPARE(byteOf(card, "brightvalue"), 2);
            QCOMPARE(byteOf(card, "framevalue"), 1);
            QString unit;
            QCOMPARE(readSpeedUnit(unit), !left);
        }
    }

    // A page confirmed after another drive was read changes only its own values.
    void pagesHandBackTheirOwn() {
        const MadeCard first, second;
        for (const MadeCard* card : {&first, &second})
            m_fixture->insert(*card);
        putByte(first, "framevalue", 1);
        putByte(second, "framevalue", 2);
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

    // Every value that the dialog edits: changed by clicks, saved, and read by another dialog.
    void savesAndReadsBack() {
        const MadeCard& card = m_fixture->camera();
        card.put("setting/setting.dat",
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
        QCOMPARE(card.files("setting").size(), 26 + 1);
        for (const auto& [key, byte] : {std::pair("hourvalue", 9),
                                        {"autoparkingvalue", 0},
                                        {"reversalvalue", 0},
                                        {"sharpnessvalue", 4},
                                        {"resolutionvalue", 2},
                                        {"encodingvalue", -1}})
            QCOMPARE(byteOf(card, key), byte);
        const ReadyWindow again;
        QVERIFY(again.values() == saved && !(saved == RowValues()));
    }

    // To a drive without settings; the clock only when ticked.
    void firstSave() {
        const MadeCard& card = m_fixture->camera();
        ReadyWindow window;
        click(window, {170, 200}); // the speaker off
        clockField(window)->setDateTime({{2031, 2, 3}, {4, 5, 6}});
        for (const QByteArray written : {"", "2031-02-03-04-05-06"}) {
            QCOMPARE(clockField(window)->isEnabled(), !written.isEmpty());
            window.Onapply();
            QCOMPARE(card.bytes("setting/settime.dat").value_or(""), written);
            click(window, kTick);
        }
        QCOMPARE(card.files("setting").size(), 26 + 1);
        QCOMPARE(byteOf(card, "speakervalue"), 0);
        QCOMPARE(byteOf(card, "mutevalue"), 1);
        QVERIFY(!buttonAt(window, {200, 330})->isEnabled()); // the time zone's, never enabled
        window.OnSlotsGetTime();
        QVERIFY(qAbs(clockField(window)->dateTime().secsTo(QDateTime::currentDateTime())) < 60);
    }

    void closingKeepsTheCard() {
        const MadeCard& card = m_fixture->camera();
        void (*const ways[])(ConfigWindow&) = {
            [](ConfigWindow& window) { window.OnSlotsCancel(); },
            [](ConfigWindow& window) { window.OnSlotsExit(); },
            [](ConfigWindow& window) { QTest::keyClick(&window, Qt::Key_Escape); }};
        for (const auto leave : ways) {
            ReadyWindow window;
            QSignalSpy rejected(&window, &QDialog::rejected);
            window.show();
            click(window, kVga);
            leave(window);
            QCOMPARE(rejected.size(), 1);
            QVERIFY(!window.isVisible() && !QFileInfo::exists(card.path("setting")));
            QString unit;
            QVERIFY(!readSpeedUnit(unit));
        }
    }

    void languages() {
        for (const auto& [stored, entry, kept] :
             {std::tuple("", 1, "en"), {"es", 4, "es"}, {"xx", 1, "en"}}) {
            if (*stored)
                writeLanguage(stored);
            ConfigWindow window;
            auto* list = listAt(window, {160, 645});
            QCOMPARE(list->currentIndex(), entry);
            window.Onapply();
            QString code;
            QVERIFY(readLanguage(code) && code == kept);

            list->setCurrentIndex(2);
            window.Onapply();
            QCOMPARE(currentLanguage(), "ru");
            QCOMPARE(list->itemText(0), "Корейский");
            QCOMPARE(buttonAt(window, {450, 260})->text(), "Получить время");
        }
    }

    void viewerSpeedUnit() {
        for (const auto& [stored, unit] : {std::pair("", 1), {"mph", 2}, {"knots", 2}}) {
            if (*stored)
                writeSpeedUnit(stored);
            ConfigWindow window;
            QCOMPARE(static_cast<int>(window.viewerSpeedUnit()), unit);
            window.setViewerSpeedUnit(static_cast<SpeedUnit>(3 - unit));
            window.Onapply();
            QString kept;
            QVERIFY(readSpeedUnit(kept) && kept == (unit == 1 ? "mph" : "km"));
        }
    }

    void screenSaver() {
        ConfigWindow window;
        window.OnSlotsEditor();
        QPointer<QMessageBox> box;
        const auto find = [&] {
            for (QWidget* widget : QApplication::topLevelWidgets())
                box = box ? box.data() : qobject_cast<QMessageBox*>(widget);
            return box && box->isVisible();
        };
        QTRY_VERIFY_WITH_TIMEOUT(find(), 10000);
        QCOMPARE(box->windowTitle(), "QL240 Notification");
        QCOMPARE(box->text(), "No Disk ");
        QVERIFY(!box->parent() && !box->isModal());
        box->close();
    }

    void zoneIsKept() {
        ConfigWindow window;
        QString code;
        for (int visits = 0; visits < 2; ++visits) {
            const ModalAnswer answer([&](QWidget* modal) {
                auto* zones = static_cast<WindowGMT*>(modal);
                code = zones->selectedCode();
                zones->preselect("0x55", QString());
                zones->OnSlotsOK();
            });
            window.OnSlotsGmt();
            QCOMPARE(code == u"0x55", visits == 1);
        }
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestConfigWindow)
#include "test_config_window.moc"
