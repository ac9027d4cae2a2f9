#include "platform/gstreamer/video_window.h"

#include <QEvent>
#include <QPainter>

#include "platform/gstreamer/frame_slot.h"

namespace ql240::gstreamer {

VideoWindow::VideoWindow(std::shared_ptr<FrameSlot> slot, QWidget* host)
    : QWidget(host), m_slot(std::move(slot)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

VideoWindow::~VideoWindow() {
    m_slot->setTarget(nullptr, {});
}

bool VideoWindow::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::Move:
        case QEvent::Resize:
            retarget();
            break;
        default:
            if (event->type() == FrameSlot::kFrameReady) {
                update();
                return true;
            }
    }
    return QWidget::event(event);
}

// When zoomed in, only the part inside the host is converted.
void VideoWindow::retarget() {
    const qreal ratio = devicePixelRatioF();
    const QSize device = (QSizeF(size()) * ratio).toSize();
    m_visible = isVisible() ? rect().intersected(parentWidget()->rect().translated(-pos())) : QRect();
    const QRectF seen(m_visible.topLeft() * ratio, QSizeF(m_visible.size()) * ratio);
    m_slot->setTarget(m_visible.isEmpty() ? nullptr : this,
                      {device, seen.toAlignedRect() & QRect(QPoint(), device)});
}

void VideoWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QImage& picture = m_slot->takePicture();
    if (picture.isNull()) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(m_visible, picture);
}

} // namespace ql240::gstreamer
