// Random runs on the real pipeline, in real time, with clips that have sound and numbered frames. A paused
// clip shows the frame at its position; a playing one advances and ends only at its end. Main thread.
#pragma once

#include "moments/steps.h"

namespace ql240::moments {

Plan pipelinePlan();

} // namespace ql240::moments
