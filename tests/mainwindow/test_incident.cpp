// The Incident window beside the main window, and the window with the keys.
#include <QPushButton>
#include <QTreeWidget>

#include "incident/incident_panel.h"
#include "incident/strip_marks.h"
#include "mainwindow/commands.h"
#include "mainwindow/viewer.h"
#include "support/frame_code.h"
#include "widgets/skin_window.h"

using namespace ql240;

class TestIncident : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_viewer = std::make_unique<Viewer>();
        TestClipSpec spec = Viewer::shortClip(300);
        spec.videoStreams = 2;
        spec.secondSize = QSize(320, 180);
        viewer().playCard(
            {"EVS_2013_04_05_12_31_00.mp4", "REC_2013_04_05_12_30_00.mp4", "REC_2013_04_05_12_30_10.mp4"},
            spec);
        viewer().window->activateWindow();
    }
    void cleanup() { m_viewer.reset(); }

    // From another clip, the picture two seconds before the mark appears, and no other.
    void momentOpensAtOnePicture() {
        open();
        QTRY_COMPARE(list()->topLevelItemCount(), 1);
        viewer().list()->setCurrentRow(1);
        viewer().window->OnSlotspause();
        viewer().window->OnSlotsProgress(5000);
        viewer().key(Qt::Key_M, Qt::ControlModifier);
        QCOMPARE(list()->topLevelItemCount(), 2);
        for (int i = 0; i < 3; ++i) {
            viewer().list()->setCurrentRow(2);
            viewer().key(Qt::Key_BracketLeft);
            QCOMPARE(viewer().list()->currentRow(), 1);
            QVERIFY(!viewer().window->isPlaying());
            QCOMPARE(viewer().player()->positionMs(), 3000);
            QSet<int> seen;
            QTRY_VERIFY((seen << mainPicture()).contains(90));
            seen.remove(-1);
            QCOMPARE(seen, QSet<int>{90});
        }
        viewer().key(Qt::Key_BracketRight);
        QCOMPARE(viewer().list()->currentRow(), 0);
        QCOMPARE(viewer().player()->positionMs(), 0);
        viewer().key(Qt::Key_BracketRight); // the last one
        QCOMPARE(viewer().list()->currentRow(), 0);
        QVERIFY(viewer().answers.warnings.isEmpty());
    }

    // The range reaches into the next clip by time; its bar and the marks are those of the open clip.
    void range() {
        open();
        QTRY_COMPARE(list()->topLevelItemCount(), 1);
        QTRY_VERIFY(!part<QPushButton>("Cancel")); // the search is done
        viewer().list()->setCurrentRow(1);
        viewer().window->OnSlotspause();
        viewer().window->OnSlotsProgress(4000);
        viewer().key(Qt::Key_Comma);
        viewer().list()->setCurrentRow(2);
        viewer().window->OnSlotspause();
        viewer().window->OnSlotsProgress(2000);
        viewer().key(Qt::Key_Period);
        QCOMPARE(marks()->state().range, std::optional(TimeRange(0, 2000)));
        QVERIFY(labels().contains("8.0 s") && labels().contains("12:30:04.0"));
        viewer().list()->setCurrentRow(1);
        QCOMPARE(marks()->state().range, std::optional(TimeRange(4000, 10000)));
        viewer().list()->setCurrentRow(0);
        QCOMPARE(marks()->state().range, std::nullopt);
        QCOMPARE(marks()->state().momentsMs, std::vector<std::int64_t>{0});
        QTest::mouseClick(part<QPushButton>("Clear"), Qt::LeftButton);
        QVERIFY(labels().contains("No range"));
    }

    void keysOnlyWhileOpen() {
        for (const auto key : {Qt::Key_Comma, Qt::Key_Period, Qt::Key_BracketLeft, Qt::Key_BracketRight})
            viewer().key(key);
        viewer().key(Qt::Key_M, Qt::ControlModifier);
        QVERIFY(!window());
        open();
        QTest::keyClick(viewer().window.get(), Qt::Key_F);
        QVERIFY(viewer().window->isFullScreen() && !window()->isVisible());
        QTest::keyClick(viewer().window.get(), Qt::Key_F);
        open();
        QVERIFY(marks()->isVisible());
        // Its own keys work from the window, and so do the main window's.
        QTest::keyClick(list(), Qt::Key_Comma);
        QVERIFY(!labels().contains("No range"));
        QTest::keyClick(window(), Qt::Key_Space);
        QVERIFY(!viewer().window->isPlaying());
        QTest::keyClick(list(), Qt::Key_Escape);
        QVERIFY(!window()->isVisible() && !marks()->isVisible());
    }

    // Both cameras show the same moment, however the user gets there.
    void secondCamera() {
        open();
        viewer().window->OnSlotspause();
        QWidget* view = window()->findChild<IncidentPanel*>()->secondCamera();
        const auto second = [view] { return readFrameMark(view->grab().toImage()); };
        for (const int ms : {1000, 7000, 6500, 200}) {
            viewer().window->OnSlotsProgress(ms);
            QTRY_COMPARE(mainPicture(), ms * 30 / 1000);
            QTRY_COMPARE(second(), std::optional(FrameMark(mainPicture(), 1)));
        }
        viewer().window->OnSlotsfw();
        QTRY_COMPARE(mainPicture(), 7);
        QTRY_COMPARE(second(), std::optional(FrameMark(7, 1)));
        viewer().window->OnSlotsstop();
        viewer().window->OnSlotsplay();
        viewer().window->OnSlotspause();
        QTRY_VERIFY(second() && second()->number == mainPicture());
        window()->close();
        QVERIFY(!viewer().subView()->isVisible());
    }

    // A closed folder takes its moments and its range with it.
    void anotherFolder() {
        viewer().addClip("other/REC_2013_04_06_10_00_00.mp4");
        open();
        QTRY_COMPARE(list()->topLevelItemCount(), 1);
        viewer().key(Qt::Key_BracketLeft);
        QVERIFY(!labels().contains("No range"));
        viewer().openFolder(viewer().path("other"));
        QCOMPARE(list()->topLevelItemCount(), 0);
        QVERIFY(labels().contains("No range"));
        viewer().openCard();
        QTRY_COMPARE(list()->topLevelItemCount(), 1);
    }

    void keysWindow() {
        viewer().key(Qt::Key_F1);
        auto* keys = viewer().window->findChild<SkinWindow*>();
        QVERIFY(keys->isVisible());
        QStringList texts;
        for (const QLabel* label : keys->findChildren<QLabel*>())
            texts << label->text();
        for (const Command& command : kCommands)
            QVERIFY2(!texts.filter(command.does).isEmpty(), command.does);
        QTest::keyClick(keys, Qt::Key_Space);
        QVERIFY(!viewer().window->isPlaying());
        QTest::keyClick(keys, Qt::Key_F1);
        QVERIFY(!keys->isVisible());
    }

private:
    Viewer& viewer() const { return *m_viewer; }
    void open() const {
        QTest::keyClick(viewer().window.get(), Qt::Key_I, Qt::ControlModifier);
        QVERIFY(window() && window()->isVisible());
    }
    SkinWindow* window() const { return viewer().child<SkinWindow>(); }
    QTreeWidget* list() const { return viewer().child<QTreeWidget>(); }
    StripMarks* marks() const { return viewer().child<StripMarks>(); }
    template <typename Part>
    Part* part(const QString& text) const {
        for (Part* candidate : window()->findChildren<Part*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    QStringList labels() const {
        QStringList texts;
        for (const QLabel* label : window()->findChildren<QLabel*>())
            texts << label->text();
        return texts;
    }
    int mainPicture() const { return readFrameNumber(viewer().mainView()->grab().toImage()); }

    std::unique_ptr<Viewer> m_viewer;
};

QTEST_MAIN(TestIncident)
#include "test_incident.moc"
