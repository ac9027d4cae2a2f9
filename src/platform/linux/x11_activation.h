// Activates a window on an X11 desktop on behalf of a user action that another process received. Interface
// thread only.
#pragma once

#include <QByteArray>
#include <cstdint>

class QWindow;

namespace ql240 {

// The X server time at the end of a start-up identifier, as in "…_TIME4711"; 0 if it has none.
std::uint32_t timeOfStartUpId(const QByteArray& id);

// Asks the window manager to activate the window, with the time of that action. With this process's own last
// input time it would refuse, because the user has been active elsewhere since. Only on the platform "xcb".
void activateOnX11(const QWindow& window, std::uint32_t time);

} // namespace ql240
