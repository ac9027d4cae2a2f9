// The life of one process: start-up, the choice between viewer and settings tool, the event loop, shutdown.
#pragma once

namespace ql240 {

// Exit codes: 1 when there is no display, 0 when a running instance took over, otherwise the event loop's
// result.
int startUp(int argc, char** argv);

} // namespace ql240
