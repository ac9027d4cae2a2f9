#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
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

    void drag_data() {
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::addColumn<bool>("movable");
        QTest::addColumn<QPoint>("where");
        QTest::newRow("left") << Qt::LeftButton << true << QPoint(140, 85);
        QTest::newRow("right") << Qt::RightButton << true << QPoint(100, 100);
        QTest::newRow("not movable") << Qt::LeftButton << false << QPoint(100, 100);
    }
    void drag() {
        QFETCH(Qt::MouseButton, button);
        QFETCH(bool, movable);
        m_helper->setMovable(movable);
        press(button, {50, 60});
        moveTo({150 + 20, 160 - 10});
        moveTo({150 + 40, 160 - 15});
        QTest::mouseRelease(handle(), button, {}, {50, 60});
        moveTo({400, 400});
        QTEST(m_window->pos(), "where");
    }

    // A modal window or another grab has kept the release.
    void dragEndsWithItsButton() {
        press(Qt::LeftButton, {50, 60});
        for (const Qt::MouseButtons buttons : {Qt::RightButton, Qt::LeftButton}) {
            QMouseEvent move(QEvent::MouseMove, {90, 90}, {190, 190}, Qt::NoButton, buttons, {});
            QCoreApplication::sendEvent(m_window.get(), &move);
            QCOMPARE(m_window->pos(), QPoint(100, 100));
        }
    }

    void movingSwitchedOnWithinDrag() {
        m_helper->setMovable(false);
        press(Qt::LeftButton, {10, 10});
        moveTo({210, 160});
        QCOMPARE(m_window->pos(), QPoint(100, 100));
        m_helper->setMovable(true);
        moveTo({211, 161});
        QCOMPARE(m_window->pos(), QPoint(201, 151));
    }

    void pressOnChild_data() {
        QTest::addColumn<bool>("childTakesPress");
        QTest::newRow("label lets it through") << false;
        QTest::newRow("button keeps it") << true;
    }
    void pressOnChild() {
        QFETCH(bool, childTakesPress);
        QWidget* child = childTakesPress ? static_cast<QWidget*>(new QPushButton(m_window.get()))
                                         : new QLabel(m_window.get());
        child->setGeometry(20, 20, 100, 100);
        child->show();
        press(Qt::LeftButton, {50, 60});
        moveTo({190, 145});
        QCOMPARE(m_window->pos(), childTakesPress ? QPoint(100, 100) : QPoint(140, 85));
    }

    void fullScreenWindowStays() {
        m_window->showFullScreen();
        QTRY_COMPARE(m_window->pos(), QPoint(0, 0));
        press(Qt::LeftButton, {50, 60});
        moveTo({250, 260});
        QCOMPARE(m_window->pos(), QPoint(0, 0));
    }

    void leaveUnsetsTheHelpersCursorUnlessDragging() {
        QEvent leave(QEvent::Leave);
        m_helper->setResizable(true);
        moveTo({101, 160});
        QCOMPARE(m_window->cursor().shape(), Qt::SizeHorCursor);
        press(Qt::LeftButton, {1, 60});
        QCoreApplication::sendEvent(m_window.get(), &leave);
        QCOMPARE(m_window->cursor().shape(), Qt::SizeHorCursor);
        QTest::mouseRelease(handle(), Qt::LeftButton, {}, {1, 60});
        QCoreApplication::sendEvent(m_window.get(), &leave);
        QCOMPARE(m_window->cursor().shape(), Qt::ArrowCursor);
        m_window->setCursor(Qt::BusyCursor); // the window's own
        QCoreApplication::sendEvent(m_window.get(), &leave);
        QCOMPARE(m_window->cursor().shape(), Qt::BusyCursor);
    }

    void registrationAndGivingBack() {
        QWidget window(nullptr, Qt::Dialog);
        const Qt::WindowFlags before = window.windowFlags();
        window.show();
        FlHlp helper;
        helper.watchWindow(&window);
        QVERIFY(window.isVisible());
        QVERIFY(window.hasMouseTracking());
        QVERIFY(window.testAttribute(Qt::WA_Hover));
        QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
        QVERIFY(!(window.windowFlags() & (Qt::WindowTitleHint | Qt::WindowSystemMenuHint)));

        const Qt::WindowFlags watched = window.windowFlags();
        helper.watchWindow(&window);
        QCOMPARE(window.windowFlags(), watched);
        {
            // A record of a second registration would have saved the frameless flags.
            FlHlp other;
            other.watchWindow(&window);
        }
        QCOMPARE(window.windowFlags(), watched);
        helper.~FlHlp();
        new (&helper) FlHlp;
        QCOMPARE(window.windowFlags(), before);
        QVERIFY(window.isVisible());
        QVERIFY(!window.hasMouseTracking());
        QVERIFY(!window.testAttribute(Qt::WA_Hover));
    }

    void windowDeletedBeforeHelper() {
        auto* window = new QWidget;
        m_helper->watchWindow(window);
        QSignalSpy gone(window, &QObject::destroyed);
        delete window;
        QCOMPARE(gone.count(), 1);
        m_helper.reset();
        QVERIFY(m_window->isVisible());
    }

    void edges_data() {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<QString>("set");
        QTest::newRow("left, last pixel") << QPoint(105, 150) << "L";
        QTest::newRow("left, one beyond") << QPoint(106, 150) << "";
        QTest::newRow("right, first pixel") << QPoint(295, 150) << "R";
        QTest::newRow("right, outer bound") << QPoint(300, 150) << "R";
        QTest::newRow("top left") << QPoint(100, 100) << "LT";
        QTest::newRow("bottom right") << QPoint(300, 200) << "RB";
        QTest::newRow("outside to the left") << QPoint(99, 150) << "";
    }
    void edges() {
        QFETCH(QPoint, point);
        const EdgeFlags flags = edgesAt(point, QRect(100, 100, 200, 100));
        QString set;
        for (const auto& [on, letter] :
             {std::pair(flags.left, 'L'), {flags.right, 'R'}, {flags.top, 'T'}, {flags.bottom, 'B'}})
            set += on ? QString(QLatin1Char(letter)) : QString();
        QTEST(set, "set");
        QCOMPARE(flags.any, !set.isEmpty());
        QCOMPARE(flags.topLeft, flags.top && flags.left);
        QCOMPARE(flags.bottomRight, flags.bottom && flags.right);
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
