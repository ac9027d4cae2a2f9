// What the camera's file names say: REC_2013_04_05_12_30_00.mp4 was begun on 5 April 2013 at 12:30:00.
#pragma once

#include <QDateTime>
#include <QString>

namespace ql240 {

// The date of a file name (without folder) as "yyyy.MM.dd". A name by other rules gives what the same cuts
// and inserts make of it, at most 10 characters.
QString clipDateText(const QString& fileName);

// When a file of that name was begun, by the camera's clock; invalid where its name has no time stamp behind
// a four-character prefix.
QDateTime clipStart(const QString& fileName);

} // namespace ql240
