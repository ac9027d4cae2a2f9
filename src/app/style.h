// The look of Qt's standard widgets beside the skin: dialogs, message boxes, menus. Interface thread only.
#pragma once

namespace ql240 {

// Call before the application object is created: fixes point sizes to 96 DPI, since the skinned windows are
// laid out in pixels.
void prepareStyle();

// Call after it: sets fonts and a dark palette in the skin's colours, and shows text from outside as plain
// text.
void applyStyle();

} // namespace ql240
