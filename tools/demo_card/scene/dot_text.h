#pragma once

// Text of 5 × 7 dots, as cameras burn it into their pictures; needs no font of the system's.

#include <QtCore/QString>

#include "demo_card/scene/canvas.h"

namespace ql240 {

// Upper-case letters, digits, the letters of "km/h" and a few signs; anything else leaves a gap.
// White with a dark rim; x, y is the upper left corner, a dot is `dot` pixels wide.
void paintDotText(Canvas& canvas, int x, int y, int dot, const QString& text);

int dotTextWidth(int dot, const QString& text);

// The text alone, white on nothing, a pixel a dot.
QImage dotTextPicture(const QString& text);

} // namespace ql240
