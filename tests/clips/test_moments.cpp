// Which shocks are found in accelerations.
#include <QTest>

#include "clips/moments.h"
#include "support/seeded_drives.h"

namespace ql240 {

class TestMoments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A few of the drives that the benchmark plays by the thousand.
    void seededDrives_data() {
        QTest::addColumn<int>("rate");
        for (const int rate : {25, 50, 200})
            QTest::addRow("%d a second", rate) << rate;
    }
    void seededDrives() {
        QFETCH(int, rate);
        const DriveScore score = scoreOfDrives(rate, 60);
        QVERIFY2(score.found * 100 >= score.impacts * 98, qPrintable(QString::number(score.found)));
        QVERIFY(score.impacts > 50);
        QVERIFY(score.falseOnes <= 1);
    }

    // Half-sines on a car at rest: what the table says is their sum.
    void shapes_data() {
        QTest::addColumn<double>("startS");
        QTest::addColumn<double>("lengthS");
        QTest::addColumn<double>("sizeG");
        QTest::addColumn<double>("secondS");
        QTest::addColumn<int>("found");
        QTest::newRow("impact") << 5.0 << 0.1 << 1.0 << -1.0 << 1;
        QTest::newRow("too weak") << 5.0 << 0.1 << 0.45 << -1.0 << 0;
        QTest::newRow("hard braking") << 5.0 << 2.5 << 0.9 << -1.0 << 0;
        QTest::newRow("pothole") << 5.0 << 0.018 << 1.5 << -1.0 << 0;
        QTest::newRow("two are one") << 5.0 << 0.1 << 1.0 << 7.5 << 1;
        QTest::newRow("two") << 5.0 << 0.1 << 1.0 << 8.5 << 2;
    }
    void shapes() {
        QFETCH(double, startS);
        QFETCH(double, lengthS);
        QFETCH(double, sizeG);
        QFETCH(double, secondS);
        SeededDrive drive = quietDrive(100, 10);
        addHalfSine(drive, startS, lengthS, -sizeG, 0);
        addHalfSine(drive, secondS, lengthS, sizeG * 0.9, 0);
        const std::vector<Shock> shocks = findShocks(drive.samples);
        QTEST(int(shocks.size()), "found");
        if (!shocks.empty()) {
            QVERIFY(std::abs(shocks[0].timeUs / 1e6 - startS - lengthS / 2) < 0.02);
            QVERIFY(std::abs(shocks[0].sizeG - sizeG) < 0.05);
            QCOMPARE(shocks[0].axis, Shock::Axis::X);
        }
        ShockOptions deaf;
        deaf.thresholdG = 1.2;
        QVERIFY(findShocks(drive.samples, deaf).empty());
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestMoments)
#include "test_moments.moc"
