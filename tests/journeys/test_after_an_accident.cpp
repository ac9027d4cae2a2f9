// Somebody was in an accident: finds the event on the card, goes to the moment of the impact, looks closer,
// and takes the picture home as a file and on paper.
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
constexpr int kImpactFrame = 48; // two steps of 66.6666 ms behind the place clicked, 30 frames a second
const QString kEvent = QStringLiteral("EVS_2013_04_05_12_31_07.mp4");

// Where the first bright row and the first bright column begin.
QPoint brightCorner(const QImage& image) {
    QPoint corner(image.width(), image.height());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) > 100)
                corner = {std::min(corner.x(), x), std::min(corner.y(), y)};
        }
    }
    return corner;
}

} // namespace

class TestAfterAnAccident : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void story();

private:
    void opensTheCard();
    void findsTheEvent();
    void goesToTheImpact();
    void looksCloser();
    void savesThePicture();
    void printsIt();

    int grabbedFrame() { return readFrameNumber(m_viewer.player()->frame(0, true)); }
    QImage shown() { return m_viewer.mainView()->grab().toImage(); }
    void dragOnVideo(QPoint from, QPoint to);

    Viewer m_viewer;
};

void TestAfterAnAccident::story() {
    for (const auto step : {&TestAfterAnAccident::opensTheCard, &TestAfterAnAccident::findsTheEvent,
                            &TestAfterAnAccident::goesToTheImpact, &TestAfterAnAccident::looksCloser,
                            &TestAfterAnAccident::savesThePicture, &TestAfterAnAccident::printsIt}) {
        (this->*step)();
        if (QTest::currentTestFailed())
            return;
    }
}

void TestAfterAnAccident::opensTheCard() {
    TestClipSpec event;
    event.frames = kDurationMs * event.rate / 1000;
    m_viewer.addClip(QStringLiteral("VIDEO/") + kEvent, event);
    for (const char* name : {"EVS_2013_04_05_08_02_11.mp4", "REC_2013_04_05_12_30_00.mp4"})
        m_viewer.addClip(QStringLiteral("VIDEO/") + QLatin1String(name), Viewer::shortClip(300));
    // The car stands still from the impact on.
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
}

void TestAfterAnAccident::findsTheEvent() {
    m_viewer.clickEntry(kEvent);
    QCOMPARE(m_viewer.player()->clip()->file().fileName(), kEvent);
    QTRY_VERIFY_WITH_TIMEOUT(m_viewer.panel()->state().progressValue > 0, kBoundMs);
    QCOMPARE(m_viewer.panel()->speed(), 60);
    m_viewer.key(Qt::Key_Space);
    QVERIFY(!m_viewer.window->isPlaying());
}

void TestAfterAnAccident::goesToTheImpact() {
    m_viewer.mouse(Qt::LeftButton, Viewer::onStrip(kImpactMs, kDurationMs));
    QCOMPARE(m_viewer.player()->positionMs(), kImpactMs);
    for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right})
        m_viewer.key(key);
    QTRY_COMPARE_WITH_TIMEOUT(grabbedFrame(), kImpactFrame, kBoundMs);
    QTRY_COMPARE_WITH_TIMEOUT(readFrameNumber(shown()), kImpactFrame, kBoundMs);
    QCOMPARE(m_viewer.player()->positionMs(), kImpactMs + 133);
    QCOMPARE(m_viewer.panel()->state().progressValue, kImpactMs + 133);
    QCOMPARE(m_viewer.panel()->speed(), 0);
    QCOMPARE(m_viewer.panel()->state().accX, std::int16_t(-256));
}

void TestAfterAnAccident::dragOnVideo(QPoint from, QPoint to) {
    QWindow* window = m_viewer.window->windowHandle();
    QTest::mouseMove(window, from);
    QTest::mousePress(window, Qt::LeftButton, {}, from);
    QTest::mouseMove(window, to);
    QTest::mouseRelease(window, Qt::LeftButton, {}, to);
}

void TestAfterAnAccident::looksCloser() {
    const QImage whole = shown();
    m_viewer.click(ButtonId::ZoomIn);
    m_viewer.click(ButtonId::ZoomIn);
    QTRY_VERIFY_WITH_TIMEOUT(shown() != whole, kBoundMs);
    const QPoint windowBefore = m_viewer.window->pos();
    m_viewer.click(ButtonId::Pan);
    // The way of the drag is where the corner of the picture goes.
    const QPoint way(40, 30);
    dragOnVideo({300, 200}, QPoint(300, 200) + way);
    QTRY_COMPARE_WITH_TIMEOUT(brightCorner(shown()), way, kBoundMs);
    QCOMPARE(m_viewer.window->pos(), windowBefore);
    m_viewer.click(ButtonId::Pan);
}

void TestAfterAnAccident::savesThePicture() {
    m_viewer.answers.saveFile = m_viewer.path(QStringLiteral("impact.png"));
    m_viewer.key(Qt::Key_S);
    const QImage saved(m_viewer.answers.saveFile);
    QCOMPARE(saved.size(), QSize(640, 360));
    QCOMPARE(readFrameNumber(saved), kImpactFrame);
    const auto greys = readGreyLevels(saved);
    for (std::size_t i = 0; i < greys.size(); ++i)
        QVERIFY2(std::abs(greys[i] - kGreyLevels[i]) <= 4, qPrintable(QString::number(greys[i])));
}

void TestAfterAnAccident::printsIt() {
    const QString pdf = m_viewer.path(QStringLiteral("impact.pdf"));
    int pageWidth = 0;
    m_viewer.answers.print = [&](QPrinter& printer) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        pageWidth = printer.pageRect(QPrinter::DevicePixel).toRect().width();
        return true;
    };
    m_viewer.key(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(imagePlaces(pdf), QList<QRect>({QRect(0, 20, pageWidth, pageWidth * 360 / 640)}));
    const QList<QImage> images = printedImages(pdf);
    QCOMPARE(images.size(), 1);
    QCOMPARE(images[0].size(), QSize(640, 360));
    QCOMPARE(readFrameNumber(images[0]), kImpactFrame);
    QVERIFY(m_viewer.answers.warnings.isEmpty());
}

QTEST_MAIN(TestAfterAnAccident)
#include "test_after_an_accident.moc"
