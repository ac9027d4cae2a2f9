// The panel's arithmetic and layout, painted with pictures of one colour each.
#include <QImage>
#include <QPainter>
#include <QTest>

#include "sensors/panel_painting.h"

using namespace ql240;
namespace {

QPixmap plain(QSize size, QColor colour) {
    QPixmap pixmap(size);
    pixmap.fill(colour);
    return pixmap;
}

const QColor kMph(30, 0, 0);

// Segment i is (10, i, 0), digit i (20, i, 0). The golden pictures show the other pictures.
QImage paint(const PanelState& state) {
    PanelImages images;
    for (int i = 0; i < panel::kSegmentCount; ++i)
        images.segments[i] = plain({3, 3}, QColor(10, i, 0));
    for (int i = 0; i < panel::kDigitCount; ++i)
        images.digits[i] = plain({20, 23}, QColor(20, i, 0));
    images.mphLabel = plain(panel::kMphLabel.size(), kMph);
    QImage picture(state.size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
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
    void speed() {
        const std::tuple<int, bool, const char*, int> rows[] = {
            {0, true, "--0", 0},    {9, true, "--9", 0},     {10, true, "-10", 1}, {105, true, "105", 10},
            {241, true, "241", 24}, {1000, true, "--0", 24}, {1, false, "--0", 0}, {100, false, "-62", 6},
        };
        for (const auto& [speedKmh, kilometres, digits, segments] : rows) {
            PanelState state;
            state.speedKmh = speedKmh;
            state.kilometres = kilometres;
            const QImage picture = paint(state);
            QCOMPARE(digitsShown(picture), digits);
            QCOMPARE(extent(picture, kMph), kilometres ? QRect() : QRect(310, 179, 36, 13));
            for (int i = 0; i < panel::kSegmentCount; ++i)
                QCOMPARE(extent(picture, QColor(10, i, 0)).isEmpty(), i >= segments);
        }
    }

    void cursor() {
        const std::tuple<int, int, int> rows[] = {{60000, 60000, 639}, {0, 60000, 2}, {59999, 60000, 641},
                                                  {-1, -1, 2},         {500, 0, 2},   {3600001, 7200000, 322},
                                                  {INT_MAX, 1, 642}};
        for (const auto& [value, maximum, x] : rows) {
            PanelState state;
            state.progressValue = value;
            state.progressMaximum = maximum;
            QCOMPARE(extent(paint(state), Qt::white), x < 642 ? QRect(x, 2, 1, 33) : QRect());
        }
        QCOMPARE(panel::seekTarget(629, 0, 10800000, 642), 10782802); // needs more than 32 bits on the way
    }

    void texts() {
        QCOMPARE(progressText(4500000, 5999999), "75:00/99:59");
        QCOMPARE(progressText(-1, 6000000), "00:00/100:00");
        QCOMPARE(accelerationText(-64), "-0.5");
        QCOMPARE(accelerationText(3), "0.0234");
        QCOMPARE(accelerationText(-32768), "-256");
        QCOMPARE(degreeText(37.409571), "37.4096");
        QCOMPARE(degreeText(-127.5), "-127.5");
        QCOMPARE(degreeText(-0.0), QString());
    }

    void tracePlaces() {
        // Integer division loses values below 11; then the last below the cap, the cap, the smallest.
        const std::pair<int, int> heights[] = {{10, 18},  {11, 19},  {128, 30},   {-128, 30},
                                               {211, 37}, {212, 38}, {-32768, 38}};
        for (const auto& [acceleration, y] : heights)
            QCOMPARE(panel::traceY(acceleration), y);
        QCOMPARE(panel::traceX(1, 3, 642), 213);
        QCOMPARE(panel::traceX(2, 3, 642), 427);
        QCOMPARE(panel::traceX(3, 3, 642), 640);
        QCOMPARE(panel::traceX(1, 1280, 642), 1); // half rounds up
    }
};

QTEST_MAIN(TestPanel)
#include "test_panel.moc"
