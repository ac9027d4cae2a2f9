// The main window as a citizen of its desktop: what assistive technology sees, and what keeps the desktop
// awake.
#include <QAccessible>

#include "mainwindow/viewer.h"
#include "support/accessible_tree.h"
#include "support/fake_inhibitor.h"

namespace ql240 {

using layout::ButtonId;
using Action = void (*)(Viewer&);

namespace {
constexpr int kBoundMs = 15000;
}

} // namespace ql240

Q_DECLARE_METATYPE(ql240::Action)

namespace ql240 {

class TestMainWindowDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_viewer.reset(); }
    void everyPartSpeaks();
    void gaugesAreSliders();
    void latchesTellTheirState();
    void focusIsSeen();
    void awakeWhilePlaying_data();
    void awakeWhilePlaying();

private:
    Viewer& viewer() { return *m_viewer; }
    int holds() const { return *m_inhibitor.holds; }

    FakeInhibitor m_inhibitor;
    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindowDesktop::init() {
    m_viewer = std::make_unique<Viewer>();
    host().inhibitor = &m_inhibitor;
    for (const char* name : {"REC_1.mp4", "REC_2.mp4"})
        viewer().addClip(QStringLiteral("card/") + QLatin1String(name), Viewer::shortClip(300));
    viewer().addClip(QStringLiteral("one/REC_1.mp4"), Viewer::shortClip(10));
    viewer().show();
    viewer().openFolder(viewer().path(QStringLiteral("card")));
}

void TestMainWindowDesktop::everyPartSpeaks() {
    const AccessibleTree tree(viewer().window.get());
    QCOMPARE(tree.nameless.join(u'\n'), QString());
    const std::pair<const char*, QAccessible::Role> expected[] = {
        {"QL240 Viewer", QAccessible::Window}, {"Video", QAccessible::Animation},
        {"Map", QAccessible::Graphic},         {"Clips", QAccessible::List},
        {"REC_2.mp4", QAccessible::ListItem},  {"Dashboard", QAccessible::Slider},
        {"Open Folder", QAccessible::Button},  {"Exit", QAccessible::Button},
        {"QL240", QAccessible::Button},
    };
    for (const auto& [name, role] : expected) {
        QVERIFY2(tree.byName.contains(QLatin1String(name)), name);
        QCOMPARE(tree.byName[QLatin1String(name)]->role(), role);
    }
    // Every button says what it does, and does it without a mouse.
    for (const layout::ButtonRow& row : layout::kButtons) {
        QAbstractButton* button = viewer().window->button(row.id);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(button);
        QVERIFY2(!interface->text(QAccessible::Name).isEmpty(), row.name);
        QVERIFY2(
            interface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()),
            row.name);
    }
    QAccessible::queryAccessibleInterface(viewer().window->button(ButtonId::Pause))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(!viewer().window->isPlaying());
}

void TestMainWindowDesktop::gaugesAreSliders() {
    viewer().click(ButtonId::Pause);
    QAccessibleInterface* panel = QAccessible::queryAccessibleInterface(viewer().panel());
    QTRY_COMPARE_WITH_TIMEOUT(panel->valueInterface()->maximumValue().toLongLong(),
                              viewer().player()->durationMs(), kBoundMs);
    panel->valueInterface()->setCurrentValue(5000);
    QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 5000, kBoundMs);
    QCOMPARE(panel->valueInterface()->currentValue().toInt(), 5000);
    QCOMPARE(panel->text(QAccessible::Value).left(5), QStringLiteral("00:05"));
    QVERIFY(panel->text(QAccessible::Description).contains(QStringLiteral("0 km/h")));

    auto* volume = viewer().child<WidgetVolume>();
    QAccessibleInterface* gauge = QAccessible::queryAccessibleInterface(volume);
    QCOMPARE(gauge->role(), QAccessible::Slider);
    gauge->valueInterface()->setCurrentValue(4);
    QCOMPARE(volume->level(), 4);
    QCOMPARE(gauge->text(QAccessible::Value), QStringLiteral("40 %"));
}

void TestMainWindowDesktop::latchesTellTheirState() {
    for (const ButtonId id : {ButtonId::Pan, ButtonId::Volume}) {
        QAccessibleInterface* latch = QAccessible::queryAccessibleInterface(viewer().window->button(id));
        QVERIFY(latch->state().checkable && !latch->state().checked);
        viewer().click(id);
        QVERIFY(latch->state().checked);
    }
    QVERIFY(QAccessible::queryAccessibleInterface(viewer().list())->state().disabled);
}

// Tab reaches every control that can be used, and each shows where the focus is.
void TestMainWindowDesktop::focusIsSeen() {
    viewer().click(ButtonId::Pause);
    viewer().window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(viewer().window.get()));
    QSet<QWidget*> seen;
    for (int i = 0; i < 40; ++i) {
        viewer().key(Qt::Key_Tab);
        QWidget* focus = viewer().window->focusWidget();
        if (seen.contains(focus))
            continue;
        seen << focus;
        const QImage with = focus->grab().toImage();
        focus->clearFocus();
        const QImage without = focus->grab().toImage();
        focus->setFocus(Qt::TabFocusReason);
        if (qobject_cast<QAbstractButton*>(focus))
            QVERIFY2(with != without, qPrintable(focus->accessibleName()));
    }
    QVERIFY(seen.contains(viewer().list()));
    for (const layout::ButtonRow& row : layout::kButtons) {
        QWidget* button = viewer().window->button(row.id);
        QVERIFY2(seen.contains(button) || !button->isVisible() || !button->isEnabled(), row.name);
    }
}

void TestMainWindowDesktop::awakeWhilePlaying_data() {
    QTest::addColumn<Action>("action");
    QTest::newRow("pause") << Action([](Viewer& v) { v.click(ButtonId::Pause); });
    QTest::newRow("folder without clips") << Action([](Viewer& v) { v.openFolder(v.path("none")); });
    QTest::newRow("end of the only clip") << Action([](Viewer& v) { v.openFolder(v.path("one")); });
    QTest::newRow("its end in full screen") << Action([](Viewer& v) {
        v.openFolder(v.path("one"));
        v.key(Qt::Key_F);
    });
    QTest::newRow("window gone") << Action([](Viewer& v) { v.window.reset(); });
}

void TestMainWindowDesktop::awakeWhilePlaying() {
    QFETCH(Action, action);
    QCOMPARE(holds(), 1);
    action(viewer());
    QTRY_COMPARE_WITH_TIMEOUT(holds(), 0, kBoundMs);
    if (viewer().window && viewer().player()->clip() && !viewer().window->isFullScreen()) {
        viewer().click(ButtonId::Play);
        QCOMPARE(holds(), 1);
    }
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowDesktop)
#include "test_main_window_desktop.moc"
