// The volume gauge: the level it shows and the volume it sets.
#include <QMouseEvent>
#include <QTest>

#include "platform/host.h"
#include "playback/widget_volume.h"
#include "support/fake_wave_out.h"

using namespace ql240;

namespace {

int litSegments(WidgetVolume& gauge) {
    gauge.resize(52, 9);
    const QImage picture = gauge.grab().toImage();
    gauge.setEnabled(false);
    const QImage dark = gauge.grab().toImage();
    gauge.setEnabled(true);
    int lit = 0;
    for (int x = 3; x < 52; x += 5)
        lit += picture.pixel(x, 4) != dark.pixel(x, 4) ? 1 : 0;
    return lit;
}

void drag(WidgetVolume& gauge, int x) {
    QMouseEvent event(QEvent::MouseMove, QPointF(x, 500), {}, Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&gauge, &event);
}

} // namespace

class TestWidgetVolume : public QObject {
    Q_OBJECT

private:
    FakeWaveOut m_output;

private Q_SLOTS:
    void init() {
        m_output = FakeWaveOut();
        host().waveOut = &m_output;
    }

    // The left channel's; steps of 6553.
    void startsAtTheOutputsLevel() {
        for (const auto& [present, level] : std::initializer_list<std::pair<std::uint32_t, int>>{
                 {0xFFFFFFFF, 10}, {0x00008000, 5}, {0xFFFF0000, 0}, {6552, 0}, {6553, 1}}) {
            m_output.volume = present;
            WidgetVolume gauge;
            QCOMPARE(gauge.level(), level);
            QCOMPARE(litSegments(gauge), level);
            QCOMPARE(m_output.volume, present);
        }
    }

    void dragSetsTheLevel() {
        WidgetVolume gauge;
        QVERIFY(!gauge.hasMouseTracking());
        for (const auto& [x, level, wanted] : std::initializer_list<std::tuple<int, int, std::uint32_t>>{
                 {-30, 1, 0x19991999}, {8, 1, 0x19991999}, {9, 2, 0x33323332}, {2000, 10, 0xFFFAFFFA}}) {
            drag(gauge, x);
            QCOMPARE(litSegments(gauge), level);
            QCOMPARE(m_output.volume, wanted);
        }
    }

    void muteKeepsTheLevel() {
        m_output.volume = 0;
        WidgetVolume gauge;
        gauge.setSoundOn(true);
        QCOMPARE(m_output.volume, 0x19991999U); // one step at least
        drag(gauge, 20);
        gauge.setSoundOn(false);
        QCOMPARE(m_output.volume, 0U);
        QCOMPARE(litSegments(gauge), 4); // until it is disabled
        gauge.setSoundOn(true);
        QCOMPARE(m_output.volume, 0x66646664U);
    }

    void noOutput() {
        host().waveOut = nullptr;
        WidgetVolume gauge;
        drag(gauge, 9);
        gauge.setSoundOn(false);
        QCOMPARE(gauge.level(), 2);
    }
};

QTEST_MAIN(TestWidgetVolume)
#include "test_widget_volume.moc"
