#include "settings/settings_page.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include "settings/dialog_parts.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {

SettingsPage::SettingsPage(QWidget* parent, const pages::PageLayout& layout)
    : QDialog(parent, Qt::FramelessWindowHint),
      m_layout(layout),
      m_background(skinPixmap(skinPath(QLatin1String(layout.background)))) {
    m_marks.chosen = skinPixmap(skinPath(QStringLiteral("check")));
    setFont(uiFont(8));
    resize(layout.size);
    centreOverParent(this);
    setWindowTitle(QString::fromUtf16(layout.title));
    addTitle(this, layout.titleBox, windowTitle());
    addButtons();
    m_rows = addChoiceRows(this, *this, layout.rows);
    setTabOrderByPlace(this);
    // Opened by a key, the page shows at once where the next key goes.
    setAttribute(Qt::WA_KeyboardFocusChange,
                 parent && parent->window()->testAttribute(Qt::WA_KeyboardFocusChange));
    if (!m_rows.isEmpty())
        m_rows.first()->setFocus();
}

void SettingsPage::addButtons() {
    ImageButton* ok = addTextButton(this, "OK", m_layout.ok, uiText(23));
    connect(ok, &QToolButton::clicked, this, &SettingsPage::OnSlotsOK);
    ImageButton* cancel = addTextButton(this, "cancel", m_layout.cancel, uiText(24));
    connect(cancel, &QToolButton::clicked, this, &SettingsPage::OnSlotsCancel);
    if (m_layout.enterCancels)
        cancel->setFocus();
    ImageButton* close = addCloseButton(this, m_layout.close);
    connect(close, &QToolButton::clicked, this, &SettingsPage::OnSlotsCancel);
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

void SettingsPage::OnSlotsOK() {
    m_confirmed = true;
    accept();
}

void SettingsPage::OnSlotsCancel() {
    m_confirmed = false;
    reject();
}

void SettingsPage::OnSlotsApply() {
    m_confirmed = true;
}

void SettingsPage::choose(const OptionRow& row, int value) {
    m_values.*row.value = value;
    refresh();
}

void SettingsPage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRect(QPoint(), m_layout.size), m_background);
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

void SettingsPage::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        OnSlotsCancel();
    else if (!isEnter(event))
        QDialog::keyPressEvent(event);
    else if (!clickFocusedButton(this))
        return m_layout.enterCancels ? OnSlotsCancel() : OnSlotsOK();
}

void SettingsPage::closeEvent(QCloseEvent* event) {
    m_confirmed = false;
    QDialog::closeEvent(event);
}

} // namespace ql240
