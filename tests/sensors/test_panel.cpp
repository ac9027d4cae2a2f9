// The panel's arithmetic and what it puts where, painted with stand-in pictures of one colour each.
#include <QImage>
#include <QPainter>
#include <QTest>

#include "sensors/panel_painting.h"

namespace ql240 {
namespace {

QPixmap plain(QSize size, QColor colour) {
    QPixmap pixmap(size);
    pixmap.fill(colour);
    return pixmap;
}

// Segment i is (10, i, 0), digit i (20, i, 0). The other pictures' places are seen on the kept pictures.
PanelImages standIns() {
    PanelImages images;
    for (int i = 0; i < panel::kSegmentCount; ++i)
        images.segments[i] = plain({3, 3}, QColor(10, i, 0));
    for (int i = 0; i < panel::kDigitCount; ++i)
        images.digits[i] = plain({20, 23}, QColor(20, i, 0));
    return images;
}

QImage paint(const PanelState& state) {
    QImage picture(state.size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    const PanelImages images = standIns();
    paintInstruments(painter, images, state);
    paintReadings(painter, images, state);
    return picture;
}

QRect extent(const QImage& picture, QColor colour) {
    QRect found;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) == colour.rgb())
                found |= QRect(x, y, 1, 1);
    }
    return found;
}

// The digits found at the three places, '-' where there is none.
QString digitsShown(const QImage& picture) {
    QString text;
    for (const int x : {286, 310, 334}) {
        const QColor colour = picture.pixelColor(x, 172);
        text += colour.red() == 20 ? QString::number(colour.green()) : QStringLiteral("-");
    }
    return text;
}

} // namespace

class TestPanel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void speed_data() {
        QTest::addColumn<int>("speedKmh");
        QTest::addColumn<bool>("kilometres");
        QTest::addColumn<QString>("digits");
        QTest::addColumn<int>("segments");
        QTest::newRow("0") << 0 << true << "--0" << 0;
        QTest::newRow("7") << 7 << true << "--7" << 0;
        QTest::newRow("9") << 9 << true << "--9" << 0;
        QTest::newRow("10") << 10 << true << "-10" << 1;
        QTest::newRow("70") << 70 << true << "-70" << 7;
        QTest::newRow("105") << 105 << true << "105" << 10;
        QTest::newRow("170") << 170 << true << "170" << 17;
        QTest::newRow("241") << 241 << true << "241" << 24;
        QTest::newRow("1000 has no thousands") << 1000 << true << "--0" << 24;
        QTest::newRow("100 km/h in mph") << 100 << false << "-62" << 6;
        QTest::newRow("1 km/h in mph") << 1 << false << "--0" << 0;
        QTest::newRow("241 km/h in mph") << 241 << false << "149" << 14;
    }
    void speed() {
        QFETCH(int, speedKmh);
        QFETCH(bool, kilometres);
        QFETCH(QString, digits);
        QFETCH(int, segments);
        PanelState state;
        state.speedKmh = speedKmh;
        state.kilometres = kilometres;
        const QImage picture = paint(state);
        QCOMPARE(digitsShown(picture), digits);
        for (int i = 0; i < panel::kSegmentCount; ++i)
            QCOMPARE(extent(picture, QColor(10, i, 0)).isEmpty(), i >= segments);
    }

    void cursor_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("x");
        QTest::newRow("middle") << 30000 << 60000 << 322;
        QTest::newRow("end") << 60000 << 60000 << 639;
        QTest::newRow("start") << 0 << 60000 << 2;
        QTest::newRow("truncated") << 59999 << 60000 << 641;
        QTest::newRow("cleared") << -1 << -1 << 2;
        QTest::newRow("no range") << 500 << 0 << 2;
        QTest::newRow("two hours") << 3600001 << 7200000 << 322;
        QTest::newRow("far behind the end") << INT_MAX << 1 << 642;
    }
    void cursor() {
        QFETCH(int, value);
        QFETCH(int, maximum);
        QFETCH(int, x);
        PanelState state;
        state.progressValue = value;
        state.progressMaximum = maximum;
        const QRect bar = extent(paint(state), Qt::white);
        QCOMPARE(bar, x < 642 ? QRect(x, 2, 1, 33) : QRect());
    }

    void seekTarget_data() {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("target");
        QTest::newRow("middle") << 316 << 60000 << 30000;
        QTest::newRow("first") << 2 << 60000 << 0;
        QTest::newRow("last") << 629 << 60000 << 59904;
        QTest::newRow("three hours") << 629 << 10800000 << 10782802;
    }
    void seekTarget() {
        QFETCH(int, x);
        QFETCH(int, maximum);
        QTEST(panel::seekTarget(x, 0, maximum, 642), "target");
    }

    void texts() {
        QCOMPARE(progressText(61500, 125000), QStringLiteral("01:01/02:05"));
        QCOMPARE(progressText(4500000, 5999999), QStringLiteral("75:00/99:59"));
        QCOMPARE(progressText(-1, 6000000), QStringLiteral("00:00/100:00"));
        QCOMPARE(accelerationText(128), QStringLiteral("1"));
        QCOMPARE(accelerationText(-64), QStringLiteral("-0.5"));
        QCOMPARE(accelerationText(3), QStringLiteral("0.0234"));
        QCOMPARE(accelerationText(-32768), QStringLiteral("-256"));
        QCOMPARE(degreeText(37.409571), QStringLiteral("37.4096"));
        QCOMPARE(degreeText(-127.5), QStringLiteral("-127.5"));
        QCOMPARE(degreeText(-0.0), QString());
    }

    void traceHeight_data() {
        QTest::addColumn<int>("acceleration");
        QTest::addColumn<int>("y");
        QTest::newRow("still") << 0 << 18;
        QTest::newRow("10") << 10 << 18;
        QTest::newRow("11, lost by whole-number division") << 11 << 19;
        QTest::newRow("1 g") << 128 << 30;
        QTest::newRow("-1 g") << -128 << 30;
        QTest::newRow("last below the cap") << 211 << 37;
        QTest::newRow("cap") << 212 << 38;
        QTest::newRow("smallest") << -32768 << 38;
    }
    void traceHeight() {
        QFETCH(int, acceleration);
        QTEST(panel::traceY(acceleration), "y");
    }

    void tracePlaces() {
        QCOMPARE(panel::traceX(1, 3, 642), 213);
        QCOMPARE(panel::traceX(2, 3, 642), 427);
        QCOMPARE(panel::traceX(3, 3, 642), 640);
        QCOMPARE(panel::traceX(1, 1280, 642), 1); // half rounds up
    }

    // Two samples: every axis starts at rest, the later axis covers the earlier one.
    void trace() {
        QImage picture(642, 41, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QPainter painter(&picture);
        paintTrace(painter, {{0, 0, 128, 128, 0, 0, 0}, {100, 0, 128, -211, 0, 0, 0}}, 642);
        painter.end();
        QCOMPARE(picture.pixelColor(0, 18), QColor(0, 0, 255));
        QCOMPARE(picture.pixelColor(310, 18), QColor(255, 0, 0));
        QCOMPARE(picture.pixelColor(310, 29), QColor(0, 0, 255));
        QCOMPARE(picture.pixelColor(630, 30), QColor(255, 255, 0));
        QCOMPARE(picture.pixelColor(640, 37), QColor(0, 0, 255));
        QCOMPARE(picture.pixelColor(641, 37), QColor(Qt::black));
    }
};

} // namespace ql240

QTEST_MAIN(ql240::TestPanel)
#include "test_panel.moc"
