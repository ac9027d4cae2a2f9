#include <QDate>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPainter>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

#include "platform/host.h"
#include "sensors/widget_progress.h"
#include "support/fake_drives.h"
#include "support/fake_sensor_library.h"
#include "support/made_card.h"

namespace ql240 {
namespace {

// Sends the event as the main window does, straight to the handler; true when it was accepted.
bool send(WidgetProgressA& panel, QEvent::Type type, QPoint place, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(type, QPointF(place), QPointF(place), button, button, Qt::NoModifier);
    event.setAccepted(true);
    if (type == QEvent::MouseButtonPress)
        panel.mousePressEvent(&event);
    else if (type == QEvent::MouseMove)
        panel.mouseMoveEvent(&event);
    else
        panel.mouseReleaseEvent(&event);
    return event.isAccepted();
}

constexpr auto kPress = QEvent::MouseButtonPress;
constexpr auto kMove = QEvent::MouseMove;
constexpr auto kRelease = QEvent::MouseButtonRelease;

// How many pixels of this colour the strip has.
int coloured(const QImage& strip, QColor colour) {
    int count = 0;
    for (int x = 0; x < strip.width(); ++x)
        for (int y = 0; y <= panel::kStripBottom; ++y)
            count += strip.pixelColor(x, y) == colour;
    return count;
}

} // namespace

class TestWidgetProgress : public QObject {
    Q_OBJECT

private:
    FakeDrives m_drives;
    FakeSensorLibrary m_library;
    MadeCard m_card;

    void putVersion(const MadeCard& card, const QByteArray& version) {
        card.put(QStringLiteral("update/version.txt"), version);
    }

private Q_SLOTS:
    void init() {
        m_drives = {};
        m_library = {};
        host().drives = &m_drives;
        host().sensorLibrary = &m_library;
    }

    void cleanup() { host() = {}; }

    void startsAsTheSheetSays() {
        host().sensorLibrary = nullptr;
        WidgetProgressA panel;
        const PanelState state = panel.state();
        QCOMPARE(panel.size(), QSize(642, 250));
        QCOMPARE(state.timeText, QStringLiteral("00:00/00:00"));
        QCOMPARE(state.modelText, QStringLiteral("unknown"));
        QCOMPARE(state.dateText, QDate::currentDate().toString(QStringLiteral("yyyy.MM.dd")));
        QVERIFY(state.kilometres);
        QVERIFY(panel.sampleAt(0) == SensorSample());
        panel.setClipPath(QStringLiteral("a.mp4"));
        panel.loadSensorData(1000); // with no library behind it
        QVERIFY(panel.sampleAt(0) == SensorSample());
        QCOMPARE(panel.metaObject()->indexOfSignal("clicked(int)") - panel.metaObject()->methodOffset(), 0);
        QCOMPARE(panel.metaObject()->indexOfSlot("OnTimeoutAnimation()") - panel.metaObject()->methodOffset(),
                 1);
    }

    void rangeAndValue() {
        WidgetProgressA panel;
        panel.setRange(0, 125000);
        panel.setValue(61500);
        QCOMPARE(panel.state().timeText, QStringLiteral("01:01/02:05"));
        panel.setRange(10, 9);
        QCOMPARE(panel.state().progressMaximum, 125000);
        panel.grab();
        panel.setValue(125001);
        QCOMPARE(panel.state().progressValue, 61500);
        panel.setValue(-1);
        QCOMPARE(panel.state().progressValue, 61500);
        panel.setRange(0, 60000);
        QCOMPARE(panel.state().timeText, QStringLiteral("01:01/01:00"));
        panel.setValue(61501); // let through since the range changed after the last paint
        QCOMPARE(panel.state().progressValue, 61501);
        panel.setRange(0, 60000);
        panel.grab();
        panel.setValue(61502);
        QCOMPARE(panel.state().progressValue, 61501);
        panel.clearSensorData();
        QCOMPARE(panel.state().progressMaximum, -1);
        QCOMPARE(panel.state().progressValue, -1);
        panel.setRange(0, 0);
        QCOMPARE(panel.state().timeText, QStringLiteral("00:00/00:00"));
    }

    void model_data() {
        QTest::addColumn<QByteArrayList>("versions");
        QTest::addColumn<QString>("model");
        QTest::newRow("no drive") << QByteArrayList() << "unknown";
        QTest::newRow("one") << QByteArrayList{"QL240 1.02 1.00 24V"} << "QL240";
        QTest::newRow("last file decides") << QByteArrayList{"AAAAAAAA", "BBBBBBBB"} << "BBBBB";
        QTest::newRow("short lines are joined") << QByteArrayList{"QL\r\n24\r\n"} << "QL\n24";
        QTest::newRow("empty file") << QByteArrayList{""} << "";
    }
    void model() {
        QFETCH(QByteArrayList, versions);
        QFETCH(QString, model);
        const MadeCard cards[3]; // the last is a stick without a version
        for (int i = 0; i < versions.size(); ++i)
            putVersion(cards[i], versions[i]);
        for (const MadeCard& card : cards)
            m_drives.drives.append({card.drive(), {}, {}});
        WidgetProgressA panel;
        QTRY_COMPARE(panel.state().modelText, model);
        m_drives.drives.clear();
        panel.setClipPath(QStringLiteral("b.mp4")); // no card any more: the text stays
        QCOMPARE(panel.state().modelText, model);
    }

    // A card reader that doesn't answer holds up nothing; the text follows when it does.
    void hangingCardReader() {
        QSemaphore answers;
        putVersion(m_card, "QL240 1.02");
        m_drives.drives.append({m_card.drive(), {}, {}});
        m_drives.before = [&answers] { answers.acquire(); };
        QElapsedTimer timer;
        timer.start();
        WidgetProgressA panel;
        for (int i = 0; i < 100; ++i)
            panel.setClipPath(QStringLiteral("a.mp4"));
        QVERIFY(timer.elapsed() < 5000); // a hundred waits of the constructor's would be more
        QCOMPARE(panel.state().modelText, QStringLiteral("unknown"));
        answers.release();
        QTRY_COMPARE(panel.state().modelText, QStringLiteral("QL240"));
        putVersion(m_card, "QL999 1.02");
        answers.release(); // one more look for all the clips
        QTRY_COMPARE(panel.state().modelText, QStringLiteral("QL999"));
    }

    void track() {
        m_library.lastMs = 400;
        m_library.answer = [](qint64 t) {
            return FakeSensorLibrary::Answer{t < 200 ? 0 : 1500000, 2500000, 'S', 'E', 60, short(t), -5, 7};
        };
        WidgetProgressA panel;
        panel.loadSensorData(500); // no clip, nothing to ask for
        QVERIFY(m_library.path.isEmpty());
        panel.setClipPath(QStringLiteral("/card/a.mp4"));
        panel.loadSensorData(500);
        QCOMPARE(panel.sensorTrack().size(), size_t(5));
        QCOMPARE(panel.sampleAt(100).speed, 60);
        QVERIFY(!panel.state().hasFix);
        QCOMPARE(panel.sampleAt(99999).latitude, -1.5);
        QVERIFY(panel.state().hasFix);
        QCOMPARE(panel.state().accX, 400);
        QCOMPARE(panel.state().latitude, -1.5);
        QCOMPARE(panel.state().speedKmh, 0);
        QVERIFY(panel.sampleAt(-1) == SensorSample());
        QCOMPARE(panel.state().accX, 0);
        QVERIFY(!panel.state().hasFix);
        panel.clearSensorData();
        QVERIFY(panel.sensorTrack().empty());
        QCOMPARE(panel.sampleAt(0).timeMs, -1);
    }

    // A clip without data clears the readings; one whose trailer is found keeps them until the next look-up.
    void readingsAcrossClips() {
        WidgetProgressA panel;
        panel.setClipPath(QStringLiteral("/card/a.mp4"));
        panel.loadSensorData(500);
        panel.sampleAt(0);
        QVERIFY(panel.state().latitude != 0.0);
        m_card.put(QStringLiteral("REC_a.avi"), "vETKLP1\n");
        panel.setClipPath(m_card.path(QStringLiteral("REC_a.avi")));
        m_library.path.clear();
        panel.loadSensorData(500);
        QVERIFY(panel.state().latitude != 0.0);
        QVERIFY(m_library.path.isEmpty());
        m_library.hasData = false;
        panel.setClipPath(QStringLiteral("/card/REC_b.avi"));
        panel.loadSensorData(500);
        QCOMPARE(m_library.path, QByteArray("/card/REC_b.avi"));
        QCOMPARE(panel.state().latitude, 0.0);
        QVERIFY(panel.state().hasFix); // no look-up has said otherwise
        QCOMPARE(panel.sampleAt(0).timeMs, -1);
    }

    void activity() {
        WidgetProgressA panel;
        const auto* timer = panel.findChild<QTimer*>();
        QVERIFY(timer != nullptr);
        panel.setClipPath(QStringLiteral("/card/a.mp4"));
        panel.loadSensorData(500);
        panel.setActive(true);
        QVERIFY(panel.isEnabled() && timer->isActive());
        QCOMPARE(timer->interval(), 2000);
        panel.sampleAt(0);
        panel.setSpeed(88);
        panel.setAnimating(false);
        QVERIFY(panel.isEnabled() && !timer->isActive());
        QVERIFY(panel.state().hasFix);
        panel.setAnimating(true);
        panel.resetIndicators();
        QVERIFY(!timer->isActive() && !panel.state().hasFix);
        QCOMPARE(panel.state().speedKmh, 0);
        QVERIFY(panel.state().latitude != 0.0);
        panel.setActive(true);
        panel.setActive(false);
        QVERIFY(!panel.isEnabled() && !timer->isActive());
        QCOMPARE(panel.state().latitude, 0.0);
        QCOMPARE(panel.state().accZ, 0);
    }

    void clicks_data() {
        QTest::addColumn<QPoint>("pressed");
        QTest::addColumn<QPoint>("released");
        QTest::addColumn<bool>("pressTaken");
        QTest::addColumn<int>("target");
        QTest::newRow("middle") << QPoint(316, 20) << QPoint(316, 20) << true << 30000;
        QTest::newRow("dragged") << QPoint(316, 20) << QPoint(2, 40) << true << 0;
        QTest::newRow("right end") << QPoint(629, 1) << QPoint(629, 1) << true << 59904;
        QTest::newRow("pressed right of the area") << QPoint(630, 20) << QPoint(316, 20) << false << -1;
        QTest::newRow("pressed above the area") << QPoint(316, 0) << QPoint(316, 20) << false << -1;
        QTest::newRow("pressed below the strip") << QPoint(316, 41) << QPoint(316, 20) << false << -1;
        QTest::newRow("released left of the area") << QPoint(316, 20) << QPoint(1, 20) << true << -1;
        QTest::newRow("released below the strip") << QPoint(316, 20) << QPoint(316, 41) << true << -1;
    }
    void clicks() {
        QFETCH(QPoint, pressed);
        QFETCH(QPoint, released);
        QFETCH(bool, pressTaken);
        QFETCH(int, target);
        WidgetProgressA panel;
        panel.setActive(false); // the strip works all the same
        panel.setRange(0, 60000);
        const QSignalSpy spy(&panel, &WidgetProgressA::clicked);
        QVERIFY(!send(panel, kMove, released));
        QVERIFY(!send(panel, kPress, pressed, Qt::RightButton));
        QCOMPARE(send(panel, kPress, pressed), pressTaken);
        QVERIFY(!send(panel, kRelease, released, Qt::RightButton));
        QCOMPARE(send(panel, kMove, QPoint(50, 20)), pressTaken);
        QCOMPARE(send(panel, kRelease, released), target >= 0);
        QCOMPARE(spy.count(), target >= 0 ? 1 : 0);
        if (target >= 0)
            QCOMPARE(spy.at(0).at(0).toInt(), target);
        // The drag goes on only when the button was let go below the strip.
        QCOMPARE(send(panel, kMove, QPoint(50, 20)), pressTaken && released.y() > 40);
    }

    // The cached trace follows the track, the panel's width and its state.
    void traceIsKeptInStep() {
        m_library.answer = [](qint64) { return FakeSensorLibrary::Answer{0, 0, 'N', 'E', 0, 64, 128, 200}; };
        WidgetProgressA panel;
        panel.setClipPath(QStringLiteral("/card/a.mp4"));
        const auto yellow = [&panel] { return coloured(panel.grab().toImage(), QColor(255, 255, 0)); };
        QCOMPARE(yellow(), 0);
        panel.loadSensorData(61000);
        const int whole = yellow();
        QVERIFY(whole > 600);
        QCOMPARE(yellow(), whole);
        panel.resize(322, 250);
        QVERIFY(yellow() < whole * 6 / 10);
        panel.clearSensorData();
        QCOMPARE(yellow(), 0);
    }
};

} // namespace ql240

QTEST_MAIN(ql240::TestWidgetProgress)
#include "tst_widget_progress.moc"
