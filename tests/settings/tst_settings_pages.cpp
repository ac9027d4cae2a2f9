// The small pages and the time-zone window.
#include <QComboBox>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QToolButton>

#include "settings/config_window.h"
#include "settings/time_zones.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/modal.h"
#include "support/settings_fixture.h"
#include "widgets/image_buttons.h"
#include "widgets/skin.h"

using namespace ql240;

namespace {

// A row of a page as it was ordered: the mark's top left corner and the hit box of each value.
struct PageRow {
    int page;
    int RowValues::*value;
    QList<int> values;
    QList<QPoint> marks;
    QList<QRect> hits;
    QPoint stray; // where any other value is marked
};

QList<QPoint> points(const QList<int>& xs, int y) {
    QList<QPoint> list;
    for (const int x : xs)
        list.append({x, y});
    return list;
}

PageRow centred(int page, int RowValues::*value, const QList<int>& values, const QList<int>& xs, int y,
                int hitTop, int hitHeight, int strayX) {
    PageRow row{page, value, values, points(xs, y), {}, {strayX - 7, y - 7}};
    for (QPoint& mark : row.marks) {
        row.hits.append({mark.x() - 10, hitTop, 20, hitHeight});
        mark -= QPoint(7, 7);
    }
    return row;
}

PageRow overwrite(int RowValues::*value, int y) {
    return {1, value, {1, 0}, points({294, 390}, y), {{284, y - 5, 30, 30}, {380, y - 5, 30, 30}}, {390, y}};
}

QList<PageRow> pageRows() {
    const QList<int> seven = {1, 2, 3, 4, 5, 6, 7};
    const QList<int> sevenX = {169, 219, 269, 319, 369, 419, 469};
    const QList<int> ten = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const QList<int> tenX = {64, 112, 161, 209, 257, 305, 353, 401, 449, 497};
    const QList<int> nineX = {58, 113, 168, 223, 278, 333, 388, 443, 498};
    return {
        centred(0, &RowValues::brightvalue, seven, sevenX, 118, 108, 20, 469),
        centred(0, &RowValues::contrastvalue, seven, sevenX, 201, 191, 20, 469),
        overwrite(&RowValues::evtoverwritevalue, 81),
        overwrite(&RowValues::manuoverwritevalue, 130),
        overwrite(&RowValues::motoverwritevalue, 179),
        centred(2, &RowValues::sensitivityvalue1, ten, tenX, 117, 107, 20, 497),
        centred(2, &RowValues::sensitivityvalue2, ten, tenX, 198, 188, 20, 497),
        centred(3, &RowValues::timeoffvalue, {1, 2, 3, 4, 5, 6, 7, 8},
                {108, 160, 212, 264, 316, 368, 420, 472}, 90, 65, 40, 108),
        centred(4, &RowValues::batteryvalue1, {0, 116, 117, 118, 119, 120, 121, 122, 123}, nineX, 91, 65, 40,
                58),
        centred(5, &RowValues::batteryvalue2, {0, 232, 234, 236, 238, 240, 242, 244, 246}, nineX, 91, 65, 40,
                58),
        {6,
         &RowValues::securityvalue,
         {0, 1, 2, 3},
         {{145, 93}, {145, 121}, {145, 149}, {145, 177}},
         {{120, 83, 40, 20}, {120, 111, 40, 20}, {120, 139, 40, 20}, {120, 167, 40, 20}},
         {145, 68}},
    };
}

template <class Page>
std::unique_ptr<SettingsPage> make() {
    return std::make_unique<Page>(nullptr);
}
constexpr std::array kMakers = {make<WindowBtn0>, make<WindowBtn1>, make<WindowBtn2>, make<WindowBtn3>,
                                make<WindowBtn4>, make<WindowBtn5>, make<WindowBtn6>, make<WindowBtn7>};

constexpr QSize kMark(14, 14);

QImage shownMark(SettingsPage& page, QPoint at) {
    return page.grab(QRect(at, kMark)).toImage().convertToFormat(QImage::Format_RGB32);
}

// The page's background at `at`, with the mark on it.
QImage expectedMark(const QImage& background, QPoint at) {
    QImage image = background.copy(QRect(at, kMark)).convertToFormat(QImage::Format_RGB32);
    QPainter painter(&image);
    painter.drawPixmap(0, 0, skinPixmap(skinPath(QStringLiteral("check"))));
    painter.end();
    return image;
}

} // namespace

class TestSettingsPages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }
    void rows_data();
    void rows();
    void marksAreRoundAtOneAndAHalf();
    void frames_data();
    void frames();
    void dialogTakesValues_data();
    void dialogTakesValues();
    void detailedShock();
    void timerIsNeverZero();
    void zoneTable();
    void bars_data();
    void bars();
    void choosingAZone_data();
    void choosingAZone();
    void zoneConfirmation();

private:
    std::optional<SettingsFixture> m_fixture;
};

void TestSettingsPages::rows_data() {
    QTest::addColumn<int>("index");
    const QList<PageRow> all = pageRows();
    for (int i = 0; i < all.size(); ++i)
        QTest::addRow("page %d, row %d", all[i].page, i) << i;
}

void TestSettingsPages::rows() {
    QFETCH(int, index);
    const PageRow row = pageRows()[index];
    const auto page = kMakers[size_t(row.page)]();
    const QImage background(skinPath(QLatin1String(pages::kPages[size_t(row.page)].background)));
    QVERIFY(!background.isNull());
    RowValues values;
    values.*row.value = 99;
    page->setValues(values);
    QVERIFY(shownMark(*page, row.stray) == expectedMark(background, row.stray));

    for (int i = 0; i < row.values.size(); ++i) {
        const QRect hit = row.hits[i];
        for (const QPoint inside : {hit.topLeft(), hit.bottomRight()}) {
            page->setValues(values);
            click(*page, inside);
            QCOMPARE(page->values().*row.value, row.values[i]);
        }
        for (const QPoint& mark : row.marks) {
            const bool marked = shownMark(*page, mark) == expectedMark(background, mark);
            QCOMPARE(marked, mark == row.marks[i]);
        }
        for (const QPoint outside : {hit.topLeft() - QPoint(1, 0), hit.topLeft() - QPoint(0, 1)}) {
            page->setValues(values);
            click(*page, outside);
            QCOMPARE(page->values().*row.value, 99);
        }
    }
}

// On a screen of one and a half device pixels a pixel every second line of a picture would be lost or doubled
// if it weren't drawn smoothly. A ring, empty or chosen, is its own mirror image.
void TestSettingsPages::marksAreRoundAtOneAndAHalf() {
    constexpr double kRatio = 1.5;
    WindowBtn1 page(nullptr);
    QImage image(page.size() * kRatio, QImage::Format_RGB32);
    image.setDevicePixelRatio(kRatio);
    page.render(&image);
    for (const QPoint corner : {QPoint(294, 130), QPoint(390, 130)}) {
        const QImage ring = image.copy(QRect((QPointF(corner) * kRatio).toPoint(), kMark * kRatio));
        const QImage mirrored = ring.mirrored();
        int largest = 0;
        for (int y = 0; y < ring.height(); ++y) {
            for (int x = 0; x < ring.width(); ++x)
                largest = qMax(largest, qAbs(qGray(ring.pixel(x, y)) - qGray(mirrored.pixel(x, y))));
        }
        QVERIFY2(largest < 24, qPrintable(QString::number(largest)));
    }
}

void TestSettingsPages::frames_data() {
    QTest::addColumn<int>("number");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("ok");
    QTest::addColumn<QPoint>("cancel");
    QTest::addColumn<QPoint>("close");

    const QSize tall(554, 260), flat(554, 147), narrow(241, 260);
    for (const int number : {0, 1, 2, 7}) {
        const QPoint close(number == 7 ? 509 : 510, 13);
        QTest::addRow("page %d", number) << number << tall << QPoint(473, 221) << QPoint(408, 221) << close;
    }
    for (const int number : {3, 4, 5})
        QTest::addRow("page %d", number)
            << number << flat << QPoint(473, 108) << QPoint(408, 108) << QPoint(510, 13);
    QTest::newRow("page 6") << 6 << narrow << QPoint(160, 221) << QPoint(95, 221) << QPoint(197, 13);
}

void TestSettingsPages::frames() {
    QFETCH(int, number);
    const auto page = kMakers[size_t(number)]();
    QTEST(page->size(), "size");
    QFETCH(QPoint, ok);
    QFETCH(QPoint, cancel);
    QFETCH(QPoint, close);
    const auto press = [&](QPoint place) {
        page->show();
        auto* button = qobject_cast<QToolButton*>(page->childAt(place));
        QVERIFY(button);
        QCOMPARE(button->pos(), place);
        click(*button, {3, 3});
        QVERIFY(!page->isVisible());
    };
    press(ok);
    QVERIFY(page->isConfirmed());
    press(cancel);
    QVERIFY(!page->isConfirmed());
    for (const auto& leave : {std::function([&] { press(close); }),
                              std::function([&] { QTest::keyClick(page.get(), Qt::Key_Escape); }),
                              std::function([&] { page->close(); })}) {
        page->OnSlotsApply();
        page->show();
        QVERIFY(page->isConfirmed());
        leave();
        QVERIFY(!page->isVisible());
        QVERIFY(!page->isConfirmed());
    }
}

void TestSettingsPages::dialogTakesValues_data() {
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("confirmed");
    for (int number = 0; number < 7; ++number) {
        QTest::addRow("page %d confirmed", number) << number << true;
        QTest::addRow("page %d left", number) << number << false;
    }
}

void TestSettingsPages::dialogTakesValues() {
    QFETCH(int, number);
    QFETCH(bool, confirmed);
    const QList<PageRow> all = pageRows();
    const auto row =
        std::find_if(all.begin(), all.end(), [&](const PageRow& each) { return each.page == number; });
    ConfigWindow window;
    const int before = window.values().*row->value;
    const int chosen = row->values[1] == before ? 0 : 1;
    const ModalAnswer answer([&](QWidget* modal) {
        QCOMPARE(QString::fromLatin1(modal->metaObject()->className()),
                 QStringLiteral("ql240::WindowBtn%1").arg(number));
        QCOMPARE(static_cast<SettingsPage*>(modal)->values().*row->value, before);
        click(*modal, row->hits[chosen].center());
        if (confirmed)
            static_cast<SettingsPage*>(modal)->OnSlotsOK();
    });
    QMetaObject::invokeMethod(&window, QStringLiteral("OnSlotsBtn%1").arg(number).toLatin1().constData());
    QVERIFY(answer.seen());
    QCOMPARE(window.values().*row->value, confirmed ? row->values[chosen] : before);
}

void TestSettingsPages::detailedShock() {
    ConfigWindow window;
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
}

void TestSettingsPages::timerIsNeverZero() {
    const MadeCard card;
    makeCamera(card);
    putByte(card, QStringLiteral("timeoffvalue"), 0);
    m_fixture->insert(card);
    ConfigWindow window;
    QVERIFY(waitForCard(window));
    QCOMPARE(window.values().timeoffvalue, 0);
    const ModalAnswer answer([](QWidget* modal) { static_cast<SettingsPage*>(modal)->OnSlotsOK(); });
    window.OnSlotsBtn3();
    QCOMPARE(window.values().timeoffvalue, 1);
}

// The names carry their offset, which must agree with the bias; a half-hour slip in the table shows here.
void TestSettingsPages::zoneTable() {
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

void TestSettingsPages::bars_data() {
    QTest::addColumn<QString>("bar");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<int>("bias");

    QTest::newRow("-12") << "-12"
                         << "(UTC-12:00) International Date Line West" << 720;
    QTest::newRow("UTC") << "UTC"
                         << "(UTC) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London" << 0;
    QTest::newRow("+9") << "+9"
                        << "(UTC+09:00) Seoul" << -540;
    QTest::newRow("+12") << "+12"
                         << "(UTC+12:00) Auckland, Wellington" << -720;
}

void TestSettingsPages::bars() {
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

void TestSettingsPages::choosingAZone_data() {
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("bar");

    QTest::newRow("first") << 1 << "-12";
    QTest::newRow("Caracas") << 16 << "-5";
    QTest::newRow("last before UTC") << 30 << "-1";
    QTest::newRow("UTC") << 31 << "UTC";
    QTest::newRow("Chennai") << 63 << "+5";
    QTest::newRow("Fiji, passed over by +12") << 87 << "+11";
    QTest::newRow("Auckland") << 88 << "+12";
    QTest::newRow("last") << 90 << "+12";
}

void TestSettingsPages::choosingAZone() {
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

void TestSettingsPages::zoneConfirmation() {
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

QTEST_MAIN(TestSettingsPages)
#include "tst_settings_pages.moc"
