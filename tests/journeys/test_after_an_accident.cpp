// A user finds the event of an accident on the card, goes to the impact, and saves and prints its picture.
#include <QPrinter>

#include "mainwindow/viewer.h"
#include "support/frame_code.h"
#include "support/pdf_page.h"

using namespace ql240;
using layout::ButtonId;

namespace {

constexpr int kBoundMs = 15000;
constexpr int kDurationMs = 3000;
constexpr int kImpactMs = 1500;
constexpr int kImpactFrame = 48; // two steps of 66.6666 ms after the click, at 30 frames a second
const QString kEvent = QStringLiteral("EVS_2013_04_05_12_31_07.mp4");

} // namespace

// Each function continues where the previous one stopped.
class TestAfterAnAccident : public QObject {
    Q_OBJECT

private:
    Viewer m_viewer;

private Q_SLOTS:
    void findsTheEvent() {
        m_viewer.addClip(QStringLiteral("VIDEO/") + kEvent, {.frames = kDurationMs * 30 / 1000});
        for (const char* name : {"EVS_2013_04_05_08_02_11.mp4", "REC_2013_04_05_12_30_00.mp4"})
            m_viewer.addClip(QStringLiteral("VIDEO/") + QLatin1String(name), Viewer::shortClip(300));
        // The car is at rest from the impact on.
        m_viewer.sensors.answer = [](std::int64_t ms) {
            FakeSensorLibrary::Answer answer;
            answer.speed = ms < kImpactMs ? 60 : 0;
            answer.x = ms < kImpactMs ? 0 : -256;
            return answer;
        };
        m_viewer.show();
        m_viewer.folderDialogs.choice = m_viewer.path(QStringLiteral("VIDEO"));
        m_viewer.click(ButtonId::OpenFolder);
        QTRY_VERIFY_WITH_TIMEOUT(m_viewer.player()->positionMs() > 0, kBoundMs);
        m_viewer.clickEntry(kEvent);
        QCOMPARE(m_viewer.player()->clip()->file().fileName(), kEvent);
        QTRY_VERIFY_WITH_TIMEOUT(m_viewer.panel()->state().progressValue > 0, kBoundMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_viewer.panel()->speed(), 60, kBoundMs);
        m_viewer.key(Qt::Key_Space);
        QVERIFY(!m_viewer.window->isPlaying());
    }

    void goesToTheImpact() {
        m_viewer.mouse(Qt::LeftButton, Viewer::onStrip(kImpactMs, kDurationMs));
        QCOMPARE(m_viewer.player()->positionMs(), kImpactMs);
        for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right})
            m_viewer.key(key);
        const auto shown = [this] { return readFrameNumber(m_viewer.mainView()->grab().toImage()); };
        QTRY_COMPARE_WITH_TIMEOUT(shown(), kImpactFrame, kBoundMs);
        QCOMPARE(m_viewer.player()->positionMs(), kImpactMs + 133);
        QCOMPARE(m_viewer.panel()->state().progressValue, kImpactMs + 133);
        QCOMPARE(m_viewer.panel()->speed(), 0);
        QCOMPARE(m_viewer.panel()->state().accX, std::int16_t(-256));
    }

    void takesThePictureHome() {
        m_viewer.answers.saveFile = m_viewer.path(QStringLiteral("impact.png"));
        m_viewer.key(Qt::Key_S);
        QCOMPARE(readFrameNumber(QImage(m_viewer.answers.saveFile)), kImpactFrame);
        const QString pdf = m_viewer.path(QStringLiteral("impact.pdf"));
        m_viewer.answers.print = [&](QPrinter& printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            return true;
        };
        m_viewer.key(Qt::Key_P, Qt::ControlModifier);
        const QList<QImage> images = printedImages(pdf);
        QCOMPARE(images.size(), 1);
        QCOMPARE(readFrameNumber(images[0]), kImpactFrame);
        QVERIFY(m_viewer.answers.warnings.isEmpty());
    }
};

QTEST_MAIN(TestAfterAnAccident)
#include "test_after_an_accident.moc"
