// The frameless window on a Wayland desktop with pointer and keyboard, where the compositor moves it.
#include <QProcess>

#include "mainwindow/viewer.h"

using namespace ql240;

namespace {

constexpr QPoint kOnVideo(300, 200);

// The pointer in a window, from its events.
struct PointerWatch : QObject {
    QPoint place;
    bool isInside = false;
    bool isPressed = false;

    bool eventFilter(QObject*, QEvent* event) override {
        if (auto* pointer = dynamic_cast<QSinglePointEvent*>(event)) {
            place = pointer->position().toPoint();
            isInside = true;
        }
        if (event->type() == QEvent::Leave)
            isInside = false;
        if (event->type() == QEvent::MouseButtonPress)
            isPressed = true;
        return false;
    }
};

void desktop(const QStringList& arguments) {
    QCOMPARE(QProcess::execute("xdotool", arguments), 0);
}
void movePointer(QPoint place) {
    desktop({"mousemove", QString::number(place.x()), QString::number(place.y())});
}

} // namespace

class TestWindowDrag : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theCompositorMovesTheWindow() {
        if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
            QSKIP("only where the compositor moves windows");
        Viewer viewer;
        viewer.show();
        PointerWatch watch;
        viewer.window->windowHandle()->installEventFilter(&watch);

        // The window covers the middle of the desktop, wherever it was put.
        const QPoint middle(640, 450);
        movePointer(QPoint(5, 5)); // it may be in the middle already, without an event
        movePointer(middle);
        QTRY_VERIFY_WITH_TIMEOUT(watch.isInside, kWaitMs);
        const QPoint start = middle - watch.place + kOnVideo;
        movePointer(start);
        QTRY_COMPARE_WITH_TIMEOUT(watch.place, kOnVideo, kWaitMs);

        desktop({"mousedown", "1"});
        QTRY_VERIFY_WITH_TIMEOUT(watch.isPressed, kWaitMs);
        movePointer(start + QPoint(5, -5));
        QTRY_VERIFY_WITH_TIMEOUT(!watch.isInside, kWaitMs); // the compositor has taken over the pointer
        movePointer(start + QPoint(70, -40));
        desktop({"mouseup", "1"});
        QTRY_VERIFY_WITH_TIMEOUT(watch.isInside, kWaitMs);
        // The window has followed.
        QVERIFY2((watch.place - kOnVideo).manhattanLength() <= 10,
                 qPrintable(QString::number(watch.place.x())));

        desktop({"click", "3"});
        QTRY_VERIFY_WITH_TIMEOUT(viewer.window->isFullScreen(), kWaitMs);
        desktop({"key", "a"});
        QTRY_VERIFY_WITH_TIMEOUT(!viewer.window->isFullScreen(), kWaitMs);
    }
};

QTEST_MAIN(TestWindowDrag)
#include "test_window_drag.moc"
