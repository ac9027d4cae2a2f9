#include <QJsonArray>
#include <QJsonDocument>

#include "cli/clip_summary.h"
#include "cli/commands.h"

namespace ql240::cli {

bool runInfo(const Options& options, Reports& reports) {
    QJsonArray objects;
    bool isWritten = true;
    forEachClip(clipNames(options.names, reports), RecordPart::FixesAndAccelerations, reports,
                [&](const ClipInput& input) {
                    if (options.json)
                        objects.append(summaryObject(input));
                    else
                        isWritten = writeResult(summaryText(input), reports);
                    return isWritten;
                });
    return options.json ? writeResult(QJsonDocument(objects).toJson(), reports) : isWritten;
}

} // namespace ql240::cli
