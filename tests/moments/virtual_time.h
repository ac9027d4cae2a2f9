// Time that passes only while the program waits. In a program that links this file, the system's clocks and
// poll calls are answered here: a wait of ten seconds takes no time, and a run goes the same way whenever it
// is repeated. Off until start() is called. Main thread; other threads keep the real clocks.
#pragma once

#include <QtGlobal>
#include <functional>

namespace ql240::moments {

// From now on time stands still but for waits and pass().
void startVirtualTime();

// Milliseconds since the start; the process's real clock before it.
qint64 nowMs();

// Calls `then` when that time has come: while the event loop waits, or within pass().
void callAt(qint64 timeMs, std::function<void()> then);
// Forgets all calls that have not come.
void forgetCalls();

// Lets time go on to `untilMs` without the event loop, as a thread that blocks does; returns at once when
// `isDone` holds, false when it never did.
bool pass(qint64 untilMs, const std::function<bool()>& isDone);

// Called before each wait of the event loop, when everything that is due has been done.
void setIdleHook(std::function<void()> hook);

} // namespace ql240::moments
