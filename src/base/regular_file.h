// Opens files whose names come from outside: anything but a regular file may block or never end.
#pragma once

#include <QFile>

namespace ql240 {

// Opens the file of this name for unbuffered reading; never waits for the other end of a FIFO. False, with
// the reason, in English or the system's words, if it isn't a regular file or can't be opened.
[[nodiscard]] bool openRegularFile(QFile& file, QString& problem);

} // namespace ql240
