// The drives of the demo card and what is recorded of them.

#include <QtCore/QtEndian>
#include <QtTest/QTest>
#include <cmath>

#include "demo_card/clips.h"
#include "demo_card/scene/scene.h"
#include "demo_card/sensor_data.h"
#include "demo_card/yuv.h"
#include "sensors/sensor_track.h"

using namespace ql240;
using namespace ql240::demo;

class TestDemoDrives : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Loaded as the viewer loads it, the sample of every moment is that of the drive.
    void trailerIsInStepWithThePicture() {
        int trailers = 0;
        for (const ClipPlan& clip : demoClips()) {
            if (clip.format.container != ClipFormat::Container::Avi)
                continue;
            ++trailers;
            const Drive drive(clip.drive);
            const QByteArray trailer = sensorTrailer(drive, clip.span);
            QVERIFY(trailer.size() < 33006);
            SensorTrack track;
            QVERIFY(appendTrailerBytes(track, "media" + trailer, true, 20000));
            for (int time = 5100; time < 20000; time += 100) {
                const DriveState state = drive.at(time / 1000.0);
                const SensorSample sample = sampleForTime(track, time);
                QCOMPARE(sample.speed, qRound(state.speed * 3.6));
                QVERIFY(std::abs(sample.latitude - state.position.latitude) < 1e-6);
                QVERIFY(std::abs(sample.longitude - state.position.longitude) < 1e-6);
                QCOMPARE(sample.accY, qint16(std::lround(state.forwardAcc / 9.80665 * 128)));
            }
        }
        QCOMPARE(trailers, 2);
    }

    void clipsOfOneDriveFollowEachOther() {
        const QList<ClipPlan> clips = demoClips();
        const QSize size(192, 108);
        for (int i = 1; i < 3; ++i) {
            const Drive before(clips[i - 1].drive);
            const Drive after(clips[i].drive);
            const double end = clips[i - 1].span.to;
            const double start = clips[i].span.from;
            QCOMPARE(clips[i].start(), clips[i - 1].start().addSecs(20));
            QCOMPARE(clips[i].name.mid(4, 19), clips[i].start().toString("yyyy_MM_dd_hh_mm_ss"));
            QCOMPARE(after.at(start).position.longitude, before.at(end).position.longitude);
            QCOMPARE(after.at(start).speed, before.at(end).speed);
            QCOMPARE(Scene(before, clips[i - 1].world, size, false).paint(end),
                     Scene(after, clips[i].world, size, false).paint(start));
        }
        QVERIFY(clips[1].name.startsWith("EVS_"));
    }

    // Over 2 g for 100 ms: in the samples every 50 ms of an MP4, in the lines every 100 ms of an AVI.
    void theSensorFeelsTheImpact() {
        const ClipPlan crash = demoClips()[1];
        const auto strong = [](const QByteArray& sample) {
            const auto* a = sample.constData() + 4;
            return std::hypot(qFromLittleEndian<float>(a), qFromLittleEndian<float>(a + 4),
                              qFromLittleEndian<float>(a + 8)) > 2.2 * 9.80665;
        };
        const QList<QByteArray> samples = cammSamples(Drive(crash.drive), crash.span);
        QVERIFY(std::count_if(samples.begin(), samples.end(), strong) >= 3);
        const ClipPlan bump = demoClips()[5];
        SensorTrack track;
        QVERIFY(
            appendTrailerBytes(track, "media" + sensorTrailer(Drive(bump.drive), bump.span), true, 20000));
        int lines = 0;
        for (int time = 9000; time < 12000; time += 100) {
            const SensorSample sample = sampleForTime(track, time);
            lines += std::hypot(sample.accX, sample.accY, sample.accZ) > 2.2 * 128;
        }
        QVERIFY(lines >= 2);
    }

    void coloursBecomeTheStandardsSamples() {
        using Container = ClipFormat::Container;
        const struct {
            int height;
            Container container;
            QColor colour;
            int y, cb, cr;
        } rows[] = {
            {720, Container::Mp4, Qt::black, 16, 128, 128},  {720, Container::Mp4, Qt::red, 63, 102, 240},
            {720, Container::Mp4, Qt::blue, 32, 240, 118},   {360, Container::Mp4, Qt::red, 81, 90, 240},
            {480, Container::Avi, Qt::white, 255, 128, 128}, {480, Container::Avi, Qt::blue, 29, 255, 107}};
        for (const auto& row : rows) {
            QImage picture(4, 2, QImage::Format_RGB32);
            picture.fill(row.colour);
            std::array<uchar, 12> planes{};
            convertToI420(
                picture, yuvMatrixFor({.container = row.container, .videos = {}}, {640, row.height}), planes);
            for (size_t i = 0; i < planes.size(); ++i)
                QCOMPARE(int(planes[i]), i < 8 ? row.y : i < 10 ? row.cb : row.cr);
        }
    }
};

QTEST_GUILESS_MAIN(TestDemoDrives)
#include "test_demo_drives.moc"
