#include "mainwindow/my_list_widget.h"

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "clips/clip.h"
#include "mainwindow/commands.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr QPoint kPostedPosition(100, 100);

// The arrow selectors have a single colon on purpose.
constexpr char kStyleSheet[] = R"(
QListWidget {
    border: 1px solid rgb(62,62,59); color: #ffffff; font-family: 'Segoe UI', 'Arial'; font-size: 10pt;
    background-color: rgb(7,7,7);
}
QScrollBar:vertical {
    border: 1px solid rgb(62,62,59); background: rgb(7,7,7); width: 23px; margin: 20px 0px 20px 0px;
}
QScrollBar::handle:vertical {
    border: 1px solid rgb(62,62,59);
    background: qlineargradient(spread:pad, x1:1, y1:1, x2:1, y2:0,
                                stop:0 rgba(0, 0, 0, 255), stop:1 rgba(52, 52, 52, 255));
    min-height: 20px;
}
QScrollBar::add-line:vertical {
    background: rgb(7,7,7); height: 16px; subcontrol-position: bottom; subcontrol-origin: margin;
    border: 1px solid rgb(62,62,59);
}
QScrollBar::sub-line:vertical {
    background: rgb(7,7,7); height: 16px; subcontrol-position: top; subcontrol-origin: margin;
    border: 1px solid rgb(62,62,59);
}
QScrollBar:up-arrow:vertical {
    width: 23px; height: 17px; background: white; border: none; image: url(:/gfx_r/2012/list_up_1.png);
}
QScrollBar:down-arrow:vertical {
    width: 23px; height: 17px; background: white; border: none; image: url(:/gfx_r/2012/list_down_1.png);
}
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {
    background: none;
}
)";

// On Wayland the pointer's position may be unknown; then every press counts as at the pointer.
bool isAtPointer(const QMouseEvent& event, QPoint pointer) {
    return event.globalPosition().toPoint() == pointer ||
           QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

} // namespace

MyListWidget::MyListWidget(QWidget* owner) : QListWidget(owner), m_owner(owner) {
    setAccessibleName(tr("Clips"));
    setDragEnabled(true);
    setStyleSheet(QString::fromLatin1(kStyleSheet));
}

void MyListWidget::appendClip(const Clip* clip) {
    auto* item = new QListWidgetItem(shownName(clip->file().fileName()));
    item->setData(kClipRole, QVariant::fromValue(reinterpret_cast<std::uintptr_t>(clip)));
    int row = count();
    while (row > 0 && !clipOf(this->item(row - 1)))
        --row;
    insertItem(row, item);
}

void MyListWidget::appendName(const QString& fileName) {
    insertItem(count(), shownName(fileName));
}

const Clip* MyListWidget::clipOf(const QListWidgetItem* item) {
    return item ? reinterpret_cast<const Clip*>(item->data(kClipRole).value<std::uintptr_t>()) : nullptr;
}

int MyListWidget::rowOf(const Clip* clip) const {
    for (int row = 0; row < count(); ++row) {
        if (clipOf(item(row)) == clip)
            return row;
    }
    return -1;
}

int MyListWidget::rowOfPath(const QString& path) const {
    for (int row = 0; row < count(); ++row) {
        const Clip* clip = clipOf(item(row));
        if (clip && clip->file().absoluteFilePath() == path)
            return row;
    }
    return -1;
}

void MyListWidget::mousePressEvent(QMouseEvent* event) {
    const QPoint pointer = QCursor::pos();
    if (m_busy)
        event->ignore();
    else if (isAtPointer(*event, pointer))
        QListWidget::mousePressEvent(event);
    else if (pointer.x() > 0 && pointer.y() > 0)
        postClickToOwner(*event);
    else
        event->ignore();
}

void MyListWidget::focusInEvent(QFocusEvent* event) {
    const QScopedValueRollback taking(m_takingFocus, true);
    QListWidget::focusInEvent(event);
}

QModelIndex MyListWidget::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    return m_takingFocus ? QModelIndex() : QListWidget::moveCursor(action, modifiers);
}

// The entry of the open clip can't be deselected.
QItemSelectionModel::SelectionFlags MyListWidget::selectionCommand(const QModelIndex& index,
                                                                   const QEvent* event) const {
    const auto command = QListWidget::selectionCommand(index, event);
    const bool unmarks =
        !index.isValid() || (command & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle));
    return unmarks ? QItemSelectionModel::NoUpdate : command;
}

bool MyListWidget::isTyping() const {
    return m_lastTyped.isValid() && m_lastTyped.elapsed() < QApplication::keyboardInputInterval();
}

void MyListWidget::keyPressEvent(QKeyEvent* event) {
    if (passesList(*event, isTyping(), m_passesIncident)) {
        event->ignore();
        return;
    }
    if (!event->text().isEmpty())
        m_lastTyped.start();
    QListWidget::keyPressEvent(event);
}

void MyListWidget::postClickToOwner(const QMouseEvent& event) {
    m_busy = true;
    const QPointF global = m_owner->mapToGlobal(QPointF(kPostedPosition));
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QCoreApplication::postEvent(m_owner, new QMouseEvent(type, kPostedPosition, global, event.button(),
                                                             event.buttons(), Qt::NoModifier));
    }
    m_busy = false;
}

} // namespace ql240
