// The main window on the real pipeline: clips, dashboard, sound, settings, accessibility, staying awake.
#include "base/language.h"
#include "base/preferences.h"
#include "mainwindow/viewer.h"
#include "settings/config_window.h"
#include "support/accessible_tree.h"
#include "support/fake_inhibitor.h"
#include "support/modal.h"
#include "widgets/image_buttons.h"

using namespace ql240;

using layout::ButtonId;

namespace {

const QStringList kThree{"EVS_2013_04_05_12_29_00.mp4", "REC_2013_04_05_12_29_00.mp4",
                         "REC_2013_04_05_12_30_00.mp4"};

QAccessibleInterface* accessible(QObject* part) {
    return QAccessible::queryAccessibleInterface(part);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        setCurrentLanguage("en");
        m_viewer = std::make_unique<Viewer>();
        host().inhibitor = &m_inhibitor;
    }
    void cleanup() { m_viewer.reset(); }

    void beforeAnyFolder() {
        viewer().show();
        for (const QWidget* widget : viewer().window->findChildren<QWidget*>())
            QCOMPARE(widget->contextMenuPolicy(), Qt::NoContextMenu);
        for (const QWidget* empty :
             {static_cast<QWidget*>(viewer().mainView()), static_cast<QWidget*>(viewer().list())})
            QVERIFY(empty->toolTip().contains("Ctrl+O"));
        viewer().click(ButtonId::Logo);
        QCOMPARE(viewer().urls.opened.size(), 1);
        viewer().click(ButtonId::Exit);
        QVERIFY(!viewer().window->isVisible());
    }

    // Cancelling changes nothing; a folder without clips clears the list.
    void folderWithoutClips() {
        viewer().playCard(kThree);
        QVERIFY(viewer().mainView()->toolTip().isEmpty() && viewer().list()->toolTip().isEmpty());
        for (const bool chosen : {false, true}) {
            if (chosen)
                viewer().folderDialogs.choice = viewer().path(".");
            viewer().click(ButtonId::OpenFolder);
            QCOMPARE(viewer().answers.warnings,
                     QStringList(chosen, "QL240 Viewer: Please select proper folder"));
            QCOMPARE(viewer().list()->count(), chosen ? 0 : 3);
            QCOMPARE(viewer().player()->clip() == nullptr, chosen);
            QCOMPARE(viewer().child<QLabel>()->text().isEmpty(), chosen);
        }
        QVERIFY(works(ButtonId::Stop));
    }

    void nextAndPreviousWrap() {
        viewer().playCard(kThree);
        const std::pair<ButtonId, int> steps[] = {{ButtonId::PreviousFile, 2},
                                                  {ButtonId::NextFile, 0},
                                                  {ButtonId::NextFile, 1},
                                                  {ButtonId::PreviousFile, 0}};
        for (const auto& [id, row] : steps) {
            viewer().click(id);
            QCOMPARE(viewer().list()->currentRow(), row);
            QCOMPARE(viewer().player()->clip()->file().fileName(), kThree[row]);
            QVERIFY(viewer().window->isPlaying());
        }
    }

    // It rewinds and no longer keeps the desktop awake, also in full screen.
    void endOfTheOnlyClip() {
        viewer().playCard({kThree[0]}, Viewer::shortClip(10));
        QCOMPARE(*m_inhibitor.holds, 1);
        QTRY_COMPARE_WITH_TIMEOUT(*m_inhibitor.holds, 0, kWaitMs);
        QVERIFY(!viewer().window->isPlaying());
        QCOMPARE(viewer().player()->positionMs(), 0);
        QTRY_VERIFY(!viewer().updateTimer()->isActive());
        viewer().click(ButtonId::NextFile);
        QVERIFY(!viewer().window->isPlaying());
        viewer().click(ButtonId::Play);
        viewer().key(Qt::Key_F);
        QTRY_COMPARE_WITH_TIMEOUT(*m_inhibitor.holds, 0, kWaitMs);
        viewer().window->OnSlotsplay();
        QCOMPARE(*m_inhibitor.holds, 1);
        viewer().window.reset();
        QCOMPARE(*m_inhibitor.holds, 0);
    }

    // A speed beyond the scale is shown as 0; an unknown one, or one without a position, changes nothing.
    void seekingWhilePaused() {
        static constexpr struct {
            int latitude, speed, shown;
        } kSeconds[] = {{1, 10, 10}, {2, 88, 88}, {3, 241, 241}, {4, 242, 0},
                        {5, 50, 50}, {6, -1, 50}, {0, 77, 50}};
        viewer().sensors.answer = [](std::int64_t ms) {
            const auto& second = kSeconds[std::min(std::size_t(ms / 1000), std::size(kSeconds) - 1)];
            FakeSensorLibrary::Answer answer;
            answer.latitude = 1000000 * second.latitude;
            answer.speed = second.speed;
            return answer;
        };
        viewer().playCard(kThree, Viewer::shortClip(300));
        viewer().loadMap();
        QTRY_VERIFY_WITH_TIMEOUT(viewer().hasTrack(), kWaitMs);
        viewer().click(ButtonId::Pause);
        QTRY_VERIFY(!viewer().updateTimer()->isActive());
        for (std::size_t i = 1; i < std::size(kSeconds); ++i) {
            const auto moves = mapMoves();
            const int ms = int(i) * 1000 + 500;
            Q_EMIT viewer().panel()->clicked(ms);
            QCOMPARE(viewer().player()->positionMs(), ms);
            QCOMPARE(viewer().panel()->state().progressValue, ms);
            QCOMPARE(viewer().panel()->speed(), kSeconds[i].shown);
            QTRY_COMPARE(mapMoves() > moves, kSeconds[i].latitude != 0);
        }
        QVERIFY(!viewer().window->isPlaying());
    }

    void stopLeavesZoomAndPan() {
        viewer().playCard(kThree);
        viewer().click(ButtonId::ZoomIn);
        viewer().click(ButtonId::Pan);
        QVERIFY(viewer().mainView()->zoom() > 1.0F && isLatched(ButtonId::Pan));
        QVERIFY(!viewer().list()->isEnabled() && !viewer().child<MapView>()->isEnabled());
        viewer().click(ButtonId::Stop);
        QCOMPARE(viewer().mainView()->zoom(), 1.0F);
        QVERIFY(!isLatched(ButtonId::Pan) && viewer().list()->isEnabled() && !viewer().panel()->isEnabled());
        QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 0, kWaitMs);
        viewer().click(ButtonId::Play);
        QVERIFY(viewer().panel()->isEnabled());
    }

    void soundStaysOffOverFolders() {
        viewer().playCard(kThree);
        const auto sounds = [this](bool gauge, bool latched, std::uint32_t loudness) {
            std::uint32_t value = 1;
            viewer().volume.waveOutGetVolume(0, &value);
            return viewer().child<WidgetVolume>()->isEnabled() == gauge &&
                   isLatched(ButtonId::Volume) == latched && value == loudness;
        };
        viewer().click(ButtonId::Volume);
        QVERIFY(sounds(false, true, 0));
        viewer().openCard();
        QVERIFY(sounds(true, true, 0));
        viewer().click(ButtonId::Volume);
        QVERIFY(sounds(false, true, 0));
        viewer().click(ButtonId::Volume);
        QVERIFY(sounds(true, false, 0xFFFAFFFAU));
    }

    void fileWithoutClipRecord() {
        viewer().playCard(kThree);
        viewer().answers.openFile = viewer().path("card/" + kThree[1]);
        viewer().click(ButtonId::OpenFile);
        QCOMPARE(viewer().answers.asked, QStringList({"Open QL240", "QL240 Data Files (*.mp4)"}));
        QCOMPARE(viewer().list()->count(), 4);
        QCOMPARE(viewer().list()->item(3)->text(), kThree[1]);
        QCOMPARE(viewer().list()->currentRow(), 0);
        viewer().list()->setCurrentRow(3);
        QCOMPARE(viewer().answers.warnings, QStringList("QL240 Viewer: Failed to open clip file"));
        QCOMPARE(viewer().player()->clip(), nullptr);
    }

    void settingsAcceptedThenCancelled() {
        viewer().playCard(kThree);
        for (const bool accepted : {true, false}) {
            QCOMPARE(viewer().panel()->kilometres(), accepted);
            const ModalAnswer user([&](QWidget* window) {
                auto* dialog = static_cast<ConfigWindow*>(window);
                QCOMPARE(dialog->viewerSpeedUnit(), accepted ? SpeedUnit::Kmh : SpeedUnit::Mph);
                setCurrentLanguage("kr");
                dialog->setViewerSpeedUnit(accepted ? SpeedUnit::Mph : SpeedUnit::Kmh);
                accepted ? dialog->accept() : dialog->reject();
            });
            viewer().click(ButtonId::Setting);
            QVERIFY(user.seen() && !viewer().window->isPlaying() && !viewer().panel()->kilometres());
            QString unit;
            QVERIFY(readSpeedUnit(unit));
            QCOMPARE(unit, "mph");
        }
        QCOMPARE(viewer().window->button(ButtonId::Play)->accessibleName(), "재생");
    }

    void unitAtStart() {
        for (const char* unit : {"km", "mph", "KM"}) {
            writeSpeedUnit(unit);
            viewer().show();
            QCOMPARE(viewer().panel()->kilometres(), unit == QLatin1String("km"));
        }
    }

    void everyPartSpeaks() {
        viewer().playCard(kThree);
        const AccessibleTree tree(viewer().window.get());
        QCOMPARE(tree.nameless.join(u'\n'), QString());
        const std::pair<QString, QAccessible::Role> expected[] = {
            {"QL240 Viewer", QAccessible::Window}, {"Video", QAccessible::Animation},
            {"Map", QAccessible::Graphic},         {"Clips", QAccessible::List},
            {kThree[1], QAccessible::ListItem},    {"Dashboard", QAccessible::Slider},
            {"Open Folder", QAccessible::Button},  {"QL240", QAccessible::Button},
        };
        for (const auto& [name, role] : expected)
            QVERIFY2(tree.byName.contains(name) && tree.byName[name]->role() == role, qPrintable(name));
        const auto press = QAccessibleActionInterface::pressAction();
        accessible(viewer().window->button(ButtonId::Pause))->actionInterface()->doAction(press);
        QVERIFY(!viewer().window->isPlaying());
        for (const ButtonId id : {ButtonId::Pan, ButtonId::Volume}) {
            const QAccessibleInterface* latch = accessible(viewer().window->button(id));
            QVERIFY(latch->state().checkable && !latch->state().checked);
            viewer().click(id);
            QVERIFY(latch->state().checked);
        }
        QVERIFY(accessible(viewer().list())->state().disabled);
    }

    void gaugesAreSliders() {
        viewer().playCard(kThree, Viewer::shortClip(300));
        viewer().click(ButtonId::Pause);
        QAccessibleInterface* panel = accessible(viewer().panel());
        const auto longest = [panel] { return panel->valueInterface()->maximumValue().toLongLong(); };
        QTRY_COMPARE_WITH_TIMEOUT(longest(), viewer().player()->durationMs(), kWaitMs);
        panel->valueInterface()->setCurrentValue(5000);
        QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 5000, kWaitMs);
        QCOMPARE(panel->valueInterface()->currentValue().toInt(), 5000);
        QCOMPARE(panel->text(QAccessible::Value).left(5), "00:05");
        QVERIFY(panel->text(QAccessible::Description).contains("50 km/h"));

        auto* volume = viewer().child<WidgetVolume>();
        accessible(volume)->valueInterface()->setCurrentValue(4);
        QCOMPARE(volume->level(), 4);
        QCOMPARE(accessible(volume)->text(QAccessible::Value), "40 %");
    }

    // Tab reaches every enabled control, and each shows the focus.
    void focusIsSeen() {
        viewer().playCard(kThree);
        viewer().click(ButtonId::Pause);
        viewer().window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(viewer().window.get()));
        QSet<QWidget*> seen;
        for (int i = 0; i < 40; ++i) {
            viewer().key(Qt::Key_Tab);
            QWidget* focus = viewer().window->focusWidget();
            seen << focus;
            const QImage with = focus->grab().toImage();
            focus->clearFocus();
            const QImage without = focus->grab().toImage();
            focus->setFocus(Qt::TabFocusReason);
            if (qobject_cast<QAbstractButton*>(focus))
                QVERIFY2(with != without, qPrintable(focus->accessibleName()));
        }
        QVERIFY(seen.contains(viewer().list()));
        for (const layout::ButtonRow& row : layout::kButtons)
            QVERIFY2(
                seen.contains(viewer().window->button(row.id)) || !viewer().isShown(row.id) || !works(row.id),
                row.name);
    }

private:
    Viewer& viewer() { return *m_viewer; }
    bool works(ButtonId id) { return viewer().window->button(id)->isEnabled(); }
    bool isLatched(ButtonId id) {
        return static_cast<ClearButton*>(viewer().window->button(id))->isLatched();
    }
    qsizetype mapMoves() { return viewer().pages.scripts.filter("go(").size(); }

    FakeInhibitor m_inhibitor;
    std::unique_ptr<Viewer> m_viewer;
};

QTEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
