#include <QElapsedTimer>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <memory>

#include "platform/host.h"
#include "sensors/widget_progress.h"
#include "support/fake_sensor_library.h"
#include "support/held_jobs.h"
#include "support/made_card.h"

using namespace ql240;
namespace {

// Calls the event's handler, as the main window does; true if the event was accepted.
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

// Number of pixels of this colour in the strip.
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
    std::optional<FakeSensorLibrary> m_library;
    MadeCard m_card;

private Q_SLOTS:
    void init() {
        m_library.emplace();
        host().makeSensorLibrary = [this] { return m_library->lend(); };
    }

    void cleanup() {
        m_library.reset();
        host() = {};
    }

    void rangeAndValue() {
        WidgetProgressA panel;
        const auto expect = [&](const char* text, int maximum, int value) {
            QCOMPARE(panel.state().timeText, text);
            QCOMPARE(panel.state().progressMaximum, maximum);
            QCOMPARE(panel.state().progressValue, value);
        };
        panel.setRange(0, 125000);
        panel.setValue(61500);
        panel.setRange(10, 9);
        panel.grab();
        panel.setValue(125001);
        panel.setValue(-1);
        expect("01:01/02:05", 125000, 61500);
        panel.setRange(0, 60000);
        expect("01:01/01:00", 60000, 61500);
        panel.setValue(61501); // allowed because the range changed after the last paint
        panel.setRange(0, 60000);
        panel.grab();
        panel.setValue(61502);
        expect("01:01/01:00", 60000, 61501);
        panel.clearSensorData();
        expect("01:01/01:00", -1, -1);
        panel.setRange(0, 0);
        QCOMPARE(panel.state().timeText, "00:00/00:00");
    }

    // A card reader that doesn't answer delays nothing; its late answer is shown, and stays without a card.
    void hangingCardReader() {
        // Shared with a look that may outlive the panel.
        const auto answers = std::make_shared<QSemaphore>();
        const auto looks = std::make_shared<std::atomic<int>>(0);
        QElapsedTimer timer;
        timer.start();
        WidgetProgressA panel(nullptr, [answers, looks] {
            const std::optional<QString> versions[] = {"QL240 1.02", std::nullopt, ""};
            const int look = (*looks)++;
            answers->acquire();
            return versions[look];
        });
        for (int i = 0; i < 100; ++i)
            panel.setClipPath("a.mp4");
        QVERIFY(timer.elapsed() < 5000); // less than a hundred waits
        QCOMPARE(panel.state().modelText, "unknown");
        answers->release();
        QTRY_COMPARE(panel.state().modelText, "QL240");
        answers->release(); // one more look for all clips together
        QTRY_COMPARE(looks->load(), 2);
        panel.setClipPath("b.mp4");
        QTRY_COMPARE(looks->load(), 3); // the one before has answered
        QCOMPARE(panel.state().modelText, "QL240");
        answers->release();
        QTRY_COMPARE(panel.state().modelText, "");
    }

    void track() {
        PromptJobs prompt;
        m_library->lastMs = 400;
        m_library->answer = [](qint64 t) {
            return FakeSensorLibrary::Answer{t < 200 ? 0 : 1500000, 2500000, 'S', 'E', 60, short(t), -5, 7};
        };
        WidgetProgressA panel;
        panel.loadSensorData(500); // no clip, nothing to ask for
        QVERIFY(m_library->path.isEmpty());
        panel.setClipPath("/card/a.mp4");
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

    // A slow track arrives later, unless the panel was cleared, stopped or given another clip meanwhile.
    void lateTrack() {
        const std::pair<std::function<void(WidgetProgressA&)>, int> rows[] = {
            {[](WidgetProgressA&) {}, 1},
            {&WidgetProgressA::clearSensorData, 0},
            {&WidgetProgressA::stopLoading, 0},
            {[](WidgetProgressA& panel) { panel.loadSensorData(500); }, 1}};
        for (const auto& [meanwhile, arrivals] : rows) {
            HeldJobs late;
            int arrived = 0;
            WidgetProgressA panel(nullptr, {}, [&arrived] { ++arrived; });
            panel.setClipPath("/card/a.mp4");
            panel.loadSensorData(500);
            meanwhile(panel);
            QCOMPARE(panel.sampleAt(0), SensorSample());
            late.answer();
            QCOMPARE(arrived, arrivals);
            QCOMPARE(panel.sensorTrack().size(), size_t(611 * arrivals));
        }
    }

    // A clip that doesn't answer delays neither the next one nor the panel's end.
    void hangingClip() {
        QSemaphore gate;
        std::atomic<int> asked = 0;
        m_library->answer = [&gate, &asked](qint64) {
            if (asked++ == 0)
                gate.acquire();
            return FakeSensorLibrary::Answer();
        };
        {
            const auto open = qScopeGuard([&gate] { gate.release(); }); // once the panel is gone
            WidgetProgressA panel;
            panel.setClipPath("/card/a.mp4");
            panel.loadSensorData(500);
            QTRY_COMPARE(asked.load(), 1);
            panel.clearSensorData();
            panel.loadSensorData(500);
            QTRY_COMPARE(panel.sensorTrack().size(), size_t(611));
        }
        m_library.reset(); // waits for the thread that hung
        QCOMPARE(asked.load(), 2 * 2 * 611);
    }

    // A clip without data clears the readings; one with a trailer keeps them until the next look-up.
    void readingsAcrossClips() {
        PromptJobs prompt;
        WidgetProgressA panel;
        panel.setClipPath("/card/a.mp4");
        panel.loadSensorData(500);
        panel.sampleAt(0);
        QVERIFY(panel.state().latitude != 0.0);
        m_card.put("REC_a.avi", "vETKLP1\n");
        panel.setClipPath(m_card.path("REC_a.avi"));
        m_library->path.clear();
        panel.loadSensorData(500);
        QVERIFY(panel.state().latitude != 0.0);
        QVERIFY(m_library->path.isEmpty());
        m_library->hasData = false;
        panel.setClipPath("/card/REC_b.avi");
        panel.loadSensorData(500);
        QCOMPARE(m_library->path, QByteArray("/card/REC_b.avi"));
        QCOMPARE(panel.state().latitude, 0.0);
        QVERIFY(panel.state().hasFix); // no look-up has said otherwise
        QCOMPARE(panel.sampleAt(0).timeMs, -1);
    }

    void activity() {
        PromptJobs prompt;
        WidgetProgressA panel;
        const auto* timer = panel.findChild<QTimer*>();
        QVERIFY(timer != nullptr);
        panel.setClipPath("/card/a.mp4");
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

    void clicks() {
        const std::tuple<QPoint, QPoint, bool, int> rows[] = {
            {{316, 20}, {2, 40}, true, 0},     {{629, 1}, {629, 1}, true, 59904},
            {{630, 20}, {316, 20}, false, -1}, {{316, 0}, {316, 20}, false, -1},
            {{316, 41}, {316, 20}, false, -1}, {{316, 20}, {1, 20}, true, -1},
            {{316, 20}, {316, 41}, true, -1}};
        for (const auto& [pressed, released, pressTaken, target] : rows) {
            WidgetProgressA panel;
            panel.setActive(false); // the strip works nevertheless
            panel.setRange(0, 60000);
            const QSignalSpy spy(&panel, &WidgetProgressA::clicked);
            QVERIFY(!send(panel, kMove, released));
            QVERIFY(!send(panel, kPress, pressed, Qt::RightButton));
            QCOMPARE(send(panel, kPress, pressed), pressTaken);
            QVERIFY(!send(panel, kRelease, released, Qt::RightButton));
            QCOMPARE(send(panel, kMove, QPoint(50, 20)), pressTaken);
            QCOMPARE(send(panel, kRelease, released), target >= 0);
            QCOMPARE(spy.count(), target >= 0 ? 1 : 0);
            QCOMPARE(spy.value(0).value(0).toInt(), std::max(target, 0));
            // The drag goes on only if the button was released below the strip.
            QCOMPARE(send(panel, kMove, QPoint(50, 20)), pressTaken && released.y() > 40);
        }
    }

    // A release below the strip keeps the drag; after a lost one, the next press ends it.
    void lostRelease() {
        WidgetProgressA panel;
        panel.setRange(0, 60000);
        const QSignalSpy spy(&panel, &WidgetProgressA::clicked);
        for (const bool lost : {true, false}) {
            send(panel, kPress, QPoint(316, 20));
            if (!lost)
                send(panel, kRelease, QPoint(316, 50));
            send(panel, kPress, QPoint(316, 50));
            send(panel, kRelease, QPoint(316, 20));
            QCOMPARE(spy.count(), lost ? 0 : 1);
        }
    }

    // The cached trace follows the track, the panel's width and its state.
    void traceIsKeptInStep() {
        PromptJobs prompt;
        m_library->answer = [](qint64) { return FakeSensorLibrary::Answer{0, 0, 'N', 'E', 0, 64, 128, 200}; };
        WidgetProgressA panel;
        panel.setClipPath("/card/a.mp4");
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

QTEST_MAIN(TestWidgetProgress)
#include "test_widget_progress.moc"
