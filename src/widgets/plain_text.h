// Prepares texts from outside (a drive's label, a path, a clip's name, a version file) for display, so that
// they show as plain characters, never as markup, and don't affect the text beside them. Interface thread
// only.
#pragma once

#include <QString>

#include "platform/limits.h"

class QApplication;

namespace ql240 {

// For labels, lists, painting and assistive technology: one line of at most `letters` characters, without
// control characters and bidirectional controls. A text without any of these is returned unchanged.
QString shownText(const QString& text, int letters = limits::kShownPathLetters);
inline QString shownName(const QString& text) {
    return shownText(text, limits::kShownNameLetters);
}

// For a text embedded in another: right-to-left characters in it do not reorder its neighbours. Don't pass
// the result to the other functions, which would replace the isolating marks.
QString isolated(const QString& shown);

// For tooltips, which Qt renders as rich text if they look like it: escaped, with line breaks wherever a line
// would be too long.
QString hoverText(const QString& text);

// Makes the labels and tooltips of windows that Qt creates, such as its file dialog and that dialog's message
// boxes, show plain text.
void installPlainTexts(QApplication& application);

} // namespace ql240
