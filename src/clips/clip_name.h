// What the camera's file names contain: REC_2013_04_05_12_30_00.mp4 starts on 5 April 2013 at 12:30:00.
#pragma once

#include <QDateTime>
#include <QString>

namespace ql240 {

// The date in a file name (without folder) as "yyyy.MM.dd". A name in another format gives whatever the same
// removals and insertions produce, at most 10 characters.
QString clipDateText(const QString& fileName);

// When the recording with this name (without folder) starts: the camera's local time, as if it were UTC;
// invalid unless a time stamp follows a four-character prefix.
QDateTime clipStart(const QString& fileName);

} // namespace ql240
