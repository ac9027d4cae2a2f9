// What the player asks of the graph, in which order, and what it answers while the graph refuses or is
// closed.
#include <QTest>

#include <limits>

#include "clips/clip.h"
#include "platform/host.h"
#include "playback/player.h"
#include "playback/sample_handler.h"
#include "support/fake_media.h"

using namespace ql240;

namespace {

constexpr auto kView = static_cast<WindowToken>(7);

QStringList words(const char* text) {
    const QString all = QString::fromLatin1(text);
    return all.isEmpty() ? QStringList() : all.split(QStringLiteral("; "));
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
    const Clip m_clip{QFileInfo(QStringLiteral("/c/REC_1.mp4"))};

    bool open(Player& player, const Clip& clip) { return player.open(&clip, {&m_first, &m_second}, kView); }

    // Without the steps of the recipe.
    QStringList takeLog() {
        QStringList log = m_media.takeLog();
        log.removeIf([](const QString& call) {
            const QString verb = call.section(QLatin1Char(' '), 0, 0);
            return words("create; add; load; grabber; join; render").contains(verb);
        });
        return log;
    }

private Q_SLOTS:
    void init() {
        m_media = FakeMedia();
        host().media = &m_media;
    }

    void fileNameChoosesRecipe_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("mp4");
        QTest::newRow("mp4") << "/c/REC_1.mp4" << true;
        QTest::newRow("upper case") << "/c/REC_1.MP4" << false;
        QTest::newRow("nothing before the dot") << "/c/.mp4" << false;
        QTest::newRow("inside the name") << "/c/a.mp4.avi" << true;
        QTest::newRow("in the folder's name") << "/c/x.mp4/REC_1.avi" << false;
        QTest::newRow("avi") << "/c/EVS_1.AVI" << false;
    }
    void fileNameChoosesRecipe() {
        QFETCH(QString, path);
        QFETCH(bool, mp4);
        const Clip clip{QFileInfo(path)};
        Player player;
        QVERIFY(open(player, clip));
        QCOMPARE(player.clip(), &clip);
        QCOMPARE(m_media.log.contains(QStringLiteral("create MP4 splitter")), mp4);
        QCOMPARE(m_media.log.contains(QStringLiteral("create AVI splitter")), !mp4);
        QVERIFY(m_media.log.contains(QStringLiteral("load ") + path));
    }

    void openAndClose_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("streams");
        QTest::addColumn<QString>("failing"); // what fails
        QTest::addColumn<bool>("opens");
        QTest::addColumn<QStringList>("opening");
        QTest::addColumn<QStringList>("closing");
        QTest::addColumn<QSize>("size"); // of stream 0, and of its frame
        QTest::addColumn<QSize>("frame");
        const QSize size(640, 360);
        const auto row = [](const char* title, const char* name, int streams, const char* failing, bool opens,
                            const char* opening, const char* closing, QSize video, QSize frame) {
            QTest::newRow(title) << name << streams << failing << opens << words(opening) << words(closing)
                                 << video << frame;
        };
        const char* const closing = "callback 0 none; stop; graph gone";
        const char* const aviOpening =
            "callback 0 buffer; window 0 owner 1; window 0 style 46000000; window 0 autoshow 0";
        row("mp4", "a.mp4", 1, "-", true, "callback 0 buffer; window 0 autoshow 0", closing, size, size);
        row("mp4, two", "a.mp4", 2, "-", true,
            "callback 0 buffer; callback 1 buffer; window 0 autoshow 0; window 1 autoshow 0",
            "callback 0 none; callback 1 none; stop; graph gone", size, size);
        row("mp4, size unknown", "a.mp4", 1, "size", true, "callback 0 buffer; window 0 autoshow 0", closing,
            {0, 0}, {0, 0});
        row("mp4, join fails", "a.mp4", 1, "join B2 - Splitter:vide", false, "stop; graph gone", "", {0, 0},
            {0, 0});
        row("avi", "a.avi", 1, "-", true, aviOpening, closing, size, size);
        row("avi, no sound", "a.avi", 1, "render", true, aviOpening, closing, size, size);
        row("avi, no file", "a.avi", 1, "load", false, "stop; graph gone", "", {0, 0}, {0, 0});
        row("avi, join fails", "a.avi", 1, "join", true, aviOpening, closing, {0, 0}, {0, 0});
        row("avi, no grabber", "a.avi", 1, "create grabber", true,
            "window 0 owner 1; window 0 style 46000000; window 0 autoshow 0", "stop; graph gone", {0, 0},
            {0, 0});
        row("avi, graph's size unknown", "a.avi", 1, "graph size", true, aviOpening, closing, size, {0, 0});
        row("avi, renderer's size unknown", "a.avi", 1, "size", true, aviOpening, closing, {0, 0}, {0, 0});
        row("no graph", "a.avi", 1, "create graph", false, "", "", {0, 0}, {0, 0});
    }
    void openAndClose() {
        QFETCH(QString, name);
        QFETCH(QString, failing);
        QFETCH(bool, opens);
        const Clip clip{QFileInfo(QStringLiteral("/c/") + name)};
        QFETCH(int, streams);
        if (streams == 2)
            m_media.clip = FakeClip::twoStreams();
        m_media.answers[failing] = kStatusFail;
        Player player;
        QCOMPARE(open(player, clip), opens);
        QTEST(takeLog(), "opening");
        QTEST(player.videoSize(0), "size");
        QTEST(player.frame(0, false).size(), "frame");
        QCOMPARE(player.clip(), opens ? &clip : nullptr);
        player.close();
        QTEST(takeLog(), "closing");
        QCOMPARE(player.clip(), nullptr);
        QCOMPARE(player.videoSize(0), QSize(0, 0));
        QTEST(player.frame(0, false).size(), "frame");
        QCOMPARE(m_media.liveObjects, 0);
    }

    void streamCountIsTheLastOpenedClips() {
        Player player;
        m_media.clip = FakeClip{.mp4Pins = {u"vide", u"vide", u"vide", u"soun"}};
        QVERIFY(open(player, m_clip));
        QCOMPARE(Player::videoStreamCount, 2);
        QCOMPARE(player.videoSize(1), m_media.clip.sizes[1]);
        player.close();
        QCOMPARE(Player::videoStreamCount, 2);
        m_media.clip.mp4Pins = {u"soun"};
        QVERIFY(!open(player, m_clip));
        QCOMPARE(Player::videoStreamCount, 2);
        const Clip avi{QFileInfo(QStringLiteral("/c/a.avi"))};
        QVERIFY(open(player, avi));
        QCOMPARE(Player::videoStreamCount, 1);
    }

    // What each operation asks, answers and leaves as flags, when the graph is willing and when it isn't.
    void transport_data() {
        QTest::addColumn<std::function<bool(Player&)>>("operation");
        QTest::addColumn<QString>("call");
        QTest::addColumn<bool>("stopped"); // afterwards
        QTest::addColumn<bool>("paused");
        const auto row = [](const char* call, std::function<bool(Player&)> operation, bool stopped,
                            bool paused) {
            QTest::newRow(call) << std::move(operation) << call << stopped << paused;
        };
        row(
            "run", [](Player& p) { return p.play(); }, false, false);
        row(
            "pause", [](Player& p) { return p.pause(); }, false, true);
        row(
            "stop", [](Player& p) { return p.stop(); }, true, false);
        row(
            "seek 0", [](Player& p) { return p.rewind(); }, false, false);
        // The flags that were: stopped.
        row(
            "seek 50666666", [](Player& p) { return p.stepForward(); }, true, false);
        row(
            "seek 49333334", [](Player& p) { return p.stepBack(); }, true, false);
        row(
            "seek 3000000000", [](Player& p) { return p.seek(300000); }, true, false);
        row(
            "seek 21474836470000", [](Player& p) { return p.seek(std::numeric_limits<int>::max()); }, true,
            false);
        row(
            "seek -10000", [](Player& p) { return p.seek(-1); }, true, false);
        row(
            "rate 1.5", [](Player& p) { return succeeded(p.setRate(1.5)); }, true, false);
    }
    void transport() {
        QFETCH(std::function<bool(Player&)>, operation);
        QFETCH(QString, call);
        Player player;
        QVERIFY(!operation(player));
        QVERIFY(!player.isStopped() && !player.isPaused());
        QVERIFY(m_media.log.isEmpty());

        QVERIFY(open(player, m_clip));
        for (const Status answer : {kStatusOk, Status{1}, kStatusFail}) {
            player.stop();
            m_media.setPositionMs(5000);
            m_media.takeLog();
            m_media.answers[call] = answer;
            QCOMPARE(operation(player), succeeded(answer));
            QCOMPARE(m_media.takeLog(), QStringList(call));
            QTEST(player.isStopped(), "stopped");
            QTEST(player.isPaused(), "paused");
        }
    }

    void closedPlayerAnswersNothing() {
        Player player;
        QVERIFY(!player.open(nullptr, {}, kView));
        QVERIFY(open(player, m_clip));
        player.pause();
        player.close();
        m_media.takeLog();
        QCOMPARE(player.setRate(1.0), -1);
        QCOMPARE(player.positionMs(), 0);
        QCOMPARE(player.durationMs(), 0);
        QVERIFY(!player.isRunning());
        QVERIFY(!player.play() && !player.pause() && !player.stop() && !player.rewind());
        QVERIFY(player.isStopped() && !player.isPaused()); // as closing has left them
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, false) && !player.hideWindow(0));
        player.moveWindow(kView, 1, 1, false);
        player.resizeWindow(kView, 1, 1, false);
        QVERIFY(m_media.log.isEmpty());
    }

    void stepNeedsThePosition() {
        Player player;
        QVERIFY(open(player, m_clip));
        m_media.answers[QStringLiteral("position")] = kStatusFail;
        m_media.takeLog();
        QVERIFY(!player.stepForward() && !player.stepBack());
        QVERIFY(m_media.log.isEmpty());
    }

    void millisecondsAreCutOff_data() {
        QTest::addColumn<qint64>("units");
        QTest::addColumn<qint64>("ms");
        for (const auto& [units, ms] : std::initializer_list<std::pair<qint64, qint64>>{
                 {9999, 0}, {10000, 1}, {19999, 1}, {-9999, 0}, {-19999, -1}, {30000009999, 3000000}})
            QTest::addRow("%lld", units) << units << ms;
    }
    void millisecondsAreCutOff() {
        QFETCH(qint64, units);
        Player player;
        QVERIFY(open(player, m_clip));
        m_media.transport.position = units;
        QTEST(qint64(player.positionMs()), "ms");
        m_media.transport.duration = units;
        QTEST(qint64(player.durationMs()), "ms");
    }

    void runningIsWhatTheGraphSays() {
        Player player;
        QVERIFY(open(player, m_clip));
        player.play();
        QVERIFY(player.isRunning());
        m_media.answers[QStringLiteral("state")] = kStatusIntermediate;
        QVERIFY(player.isRunning());
        m_media.answers[QStringLiteral("state")] = kStatusFail;
        QVERIFY(!player.isRunning());
        m_media.answers.clear();
        player.pause();
        QVERIFY(!player.isRunning());
    }

    void windowCalls() {
        m_media.clip = FakeClip::twoStreams();
        Player player;
        QVERIFY(open(player, m_clip));
        m_media.takeLog();
        QVERIFY(player.attachWindow(kView, {3, 1, 634, 359}, true));
        QCOMPARE(m_media.takeLog(),
                 words("window 1 owner 1; window 1 style 46000000; "
                       "window 1 position 3,1 634x359; window 1 drain 1; window 1 visible 1"));
        player.moveWindow(kView, -96, -53, false);
        QCOMPARE(m_media.takeLog(), words("window 0 owner 1; window 0 style 46000000; window 0 left -96; "
                                          "window 0 top -53; window 0 drain 1"));
        player.resizeWindow(kView, 832, 467, true);
        QCOMPARE(m_media.takeLog(), words("window 1 owner 1; window 1 style 46000000; window 1 width 832; "
                                          "window 1 height 467; window 1 drain 1"));
        for (const FakeWindow& window : m_media.windows)
            QVERIFY(window.owner == kView && window.drain == kView);
        QVERIFY(player.hideWindow(1));
        QCOMPARE(m_media.takeLog(), words("window 1 visible 0"));

        // Only the last step decides.
        m_media.answers = {{QStringLiteral("window 0 owner"), kStatusFail}};
        QVERIFY(player.attachWindow(kView, {1, 1, 2, 2}, false));
        m_media.answers = {{QStringLiteral("window 0 visible"), kStatusFail}};
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, false));
        QVERIFY(!player.hideWindow(0));
    }

    void oneStreamHasNoSecondWindow() {
        Player player;
        QVERIFY(open(player, m_clip));
        m_media.takeLog();
        QVERIFY(!player.attachWindow(kView, {1, 1, 2, 2}, true) && !player.hideWindow(1));
        player.moveWindow(kView, 1, 1, true);
        player.resizeWindow(kView, 1, 1, true);
        QVERIFY(m_media.log.isEmpty());
        QVERIFY(player.frame(1, true).isNull());
        QCOMPARE(player.videoSize(1), QSize(0, 0));
    }

    void frameIsTheLastOneOnRequest() {
        Player player;
        QVERIFY(open(player, m_clip));
        const QSize size = player.videoSize(0);
        m_media.deliver(0, greyFrame(size, 126));
        QCOMPARE(player.frame(0, false).sizeInBytes(), 691200);
        QCOMPARE(player.frame(0, false).format(), QImage::Format_RGB888);
        QCOMPARE(player.frame(0, false).pixel(639, 359), qRgb(0, 0, 0));
        QCOMPARE(player.frame(0, true).pixel(639, 359), qRgb(128, 128, 128));
        m_media.deliver(0, greyFrame(size, 235));
        QCOMPARE(player.frame(0, false).pixel(0, 0), qRgb(128, 128, 128));
        player.close();
        QCOMPARE(player.frame(0, true).pixel(0, 0), qRgb(128, 128, 128));
    }

    void unfitFrameIsNull_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<std::function<void(FakeMedia&)>>("spoil");
        const QSize size(640, 360);
        const auto row = [](const char* name, const QSize& native, std::function<void(FakeMedia&)> spoil) {
            QTest::newRow(name) << native << std::move(spoil);
        };
        const auto answer = [](const char* call) {
            return [=](FakeMedia& m) { m.answers[QString::fromLatin1(call)] = kStatusFail; };
        };
        row("no video", size, [](FakeMedia& m) { m.grabbers[0].type.major = {}; });
        row("not YUY2", size, [](FakeMedia& m) { m.grabbers[0].type.subtype = kMediaTypeVideo; });
        row("type unknown", size, answer("type 0"));
        row("buffer unknown", size, answer("buffer 0"));
        row("fetch fails", size, answer("fetch 0"));
        row("other size", size, [](FakeMedia& m) { m.grabbers[0].kept.resize(460800 - 4); });
        row("nothing kept", size, [](FakeMedia& m) { m.grabbers[0].kept.clear(); });
        row("padded rows", {322, 180}, [](FakeMedia&) {});
    }
    void unfitFrameIsNull() {
        QFETCH(QSize, size);
        QFETCH(std::function<void(FakeMedia&)>, spoil);
        m_media.clip.sizes[0] = size;
        Player player;
        QVERIFY(open(player, m_clip));
        const MediaType type = m_media.grabbers[0].type;
        m_media.deliver(0, greyFrame(size, 126));
        spoil(m_media);
        QVERIFY(player.frame(0, true).isNull());
        QVERIFY(player.frame(0, false).isNull());
        if (size.width() != 640)
            return;
        // The next good frame is there again.
        m_media.answers.clear();
        m_media.grabbers[0].type = type;
        m_media.deliver(0, greyFrame(size, 126));
        QCOMPARE(player.frame(0, true).pixel(0, 0), qRgb(128, 128, 128));
    }
};

QTEST_GUILESS_MAIN(TestPlayerCalls)
#include "test_player_calls.moc"
