#include "settings/dialog_parts.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>

#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {

QLabel* addTitle(QWidget* window, const QRect& place, const QString& text) {
    auto* title = new QLabel(window);
    title->setGeometry(place);
    setTitle(title, text, place.width());
    // A press on the title drags the window.
    title->setAttribute(Qt::WA_TransparentForMouseEvents);
    return title;
}

void setTitle(QLabel* title, const QString& text, int room) {
    title->setText(text);
    int points = 11;
    while (points > 8 && QFontMetrics(uiFont(points)).horizontalAdvance(text) > room)
        --points;
    title->setStyleSheet(
        QStringLiteral("color: rgb(220,220,220); font-family: \"Segoe UI\", Arial; font-size: %1pt;")
            .arg(points));
}

ImageButton* addCloseButton(QWidget* window, const QRect& place) {
    auto* close = new IconButton(window, controlImages(QStringLiteral("exit_")), place.size());
    close->setGeometry(place);
    close->setAccessibleName(QWidget::tr("Close"));
    return close;
}

ImageButton* addTextButton(QWidget* window, const char* images, const QRect& place, const QString& text) {
    auto* button = new IconToolButton(window, controlImages(QLatin1String(images)));
    button->setGeometry(place);
    button->setText(text);
    return button;
}

bool isEnter(const QKeyEvent* event) {
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    return plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter);
}

bool clickFocusedButton(const QWidget* window) {
    auto* button = qobject_cast<ImageButton*>(window->focusWidget());
    if (!button || !button->hasFocus())
        return false;
    button->click();
    return true;
}

} // namespace ql240
