#include <QHelpEvent>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>

#include "widgets/image_buttons.h"

using namespace ql240;
using State = QStyle::State;

Q_DECLARE_METATYPE(ql240::ImageSlot)
Q_DECLARE_METATYPE(QStyle::State)

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
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void slotOfState_data() {
        QTest::addColumn<State>("state");
        QTest::addColumn<ImageSlot>("slot");
        const State enabled = QStyle::State_Enabled;
        QTest::newRow("idle") << enabled << ImageSlot::Normal;
        QTest::newRow("hovered") << (enabled | QStyle::State_MouseOver) << ImageSlot::Hover;
        QTest::newRow("pressed") << (enabled | QStyle::State_MouseOver | QStyle::State_Sunken)
                                 << ImageSlot::Pressed;
        QTest::newRow("checked, hovered")
            << (enabled | QStyle::State_MouseOver | QStyle::State_On) << ImageSlot::Pressed;
        QTest::newRow("pressed, pointer away") << (enabled | QStyle::State_Sunken) << ImageSlot::Normal;
        QTest::newRow("checked, pointer away") << (enabled | QStyle::State_On) << ImageSlot::Normal;
        QTest::newRow("disabled") << State(QStyle::State_None) << ImageSlot::Disabled;
        QTest::newRow("disabled, hovered") << State(QStyle::State_MouseOver) << ImageSlot::Disabled;
    }
    void slotOfState() {
        QFETCH(State, state);
        QFETCH(ImageSlot, slot);
        QCOMPARE(imageSlot(state), slot);
    }

    void clearButtonPaints_data() {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("down");
        QTest::addColumn<bool>("latched");
        QTest::addColumn<int>("slot");
        QTest::newRow("normal") << true << false << false << 0;
        QTest::newRow("pressed") << true << true << false << 1;
        QTest::newRow("disabled") << false << false << false << 3;
        QTest::newRow("latched") << true << false << true << 2;
        QTest::newRow("latched, pressed") << true << true << true << 2;
        QTest::newRow("latched, disabled") << false << false << true << 2;
    }
    void clearButtonPaints() {
        QFETCH(bool, enabled);
        QFETCH(bool, down);
        QFETCH(bool, latched);
        QFETCH(int, slot);
        ClearButton button(nullptr, makeImages({36, 36}));
        QCOMPARE(button.size(), QSize(36, 36));
        button.setAttribute(Qt::WA_UnderMouse, down);
        button.setEnabled(enabled);
        button.setDown(down);
        button.setLatched(latched);
        button.resize(72, 20);
        for (const QPoint corner : {QPoint(0, 0), QPoint(71, 19)})
            QCOMPARE(pixel(button, corner), QColor(kSlotColours[slot]));
    }

    void buttonFollowsMouse() {
        QWidget window;
        window.resize(100, 100);
        IconToolButton button(&window, makeImages({20, 20}));
        button.setGeometry(40, 40, 20, 20);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QPoint middle(10, 10);
        QTest::mouseMove(window.windowHandle(), QPoint(50, 50));
        QTRY_COMPARE(pixel(button, middle), QColor(Qt::blue));
        QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
        QTRY_COMPARE(pixel(button, middle), QColor(Qt::red));
        QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
        QTest::mouseMove(window.windowHandle(), QPoint(5, 5));
        QTRY_COMPARE(pixel(button, middle), QColor(Qt::green));
    }

    void textLiesOverPicture() {
        IconToolButton button(nullptr, makeImages({80, 30}));
        button.resize(80, 30);
        button.setText(QStringLiteral("■■■"));
        const QImage picture = button.grab().toImage();
        int text = 0;
        for (int x = 0; x < 80; ++x)
            text += picture.pixelColor(x, 15) == QColor(200, 200, 200);
        QVERIFY(text > 6);
        QCOMPARE(picture.pixelColor(0, 15), QColor(Qt::green));
    }

    void iconButtonFitsIconSize() {
        IconButton button(nullptr, makeImages({243, 22}), {196, 22});
        button.resize(216, 62);
        button.setAttribute(Qt::WA_TranslucentBackground);
        const QImage picture = button.grab().toImage();
        // 243 × 22 shrinks to 196 × 18, which stands at (10, 22).
        QCOMPARE(picture.pixelColor(10, 30), QColor(Qt::green));
        QCOMPARE(picture.pixelColor(205, 30), QColor(Qt::green));
        for (const QPoint outside : {QPoint(8, 30), QPoint(207, 30), QPoint(100, 19), QPoint(100, 43)})
            QVERIFY(picture.pixelColor(outside) != QColor(Qt::green));
    }

    void iconButtonWithoutPressedPictureIsBlank() {
        ImagePaths images = makeImages({20, 20});
        images[1] = m_dir.filePath(QStringLiteral("missing.png"));
        IconButton button(nullptr, images, {20, 20});
        button.resize(20, 20);
        QVERIFY(pixel(button, {10, 10}) != QColor(Qt::green));
    }

    void hoverText() {
        ClearButton button(nullptr, makeImages({20, 20}), QStringLiteral("Play"));
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        QHelpEvent help(QEvent::ToolTip, {5, 5}, button.mapToGlobal(QPoint(5, 5)));
        QVERIFY(QCoreApplication::sendEvent(&button, &help));
        QCOMPARE(QToolTip::text(), QStringLiteral("Play"));
        QCOMPARE(button.accessibleName(), QStringLiteral("Play"));
        button.setHoverText(QStringLiteral("재생"));
        QCOMPARE(button.accessibleName(), QStringLiteral("재생"));
        QToolTip::hideText();

        ClearButton silent(nullptr, makeImages({20, 20}));
        silent.setToolTip(QString());
        QTRY_VERIFY(!QToolTip::isVisible());
        QCoreApplication::sendEvent(&silent, &help);
        QVERIFY(!QToolTip::isVisible());
    }

    // The press of a disabled control belongs to the window, which is dragged by it.
    void disabledClearButtonLetsPressThrough() {
        PressCounter window;
        window.resize(60, 60);
        ClearButton button(&window, makeImages({20, 20}));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {5, 5});
        QCOMPARE(window.presses, 0);
        button.setEnabled(false);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {5, 5});
        QCOMPARE(window.presses, 1);
    }

private:
    ImagePaths makeImages(QSize size) const {
        ImagePaths paths;
        for (int slot = 0; slot < 4; ++slot) {
            QPixmap pixmap(size);
            pixmap.fill(kSlotColours[slot]);
            paths[slot] =
                m_dir.filePath(QStringLiteral("%1x%2_%3.png").arg(size.width()).arg(size.height()).arg(slot));
            pixmap.save(paths[slot]);
        }
        return paths;
    }

    static QColor pixel(QWidget& widget, QPoint at) { return widget.grab().toImage().pixelColor(at); }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestImageButtons)
#include "test_image_buttons.moc"
