#include <QCursor>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>

#include "clips/clip.h"
#include "mainwindow/my_list_widget.h"

using namespace ql240;

namespace {

// Keeps the mouse events that the list posts.
struct Owner : QWidget {
    QList<std::pair<QEvent::Type, QPoint>> events;
    QList<Qt::MouseButton> buttons;

    bool event(QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            events << std::pair(event->type(), mouse->position().toPoint());
            buttons << mouse->button();
        }
        return QWidget::event(event);
    }
};

} // namespace

class TestMyListWidget : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void entriesReferToTheirClips();
    void pressAwayFromPointer_data();
    void pressAwayFromPointer();
    void takesNoDrop();
    void currentEntryStaysMarked();

private:
    QPoint centreOf(int row) const { return m_list->visualItemRect(m_list->item(row)).center(); }

    const Clip m_first{QFileInfo(QStringLiteral("/card/EVS_1.mp4"))};
    const Clip m_second{QFileInfo(QStringLiteral("/card/REC_1.mp4"))};
    std::unique_ptr<Owner> m_owner;
    MyListWidget* m_list = nullptr;
};

void TestMyListWidget::init() {
    m_owner = std::make_unique<Owner>();
    m_owner->resize(400, 400);
    m_list = new MyListWidget(m_owner.get());
    m_list->setGeometry(10, 10, 320, 370);
    m_list->appendClip(&m_first);
    m_list->appendClip(&m_second);
    m_list->appendName(QStringLiteral("picked.mp4"));
    m_owner->show();
    m_owner->activateWindow();
    m_list->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(m_owner.get()));
    QVERIFY(m_list->hasFocus());
    QCOMPARE(m_list->currentRow(), -1); // the focus alone chooses no clip
}

void TestMyListWidget::entriesReferToTheirClips() {
    QCOMPARE(m_list->item(1)->text(), QStringLiteral("REC_1.mp4"));
    QCOMPARE(MyListWidget::clipOf(m_list->item(0)), &m_first);
    QCOMPARE(MyListWidget::clipOf(m_list->item(2)), nullptr);
    QCOMPARE(MyListWidget::clipOf(nullptr), nullptr);
    QCOMPARE(m_list->rowOf(&m_second), 1);
    const Clip other(m_second);
    QCOMPARE(m_list->rowOf(&other), -1);
    QCOMPARE(m_list->item(2)->text(), QStringLiteral("picked.mp4"));
}

void TestMyListWidget::pressAwayFromPointer_data() {
    QTest::addColumn<QPoint>("pointer");
    QTest::addColumn<int>("posted");
    QTest::newRow("pointer elsewhere") << QPoint(333, 222) << 2;
    QTest::newRow("pointer at the screen's left edge") << QPoint(0, 222) << 0;
    QTest::newRow("pointer at the screen's top edge") << QPoint(222, 0) << 0;
}

void TestMyListWidget::pressAwayFromPointer() {
    QFETCH(QPoint, pointer);
    QFETCH(int, posted);
    QCursor::setPos(pointer);
    QMouseEvent press(QEvent::MouseButtonPress, centreOf(1), m_list->mapToGlobal(QPointF(centreOf(1))),
                      Qt::RightButton, Qt::RightButton, Qt::ShiftModifier);
    m_list->mousePressEvent(&press);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(m_list->currentRow(), -1);
    QCOMPARE(m_owner->events.size(), posted);
    if (posted) {
        QCOMPARE(m_owner->events[0], std::pair(QEvent::MouseButtonPress, QPoint(100, 100)));
        QCOMPARE(m_owner->events[1], std::pair(QEvent::MouseButtonRelease, QPoint(100, 100)));
        QCOMPARE(m_owner->buttons[1], Qt::RightButton);
    }
}

void TestMyListWidget::takesNoDrop() {
    QMimeData data;
    data.setText(QStringLiteral("/card/REC_2.mp4"));
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_list->viewport(), &enter);
    QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_list->viewport(), &drop);
    QCOMPARE(m_list->count(), 3);
}

void TestMyListWidget::currentEntryStaysMarked() {
    const auto click = [this](QPoint place, Qt::KeyboardModifiers modifiers) {
        QCursor::setPos(m_list->viewport()->mapToGlobal(place));
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, modifiers, place);
    };
    click(centreOf(1), Qt::NoModifier);
    click(centreOf(1), Qt::ControlModifier);
    QVERIFY(m_list->item(1)->isSelected());
    click(QPoint(50, 300), Qt::NoModifier);
    QVERIFY(m_list->item(1)->isSelected());
    click(centreOf(2), Qt::NoModifier);
    QCOMPARE(m_list->selectedItems(), QList{m_list->item(2)});
}

QTEST_MAIN(TestMyListWidget)
#include "test_my_list_widget.moc"
