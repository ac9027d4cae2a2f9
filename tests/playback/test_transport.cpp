// The transport's states over streams whose answers the test controls.
#include <QTest>

#include "platform/gstreamer/transport.h"

using namespace ql240;
using namespace ql240::gstreamer;

namespace {

struct FakeStreams final : Streams {
    std::int64_t duration() const override { return 1000; }
    std::optional<std::int64_t> position() const override { return playedTo; }
    std::int64_t stoppedAt() const override { return playedTo + lateStopBy; }
    Answer setRunning(bool running, bool) override {
        log += running ? QStringLiteral("run") : QStringLiteral("pause");
        return pauseIsAwaited && !running ? Answer::Awaited : Answer::Done;
    }
    Sent seek(std::int64_t target, double) override { return note("seek", target, accepts); }
    Sent fetchLastPictures(std::int64_t, double) override {
        return lastPicture < 0 ? Sent{Answer::Done, 0} : note("seek", lastPicture, true);
    }
    Sent move(std::int64_t target) override {
        return note("move", target, !stood.isEmpty() && std::abs(target - stood.toInt()) < 100);
    }
    bool areInStepAt(std::int64_t position) const override {
        return lastGone == QStringLiteral("seek %1").arg(position);
    }
    bool areOff(std::int64_t position) const override { return std::abs(position - picture) > 10; }
    Sent note(const char* what, std::int64_t target, bool accepted) {
        if (!accepted)
            return {Answer::Refused, 0};
        stood = QString::number(target);
        log += lastGone = QStringLiteral("%1 %2").arg(QLatin1String(what), stood);
        return {Answer::Awaited, ++number};
    }

    bool accepts = true;
    bool pauseIsAwaited = false;
    std::int64_t lastPicture = -1; // of a stream that has ended
    std::int64_t playedTo = 0;
    std::int64_t lateStopBy = 0; // how far they play on while stopping
    std::int64_t picture = 1000; // on display
    QStringList log;
    QString stood;
    QString lastGone;
    std::uint32_t number = 0xFFFFFFF0; // wraps on the way
};

// Started and paused at 500.
struct Paused {
    Paused() {
        transport.seek(500);
        transport.start([] {});
        arrive();
        streams.log.clear();
    }
    void arrive() { transport.arrived(++streams.number); }

    FakeStreams streams;
    Transport transport{streams};
};

} // namespace

class TestTransport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersToOlderSeeksAreDropped() {
        Paused clip;
        clip.transport.setState(GraphState::Running);
        const std::uint32_t before = clip.streams.number;
        clip.transport.seek(100);
        clip.transport.ended(before);
        QCOMPARE(clip.transport.position(), 100);
        clip.transport.arrived(before);
        QVERIFY(!clip.transport.isSettled());
        clip.arrive();
        QVERIFY(clip.transport.isSettled());
        clip.transport.ended(clip.streams.number);
        QCOMPARE(clip.transport.position(), 1000);
    }

    void oneInFlightTheNewestWaits() {
        Paused clip;
        for (const int target : {100, 300, 2000})
            QVERIFY(clip.transport.seek(target));
        QCOMPARE(clip.transport.position(), 999);
        QCOMPARE(clip.streams.log, QStringList("seek 100"));
        clip.arrive();
        QCOMPARE(clip.streams.log, QStringList({"seek 100", "seek 999"}));
    }

    // Whatever showed the picture, all streams play on from the position.
    void playsOnFromThePosition() {
        const std::tuple<int, int, bool, QString> rows[] = {
            {700, -1, true, "seek 700, run"},
            {700, -1, false, "seek 700, run"},
            {550, -1, true, "move 550, seek 550, run"},
            {550, -1, false, "move 550, run, seek 550"},
            {700, 600, true, "seek 700, seek 600, seek 700, run"}, // after a stream's end
            {700, 600, false, "seek 700, seek 600, run, seek 700"},
        };
        for (const auto& [target, lastPicture, hasArrived, log] : rows) {
            Paused clip;
            clip.streams.lastPicture = lastPicture;
            clip.transport.seek(target);
            if (lastPicture >= 0)
                clip.arrive();
            if (hasArrived)
                clip.arrive();
            clip.streams.lastPicture = -1;
            QCOMPARE(clip.transport.position(), target);
            clip.transport.setState(GraphState::Running);
            QCOMPARE(clip.transport.position(), target);
            clip.arrive();
            QCOMPARE(clip.streams.log.join(QLatin1String(", ")), log);
            clip.arrive();
            clip.streams.playedTo = target + 1;
            QCOMPARE(clip.transport.position(), target + 1);
        }
    }

    // The streams paused far before the position or after it; a seek in between replaces the correction.
    void strayPictureIsCorrectedAtAPause() {
        for (const auto& [picture, sought] : {std::pair(600, false), {600, true}, {660, false}}) {
            Paused clip;
            clip.transport.setState(GraphState::Running);
            clip.streams.picture = picture;
            clip.streams.playedTo = 600;
            clip.streams.pauseIsAwaited = true;
            clip.streams.log.clear();
            clip.streams.playedTo = 640;
            clip.transport.setState(GraphState::Paused);
            if (sought)
                clip.transport.seek(700);
            clip.arrive();
            QCOMPARE(clip.transport.position(), sought ? 700 : 640);
            QCOMPARE(clip.streams.log, QStringList({"pause", sought ? "seek 700" : "seek 640"}));
            clip.streams.picture = sought ? 700 : 640;
            clip.arrive();
            QVERIFY(clip.transport.isSettled());
        }
    }

    void rateBeforeTheFirstRunCounts() {
        FakeStreams streams;
        Transport transport{streams};
        QVERIFY(transport.setRate(2));
        transport.start([] {});
        QCOMPARE(streams.log, QStringList({"seek 0", "pause"}));
    }

    void refusedTargetsAreReported() {
        Paused clip;
        clip.streams.accepts = false;
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!clip.transport.setRate(2));
            QCOMPARE(clip.transport.position(), 500);
        }
        QVERIFY(!clip.transport.seek(100));
        QCOMPARE(clip.transport.position(), 500);
        clip.transport.ended(clip.streams.number);
        QVERIFY(!clip.transport.seek(100));
        QCOMPARE(clip.transport.position(), 1000);
    }

    void seekThatNeverArrivesIsSentAgainWhenAskedAgain() {
        Paused clip;
        clip.transport.seek(900);
        QTRY_VERIFY_WITH_TIMEOUT(clip.transport.isSettled(), 20000);
        QCOMPARE(clip.transport.position(), 900);
        clip.transport.seek(900);
        QCOMPARE(clip.streams.log, QStringList({"seek 900", "seek 900"}));
    }

    // Without a further call.
    void moveThatNeverArrivesBecomesASeek() {
        Paused clip;
        clip.transport.seek(550);
        QTRY_COMPARE_WITH_TIMEOUT(clip.streams.log, QStringList({"move 550", "seek 550"}), 20000);
        QCOMPARE(clip.transport.position(), 550);
    }
};

QTEST_GUILESS_MAIN(TestTransport)
#include "test_transport.moc"
