// Adds a camera motion metadata track to a finished MP4 file (ISO/IEC 14496-12) whose index comes last.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

namespace ql240::demo {

// The samples go into a media box of their own after the file's media; the index moves behind it and gets one
// more track. Each sample lasts sampleMs. All creation times become `created`, which also makes the file the
// same on every run. Returns false and leaves the file unchanged if it has no such index or can't be written.
bool addCammTrack(const QString& path, const QList<QByteArray>& samples, int sampleMs,
                  const QDateTime& created);

} // namespace ql240::demo
