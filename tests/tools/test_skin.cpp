// The pictures as the program gets them: all there, of the sizes that the windows count on, and telling their
// looks.
#include <QDirIterator>
#include <QtTest>
#include <cmath>

#include "settings/config_layout.h"
#include "settings/page_layout.h"

using namespace ql240;

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
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::pow(lightness(a.pixel(x, y)) - lightness(b.pixel(x, y)), 2);
    return std::sqrt(sum / (a.width() * a.height()));
}

} // namespace

class TestSkin : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void picturesHaveTheirSizes() {
        int pictures = 0;
        for (QDirIterator all(QStringLiteral(":/gfx_r/2012"), {QStringLiteral("*.png")}); all.hasNext();) {
            const QString name = QFileInfo(all.next()).completeBaseName();
            if (name.endsWith(QLatin1String("@2x")))
                continue;
            ++pictures;
            QVERIFY2(picture(name + QStringLiteral("@2x")).size() == picture(name).size() * 2,
                     qPrintable(name));
        }
        QVERIFY(pictures > 100);
        QCOMPARE(picture(QStringLiteral("main_viewer_bg")).size(), QSize(1024, 645));
        QCOMPARE(picture(QStringLiteral("setting_bg")).size(), config::kSize);
        QCOMPARE(picture(QStringLiteral("gmt_bg")).size(), QSize(633, 361));
        for (const char* mark : {"check", "discheck2"})
            QCOMPARE(picture(QLatin1String(mark)).size(), config::kResolution[0].mark.size());
        for (const char* mark : {"check1", "dst_check"})
            QCOMPARE(picture(QLatin1String(mark)).size(), config::kDstMark.size());
    }

    void hasIcons_data() {
        QTest::addColumn<int>("edge");
        QTest::newRow(":/gfx_r/2012/ico_16.ico") << 16;
        QTest::newRow(":/gfx_r/2012/ico_64.ico") << 64;
        QTest::newRow(":/gfx_r/2012/ico_128.ico") << 128;
        QTest::newRow(":/gfx_r/2012/ico_256.ico") << 256;
        QTest::newRow(":/gfx_r/icon/ico_256.ico") << 256;
    }
    void hasIcons() {
        QFETCH(int, edge);
        const QImage icon(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(icon.size(), QSize(edge, edge));
        QCOMPARE(qAlpha(icon.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(icon.pixel(edge / 2, edge / 2)), 255);
    }

    void looksDifferInLightness_data() {
        QTest::addColumn<QString>("stem");
        // Controls are the pictures with a third look.
        for (QDirIterator all(QStringLiteral(":/gfx_r/2012"), {QStringLiteral("?*[a-zA-Z_]3.png")});
             all.hasNext();) {
            const QByteArray stem = QFileInfo(all.next()).completeBaseName().chopped(1).toLatin1();
            QTest::newRow(stem) << QString::fromLatin1(stem);
        }
    }
    void looksDifferInLightness() {
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
    void segmentsFillTheirPictures() {
        for (int index = 1; index <= 24; ++index) {
            const QImage segment = picture(QStringLiteral("s%1").arg(index));
            QRect lit;
            for (int y = 0; y < segment.height(); ++y) {
                for (int x = 0; x < segment.width(); ++x)
                    if (qAlpha(segment.pixel(x, y)) > 128)
                        lit |= QRect(x, y, 1, 1);
            }
            QVERIFY2(lit.width() >= segment.width() - 5 && lit.height() >= segment.height() - 5,
                     qPrintable(QString::number(index)));
        }
    }

    // Where a window can put a mark, its ground shows an empty ring or box: light at both sides, dark in the
    // middle.
    void marksHavePlaces() {
        const auto check = [](const QString& ground, std::span<const OptionRow> rows) {
            const QImage image = picture(ground);
            for (const OptionRow& row : rows) {
                for (const Choice& choice : row.choices) {
                    const int y = choice.mark.center().y();
                    const auto lightest = [&](int from, int to) {
                        double most = 0;
                        for (int x = from; x < to; ++x)
                            most = std::max(most, lightness(image.pixel(x, y)));
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
        for (const pages::PageLayout& page : pages::kPages)
            check(QString::fromLatin1(page.background), page.rows);
    }

    void ticksStandOverTheirMarks_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("y");
        QTest::addColumn<QList<int>>("marks");
        for (const pages::PageLayout& page : pages::kPages) {
            for (const OptionRow& row : page.rows) {
                // The overwrite page and the LED's have texts in place of ticks.
                if (row.choices.size() < 7)
                    continue;
                QList<int> marks;
                for (const Choice& choice : row.choices)
                    marks << choice.mark.x() + 7;
                const int y = row.choices[0].mark.y() + 7;
                QTest::addRow("%s %d", page.background, y)
                    << QString::fromLatin1(page.background) << y << marks;
            }
        }
    }
    // Above each mark's centre stands a tick two pixels wide, with nothing beside it.
    void ticksStandOverTheirMarks() {
        QFETCH(QString, name);
        QFETCH(int, y);
        QFETCH(QList<int>, marks);
        const QImage ground = picture(name);
        QList<int> ticks;
        for (int x = 21; x < 533; ++x)
            if (lightness(ground.pixel(x, y - 12)) > 40)
                ticks << x;
        QList<int> expected;
        for (const int x : marks)
            expected << x - 1 << x;
        QCOMPARE(ticks, expected);
    }
};

QTEST_MAIN(TestSkin)
#include "test_skin.moc"
