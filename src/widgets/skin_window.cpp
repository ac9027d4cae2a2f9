#include "widgets/skin_window.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include "widgets/fonts.h"
#include "widgets/image_buttons.h"
#include "widgets/window_helper.h"

namespace ql240 {
namespace {

constexpr int kTitleHeight = 30;
constexpr int kBorder = 1;
constexpr int kTitleLeft = 14;
constexpr QSize kCloseSize(21, 19);
constexpr QPoint kCloseInset(21, 6); // from the upper right corner, as in the main window
constexpr int kTitlePoints = 10;

} // namespace

SkinWindow::SkinWindow(QWidget* beside, const QString& title, QWidget* contents)
    : QWidget(beside, Qt::Window | Qt::FramelessWindowHint), m_beside(beside), m_helper(new FlHlp(this)) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(title);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kBorder, kTitleHeight, kBorder, kBorder);
    column->addWidget(contents);
    m_close = new ClearButton(this, controlImages(QStringLiteral("exit_")));
    m_close->setAccessibleName(tr("Close"));
    connect(m_close, &QAbstractButton::clicked, this, &QWidget::close);
    m_helper->watchWindow(this);
    m_helper->setResizable(false);
    const QList<QWidget*> parts = findChildren<QWidget*>();
    for (QWidget* part : parts)
        part->setContextMenuPolicy(Qt::NoContextMenu);
    setContextMenuPolicy(Qt::NoContextMenu);
}

void SkinWindow::open() {
    if (!m_isPlaced)
        place();
    show();
    raise();
    activateWindow();
}

// To the right of the main window, or to its left, or else over it, inside the screen.
void SkinWindow::place() {
    m_isPlaced = true;
    const QRect screen = m_beside->screen()->availableGeometry();
    resize(sizeHint().boundedTo(screen.size()));
    const QRect main = m_beside->frameGeometry();
    int x = main.right() + 1;
    if (x + width() > screen.right() + 1)
        x = main.left() - width() >= screen.left() ? main.left() - width() : screen.right() + 1 - width();
    const int y = std::max(screen.top(), std::min(main.top(), screen.bottom() + 1 - height()));
    move(std::max(screen.left(), x), y);
}

void SkinWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous())
        Q_EMIT shown();
}

void SkinWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        Q_EMIT closed();
}

void SkinWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void SkinWindow::resizeEvent(QResizeEvent*) {
    m_close->setGeometry(
        {QPoint(width() - kCloseInset.x() - kCloseSize.width(), kCloseInset.y()), kCloseSize});
}

void SkinWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), skin_colours::kGround);
    painter.setPen(skin_colours::kLine);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setFont(uiFont(kTitlePoints));
    painter.setPen(skin_colours::kText);
    painter.drawText(QRect(kTitleLeft, 0, width(), kTitleHeight), Qt::AlignLeft | Qt::AlignVCenter,
                     windowTitle());
}

} // namespace ql240
