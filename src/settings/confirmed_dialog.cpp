#include "settings/confirmed_dialog.h"

#include <QKeyEvent>
#include <QPainter>

#include "base/language.h"
#include "settings/dialog_parts.h"
#include "widgets/skin.h"

namespace ql240 {

ConfirmedDialog::ConfirmedDialog(QWidget* parent, const QString& background)
    : QDialog(parent, Qt::FramelessWindowHint), m_background(skinPixmap(skinPath(background))) {}

ImageButton* ConfirmedDialog::addButtons(const QRect& ok, const QRect& cancel, const QRect& close) {
    ImageButton* confirms = addTextButton(this, "OK", ok, uiText(UiText::Ok));
    connect(confirms, &QToolButton::clicked, this, &ConfirmedDialog::OnSlotsOK);
    ImageButton* cancels = addTextButton(this, "cancel", cancel, uiText(UiText::Cancel));
    connect(cancels, &QToolButton::clicked, this, &ConfirmedDialog::OnSlotsCancel);
    connect(addCloseButton(this, close), &QToolButton::clicked, this, &ConfirmedDialog::OnSlotsCancel);
    return cancels;
}

void ConfirmedDialog::OnSlotsOK() {
    m_confirmed = true;
    accept();
}

void ConfirmedDialog::OnSlotsCancel() {
    m_confirmed = false;
    reject();
}

void ConfirmedDialog::OnSlotsApply() {
    m_confirmed = true;
}

void ConfirmedDialog::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), m_background);
}

void ConfirmedDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        OnSlotsCancel();
    else if (!isEnter(event))
        QDialog::keyPressEvent(event);
    else if (!clickFocusedButton(this))
        enter();
}

void ConfirmedDialog::closeEvent(QCloseEvent* event) {
    m_confirmed = false;
    QDialog::closeEvent(event);
}

} // namespace ql240
