// The destination of a track: standard output, written as the track is read, or a file, which appears under
// its name only when complete.
#pragma once

#include <QFileDevice>
#include <memory>

#include "cli/options.h"
#include "clips/containers/new_file.h"
#include "clips/track_export.h"

namespace ql240::cli {

class TrackOutput {
public:
    explicit TrackOutput(const Options& options);
    ~TrackOutput();

    // False, with the reason, if the output isn't writable.
    [[nodiscard]] bool open(QString& reason);
    // Created on first use, so that a track without points writes nothing.
    TrackWriter& writer();
    // False, with the reason, if not everything could be written. Without a writer there is nothing to keep.
    [[nodiscard]] bool finish(QString& reason);
    // The output's name in reports.
    QString name() const;

private:
    QFileDevice& device() const;

    const Options& m_options;
    std::unique_ptr<QFileDevice> m_standardOutput;
    std::unique_ptr<containers::NewFile> m_file;
    std::unique_ptr<TrackWriter> m_writer;
};

} // namespace ql240::cli
