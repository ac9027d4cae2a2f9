#include "settings/flat_fields.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QPainter>
#include <QStyleOptionSpinBox>

#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr int kListMargin = 5;
constexpr QColor kFocusColour(60, 60, 60);

QPalette twoColours(QPalette palette, const QColor& text, const QColor& ground) {
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::Base, QPalette::Window, QPalette::Button})
        palette.setColor(role, ground);
    return palette;
}

QPixmap skinPicture(const char* name) {
    return skinPixmap(skinPath(QLatin1String(name)));
}

bool showsFocus(const QWidget* widget) {
    return widget->hasFocus() && widget->window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

} // namespace

FlatList::FlatList(QWidget* window, const QRect& place, int points)
    : QComboBox(window), m_arrow(skinPicture("combo_down")) {
    setGeometry(place);
    setFont(uiFont(points));
    setPalette(twoColours(palette(), Qt::black, Qt::white));
}

void FlatList::showPopup() {
    if (!m_hasPopup)
        view()->setPalette(palette());
    m_hasPopup = true;
    QComboBox::showPopup();
}

// QComboBox would create the popup just to pass the list's font and palette on to it; the popup gets them
// when it is first shown.
void FlatList::changeEvent(QEvent* event) {
    if (m_hasPopup || event->type() == QEvent::EnabledChange)
        QComboBox::changeEvent(event);
    else
        QWidget::changeEvent(event);
}

void FlatList::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(rect(), palette().base());
    const int arrow = qRound(m_arrow.deviceIndependentSize().width());
    painter.drawPixmap(QRect(width() - arrow, 0, arrow, height()), m_arrow);
    painter.setPen(palette().color(QPalette::Text));
    const QRect box = rect().adjusted(kListMargin, 0, -arrow - 1, 0);
    const QString text = fontMetrics().elidedText(currentText(), Qt::ElideRight, box.width());
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    if (!showsFocus(this))
        return;
    painter.setPen(QPen(kFocusColour, 1, Qt::DotLine));
    painter.drawRect(rect().adjusted(0, 0, -arrow - 1, -1));
}

FlatField::FlatField(QWidget* window, const QRect& place, const QString& format)
    : QDateTimeEdit(window), m_up(skinPicture("time_up1")), m_down(skinPicture("time_down1")) {
    setGeometry(place);
    setFont(uiFont(10));
    setFrame(false);
    setAlignment(Qt::AlignVCenter);
    setDisplayFormat(format);
}

void FlatField::setColours(const QColor& text, const QColor& ground) {
    setPalette(twoColours(palette(), text, ground));
}

// The line edit paints the text itself.
void FlatField::paintEvent(QPaintEvent*) {
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const auto place = [&](QStyle::SubControl control) {
        return style()->subControlRect(QStyle::CC_SpinBox, &option, control, this);
    };
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place(QStyle::SC_SpinBoxUp), m_up);
    painter.drawPixmap(place(QStyle::SC_SpinBoxDown), m_down);
}

} // namespace ql240
