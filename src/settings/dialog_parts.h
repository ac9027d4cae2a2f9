// Parts shared by the settings windows. Interface thread only; the window owns what is added to it.
#pragma once

#include <QColor>
#include <QRect>
#include <QString>

#include "widgets/image_buttons.h"

class QKeyEvent;
class QLabel;

namespace ql240 {

// The colour of painted texts.
inline constexpr QColor kPageText(220, 220, 220);

// Light text on the windows' dark background, for the window and its children.
void useDialogColours(QWidget* window);
// A label in the skin's font family at `points`.
QLabel* addLabel(QWidget* window, const QRect& place, const QString& text, const QColor& colour, int points);
QLabel* addTitle(QWidget* window, const QRect& place, const QString& text);
// Sets the title's text, in a smaller font, down to 8 points, if it is wider than `room`.
void setTitle(QLabel* title, const QString& text, int room);
ImageButton* addCloseButton(QWidget* window, const QRect& place);
// A button with the pictures of `images` (see controlImages) and a text over them.
ImageButton* addTextButton(QWidget* window, const char* images, const QRect& place, const QString& text);

// Centres a window over its parent's window, as far as the screen allows.
void centreOverParent(QWidget* window);

// Return or Enter, with no modifier other than the keypad's.
bool isEnter(const QKeyEvent* event);
// If a button of the window has the focus, clicks it and returns true.
bool clickFocusedButton(const QWidget* window);

} // namespace ql240
