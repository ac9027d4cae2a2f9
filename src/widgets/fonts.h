// The fonts of the skinned windows. Their pages are fixed to the pixel, so point sizes mean pixels at 96 DPI,
// whatever the screen says. Interface thread only.
#pragma once

#include <QFont>

namespace ql240 {

// Points to whole pixels at 96 DPI: 9 → 12, 10 → 13, 11 → 15.
int fontPixels(int points);

// The skin's family in the size and weight given.
QFont uiFont(int points, QFont::Weight weight = QFont::Normal);

// Lets everything that asks for "Segoe UI" or "Gulim", style sheets included, get the free fonts instead
// where those are missing. Start-up calls it once, before the first window.
void installFontSubstitutes();

} // namespace ql240
