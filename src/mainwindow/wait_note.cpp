#include "mainwindow/wait_note.h"

#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/waits.h"
#include "widgets/plain_text.h"

namespace ql240 {

WaitNote::WaitNote(QWidget* parent)
    : QFrame(parent), m_text(new QLabel(this)), m_cancel(new QPushButton(tr("Cancel"), this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto* bar = new QProgressBar(this);
    bar->setRange(0, 0); // indeterminate: nothing is known of the duration
    bar->setTextVisible(false);
    bar->setAccessibleName(tr("Busy"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_text, 1);
    column->addWidget(bar);
    column->addWidget(m_cancel, 0, Qt::AlignRight);
    hide();
    m_delay.setSingleShot(true);
    connect(&m_delay, &QTimer::timeout, this, &WaitNote::appear);
    connect(m_cancel, &QPushButton::clicked, this, &WaitNote::cancelled);
}

void WaitNote::begin(const QString& text) {
    const QString shown = shownText(text);
    m_text->setText(fontMetrics().elidedText(shown, Qt::ElideMiddle, width() - 24));
    m_text->setToolTip(hoverText(text));
    setAccessibleName(shown);
    m_delay.start(waits::kBusyNote);
}

void WaitNote::appear() {
    show();
    raise();
    if (!window()->isFullScreen()) // in full screen every key must leave it
        m_cancel->setFocus();
}

void WaitNote::end() {
    m_delay.stop();
    hide();
}

// Keeps key presses from propagating to the window, which would run its commands.
void WaitNote::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Q_EMIT cancelled();
    event->accept();
}

} // namespace ql240
