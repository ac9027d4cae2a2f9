#include "settings/dialog_parts.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <algorithm>

#include "settings/option_rows.h"
#include "settings/spoken_texts.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QColor kGround(9, 9, 9);
constexpr int kTitlePoints = 11;

} // namespace

void useDialogColours(QWidget* window) {
    QPalette colours = window->palette();
    colours.setColor(QPalette::WindowText, kPageText);
    colours.setColor(window->backgroundRole(), kGround);
    window->setPalette(colours);
}

QLabel* addLabel(QWidget* window, const QRect& place, const QString& text, const QColor& colour, int points) {
    auto* label = new QLabel(window);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setGeometry(place);
    label->setFont(uiFont(points));
    QPalette colours = label->palette();
    colours.setColor(QPalette::WindowText, colour);
    label->setPalette(colours);
    return label;
}

QLabel* addTitle(QWidget* window, const QRect& place, const QString& text) {
    QLabel* title = addLabel(window, place, text, kPageText, kTitlePoints);
    // Mouse presses pass through the title to the window, which they drag.
    title->setAttribute(Qt::WA_TransparentForMouseEvents);
    return title;
}

void setTitle(QLabel* title, const QString& text, int room) {
    title->setText(text);
    title->setFont(fittingFont(uiFont(kTitlePoints), text, room));
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
    speak(button, text);
    return button;
}

void centreOverParent(QWidget* window) {
    if (!window->parentWidget())
        return;
    const QWidget* below = window->parentWidget()->window();
    QRect place(QPoint(), window->size());
    place.moveCenter(below->geometry().center());
    const QRect screen = below->screen()->availableGeometry();
    place.moveLeft(std::max(screen.left(), std::min(place.left(), screen.right() + 1 - place.width())));
    place.moveTop(std::max(screen.top(), std::min(place.top(), screen.bottom() + 1 - place.height())));
    window->move(place.topLeft());
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
