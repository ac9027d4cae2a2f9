// The pictures as the program gets them: all there, of the sizes that the windows count on, and telling their
// looks.
#include <QtTest>
#include <cmath>

#include "settings/config_layout.h"
#include "settings/page_layout.h"

using namespace ql240;

class TestSkin : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void hasPictures_data();
    void hasPictures();
    void hasIcons_data();
    void hasIcons();
    void looksDifferInLightness_data();
    void looksDifferInLightness();
    void segmentsFillTheirPictures();
    void marksHavePlaces();
    void ticksStandOverTheirMarks_data();
    void ticksStandOverTheirMarks();
};

namespace {

QImage picture(const QString& name) {
    return QImage(QStringLiteral(":/gfx_r/2012/%1.png").arg(name));
}

// Perceived lightness, 0 to 100 (CIE 1976 L*), of a colour over the window's ground.
double lightness(QRgb pixel) {
    const auto channel = [&](int value) {
        const double over = (value * qAlpha(pixel) + 9.0 * (255 - qAlpha(pixel))) / 255 / 255;
        return over <= 0.04045 ? over / 12.92 : std::pow((over + 0.055) / 1.055, 2.4);
    };
    const double luminance =
        0.2126 * channel(qRed(pixel)) + 0.7152 * channel(qGreen(pixel)) + 0.0722 * channel(qBlue(pixel));
    return luminance > 0.008856 ? 116 * std::cbrt(luminance) - 16 : 903.3 * luminance;
}

// How far two looks of a control differ in lightness, root mean square over its pixels.
double lightnessDifference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            sum += std::pow(lightness(a.pixel(x, y)) - lightness(b.pixel(x, y)), 2);
        }
    }
    return std::sqrt(sum / (a.width() * a.height()));
}

} // namespace

void TestSkin::hasPictures_data() {
    QTest::addColumn<QSize>("size");
    const auto row = [](const char* name, int width, int height) {
        QTest::newRow(name) << QSize(width, height);
    };
    row("main_viewer_bg", 1024, 645);
    row("ql240_logo", 196, 22);
    row("volume_bar", 52, 9);
    row("volume_level", 5, 7);
    row("speed_meter1", 184, 184);
    row("shock_gage2", 131, 131);
    row("earth2", 131, 131);
    row("gps_on", 43, 43);
    row("km", 24, 13);
    row("mph", 36, 13);
    row("playtime", 82, 16);
    row("model", 82, 29);
    row("date", 82, 30);
    row("progress_bar", 10, 33);
    row("0", 20, 23);
    row("9", 20, 23);
    row("s1", 20, 31);
    row("s24", 31, 16);
    row("setting_bg", 554, 730);
    row("video_edit_bg", 554, 260);
    row("video_over_bg", 554, 260);
    row("shock_bg", 554, 260);
    row("batt_timer_bg", 554, 147);
    row("batt_12v_bg", 554, 147);
    row("batt_24v_bg", 554, 147);
    row("LED_bg", 241, 260);
    row("memory_warning_bg", 554, 260);
    row("gmt_bg", 633, 361);
    row("check", 14, 14);
    row("discheck2", 14, 14);
    row("check1", 16, 15);
    row("dst_check", 16, 15);
    row("dis_saver", 233, 28);
    row("time_select2", 21, 14);
    row("time_bar1", 21, 284);
    row("time_bar2", 21, 284);
}

void TestSkin::hasPictures() {
    QFETCH(QSize, size);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(picture(name).size(), size);
    QCOMPARE(picture(name + QStringLiteral("@2x")).size(), size * 2);
}

void TestSkin::hasIcons_data() {
    QTest::addColumn<int>("edge");
    QTest::newRow(":/gfx_r/2012/ico_16.ico") << 16;
    QTest::newRow(":/gfx_r/2012/ico_64.ico") << 64;
    QTest::newRow(":/gfx_r/2012/ico_128.ico") << 128;
    QTest::newRow(":/gfx_r/2012/ico_256.ico") << 256;
    QTest::newRow(":/gfx_r/icon/ico_256.ico") << 256;
}

void TestSkin::hasIcons() {
    QFETCH(int, edge);
    const QImage icon(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(icon.size(), QSize(edge, edge));
    QCOMPARE(qAlpha(icon.pixel(0, 0)), 0);
    QCOMPARE(qAlpha(icon.pixel(edge / 2, edge / 2)), 255);
}

void TestSkin::looksDifferInLightness_data() {
    QTest::addColumn<QString>("stem");
    for (const char* stem : {"play_",  "pause",         "stop_",      "pre_file_",    "rw_",
                             "fw_",    "next_file_",    "zoom_in_",   "zoom_out_",    "original_screen_",
                             "pan_",   "volume",        "setting_",   "snapshot_",    "print_",
                             "close_", "exit_",         "file_open_", "folder_open_", "OK",
                             "cancel", "apply",         "gmt_",       "get_time_",    "video_edit_",
                             "shock_", "battery_time_", "time_select"}) {
        QTest::newRow(stem) << QString::fromLatin1(stem);
    }
}

void TestSkin::looksDifferInLightness() {
    QFETCH(QString, stem);
    QList<QImage> looks;
    for (int look = 1; look <= 3; ++look) {
        looks << picture(stem + QString::number(look));
        QVERIFY(!looks.back().isNull());
        QCOMPARE(looks.back().size(), looks.front().size());
    }
    // Eight steps of lightness over the whole picture are seen at a glance.
    QVERIFY(lightnessDifference(looks[0], looks[1]) > 8);
    QVERIFY(lightnessDifference(looks[0], looks[2]) > 8);
    QVERIFY(lightnessDifference(looks[1], looks[2]) > 8);
}

// A segment that missed its picture's place would be cut off or leave it empty.
void TestSkin::segmentsFillTheirPictures() {
    for (int index = 1; index <= 24; ++index) {
        const QImage segment = picture(QStringLiteral("s%1").arg(index));
        QRect lit;
        for (int y = 0; y < segment.height(); ++y) {
            for (int x = 0; x < segment.width(); ++x) {
                if (qAlpha(segment.pixel(x, y)) > 128) {
                    lit |= QRect(x, y, 1, 1);
                }
            }
        }
        QVERIFY2(lit.width() >= segment.width() - 5 && lit.height() >= segment.height() - 5,
                 qPrintable(QString::number(index)));
    }
}

// Where a window can put a mark, its ground shows an empty ring or box: light at both sides, dark in the
// middle.
void TestSkin::marksHavePlaces() {
    const auto check = [](const QString& ground, std::span<const OptionRow> rows) {
        const QImage image = picture(ground);
        for (const OptionRow& row : rows) {
            for (const Choice& choice : row.choices) {
                const int y = choice.mark.center().y();
                const auto lightest = [&](int from, int to) {
                    double most = 0;
                    for (int x = from; x < to; ++x) {
                        most = std::max(most, lightness(image.pixel(x, y)));
                    }
                    return most;
                };
                const int left = choice.mark.left();
                const QString where = QStringLiteral("%1 %2,%3").arg(ground).arg(left).arg(y);
                QVERIFY2(lightest(left, left + 4) > 35, qPrintable(where));
                QVERIFY2(lightest(left + 5, left + 9) < 15, qPrintable(where));
                QVERIFY2(lightest(left + 10, left + 16) > 35, qPrintable(where));
            }
        }
    };
    check(QStringLiteral("setting_bg"), config::kRows);
    for (const pages::PageLayout& page : pages::kPages) {
        check(QString::fromLatin1(page.background), page.rows);
    }
}

void TestSkin::ticksStandOverTheirMarks_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("y");
    QTest::addColumn<QList<int>>("marks");
    const QList<int> levels{169, 219, 269, 319, 369, 419, 469};
    const QList<int> sensitivities{64, 112, 161, 209, 257, 305, 353, 401, 449, 497};
    const QList<int> voltages{58, 113, 168, 223, 278, 333, 388, 443, 498};
    QTest::newRow("brightness") << "video_edit_bg" << 118 << levels;
    QTest::newRow("contrast") << "video_edit_bg" << 201 << levels;
    QTest::newRow("driving") << "shock_bg" << 117 << sensitivities;
    QTest::newRow("parked") << "shock_bg" << 198 << sensitivities;
    QTest::newRow("timer") << "batt_timer_bg" << 90 << QList<int>{108, 160, 212, 264, 316, 368, 420, 472};
    QTest::newRow("12 V") << "batt_12v_bg" << 91 << voltages;
    QTest::newRow("24 V") << "batt_24v_bg" << 91 << voltages;
}

// Above each mark's centre stands a tick two pixels wide, with nothing beside it.
void TestSkin::ticksStandOverTheirMarks() {
    QFETCH(QString, name);
    QFETCH(int, y);
    QFETCH(QList<int>, marks);
    const QImage ground = picture(name);
    QList<int> ticks;
    for (int x = 21; x < 533; ++x) {
        if (lightness(ground.pixel(x, y - 12)) > 40) {
            ticks << x;
        }
    }
    QList<int> expected;
    for (const int x : marks) {
        expected << x - 1 << x;
    }
    QCOMPARE(ticks, expected);
}

QTEST_MAIN(TestSkin)
#include "test_skin.moc"
