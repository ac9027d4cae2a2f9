// How the program's standard parts look beside the skin: dialogs, message boxes, menus. Interface thread
// only.
#pragma once

namespace ql240 {

// Before the application object is made: fixes the meaning of point sizes, as the skinned windows are fixed
// in pixels.
void prepareStyle();

// After it was made: fonts, a dark palette on the skin's colours, and no text from outside taken for markup.
void applyStyle();

} // namespace ql240
