// The drives of the demo card and what is recorded of them.

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>
#include <cmath>
#include <numbers>

#include "demo_card/clips.h"
#include "demo_card/sensor_data.h"
#include "demo_card/yuv.h"
#include "sensors/sensor_track.h"

using namespace ql240;

namespace {

// On a sphere of the earth's mean radius: good to half a per cent.
double metresBetween(GeoPosition a, GeoPosition b) {
    constexpr double degree = std::numbers::pi / 180;
    const double north = (b.latitude - a.latitude) * degree;
    const double east = (b.longitude - a.longitude) * degree * std::cos(a.latitude * degree);
    return 6371000 * std::hypot(north, east);
}

double strongestAcceleration(const Drive& drive) {
    double strongest = 0;
    for (int i = 0; i <= 200; ++i) {
        const DriveState state = drive.at(i / 10.0);
        strongest = std::max(strongest, std::hypot(state.forwardAcc, state.rightAcc));
    }
    return strongest;
}

} // namespace

class TestDemoDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clipsAreWhatTheCameraRecords();
    void speedAgreesWithPositionsAndAcceleration_data();
    void speedAgreesWithPositionsAndAcceleration();
    void bendsPushSideways();
    void satellitesAreLostInTheTunnelOnly();
    void onlyEventClipsHaveAnImpact();
    void trailerIsInStepWithThePicture();
    void soundFollowsTheDrive();
    void monotoneCurvesDontOvershoot();
    void coloursBecomeTheStandardsSamples_data();
    void coloursBecomeTheStandardsSamples();
};

void TestDemoDrives::clipsAreWhatTheCameraRecords() {
    QMap<QString, int> prefixes;
    int withTwoVideos = 0;
    for (const ClipPlan& clip : demoClips()) {
        static const QRegularExpression rule(
            QStringLiteral("^(REC|EVS|EVT|MOT)_(\\d{4}(_\\d\\d){5})\\.(mp4|avi)$"));
        const QRegularExpressionMatch match = rule.match(clip.name);
        QVERIFY2(match.hasMatch(), qPrintable(clip.name));
        QCOMPARE(clip.drive.start.toString(QStringLiteral("yyyy_MM_dd_hh_mm_ss")), match.captured(2));
        const bool avi = match.captured(1) == u"EVT" || match.captured(1) == u"MOT";
        QCOMPARE(match.captured(4), QLatin1String(avi ? "avi" : "mp4"));
        QCOMPARE(clip.format.container == ClipFormat::Container::Avi, avi);
        QCOMPARE(clip.format.soundRate == 0, match.captured(1) == u"MOT");
        QCOMPARE(clip.drive.seconds, 20.0);
        ++prefixes[match.captured(1)];
        withTwoVideos += clip.format.videos.size() == 2;
    }
    QCOMPARE(prefixes, (QMap<QString, int>{{"REC", 3}, {"EVS", 1}, {"EVT", 1}, {"MOT", 1}}));
    QCOMPARE(withTwoVideos, 2);
}

void TestDemoDrives::speedAgreesWithPositionsAndAcceleration_data() {
    QTest::addColumn<qsizetype>("index");
    const QList<ClipPlan> clips = demoClips();
    for (qsizetype i = 0; i < clips.size(); ++i)
        QTest::newRow(qPrintable(clips[i].name)) << i;
}

void TestDemoDrives::speedAgreesWithPositionsAndAcceleration() {
    QFETCH(qsizetype, index);
    const Drive drive(demoClips()[index].drive);
    constexpr double step = 0.1;
    double way = 0;
    double summedSpeed = 0;
    double velocity = drive.at(0).speed;
    for (double time = 0; time < 20 - step / 2; time += step) {
        const DriveState from = drive.at(time);
        const DriveState to = drive.at(time + step);
        const double moved = metresBetween(from.position, to.position);
        double expected = 0;
        for (int part = 0; part < 20; ++part) {
            const DriveState state = drive.at(time + part * 0.005);
            expected += state.speed * 0.005;
            velocity += state.forwardAcc * 0.005;
        }
        QVERIFY2(std::abs(moved - expected) < 0.02 + 0.03 * expected, qPrintable(QString::number(time)));
        QVERIFY(to.speed >= 0 && to.speed < 30);
        way += moved;
        summedSpeed += expected;
    }
    QVERIFY(std::abs(way - summedSpeed) <= 0.01 * summedSpeed);
    // What the accelerometer felt adds up to the change of speed, give or take the road's noise.
    QVERIFY2(std::abs(velocity - drive.at(20).speed) < 0.5, qPrintable(QString::number(velocity)));
    QVERIFY(way > 100 || demoClips()[index].name.startsWith(u"MOT_"));
}

void TestDemoDrives::bendsPushSideways() {
    DrivePlan plan;
    plan.speedKmh = 72;
    plan.curvature = 0.005;
    plan.bearingDeg = 90;
    const Drive drive(plan);
    const DriveState state = drive.at(10);
    QVERIFY(std::abs(state.rightAcc - 2.0) < 0.4); // v² / r
    QVERIFY(std::abs(state.upAcc - 9.8) < 0.6);
    QCOMPARE(qRound(qRadiansToDegrees(state.heading)), 90 + 57); // 200 m on a circle of 200 m
    QVERIFY(state.position.latitude < plan.origin.latitude);     // from east to the right is south
}

void TestDemoDrives::satellitesAreLostInTheTunnelOnly() {
    int lost = 0;
    for (const ClipPlan& clip : demoClips()) {
        const Drive drive(clip.drive);
        int changes = 0;
        for (double time = 0.1; time < 20; time += 0.1)
            changes += drive.at(time).fix != drive.at(time - 0.1).fix;
        QVERIFY(drive.at(0).fix && drive.at(20).fix);
        QCOMPARE(changes, clip.world.hasTunnel() ? 2 : 0);
        lost += changes > 0;
        for (double time = 0; time < 20; time += 0.1)
            if (clip.world.inTunnel(drive.at(time).distance))
                QVERIFY(!drive.at(time).fix);
    }
    QCOMPARE(lost, 1);
}

void TestDemoDrives::onlyEventClipsHaveAnImpact() {
    for (const ClipPlan& clip : demoClips()) {
        const bool event = clip.name.startsWith(u"EV");
        const double g = strongestAcceleration(Drive(clip.drive)) / 9.81;
        QVERIFY2(event ? g > 2 : g < 0.6, qPrintable(clip.name + QString::number(g)));
    }
}

// Loaded as the viewer loads it, the sample of every moment is that of the drive.
void TestDemoDrives::trailerIsInStepWithThePicture() {
    int trailers = 0;
    for (const ClipPlan& clip : demoClips()) {
        if (clip.format.container != ClipFormat::Container::Avi)
            continue;
        ++trailers;
        const Drive drive(clip.drive);
        const QByteArray trailer = sensorTrailer(drive);
        QVERIFY(trailer.size() < 33006);
        SensorTrack track;
        QVERIFY(appendTrailerBytes(track, "media" + trailer, true, 20000));
        for (int time = 5100; time < 20000; time += 100) {
            const DriveState state = drive.at(time / 1000.0);
            const SensorSample sample = sampleForTime(track, time);
            QCOMPARE(sample.speed, qRound(state.speed * 3.6));
            QVERIFY(metresBetween({sample.latitude, sample.longitude}, state.position) < 0.2);
            QCOMPARE(sample.accY, qint16(std::lround(state.forwardAcc / 9.80665 * 128)));
        }
        static const QRegularExpression line(QStringLiteral("^\\d{8}\\$\\d{6}(,-?[\\d.]+){6}$"));
        const QList<QByteArray> lines = trailer.split('\n');
        QCOMPARE(lines.first(), QByteArray("ETKLP1"));
        for (const QByteArray& text : lines.mid(1, lines.size() - 2))
            QVERIFY2(line.match(QString::fromLatin1(text)).hasMatch(), text.constData());
    }
    QCOMPARE(trailers, 2);
}

void TestDemoDrives::soundFollowsTheDrive() {
    const ClipPlan clip = demoClips()[0];
    constexpr int rate = 16000;
    const auto loudness = [](const QByteArray& sound, double from, double to) {
        const auto* samples = reinterpret_cast<const qint16*>(sound.constData());
        double sum = 0;
        for (int i = int(from * rate); i < int(to * rate); ++i)
            sum += double(samples[i]) * samples[i];
        return std::sqrt(sum / ((to - from) * rate));
    };
    const QByteArray sound = driveSound(Drive(clip.drive), rate, {});
    QCOMPARE(sound.size(), 20 * rate * 2);
    const double impact = *clip.drive.impactTime;
    const double driving = loudness(sound, impact - 5, impact - 2);
    const double standing = loudness(sound, 15, 20);
    QVERIFY(standing > 0 && driving > 1.5 * standing);
    QVERIFY(loudness(sound, impact, impact + 0.3) > 2 * driving);
    const QByteArray ticking = driveSound(Drive(clip.drive), rate, {{16, 18}});
    QCOMPARE(ticking.first(15 * rate * 2), sound.first(15 * rate * 2));
    QVERIFY(loudness(ticking, 16, 18) > loudness(sound, 16, 18));
}

void TestDemoDrives::monotoneCurvesDontOvershoot() {
    const Curve curve(Curve::Shape::Monotone, {{0, 0}, {3, 0}, {4, 10}, {4.1, 90}, {8, 90}, {9, 20}});
    for (double at = -1; at < 10; at += 0.01) {
        QVERIFY(curve(at) >= -1e-9 && curve(at) <= 90 + 1e-9);
        if (at < 7.9)
            QVERIFY(curve(at + 0.01) >= curve(at) - 1e-9);
    }
    QCOMPARE(curve(3), 0.0);
    QCOMPARE(curve(4.1), 90.0);
}

void TestDemoDrives::coloursBecomeTheStandardsSamples_data() {
    using Samples = QList<int>;
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("avi");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<Samples>("expected"); // Y', Cb, Cr
    const QSize high(1280, 720);
    const QSize low(640, 360);
    QTest::newRow("white, HD") << high << false << QColor(Qt::white) << Samples{235, 128, 128};
    QTest::newRow("black, HD") << high << false << QColor(Qt::black) << Samples{16, 128, 128};
    QTest::newRow("red, BT.709") << high << false << QColor(Qt::red) << Samples{63, 102, 240};
    QTest::newRow("blue, BT.709") << high << false << QColor(Qt::blue) << Samples{32, 240, 118};
    QTest::newRow("red, BT.601") << low << false << QColor(Qt::red) << Samples{81, 90, 240};
    QTest::newRow("green, BT.601") << low << false << QColor(Qt::green) << Samples{145, 54, 34};
    QTest::newRow("white, JPEG") << low << true << QColor(Qt::white) << Samples{255, 128, 128};
    QTest::newRow("black, JPEG") << low << true << QColor(Qt::black) << Samples{0, 128, 128};
    QTest::newRow("blue, JPEG") << low << true << QColor(Qt::blue) << Samples{29, 255, 107};
}

void TestDemoDrives::coloursBecomeTheStandardsSamples() {
    QFETCH(QSize, size);
    QFETCH(bool, avi);
    QFETCH(QColor, colour);
    QFETCH(QList<int>, expected);
    ClipFormat format;
    format.container = avi ? ClipFormat::Container::Avi : ClipFormat::Container::Mp4;
    QImage picture(4, 2, QImage::Format_RGB32);
    picture.fill(colour);
    std::array<uchar, 12> planes{};
    convertToI420(picture, yuvMatrixFor(format, size), planes);
    for (size_t i = 0; i < planes.size(); ++i)
        QCOMPARE(int(planes[i]), expected[i < 8 ? 0 : i < 10 ? 1 : 2]);
}

QTEST_GUILESS_MAIN(TestDemoDrives)
#include "test_demo_drives.moc"
