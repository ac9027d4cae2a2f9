// The main window when things come late, twice or in another order than usual, over a pipeline that plays
// what the test says.
#include <QPrinter>
#include <QRegularExpression>
#include <QSemaphore>

#include "mainwindow/picture_adjustment.h"
#include "mainwindow/viewer.h"
#include "mainwindow/wait_note.h"
#include "support/fake_media.h"
#include "support/held_jobs.h"
#include "support/made_card.h"
#include "support/pdf_page.h"

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr QPoint kOnVideo(300, 200);
constexpr QPoint kOnGround(300, 10);

} // namespace

class TestMainWindowOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_media = FakeMedia();
        m_viewer = std::make_unique<Viewer>();
        host().media = &m_media;
        m_viewer->drives.drives = {{m_card.drive(), {}, {}}};
        for (const char* name : {"REC_1.mp4", "REC_2.mp4"})
            m_clips.put(name, "x");
        m_media.clip = FakeClip::twoStreams();
        viewer().show();
        viewer().openFolder(m_clips.drive());
        QTRY_VERIFY_WITH_TIMEOUT(viewer().hasTrack(), kWaitMs);
    }
    void cleanup() {
        m_viewer.reset();
        host().media = nullptr;
        QCOMPARE(m_media.liveObjects, 0);
    }

    // What commands, tick, steps and seeks come to, also where the buttons don't show it.
    void sessionFollows() {
        const ClipSession& session = viewer().window->session();
        QVERIFY(session.isPlaying());
        m_media.setPositionMs(500);
        viewer().window->OnTimeoutUpdate();
        QCOMPARE(session.positionMs(), 500);
        viewer().click(ButtonId::FrameForward);
        QVERIFY(!session.isPlaying() && session.positionMs() == 566);
        Q_EMIT viewer().panel()->clicked(2000);
        QVERIFY(!session.isPlaying() && session.positionMs() == 2000);
        viewer().click(ButtonId::Play);
        viewer().key(Qt::Key_F);
        viewer().window->OnSlotspause();
        QVERIFY(viewer().window->isPlaying() && !session.isPlaying());
        viewer().key(Qt::Key_F);
        viewer().click(ButtonId::Stop);
        QCOMPARE(session.positionMs(), 0);
        viewer().click(ButtonId::NextFile);
        QVERIFY(session.clip() && session.clip() == viewer().player()->clip() && session.isPlaying());
        m_media.answers["load"] = kStatusFail;
        viewer().click(ButtonId::NextFile);
        QCOMPARE(session.phase(), ClipSession::Phase::Closed);
    }

    // One pixel a move: the picture follows in steps of three, never jumps, and stands once the button is up.
    void slowPanDrag() {
        viewer().click(ButtonId::ZoomIn);
        viewer().click(ButtonId::Pan);
        m_media.takeLog();
        QWindow* window = viewer().window->windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, kOnVideo);
        for (int moved = 1; moved <= 7; ++moved)
            move(kOnVideo + QPoint(moved, 0), Qt::LeftButton);
        QCOMPARE(takePlaces(),
                 QStringList({"window 0 left 3", "window 0 top 0", "window 0 left 6", "window 0 top 0"}));
        QTest::mouseRelease(window, Qt::LeftButton, {}, kOnVideo + QPoint(7, 0));
        // Another drag, off a button; the second time the release before it got lost.
        for (const bool lost : {false, true}) {
            if (lost)
                QTest::mousePress(window, Qt::LeftButton, {}, kOnVideo);
            QTest::mousePress(window, Qt::LeftButton, {},
                              viewer().window->button(ButtonId::Print)->geometry().center());
            for (const int x : {300, 310})
                QTest::mouseMove(window, QPoint(x, 200));
            QTest::mouseRelease(window, Qt::LeftButton, {}, kOnVideo);
            QCOMPARE(takePlaces(), QStringList());
        }
        for (const QPoint& place : {kOnVideo + QPoint(10, 0), kOnGround, kOnGround + QPoint(0, 9)})
            move(place, Qt::NoButton);
        QCOMPARE(takePlaces(), QStringList());
    }

    // A folder answers while the user is adding a file: nothing plays behind the dialog, and the file is not
    // taken for one of the folder's clips.
    void listingUnderAQuestion() {
        HeldJobs late;
        viewer().window->openFolder(m_clips.drive(), "REC_2.mp4");
        viewer().answers.openFile = "/elsewhere/EVS_0.mp4";
        viewer().answers.meanwhile = [this, &late] {
            late.answer();
            QCOMPARE(viewer().list()->count(), 0);
            QCOMPARE(viewer().player()->clip(), nullptr);
        };
        viewer().click(ButtonId::OpenFile);
        QTRY_COMPARE(viewer().list()->count(), 3);
        QCOMPARE(viewer().answers.warnings, QStringList());
        QCOMPARE(viewer().list()->currentRow(), 1);
        QCOMPARE(viewer().player()->clip()->file().fileName(), "REC_2.mp4");
        QCOMPARE(viewer().list()->item(2)->text(), "EVS_0.mp4");
    }

    // Any key leaves full screen, also while a folder that was dropped on it is being read.
    void noteOverTheFullScreen() {
        HeldJobs late;
        viewer().key(Qt::Key_F);
        viewer().window->openFolder(m_clips.drive());
        QTRY_VERIFY(viewer().child<WaitNote>()->isVisible());
        viewer().key(Qt::Key_A);
        QVERIFY(!viewer().window->isFullScreen());
        QVERIFY(viewer().window->isReadingFolder());
    }

    // What was asked before the settings were changed says nothing of them.
    void olderAnswerOfTheCard() {
        putAdjustment("\7");
        HeldJobs late;
        PictureAdjustment adjustment([] {});
        adjustment.loadPictureAdjustment();
        adjustment.setSettingsChanged();
        late.answer();
        QVERIFY(adjustment.settingsChanged());
        adjustment.loadPictureAdjustment();
        late.answer();
        QVERIFY(!adjustment.settingsChanged());
        QCOMPARE(adjustment.brightness(), 60);
        for (const auto& [value, brightness, contrast] : {std::tuple(0, 0, 60), {255, 0, 100}}) {
            QCOMPARE(brightnessOf(value), brightness);
            QCOMPARE(contrastOf(value), contrast);
        }
    }

    // A dying card reader holds up neither the window nor the first clip; its answer counts when it comes.
    void slowCard() {
        putAdjustment("\7");
        QSemaphore answer;
        viewer().drives.before = [&answer] { answer.acquire(); };
        viewer().show();
        viewer().openFolder(m_clips.drive());
        QVERIFY(viewer().window->isPlaying());
        const PictureAdjustment& shown = viewer().window->pictureAdjustment();
        QCOMPARE(shown.brightness(), 0);
        answer.release(100);
        QTRY_COMPARE_WITH_TIMEOUT(shown.brightness(), 60, kWaitMs);
        QCOMPARE(shown.contrast(), 160);
    }

    // A clip plays without its track; once that comes, panel, strip and map show it where the clip then is.
    void lateTrack() {
        viewer().loadMap();
        viewer().sensors.answer = [](std::int64_t ms) {
            return FakeSensorLibrary::Answer{.latitude = 1000000, .speed = std::int32_t(ms / 100)};
        };
        for (const bool paused : {false, true}) {
            HeldJobs late;
            viewer().click(ButtonId::NextFile);
            m_media.setPositionMs(paused ? 3000 : 2000);
            if (paused)
                viewer().click(ButtonId::Pause);
            viewer().window->OnTimeoutUpdate();
            viewer().updateTimer()->stop();
            QCOMPARE(viewer().window->session().isPlaying(), !paused);
            QVERIFY(!viewer().hasTrack() && viewer().panel()->speed() == 0);
            viewer().pages.takeScripts();
            late.answer();
            QVERIFY(viewer().hasTrack() && viewer().panel()->state().hasFix);
            QCOMPARE(viewer().panel()->speed(), paused ? 30 : 20);
            QVERIFY(viewer().pages.takeScripts().first().startsWith("setTrack([["));
        }
    }

    // The track of a clip that isn't open any more shows nowhere; nor does it keep the window from closing.
    void trackOfAClosedClip() {
        HeldJobs late;
        viewer().click(ButtonId::NextFile);
        viewer().list()->setCurrentItem(nullptr);
        late.answer();
        QVERIFY(!viewer().hasTrack());
        viewer().list()->setCurrentRow(0);
        viewer().sensors.path.clear();
        viewer().window.reset();
        late.answer();
        QVERIFY(viewer().sensors.path.endsWith("REC_1.mp4"));
    }

    // The clip has just come to its end, which the tick finds only after the snapshot has paused it.
    void endUnderTheSaveDialog() {
        keepFrames();
        m_media.playToEnd();
        viewer().answers.meanwhile = [this] { viewer().window->OnTimeoutUpdate(); };
        viewer().click(ButtonId::Snapshot);
        QCOMPARE(viewer().answers.asked.size(), 3);
        QCOMPARE(viewer().list()->currentRow(), 0);
        QVERIFY(!viewer().window->isPlaying());
    }

    // What is printed are the frames of the clip that was asked for.
    void anotherClipUnderThePrintDialog() {
        keepFrames();
        const QString pdf = viewer().path("page.pdf");
        viewer().answers.print = [&](QPrinter& printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            m_media.clip = {};
            viewer().list()->setCurrentRow(1); // has one stream
            return true;
        };
        viewer().click(ButtonId::Print);
        QCOMPARE(imagePlaces(pdf).size(), 2);
    }

    // The window manager takes full screen away; before the window has followed, the user asks for it again.
    void fullScreenLeftAndEnteredAgain() {
        MainWindow& window = *viewer().window;
        const QRect before = window.geometry();
        viewer().key(Qt::Key_F);
        QVERIFY(window.isFullScreen());
        window.setWindowState(Qt::WindowNoState);
        window.resize(400, 300); // nobody's choice
        viewer().key(Qt::Key_F);
        QCoreApplication::processEvents();
        QVERIFY(window.isFullScreen());
        QVERIFY(!viewer().list()->isVisible());
        viewer().key(Qt::Key_F);
        QTRY_COMPARE(window.geometry(), before);
    }

    // A press where the pointer isn't is the window's, as a click on the picture, unless the pointer is at
    // the screen's left or top edge.
    void pressAwayFromPointer() {
        const QPoint centre = viewer().list()->visualItemRect(viewer().list()->item(1)).center();
        for (const QPoint pointer : {QPoint(0, 222), QPoint(222, 0), QPoint(333, 222)}) {
            QVERIFY(!viewer().window->isFullScreen());
            QCursor::setPos(pointer);
            QMouseEvent press(QEvent::MouseButtonPress, centre, viewer().list()->mapToGlobal(QPointF(centre)),
                              Qt::RightButton, Qt::RightButton, Qt::ShiftModifier);
            viewer().list()->mousePressEvent(&press);
            QCoreApplication::sendPostedEvents();
            QCOMPARE(viewer().list()->currentRow(), 0);
        }
        QVERIFY(viewer().window->isFullScreen());
    }

    // The entry whose clip is open stays marked; the focus alone chooses none.
    void currentEntryStaysMarked() {
        viewer().clickEntry("REC_2.mp4");
        const QPoint entry = viewer().list()->visualItemRect(viewer().list()->item(1)).center();
        for (const auto& [place, modifier] :
             {std::pair(entry, Qt::ControlModifier), {QPoint(50, 300), Qt::NoModifier}}) {
            QCursor::setPos(viewer().list()->viewport()->mapToGlobal(place));
            QTest::mouseClick(viewer().list()->viewport(), Qt::LeftButton, modifier, place);
            QCOMPARE(viewer().list()->selectedItems(), QList{viewer().list()->item(1)});
        }
        viewer().list()->setCurrentItem(nullptr);
        viewer().window->button(ButtonId::Stop)->setFocus();
        viewer().list()->setFocus();
        QCOMPARE(viewer().list()->currentRow(), -1);
    }

private:
    Viewer& viewer() { return *m_viewer; }

    // As the window system sends it: to whatever is under the pointer or holds the button.
    void move(QPoint place, Qt::MouseButtons held) {
        QWidget* target = viewer().window.get();
        if (held || layout::kMainView.contains(place))
            target = viewer().mainView();
        const QPoint global = viewer().window->mapToGlobal(place);
        QMouseEvent event(QEvent::MouseMove, target->mapFromGlobal(global), global, Qt::NoButton, held, {});
        QCoreApplication::sendEvent(target, &event);
    }

    // Where the picture was put since the last look.
    QStringList takePlaces() { return m_media.takeLog().filter(QRegularExpression("window 0 (left|top)")); }

    void putAdjustment(const QByteArray& value) {
        for (const char* key : {"setting/setbrightvalue.dat", "setting/setcontrastvalue.dat"})
            m_card.put(key, value);
    }

    void keepFrames() {
        for (const int stream : {0, 1}) {
            const QSize size = m_media.clip.sizes[std::size_t(stream)];
            m_media.deliver(stream,
                            std::vector<std::uint8_t>(std::size_t(size.width() * size.height() * 2), 128));
        }
    }

    MadeCard m_card;
    MadeCard m_clips;
    FakeMedia m_media;
    std::unique_ptr<Viewer> m_viewer;
};

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowOrder)
#include "test_main_window_order.moc"
