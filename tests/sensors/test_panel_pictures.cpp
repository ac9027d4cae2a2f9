// The panel with the skin's pictures, over the window's background, against kept pictures. Run at one and at
// two device pixels a pixel.
#include <QPainter>
#include <QTest>
#include <cmath>

#include "platform/host.h"
#include "sensors/widget_progress.h"
#include "support/fake_sensor_library.h"
#include "support/golden.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QPoint kPanelPlace(23, 394);

class Window : public QWidget {
public:
    Window() { resize(1024, 645); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).drawPixmap(rect(), skinPixmap(skinPath(QStringLiteral("main_viewer_bg"))));
    }
};

// A minute's drive: speeding up, a bend, hard braking at 40 s, a stop.
FakeSensorLibrary::Answer drive(qint64 timeMs) {
    const double t = static_cast<double>(timeMs) / 1000;
    FakeSensorLibrary::Answer answer;
    answer.speed =
        t < 40 ? static_cast<qint32>(std::min(128.0, t * 6)) : std::max(0, 128 - int((t - 40) * 50));
    answer.latitude = 37409571 + static_cast<qint32>(t * 120);
    answer.longitude = 127129253 + static_cast<qint32>(t * 80);
    answer.x = static_cast<qint16>(t < 20 ? 28 : (t > 40 && t < 42.6 ? -96 - 20 * std::sin(t * 9) : 0));
    answer.y =
        static_cast<qint16>(t > 24 && t < 32 ? 60 * std::sin((t - 24) / 8 * 3.14159) : 4 * std::sin(t * 5));
    answer.z = static_cast<qint16>(128 + 9 * std::sin(t * 17));
    return answer;
}

} // namespace

class TestPanelPictures : public QObject {
    Q_OBJECT

private:
    FakeSensorLibrary m_library;

private Q_SLOTS:
    void initTestCase() {
        installFontSubstitutes();
        m_library.answer = drive;
        host().sensorLibrary = &m_library;
    }

    void cleanupTestCase() { host() = {}; }

    void moments_data() {
        QTest::addColumn<bool>("active");
        QTest::addColumn<bool>("kilometres");
        QTest::addColumn<int>("timeMs");
        QTest::newRow("driving") << true << true << 30000;
        QTest::newRow("stopped-mph") << false << false << 41000;
    }
    void moments() {
        QFETCH(bool, active);
        QFETCH(bool, kilometres);
        QFETCH(int, timeMs);
        Window window;
        WidgetProgressA panel(&window, [] { return QStringLiteral("QL240 1.02 1.00 12V"); });
        panel.move(kPanelPlace);
        panel.setClipPath(QStringLiteral("/card/REC_2013_04_05_12_30_00.mp4"));
        panel.setDateText(QStringLiteral("2013.04.05"));
        panel.loadSensorData(60000);
        panel.setActive(true);
        panel.setKilometres(kilometres);
        panel.setRange(0, 60000);
        panel.setValue(timeMs);
        panel.setSpeed(panel.sampleAt(timeMs).speed);
        panel.setActive(active);
        const QImage picture = window.grab(QRect(kPanelPlace, panel.size())).toImage();
        const int scale = qRound(panel.devicePixelRatioF());
        const QString name =
            QStringLiteral("panel-%1@%2x").arg(QLatin1StringView(QTest::currentDataTag())).arg(scale);
        QByteArray report;
        QVERIFY2(matchesGolden(picture, name, report), report.constData());
    }
};

} // namespace ql240

QTEST_MAIN(ql240::TestPanelPictures)
#include "test_panel_pictures.moc"
