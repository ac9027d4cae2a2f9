// Which shocks are found in accelerations.
#include <QTest>

#include "clips/clip_moments.h"
#include "clips/clip_timeline.h"
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

    // A clip without satellite times is sorted by the clock that the camera had nearest to it.
    void clocksInOneOrder() {
        constexpr std::int64_t kHour = 3'600'000;
        const auto clip = [](std::int64_t cameraMs, std::optional<std::int64_t> offsetMs) {
            return ClipMoments{{}, cameraMs, offsetMs, 0};
        };
        CameraOffsets offsets;
        Moment moment;
        moment.cameraMs = 10 * kHour;
        QCOMPARE(offsets.orderOf(moment), 10 * kHour);
        offsets.add(clip(9 * kHour, 2 * kHour));
        offsets.add(clip(12 * kHour, kHour)); // set back an hour on the way
        offsets.add(clip(11 * kHour, {}));
        QCOMPARE(offsets.orderOf(moment), 8 * kHour);
        moment.cameraMs = 11 * kHour;
        QCOMPARE(offsets.orderOf(moment), 10 * kHour);
        moment.timeUs = kHour * 1000; // its clip is nearer to the first one
        QCOMPARE(offsets.orderOf(moment), 9 * kHour);
        moment.cameraMs = 20 * kHour;
        QCOMPARE(offsets.orderOf(moment), 19 * kHour);
        moment.utcMs = 5;
        QCOMPARE(offsets.orderOf(moment), 5);
    }

    // A range touches driving and event clips of the same minute; a clip without a time is by itself.
    void timeline() {
        ClipTimeline line({{"event", 50'000, 20'000},
                           {"second", 60'000, 0},
                           {"unnamed", {}, 60'000},
                           {"first", 0, 60'000},
                           {"unnamed too", {}, 60'000}});
        QCOMPARE(*line.timeOf("second", 500), 60'500);
        line.setLength("second", 60'000);
        const auto names = [&line](TimeRange range) {
            QStringList found;
            for (const ClipTimeline::Part& part : line.partsOf(range))
                found
                    << QStringLiteral("%1 %2 %3").arg(part.clip).arg(part.range.fromMs).arg(part.range.toMs);
            return found;
        };
        QCOMPARE(names({55'000, 65'000}),
                 QStringList({"first 55000 60000", "event 5000 15000", "second 0 5000"}));
        QCOMPARE(names({-9'000, 1'000}), QStringList("first 0 1000"));
        const std::int64_t unnamed = *line.timeOf("unnamed", 30'000);
        QCOMPARE(names({unnamed - 60'000, unnamed + 60'000}), QStringList("unnamed 0 60000"));
        QCOMPARE(line.clamped({-9'000, 500'000}), TimeRange(0, 120'000));
        QVERIFY(!line.timeOf("else", 0) && line.clamped({200'000, 300'000}).isEmpty());
    }
};

} // namespace ql240

QTEST_GUILESS_MAIN(ql240::TestMoments)
#include "test_moments.moc"
