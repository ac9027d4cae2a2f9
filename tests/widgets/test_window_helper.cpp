#include <QTest>
#include <QWindow>

#include "widgets/window_helper.h"

using namespace ql240;

class TestWindowHelper : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_window = std::make_unique<QWidget>();
        m_window->setGeometry(100, 100, 300, 200);
        m_helper = std::make_unique<FlHlp>();
        m_helper->watchWindow(m_window.get());
        m_helper->setResizable(false);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->move(100, 100);
    }
    void cleanup() {
        QTest::mouseRelease(handle(), Qt::LeftButton, {}, {1, 1});
        m_helper.reset();
        m_window.reset();
    }

    void drag() {
        const struct {
            Qt::MouseButton button;
            bool movable;
            QPoint end;
        } rows[] = {{Qt::RightButton, true, {100, 100}},
                    {Qt::LeftButton, false, {100, 100}},
                    {Qt::LeftButton, true, {140, 85}}};
        for (const auto& row : rows) {
            m_helper->setMovable(row.movable);
            press(row.button, {50, 60});
            moveTo({150 + 20, 160 - 10});
            moveTo({150 + 40, 160 - 15});
            QTest::mouseRelease(handle(), row.button, {}, {50, 60});
            moveTo({400, 400});
            QCOMPARE(m_window->pos(), row.end);
        }
    }

    // A modal window or another grab has received the release.
    void dragEndsWithItsButton() {
        press(Qt::LeftButton, {50, 60});
        for (const Qt::MouseButtons buttons : {Qt::RightButton, Qt::LeftButton}) {
            QMouseEvent move(QEvent::MouseMove, {90, 90}, {190, 190}, Qt::NoButton, buttons, {});
            QCoreApplication::sendEvent(m_window.get(), &move);
            QCOMPARE(m_window->pos(), QPoint(100, 100));
        }
    }

    void fullScreenWindowStays() {
        m_window->showFullScreen();
        QTRY_COMPARE(m_window->pos(), QPoint(0, 0));
        press(Qt::LeftButton, {50, 60});
        moveTo({250, 260});
        QCOMPARE(m_window->pos(), QPoint(0, 0));
    }

    void leavesTheWindowsOwnCursor() {
        m_window->setCursor(Qt::BusyCursor);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_window.get(), &leave);
        QCOMPARE(m_window->cursor().shape(), Qt::BusyCursor);
    }

    void registrationAndGivingBack() {
        QWidget window(nullptr, Qt::Dialog);
        const Qt::WindowFlags before = window.windowFlags();
        window.show();
        {
            FlHlp helper;
            helper.watchWindow(&window);
            QVERIFY(window.isVisible() && window.hasMouseTracking() && window.testAttribute(Qt::WA_Hover));
            QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
            QVERIFY(!(window.windowFlags() & (Qt::WindowTitleHint | Qt::WindowSystemMenuHint)));
            helper.watchWindow(&window); // a second record would save the frameless flags
            auto* gone = new QWidget;
            helper.watchWindow(gone);
            delete gone;
        }
        QCOMPARE(window.windowFlags(), before);
        QVERIFY(window.isVisible() && !window.hasMouseTracking() && !window.testAttribute(Qt::WA_Hover));
    }

private:
    void press(Qt::MouseButton button, QPoint at) { QTest::mousePress(handle(), button, {}, at); }
    void moveTo(QPoint screen) { QTest::mouseMove(handle(), m_window->mapFromGlobal(screen)); }
    QWindow* handle() const { return m_window->windowHandle(); }

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<FlHlp> m_helper;
};

QTEST_MAIN(TestWindowHelper)
#include "test_window_helper.moc"
