#include "settings/choice_row.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "settings/choice_row_accessible.h"
#include "settings/spoken_texts.h"

namespace ql240 {
namespace {

constexpr QColor kFocusColour(200, 200, 200);
// Widgets whose vertical centres are this close count as one line for the tab order.
constexpr int kSameLine = 10;
// Gap between a row and its focus frame. The frame also encloses the numbers that some backgrounds show above
// the marks.
constexpr int kFrameGap = 4;
constexpr int kNumbersHeight = 20;

QRect frameOf(const OptionRow& row) {
    const bool numbered = row.kind == RowKind::Choices && row.choices.front().text.isNull();
    const QRect marks = row.choices.front().mark;
    const QRect numbers(marks.left(), marks.top() - kNumbersHeight, 1, kNumbersHeight);
    return (numbered ? boundsOf(row) | numbers : boundsOf(row)).adjusted(-kFrameGap, 0, kFrameGap, 0);
}

} // namespace

ChoiceRow::ChoiceRow(QWidget* window, RowOwner& owner, const OptionRow& row)
    : QWidget(window), m_owner(owner), m_row(row) {
    installChoiceRowAccessibility();
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(row.kind == RowKind::ShownOnly ? Qt::NoFocus : Qt::TabFocus);
    setGeometry(frameOf(row) & window->rect());
    m_reported = chosenIndex();
}

int ChoiceRow::chosenIndex() const {
    const Choice* chosen = chosenChoice(m_row, m_owner.rowValues());
    return chosen ? static_cast<int>(chosen - m_row.choices.data()) : -1;
}

void ChoiceRow::choose(int index) {
    if (!isOperable())
        return;
    if (m_row.kind == RowKind::TickBox)
        m_owner.choose(m_row, chosenIndex() < 0 ? m_row.choices.front().value : 0);
    else if (index >= 0 && index < static_cast<int>(m_row.choices.size()))
        m_owner.choose(m_row, m_row.choices[static_cast<std::size_t>(index)].value);
}

void ChoiceRow::step(int by) {
    const int last = static_cast<int>(m_row.choices.size()) - 1;
    const int chosen = chosenIndex();
    choose(chosen < 0 ? (by > 0 ? 0 : last) : std::clamp(chosen + by, 0, last));
}

void ChoiceRow::keyPressEvent(QKeyEvent* event) {
    const bool ticks = m_row.kind == RowKind::TickBox;
    if (ticks && event->key() != Qt::Key_Space)
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
        case Qt::Key_Space:
            return choose(ticks ? 0 : std::max(0, chosenIndex()));
        case Qt::Key_Left:
        case Qt::Key_Up:
            return step(-1);
        case Qt::Key_Right:
        case Qt::Key_Down:
            return step(1);
        case Qt::Key_Home:
            return choose(0);
        case Qt::Key_End:
            return choose(static_cast<int>(m_row.choices.size()) - 1);
        default:
            QWidget::keyPressEvent(event);
    }
}

void ChoiceRow::refresh() {
    setEnabled(m_row.kind == RowKind::ShownOnly || isOperable());
    if (const int chosen = chosenIndex(); chosen != m_reported) {
        m_reported = chosen;
        tell();
    }
}

// For screen readers the focus is on the chosen choice, not on the row.
void ChoiceRow::tell() {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent state(this, changed);
    if (m_row.kind != RowKind::TickBox) {
        if (m_reported < 0)
            return;
        state.setChild(m_reported);
    }
    QAccessible::updateAccessibility(&state);
    if (!hasFocus() || m_row.kind == RowKind::TickBox)
        return;
    QAccessibleEvent focus(this, QAccessible::Focus);
    focus.setChild(m_reported);
    QAccessible::updateAccessibility(&focus);
}

void ChoiceRow::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    tell();
}

void ChoiceRow::paintEvent(QPaintEvent*) {
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return;
    QPainter painter(this);
    painter.setPen(QPen(kFocusColour, 1, Qt::DotLine));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

QList<ChoiceRow*> addChoiceRows(QWidget* window, RowOwner& owner, std::span<const OptionRow> rows) {
    addRowHoverTexts(window, rows);
    QList<ChoiceRow*> widgets;
    for (const OptionRow& row : rows)
        widgets.append(new ChoiceRow(window, owner, row));
    // Stacked below the window's other widgets, in the table's order.
    for (auto widget = widgets.rbegin(); widget != widgets.rend(); ++widget)
        (*widget)->lower();
    return widgets;
}

void setTabOrderByPlace(QWidget* window) {
    QList<QWidget*> widgets = window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    widgets.removeIf([](const QWidget* widget) { return !(widget->focusPolicy() & Qt::TabFocus); });
    // Sort by y first, then each line by x: "close in height" is not transitive and would be no valid sort
    // order.
    std::sort(widgets.begin(), widgets.end(), [](const QWidget* a, const QWidget* b) {
        return a->geometry().center().y() < b->geometry().center().y();
    });
    for (auto line = widgets.begin(); line != widgets.end();) {
        const auto end = std::find_if(line, widgets.end(), [first = *line](const QWidget* widget) {
            return widget->geometry().center().y() - first->geometry().center().y() >= kSameLine;
        });
        std::sort(line, end, [](const QWidget* a, const QWidget* b) { return a->x() < b->x(); });
        line = end;
    }
    for (qsizetype i = 1; i < widgets.size(); ++i)
        QWidget::setTabOrder(widgets[i - 1], widgets[i]);
}

} // namespace ql240
