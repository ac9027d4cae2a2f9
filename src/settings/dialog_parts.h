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

QLabel* addTitle(QWidget* window, const QRect& place, const QString& text);
// Sets a title's text; a smaller font, down to 8 points, keeps it within `room`.
void setTitle(QLabel* title, const QString& text, int room);
ImageButton* addCloseButton(QWidget* window, const QRect& place);
// A button with the pictures of `images` (controlImages) and a text on it.
ImageButton* addTextButton(QWidget* window, const char* images, const QRect& place, const QString& text);

// Return or Enter, without modifiers but the keypad's.
bool isEnter(const QKeyEvent* event);
// Where a button of the window has the focus, Enter means that button.
bool clickFocusedButton(const QWidget* window);

} // namespace ql240
