#include "incident/strip_marks.h"

#include <QEvent>
#include <QPainter>

#include "sensors/panel_layout.h"

namespace ql240 {
namespace {

constexpr QColor kMark(134, 230, 217); // the skin's accent
constexpr int kMarkTop = 3;
constexpr int kMarkHalf = 4;
constexpr int kBarTop = 11;
constexpr int kBarHeight = 3;

// The sibling that is stacked directly above the widget; null for the topmost.
QWidget* siblingAbove(const QWidget& widget) {
    const QObjectList& siblings = widget.parentWidget()->children();
    for (qsizetype i = siblings.indexOf(&widget) + 1; i < siblings.size(); ++i) {
        if (siblings[i]->isWidgetType())
            return static_cast<QWidget*>(siblings[i]);
    }
    return nullptr;
}

} // namespace

StripMarks::StripMarks(QWidget* panel) : QWidget(panel->parentWidget()), m_panel(panel) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    if (QWidget* above = siblingAbove(*panel); above && above != this)
        stackUnder(above);
    panel->installEventFilter(this);
    follow();
}

bool StripMarks::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::Move:
        case QEvent::Resize:
            follow();
            break;
        default:
            break;
    }
    return false;
}

void StripMarks::follow() {
    setGeometry(m_panel->x(), m_panel->y(), m_panel->width(), panel::kTraceTop);
    setVisible(m_panel->isVisible());
}

void StripMarks::setState(const State& state) {
    if (state == m_state)
        return;
    m_state = state;
    update();
}

void StripMarks::paintEvent(QPaintEvent*) {
    if (m_state.durationMs <= 0)
        return;
    const auto x = [this](std::int64_t ms) {
        return panel::cursorX(std::clamp<std::int64_t>(ms, 0, m_state.durationMs), m_state.durationMs,
                              width());
    };
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kMark);
    if (m_state.range) {
        const int from = x(m_state.range->fromMs);
        painter.drawRect(from, kBarTop, std::max(1, x(m_state.range->toMs) - from), kBarHeight);
    }
    for (const std::int64_t ms : m_state.momentsMs) {
        const int at = x(ms);
        const QPoint corners[] = {{at - kMarkHalf, kMarkTop}, {at + kMarkHalf, kMarkTop}, {at, kBarTop - 1}};
        painter.drawPolygon(corners, 3);
    }
}

} // namespace ql240
