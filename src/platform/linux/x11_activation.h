// Focus for a window on an X11 desktop, asked for in the name of a user's action that another process took
// part in. Interface thread only.
#pragma once

#include <QByteArray>
#include <cstdint>

class QWindow;

namespace ql240 {

// The X server's time of the action that a start-up identifier stands for, which it ends with: "…_TIME4711".
// 0 where it says none.
std::uint32_t timeOfStartUpId(const QByteArray& id);

// Has the window manager make the window active, as of that action: by the time of this process's own last
// input it would refuse, since the user has been active elsewhere since. Only under the platform "xcb".
void activateOnX11(const QWindow& window, std::uint32_t time);

} // namespace ql240
