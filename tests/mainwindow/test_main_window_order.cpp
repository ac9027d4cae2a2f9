// The main window when things come late, twice or in another order than usual, over a pipeline that plays
// what the test says.
#include <QFile>
#include <QPrinter>
#include <QRegularExpression>

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
    void init();
    void cleanup();

    void sessionFollows();
    void slowPanDrag();
    void listingUnderAQuestion_data();
    void listingUnderAQuestion();
    void noteOverTheFullScreen();
    void olderAnswerOfTheCard();
    void endUnderTheSaveDialog();
    void anotherClipUnderThePrintDialog();
    void fullScreenLeftAndEnteredAgain();

private:
    Viewer& viewer() { return *m_viewer; }
    void move(QPoint place, Qt::MouseButtons held);
    void keepFrames();
    QStringList takePlaces();

    FakeMedia m_media;
    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindowOrder::init() {
    m_media = FakeMedia();
    m_viewer = std::make_unique<Viewer>();
    host().media = &m_media;
    QVERIFY(QDir(viewer().folder.path()).mkpath(QStringLiteral("card")));
    for (const char* name : {"card/REC_1.mp4", "card/REC_2.mp4"}) {
        QFile file(viewer().path(QLatin1String(name)));
        QVERIFY(file.open(QFile::WriteOnly) && file.write("x") == 1);
    }
    m_media.clip = FakeClip::twoStreams();
    viewer().show();
    viewer().openFolder(viewer().path(QStringLiteral("card")));
}

void TestMainWindowOrder::cleanup() {
    m_viewer.reset();
    host().media = nullptr;
    QCOMPARE(m_media.liveObjects, 0);
}

// As the window system sends it: to whatever is under the pointer or holds the button.
void TestMainWindowOrder::move(QPoint place, Qt::MouseButtons held) {
    QWidget* target = viewer().window.get();
    if (held || layout::kMainView.contains(place))
        target = viewer().mainView();
    const QPoint global = viewer().window->mapToGlobal(place);
    QMouseEvent event(QEvent::MouseMove, target->mapFromGlobal(global), global, Qt::NoButton, held, {});
    QCoreApplication::sendEvent(target, &event);
}

// Where the picture was put since the last look.
QStringList TestMainWindowOrder::takePlaces() {
    return m_media.takeLog().filter(QRegularExpression(QStringLiteral("window 0 (left|top)")));
}

void TestMainWindowOrder::keepFrames() {
    for (const int stream : {0, 1}) {
        const QSize size = m_media.clip.sizes[std::size_t(stream)];
        m_media.deliver(stream,
                        std::vector<std::uint8_t>(std::size_t(size.width() * size.height() * 2), 128));
    }
}

// What commands, tick, steps and seeks come to, also where the buttons don't show it.
void TestMainWindowOrder::sessionFollows() {
    const ClipSession& session = viewer().window->session();
    QVERIFY(session.isPlaying());
    m_media.setPositionMs(500);
    viewer().window->OnTimeoutUpdate();
    QCOMPARE(session.positionMs(), 500);
    viewer().click(ButtonId::FrameForward);
    QCOMPARE(session.phase(), ClipSession::Phase::Paused);
    QCOMPARE(session.positionMs(), 566);
    Q_EMIT viewer().panel()->clicked(2000);
    QCOMPARE(session.positionMs(), 2000);
    QCOMPARE(session.phase(), ClipSession::Phase::Paused);
    viewer().click(ButtonId::Play);
    viewer().key(Qt::Key_F);
    viewer().window->OnSlotspause();
    QVERIFY(viewer().window->isPlaying() && !session.isPlaying());
    viewer().key(Qt::Key_F);
    viewer().click(ButtonId::Stop);
    QCOMPARE(session.positionMs(), 0);
    viewer().click(ButtonId::NextFile);
    QCOMPARE(session.clip(), viewer().player()->clip());
    QVERIFY(session.clip() && session.isPlaying());
    m_media.answers[QStringLiteral("load")] = kStatusFail;
    viewer().click(ButtonId::NextFile);
    QCOMPARE(session.phase(), ClipSession::Phase::Closed);
}

// One pixel a move: the picture follows in steps of three, never jumps, and stands once the button is up.
void TestMainWindowOrder::slowPanDrag() {
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

void TestMainWindowOrder::listingUnderAQuestion_data() {
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<int>("row");
    QTest::newRow("a folder") << QString() << 0;
    QTest::newRow("a clip of it") << QStringLiteral("REC_2.mp4") << 1;
}

// A folder answers while the user is adding a file: nothing plays behind the dialog, and the file is not
// taken for one of the folder's clips.
void TestMainWindowOrder::listingUnderAQuestion() {
    QFETCH(QString, wanted);
    QFETCH(int, row);
    HeldJobs late;
    viewer().window->openFolder(viewer().path(QStringLiteral("card")), wanted);
    viewer().answers.openFile = QStringLiteral("/elsewhere/EVS_0.mp4");
    viewer().answers.meanwhile = [this, &late] {
        late.answer();
        QCOMPARE(viewer().list()->count(), 0);
        QCOMPARE(viewer().player()->clip(), nullptr);
    };
    viewer().click(ButtonId::OpenFile);
    QTRY_COMPARE(viewer().list()->count(), 3);
    QCOMPARE(viewer().answers.warnings, QStringList());
    QCOMPARE(viewer().list()->currentRow(), row);
    QCOMPARE(viewer().player()->clip()->file().fileName(), viewer().list()->item(row)->text());
    QCOMPARE(viewer().list()->item(2)->text(), QStringLiteral("EVS_0.mp4"));
}

// Any key leaves full screen, also while a folder that was dropped on it is being read.
void TestMainWindowOrder::noteOverTheFullScreen() {
    HeldJobs late;
    viewer().key(Qt::Key_F);
    viewer().window->openFolder(viewer().path(QStringLiteral("card")));
    QTRY_VERIFY(viewer().child<WaitNote>()->isVisible());
    viewer().key(Qt::Key_A);
    QVERIFY(!viewer().window->isFullScreen());
    QVERIFY(viewer().window->isReadingFolder());
}

// What was asked before the settings were changed says nothing of them.
void TestMainWindowOrder::olderAnswerOfTheCard() {
    const MadeCard card;
    viewer().drives.drives = {{card.drive(), {}, {}}};
    for (const char* key : {"setting/setbrightvalue.dat", "setting/setcontrastvalue.dat"})
        card.put(QLatin1String(key), "\7");
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
}

// The clip has just come to its end, which the tick finds only after the snapshot has paused it.
void TestMainWindowOrder::endUnderTheSaveDialog() {
    keepFrames();
    m_media.playToEnd();
    viewer().answers.meanwhile = [this] { viewer().window->OnTimeoutUpdate(); };
    viewer().click(ButtonId::Snapshot);
    QCOMPARE(viewer().answers.asked.size(), 3);
    QCOMPARE(viewer().list()->currentRow(), 0);
    QVERIFY(!viewer().window->isPlaying());
}

// What is printed are the frames of the clip that was asked for.
void TestMainWindowOrder::anotherClipUnderThePrintDialog() {
    keepFrames();
    const QString pdf = viewer().path(QStringLiteral("page.pdf"));
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
void TestMainWindowOrder::fullScreenLeftAndEnteredAgain() {
    MainWindow& window = *viewer().window;
    const QRect before = window.geometry();
    viewer().key(Qt::Key_F);
    QVERIFY(window.isFullScreen());
    window.setWindowState(Qt::WindowNoState);
    viewer().key(Qt::Key_F);
    QCoreApplication::processEvents();
    QVERIFY(window.isFullScreen());
    QVERIFY(!viewer().list()->isVisible());
    viewer().key(Qt::Key_F);
    QTRY_COMPARE(window.geometry(), before);
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowOrder)
#include "test_main_window_order.moc"
