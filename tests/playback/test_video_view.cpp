// The view on a fake pipeline: the picture's place, zoom and pan, hidden pictures.
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <thread>

#include "clips/clip.h"
#include "platform/host.h"
#include "playback/video_view.h"
#include "support/fake_media.h"

using namespace ql240;

namespace {

const QSize kViewSize(640, 360);

QStringList attached(int stream, const char* place = "1,1 638x358") {
    const QString calls = QStringLiteral(
        "window %1 owner 1|window %1 style 46000000|window %1 position %2|window %1 drain 1|"
        "window %1 visible 1");
    return calls.arg(stream).arg(QLatin1String(place)).split(QLatin1Char('|'));
}

} // namespace

class TestVideoView : public QObject {
    Q_OBJECT

private:
    FakeMedia m_media;
    const Clip m_clip{QFileInfo(QStringLiteral("/c/REC_1.mp4"))};
    std::unique_ptr<VideoView> m_view;
    std::unique_ptr<VideoView> m_second; // shows stream 1 of m_view's player

    static std::unique_ptr<VideoView> newView() {
        auto view = std::make_unique<VideoView>();
        view->resize(kViewSize);
        view->show();
        view->setFrameSize({1280, 720});
        return view;
    }

    // The calls of zoom and pan since the last look, as "stream:value".
    QString takePlace() {
        QStringList numbers;
        for (const QString& call : m_media.takeLog()) {
            const QStringList words = call.split(QLatin1Char(' '));
            if (QStringList({"left", "top", "width", "height"}).contains(words.value(2)))
                numbers += words[1] + QLatin1Char(':') + words[3];
        }
        return numbers.join(QLatin1Char(' '));
    }

    bool mouse(QEvent::Type type, const QPoint& at) {
        QMouseEvent event(type, at, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        type == QEvent::MouseButtonPress ? m_view->mousePressEvent(&event) : m_view->mouseMoveEvent(&event);
        return event.isAccepted();
    }
    bool press(const QPoint& at) { return mouse(QEvent::MouseButtonPress, at); }
    bool move(const QPoint& at) { return mouse(QEvent::MouseMove, at); }

private Q_SLOTS:
    void init() {
        m_media = FakeMedia();
        m_media.clip = FakeClip::twoStreams();
        host().media = &m_media;
        m_view = newView();
        m_second = newView();
        m_second->setSecondPlayer(m_view->player());
        QVERIFY(m_view->openClip(&m_clip));
        m_media.takeLog();
    }

    void cleanup() {
        m_second.reset();
        m_view.reset();
        QCOMPARE(m_media.liveObjects, 0);
    }

    void pictureTakesTheFullHeight() {
        struct Case {
            QSize view, frame;
            QRect rect;
        };
        const Case cases[] = {
            {kViewSize, {1280, 720}, {1, 1, 638, 358}},
            {kViewSize, {640, 360}, {3, 1, 634, 359}},
            {kViewSize, {640, 480}, {81, 1, 478, 359}},
            {kViewSize, {480, 854}, {219, 1, 202, 359}},
            {kViewSize, {0, 360}, {}},
            {kViewSize, {-1, -1}, {}},
            {{0, 0}, {640, 360}, {}},
        };
        for (const Case& c : cases)
            QCOMPARE(fittedRect(c.view, c.frame), c.rect);
    }

    void openingResetsAndSaysSo() {
        QSignalSpy opened(m_view.get(), &VideoView::fileOpened);
        m_view->zoomStep(1);
        QVERIFY(!m_view->openClip(nullptr));
        QVERIFY(m_view->zoom() == 1.3F);
        m_media.takeLog();
        QVERIFY(m_view->openClip(&m_clip));
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(opened.size(), 1);
        // The previous clip is closed first; the picture is placed last.
        QCOMPARE(m_media.log.mid(2, 3), QStringList({"stop", "graph gone", "create graph"}));
        QCOMPARE(m_media.log.mid(m_media.log.size() - 5), attached(0));
        m_media.answers[QStringLiteral("load")] = kStatusFail;
        QVERIFY(!m_view->openClip(&m_clip));
        QCOMPARE(opened.size(), 1);
        QCOMPARE(m_view->player()->clip(), nullptr);
    }

    void eachViewShowsItsStream() {
        m_second->layoutVideo();
        QCOMPARE(m_media.takeLog(), attached(1));
        QCOMPARE(m_media.windows[1].owner, windowToken(m_second.get()));
        m_second->setFrameSize({640, 480});
        m_second->resize(320, 180);
        QCOMPARE(m_media.takeLog(), attached(1, "40,1 240x179"));
        m_second->hide();
        QCOMPARE(m_media.takeLog(), QStringList({"window 1 visible 0"}));
        m_second->show();
        QCOMPARE(m_media.takeLog(), attached(1, "40,1 240x179"));
        m_second->zoomStep(1);
        m_media.takeLog();
        m_second->setFrameSize({0, 480});
        m_second->layoutVideo();
        QVERIFY(m_media.log.isEmpty());
        QVERIFY(m_second->zoom() == 1.3F);
    }

    // Floats drift: ten steps in and ten out don't meet.
    void zoomSums() {
        const auto zoomBy = [this](int steps) {
            for (int i = 0; i < std::abs(steps); ++i)
                m_view->zoomStep(steps > 0 ? 1 : -1);
            return m_view->zoom();
        };
        QVERIFY(zoomBy(10) == 3.9999995F);
        QVERIFY(zoomBy(2) == 4.0F);
        QVERIFY(zoomBy(-10) == 1.0000005F);
        for (int i = 0; i < 2; ++i) {
            m_media.takeLog();
            QVERIFY(zoomBy(-1) == 1.0F);
            QCOMPARE(m_media.log, attached(0));
        }
    }

    void zoomedPictureIsCentred() {
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        QVERIFY(!m_view->hasFocus());
        m_view->zoomStep(1);
        QCOMPARE(takePlace(), "0:832 0:467 0:-96 0:-53");
        QVERIFY(m_view->hasFocus());
        m_second->zoomStep(1);
        QCOMPARE(takePlace(), "1:832 1:467 1:-96 1:-53");
        m_view->resize(1280, 720); // the slack counts from the nominal size
        m_view->zoomStep(1);
        QCOMPARE(takePlace(), "0:1664 0:935 0:-512 0:-287");
        m_view->zoomStep(0);
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(m_media.takeLog(), attached(0, "6,1 1268x719"));
        // A hidden second view has only its own player, which is closed.
        m_second->setVideoVisible(false);
        m_media.takeLog();
        m_second->zoomStep(1);
        QVERIFY(m_media.log.isEmpty());
    }

    void dragOutsideZoomWindowModeIsIgnored() {
        m_view->zoomStep(1);
        m_media.takeLog();
        QVERIFY(!press({100, 100}) && !move({140, 140}));
        QVERIFY(m_media.log.isEmpty());
    }

    // 832 × 467.99998 in 640 × 360, with 50 pixels of slack.
    void panEndsAtTheEdges() {
        const auto placeAt = [this](const QPoint& offset) {
            press({300, 200});
            return move(QPoint(300, 200) + offset) ? takePlace() : QStringLiteral("not the view's");
        };
        m_view->setZoomWinMode(true);
        QCOMPARE(placeAt({9, 9}), ""); // fitted
        m_view->zoomStep(1);
        m_media.takeLog();
        QCOMPARE(placeAt({50, 50}), "0:50 0:50");
        QCOMPARE(placeAt({-242, -157}), "0:-242 0:-157");
        for (const QPoint& offset : {QPoint(51, 0), QPoint(0, 51), QPoint(-243, 0), QPoint(0, -158)})
            QCOMPARE(placeAt(offset), "");
    }

    void dragGoesByStepsOfThreePixels() {
        m_view->setZoomWinMode(true);
        m_view->zoomStep(1);
        m_media.takeLog();
        press({100, 100});
        const auto placeAt = [this](const QPoint& at) {
            return move(at) ? takePlace() : QStringLiteral("not the view's");
        };
        QCOMPARE(placeAt({102, 98}), "");
        QCOMPARE(placeAt({103, 100}), "0:3 0:0");
        QCOMPARE(placeAt({101, 102}), "");
        QCOMPARE(placeAt({103, 97}), "0:3 0:-3");
        QCOMPARE(placeAt({190, 97}), ""); // refused, and doesn't count
        QCOMPARE(placeAt({105, 97}), "");
    }

    void hiddenPictureComesBackWithTheNextFrame() {
        m_view->setVideoVisible(true);
        QVERIFY(m_media.log.isEmpty());
        m_view->setVideoVisible(false);
        m_second->setVideoVisible(false);
        m_view->setVideoVisible(false);
        QCOMPARE(m_media.takeLog(), QStringList({"window 0 visible 0", "window 1 visible 0"}));
        std::thread streaming([this] {
            for (const int stream : {0, 0, 1})
                m_media.deliver(stream, {16, 128, 16, 128});
        });
        streaming.join();
        QVERIFY(m_media.log.isEmpty()); // left to the interface thread
        QCoreApplication::processEvents();
        QCOMPARE(m_media.takeLog(), attached(0));
        m_second->setVideoVisible(true);
        QCOMPARE(m_media.takeLog(), attached(1));
    }

    void adjustmentIsEachStreamsOwn() {
        m_view->setImageAdjust(20, 100);
        const std::vector<std::uint8_t> black{16, 128, 16, 128};
        const std::vector<std::uint8_t> grey{60, 128, 60, 128};
        const std::vector<std::uint8_t> brightBlack{36, 128, 36, 128};
        const std::vector<std::uint8_t> brightGrey{80, 128, 80, 128};
        QCOMPARE(m_media.deliver(0, black), brightBlack);
        QCOMPARE(m_media.deliver(1, grey), brightGrey);
        QCOMPARE(m_media.deliver(0, grey), brightBlack);
        QCOMPARE(m_media.deliver(1, black), brightGrey);
        m_view->setImageAdjust(0, 100);
        QCOMPARE(m_media.deliver(0, grey), grey);
    }
};

QTEST_MAIN(TestVideoView)
#include "test_video_view.moc"
