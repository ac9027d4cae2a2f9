// Time that passes only while the program waits: replaces the clock and poll functions, so that a wait of ten
// seconds takes no time and a run is reproducible. Main thread; other threads keep the real clocks.
#pragma once

#include <QtGlobal>
#include <functional>

namespace ql240::moments {

// From now on time passes only in waits and in pass().
void startVirtualTime();

// Milliseconds since the start; before it, the process's real clock.
qint64 nowMs();

// Calls `then` at that time, while the event loop waits or within pass().
void callAt(qint64 timeMs, std::function<void()> then);
// Drops all calls that are still waiting.
void forgetCalls();

// Advances time to `untilMs` without the event loop, like a blocked thread; true as soon as `isDone` holds.
bool pass(qint64 untilMs, const std::function<bool()>& isDone);

// Called before each wait of the event loop, when nothing is due any more.
void setIdleHook(std::function<void()> hook);

} // namespace ql240::moments
