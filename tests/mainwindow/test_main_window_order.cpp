// The main window when answers come late, twice or in an unusual order, over a fake pipeline.
#include <QPrinter>
#include <QSemaphore>

#include "mainwindow/picture_adjustment.h"
#include "mainwindow/viewer.h"
#include "mainwindow/wait_note.h"
#include "support/fake_media.h"
#include "support/held_jobs.h"
#include "support/made_card.h"
#include "support/pdf_page.h"

using namespace ql240;

using layout::ButtonId;

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

    // The session after commands, ticks, steps and seeks, also where the buttons don't show it.
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

    // A folder answers under the file dialog: nothing plays behind it, and the file isn't one of its clips.
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

    // Any key leaves full screen, also while a dropped folder is being read.
    void noteOverTheFullScreen() {
        HeldJobs late;
        viewer().key(Qt::Key_F);
        viewer().window->openFolder(m_clips.drive());
        QTRY_VERIFY(viewer().child<WaitNote>()->isVisible());
        viewer().key(Qt::Key_A);
        QVERIFY(!viewer().window->isFullScreen());
        QVERIFY(viewer().window->isReadingFolder());
    }

    // An answer to a question from before the settings changed doesn't count.
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

    // A slow card reader delays neither the window nor the first clip; its late answer counts.
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

    // The clip has ended, but the tick notices only after the snapshot has paused it.
    void endUnderTheSaveDialog() {
        keepFrames();
        m_media.playToEnd();
        viewer().answers.meanwhile = [this] { viewer().window->OnTimeoutUpdate(); };
        viewer().click(ButtonId::Snapshot);
        QCOMPARE(viewer().answers.asked.size(), 3);
        QCOMPARE(viewer().list()->currentRow(), 0);
        QVERIFY(!viewer().window->isPlaying());
    }

    // The printed frames are those of the clip that was open when the user asked.
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

    // The window manager ends full screen; the user enters it again before the window has followed.
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

    // A press away from the pointer is a click on the picture, unless the pointer is at the left or top edge.
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

    // The open clip's entry stays selected; focus alone selects none.
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

QTEST_MAIN(TestMainWindowOrder)
#include "test_main_window_order.moc"
