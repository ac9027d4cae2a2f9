// The window with all keys, made from the table of commands. Interface thread only.
#pragma once

namespace ql240 {

class MainWindow;
class SkinWindow;

// Owned by the main window. Its own command keys work as in the main window.
SkinWindow* makeKeysWindow(MainWindow* window);

} // namespace ql240
