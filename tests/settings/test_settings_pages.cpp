// The small pages and the time-zone window.
#include <QComboBox>
#include <QToolButton>

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

    // Which value a click sets; the golden pictures show where the marks are.
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

    // OK confirms; closing in any other way withdraws an earlier confirmation.
    void waysOut() {
        for (const auto& make : kMakers) {
            const auto page = make();
            const QPoint corner(page->width(), page->height());
            page->show();
            const auto press = [&page](QPoint place) { click(*page->childAt(place), {3, 3}); };
            press(corner - QPoint(60, 25));
            QVERIFY(!page->isVisible() && page->isConfirmed());
            const std::function<void()> ways[] = {[&] { press(corner - QPoint(125, 25)); },
                                                  [&] {
                                                      press({corner.x() - 35, 20});
                                                  },
                                                  [&] { QTest::keyClick(page.get(), Qt::Key_Escape); },
                                                  [&] { page->close(); }};
            for (const auto& leave : ways) {
                page->OnSlotsApply();
                page->show();
                leave();
                QVERIFY(!page->isVisible() && !page->isConfirmed());
            }
        }
    }

    void dialogTakesValues() {
        for (int number = 0; number < 7; ++number) {
            const OptionRow& row = pages::kPages[number].rows.front();
            ReadyWindow window;
            const int before = window.values().*row.value;
            const Choice& chosen = row.choices[row.choices[1].value == before ? 0 : 1];
            for (const bool confirmed : {false, true}) {
                const ModalAnswer answer([&](QWidget* modal) {
                    auto* page = static_cast<SettingsPage*>(modal);
                    QCOMPARE(page->values().*row.value, before);
                    click(*page, chosen.hit.center());
                    if (confirmed)
                        page->OnSlotsOK();
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
        putByte(m_fixture->camera(), "timeoffvalue", 0);
        ReadyWindow window;
        QCOMPARE(window.values().timeoffvalue, 0);
        const ModalAnswer answer([](QWidget* modal) { static_cast<SettingsPage*>(modal)->OnSlotsOK(); });
        window.OnSlotsBtn3();
        QCOMPARE(window.values().timeoffvalue, 1);
    }

    // A zone selects its bar and a bar a zone; zones of one offset share a bar, and +12 skips Fiji.
    void barsAndZones() {
        WindowGMT window(nullptr);
        window.preselect("0xFFF", QString()); // none
        QCOMPARE(window.selectedCode(), "0xE6");
        auto* list = window.findChild<QComboBox*>();
        QCOMPARE(list->count(), 90);
        const auto buttons = window.findChildren<IconToolButtonA*>();
        QCOMPARE(buttons.size(), 25);
        const auto disabled = [&] {
            QString text;
            for (auto* button : buttons)
                text += button->isEnabled() ? QString() : button->text();
            return text;
        };
        for (const auto& [row, bar] :
             {std::pair(1, "-12"), {16, "-5"}, {87, "+11"}, {88, "+12"}, {90, "+12"}}) {
            list->setCurrentIndex(row - 1);
            Q_EMIT list->textActivated(list->currentText());
            QCOMPARE(window.selectedCode(), kTimeZones[size_t(row - 1)].code);
            QCOMPARE(disabled(), bar);
        }
        for (const auto& [bar, zone, bias] :
             {std::tuple("-12", "(UTC-12:00) International Date Line West", 720),
              {"UTC", "(UTC) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London", 0},
              {"+12", "(UTC+12:00) Auckland, Wellington", -720}}) {
            for (auto* button : buttons)
                if (button->text() == QLatin1String(bar))
                    button->click();
            QCOMPARE(list->currentText(), zone);
            QCOMPARE(window.selectedBias(), bias);
            QCOMPARE(disabled(), bar);
        }
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestSettingsPages)
#include "test_settings_pages.moc"
