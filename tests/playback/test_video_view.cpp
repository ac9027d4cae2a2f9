// The view on a pipeline that plays nothing: where the picture goes, zoom and pan, hidden pictures.
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
const QSize kFrameSize(1280, 720);

QStringList attached(int stream, const char* place = "1,1 638x358") {
    QStringList calls;
    for (const QString& call : {QStringLiteral("owner 1"), QStringLiteral("style 46000000"),
                                QStringLiteral("position ") + QLatin1String(place), QStringLiteral("drain 1"),
                                QStringLiteral("visible 1")})
        calls += QStringLiteral("window %1 ").arg(stream) + call;
    return calls;
}

} // namespace

class TestVideoView : public QObject {
    Q_OBJECT

private:
    FakeMedia m_media;
    const Clip m_clip{QFileInfo(QStringLiteral("/c/REC_1.mp4"))};
    std::unique_ptr<VideoView> m_view;
    std::unique_ptr<VideoView> m_second; // shows stream 1 of m_view's player

    std::unique_ptr<VideoView> newView() {
        auto view = std::make_unique<VideoView>();
        view->resize(kViewSize);
        view->show();
        view->setFrameSize(kFrameSize);
        return view;
    }

    // What the zoom and the pan have asked for since the last look, as "x,y" and "w x h".
    QString takePlace() {
        QStringList numbers;
        for (const QString& call : m_media.takeLog()) {
            for (const char* side : {" left ", " top ", " width ", " height "}) {
                if (call.contains(QLatin1String(side)))
                    numbers += call.section(QLatin1Char(' '), 1, 1) + QLatin1Char(':') +
                               call.section(QLatin1Char(' '), 3);
            }
        }
        return numbers.join(QLatin1Char(' '));
    }

    static bool mouse(VideoView& view, QEvent::Type type, const QPoint& at,
                      Qt::MouseButtons held = Qt::LeftButton) {
        QMouseEvent event(type, at, at, Qt::LeftButton, held, Qt::NoModifier);
        if (type == QEvent::MouseButtonPress)
            view.mousePressEvent(&event);
        else
            view.mouseMoveEvent(&event);
        return event.isAccepted();
    }
    bool press(const QPoint& at) { return mouse(*m_view, QEvent::MouseButtonPress, at); }
    bool move(const QPoint& at) { return mouse(*m_view, QEvent::MouseMove, at); }

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
        m_media.takeLog();
        m_view.reset();
        QCOMPARE(m_media.liveObjects, 0);
        if (!m_media.log.isEmpty()) // still open
            QCOMPARE(m_media.log, QStringList({"callback 0 none", "callback 1 none", "stop", "graph gone"}));
    }

    void fittedRectTable_data() {
        QTest::addColumn<QSize>("view");
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<QRect>("rect");
        const auto row = [](const QSize& view, const QSize& frame, const QRect& rect) {
            QTest::addRow("%dx%d in %dx%d", frame.width(), frame.height(), view.width(), view.height())
                << view << frame << rect;
        };
        row(kViewSize, {1280, 720}, {1, 1, 638, 358});
        row(kViewSize, {640, 360}, {3, 1, 634, 359});
        row(kViewSize, {640, 480}, {81, 1, 478, 359});
        row(kViewSize, {720, 480}, {51, 1, 538, 359});
        row(kViewSize, {288, 162}, {1, 1, 638, 358});
        row(kViewSize, {1920, 1080}, {1, 1, 638, 359});
        row(kViewSize, {480, 854}, {219, 1, 202, 359});
        row({1920, 1080}, {1280, 720}, {5, 1, 1910, 1079});
        row(kViewSize, {0, 360}, {});
        row(kViewSize, {-1, -1}, {});
        row({0, 0}, {640, 360}, {});
    }
    void fittedRectTable() {
        QFETCH(QSize, view);
        QFETCH(QSize, frame);
        QTEST(fittedRect(view, frame), "rect");
    }

    void openingResetsAndTells() {
        QSignalSpy opened(m_view.get(), &VideoView::fileOpened);
        m_view->zoomStep(1);
        QVERIFY(!m_view->openClip(nullptr));
        QVERIFY(m_view->zoom() == 1.3F);
        m_media.takeLog();
        QVERIFY(m_view->openClip(&m_clip));
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(opened.size(), 1);
        // The clip that was is closed first; the picture is placed last.
        QCOMPARE(m_media.log.mid(0, 5),
                 QStringList({"callback 0 none", "callback 1 none", "stop", "graph gone", "create graph"}));
        QCOMPARE(m_media.log.mid(m_media.log.size() - 5), attached(0));
        m_media.answers[QStringLiteral("load")] = kStatusFail;
        QVERIFY(!m_view->openClip(&m_clip));
        QCOMPARE(opened.size(), 1);
        QCOMPARE(m_view->player()->clip(), nullptr);
    }

    void eachViewShowsItsStream() {
        m_view->layoutVideo();
        QCOMPARE(m_media.takeLog(), attached(0));
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
        m_second->setFrameSize({0, 480});
        m_second->zoomStep(1);
        m_media.takeLog();
        m_second->layoutVideo();
        QVERIFY(m_media.log.isEmpty());
        QVERIFY(m_second->zoom() == 1.3F);
    }

    void zoomSums() {
        // Floats that drift: ten steps there and ten back don't meet.
        for (int i = 0; i < 10; ++i)
            m_view->zoomStep(1);
        QVERIFY(m_view->zoom() == 3.9999995F);
        m_view->zoomStep(1);
        QVERIFY(m_view->zoom() == 4.0F);
        m_view->zoomStep(1);
        QVERIFY(m_view->zoom() == 4.0F);
        for (int i = 0; i < 10; ++i)
            m_view->zoomStep(-1);
        QVERIFY(m_view->zoom() == 1.0000005F);
        m_media.takeLog();
        m_view->zoomStep(-1);
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(m_media.takeLog(), attached(0));
        m_view->zoomStep(-1);
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(m_media.takeLog(), attached(0));
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
        m_view->resize(1280, 720); // on the nominal size, whatever the view's own
        m_view->zoomStep(1);
        QCOMPARE(takePlace(), "0:1664 0:935 0:-512 0:-287");
        m_view->zoomStep(0);
        QVERIFY(m_view->zoom() == 1.0F);
        QCOMPARE(m_media.takeLog(), attached(0, "6,1 1268x719"));
        // Without its second stream the second view's own player is the target, which is closed.
        m_second->setVideoVisible(false);
        m_media.takeLog();
        m_second->zoomStep(1);
        QVERIFY(m_media.log.isEmpty());
    }

    void dragOutsideZoomWindowModeIsTheWindows() {
        m_view->zoomStep(1);
        m_media.takeLog();
        QVERIFY(!press({100, 100}));
        QVERIFY(!move({140, 140}));
        QVERIFY(m_media.log.isEmpty());
    }

    void panLimits_data() {
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<bool>("accepted");
        // 832 x 467.99998 in 640 x 360, 50 of slack.
        for (const auto& [offset, accepted] :
             std::initializer_list<std::pair<QPoint, bool>>{{{50, 50}, true},
                                                            {{51, 0}, false},
                                                            {{0, 51}, false},
                                                            {{-242, -157}, true},
                                                            {{-243, 0}, false},
                                                            {{0, -158}, false}})
            QTest::addRow("%d,%d", offset.x(), offset.y()) << offset << accepted;
    }
    void panLimits() {
        QFETCH(QPoint, offset);
        QFETCH(bool, accepted);
        m_view->setZoomWinMode(true);
        QVERIFY(press({300, 200}));
        move(QPoint(300, 200) + offset);
        QVERIFY(m_media.takeLog().isEmpty()); // fitted
        m_view->zoomStep(1);
        m_media.takeLog();
        QVERIFY(press({300, 200}));
        QVERIFY(move(QPoint(300, 200) + offset));
        const QString place = QStringLiteral("0:%1 0:%2").arg(offset.x()).arg(offset.y());
        QCOMPARE(takePlace(), accepted ? place : QString());
    }

    void dragGoesByStepsOfThreePixels() {
        m_view->setZoomWinMode(true);
        m_view->zoomStep(1);
        m_media.takeLog();
        press({100, 100});
        QVERIFY(move({102, 98})); // the view's own, though nothing comes of it
        QCOMPARE(takePlace(), "");
        QVERIFY(move({103, 100}));
        QCOMPARE(takePlace(), "0:3 0:0");
        QVERIFY(move({101, 102}));
        QVERIFY(move({103, 97}));
        QCOMPARE(takePlace(), "0:3 0:-3");
        QVERIFY(move({190, 97})); // refused: counts from where it was
        QVERIFY(move({105, 97}));
        QCOMPARE(takePlace(), "");
        // Its release got lost: the drag has ended with the button.
        mouse(*m_view, QEvent::MouseMove, {120, 97}, Qt::NoButton);
        move({110, 97});
        QCOMPARE(takePlace(), "");
        m_second->setZoomWinMode(true);
        m_second->zoomStep(1);
        m_media.takeLog();
        mouse(*m_second, QEvent::MouseButtonPress, {10, 10});
        mouse(*m_second, QEvent::MouseMove, {5, 5});
        QCOMPARE(takePlace(), "1:-5 1:-5");
    }

    void hiddenPictureComesBackWithTheNextFrame() {
        m_view->setVideoVisible(true);
        QVERIFY(m_media.takeLog().isEmpty());
        m_view->setVideoVisible(false);
        m_second->setVideoVisible(false);
        QCOMPARE(m_media.takeLog(), QStringList({"window 0 visible 0", "window 1 visible 0"}));
        m_view->setVideoVisible(false);
        QVERIFY(m_media.takeLog().isEmpty());
        std::thread streaming([this] {
            m_media.deliver(0, {});
            m_media.deliver(0, {16, 128, 16, 128});
            m_media.deliver(1, {16, 128, 16, 128});
        });
        streaming.join();
        QVERIFY(m_media.log.isEmpty()); // for the interface thread to do
        QCoreApplication::processEvents();
        QCOMPARE(m_media.takeLog(), attached(0));
        m_second->setVideoVisible(true);
        QCOMPARE(m_media.takeLog(), attached(1));
    }

    void adjustmentIsEachStreamsOwn() {
        m_view->setImageAdjust(20, 100);
        const std::vector<std::uint8_t> black{16, 128, 16, 128}, grey{60, 128, 60, 128};
        const std::vector<std::uint8_t> brightBlack{36, 128, 36, 128}, brightGrey{80, 128, 80, 128};
        QCOMPARE(m_media.deliver(0, black), brightBlack);
        QCOMPARE(m_media.deliver(1, grey), brightGrey);
        QCOMPARE(m_media.deliver(0, grey), brightBlack);
        QCOMPARE(m_media.deliver(1, black), brightGrey);
        m_view->setImageAdjust(0, 100);
        QCOMPARE(m_media.deliver(0, grey), grey);
    }

    void heightIsHalfTheWidth() {
        QCOMPARE(m_view->heightForWidth(641), 320);
        QCOMPARE(m_view->heightForWidth(-3), -1);
    }
};

QTEST_MAIN(TestVideoView)
#include "test_video_view.moc"
