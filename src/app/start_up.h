// The course of one process: start-up, the choice between viewer and settings tool, the event loop, the end.
#pragma once

namespace ql240 {

// Exit codes: 1 when there is no platform to run on, 0 when a running instance took over, otherwise the event
// loop's.
int startUp(int argc, char** argv);

} // namespace ql240
