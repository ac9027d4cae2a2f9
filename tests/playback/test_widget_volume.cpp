// The volume gauge over a sound output that only notes what it gets.
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>

#include "platform/host.h"
#include "playback/widget_volume.h"
#include "support/fake_wave_out.h"

using namespace ql240;
using Volumes = std::vector<std::uint32_t>;

class TestWidgetVolume : public QObject {
    Q_OBJECT

private:
    FakeWaveOut m_output;

    static void drag(WidgetVolume& gauge, int x, int y = 4) {
        QMouseEvent event(QEvent::MouseMove, QPointF(x, y), QPointF(x, y), Qt::NoButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&gauge, &event);
    }

    static QImage picture(int litSegments) {
        QImage image(52, 9, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.fillRect(image.rect(), QWidget().palette().window());
        painter.drawPixmap(QRect(0, 0, 52, 9), QPixmap(QStringLiteral(":/gfx_r/2012/volume_bar.png")));
        const QPixmap segment(QStringLiteral(":/gfx_r/2012/volume_level.png"));
        for (int x = 1; x < 1 + 5 * litSegments; x += 5)
            painter.drawPixmap(QRect(x, 1, 5, 7), segment);
        return image;
    }
    static QImage grabbed(WidgetVolume& gauge) {
        gauge.resize(52, 9);
        return gauge.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

private Q_SLOTS:
    void init() {
        m_output = FakeWaveOut();
        host().waveOut = &m_output;
    }

    void startLevel_data() {
        QTest::addColumn<quint32>("volume");
        QTest::addColumn<int>("level");
        QTest::newRow("loudest") << 0xFFFFFFFFU << 10;
        QTest::newRow("left half, right silent") << 0x00008000U << 5;
        QTest::newRow("left silent, right loudest") << 0xFFFF0000U << 0;
        QTest::newRow("short of a step") << 6552U << 0;
        QTest::newRow("one step") << 6553U << 1;
    }
    void startLevel() {
        QFETCH(quint32, volume);
        m_output.volume = volume;
        const WidgetVolume gauge;
        QTEST(gauge.level(), "level");
        QCOMPARE(m_output.devices, Volumes{0});
    }

    void outputThatDoesNotWork() {
        m_output.works = false;
        WidgetVolume gauge;
        QVERIFY(gauge.level() >= 0 && gauge.level() <= 10);
        drag(gauge, 9);
        QCOMPARE(gauge.level(), 2);
        host().waveOut = nullptr;
        WidgetVolume alone;
        drag(alone, 9);
        alone.setSoundOn(false);
        QCOMPARE(alone.level(), 2);
    }

    void dragSetsLevel_data() {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("level");
        QTest::addColumn<quint32>("sent");
        for (const auto& [x, level, sent] :
             std::initializer_list<std::tuple<int, int, quint32>>{{-30, 1, 0x19991999},
                                                                  {3, 1, 0x19991999},
                                                                  {4, 1, 0x19991999},
                                                                  {8, 1, 0x19991999},
                                                                  {9, 2, 0x33323332},
                                                                  {44, 9, 0xE661E661},
                                                                  {48, 9, 0xE661E661},
                                                                  {49, 10, 0xFFFAFFFA},
                                                                  {2000, 10, 0xFFFAFFFA}})
            QTest::addRow("%d", x) << x << level << sent;
    }
    void dragSetsLevel() {
        QFETCH(int, x);
        QFETCH(quint32, sent);
        WidgetVolume gauge;
        QVERIFY(!gauge.hasMouseTracking());
        drag(gauge, x, 500);
        QTEST(gauge.level(), "level");
        QCOMPARE(m_output.sent, Volumes{sent});
    }

    void clickChangesNothing() {
        WidgetVolume gauge;
        gauge.resize(52, 9);
        QTest::mouseClick(&gauge, Qt::LeftButton, {}, {20, 4});
        QVERIFY(m_output.sent.empty());
        QCOMPARE(gauge.level(), 10);
    }

    void muteKeepsLevel() {
        m_output.volume = 0;
        WidgetVolume gauge;
        QCOMPARE(gauge.level(), 0);
        gauge.setSoundOn(true);
        QCOMPARE(gauge.level(), 1);
        drag(gauge, 20);
        gauge.setSoundOn(false);
        QCOMPARE(gauge.level(), 4);
        gauge.setSoundOn(true);
        QCOMPARE(m_output.sent, (Volumes{0x19991999, 0x66646664, 0, 0x66646664}));
        gauge.setEnabled(false); // alone sends nothing
        QCOMPARE(m_output.sent.size(), 4U);
    }

    void litSegmentsShowLevel() {
        WidgetVolume gauge;
        for (int level = 1; level <= 10; ++level) {
            drag(gauge, 5 * level - 1);
            QCOMPARE(grabbed(gauge), picture(level));
            QVERIFY(picture(level) != picture(level - 1));
        }
        gauge.setSoundOn(false); // the picture stays until the gauge is disabled
        QCOMPARE(grabbed(gauge), picture(10));
        gauge.setEnabled(false);
        QCOMPARE(grabbed(gauge), picture(0));
        m_output.volume = 0;
        WidgetVolume silent;
        QCOMPARE(grabbed(silent), picture(0));
    }
};

QTEST_MAIN(TestWidgetVolume)
#include "test_widget_volume.moc"
