#include <QPrinter>

#include "mainwindow/frame_output.h"
#include "mainwindow/viewer.h"
#include "support/frame_code.h"
#include "support/pdf_page.h"

using namespace ql240;

using layout::ButtonId;

constexpr int kFrameAfterThreeSteps = 5; // 199.9998 ms at 30 frames a second

class TestMainWindowFrames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_viewer = std::make_unique<Viewer>(); }
    void cleanup() { m_viewer.reset(); }

    void nothingPlayedYet() {
        viewer().show();
        viewer().window->OnSlotssnapshot();
        viewer().window->OnSlotsprint();
        const QString warning = QStringLiteral("QL240 Viewer: Play first");
        QCOMPARE(viewer().answers.warnings, QStringList({warning, warning}));
        QVERIFY(viewer().answers.asked.isEmpty());
    }

    void snapshotSavesTheFrameOnScreen() {
        openAndStop(1);
        viewer().answers.saveFile = viewer().path(QStringLiteral("a.png"));
        const QString earliest = snapshotName(QDateTime::currentDateTime());
        viewer().click(ButtonId::Snapshot);
        const QStringList asked = viewer().answers.asked;
        QCOMPARE(asked, QStringList({"QL240 Save File", asked.value(1), "Image Files (*.png *.jpg)"}));
        QVERIFY(earliest <= asked[1] && asked[1] <= snapshotName(QDateTime::currentDateTime()));
        const QDateTime evening(QDate(2024, 1, 2), QTime(23, 4, 5));
        QCOMPARE(snapshotName(evening), QStringLiteral("QL24020240102230405.jpg"));
        const QImage saved(viewer().answers.saveFile);
        QCOMPARE(saved.size(), QSize(640, 360));
        QCOMPARE(readFrameNumber(saved), kFrameAfterThreeSteps);
        QCOMPARE(QDir(viewer().folder.path()).entryList({QStringLiteral("a*.png")}).size(), 1);
        // A playing clip is paused and stays paused.
        viewer().click(ButtonId::Play);
        viewer().click(ButtonId::Snapshot);
        QVERIFY(!viewer().window->isPlaying());
        QVERIFY(!viewer().player()->isRunning());
    }

    // The picture replaces a link, dangling or not, and leaves its target alone.
    void snapshotFollowsNoLink() {
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

    void refusedNames() {
        openAndStop(1);
        for (const char* name : {"", "abcd"}) { // names of up to four letters
            viewer().answers.warnings.clear();
            viewer().answers.saveFile = name;
            viewer().click(ButtonId::Snapshot);
            QCOMPARE(viewer().answers.warnings, QStringList("QL240: Save File Cancelled"));
        }
    }

    void secondStreamGetsItsOwnFile() {
        openAndStop(2);
        viewer().answers.saveFile = viewer().path(QStringLiteral("shot.png"));
        viewer().click(ButtonId::Snapshot);
        QCOMPARE(QImage(viewer().path(QStringLiteral("shot.png"))).size(), QSize(640, 360));
        QCOMPARE(QImage(viewer().path(QStringLiteral("shot_2.png"))).size(), QSize(480, 270));
        QVERIFY(!viewer().subView()->isVisible());
    }

    void secondNames() {
        QVERIFY(QFile(viewer().path("taken_2.png")).open(QFile::WriteOnly));
        QVERIFY(QFile::link("nothing", viewer().path("link_2.png")));
        const std::pair<const char*, const char*> names[] = {{"a.b.jpg", "a.b_2.jpg"},
                                                             {"taken.png", "taken_3.png"},
                                                             {"link.png", "link_3.png"},
                                                             {"x.y/shot", "x.y/shot_2"},
                                                             {"%1/%2 %3.png", "%1/%2 %3_2.png"}};
        for (const auto& [first, second] : names)
            QCOMPARE(secondSnapshotPath(viewer().path(first)), viewer().path(second));
    }

    void placesOnPage() {
        const struct {
            QRect page;
            QSize first, second;
            QRect place, secondPlace;
        } rows[] = {{{100, 50, 4000, 6000}, {640, 360}, {}, {100, 20, 4000, 2250}, {}},
                    {{0, 0, 1000, 300}, {640, 360}, {}, {233, 20, 533, 300}, {}},
                    {{0, 0, 700, 1000}, {}, {640, 480}, {}, {0, 30, 700, 525}}};
        for (const auto& row : rows) {
            const auto image = [](QSize size) { return QImage(size, QImage::Format_RGB888); };
            const auto places =
                printPlaces(row.page, {image(row.first), image(row.second)}, row.second.isValid() ? 2 : 1);
            QCOMPARE(places[0], row.place);
            QCOMPARE(places[1], row.secondPlace);
        }
    }

    void printing() {
        openAndStop(2);
        const QString pdf = viewer().path("page.pdf");
        for (const bool accepted : {false, true}) {
            int width = 0;
            viewer().answers.print = [&](QPrinter& printer) {
                printer.setOutputFormat(QPrinter::PdfFormat);
                printer.setOutputFileName(pdf);
                printer.setPageSize(QPageSize(QPageSize::A4));
                width = printer.pageRect(QPrinter::DevicePixel).toRect().width();
                return accepted;
            };
            viewer().click(ButtonId::Play);
            viewer().click(ButtonId::Print);
            QVERIFY(!viewer().window->isPlaying());
            QCOMPARE(QFile::exists(pdf), accepted);
            // Both frames are as wide as the page, whatever their own size.
            const int height = width * 360 / 640;
            if (accepted)
                QCOMPARE(imagePlaces(pdf), QList<QRect>({QRect(0, 20, width, height),
                                                         QRect(0, height + 30, width, width * 270 / 480)}));
        }
    }

private:
    Viewer& viewer() { return *m_viewer; }
    void openAndStop(int streams) {
        TestClipSpec spec;
        spec.videoStreams = streams;
        viewer().playCard({"REC_2013_04_05_12_29_00.mp4"}, spec);
        viewer().click(ButtonId::Stop);
        QTRY_VERIFY_WITH_TIMEOUT(viewer().isAtStart(), kWaitMs);
        for (int step = 0; step < 3; ++step)
            viewer().click(ButtonId::FrameForward);
        QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(viewer().player()->frame(0, true)), kFrameAfterThreeSteps,
                                  kWaitMs);
    }

    std::unique_ptr<Viewer> m_viewer;
};

QTEST_MAIN(TestMainWindowFrames)
#include "test_main_window_frames.moc"
