#include "settings/settings_page.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include "settings/dialog_parts.h"
#include "settings/spoken_texts.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {

SettingsPage::SettingsPage(QWidget* parent, const pages::PageLayout& layout)
    : ConfirmedDialog(parent, QLatin1String(layout.background)), m_layout(layout) {
    m_marks.chosen = skinPixmap(skinPath(QStringLiteral("check")));
    setFont(uiFont(8));
    resize(layout.size);
    centreOverParent(this);
    setWindowTitle(QString::fromUtf16(layout.title));
    speak(this, windowTitle());
    speak(addTitle(this, layout.titleBox, windowTitle()), windowTitle());
    ImageButton* cancel = addButtons(layout.ok, layout.cancel, layout.close);
    if (layout.enterCancels)
        cancel->setFocus();
    m_rows = addChoiceRows(this, *this, layout.rows);
    setTabOrderByPlace(this);
    // When the page was opened by a key, show the focus from the start.
    setAttribute(Qt::WA_KeyboardFocusChange,
                 parent && parent->window()->testAttribute(Qt::WA_KeyboardFocusChange));
    if (!m_rows.isEmpty())
        m_rows.first()->setFocus();
}

void SettingsPage::setValues(const RowValues& values) {
    m_values = values;
    refresh();
}

void SettingsPage::handBack(RowValues& values) const {
    for (const OptionRow& row : m_layout.rows)
        values.*row.value = m_values.*row.value;
}

void SettingsPage::refresh() {
    for (ChoiceRow* row : std::as_const(m_rows))
        row->refresh();
    update();
}

void SettingsPage::choose(const OptionRow& row, int value) {
    m_values.*row.value = value;
    refresh();
}

void SettingsPage::paintEvent(QPaintEvent* event) {
    ConfirmedDialog::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setFont(uiFont(8));
    painter.setPen(kPageText);
    paintLabels(painter, m_layout.labels);
    for (const OptionRow& row : m_layout.rows) {
        paintRowTexts(painter, row);
        paintRowMarks(painter, row, m_values, m_marks);
    }
}

void SettingsPage::mouseReleaseEvent(QMouseEvent* event) {
    for (const OptionRow& row : m_layout.rows) {
        if (const Choice* hit = choiceAt(row, event->position().toPoint()))
            m_values.*row.value = hit->value;
    }
    refresh();
}

void SettingsPage::enter() {
    if (m_layout.enterCancels)
        OnSlotsCancel();
    else
        OnSlotsOK();
}

} // namespace ql240
