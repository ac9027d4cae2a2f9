// Mouse, keys, drops, full screen, and the events of the window itself.
#include <QAbstractButton>
#include <QDropEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <utility>

#include "mainwindow/commands.h"
#include "mainwindow/incident_desk.h"
#include "mainwindow/keys_window.h"
#include "mainwindow/main_window.h"
#include "mainwindow/my_list_widget.h"
#include "playback/video_view.h"
#include "sensors/widget_progress.h"
#include "widgets/skin_window.h"

namespace ql240 {

using layout::ButtonId;

namespace {

// Includes one pixel beyond the right and the bottom edge.
bool holds(const QRect& rect, QPoint point) {
    return rect.left() <= point.x() && point.x() <= rect.left() + rect.width() && rect.top() <= point.y() &&
           point.y() <= rect.top() + rect.height();
}

bool isMoveForView(QPoint point) {
    return layout::kMoveLeft <= point.x() && point.x() <= layout::kMoveRight &&
           layout::kMoveTop <= point.y() && point.y() <= layout::kMoveBottom;
}

} // namespace

void MainWindow::enterFullScreen() {
    if (m_incident)
        m_incident->close();
    if (m_keysWindow)
        m_keysWindow->close();
    m_mainView->setFocus();
    m_fullScreen.enter();
    setFullScreenLayout();
}

void MainWindow::leaveFullScreen() {
    m_fullScreen.leave();
    setNormalLayout();
}

// The window system reports the full-screen size asynchronously.
void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (m_fullScreen.isWanted() && isFullScreen())
        setFullScreenLayout();
}

VideoView* MainWindow::bigView() const {
    return m_mainView->x() == layout::kMainView.x() ? m_mainView : m_subView;
}

bool MainWindow::handToPanel(const QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    if (!holds(m_progressPanel->geometry(), point))
        return false;
    QMouseEvent handed(event.type(), event.position() - m_progressPanel->pos(), event.globalPosition(),
                       event.button(), event.buttons(), Qt::NoModifier);
    // The second press of a double click counts as a press too.
    if (event.type() == QEvent::MouseButtonRelease)
        m_progressPanel->mouseReleaseEvent(&handed);
    else
        m_progressPanel->mousePressEvent(&handed);
    return true;
}

void MainWindow::mousePressEvent(QMouseEvent* event) {
    if (m_zoomWinMode)
        bigView()->mousePressEvent(event);
    else
        handToPanel(*event);
}

void MainWindow::mouseMoveEvent(QMouseEvent* event) {
    if (m_zoomWinMode || isMoveForView(event->position().toPoint()))
        bigView()->mouseMoveEvent(event);
}

void MainWindow::mouseReleaseEvent(QMouseEvent* event) {
    for (VideoView* view : {m_mainView, m_subView})
        view->endDrag(event->button());
    if (isFullScreen())
        leaveFullScreen();
    else if (event->button() == Qt::RightButton && holds(m_mainView->geometry(), event->position().toPoint()))
        enterFullScreen();
    else if (event->button() == Qt::LeftButton)
        handToPanel(*event);
}

// In full screen Tab is an ordinary key and must arrive as a key press.
bool MainWindow::focusNextPrevChild(bool next) {
    return !isFullScreen() && QMainWindow::focusNextPrevChild(next);
}

// A held key that entered full screen must not leave it by auto-repeat.
void MainWindow::keyPressEvent(QKeyEvent* event) {
    if (isFullScreen()) {
        if (!event->isAutoRepeat())
            leaveFullScreen();
    } else if (!runCommandKey(*event) && !handToList(event)) {
        QMainWindow::keyPressEvent(event);
    }
}

// Moving in the list and typing a name go to the list, whichever widget has the focus.
bool MainWindow::handToList(QKeyEvent* event) {
    const bool moves = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    const bool types = !event->text().isEmpty() && event->text().front().isPrint() &&
                       !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (!(moves || types) || focusWidget() == m_clipList || !m_clipList->isEnabled())
        return false;
    m_clipList->setFocus();
    return QCoreApplication::sendEvent(m_clipList, event);
}

bool MainWindow::runCommandKey(const QKeyEvent& event) {
    const Command* command = commandOf(event, m_incident && m_incident->isOpen());
    if (command && (!event.isAutoRepeat() || command->repeats))
        run(*command);
    return command;
}

void MainWindow::run(const Command& command) {
    if (command.button) {
        button(*command.button)->click();
        return;
    }
    switch (command.id) {
        case CommandId::PlayOrPause:
            button(m_playing ? ButtonId::Pause : ButtonId::Play)->click();
            break;
        case CommandId::FullScreen:
            enterFullScreen();
            break;
        case CommandId::Keys:
            if (!m_keysWindow)
                m_keysWindow = makeKeysWindow(this);
            m_keysWindow->toggle();
            break;
        default:
            runInIncident(command);
    }
}

void MainWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), m_background);
    if (!m_painted) {
        m_painted = true;
        QTimer::singleShot(0, this, &MainWindow::firstPainted);
    }
}

void MainWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) {
        setWindowTitle(tr("QL240 Viewer"));
        event->accept();
        return;
    }
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || isMinimized() || m_fullScreen.agrees())
        return;
    // Either the window manager has left full screen on its own, or a compositor granted it only after the
    // user had left it. The user may enter it again before the timer fires.
    QTimer::singleShot(0, this, [this] {
        if (!m_fullScreen.agrees() && !isMinimized())
            leaveFullScreen();
    });
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    m_dropped = droppedOf(*event->mimeData());
    if (m_dropped)
        event->acceptProposedAction();
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
    // The list takes no drops, and the window takes none over it.
    if (m_clipList->isVisible() && m_clipList->geometry().contains(event->position().toPoint()))
        event->ignore();
    else
        event->acceptProposedAction();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*) {
    m_dropped.reset();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const auto dropped = std::exchange(m_dropped, std::nullopt);
    if (m_clipList->isVisible() && m_clipList->geometry().contains(event->position().toPoint()))
        return;
    event->acceptProposedAction();
    if (dropped)
        readFolder(dropped->folder, dropped->clipName, true);
}

} // namespace ql240
