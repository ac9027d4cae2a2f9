// The small pages and the time-zone window.
#include <QComboBox>
#include <QSignalSpy>
#include <QToolButton>

#include "settings/config_window.h"
#include "settings/page_layout.h"
#include "settings/time_zones.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/modal.h"
#include "support/settings_fixture.h"
#include "widgets/image_buttons.h"

using namespace ql240;

namespace {

template <class Page>
std::unique_ptr<SettingsPage> make() {
    return std::make_unique<Page>(nullptr);
}
constexpr std::array kMakers = {make<WindowBtn0>, make<WindowBtn1>, make<WindowBtn2>, make<WindowBtn3>,
                                make<WindowBtn4>, make<WindowBtn5>, make<WindowBtn6>, make<WindowBtn7>};

} // namespace

class TestSettingsPages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }

    // Where a click sets which value; where the marks are, the kept pictures say.
    void clicks() {
        struct Row {
            const char* name;
            int number, index, value;
            QPoint click;
            int clicked;
        };
        for (const Row& row :
             {Row{"contrast, between two marks", 0, 1, 4, {344, 201}, 4},
              Row{"overwrite on", 1, 2, 1, {380, 174}, 0}, Row{"timer, malformed", 3, 0, 0, {472, 104}, 8},
              Row{"24 V, beside the mark", 5, 0, 246, {487, 91}, 246},
              Row{"LED, malformed", 6, 0, 9, {121, 140}, 2}}) {
            const auto page = kMakers[row.number]();
            int RowValues::*edited = pages::kPages[row.number].rows[row.index].value;
            RowValues values;
            values.*edited = row.value;
            page->setValues(values);
            click(*page, row.click);
            QVERIFY2(page->values().*edited == row.clicked, row.name);
        }
    }

    // OK confirms; every other way out takes back what was confirmed before.
    void waysOut() {
        for (const auto& make : kMakers) {
            const auto page = make();
            page->show();
            click(*page->childAt(page->width() - 60, page->height() - 25), {3, 3});
            QVERIFY(!page->isVisible() && page->isConfirmed());
            for (const QPoint place :
                 {QPoint(page->width() - 125, page->height() - 25), QPoint(page->width() - 35, 20)}) {
                page->OnSlotsApply();
                page->show();
                click(*page->childAt(place), {3, 3});
                QVERIFY(!page->isVisible() && !page->isConfirmed());
            }
        }
        WindowBtn6 page(nullptr);
        page.OnSlotsApply();
        page.show();
        QTest::keyClick(&page, Qt::Key_Escape);
        QVERIFY(!page.isVisible() && !page.isConfirmed());
        page.OnSlotsApply();
        page.show();
        page.close();
        QVERIFY(!page.isConfirmed());
    }

    void dialogTakesValues() {
        for (int number = 0; number < 7; ++number) {
            const OptionRow& row = pages::kPages[number].rows.front();
            ReadyWindow window;
            const int before = window.values().*row.value;
            const Choice& chosen = row.choices[row.choices[1].value == before ? 0 : 1];
            for (const bool confirmed : {false, true}) {
                const ModalAnswer answer([&](QWidget* modal) {
                    QCOMPARE(QString::fromLatin1(modal->metaObject()->className()),
                             QStringLiteral("ql240::WindowBtn%1").arg(number));
                    QCOMPARE(static_cast<SettingsPage*>(modal)->values().*row.value, before);
                    click(*modal, chosen.hit.center());
                    if (confirmed)
                        static_cast<SettingsPage*>(modal)->OnSlotsOK();
                });
                openPage(window, number);
                QVERIFY(answer.seen());
                QCOMPARE(window.values().*row.value, confirmed ? chosen.value : before);
            }
        }
    }

    void detailedShock() {
        ReadyWindow window;
        const auto chooseOnPage = [&](QPoint driving, QPoint parked) {
            const ModalAnswer answer([&](QWidget* modal) {
                click(*modal, driving);
                click(*modal, parked);
                static_cast<SettingsPage*>(modal)->OnSlotsOK();
            });
            window.OnSlotsBtn2();
            QVERIFY(answer.seen());
        };
        chooseOnPage({353, 117}, {353, 198});
        QCOMPARE(window.values().sensitivityvalue, 0);
        chooseOnPage({305, 117}, {257, 198});
        QCOMPARE(window.values().sensitivityvalue, 1);
        click(window, {270, 375});
        QCOMPARE(window.values().sensitivityvalue1, 8);
        QCOMPARE(window.values().sensitivityvalue2, 7);
    }

    void timerIsNeverZero() {
        const MadeCard& card = m_fixture->camera();
        putByte(card, QStringLiteral("timeoffvalue"), 0);
        ReadyWindow window;
        QCOMPARE(window.values().timeoffvalue, 0);
        const ModalAnswer answer([](QWidget* modal) { static_cast<SettingsPage*>(modal)->OnSlotsOK(); });
        window.OnSlotsBtn3();
        QCOMPARE(window.values().timeoffvalue, 1);
    }

    // The names carry their offset, which must agree with the bias; a half-hour slip in the table shows here.
    void zoneTable() {
        QSet<QString> codes;
        for (const TimeZone& zone : kTimeZones) {
            const QString name = QString::fromLatin1(zone.name);
            const int sign = name[4] == u'-' ? 1 : -1;
            const int minutes = name[4] == u')' ? 0 : name.mid(5, 2).toInt() * 60 + name.mid(8, 2).toInt();
            QVERIFY2(sign * minutes == zone.biasMinutes, zone.name);
            codes.insert(QString::fromLatin1(zone.code));
            bool isNumber = false;
            QString::fromLatin1(zone.code).toUInt(&isNumber, 16);
            QVERIFY2(isNumber, zone.code);
        }
        QCOMPARE(codes.size(), 90);
    }

    void bars_data() {
        QTest::addColumn<QString>("bar");
        QTest::addColumn<QString>("zone");
        QTest::addColumn<int>("bias");

        QTest::newRow("-12") << "-12"
                             << "(UTC-12:00) International Date Line West" << 720;
        QTest::newRow("UTC") << "UTC"
                             << "(UTC) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London" << 0;
        QTest::newRow("+12") << "+12"
                             << "(UTC+12:00) Auckland, Wellington" << -720;
    }
    void bars() {
        QFETCH(QString, bar);
        WindowGMT window(nullptr);
        window.preselect(QStringLiteral("0xD"), QString());
        const auto buttons = window.findChildren<IconToolButtonA*>();
        QCOMPARE(buttons.size(), 25);
        for (auto* button : buttons) {
            if (button->text() == bar)
                button->click();
        }
        QTEST(window.findChild<QComboBox*>()->currentText(), "zone");
        QTEST(window.selectedBias(), "bias");
        for (auto* button : buttons)
            QCOMPARE(button->isEnabled(), button->text() != bar);
    }

    void choosingAZone_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("bar");

        QTest::newRow("first") << 1 << "-12";
        QTest::newRow("Caracas") << 16 << "-5";
        QTest::newRow("Fiji, passed over by +12") << 87 << "+11";
        QTest::newRow("Auckland") << 88 << "+12";
        QTest::newRow("last") << 90 << "+12";
    }
    void choosingAZone() {
        QFETCH(int, row);
        QFETCH(QString, bar);
        WindowGMT window(nullptr);
        QCOMPARE(window.selectedCode(), QStringLiteral("0xE6"));
        auto* list = window.findChild<QComboBox*>();
        QCOMPARE(list->count(), 90);
        list->setCurrentIndex(row - 1);
        Q_EMIT list->textActivated(list->currentText());
        QCOMPARE(window.selectedCode(), QString::fromLatin1(kTimeZones[size_t(row - 1)].code));
        const auto buttons = window.findChildren<IconToolButtonA*>();
        for (auto* button : buttons)
            QCOMPARE(button->isEnabled(), button->text() != bar);
    }

    void zoneConfirmation() {
        WindowGMT window(nullptr);
        window.preselect(QStringLiteral("0xFFF"), QString());
        QCOMPARE(window.selectedCode(), QStringLiteral("0xE6"));
        window.preselect(QString(), QString());
        window.OnSlotsApply();
        QVERIFY(window.isConfirmed());
        window.show();
        window.close();
        QVERIFY(!window.isConfirmed());
        window.show();
        window.OnSlotsOK();
        QVERIFY(window.isConfirmed() && !window.isVisible());
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestSettingsPages)
#include "test_settings_pages.moc"
