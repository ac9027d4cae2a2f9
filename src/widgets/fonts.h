// The fonts of the skinned windows. These are laid out in fixed pixels, so a point size always means pixels
// at 96 DPI, whatever the screen's DPI. Interface thread only.
#pragma once

#include <QFont>

namespace ql240 {

// Points to whole pixels at 96 DPI: 9 → 12, 10 → 13, 11 → 15.
int fontPixels(int points);

// The skin's font family at this size and weight.
QFont uiFont(int points, QFont::Weight weight = QFont::Normal);

// Substitutes Open Sans for "Segoe UI" and NanumGothic for "Gulim" where those are missing, in style sheets
// as well. Called once at start-up, before the first window.
void installFontSubstitutes();

} // namespace ql240
