// Pieces that the settings windows share. Interface thread only; what is added belongs to the window.
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

// Light texts on the windows' dark ground, for the window and what it holds.
void useDialogColours(QWidget* window);
// A label in the skin's family, at `points`.
QLabel* addLabel(QWidget* window, const QRect& place, const QString& text, const QColor& colour, int points);
QLabel* addTitle(QWidget* window, const QRect& place, const QString& text);
// Sets a title's text; a smaller font, down to 8 points, keeps it within `room`.
void setTitle(QLabel* title, const QString& text, int room);
ImageButton* addCloseButton(QWidget* window, const QRect& place);
// A button with the pictures of `images` (controlImages) and a text on it.
ImageButton* addTextButton(QWidget* window, const char* images, const QRect& place, const QString& text);

// Puts a window over the middle of its parent's, as far as the screen allows.
void centreOverParent(QWidget* window);

// Return or Enter, without modifiers but the keypad's.
bool isEnter(const QKeyEvent* event);
// Where a button of the window has the focus, Enter means that button.
bool clickFocusedButton(const QWidget* window);

} // namespace ql240
