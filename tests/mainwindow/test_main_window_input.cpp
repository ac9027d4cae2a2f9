#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>
#include <QWindow>

#include "mainwindow/viewer.h"

namespace ql240 {
using Came = bool (*)(Viewer&);
} // namespace ql240

Q_DECLARE_METATYPE(ql240::Came)

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr int kBoundMs = 15000;
constexpr QPoint kOnVideo(300, 200);

} // namespace

// Full screen, keys, presses handed on, drops.
class TestMainWindowInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_viewer.reset(); }

    void fullScreenByMouse_data();
    void fullScreenByMouse();
    void fullScreenLayout();
    void anyKeyLeavesFullScreen_data();
    void anyKeyLeavesFullScreen();
    void playingStateInFullScreen();
    void commandKeys_data();
    void commandKeys();
    void spaceTogglesPlaying();
    void heldKeysRepeatStepsOnly();
    void listKeepsTypingAndMoving();
    void keysOfDisabledControlsDoNothing();
    void pressOnDisabledPanelSeeks();
    void dragAcrossMutedVolumeMovesNothing();
    void languageChange();
    void drop_data();
    void drop();

private:
    Viewer& viewer() { return *m_viewer; }
    void dropOn(QPoint place, const QString& path, int others);

    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindowInput::init() {
    m_viewer = std::make_unique<Viewer>();
    for (const char* name : {"REC_1.mp4", "REC_2.mp4", "REC_3.mp4"})
        viewer().addClip(QStringLiteral("card/") + QLatin1String(name), Viewer::shortClip(300));
    viewer().show();
    viewer().openFolder(viewer().path(QStringLiteral("card")));
    viewer().window->activateWindow();
}

void TestMainWindowInput::fullScreenByMouse_data() {
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<bool>("enters");
    QTest::newRow("inside") << Qt::RightButton << kOnVideo << true;
    QTest::newRow("top left corner") << Qt::RightButton << QPoint(22, 32) << true;
    QTest::newRow("one beyond bottom right") << Qt::RightButton << QPoint(662, 392) << true;
    QTest::newRow("two beyond the right") << Qt::RightButton << QPoint(663, 100) << false;
    QTest::newRow("left of it") << Qt::RightButton << QPoint(21, 100) << false;
    QTest::newRow("left button") << Qt::LeftButton << kOnVideo << false;
}

void TestMainWindowInput::fullScreenByMouse() {
    QFETCH(Qt::MouseButton, button);
    QFETCH(QPoint, place);
    QFETCH(bool, enters);
    viewer().mouse(button, place);
    QTRY_COMPARE(viewer().window->isFullScreen(), enters);
    if (!enters)
        return;
    viewer().mouse(Qt::MiddleButton, QPoint(5, 5));
    QTRY_VERIFY(!viewer().window->isFullScreen());
}

void TestMainWindowInput::fullScreenLayout() {
    MainWindow& window = *viewer().window;
    const QRect before = window.geometry();
    viewer().mouse(Qt::RightButton, kOnVideo);
    const QSize screen = window.screen()->size();
    QTRY_COMPARE(window.size(), screen);
    QTRY_COMPARE(viewer().mainView()->geometry(), QRect(1, 1, screen.width() - 2, screen.height() - 2));
    for (const layout::ButtonRow& row : layout::kButtons) {
        const bool stays = row.id == ButtonId::OpenFile || row.id == ButtonId::Logo;
        QCOMPARE(viewer().isShown(row.id), stays);
    }
    QVERIFY(!viewer().list()->isVisible() && !viewer().panel()->isVisible());
    viewer().key(Qt::Key_A);
    QTRY_VERIFY(!window.isFullScreen());
    QTRY_COMPARE(window.geometry(), before);
    QTRY_COMPARE(window.minimumSize(), window.maximumSize());
    QTRY_COMPARE(viewer().mainView()->geometry(), layout::kMainView);
    QTRY_VERIFY(viewer().list()->isVisible() && viewer().panel()->isVisible());
    QTRY_VERIFY(viewer().isShown(ButtonId::Pause) && !viewer().isShown(ButtonId::Play));
}

void TestMainWindowInput::anyKeyLeavesFullScreen_data() {
    QTest::addColumn<int>("key");
    QTest::newRow("letter") << int(Qt::Key_S);
    QTest::newRow("escape") << int(Qt::Key_Escape);
    QTest::newRow("space") << int(Qt::Key_Space);
    QTest::newRow("tab") << int(Qt::Key_Tab);
    QTest::newRow("arrow") << int(Qt::Key_Right);
    QTest::newRow("modifier") << int(Qt::Key_Shift);
    QTest::newRow("next clip") << int(Qt::Key_PageDown);
}

void TestMainWindowInput::anyKeyLeavesFullScreen() {
    QFETCH(int, key);
    viewer().list()->setFocus();
    viewer().key(Qt::Key_F);
    QTRY_VERIFY(viewer().window->isFullScreen());
    viewer().key(key);
    QTRY_VERIFY(!viewer().window->isFullScreen());
    QVERIFY(viewer().window->isPlaying());
    QCOMPARE(viewer().list()->currentRow(), 0);
    QVERIFY(viewer().answers.asked.isEmpty());
}

// The play state shown is the one from before, whatever happened meanwhile.
void TestMainWindowInput::playingStateInFullScreen() {
    viewer().mouse(Qt::RightButton, kOnVideo);
    viewer().window->OnSlotspause();
    QVERIFY(viewer().window->isPlaying());
    viewer().list()->setCurrentRow(1);
    QCOMPARE(viewer().mainView()->width(), viewer().window->width() - 2);
    QVERIFY(!viewer().isShown(ButtonId::Play) && !viewer().isShown(ButtonId::Pause));
    viewer().key(Qt::Key_Escape);
    QTRY_VERIFY(viewer().isShown(ButtonId::Pause) && !viewer().isShown(ButtonId::Play));
}

// One of each kind, with the focus where a key could be taken for something else.
void TestMainWindowInput::commandKeys_data() {
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<Came>("came");
    const auto row = [](const char* name, Qt::Key key, Qt::KeyboardModifier modifier, Came came) {
        QTest::newRow(name) << int(key) << int(modifier) << came;
    };
    row("right steps", Qt::Key_Right, Qt::NoModifier, [](Viewer& v) { return !v.window->isPlaying(); });
    row("page down goes on", Qt::Key_PageDown, Qt::NoModifier,
        [](Viewer& v) { return v.list()->currentRow() == 1; });
    row("not with ctrl", Qt::Key_PageDown, Qt::ControlModifier,
        [](Viewer& v) { return v.list()->currentRow() == 0; });
    row("shift and plus", Qt::Key_Plus, Qt::ShiftModifier,
        [](Viewer& v) { return v.mainView()->zoom() > 1; });
    row("plus of the number block", Qt::Key_Plus, Qt::KeypadModifier,
        [](Viewer& v) { return v.mainView()->zoom() > 1; });
    row("m mutes", Qt::Key_M, Qt::NoModifier,
        [](Viewer& v) { return !v.child<WidgetVolume>()->isEnabled(); });
    row("ctrl o", Qt::Key_O, Qt::ControlModifier, [](Viewer& v) { return v.folderDialogs.shown == 1; });
    row("o alone is typed", Qt::Key_O, Qt::NoModifier, [](Viewer& v) { return v.folderDialogs.shown == 0; });
}

void TestMainWindowInput::commandKeys() {
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(Came, came);
    viewer().list()->setFocus();
    viewer().key(key, Qt::KeyboardModifiers(modifiers));
    QVERIFY(came(viewer()));
}

void TestMainWindowInput::spaceTogglesPlaying() {
    viewer().list()->setFocus();
    viewer().key(Qt::Key_Space);
    QVERIFY(!viewer().window->isPlaying());
    viewer().key(Qt::Key_Space);
    QVERIFY(viewer().window->isPlaying());
    // A control reached by the keyboard is pressed by it.
    viewer().window->button(ButtonId::Stop)->setFocus();
    viewer().key(Qt::Key_Space);
    QVERIFY(!viewer().window->isPlaying());
    QVERIFY(!viewer().panel()->isEnabled());
    // Play hands it on to the button that takes its place.
    viewer().window->button(ButtonId::Play)->setFocus();
    for (const bool playing : {true, false, true}) {
        viewer().key(Qt::Key_Space);
        QCOMPARE(viewer().window->isPlaying(), playing);
        QVERIFY(viewer().panel()->isEnabled());
    }
}

void TestMainWindowInput::heldKeysRepeatStepsOnly() {
    const auto hold = [this](int key) {
        QKeyEvent repeat(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(viewer().window.get(), &repeat);
    };
    QSignalSpy stepped(viewer().window->button(ButtonId::FrameForward), &QAbstractButton::clicked);
    for (const int key : {Qt::Key_Space, Qt::Key_M, Qt::Key_F})
        hold(key);
    QVERIFY(viewer().window->isPlaying());
    QVERIFY(viewer().child<WidgetVolume>()->isEnabled());
    QVERIFY(!viewer().window->isFullScreen());
    hold(Qt::Key_Right);
    QCOMPARE(stepped.count(), 1);
    viewer().key(Qt::Key_F);
    QTRY_VERIFY(viewer().window->isFullScreen());
    hold(Qt::Key_F);
    QVERIFY(viewer().window->isFullScreen());
}

void TestMainWindowInput::listKeepsTypingAndMoving() {
    viewer().list()->setFocus();
    viewer().key(Qt::Key_Down);
    QCOMPARE(viewer().list()->currentRow(), 1);
    viewer().key(Qt::Key_Up);
    QCOMPARE(viewer().list()->currentRow(), 0);
    // As after zooming and full screen, and where Tab or a wait that is over has left it.
    for (QWidget* focused : {static_cast<QWidget*>(viewer().mainView()),
                             static_cast<QWidget*>(viewer().window->button(ButtonId::Stop))}) {
        viewer().list()->setCurrentRow(0);
        focused->setFocus();
        viewer().key(Qt::Key_Down);
        QCOMPARE(viewer().list()->currentRow(), 1);
        QCOMPARE(viewer().window->focusWidget(), viewer().list());
    }
    QSignalSpy zoomed(viewer().window->button(ButtonId::OriginalSize), &QAbstractButton::clicked);
    QTest::keyClicks(viewer().list(), QStringLiteral("REC_3"));
    QCOMPARE(viewer().list()->currentRow(), 2);
    QTest::keyClicks(viewer().list(), QStringLiteral("0"));
    QCOMPARE(zoomed.count(), 0);
}

void TestMainWindowInput::keysOfDisabledControlsDoNothing() {
    Viewer empty;
    empty.show();
    for (const int key : {Qt::Key_Space, Qt::Key_Right, Qt::Key_S, Qt::Key_M})
        empty.key(key);
    QVERIFY(!empty.window->isPlaying());
    QVERIFY(empty.answers.warnings.isEmpty());
    QVERIFY(!empty.child<WidgetVolume>()->isEnabled());
}

// A stopped dashboard is disabled, so the window gets its presses and hands them on.
void TestMainWindowInput::pressOnDisabledPanelSeeks() {
    viewer().click(ButtonId::Stop);
    QVERIFY(!viewer().panel()->isEnabled());
    viewer().panel()->setRange(0, 10000);
    const QPoint place = layout::kProgressPanel.topLeft() + QPoint(316, 15);
    viewer().mouse(Qt::LeftButton, place);
    QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 5000, kBoundMs);
    const QSignalSpy seeks(viewer().panel(), &WidgetProgressA::clicked);
    QTest::mouseDClick(viewer().window->windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(seeks.count(), 2);
}

void TestMainWindowInput::dragAcrossMutedVolumeMovesNothing() {
    viewer().click(ButtonId::Volume);
    QWindow* window = viewer().window->windowHandle();
    const QPoint before = viewer().window->pos();
    const QPoint place = layout::kVolume.center();
    QTest::mousePress(window, Qt::LeftButton, {}, place);
    for (const int moved : {15, 30})
        QTest::mouseMove(window, place - QPoint(moved, 0));
    QTest::mouseRelease(window, Qt::LeftButton, {}, place - QPoint(30, 0));
    QCOMPARE(viewer().window->pos(), before);
}

void TestMainWindowInput::languageChange() {
    viewer().window->setWindowTitle(QStringLiteral("x"));
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(viewer().window.get(), &change);
    QCOMPARE(viewer().window->windowTitle(), QStringLiteral("QL240 Viewer"));
}

void TestMainWindowInput::drop_data() {
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<QString>("dropped");
    QTest::addColumn<QString>("current");
    QTest::addColumn<int>("others"); // files before it
    QTest::newRow("folder") << kOnVideo << "other"
                            << "EVS_1.mp4" << 0;
    QTest::newRow("clip") << kOnVideo << "other/REC_9.mp4"
                          << "REC_9.mp4" << 0;
    QTest::newRow("over the dashboard") << QPoint(300, 600) << "other"
                                        << "EVS_1.mp4" << 0;
    QTest::newRow("over the list") << layout::kClipList.center() << "other"
                                   << "REC_1.mp4" << 0;
    QTest::newRow("no clip") << kOnVideo << "other/notes.txt"
                             << "REC_1.mp4" << 0;
    QTest::newRow("behind others") << kOnVideo << "other"
                                   << "EVS_1.mp4" << 99;
    QTest::newRow("behind very many") << kOnVideo << "other"
                                      << "REC_1.mp4" << 100;
}

void TestMainWindowInput::dropOn(QPoint place, const QString& path, int others) {
    QMimeData data;
    const QUrl other = QUrl::fromLocalFile(viewer().path(QStringLiteral("other/notes.txt")));
    data.setUrls(QList<QUrl>(others, other) << QUrl::fromLocalFile(path));
    QWindow* target = viewer().window->windowHandle();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &enter);
    QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &move);
    if (move.isAccepted()) {
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &drop);
    } else {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(target, &leave);
    }
}

void TestMainWindowInput::drop() {
    QFETCH(QPoint, place);
    QFETCH(QString, dropped);
    viewer().addClip(QStringLiteral("other/EVS_1.mp4"));
    viewer().addClip(QStringLiteral("other/REC_9.mp4"));
    QFile notes(viewer().path(QStringLiteral("other/notes.txt")));
    QVERIFY(notes.open(QFile::WriteOnly));
    QFETCH(int, others);
    dropOn(place, viewer().path(dropped), others);
    QTRY_VERIFY_WITH_TIMEOUT(!viewer().window->isReadingFolder(), kBoundMs);
    QTEST(viewer().list()->currentItem()->text(), "current");
    QTEST(viewer().player()->clip()->file().fileName(), "current");
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowInput)
#include "test_main_window_input.moc"
