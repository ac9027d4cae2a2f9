// The commands of ql240-clip. Each writes its output and reports failures; returns whether the output could
// be written.
#pragma once

#include "cli/options.h"
#include "cli/reports.h"

namespace ql240::cli {

bool runInfo(const Options& options, Reports& reports);
bool runTrack(const Options& options, Reports& reports);
bool runEvents(const Options& options, Reports& reports);
bool runCut(const Options& options, Reports& reports);
bool runRepair(const Options& options, Reports& reports);

// Writes to standard output; reports a failure and returns false if that fails.
[[nodiscard]] bool writeResult(const QByteArray& bytes, Reports& reports);

} // namespace ql240::cli
