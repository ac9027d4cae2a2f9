#include <QDir>
#include <QPrinter>
#include <QRegularExpression>

#include "mainwindow/frame_output.h"
#include "mainwindow/viewer.h"
#include "support/frame_code.h"
#include "support/pdf_page.h"

namespace ql240 {

using layout::ButtonId;

namespace {

constexpr int kBoundMs = 15000;
constexpr int kFrameAfterThreeSteps = 5; // 199.9998 ms at 30 frames a second

} // namespace

class TestMainWindowFrames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_viewer = std::make_unique<Viewer>(); }
    void cleanup() { m_viewer.reset(); }

    void nothingPlayedYet();
    void proposedName();
    void snapshotSavesTheFrameOnScreen();
    void snapshotFollowsNoLink();
    void refusedNames_data();
    void refusedNames();
    void secondStreamGetsItsOwnFile();
    void secondNames_data();
    void secondNames();
    void placesOnPage_data();
    void placesOnPage();
    void printing_data();
    void printing();

private:
    Viewer& viewer() { return *m_viewer; }
    void openAndStop(int streams);

    std::unique_ptr<Viewer> m_viewer;
};

void TestMainWindowFrames::openAndStop(int streams) {
    TestClipSpec spec;
    spec.videoStreams = streams;
    viewer().addClip(QStringLiteral("card/REC_2013_04_05_12_29_00.mp4"), spec);
    viewer().show();
    viewer().openFolder(viewer().path(QStringLiteral("card")));
    viewer().click(ButtonId::Stop);
    QTRY_VERIFY_WITH_TIMEOUT(viewer().isAtStart(), kBoundMs);
    for (int step = 0; step < 3; ++step)
        viewer().click(ButtonId::FrameForward);
    QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(viewer().player()->frame(0, true)), kFrameAfterThreeSteps,
                              kBoundMs);
}

void TestMainWindowFrames::nothingPlayedYet() {
    viewer().show();
    viewer().window->OnSlotssnapshot();
    viewer().window->OnSlotsprint();
    const QString warning = QStringLiteral("QL240 Viewer: Play first");
    QCOMPARE(viewer().answers.warnings, QStringList({warning, warning}));
    QVERIFY(viewer().answers.asked.isEmpty());
}

void TestMainWindowFrames::proposedName() {
    QCOMPARE(snapshotName(QDateTime(QDate(2024, 1, 31), QTime(23, 59, 59))),
             QStringLiteral("QL24020240131235959.jpg"));
    QCOMPARE(snapshotName(QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5))),
             QStringLiteral("QL24020240102030405.jpg"));
}

void TestMainWindowFrames::snapshotSavesTheFrameOnScreen() {
    openAndStop(1);
    viewer().answers.saveFile = viewer().path(QStringLiteral("a.png"));
    viewer().click(ButtonId::Snapshot);
    QCOMPARE(viewer().answers.asked.size(), 3);
    QCOMPARE(viewer().answers.asked[0], QStringLiteral("QL240 Save File"));
    QVERIFY(QRegularExpression(QStringLiteral("^QL240\\d{14}\\.jpg$"))
                .match(viewer().answers.asked[1])
                .hasMatch());
    QCOMPARE(viewer().answers.asked[2], QStringLiteral("Image Files (*.png *.jpg)"));
    const QImage saved(viewer().answers.saveFile);
    QCOMPARE(saved.size(), QSize(640, 360));
    QCOMPARE(readFrameNumber(saved), kFrameAfterThreeSteps);
    QCOMPARE(QDir(viewer().folder.path()).entryList({QStringLiteral("a*.png")}).size(), 1);
    // A playing clip is paused, and stays so.
    viewer().click(ButtonId::Play);
    viewer().click(ButtonId::Snapshot);
    QVERIFY(!viewer().window->isPlaying());
    QVERIFY(!viewer().player()->isRunning());
}

// A link in the folder, to what isn't there or to what is, gives way to the picture.
void TestMainWindowFrames::snapshotFollowsNoLink() {
    openAndStop(1);
    const QString kept = viewer().path(QStringLiteral("home/kept"));
    for (const char* name : {"home", "out"})
        QVERIFY(QDir(viewer().folder.path()).mkpath(QLatin1String(name)));
    QFile home(kept);
    QVERIFY(home.open(QFile::WriteOnly) && home.write("kept") == 4 && home.flush());
    for (const char* target : {"home/made", "home/kept"}) {
        const QString link = viewer().answers.saveFile = viewer().path(QStringLiteral("out/a.png"));
        QFile::remove(link);
        QVERIFY(QFile::link(viewer().path(QLatin1String(target)), link));
        viewer().click(ButtonId::Snapshot);
        QVERIFY2(!QFileInfo(link).isSymLink() && QImage(link).width() == 640, target);
    }
    QCOMPARE(QDir(viewer().path(QStringLiteral("home"))).entryList(QDir::Files),
             QStringList{QStringLiteral("kept")});
    QCOMPARE(QFileInfo(kept).size(), 4);
    QCOMPARE(QDir(viewer().path(QStringLiteral("out"))).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("a.png")});
    QVERIFY(QFileInfo(viewer().answers.saveFile).permission(QFile::ReadUser | QFile::ReadGroup));
}

void TestMainWindowFrames::refusedNames_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("cancelled") << QString();
    QTest::newRow("four characters") << ".png";
    QTest::newRow("four characters without a dot") << "abcd";
}

void TestMainWindowFrames::refusedNames() {
    QFETCH(QString, name);
    openAndStop(1);
    viewer().answers.saveFile = name;
    viewer().click(ButtonId::Snapshot);
    QCOMPARE(viewer().answers.warnings, QStringList(QStringLiteral("QL240: Save File Cancelled")));
}

void TestMainWindowFrames::secondStreamGetsItsOwnFile() {
    openAndStop(2);
    viewer().answers.saveFile = viewer().path(QStringLiteral("shot.png"));
    viewer().click(ButtonId::Snapshot);
    QCOMPARE(QImage(viewer().path(QStringLiteral("shot.png"))).size(), QSize(640, 360));
    QCOMPARE(QImage(viewer().path(QStringLiteral("shot_2.png"))).size(), QSize(480, 270));
    QVERIFY(!viewer().subView()->isVisible());
}

void TestMainWindowFrames::secondNames_data() {
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("plain") << "a.png"
                           << "a_2.png";
    QTest::newRow("long suffix") << "a.jpeg"
                                 << "a_2.jpeg";
    QTest::newRow("dot in the name") << "a.b.jpg"
                                     << "a.b_2.jpg";
    QTest::newRow("taken") << "taken.png"
                           << "taken_3.png";
    QTest::newRow("no suffix") << "shot"
                               << "shot_2";
    QTest::newRow("dot in the folder only") << "x.y/shot"
                                            << "x.y/shot_2";
    QTest::newRow("place markers") << "%1/%2 %3.png"
                                   << "%1/%2 %3_2.png";
}

void TestMainWindowFrames::secondNames() {
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFile taken(viewer().path(QStringLiteral("taken_2.png")));
    QVERIFY(taken.open(QFile::WriteOnly));
    QFile::link(QStringLiteral("nothing"), viewer().path(QStringLiteral("link_2.png")));
    QCOMPARE(secondSnapshotPath(viewer().path(first)), viewer().path(second));
}

void TestMainWindowFrames::placesOnPage_data() {
    QTest::addColumn<QRect>("page");
    QTest::addColumn<QSize>("first");
    QTest::addColumn<QSize>("second");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QRect>("secondPlace");
    const QRect none;
    QTest::newRow("fills the width") << QRect(100, 50, 4000, 6000) << QSize(640, 360) << QSize()
                                     << QRect(100, 20, 4000, 2250) << none;
    QTest::newRow("fills the height")
        << QRect(0, 0, 1000, 300) << QSize(640, 360) << QSize() << QRect(233, 20, 533, 300) << none;
    QTest::newRow("second below the first") << QRect(0, 0, 700, 1000) << QSize(1280, 720) << QSize(640, 480)
                                            << QRect(0, 20, 700, 393) << QRect(0, 423, 700, 525);
    QTest::newRow("first missing") << QRect(0, 0, 700, 1000) << QSize() << QSize(640, 480) << none
                                   << QRect(0, 30, 700, 525);
}

void TestMainWindowFrames::placesOnPage() {
    QFETCH(QRect, page);
    QFETCH(QSize, first);
    QFETCH(QSize, second);
    const FramePair frames{QImage(first, QImage::Format_RGB888), QImage(second, QImage::Format_RGB888)};
    const auto places = printPlaces(page, frames, second.isValid() ? 2 : 1);
    QTEST(places[0], "place");
    QTEST(places[1], "secondPlace");
}

void TestMainWindowFrames::printing_data() {
    QTest::addColumn<int>("streams");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("two streams") << 2 << true;
    QTest::newRow("cancelled") << 2 << false;
}

void TestMainWindowFrames::printing() {
    QFETCH(int, streams);
    QFETCH(bool, accepted);
    openAndStop(streams);
    const QString pdf = viewer().path(QStringLiteral("page.pdf"));
    int pageWidth = 0;
    viewer().answers.print = [&](QPrinter& printer) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        printer.setPageSize(QPageSize(QPageSize::A4));
        pageWidth = printer.pageRect(QPrinter::DevicePixel).toRect().width();
        return accepted;
    };
    viewer().click(ButtonId::Print);
    QVERIFY(!viewer().window->isPlaying());
    QCOMPARE(QFile::exists(pdf), accepted);
    if (!accepted)
        return;
    // Both frames are as wide as the page, whatever their own size.
    QList<QRect> expected{QRect(0, 20, pageWidth, pageWidth * 360 / 640)};
    if (streams == 2)
        expected << QRect(0, expected[0].height() + 30, pageWidth, pageWidth * 270 / 480);
    QCOMPARE(imagePlaces(pdf), expected);
}

} // namespace ql240

QTEST_MAIN(ql240::TestMainWindowFrames)
#include "test_main_window_frames.moc"
