// The shapes that pictures consist of, by their names in the table.
#pragma once

#include "canvas.h"

namespace ql240::skin {

using PaintFunction = void (*)(Canvas&, ShapeArguments&);

// The shape's paint function, or null if there is none of that name.
PaintFunction findShape(const QString& verb);

// Backgrounds, keys, texts and marks (shapes_basic.cpp).
void paintFill(Canvas& canvas, ShapeArguments& arguments);
void paintShade(Canvas& canvas, ShapeArguments& arguments);
void paintFrame(Canvas& canvas, ShapeArguments& arguments);
void paintWell(Canvas& canvas, ShapeArguments& arguments);
void paintGlass(Canvas& canvas, ShapeArguments& arguments);
void paintPaper(Canvas& canvas, ShapeArguments& arguments);
void paintText(Canvas& canvas, ShapeArguments& arguments);
void paintGlyph(Canvas& canvas, ShapeArguments& arguments);
void paintArt(Canvas& canvas, ShapeArguments& arguments);
void paintButton(Canvas& canvas, ShapeArguments& arguments);

// The dashboard's instruments, in the panel's coordinates (shapes_instruments.cpp).
void paintDial(Canvas& canvas, ShapeArguments& arguments);
void paintSegment(Canvas& canvas, ShapeArguments& arguments);
void paintDigit(Canvas& canvas, ShapeArguments& arguments);
void paintAxes(Canvas& canvas, ShapeArguments& arguments);
void paintGlobe(Canvas& canvas, ShapeArguments& arguments);
void paintLamp(Canvas& canvas, ShapeArguments& arguments);
void paintCursor(Canvas& canvas, ShapeArguments& arguments);

// The parts of the settings windows (shapes_windows.cpp).
void paintWindow(Canvas& canvas, ShapeArguments& arguments);
void paintPanel(Canvas& canvas, ShapeArguments& arguments);
void paintHeading(Canvas& canvas, ShapeArguments& arguments);
void paintSockets(Canvas& canvas, ShapeArguments& arguments);
void paintScale(Canvas& canvas, ShapeArguments& arguments);
void paintMark(Canvas& canvas, ShapeArguments& arguments);
void paintTickBox(Canvas& canvas, ShapeArguments& arguments);
void paintWorld(Canvas& canvas, ShapeArguments& arguments);

} // namespace ql240::skin
