// Texts that came from outside (a drive's label, a path, a clip's name, what a version file says) on their
// way to where they are shown: as the letters they are, never as markup, and never in control of what stands
// beside them. Interface thread only.
#pragma once

#include <QString>

#include "platform/limits.h"

class QApplication;

namespace ql240 {

// For labels, lists, painting and assistive technology: one line of at most `letters`, without control
// characters and without what turns the direction of writing. A text that has none of these comes back as it
// is.
QString shownText(const QString& text, int letters = limits::kShownPathLetters);
inline QString shownName(const QString& text) {
    return shownText(text, limits::kShownNameLetters);
}

// For hover texts, which Qt takes for markup when they look like it: escaped, and broken into lines wherever
// it is too long for one.
QString hoverText(const QString& text);

// For windows that Qt makes, such as its file dialog and the questions that that asks: their labels show
// plain text, and so do their hover texts.
void installPlainTexts(QApplication& application);

} // namespace ql240
