#include "base/language.h"
#include "mainwindow/viewer.h"
#include "widgets/image_buttons.h"

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr int kBoundMs = 15000;
const QString kThree[] = {QStringLiteral("EVS_2013_04_05_12_29_00.mp4"),
                          QStringLiteral("REC_2013_04_05_12_29_00.mp4"),
                          QStringLiteral("REC_2013_04_05_12_30_00.mp4")};

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_viewer = std::make_unique<Viewer>(); }
    void cleanup() { m_viewer.reset(); }

    void beforeAnyFolder();
    void openingAFolderPlaysItsFirstClip();
    void folderWithoutClips_data();
    void folderWithoutClips();
    void nextAndPreviousWrap();
    void endOfTheOnlyClipRewinds();
    void pauseStopsTheUpdates();
    void seekingWhilePaused();
    void displayedSpeed_data();
    void displayedSpeed();
    void stopLeavesZoomAndPan();
    void panMode();
    void soundStaysOffOverFolders();
    void fileWithoutClipRecord();

private:
    Viewer& viewer() { return *m_viewer; }
    void addThree();
    void openCard() { viewer().openFolder(viewer().path(QStringLiteral("card"))); }
    bool isLatched(ButtonId id) {
        return static_cast<ClearButton*>(viewer().window->button(id))->isLatched();
    }
    int mapMoves() { return int(viewer().pages.scripts.filter(QStringLiteral("go(")).size()); }

    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindow::addThree() {
    for (const QString& name : kThree)
        viewer().addClip(QStringLiteral("card/") + name);
}

void TestMainWindow::beforeAnyFolder() {
    setCurrentLanguage(QStringLiteral("en"));
    viewer().show();
    int working = 0;
    for (const layout::ButtonRow& row : layout::kButtons) {
        QAbstractButton* button = viewer().window->button(row.id);
        QVERIFY(!button->accessibleName().isEmpty());
        working += button->isEnabled();
    }
    for (const ButtonId id : {ButtonId::OpenFile, ButtonId::OpenFolder, ButtonId::Setting, ButtonId::Minimise,
                              ButtonId::Exit, ButtonId::Logo})
        QVERIFY(viewer().window->button(id)->isEnabled());
    QCOMPARE(working, 6);
    QVERIFY(!viewer().child<WidgetVolume>()->isEnabled());
    QVERIFY(!viewer().subView()->isVisible());
    QVERIFY(viewer().isShown(ButtonId::Play) && !viewer().isShown(ButtonId::Pause));
    for (const QWidget* widget : viewer().window->findChildren<QWidget*>())
        QCOMPARE(widget->contextMenuPolicy(), Qt::NoContextMenu);
    viewer().click(ButtonId::Logo);
    QCOMPARE(viewer().urls.opened.size(), 1);
    viewer().click(ButtonId::Exit);
    QVERIFY(!viewer().window->isVisible());
}

void TestMainWindow::openingAFolderPlaysItsFirstClip() {
    addThree();
    viewer().show();
    viewer().folderDialogs.choice = viewer().path(QStringLiteral("card"));
    viewer().click(ButtonId::OpenFolder);
    QCOMPARE(viewer().list()->count(), 3);
    QCOMPARE(viewer().list()->currentRow(), 0);
    QCOMPARE(viewer().player()->clip()->file().fileName(), kThree[0]);
    QCOMPARE(viewer().child<QLabel>()->text(), viewer().path(QStringLiteral("card")));
    QCOMPARE(viewer().panel()->state().dateText, QStringLiteral("2013.04.05"));
    QVERIFY(viewer().isShown(ButtonId::Pause) && !viewer().isShown(ButtonId::Play));
    QVERIFY(viewer().window->button(ButtonId::Snapshot)->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(viewer().player()->positionMs() > 100, kBoundMs);
    QTRY_VERIFY_WITH_TIMEOUT(viewer().panel()->state().progressValue > 0, kBoundMs);
    QVERIFY(viewer().answers.warnings.isEmpty());
}

void TestMainWindow::folderWithoutClips_data() {
    QTest::addColumn<bool>("choose");
    QTest::addColumn<QStringList>("warnings");
    QTest::newRow("empty") << true
                           << QStringList{QStringLiteral("QL240 Viewer: Please select proper folder")};
    QTest::newRow("cancelled") << false << QStringList();
}

void TestMainWindow::folderWithoutClips() {
    QFETCH(bool, choose);
    addThree();
    viewer().show();
    openCard();
    if (choose)
        viewer().folderDialogs.choice = viewer().path(QStringLiteral("."));
    viewer().click(ButtonId::OpenFolder);
    QTEST(viewer().answers.warnings, "warnings");
    QCOMPARE(viewer().list()->count(), choose ? 0 : 3);
    QCOMPARE(viewer().player()->clip() == nullptr, choose);
    QCOMPARE(viewer().child<QLabel>()->text().isEmpty(), choose);
    QVERIFY(viewer().window->button(ButtonId::Stop)->isEnabled());
}

void TestMainWindow::nextAndPreviousWrap() {
    addThree();
    viewer().show();
    openCard();
    const std::pair<ButtonId, int> steps[] = {{ButtonId::PreviousFile, 2}, {ButtonId::NextFile, 0},
                                              {ButtonId::NextFile, 1},     {ButtonId::PreviousFile, 0},
                                              {ButtonId::PreviousFile, 2}, {ButtonId::PreviousFile, 1}};
    for (const auto& [id, row] : steps) {
        viewer().click(id);
        QCOMPARE(viewer().list()->currentRow(), row);
        QCOMPARE(viewer().player()->clip()->file().fileName(), kThree[row]);
        QVERIFY(viewer().window->isPlaying());
    }
}

void TestMainWindow::endOfTheOnlyClipRewinds() {
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"));
    viewer().show();
    openCard();
    QTRY_VERIFY_WITH_TIMEOUT(!viewer().window->isPlaying(), kBoundMs);
    QCOMPARE(viewer().player()->positionMs(), 0);
    auto* timer = viewer().updateTimer();
    QTRY_VERIFY(!timer->isActive());
    viewer().click(ButtonId::NextFile);
    QCOMPARE(viewer().list()->currentRow(), 0);
    QVERIFY(!viewer().window->isPlaying());
}

void TestMainWindow::pauseStopsTheUpdates() {
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"), Viewer::shortClip(300));
    viewer().sensors.answer = [](std::int64_t ms) {
        FakeSensorLibrary::Answer answer;
        answer.latitude += std::int32_t(ms);
        return answer;
    };
    viewer().show();
    viewer().loadMap();
    openCard();
    QTRY_VERIFY_WITH_TIMEOUT(mapMoves() >= 2, kBoundMs);
    viewer().click(ButtonId::Pause);
    QVERIFY(viewer().isShown(ButtonId::Play) && !viewer().isShown(ButtonId::Pause));
    QTRY_VERIFY(!viewer().updateTimer()->isActive());
    const int moves = mapMoves();
    viewer().click(ButtonId::Play);
    QTRY_VERIFY_WITH_TIMEOUT(mapMoves() > moves, kBoundMs);
}

void TestMainWindow::seekingWhilePaused() {
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"), Viewer::shortClip(60));
    viewer().sensors.answer = [](std::int64_t ms) {
        FakeSensorLibrary::Answer answer;
        answer.latitude = 40000000 + std::int32_t(ms);
        answer.speed = std::int32_t(ms / 100);
        return answer;
    };
    viewer().show();
    viewer().loadMap();
    openCard();
    viewer().click(ButtonId::Pause);
    QTRY_VERIFY(!viewer().updateTimer()->isActive());
    const int moves = mapMoves();
    Q_EMIT viewer().panel()->clicked(1000);
    QCOMPARE(viewer().player()->positionMs(), 1000);
    QCOMPARE(viewer().panel()->state().progressValue, 1000);
    QTRY_COMPARE(mapMoves(), moves + 1);
    QCOMPARE(viewer().panel()->speed(), 10);
    QVERIFY(!viewer().window->isPlaying());
}

void TestMainWindow::displayedSpeed_data() {
    QTest::addColumn<int>("latitude"); // 0: no position
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("sample");
    QTest::addColumn<int>("shown");
    constexpr int kSomewhere = 37500000; // not where the map starts
    QTest::newRow("plain") << kSomewhere << 0 << 88 << 88;
    QTest::newRow("standing") << kSomewhere << 50 << 0 << 0;
    QTest::newRow("highest") << kSomewhere << 50 << 241 << 241;
    QTest::newRow("beyond the scale") << kSomewhere << 50 << 242 << 0;
    QTest::newRow("far beyond") << kSomewhere << 50 << 300 << 0;
    QTest::newRow("unknown keeps") << kSomewhere << 50 << -1 << 50;
    QTest::newRow("no position keeps") << 0 << 77 << 50 << 77;
}

void TestMainWindow::displayedSpeed() {
    QFETCH(int, latitude);
    QFETCH(int, before);
    QFETCH(int, sample);
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"));
    viewer().sensors.answer = [&](std::int64_t) {
        FakeSensorLibrary::Answer answer;
        answer.latitude = latitude;
        answer.speed = sample;
        return answer;
    };
    viewer().show();
    viewer().loadMap();
    openCard();
    viewer().click(ButtonId::Pause);
    viewer().panel()->setSpeed(before);
    viewer().window->OnTimeoutRefreshMapB();
    QTEST(viewer().panel()->speed(), "shown");
    QTRY_COMPARE(mapMoves() > 0, latitude != 0);
}

void TestMainWindow::stopLeavesZoomAndPan() {
    addThree();
    viewer().show();
    openCard();
    viewer().click(ButtonId::ZoomIn);
    viewer().click(ButtonId::Pan);
    QVERIFY(viewer().mainView()->zoom() > 1.0F);
    viewer().click(ButtonId::Stop);
    QCOMPARE(viewer().mainView()->zoom(), 1.0F);
    QVERIFY(!isLatched(ButtonId::Pan));
    QVERIFY(viewer().list()->isEnabled());
    QVERIFY(!viewer().panel()->isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(viewer().player()->positionMs(), 0, kBoundMs);
    viewer().click(ButtonId::Play);
    QVERIFY(viewer().panel()->isEnabled());
}

void TestMainWindow::panMode() {
    addThree();
    viewer().show();
    openCard();
    viewer().click(ButtonId::Pan);
    QVERIFY(isLatched(ButtonId::Pan));
    QVERIFY(!viewer().list()->isEnabled());
    QVERIFY(!viewer().child<MapView>()->isEnabled());
    // A drag over the picture must not move the window.
    const QPoint before = viewer().window->pos();
    QTest::mousePress(viewer().window->windowHandle(), Qt::LeftButton, {}, {200, 200});
    QTest::mouseMove(viewer().window->windowHandle(), {260, 250});
    QTest::mouseRelease(viewer().window->windowHandle(), Qt::LeftButton, {}, {260, 250});
    QCOMPARE(viewer().window->pos(), before);
    viewer().click(ButtonId::Pan);
    QVERIFY(viewer().list()->isEnabled());
    QTest::mouseMove(viewer().window->windowHandle(), {200, 200});
    QTest::mousePress(viewer().window->windowHandle(), Qt::LeftButton, {}, {200, 200});
    QTest::mouseMove(viewer().window->windowHandle(), {260, 250});
    // The window has followed, so the pointer is where it was in it.
    QTest::mouseRelease(viewer().window->windowHandle(), Qt::LeftButton, {}, {200, 200});
    QCOMPARE(viewer().window->pos(), before + QPoint(60, 50));
}

void TestMainWindow::soundStaysOffOverFolders() {
    addThree();
    viewer().show();
    openCard();
    auto* gauge = viewer().child<WidgetVolume>();
    const auto loudness = [this] {
        std::uint32_t value = 1;
        viewer().volume.waveOutGetVolume(0, &value);
        return value;
    };
    viewer().click(ButtonId::Volume);
    QVERIFY(!gauge->isEnabled() && isLatched(ButtonId::Volume));
    QCOMPARE(loudness(), 0U);
    openCard();
    QVERIFY(gauge->isEnabled() && isLatched(ButtonId::Volume));
    QCOMPARE(loudness(), 0U);
    viewer().click(ButtonId::Volume);
    QVERIFY(!gauge->isEnabled() && isLatched(ButtonId::Volume));
    viewer().click(ButtonId::Volume);
    QVERIFY(gauge->isEnabled() && !isLatched(ButtonId::Volume));
    QCOMPARE(loudness(), 0xFFFAFFFAU);
}

void TestMainWindow::fileWithoutClipRecord() {
    addThree();
    viewer().show();
    openCard();
    viewer().answers.openFile = viewer().path(QStringLiteral("card/") + kThree[1]);
    viewer().click(ButtonId::OpenFile);
    QCOMPARE(viewer().answers.asked,
             QStringList({QStringLiteral("Open QL240"), QStringLiteral("QL240 Data Files (*.mp4)")}));
    QCOMPARE(viewer().list()->count(), 4);
    QCOMPARE(viewer().list()->item(3)->text(), kThree[1]);
    QCOMPARE(viewer().list()->currentRow(), 0);
    viewer().list()->setCurrentRow(3);
    QCOMPARE(viewer().answers.warnings,
             QStringList(QStringLiteral("QL240 Viewer: Failed to open clip file")));
    QCOMPARE(viewer().player()->clip(), nullptr);
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindow)
#include "test_main_window.moc"
