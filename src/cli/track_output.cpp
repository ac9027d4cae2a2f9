#include "cli/track_output.h"

#include <unistd.h>

#include <QFile>

namespace ql240::cli {

TrackOutput::TrackOutput(const Options& options) : m_options(options) {}
TrackOutput::~TrackOutput() = default;

QFileDevice& TrackOutput::device() const {
    return m_file ? m_file->device() : *m_standardOutput;
}

bool TrackOutput::open(QString& reason) {
    if (!m_options.output.isEmpty()) {
        m_file = std::make_unique<containers::NewFile>(m_options.output, m_options.force);
        return m_file->open(reason);
    }
    auto file = std::make_unique<QFile>();
    const bool isOpen = file->open(STDOUT_FILENO, QIODevice::WriteOnly);
    reason = isOpen ? QString() : file->errorString();
    m_standardOutput = std::move(file);
    return isOpen;
}

TrackWriter& TrackOutput::writer() {
    if (!m_writer)
        m_writer = makeTrackWriter(m_options.format, device(), m_options.accelerations);
    return *m_writer;
}

bool TrackOutput::finish(QString& reason) {
    if (!m_writer)
        return true;
    if (!m_writer->finish() || !device().flush()) {
        reason = device().errorString();
        return false;
    }
    return !m_file || m_file->commit(reason);
}

QString TrackOutput::name() const {
    return m_options.output.isEmpty() ? QStringLiteral("standard output") : m_options.output;
}

} // namespace ql240::cli
