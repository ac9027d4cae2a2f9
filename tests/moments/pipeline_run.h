// Random runs on the real pipeline: clips with sound whose frames say their number, in real time. What is
// paused shows the frame of its position; what plays goes on, and ends at its end and nowhere else. Main
// thread.
#pragma once

#include "moments/steps.h"

namespace ql240::moments {

Plan pipelinePlan();

} // namespace ql240::moments
