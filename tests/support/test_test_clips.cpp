// The generated clips themselves: every frame of every stream decodes to its own number, at its own time.

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include "support/frame_code.h"
#include "support/test_clips.h"

using namespace ql240;
using Container = TestClipSpec::Container;
using Codec = TestClipSpec::Codec;

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60000) && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                     : QByteArray();
}

QByteArray decoded(const QString& clip, int stream, const QString& format, const QStringList& filter = {}) {
    return outputOf("ffmpeg", QStringList{"-loglevel", "error", "-nostdin", "-i", clip, "-map",
                                          QStringLiteral("0:v:%1").arg(stream), "-fps_mode", "passthrough"} +
                                  filter + QStringList{"-f", "rawvideo", "-pix_fmt", format, "pipe:1"});
}

QList<double> frameSeconds(const QString& clip, int stream) {
    const QByteArray text =
        outputOf("ffprobe", {"-v", "error", "-select_streams", QStringLiteral("v:%1").arg(stream),
                             "-show_entries", "frame=pts_time", "-of", "csv=p=0", clip});
    QList<double> seconds;
    for (const QByteArray& line : text.split('\n'))
        if (!line.isEmpty())
            seconds += line.split(',').first().toDouble();
    return seconds;
}

} // namespace

class TestTestClips : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void framesCarryTheirNumber_data();
    void framesCarryTheirNumber();
    void greyLevelsDontDependOnTheRange();
    void unreadablePicturesGiveNoNumber();
};

void TestTestClips::framesCarryTheirNumber_data() {
    QTest::addColumn<TestClipSpec>("spec");
    TestClipSpec base;
    base.frames = 40;
    const auto row = [&](const char* name, auto change) {
        TestClipSpec spec = base;
        change(spec);
        QTest::newRow(name) << spec;
    };
    row("mp4", [](TestClipSpec&) {});
    row("two streams", [](TestClipSpec& s) { s.videoStreams = 2; });
    row("two mute streams, B-frames",
        [](TestClipSpec& s) { s.videoStreams = 2, s.bFrames = 2, s.sound = false; });
    row("B-frames", [](TestClipSpec& s) { s.bFrames = 3; });
    row("variable rate", [](TestClipSpec& s) { s.variableRate = true; });
    row("variable rate, B-frames, late",
        [](TestClipSpec& s) { s.variableRate = true, s.bFrames = 2, s.firstTimeMs = 700; });
    row("late start", [](TestClipSpec& s) { s.firstTimeMs = 500; });
    row("H.265, index at the end",
        [](TestClipSpec& s) { s.codec = Codec::H265, s.bFrames = 2, s.faststart = false; });
    base = aviTestClip();
    base.frames = 40;
    row("avi", [](TestClipSpec&) {});
    row("mute avi", [](TestClipSpec& s) { s.sound = false; });
    row("avi with a trailer", [](TestClipSpec& s) { s.trailer = "ETKLP1\n"; });
}

void TestTestClips::framesCarryTheirNumber() {
    QFETCH(TestClipSpec, spec);
    const QString clip = makeTestClip(spec);
    QVERIFY(!clip.isEmpty());
    QCOMPARE(makeTestClip(spec), clip);
    const auto times = testClipFrameTimes(spec);
    for (int stream = 0; stream < spec.videoStreams; ++stream) {
        const QSize size = stream ? spec.secondSize : spec.size;
        const QByteArray frames = decoded(clip, stream, "yuyv422");
        const qsizetype bytes = qsizetype(size.width()) * size.height() * 2;
        const QByteArray small = decoded(clip, stream, "gray", {"-vf", "scale=160:90"});
        const QList<double> seconds = frameSeconds(clip, stream);
        QCOMPARE(frames.size(), bytes * spec.frames);
        QCOMPARE(small.size(), qsizetype(160 * 90) * spec.frames);
        QCOMPARE(seconds.size(), spec.frames);
        for (int n = 0; n < spec.frames; ++n) {
            const auto* yuy2 = reinterpret_cast<const uchar*>(frames.constData()) + bytes * n;
            QCOMPARE(readFrameMark(yuy2, size.width(), size.height()), std::optional(FrameMark{n, stream}));
            const auto* grey = reinterpret_cast<const uchar*>(small.constData()) + 160 * 90 * n;
            QCOMPARE(readFrameNumber(QImage(grey, 160, 90, 160, QImage::Format_Grayscale8)), n);
            const double expected = std::chrono::duration<double>(times[n]).count();
            QVERIFY2(std::abs(seconds[n] - expected) < 1e-4, qPrintable(QString::number(seconds[n])));
        }
    }
    if (!spec.trailer.isEmpty()) {
        QFile file(clip);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().endsWith(spec.trailer));
    }
}

void TestTestClips::greyLevelsDontDependOnTheRange() {
    TestClipSpec h264;
    h264.frames = 4;
    TestClipSpec fullRange = h264;
    fullRange.fullRange = true;
    TestClipSpec avi = aviTestClip();
    avi.frames = 4;
    for (const TestClipSpec& spec : {h264, fullRange, avi}) {
        const QByteArray rgb = decoded(makeTestClip(spec), 0, "rgb24").left(640 * 360 * 3);
        QCOMPARE(rgb.size(), 640 * 360 * 3);
        const QImage image(reinterpret_cast<const uchar*>(rgb.constData()), 640, 360, 640 * 3,
                           QImage::Format_RGB888);
        const auto levels = readGreyLevels(image);
        for (size_t i = 0; i < levels.size(); ++i)
            QVERIFY2(std::abs(levels[i] - kGreyLevels[i]) <= 3, qPrintable(QString::number(levels[i])));
    }
}

void TestTestClips::unreadablePicturesGiveNoNumber() {
    QByteArray luma(320 * 180, 0);
    QImage image(reinterpret_cast<uchar*>(luma.data()), 320, 180, 320, QImage::Format_Grayscale8);
    QCOMPARE(readFrameNumber(image), -1);
    paintFrameLuma({reinterpret_cast<uchar*>(luma.data()), size_t(luma.size())}, 320, 180, {16383, 1}, true);
    QCOMPARE(readFrameMark(image), std::optional(FrameMark{16383, 1}));
    // One cell turned round: the check bits must notice, or a damaged picture passes as another frame.
    for (int cell = 2; cell < 22; ++cell) {
        QImage damaged = image.copy();
        for (int y = 0; y < 180 / 2; ++y)
            for (int x = 320 * cell / 24 + 1; x < 320 * (cell + 1) / 24; ++x)
                damaged.scanLine(y)[x] = uchar(255 - damaged.scanLine(y)[x]);
        QCOMPARE(readFrameNumber(damaged), -1);
    }
    QCOMPARE(readFrameNumber(image.mirrored(true, false)), -1);
    QCOMPARE(readFrameNumber(QImage()), -1);
}

QTEST_GUILESS_MAIN(TestTestClips)
#include "test_test_clips.moc"
