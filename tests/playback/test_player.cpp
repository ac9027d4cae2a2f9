// The player on the real pipeline, with clips whose frames carry their numbers.
#include <QTemporaryDir>
#include <QTest>

#include <QRandomGenerator>
#include <QThread>

#include "clips/clip.h"
#include "clips/cut/clip_cutter.h"
#include "platform/gstreamer/gst_media_platform.h"
#include "platform/host.h"
#include "playback/sample_handler.h"
#include "playback/video_view.h"
#include "support/frame_code.h"
#include "support/test_clips.h"

using namespace ql240;
using namespace std::chrono_literals;

Q_DECLARE_METATYPE(ql240::TestClipSpec)

namespace {

constexpr int kPatienceMs = 10000;

// Number of the frame at a position.
int frameAt(const QList<std::chrono::nanoseconds>& times, std::chrono::nanoseconds position) {
    int frame = 0;
    while (frame + 1 < times.size() && times[frame + 1] <= position)
        ++frame;
    return frame;
}

// Like a machine that is too slow for the clip.
struct SlowFilter final : SampleFilter {
    void filterSample(std::int32_t, double, std::uint8_t*, std::int32_t) override { QThread::msleep(100); }
};

// A view with an open clip, paused at its start.
struct OpenClip {
    explicit OpenClip(const QString& path) : clip(QFileInfo(path)) {
        view.resize(640, 360);
        view.show();
        opened = view.openClip(&clip);
        view.setFrameSize(player().videoSize(0));
        view.layoutVideo();
        player().rewind();
        player().pause();
    }
    Player& player() { return *view.player(); }
    bool step(int sign) { return sign > 0 ? player().stepForward() : player().stepBack(); }
    // Frames by which the picture is ahead of the position, which advances meanwhile.
    int framesOff(const QList<std::chrono::nanoseconds>& times) {
        return grabbed() - frameAt(times, std::chrono::milliseconds(player().positionMs()));
    }
    int grabbed(int stream = 0) { return readFrameNumber(player().frame(stream, true)); }
    int shown() {
        return readFrameNumber(view.grab().toImage().copy(fittedRect(view.size(), player().videoSize(0))));
    }

    Clip clip;
    VideoView view;
    bool opened = false;
};

} // namespace

class TestPlayer : public QObject {
    Q_OBJECT

private:
    gstreamer::GstMediaPlatform m_media;

    static void clips() {
        QTest::addColumn<TestClipSpec>("spec");
        QTest::newRow("mp4") << TestClipSpec{};
        QTest::newRow("mp4, two streams") << TestClipSpec{.videoStreams = 2};
        QTest::newRow("mp4, B-frames") << TestClipSpec{.bFrames = 2};
        QTest::newRow("mp4, B-frames, no edit list") << TestClipSpec{.bFrames = 2, .editLists = false};
        QTest::newRow("mp4, variable rate") << TestClipSpec{.variableRate = true};
        QTest::newRow("mp4, starts late") << TestClipSpec{.firstTimeMs = 400};
        QTest::newRow("mp4, H.265") << TestClipSpec{.codec = TestClipSpec::Codec::H265};
        QTest::newRow("mp4, index last") << TestClipSpec{.faststart = false};
        QTest::newRow("avi") << aviTestClip();
        TestClipSpec mute = aviTestClip();
        mute.sound = false;
        QTest::newRow("avi, no sound") << mute;
    }

private Q_SLOTS:
    void initTestCase() { host().media = &m_media; }

    void pausedSeeksShowTheFrameThatHoldsThePosition_data() { clips(); }
    void pausedSeeksShowTheFrameThatHoldsThePosition() {
        QFETCH(TestClipSpec, spec);
        OpenClip open(makeTestClip(spec));
        QVERIFY(open.opened);
        const auto times = testClipFrameTimes(spec);
        QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), 0, kPatienceMs);
        const auto duration = open.player().durationMs();
        QVERIFY(std::abs(duration - std::chrono::milliseconds(times.back() / 1ms * 1ms).count()) < 200);

        QRandomGenerator random(7);
        for (int i = 0; i < 12; ++i) {
            // Without an edit list the demuxer can't seek past the nominal end.
            const auto last = spec.editLists ? duration : duration - 200;
            const auto ms = i == 0 ? last : i == 1 ? 0 : random.bounded(static_cast<int>(last));
            QVERIFY(open.player().seek(static_cast<std::int32_t>(ms)));
            QVERIFY(std::abs(open.player().positionMs() - ms) <= (ms == duration ? 1 : 0));
            const int expected = frameAt(times, std::chrono::milliseconds(ms));
            QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), expected, kPatienceMs);
            QTRY_COMPARE_WITH_TIMEOUT(open.shown(), expected, kPatienceMs);
            QVERIFY(std::abs(open.player().positionMs() - ms) <= (ms == duration ? 1 : 0));
        }
    }

    // A piece of a clip begins with the requested frame, regardless of the frames needed to decode it.
    void piecesBeginWithTheirFrame_data() { clips(); }
    void piecesBeginWithTheirFrame() {
        QFETCH(TestClipSpec, spec);
        const QString clip = makeTestClip(spec);
        const auto times = testClipFrameTimes(spec);
        const auto isShownAt = [&](std::chrono::milliseconds time) { return frameAt(times, time); };
        QTemporaryDir folder;
        const QString path = folder.filePath("piece." + QFileInfo(clip).suffix());
        const CutResult result = cutClip({clip, {750'000, 1'550'000}, true, path});
        QCOMPARE(result.status, CutResult::Status::Done);
        OpenClip open(path);
        QVERIFY(open.opened);
        QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), isShownAt(750ms), kPatienceMs);
        const auto length = times[isShownAt(1550ms) + 1] - times[isShownAt(750ms)];
        QVERIFY(std::abs(open.player().durationMs() - length / 1ms) <= 1000 / spec.rate);
        QVERIFY(open.player().seek(400));
        const auto later = times[isShownAt(750ms)] + 400ms;
        QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), frameAt(times, later), kPatienceMs);
    }

    // A pause shows the next frame, or the one that was on screen.
    void pauseHoldsThePosition_data() { clips(); }
    void pauseHoldsThePosition() {
        QFETCH(TestClipSpec, spec);
        OpenClip open(makeTestClip(spec));
        const auto times = testClipFrameTimes(spec);
        open.player().play();
        QTRY_VERIFY_WITH_TIMEOUT(open.player().positionMs() > 500, kPatienceMs);
        const auto before = open.player().positionMs();
        open.player().pause();
        const auto held = open.player().positionMs();
        QVERIFY2(held >= before && held < before + 500, qPrintable(QString::number(held)));
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(open.framesOff(times)) <= 1, kPatienceMs);
        const auto from = open.player().positionMs();
        open.player().stepForward();
        QVERIFY(std::abs(open.player().positionMs() - from - Player::kStep / 10000) <= 1);
        QTRY_COMPARE_WITH_TIMEOUT(open.framesOff(times), 0, kPatienceMs);

        for (const auto started : {from, std::int64_t{0}}) {
            open.player().play();
            QTRY_VERIFY_WITH_TIMEOUT(open.player().positionMs() > started + 300, kPatienceMs);
            open.player().stop();
            open.player().rewind();
            open.player().pause();
            QTRY_COMPARE_WITH_TIMEOUT(open.shown(), 0, kPatienceMs);
        }
    }

    void pauseHoldsThePositionOnASlowMachine() {
        const TestClipSpec spec;
        const Clip clip{QFileInfo(makeTestClip(spec))};
        SlowFilter filter;
        SampleHandler handler(&filter);
        Player player;
        QVERIFY(player.open(&clip, {&handler, nullptr}, {}));
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(player.positionMs() > 1000, kPatienceMs);
        player.pause();
        const auto held = player.positionMs();
        const auto expected = frameAt(testClipFrameTimes(spec), std::chrono::milliseconds(held));
        QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(player.frame(0, true)), expected, kPatienceMs);
        QCOMPARE(player.positionMs(), held);
    }

    // Single steps in both directions, within and beyond the decoded frames; quick steps; then playing on.
    void everyStepShowsItsFrame_data() { clips(); }
    void everyStepShowsItsFrame() {
        QFETCH(TestClipSpec, spec);
        OpenClip open(makeTestClip(spec));
        const auto times = testClipFrameTimes(spec);
        open.player().seek(700);
        std::int64_t position = 7000000;
        int count = 0;
        for (const int sign : {+1, +1, -1, -1, -1, +1, +1, +1, +1, -1, -1, -1, -1, -1, -1, -1}) {
            QVERIFY(open.step(sign));
            position += sign * Player::kStep;
            for (int stream = 0; stream < spec.videoStreams; ++stream)
                QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(stream), frameAt(times, position * 100ns),
                                          kPatienceMs);
            QTRY_COMPARE_WITH_TIMEOUT(open.shown(), frameAt(times, position * 100ns), kPatienceMs);
            QCOMPARE(open.player().positionMs(), position / 10000);
            if (++count == 5) { // a seek in between
                position = 9000000;
                open.player().seek(900);
            }
        }
        for (int quick = 0; quick < 10; ++quick) {
            QVERIFY(open.player().stepForward());
            position += Player::kStep;
            QCOMPARE(open.player().positionMs(), position / 10000);
        }
        QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), frameAt(times, position * 100ns), kPatienceMs);
        QVERIFY(open.player().play());
        QTRY_VERIFY_WITH_TIMEOUT(open.player().positionMs() > position / 10000 + 300, kPatienceMs);
        // QTRY_VERIFY would evaluate it again, later.
        QVERIFY(QTest::qWaitFor([&] { return std::abs(open.framesOff(times)) <= 1; }, kPatienceMs));
    }

    // Past what the sound's queue holds.
    void everyStepOfALongClipShowsItsFrame() {
        const TestClipSpec spec{.frames = 150};
        OpenClip open(makeTestClip(spec));
        const auto times = testClipFrameTimes(spec);
        open.player().seek(100);
        for (std::int64_t position = 1000000; position < 48000000;) {
            QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), frameAt(times, position * 100ns), kPatienceMs);
            QVERIFY(open.player().stepForward());
            position += Player::kStep;
        }
    }

    void playsToTheEndAtTheRightSpeed_data() { clips(); }
    void playsToTheEndAtTheRightSpeed() {
        QFETCH(TestClipSpec, spec);
        OpenClip open(makeTestClip(spec));
        QTRY_COMPARE_WITH_TIMEOUT(open.grabbed(), 0, kPatienceMs);
        const auto duration = open.player().durationMs();
        QElapsedTimer clock;
        clock.start();
        QVERIFY(open.player().play());
        QVERIFY(open.player().isRunning());
        QTRY_VERIFY_WITH_TIMEOUT(open.player().positionMs() == duration, kPatienceMs);
        QVERIFY2(std::abs(clock.elapsed() - duration) < 700, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(open.grabbed(), static_cast<int>(testClipFrameTimes(spec).size()) - 1);
        open.player().stop();
        open.player().rewind();
        open.player().pause();
        QTRY_COMPARE_WITH_TIMEOUT(open.shown(), 0, kPatienceMs);
    }
};

QTEST_MAIN(TestPlayer)
#include "test_player.moc"
