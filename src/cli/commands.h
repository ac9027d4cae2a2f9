// The commands of ql240-clip. Each writes its result and reports what failed; the result says whether it
// could be written.
#pragma once

#include "cli/options.h"
#include "cli/reports.h"

namespace ql240::cli {

bool runInfo(const Options& options, Reports& reports);
bool runTrack(const Options& options, Reports& reports);
bool runEvents(const Options& options, Reports& reports);

// Writes to standard output; false, with a report, where it takes no more.
bool writeResult(const QByteArray& bytes, Reports& reports);

} // namespace ql240::cli
