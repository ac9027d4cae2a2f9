// Where a track goes: standard output, piece by piece, or a file, which appears whole under its name or not
// at all.
#pragma once

#include <QFileDevice>
#include <memory>

#include "cli/options.h"
#include "clips/track_export.h"

namespace ql240::cli {

class TrackOutput {
public:
    explicit TrackOutput(const Options& options);
    ~TrackOutput();

    // False, with the reason, where nothing can be written there.
    bool open(QString& reason);
    // Made when first asked for: without a point nothing is written.
    TrackWriter& writer();
    // False, with the reason, where not all could be written. Without a writer there is nothing to keep.
    bool finish(QString& reason);
    // How the output is called in reports.
    QString name() const;

private:
    const Options& m_options;
    std::unique_ptr<QFileDevice> m_device;
    std::unique_ptr<TrackWriter> m_writer;
};

} // namespace ql240::cli
