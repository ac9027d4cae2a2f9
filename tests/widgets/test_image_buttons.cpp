#include <QHelpEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>

#include "widgets/image_buttons.h"

using namespace ql240;

namespace {

constexpr Qt::GlobalColor kSlotColours[] = {Qt::green, Qt::red, Qt::blue, Qt::gray};

struct PressCounter : QWidget {
    void mousePressEvent(QMouseEvent*) override { ++presses; }
    int presses = 0;
};

} // namespace

class TestImageButtons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        for (int slot = 0; slot < 4; ++slot) {
            QPixmap pixmap(20, 20);
            pixmap.fill(kSlotColours[slot]);
            m_images[slot] = m_dir.filePath(QString::number(slot) + ".png");
            QVERIFY(pixmap.save(m_images[slot]));
        }
    }

    void clearButtonPaints() {
        const struct {
            bool enabled, under, down, latched;
            Qt::GlobalColor colour;
        } rows[] = {{true, false, false, false, Qt::green}, {true, true, false, false, Qt::blue},
                    {true, true, true, false, Qt::red},     {true, false, true, false, Qt::green},
                    {false, true, false, false, Qt::gray},  {true, true, true, true, Qt::blue},
                    {false, false, false, true, Qt::blue}};
        for (const auto& row : rows) {
            ClearButton button(nullptr, m_images);
            button.setAttribute(Qt::WA_UnderMouse, row.under);
            button.setEnabled(row.enabled);
            button.setDown(row.down);
            button.setLatched(row.latched);
            QCOMPARE(button.size(), QSize(20, 20));
            button.resize(72, 30);
            QCOMPARE(pixel(button, {71, 29}), QColor(row.colour));
        }
    }

    void buttonFollowsMouse() {
        QWidget window;
        window.resize(100, 100);
        IconToolButton button(&window, m_images);
        button.setGeometry(40, 40, 20, 20);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const auto looks = [&button](Qt::GlobalColor colour) { return pixel(button, {10, 10}) == colour; };
        QTest::mouseMove(window.windowHandle(), QPoint(50, 50));
        QTRY_VERIFY(looks(Qt::blue));
        QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
        QTRY_VERIFY(looks(Qt::red));
        QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
        QTest::mouseMove(window.windowHandle(), QPoint(5, 5));
        QTRY_VERIFY(looks(Qt::green));
    }

    // The window gets the presses of a disabled control, and is dragged by them.
    void hoverTextAndPress() {
        PressCounter window;
        window.resize(60, 60);
        ClearButton button(&window, m_images, "Play");
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QHelpEvent help(QEvent::ToolTip, {5, 5}, button.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(&button, &help);
        QCOMPARE(QToolTip::text(), "Play");
        QToolTip::hideText();
        button.setHoverText("재생");
        QCOMPARE(button.accessibleName(), "재생");
        for (const int presses : {0, 1}) {
            QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {5, 5});
            QCOMPARE(window.presses, presses);
            button.setEnabled(false);
        }
    }

private:
    static QColor pixel(QWidget& widget, QPoint at) { return widget.grab().toImage().pixelColor(at); }

    QTemporaryDir m_dir;
    ImagePaths m_images;
};

QTEST_MAIN(TestImageButtons)
#include "test_image_buttons.moc"
