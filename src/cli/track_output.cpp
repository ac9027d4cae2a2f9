#include "cli/track_output.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace ql240::cli {

TrackOutput::TrackOutput(const Options& options) : m_options(options) {}
TrackOutput::~TrackOutput() = default;

bool TrackOutput::open(QString& reason) {
    if (m_options.output.isEmpty()) {
        auto file = std::make_unique<QFile>();
        const bool isOpen = file->open(STDOUT_FILENO, QIODevice::WriteOnly);
        reason = isOpen ? QString() : file->errorString();
        m_device = std::move(file);
        return isOpen;
    }
    const QFileInfo info(m_options.output);
    // QSaveFile would follow a link, also one to a file that doesn't exist yet.
    if (info.isSymLink() || (info.exists() && !info.isFile())) {
        reason = QStringLiteral("no regular file");
    } else if (info.exists() && !m_options.force) {
        reason = QStringLiteral("it exists; --force writes over it");
    } else {
        auto file = std::make_unique<QSaveFile>(m_options.output);
        reason = file->open(QIODevice::WriteOnly) ? QString() : file->errorString();
        m_device = std::move(file);
    }
    return reason.isEmpty();
}

TrackWriter& TrackOutput::writer() {
    if (!m_writer)
        m_writer = makeTrackWriter(m_options.format, *m_device, m_options.accelerations);
    return *m_writer;
}

bool TrackOutput::finish(QString& reason) {
    if (!m_writer)
        return true;
    const bool isWritten = m_writer->finish() && m_device->flush();
    auto* const file = qobject_cast<QSaveFile*>(m_device.get());
    // Without --force, don't replace a file created in the meantime either.
    const QFileInfo info(m_options.output);
    const bool isFree = !info.isSymLink() && (m_options.force || !info.exists());
    if (isWritten && (!file || (isFree && file->commit())))
        return true;
    reason =
        isWritten && !isFree ? QStringLiteral("it exists; --force writes over it") : m_device->errorString();
    return false;
}

QString TrackOutput::name() const {
    return m_options.output.isEmpty() ? QStringLiteral("standard output") : m_options.output;
}

} // namespace ql240::cli
