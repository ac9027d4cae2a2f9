#include "cli/commands.h"
#include "clips/cut/clip_cutter.h"

namespace ql240::cli {

bool runCut(const Options& options, Reports& reports) {
    CutRequest request;
    request.clip = options.names.first();
    request.range = options.range;
    request.keepsSound = options.keepsSound;
    request.output = options.output;
    request.overwrites = options.force;
    const CutResult result = cutClip(request);
    for (const QString& remark : result.remarks)
        reports.say(result.output, remark);
    if (result.status == CutResult::Status::Done)
        return options.output.isEmpty() ? writeResult(forTerminal(result.output) + '\n', reports) : true;
    reports.fail(request.clip, result.reason);
    return false;
}

} // namespace ql240::cli
