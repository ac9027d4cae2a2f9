// Full screen, keys, forwarded presses, drops.
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>

#include "mainwindow/viewer.h"

using namespace ql240;

using layout::ButtonId;

constexpr QPoint kOnVideo(300, 200);

class TestMainWindowInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_viewer = std::make_unique<Viewer>();
        viewer().playCard({"REC_1.mp4", "REC_2.mp4", "REC_3.mp4"}, Viewer::shortClip(300));
        viewer().window->activateWindow();
    }
    void cleanup() { m_viewer.reset(); }

    // The picture's bounds include one pixel beyond its right and its bottom edge.
    void fullScreenByMouse() {
        const struct {
            Qt::MouseButton button;
            QPoint place;
            bool enters;
        } rows[] = {{Qt::RightButton, {663, 100}, false},
                    {Qt::RightButton, {21, 100}, false},
                    {Qt::LeftButton, kOnVideo, false},
                    {Qt::RightButton, {22, 32}, true},
                    {Qt::RightButton, {662, 392}, true}};
        for (const auto& row : rows) {
            renew();
            viewer().mouse(row.button, row.place);
            QTRY_COMPARE(viewer().window->isFullScreen(), row.enters);
            if (row.enters)
                viewer().mouse(Qt::MiddleButton, QPoint(5, 5));
            QTRY_VERIFY(!viewer().window->isFullScreen());
        }
    }

    // The key does nothing else, and the window returns to its geometry.
    void anyKeyLeavesFullScreen() {
        for (const int key : {Qt::Key_S, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Shift, Qt::Key_PageDown}) {
            renew();
            const MainWindow& window = *viewer().window;
            const QRect before = window.geometry();
            viewer().list()->setFocus();
            viewer().key(Qt::Key_F);
            QTRY_COMPARE(viewer().mainView()->geometry(), window.screen()->geometry().adjusted(1, 1, -1, -1));
            viewer().key(key);
            QTRY_COMPARE(window.geometry(), before);
            QTRY_COMPARE(window.minimumSize(), window.maximumSize());
            QTRY_VERIFY(viewer().mainView()->geometry() == layout::kMainView &&
                        viewer().panel()->isVisible());
            QVERIFY(window.isPlaying() && viewer().answers.asked.isEmpty());
            QCOMPARE(viewer().list()->currentRow(), 0);
        }
    }

    // Full screen keeps showing the play state from before.
    void playingStateInFullScreen() {
        viewer().mouse(Qt::RightButton, kOnVideo);
        viewer().window->OnSlotspause();
        QVERIFY(viewer().window->isPlaying());
        viewer().list()->setCurrentRow(1);
        QCOMPARE(viewer().mainView()->width(), viewer().window->width() - 2);
        QVERIFY(!viewer().isShown(ButtonId::Play) && !viewer().isShown(ButtonId::Pause));
        viewer().key(Qt::Key_Escape);
        QTRY_VERIFY(viewer().isShown(ButtonId::Pause) && !viewer().isShown(ButtonId::Play));
    }

    void heldKeysRepeatStepsOnly() {
        for (const int key : {Qt::Key_Space, Qt::Key_M, Qt::Key_F, Qt::Key_S})
            hold(key);
        QVERIFY(viewer().window->isPlaying() && viewer().answers.asked.isEmpty());
        QVERIFY(viewer().child<WidgetVolume>()->isEnabled() && !viewer().window->isFullScreen());
        const std::pair<int, ButtonId> repeating[] = {
            {Qt::Key_Right, ButtonId::FrameForward}, {Qt::Key_Left, ButtonId::FrameBack},
            {Qt::Key_PageDown, ButtonId::NextFile},  {Qt::Key_PageUp, ButtonId::PreviousFile},
            {Qt::Key_Plus, ButtonId::ZoomIn},        {Qt::Key_Equal, ButtonId::ZoomIn},
            {Qt::Key_Minus, ButtonId::ZoomOut}};
        for (const auto& [key, id] : repeating) {
            const QSignalSpy clicks(viewer().window->button(id), &QAbstractButton::clicked);
            hold(key);
            QCOMPARE(clicks.count(), 1);
        }
        viewer().key(Qt::Key_F);
        QTRY_VERIFY(viewer().window->isFullScreen());
        hold(Qt::Key_F);
        QVERIFY(viewer().window->isFullScreen());
    }

    void modifiersOfCommandKeys() {
        viewer().list()->setFocus();
        viewer().key(Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(viewer().list()->currentRow(), 0);
        const QSignalSpy zoomed(viewer().window->button(ButtonId::ZoomIn), &QAbstractButton::clicked);
        for (const auto modifier : {Qt::ShiftModifier, Qt::KeypadModifier})
            viewer().key(Qt::Key_Plus, modifier);
        QCOMPARE(zoomed.count(), 2);
        viewer().key(Qt::Key_M);
        QVERIFY(!viewer().child<WidgetVolume>()->isEnabled());
        viewer().key(Qt::Key_O);
        QCOMPARE(viewer().folderDialogs.shown, 0);
        viewer().key(Qt::Key_O, Qt::ControlModifier);
        QCOMPARE(viewer().folderDialogs.shown, 1);
    }

    void spaceTogglesPlaying() {
        viewer().list()->setFocus();
        viewer().key(Qt::Key_Space);
        QVERIFY(!viewer().window->isPlaying());
        viewer().key(Qt::Key_Space);
        // Space presses a focused button.
        viewer().window->button(ButtonId::Stop)->setFocus();
        viewer().key(Qt::Key_Space);
        QVERIFY(!viewer().window->isPlaying() && !viewer().panel()->isEnabled());
        // Play hands the focus to the button that replaces it.
        viewer().window->button(ButtonId::Play)->setFocus();
        for (const bool playing : {true, false, true}) {
            viewer().key(Qt::Key_Space);
            QCOMPARE(viewer().window->isPlaying(), playing);
            QVERIFY(viewer().panel()->isEnabled());
        }
    }

    void listKeepsTypingAndMoving() {
        // The focus after zooming or full screen, and after Tab or a wait.
        for (QWidget* focused : {static_cast<QWidget*>(viewer().mainView()),
                                 static_cast<QWidget*>(viewer().window->button(ButtonId::Stop))}) {
            viewer().list()->setCurrentRow(0);
            focused->setFocus();
            viewer().key(Qt::Key_Down);
            QCOMPARE(viewer().list()->currentRow(), 1);
            QCOMPARE(viewer().window->focusWidget(), viewer().list());
        }
        const QSignalSpy zoomed(viewer().window->button(ButtonId::OriginalSize), &QAbstractButton::clicked);
        QTest::keyClicks(viewer().list(), "REC_3");
        QCOMPARE(viewer().list()->currentRow(), 2);
        QTest::keyClicks(viewer().list(), "0");
        QCOMPARE(zoomed.count(), 0);
    }

    // A stopped dashboard is disabled, so the window gets its presses and forwards them.
    void pressOnDisabledPanelSeeks() {
        viewer().click(ButtonId::Stop);
        QVERIFY(!viewer().panel()->isEnabled());
        viewer().panel()->setRange(0, 10000);
        const QPoint place = layout::kProgressPanel.topLeft() + QPoint(316, 15);
        viewer().mouse(Qt::LeftButton, place);
        QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 5000, kWaitMs);
        const QSignalSpy seeks(viewer().panel(), &WidgetProgressA::clicked);
        QTest::mouseDClick(viewer().window->windowHandle(), Qt::LeftButton, {}, place);
        QCOMPARE(seeks.count(), 2);
    }

    void dragAcrossMutedVolumeMovesNothing() {
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

    void drop() {
        viewer().addClip("other/EVS_1.mp4");
        viewer().addClip("other/REC_9.mp4");
        QVERIFY(QFile(viewer().path("other/notes.txt")).open(QFile::WriteOnly));
        const struct {
            QPoint place;
            QString dropped;
            int others; // files dropped before it
            QString current;
        } rows[] = {{kOnVideo, "other/notes.txt", 0, "REC_1.mp4"},
                    {kOnVideo, "other", 100, "REC_1.mp4"}, // past the limit
                    {layout::kClipList.center(), "other", 0, "REC_1.mp4"},
                    {kOnVideo, "other", 99, "EVS_1.mp4"},
                    {kOnVideo, "other/REC_9.mp4", 0, "REC_9.mp4"}};
        for (const auto& row : rows) {
            dropOn(row.place, viewer().path(row.dropped), row.others);
            QTRY_VERIFY_WITH_TIMEOUT(!viewer().window->isReadingFolder(), kWaitMs);
            QTRY_VERIFY_WITH_TIMEOUT(viewer().list()->currentItem(), kWaitMs);
            QCOMPARE(viewer().list()->currentItem()->text(), row.current);
            QCOMPARE(viewer().player()->clip()->file().fileName(), row.current);
        }
    }

private:
    Viewer& viewer() { return *m_viewer; }

    // A new window, because the compositor may still change the old one after full screen.
    void renew() {
        cleanup();
        init();
    }

    void hold(int key) {
        QKeyEvent repeat(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(viewer().window.get(), &repeat);
    }

    void dropOn(QPoint place, const QString& path, int others) {
        QMimeData data;
        const QUrl other = QUrl::fromLocalFile(viewer().path("other/notes.txt"));
        data.setUrls(QList<QUrl>(others, other) << QUrl::fromLocalFile(path));
        const auto send = [this](QDropEvent&& event) {
            QCoreApplication::sendEvent(viewer().window->windowHandle(), &event);
            return event.isAccepted();
        };
        send(QDragEnterEvent(place, Qt::CopyAction, &data, Qt::LeftButton, {}));
        if (send(QDragMoveEvent(place, Qt::CopyAction, &data, Qt::LeftButton, {}))) {
            send(QDropEvent(place, Qt::CopyAction, &data, Qt::LeftButton, {}));
        } else {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(viewer().window->windowHandle(), &leave);
        }
    }

    std::unique_ptr<Viewer> m_viewer;
};

QTEST_MAIN(TestMainWindowInput)
#include "test_main_window_input.moc"
