// The player's calls to the graph, in order, and its results while the graph fails or is closed.
#include <QTest>

#include <functional>
#include <limits>

#include "clips/clip.h"
#include "platform/host.h"
#include "playback/player.h"
#include "playback/sample_handler.h"
#include "support/fake_media.h"

using namespace ql240;

namespace {

constexpr auto kView = static_cast<WindowToken>(7);

// Calls, separated by "|" or line ends.
constexpr char kAvi[] =
    R"(create graph|create file source|add File Source (Async.)|load /c/1.avi|create AVI splitter|add AVI Splitter
create video decoder|add ffdshow Video Decoder|create video renderer|add Video Renderer
create grabber|add SampleGrabber|grabber 0 media type|grabber 0 buffers|create converter|add AVI Decompressor
join File Source (Async.):Output > AVI Splitter:Input pin|join AVI Splitter:Stream 00 > ffdshow Video Decoder:In
join ffdshow Video Decoder:Out > SampleGrabber:Input|join SampleGrabber:Output > AVI Decompressor:XForm In
join AVI Decompressor:XForm Out > Video Renderer:VMR Input0|render AVI Splitter:Stream 01)";
constexpr char kAviShown[] = "callback 0 buffer|window 0 owner 1|window 0 style 46000000|window 0 autoshow 0";

constexpr char kMp4Source[] =
    R"(create graph|create file source|add File Source (Async.)|load /c/1.mp4|create MP4 splitter|add B2 - Splitter
join File Source (Async.):Output > B2 - Splitter:Input)";
constexpr char kMp4Filters[] =
    R"(create audio decoder|add Audio Decoder|create sound output|add Default DirectSound Device
create video decoder|add ffdshow Video Decoder|create video decoder|add ffdshow Video Decoder
create video renderer|add Video Renderer|create video renderer|add Video Renderer 0003
create grabber|add SampleGrabber|grabber 0 media type|grabber 0 buffers|create converter|add AVI Decompressor
create grabber|add SampleGrabber|grabber 1 media type|grabber 1 buffers|create converter|add AVI Decompressor)";
constexpr char kMp4Joins[] =
    R"(join B2 - Splitter:soun > Audio Decoder:In|join Audio Decoder:Out > Default DirectSound Device:Audio Input pin (rendered)
join B2 - Splitter:vide > ffdshow Video Decoder:In|join ffdshow Video Decoder:Out > SampleGrabber:Input
join SampleGrabber:Output > AVI Decompressor:XForm In|join AVI Decompressor:XForm Out > Video Renderer:VMR Input0)";
constexpr char kMp4SecondJoins[] =
    R"(join B2 - Splitter:VIDE > ffdshow Video Decoder 2:In|join ffdshow Video Decoder 2:Out > SampleGrabber 2:Input
join SampleGrabber 2:Output > AVI Decompressor 2:XForm In
join AVI Decompressor 2:XForm Out > Video Renderer 0003:VMR Input0)";
QStringList calls(const char* text) {
    return QString::fromLatin1(text).replace(QLatin1Char('\n'), QLatin1Char('|')).split(QLatin1Char('|'));
}

std::vector<std::uint8_t> greyFrame(const QSize& size, std::uint8_t luma) {
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(size.width() * size.height() * 2), 128);
    for (std::size_t i = 0; i < frame.size(); i += 2)
        frame[i] = luma;
    return frame;
}

} // namespace

class TestPlayerCalls : public QObject {
    Q_OBJECT

private:
    FakeMedia m_media;
    SampleHandler m_first{nullptr};
    SampleHandler m_second{nullptr};
    const Clip m_mp4{QFileInfo(QStringLiteral("/c/1.mp4"))};
    const Clip m_avi{QFileInfo(QStringLiteral("/c/1.avi"))};

    bool open(Player& player, const Clip& clip) { return player.open(&clip, {&m_first, &m_second}, kView); }
    void fail(const char* call) { m_media.answers = {{QString::fromLatin1(call), kStatusFail}}; }
    void compareCalls(const char* expected) { QCOMPARE(m_media.takeLog(), calls(expected)); }

private Q_SLOTS:
    void init() {
        m_media = FakeMedia();
        host().media = &m_media;
    }

    void fileNameChoosesRecipe() {
        const QStringList mp4{"/c/1.mp4", "/c/a.mp4.avi"};
        for (const QString& path : mp4 + QStringList{"/c/1.MP4", "/c/.mp4", "/c/x.mp4/1.avi"}) {
            const Clip clip{QFileInfo(path)};
            Player player;
            QVERIFY(open(player, clip));
            QCOMPARE(player.clip(), &clip);
            QCOMPARE(m_media.log.contains(QStringLiteral("create MP4 splitter")), mp4.contains(path));
            QCOMPARE(m_media.takeLog().contains(QStringLiteral("create AVI splitter")), !mp4.contains(path));
        }
    }

    void opensStepByStep() {
        const auto expect = [this](const Clip& clip, const FakeClip& found, bool opens, int streams,
                                   const QStringList& log) {
            m_media.clip = found;
            for (const Status success : {kStatusOk, Status{1}}) {
                Player::videoStreamCount = 7;
                m_media.log.clear();
                m_media.answers[QStringLiteral("create")] = success;
                Player player;
                QCOMPARE(open(player, clip), opens);
                QCOMPARE(m_media.takeLog(), log);
                QCOMPARE(Player::videoStreamCount, streams);
                QCOMPARE(player.clip() != nullptr, opens);
            }
        };
        const auto mp4 = [&](std::vector<std::u16string> pins, bool opens, int streams,
                             const QStringList& log) {
            expect(m_mp4, {.mp4Pins = std::move(pins)}, opens, streams, log);
        };
        const auto avi = [&](std::vector<std::u16string> pins, const QStringList& log) {
            expect(m_avi, {.aviPins = std::move(pins)}, true, 1, log + calls(kAviShown));
        };
        const QStringList all = calls(kMp4Source) + calls(kMp4Filters) + calls(kMp4Joins);
        const QStringList both =
            all + calls(kMp4SecondJoins) +
            calls("callback 0 buffer|callback 1 buffer|window 0 autoshow 0|window 1 autoshow 0");
        mp4({u"soun", u"vide", u"text", u"VIDE"}, true, 2, both);
        mp4({u"vide", u"VIDE", u"soun", u"vide"}, true, 2, both);
        mp4({u"vide", u"soun"}, true, 1, all + calls("callback 0 buffer|window 0 autoshow 0"));
        mp4({u"soun", u"video"}, false, 7, calls(kMp4Source) + calls("stop|graph gone"));
        mp4({u"vide"}, false, 7,
            calls(kMp4Source) + calls(kMp4Filters) +
                calls("join nothing > Audio Decoder:In|stop|graph gone"));
        QStringList log = calls(kAvi);
        avi({u"Stream 00", u"Stream 01"}, log);
        log.last() = QStringLiteral("render nothing");
        avi({u"STREAM 00"}, log.replaceInStrings(QStringLiteral("Stream"), QStringLiteral("STREAM")));
        avi({u"Stream 01"}, log.mid(0, 17) + calls("join nothing > ffdshow Video Decoder:In"));
    }

    // An MP4 clip whose recipe fails doesn't open; an AVI clip opens once it has its renderer.
    void everyFailingStepEndsTheRecipe() {
        m_media.clip.mp4Pins = {u"vide", u"VIDE", u"soun"};
        const QStringList recipes[] = {
            calls(kAvi), calls(kMp4Source) + calls(kMp4Filters) + calls(kMp4Joins) + calls(kMp4SecondJoins)};
        for (const QStringList& recipe : recipes) {
            const bool isAvi = recipe == recipes[0];
            const auto madeBy = recipe.indexOf(QLatin1String("create video renderer"));
            for (int i = 0; i < recipe.size(); ++i) {
                m_media.log.clear();
                m_media.failsAt = i;
                Player player;
                QCOMPARE(open(player, isAvi ? m_avi : m_mp4), isAvi && i > madeBy);
                QCOMPARE(m_media.log.mid(0, i + 1), recipe.mid(0, i + 1));
                for (const QString& call : m_media.log.mid(i + 1))
                    QVERIFY2(!recipe.contains(call), qPrintable(call));
                player.close();
                QCOMPARE(player.clip(), nullptr);
                QCOMPARE(m_media.liveObjects, 0);
            }
        }
    }

    void unknownSizesAreNone() {
        // The failing query, and whether the sizes of clip and frame are then known.
        const std::tuple<const Clip*, const char*, bool, bool> rows[] = {
            {&m_mp4, "nothing", true, true},     {&m_mp4, "size", false, false},
            {&m_avi, "nothing", true, true},     {&m_avi, "size", false, false},
            {&m_avi, "graph size", true, false},
        };
        const auto sizeIf = [](bool isKnown) { return isKnown ? QSize(640, 360) : QSize(0, 0); };
        for (const auto& [clip, failing, knowsVideo, knowsFrame] : rows) {
            fail(failing);
            Player player;
            QVERIFY(open(player, *clip));
            QCOMPARE(player.videoSize(0), sizeIf(knowsVideo));
            QCOMPARE(player.frame(0, false).size(), sizeIf(knowsFrame));
            player.close();
            QCOMPARE(player.videoSize(0), QSize(0, 0));
            QCOMPARE(player.frame(0, false).size(), sizeIf(knowsFrame));
        }
    }

    // Each operation's call, result and flags, when the graph succeeds and when it fails.
    void transport() {
        struct Case {
            const char* call;
            bool (*operate)(Player&);
            bool stopped = true; // afterwards, as before
            bool paused = false;
        };
        constexpr int kLast = std::numeric_limits<int>::max();
        const Case cases[] = {
            {"run", [](Player& p) { return p.play(); }, false, false},
            {"pause", [](Player& p) { return p.pause(); }, false, true},
            {"stop", [](Player& p) { return p.stop(); }, true, false},
            {"seek 0", [](Player& p) { return p.rewind(); }, false, false},
            {"seek 50666666", [](Player& p) { return p.stepForward(); }},
            {"seek 49333334", [](Player& p) { return p.stepBack(); }},
            {"seek 21474836470000", [](Player& p) { return p.seek(kLast); }},
            {"seek -10000", [](Player& p) { return p.seek(-1); }},
            {"rate 1.5", [](Player& p) { return succeeded(p.setRate(1.5)); }},
        };
        for (const Case& c : cases) {
            for (const Status answer : {kStatusOk, Status{1}, kStatusFail}) {
                Player player;
                QVERIFY(!c.operate(player));
                QVERIFY(!player.isStopped() && !player.isPaused());
                QVERIFY(open(player, m_mp4));
                player.stop();
                m_media.setPositionMs(5000);
                m_media.takeLog();
                m_media.answers[QLatin1String(c.call)] = answer;
                QCOMPARE(c.operate(player), succeeded(answer));
                compareCalls(c.call);
                QVERIFY2(player.isStopped() == c.stopped && player.isPaused() == c.paused, c.call);
            }
        }
    }

    void closedPlayerAnswersNothing() {
        m_media.clip = FakeClip::twoStreams();
        Player player;
        QVERIFY(!player.open(nullptr, {}, kView));
        QVERIFY(open(player, m_mp4));
        player.pause();
        m_media.setPositionMs(5000);
        m_media.takeLog();
        player.close();
        compareCalls("callback 0 none|callback 1 none|stop|graph gone");
        QCOMPARE(player.positionMs(), 0);
        QCOMPARE(player.durationMs(), 0);
        QVERIFY(!player.isRunning());
        QVERIFY(!player.play() && !player.pause() && !player.stop() && !player.rewind());
        QVERIFY(player.isStopped() && !player.isPaused()); // unchanged by calls on a closed player
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, false) && !player.hideWindow(0));
        player.moveWindow(kView, 1, 1, false);
        player.resizeWindow(kView, 1, 1, false);
        QVERIFY(m_media.log.isEmpty());
        fail("create graph");
        QVERIFY(!open(player, m_mp4));
    }

    void millisecondsAreCutOff() {
        Player player;
        QVERIFY(open(player, m_mp4));
        for (const auto& [units, ms] : std::initializer_list<std::pair<std::int64_t, std::int64_t>>{
                 {9999, 0}, {10000, 1}, {-19999, -1}, {30000009999, 3000000}}) {
            m_media.transport.position = m_media.transport.duration = units;
            QCOMPARE(player.positionMs(), ms);
            QCOMPARE(player.durationMs(), ms);
        }
        fail("position");
        m_media.takeLog();
        QVERIFY(!player.stepForward() && !player.stepBack());
        QVERIFY(m_media.log.isEmpty());
    }

    void runningIsWhatTheGraphSays() {
        Player player;
        QVERIFY(open(player, m_mp4));
        player.play();
        m_media.answers[QStringLiteral("state")] = kStatusIntermediate;
        QVERIFY(player.isRunning());
        fail("state");
        QVERIFY(!player.isRunning());
        m_media.answers.clear();
        player.pause();
        QVERIFY(!player.isRunning());
    }

    void windowCalls() {
        m_media.clip = FakeClip::twoStreams();
        Player player;
        QVERIFY(open(player, m_mp4));
        m_media.takeLog();
        QVERIFY(player.attachWindow(kView, {3, 1, 634, 359}, true));
        compareCalls(
            "window 1 owner 1|window 1 style 46000000|window 1 position 3,1 634x359|window 1 drain 1|"
            "window 1 visible 1");
        player.moveWindow(kView, -96, -53, false);
        compareCalls(
            "window 0 owner 1|window 0 style 46000000|window 0 left -96|window 0 top -53|"
            "window 0 drain 1");
        player.resizeWindow(kView, 832, 467, true);
        compareCalls(
            "window 1 owner 1|window 1 style 46000000|window 1 width 832|window 1 height 467|"
            "window 1 drain 1");
        QVERIFY(m_media.windows[0].owner == kView && m_media.windows[0].drain == kView);

        // Only the last call decides.
        fail("window 0 owner");
        QVERIFY(player.attachWindow(kView, {1, 1, 2, 2}, false));
        fail("window 0 visible");
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, false) && !player.hideWindow(0));
        QVERIFY(player.hideWindow(1));
    }

    void oneStreamHasNoSecondWindow() {
        Player player;
        QVERIFY(open(player, m_mp4));
        m_media.takeLog();
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, true) && !player.hideWindow(1));
        player.moveWindow(kView, 1, 1, true);
        QVERIFY(m_media.log.isEmpty());
        QVERIFY(player.frame(1, true).isNull());
    }

    void frameIsTheLastOneOnRequest() {
        Player player;
        QVERIFY(open(player, m_mp4));
        const QSize size = player.videoSize(0);
        m_media.deliver(0, greyFrame(size, 126));
        QCOMPARE(player.frame(0, false).format(), QImage::Format_RGB888);
        QCOMPARE(player.frame(0, false).pixel(639, 359), qRgb(0, 0, 0));
        QCOMPARE(player.frame(0, true).pixel(639, 359), qRgb(128, 128, 128));
        m_media.deliver(0, greyFrame(size, 235));
        QCOMPARE(player.frame(0, false).pixel(0, 0), qRgb(128, 128, 128));
        player.close();
        QCOMPARE(player.frame(0, true).pixel(0, 0), qRgb(128, 128, 128));
    }

    void unfitFrameIsNullAndTheNextIsThere() {
        Player player;
        QVERIFY(open(player, m_mp4));
        const QSize size = player.videoSize(0);
        const FakeGrabber grabber = m_media.grabbers[0];
        const std::function<void()> spoils[] = {
            [this] { m_media.grabbers[0].type.major = {}; },
            [this] { m_media.grabbers[0].type.subtype = kMediaTypeVideo; },
            [this] { fail("type 0"); },
            [this] { fail("buffer 0"); },
            [this] { fail("fetch 0"); },
            [this] { m_media.grabbers[0].kept.resize(460800 - 4); },
            [this] { m_media.grabbers[0].kept.clear(); },
        };
        for (const auto& spoil : spoils) {
            m_media.deliver(0, greyFrame(size, 126));
            spoil();
            QVERIFY(player.frame(0, true).isNull());
            QVERIFY(player.frame(0, false).isNull());
            m_media.answers.clear();
            m_media.grabbers[0] = grabber;
            m_media.deliver(0, greyFrame(size, 126));
            QCOMPARE(player.frame(0, true).pixel(0, 0), qRgb(128, 128, 128));
        }
    }

    void frameWithPaddedRowsIsNull() {
        m_media.clip.sizes[0] = QSize(322, 180);
        Player player;
        QVERIFY(open(player, m_mp4));
        m_media.deliver(0, greyFrame(player.videoSize(0), 126));
        QVERIFY(player.frame(0, true).isNull());
    }
};

QTEST_GUILESS_MAIN(TestPlayerCalls)
#include "test_player_calls.moc"
