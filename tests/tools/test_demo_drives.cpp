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

} // namespace

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

    void coloursBecomeTheStandardsSamples_data() {
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
    void coloursBecomeTheStandardsSamples() {
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
};

QTEST_GUILESS_MAIN(TestDemoDrives)
#include "test_demo_drives.moc"
